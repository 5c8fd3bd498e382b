# Faults of the component object, its interfaces and its counting of references.

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
