# Faults of the component object and its interfaces.

add_component_mutant(fresh-object-unreferenced
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    component->addRef();
    return component;]]
  BY [[    return component;]]
  CAUGHT_BY identity.fresh-object-has-one-reference)

add_component_mutant(release-tells-count-before
  SOURCE RefCnt.cpp
  REPLACE [[    destroy();
    return 0;]]
  BY [[    destroy();
    return 1;]]
  CAUGHT_BY identity.last-release-gives-0 library.loads-again)

add_component_mutant(query-by-beginning
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (std::string_view(name) == "IKorMaterialAnalysis") {]]
  BY [[    if (std::string_view(name).starts_with("IKor")) {]]
  CAUGHT_BY
    identity.query-denies-task
    identity.query-denies-listener
    identity.query-compares-whole-name)

add_component_mutant(query-in-any-case
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (std::string_view(name) == "IKorMaterialAnalysis") {]]
  BY [[    if (__builtin_strcasecmp(name, "IKorMaterialAnalysis") == 0) {]]
  CAUGHT_BY identity.query-heeds-case)

add_component_mutant(query-remembers-address
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == nullptr) return nullptr;]]
  BY [[    if (name == nullptr) return nullptr;
    static const char* known = nullptr;
    if (name == known) return static_cast<IDmBaseObj*>(this);
    if (std::string_view(name) == "IDmBaseObj") known = name;]]
  CAUGHT_BY identity.query-compares-letters)

add_component_mutant(query-reads-null-name
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == nullptr) return nullptr;
]]
  BY [[]]
  CAUGHT_BY identity.query-null-name)

add_component_mutant(query-adds-reference
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        return static_cast<IKorMaterialAnalysis*>(this);]]
  BY [[        addRef();
        return static_cast<IKorMaterialAnalysis*>(this);]]
  CAUGHT_BY identity.query-adds-no-reference identity.one-object-behind-base)

add_component_mutant(query-gives-another-interface
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        return static_cast<IKorMaterialAnalysis*>(this);]]
  BY [[        return static_cast<IKorCallBack*>(this);]]
  CAUGHT_BY identity.query-gives-own-interface identity.one-object-behind-base)

add_component_mutant(query-fails-after-run
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == nullptr) return nullptr;]]
  BY [[    if (name == nullptr || currentMaterialIndex >= 0) return nullptr;]]
  CAUGHT_BY identity.interfaces-outlive-runs)

add_component_mutant(base-is-the-counter
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[return static_cast<IDmBaseObj*>(this);]]
  BY [[return static_cast<RefCnt<void>*>(this);]]
  CAUGHT_BY identity.query-gives-base identity.one-object-behind-base)

add_component_mutant(one-component-for-all
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    KOR::IKorMaterialAnalysis* const component = new KOR::KorMaterialAnalysis();]]
  BY [[    static KOR::IKorMaterialAnalysis* const component = new KOR::KorMaterialAnalysis();]]
  CAUGHT_BY
    identity.factory-makes-another
    identity.components-keep-their-own
    identity.parameters-are-not-shared)

add_component_mutant(null-name-gives-base
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == nullptr) return nullptr;]]
  BY [[    if (name == nullptr) return static_cast<IDmBaseObj*>(this);]]
  CAUGHT_BY identity.query-null-name)
