#include "autotrim/Session.h"

#include <cstdint>
#include <stdexcept>
#include <string>

#include "autotrim/AnalysisRun.h"
#include "autotrim/ComponentLibrary.h"
#include "autotrim/Materials.h"
#include "autotrim/Say.h"
#include "host/lists.h"
#include "host/value.h"

namespace autotrim {
namespace {

void openFiles(Materials& materials, const Options& options, const RunMonitor& monitor,
               ProgressDisplay& display) {
    for (std::size_t i = 0; i < options.files.size(); ++i) {
        const std::string& file = options.files[i];
        if (monitor.state().interrupted) {
            materials.skip(file, interruptedReason);
            continue;
        }
        display.showOpening({file, i + 1, options.files.size(), 0});
        const std::string error = materials.open(file, options.cacheRoot, monitor.interruption());
        if (error.empty() || monitor.state().interrupted) continue;
        display.clear();
        say(file, error);
    }
}

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

RunEnd run(KOR::IKorMaterialAnalysis& component, const Materials& materials, const Options& options,
           RunMonitor& monitor, ProgressDisplay& display) {
    if (monitor.state().interrupted) return RunEnd::interrupted;
    if (materials.empty()) return RunEnd::complete;
    return runToEnd(component, monitor, [&](int percent) {
        const std::size_t index = materials.reached();
        display.show({options.files[index], index + 1, options.files.size(), percent});
    });
}

/// Tells what went wrong in the run. Files that could not be opened have been named before; those
/// that an interrupt left behind are counted.
void tellTroubles(const Report& report, const Materials& materials, RunEnd end) {
    for (const auto& [file, text] : materials.warnings())
        say(file, "warning: " + text);
    for (const FileReport& file : report.files) {
        const bool opened = file.type.has_value();
        if (opened && !file.error.empty() && file.error != interruptedReason) {
            say(file.file, file.error);
        }
    }
    if (end == RunEnd::interrupted) say("interrupted");
}

}  // namespace

Report analyse(const Options& options, RunMonitor& monitor, ProgressDisplay& display) {
    const ComponentLibrary library(findComponentLibrary());
    Materials materials;
    openFiles(materials, options, monitor, display);

    const Owned<KOR::IKorMaterialAnalysis> component = library.create();
    configure(*component, library, options);
    materials.insertInto(*component);
    const RunEnd end = run(*component, materials, options, monitor, display);
    display.clear();

    Report report{options.kinds, materials.reports(*component, end, options)};
    tellTroubles(report, materials, end);
    if (!materials.allKept(report.files)) {
        say(options.cacheRoot.string(), "warning: results could not be kept in this directory");
    }
    return report;
}

}  // namespace autotrim
