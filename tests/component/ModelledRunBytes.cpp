// Bytes as a description of a case: of a host, its materials and what happens in which order.

#include <algorithm>
#include <array>

#include "fake_host/FakeHost.h"
#include "fake_host/faces.h"
#include "tests/component/ModelledRun.h"
#include "tests/fuzz/ByteReader.h"

namespace fake_host {
namespace {

using fuzz::ByteReader;

constexpr std::int64_t second = KOR::ticksPerSecond;

/// Starts inside one another are told of literally to the 32nd. With so many materials and kinds at
/// most, a run and one more begun inside it stay below.
constexpr std::size_t mostMaterials = 3;
constexpr std::size_t mostKinds = 4;

std::size_t below(ByteReader& bytes, std::size_t end) {
    return bytes.take<std::uint8_t>() % end;
}

bool oneIn(ByteReader& bytes, std::size_t count) {
    return below(bytes, count) == count - 1;
}

/// From -128 to 127.
std::int32_t takeSigned(ByteReader& bytes) {
    const std::int32_t value = bytes.take<std::uint8_t>();
    return value < 128 ? value : value - 256;
}

/// Mostly within a clip of 100 seconds, and on borders that others lie on, too.
std::int64_t takePosition(ByteReader& bytes) {
    const auto value = std::int64_t{takeSigned(bytes)};
    return oneIn(bytes, 8) ? value : value * second;
}

std::int64_t takeDuration(ByteReader& bytes) {
    switch (below(bytes, 6)) {
        case 0:
            return takePosition(bytes);
        case 1:
            return 2 * second;
        case 2:
            return 2 * second + 1;
        default:
            return 100 * second;
    }
}

KOR::FaceDetectFrame takeFaces(ByteReader& bytes) {
    std::vector<KOR::KorRect> faces(below(bytes, 4));
    const auto part = [&bytes] { return takeSigned(bytes) / 64.0; };
    for (KOR::KorRect& face : faces)
        face = {part(), part(), part(), part()};
    return oneIn(bytes, 8) ? frameCounting(takeSigned(bytes) % 21, faces) : frameWith(faces);
}

void takeResults(ByteReader& bytes, MediaSpec& spec) {
    const bool inOrder = !oneIn(bytes, 3);
    spec.sceneResults.resize(below(bytes, 5));
    for (KOR::TickRange& scene : spec.sceneResults)
        scene = {takePosition(bytes), takePosition(bytes)};
    spec.keyFrameResults.resize(below(bytes, 7));
    for (std::int64_t& keyFrame : spec.keyFrameResults)
        keyFrame = takePosition(bytes);
    if (inOrder) {
        std::vector<std::int64_t> bounds;
        for (const KOR::TickRange& scene : spec.sceneResults)
            bounds.insert(bounds.end(), {scene.begin, scene.end});
        std::sort(bounds.begin(), bounds.end());
        for (std::size_t i = 0; i < spec.sceneResults.size(); ++i)
            spec.sceneResults[i] = {bounds[2 * i], bounds[2 * i + 1]};
        std::sort(spec.keyFrameResults.begin(), spec.keyFrameResults.end());
    }
    for (std::size_t i = below(bytes, 5); i > 0; --i)
        spec.faceResults.push_back(takeFaces(bytes));
    spec.entropyResults.resize(below(bytes, 5));
    for (KOR::EntropySample& sample : spec.entropyResults)
        sample = {takePosition(bytes), takeSigned(bytes) / 16.0};
}

/// A file that a component with these kinds takes as its own, most of the time.
ContractModel::ResultFile takeFile(ByteReader& bytes, const std::string& kinds) {
    ContractModel::ResultFile file{true, "1.0.0.1", kinds, 2, 3.0, {}};
    constexpr std::array thresholds = {2.9985, 2.9991, 3.0009, 3.0011, 3.0015, 4.0};
    switch (below(bytes, 16)) {
        case 0:
            file.parses = false;
            break;
        case 1:
            file.version.reset();
            break;
        case 2:
            file.version = "1.0.0.2";
            break;
        case 3:
            file.kinds.reset();
            break;
        case 4:
            file.minScenceDuration.reset();
            break;
        case 5:
            file.minScenceDuration = takeSigned(bytes);
            break;
        case 6:
            file.threshold.reset();
            break;
        case 7:
            file.threshold = thresholds[below(bytes, thresholds.size())];
            break;
        case 8:
            return file;
        case 9:
            file.kinds = "3,4";
            break;
        default:
            break;
    }
    file.records.emplace();
    const auto number = [&bytes] { return std::int64_t{takeSigned(bytes)}; };
    for (std::size_t i = below(bytes, 3); i > 0; --i) {
        const double score = static_cast<double>(number()) / 8;
        const auto part = [&] { return static_cast<double>(number()) / 4; };
        file.records->push_back(
            {score, number(), number(), number(), 0, {part(), part(), part(), part()}});
    }
    return file;
}

ContractModel::Place takePlace(ByteReader& bytes, const std::string& kinds) {
    ContractModel::Place place;
    switch (below(bytes, 8)) {
        case 0:
            place.hasFileInstead = true;
            break;
        case 1:
            place.hasDirectory = place.fileIsDirectory = true;
            break;
        case 2:
        case 3:
        case 4:
            place.hasDirectory = true;
            place.file = takeFile(bytes, kinds);
            break;
        default:
            break;
    }
    return place;
}

void takeMedia(ByteReader& bytes, ContractModel& model, const std::string& kinds) {
    const std::size_t count = below(bytes, mostMaterials + 1);
    for (std::size_t i = 0; i < count; ++i) {
        constexpr std::array<std::uint32_t, 8> types = {8, 8, 8, 2, 0x40000, 4, 4, 0};
        MediaSpec spec = video("m" + std::to_string(i), takeDuration(bytes));
        spec.mediaType = types[below(bytes, types.size())];
        spec.mediaLengthTicks = oneIn(bytes, 3) ? takePosition(bytes) : 0;
        spec.sourceTypeCode = oneIn(bytes, 6) ? KOR::sourceTypeUnseekable : 0;
        const std::size_t kept = below(bytes, 6);
        if (kept < 3) {
            // The last of them shares the cache of the first.
            const std::string name = kept == 2 ? "0" : std::to_string(i);
            spec.mediaCache = (host().directory() / name).string();
            if (model.places.count(spec.mediaCache) == 0) {
                model.places[spec.mediaCache] = takePlace(bytes, kinds);
            }
        }
        spec.isSourceMedia = !oneIn(bytes, 12);
        spec.hasSource = !oneIn(bytes, 12);
        takeResults(bytes, spec);
        model.media.push_back(spec);
        model.materials.push_back(oneIn(bytes, 10) ? below(bytes, i + 1) : i);
    }
}

void takeFaults(ByteReader& bytes, HostFaults& faults) {
    faults.tasksFinishInsideStart = oneIn(bytes, 5);
    if (!oneIn(bytes, 3)) return;
    constexpr std::array products = {Product::intList, Product::longlongList, Product::pointerList,
                                     Product::owningList, Product::task};
    for (std::size_t i = below(bytes, 4); i > 0; --i) {
        const Product product = products[below(bytes, products.size())];
        faults.failingMakings[product].insert(static_cast<int>(below(bytes, 16)) + 1);
    }
    if (oneIn(bytes, 4)) faults.failingAppends.insert(products[below(bytes, 4)]);
    faults.loggerAbsent = oneIn(bytes, 8);
    faults.severityDisabled = oneIn(bytes, 8);
    faults.logStreamsFail = oneIn(bytes, 8);
    faults.directoriesFail = oneIn(bytes, 4);
    faults.removalsFail = oneIn(bytes, 4);
}

std::vector<std::int32_t> takeKinds(ByteReader& bytes) {
    constexpr std::array<std::array<std::int32_t, mostKinds>, 6> usual = {
        {{4, 3, 1, 5}, {4, 3, 0, 0}, {6, 7, 0, 0}, {4, 1, 0, 0}, {6, 2, 0, 0}, {3, 4, 5, 7}}};
    const std::size_t choice = below(bytes, usual.size() * 2);
    if (choice < usual.size()) return {usual[choice].begin(), usual[choice].end()};
    std::vector<std::int32_t> kinds(below(bytes, mostKinds + 1));
    for (std::int32_t& kind : kinds)
        kind = static_cast<std::int32_t>(below(bytes, 10)) - 1;
    return kinds;
}

/// The kinds that tasks are made of, as a result file names them.
std::string fileText(const std::vector<std::int32_t>& kinds) {
    std::string text;
    for (const std::int32_t kind : kinds) {
        if (kind < 1 || kind > 7) continue;
        text += (text.empty() ? "" : ",") + std::to_string(kind);
    }
    return text;
}

void takeTaskFaults(ByteReader& bytes, ModelledRun& run) {
    constexpr std::array operations = {"setSource",
                                       "setPriority",
                                       "setParameterMode",
                                       "setSceneRanges",
                                       "setKeyFramePositions",
                                       "setParameterBlock",
                                       "getResultList",
                                       "start"};
    for (std::size_t i = 0; i < run.model.tasks.size(); ++i) {
        if (!oneIn(bytes, 4)) continue;
        ContractModel::Task& task = run.model.tasks[i];
        if (oneIn(bytes, 2)) task.failing.insert(operations[below(bytes, operations.size())]);
        if (oneIn(bytes, 3)) task.lostElements.insert(below(bytes, 4));
        task.interfaceHidden = oneIn(bytes, 10);
        task.stopsSilently = oneIn(bytes, 3);
        run.adaptTask(i);
    }
}

void takeParameter(ByteReader& bytes, ModelledRun& run) {
    const std::int32_t value = takeSigned(bytes);
    switch (below(bytes, 5)) {
        case 0:
            run.setParam("minScenceDuration", value);
            break;
        case 1:
            run.setParam("minNeedAnalysisDuartion", value);
            break;
        case 2:
            run.setParam("photoNeedAnalysis", value);
            break;
        case 3:
            run.setThreshold(value / 8.0);
            break;
        default:
            run.setPriority(static_cast<std::uint32_t>(value));
            break;
    }
}

void takeEvent(ByteReader& bytes, ModelledRun& run) {
    if (run.model.tasks.empty()) return;
    const std::size_t task = below(bytes, run.model.tasks.size());
    const std::uint32_t category = oneIn(bytes, 8) ? bytes.take<std::uint8_t>() : 1;
    const auto event = static_cast<std::uint32_t>(below(bytes, 7));
    const bool hasPayload = event == 1 || !oneIn(bytes, 3);
    run.send(task, category, event, hasPayload, takeSigned(bytes));
}

void takeStep(ByteReader& bytes, ModelledRun& run) {
    const std::size_t running = run.runningTask();
    const bool hasRunning = running < run.model.tasks.size();
    switch (below(bytes, 12)) {
        case 0:
            return run.start();
        case 1:
            return run.stop();
        case 2:
        case 3:
            return takeEvent(bytes, run);
        case 4:
            return takeParameter(bytes, run);
        case 5:
            if (hasRunning) run.send(running, 1, 1, true, static_cast<int>(below(bytes, 101)));
            return;
        default:
            if (hasRunning) run.finish(running);
            return;
    }
}

void takeListeners(ByteReader& bytes, ContractModel& model) {
    model.listeners = {"first", "second"};
    model.listeners.resize(below(bytes, 8) == 0 ? 0 : 2);
    if (!oneIn(bytes, 3)) return;
    // A start in a list of nested starts doubles it, so there is one at most.
    model.acts[static_cast<int>(below(bytes, 12)) + 1] = ListenerAct::stop;
    model.acts[static_cast<int>(below(bytes, 12)) + 1] = ListenerAct::start;
}

}  // namespace

std::string differenceInRun(const std::uint8_t* data, std::size_t size) {
    ByteReader bytes(data, size);
    ModelledRun run;
    takeFaults(bytes, run.model.faults);
    const std::vector<std::int32_t> kinds = takeKinds(bytes);
    takeMedia(bytes, run.model, fileText(kinds));
    takeListeners(bytes, run.model);
    run.prepare();
    for (std::size_t i = below(bytes, 4); i > 0; --i)
        takeParameter(bytes, run);
    run.setKinds(kinds);
    if (oneIn(bytes, 12)) run.setKinds(takeKinds(bytes));
    takeTaskFaults(bytes, run);
    if (!oneIn(bytes, 16)) run.start();
    for (int i = 0; i < 60 && bytes.size() > 0; ++i)
        takeStep(bytes, run);
    run.finishAll();
    if (oneIn(bytes, 2)) {
        run.start();
        run.finishAll();
    }
    run.end();
    return run.difference();
}

}  // namespace fake_host
