#include "autotrim/Configuration.h"

#include <cstdint>
#include <stdexcept>
#include <string>

#include "autotrim/Owned.h"
#include "host/lists.h"
#include "host/value.h"

namespace autotrim {
namespace {

void require(KOR::Status status, const std::string& what) {
    if (status != KOR::statusOk) throw std::runtime_error("the component does not take " + what);
}

void setParameter(KOR::IKorMaterialAnalysis& component, const ComponentLibrary& library,
                  const std::string& constant, const KOR::KorValue& value) {
    require(component.setAnalysisParam(library.parameterKey(constant), &value), constant);
}

KOR::KorValue valueOf(std::int32_t number) {
    KOR::KorValue value{};
    value.type = KOR::KorValue::int32;
    value.asInt32 = number;
    return value;
}

KOR::KorValue valueOf(double number) {
    KOR::KorValue value{};
    value.type = KOR::KorValue::real;
    value.asReal = number;
    return value;
}

}  // namespace

void configure(KOR::IKorMaterialAnalysis& component, const ComponentLibrary& library,
               const Options& options) {
    setParameter(component, library, "minScenceDuration", valueOf(options.minSceneSeconds));
    setParameter(component, library, "minNeedAnalysisDuartion", valueOf(options.minLengthSeconds));
    setParameter(component, library, "scenceDetectionThreshold", valueOf(options.threshold));
    setParameter(component, library, "photoNeedAnalysis", valueOf(options.photos ? 1 : 0));
    const Owned<KOR::IKORIntList> kinds(createKORIntList());
    for (const std::int32_t kind : options.kinds)
        require(kinds->append(kind), "the kinds");
    require(component.setAnalysisKinds(kinds.get()), "the kinds");
}

}  // namespace autotrim
