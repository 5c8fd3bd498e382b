#include "tests/component/ModelledRun.h"

#include <bit>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "fake_host/FakeHost.h"
#include "fake_host/FakeLists.h"
#include "fake_host/FakeTask.h"
#include "fake_host/text.h"
#include "host/lists.h"
#include "tests/support/ComponentProbe.h"

namespace fake_host {
namespace {

std::string quoted(const std::optional<std::string>& text) {
    return "\"" + *text + "\"";
}

std::string recordText(const ContractModel::Record& record) {
    const KOR::KorRect& face = record.face;
    std::ostringstream text;
    text << "{\"score\": " << asText(record.score) << ", \"begin\": " << record.begin
         << ", \"end\": " << record.end << ", \"posOfMaxScore\": " << record.posOfMaxScore
         << ", \"faceRectOfPhoto\": \"" << std::fixed << face.x << "," << face.y << ","
         << face.width << "," << face.height << "\"}";
    return text.str();
}

std::string fileText(const ContractModel::ResultFile& file) {
    std::string members;
    const auto add = [&members](const char* key, const std::string& value) {
        members += (members.empty() ? "\"" : ", \"") + std::string(key) + "\": " + value;
    };
    if (file.version) add("version", quoted(file.version));
    if (file.kinds) add("analysisTypes", quoted(file.kinds));
    if (file.minScenceDuration) add("minScenceDuration", std::to_string(*file.minScenceDuration));
    if (file.threshold) add("scenceDetectionThreshold", asText(*file.threshold));
    if (file.records) {
        std::string elements;
        for (const ContractModel::Record& record : *file.records) {
            elements += elements.empty() ? "" : ", ";
            elements += recordText(record);
        }
        add("result", "[" + elements + "]");
    }
    return "{" + members + (file.parses ? "}" : "");
}

/// Whether `actual` is the line that the model has; where the model has a "*", anything may stand.
bool matches(const std::string& expected, const std::string& actual) {
    const std::size_t star = expected.find('*');
    return star == std::string::npos ? expected == actual
                                     : actual.compare(0, star, expected, 0, star) == 0;
}

std::string firstDifference(const std::vector<std::string>& expected,
                            const std::vector<std::string>& actual) {
    for (std::size_t i = 0; i < expected.size() || i < actual.size(); ++i) {
        const std::string wanted = i < expected.size() ? expected[i] : "nothing";
        const std::string got = i < actual.size() ? actual[i] : "nothing";
        if (i >= expected.size() || i >= actual.size() || !matches(wanted, got)) {
            return "line " + std::to_string(i) + "\n  model:     " + wanted +
                   "\n  component: " + got;
        }
    }
    return "";
}

bool isSame(double one, double other) {
    return std::bit_cast<std::uint64_t>(one) == std::bit_cast<std::uint64_t>(other);
}

bool isSame(const KOR::KorRect& one, const KOR::KorRect& other) {
    return isSame(one.x, other.x) && isSame(one.y, other.y) && isSame(one.width, other.width) &&
           isSame(one.height, other.height);
}

}  // namespace

ModelledRun::ModelledRun() {
    host().reset();
    component_.reset(createMaterialAnalysis());
}

ModelledRun::~ModelledRun() {
    component_.reset();
    media_.clear();
    host().reset();
}

void ModelledRun::prepare() {
    makeMedia();
    makeFiles();
    const Owned<KOR::IKORVoidPtrList> list(createKORVoidPtrList());
    for (const std::size_t material : model.materials)
        list->append(asElement(*media_[material]));
    component().insertMaterials(list.get(), 0);

    listeners_.reserve(model.listeners.size());
    for (const std::string& name : model.listeners)
        component().addCallBack(&listeners_.emplace_back(name));
    if (!listeners_.empty()) {
        listeners_.front().onEvent = [this](std::uint32_t) {
            const auto act = model.acts.find(++listenerCalls_);
            if (act == model.acts.end()) return;
            if (act->second == ListenerAct::stop) component().stop();
            if (act->second == ListenerAct::start) component().start();
        };
    }
    breakHost();
}

void ModelledRun::breakHost() {
    const HostFaults& faults = model.faults;
    for (const auto& [product, numbers] : faults.failingMakings) {
        for (const int number : numbers)
            host().faults.failMaking(product, number);
    }
    for (const Product product : faults.failingAppends)
        host().faults.failAppends(product);
    host().faults.loggerAbsent = faults.loggerAbsent;
    host().faults.severityDisabled = faults.severityDisabled;
    host().faults.logStreamsFail = faults.logStreamsFail;
    host().faults.directoriesFail = faults.directoriesFail;
    host().faults.removalsFail = faults.removalsFail;
    host().tasksFinishInsideStart = faults.tasksFinishInsideStart;
}

void ModelledRun::makeMedia() {
    for (const MediaSpec& spec : model.media)
        media_.emplace_back(new FakeMedia(spec));
}

void ModelledRun::makeFiles() {
    for (const auto& [cache, place] : model.places) {
        const std::filesystem::path directory = std::filesystem::path(cache) / "analysis";
        std::filesystem::create_directories(cache);
        if (place.hasFileInstead) std::ofstream(directory) << "in the way";
        if (place.hasDirectory) std::filesystem::create_directory(directory);
        if (place.fileIsDirectory) std::filesystem::create_directory(directory / "result.json");
        if (place.file) std::ofstream(directory / "result.json") << fileText(*place.file);
    }
}

void ModelledRun::setKinds(const std::vector<std::int32_t>& kinds) {
    // Made past the host's factory, as a list that cannot fail: the component alone has the faults.
    const Owned<KOR::IKORIntList> list(new FakeList<std::int32_t>(Product::task));
    for (const std::int32_t kind : kinds)
        list->append(kind);
    component().setAnalysisKinds(list.get());
    model.setKinds(kinds);
    keepOffEndlessPhotos();
    compare("setAnalysisKinds");
}

void ModelledRun::keepOffEndlessPhotos() {
    if (model.photoChoice() == 0 && model.photoNeedAnalysis != 0) setParam("photoNeedAnalysis", 0);
}

void ModelledRun::setParam(const char* key, std::int32_t value) {
    KOR::KorValue holder{};
    holder.asInt32 = value;
    component().setAnalysisParam(key, &holder);
    const std::string name = key;
    if (name == "minScenceDuration") model.minScenceDuration = value;
    if (name == "minNeedAnalysisDuartion") model.minNeedAnalysisDuartion = value;
    if (name == "photoNeedAnalysis") model.photoNeedAnalysis = value;
    keepOffEndlessPhotos();
}

void ModelledRun::setThreshold(double value) {
    KOR::KorValue holder{};
    holder.asReal = value;
    component().setAnalysisParam("scenceDetectionThreshold", &holder);
    model.threshold = value;
}

void ModelledRun::setPriority(std::uint32_t priority) {
    component().setPriority(priority);
    model.priority = priority;
}

void ModelledRun::adaptTask(std::size_t task) {
    const ContractModel::Task& changed = model.tasks.at(task);
    FakeTask& real = host().task(task);
    for (const std::string& operation : changed.failing)
        real.answer(operation, KOR::statusFailed);
    for (const std::size_t element : changed.lostElements)
        real.loseElement(element);
    if (changed.interfaceHidden) real.hideAnalysisInterface();
    if (changed.stopsSilently) real.stopSilently();
}

void ModelledRun::start() {
    const KOR::Status status = component().start();
    const KOR::Status expected = model.start();
    if (status != expected) {
        fail("start: model " + std::to_string(expected) + ", component " + std::to_string(status));
    }
    compare("start");
}

void ModelledRun::stop() {
    if (component().stop() != KOR::statusOk) fail("stop did not return 0");
    model.stop();
    compare("stop");
}

void ModelledRun::finish(std::size_t task) {
    if (!model.finishIsDefined()) return;
    host().task(task).finish();
    model.finish(task);
    compare("finish of task " + std::to_string(task));
}

void ModelledRun::send(std::size_t task, std::uint32_t category, std::uint32_t event,
                       bool hasPayload, std::int32_t percent) {
    if (category == 1 && event == 2 && !model.finishIsDefined()) return;
    KOR::TaskEventPayload payload{};
    payload.progress = percent;
    host().task(task).send(category, event, hasPayload ? &payload : nullptr);
    model.event(category, event, hasPayload ? std::optional(percent) : std::nullopt);
    compare("event " + std::to_string(category) + ", " + std::to_string(event));
}

std::size_t ModelledRun::runningTask() const {
    std::size_t task = 0;
    while (task < model.tasks.size() && !model.tasks[task].running)
        ++task;
    return task;
}

void ModelledRun::finishAll() {
    // Far more than the tasks of a case; a run that begins itself again has no end.
    constexpr int mostFinishes = 100;
    for (int i = 0; i < mostFinishes && runningTask() < model.tasks.size(); ++i) {
        if (!model.finishIsDefined()) return;
        finish(runningTask());
    }
}

void ModelledRun::heal() {
    model.faults = HostFaults();
    host().faults = Faults();
    breakHost();
}

void ModelledRun::end() {
    component_.reset();
    for (const Owned<FakeMedia>& material : media_) {
        if (material->refCount() != 1) fail(material->spec.fileName + " is still referenced");
    }
    media_.clear();
    const LiveObjects& live = host().live;
    if (live.media != 0 || live.tasks != 0 || live.lists != 0 || live.logStreams != 0) {
        fail("objects of the host are left");
    }
    for (const std::string& complaint : host().complaints())
        fail("the host complains: " + complaint);
}

void ModelledRun::compare(const std::string& after) {
    const std::string apart = firstDifference(model.takeJournal(), host().takeJournal());
    if (!apart.empty()) fail("journal after " + after + ", " + apart);
    const KOR::ComponentProbe probe(component());
    if (probe.currentMaterialIndex() != model.materialIndex ||
        probe.currentTaskIndex() != model.taskIndex) {
        fail("position after " + after);
    }
    for (std::size_t i = 0; i < model.tasks.size(); ++i) {
        if (host().task(i).running() != model.tasks[i].running) {
            fail("whether task " + std::to_string(i) + " runs after " + after);
        }
    }
    compareRecords(after);
}

void ModelledRun::compareRecords(const std::string& after) {
    const auto records = KOR::ComponentProbe(component()).results();
    if (records.size() != model.records.size()) {
        fail("number of records after " + after);
        return;
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        const KOR::MaterialAnalysisResult& one = records[i];
        const ContractModel::Record& other = model.records[i];
        if (!isSame(one.score, other.score) || one.begin != other.begin || one.end != other.end ||
            one.posOfMaxScore != other.posOfMaxScore || one.media != media_[other.media].get() ||
            !isSame(one.faceRectOfPhoto, other.face)) {
            fail("record " + std::to_string(i) + " after " + after);
        }
    }
}

void ModelledRun::fail(const std::string& what) {
    if (difference_.empty()) difference_ = what;
}

}  // namespace fake_host
