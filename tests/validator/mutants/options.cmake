# Faults of setting options and parameters.

add_component_mutant(option-once-only
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    intOptions[key] = value;
    return statusOk;]]
  BY [[    return intOptions.emplace(key, value).second ? statusOk : statusFailed;]]
  CAUGHT_BY options.any-option-is-accepted)

add_component_mutant(option-is-the-priority
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    intOptions[key] = value;]]
  BY [[    if (key == 1) taskPriority = static_cast<std::uint32_t>(value);
    intOptions[key] = value;]]
  CAUGHT_BY options.options-change-nothing)

add_component_mutant(null-key-is-read
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (key == nullptr || value == nullptr) return statusFailed;]]
  BY [[    if (value == nullptr) return statusFailed;]]
  CAUGHT_BY options.null-key-fails)

add_component_mutant(null-value-works
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (key == nullptr || value == nullptr) return statusFailed;]]
  BY [[    if (key == nullptr) return statusFailed;
    if (value == nullptr) return statusOk;]]
  CAUGHT_BY options.null-value-fails)

add_component_mutant(priority-is-a-parameter
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    } else {
        return statusFailed;
    }
    return statusOk;]]
  BY [[    } else if (name == "taskPriority") {
        taskPriority = payloadOf<std::uint32_t>(value);
    } else {
        return statusFailed;
    }
    return statusOk;]]
  CAUGHT_BY options.other-keys-fail options.unknown-key-changes-nothing)

add_component_mutant(unknown-key-is-stored
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    } else {
        return statusFailed;
    }
    return statusOk;]]
  BY [[    } else {
        minScenceDuration = payloadOf<std::int32_t>(value);
        return statusFailed;
    }
    return statusOk;]]
  CAUGHT_BY options.unknown-key-changes-nothing)

add_component_mutant(keys-in-any-case
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == analysisParamKey::minScenceDuration) {]]
  BY [[    if (__builtin_strcasecmp(key, analysisParamKey::minScenceDuration) == 0) {]]
  CAUGHT_BY options.keys-heed-case options.unknown-key-changes-nothing)

add_component_mutant(keys-by-beginning
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    } else if (name == analysisParamKey::photoNeedAnalysis) {]]
  BY [[    } else if (name.starts_with(analysisParamKey::photoNeedAnalysis)) {]]
  CAUGHT_BY options.whole-key-is-compared)

add_component_mutant(keys-by-address
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (name == analysisParamKey::minScenceDuration) {]]
  BY [[    if (key == analysisParamKey::minScenceDuration) {]]
  CAUGHT_BY options.keys-compared-by-letters)

add_component_mutant(type-is-looked-at
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (key == nullptr || value == nullptr) return statusFailed;]]
  BY [[    if (key == nullptr || value == nullptr) return statusFailed;
    if (value->type == KorValue::none) return statusFailed;]]
  CAUGHT_BY options.type-is-ignored)

add_component_mutant(integer-of-64-bits
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        minScenceDuration = payloadOf<std::int32_t>(value);]]
  BY [[        minScenceDuration = payloadOf<std::int64_t>(value);]]
  CAUGHT_BY options.integers-have-32-bits)

add_component_mutant(payload-at-byte-0
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[        scenceDetectionThreshold = payloadOf<double>(value);]]
  BY [[        scenceDetectionThreshold = *reinterpret_cast<const double*>(value);]]
  CAUGHT_BY
    options.short-record-suffices
    options.type-is-ignored
    parameters.threshold-is-kept-as-it-is)

add_component_mutant(null-key-is-fine
  SOURCE KorMaterialAnalysis.cpp
  REPLACE [[    if (key == nullptr || value == nullptr) return statusFailed;]]
  BY [[    if (value == nullptr) return statusFailed;
    if (key == nullptr) return statusOk;]]
  CAUGHT_BY options.null-key-fails)
