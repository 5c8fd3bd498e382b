// The model's run: from task to task and material to material.

#include "tests/component/ContractModel.h"

#include <cmath>
#include <utility>

#include "fake_host/text.h"
#include "tests/component/ContractModelValues.h"

namespace fake_host {

using KOR::Status;
using KOR::statusFailed;
using KOR::statusOk;

void ContractModel::setKinds(const std::vector<std::int32_t>& list) {
    kinds.clear();
    for (const std::int32_t kind : list) {
        const bool hasList = makes(Product::intList);
        std::vector<std::int32_t> types = taskTypes(kind);
        if (!hasList || types.empty()) continue;
        if (faults.failingAppends.count(Product::intList) != 0) types.clear();
        kinds.push_back(kind);
        journal_.push_back("createMediaAnalysisTask(" + joined(types) + ")");
        if (!makes(Product::task)) continue;
        Task task;
        task.types = types;
        tasks.push_back(task);
        note(tasks.size() - 1, "addCallBack");
    }
}

Status ContractModel::start() {
    cancelled_ = false;
    materialIndex = 0;
    taskIndex = -1;
    scenes_.clear();
    keyFrames_.clear();
    best_.clear();
    records.clear();
    return step();
}

void ContractModel::stop() {
    cancelled_ = true;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        note(i, "stop");
        if (!std::exchange(tasks[i].running, false)) continue;
        if (!tasks[i].stopsSilently) event(1, 4, 0);
    }
}

void ContractModel::event(std::uint32_t category, std::uint32_t event,
                          std::optional<std::int32_t> percent) {
    if (category != 1) return;
    if (event == 1) notify(1, overallProgress(percent.value_or(0)));
    if (event == 2) step();
    if (event == 3 || event == 4) notify(event, percent ? std::to_string(*percent) : "null");
}

void ContractModel::finish(std::size_t task) {
    tasks[task].running = false;
    event(1, 2, 0);
}

bool ContractModel::finishIsDefined() const {
    return cancelled_ || taskIndex < 0 ||
           static_cast<std::size_t>(materialIndex) < materials.size();
}

std::int32_t ContractModel::photoChoice() const {
    for (const std::int32_t wanted : {1, 7}) {
        for (std::size_t i = 0; i < kinds.size(); ++i)
            if (kinds[i] == wanted) return static_cast<std::int32_t>(i);
    }
    return -1;
}

std::vector<std::string> ContractModel::takeJournal() {
    return std::exchange(journal_, {});
}

Status ContractModel::step() {
    if (cancelled_) return statusFailed;
    Status status = statusOk;
    if (taskIndex >= 0) {
        status = takeIn();
        if (!isStill(current()) && taskIndex > 0 && isLastTask()) {
            rank();
            buildRecords();
        }
    }
    advance();
    if (static_cast<std::size_t>(materialIndex) == materials.size()) {
        finishAll();
        return status;
    }
    if (cancelled_) return statusFailed;
    return startCurrent() == statusFailed ? statusFailed : status;
}

Status ContractModel::takeIn() {
    Task* const task = currentTask();
    switch (kind()) {
        case 1:
            return facesFinished(task);
        case 3:
            return keyFramesFinished(task);
        case 4:
            return scenesFinished(task);
        case 5:
            return entropyFinished(task);
        case 6:
            return bothFinished(task);
        case 7: {
            Status status = facesFinished(task);
            if (!isStill(current()) && entropyFinished(task) == statusFailed) status = statusFailed;
            logFinish("faceAndEntropyAnalysisFinished",
                      "----Finish face Detect and entropy calculate---素材idx: ");
            return status;
        }
        default:
            return statusFailed;
    }
}

void ContractModel::advance() {
    if (taskIndex < 0) {
        materialIndex = 0;
        taskIndex = 0;
    } else if (isLastTask()) {
        ++materialIndex;
        taskIndex = 0;
    } else {
        ++taskIndex;
        return;
    }
    select();
}

void ContractModel::select() {
    while (static_cast<std::size_t>(materialIndex) < materials.size()) {
        if (isStill(current())) {
            addDefaultRecord();
            const std::int32_t choice = photoNeedAnalysis == 0 ? -1 : photoChoice();
            if (choice > 0) {
                taskIndex = choice;
                return;
            }
        } else if (durationOf(current()) <= minNeedAnalysisDuartion * 10000000) {
            addDefaultRecord();
        } else if (!restore()) {
            taskIndex = 0;
            return;
        }
        ++materialIndex;
    }
}

Status ContractModel::startCurrent() {
    const std::int32_t wanted = kind();
    if (wanted < 1 || wanted > 7 || currentTask() == nullptr) return statusFailed;
    return start(static_cast<std::size_t>(taskIndex), wanted);
}

Status ContractModel::start(std::size_t task, std::int32_t kind) {
    Status status = statusOk;
    const bool explicitMode = kind == 2 || kind == 3 || kind == 4 || kind == 6;
    prepare(task, explicitMode ? 1 : 0, status);
    const bool isUnseekable = current().isSourceMedia && current().sourceTypeCode == 16;
    if (kind == 2 || kind == 5 || kind == 7 || (kind == 1 && !isUnseekable)) {
        handPositions(task, status);
    }
    if (kind == 3) handRanges(task, status);
    if (kind == 4 || kind == 6) handBlock(task, "1, 1.0, " + asText(threshold) + ", 0", status);
    if (kind == 6) handBlock(task, "9, 6, 4, 0, 4, 2, 2", status);
    if (startTask(task) == statusFailed) status = statusFailed;
    const auto [function, text] = startLine(kind);
    log(function, text + std::to_string(materialIndex) + "\n");
    return status;
}

Status ContractModel::startTask(std::size_t task) {
    note(task, "start");
    if (tasks[task].running || tasks[task].failing.count("start") != 0) return statusFailed;
    tasks[task].running = true;
    if (faults.tasksFinishInsideStart) finish(task);
    return statusOk;
}

void ContractModel::prepare(std::size_t task, std::int32_t mode, Status& status) {
    Task& prepared = tasks[task];
    const bool hasSource = current().isSourceMedia && current().hasSource;
    prepared.source = hasSource ? std::optional(currentMedia()) : std::nullopt;
    note(task, "setSource(" + (hasSource ? current().fileName : "null") + ", 0, 0)");
    if (!hasSource || prepared.failing.count("setSource") != 0) status = statusFailed;
    note(task, "setPriority(" + std::to_string(priority) + ")");
    note(task, "setParameterMode(" + std::to_string(mode) + ")");
}

void ContractModel::handPositions(std::size_t task, Status& status) {
    if (isStill(current())) return;
    if (!makes(Product::longlongList)) {
        status = statusFailed;
        return;
    }
    std::vector<std::int64_t> positions;
    for (const auto& scene : keyFrames_) {
        for (const KeyFrame& keyFrame : scene)
            positions.push_back(keyFrame.pos);
    }
    if (faults.failingAppends.count(Product::longlongList) != 0 && !positions.empty()) {
        positions.clear();
        status = statusFailed;
    }
    note(task, "setKeyFramePositions(" + joined(positions) + ")");
    if (tasks[task].failing.count("setKeyFramePositions") != 0) status = statusFailed;
}

void ContractModel::handRanges(std::size_t task, Status& status) {
    if (isStill(current())) return;
    if (!makes(Product::pointerList)) {
        status = statusFailed;
        return;
    }
    std::string ranges;
    for (const Range& scene : scenes_) {
        if (faults.failingAppends.count(Product::pointerList) != 0) {
            status = statusFailed;
            continue;
        }
        if (!ranges.empty()) ranges += " ";
        ranges += "[" + joined(std::vector{scene.begin, scene.end});
        ranges += ")";
    }
    note(task, "setSceneRanges(" + ranges + ")");
    if (tasks[task].failing.count("setSceneRanges") != 0) status = statusFailed;
}

void ContractModel::handBlock(std::size_t task, const std::string& arguments, Status& status) {
    note(task, "setParameterBlock(" + arguments + ")");
    if (tasks[task].failing.count("setParameterBlock") != 0) status = statusFailed;
}

void ContractModel::notify(std::uint32_t event, const std::string& percent) {
    for (const std::string& name : listeners) {
        std::string& line = journal_.emplace_back(name);
        line += ": event " + std::to_string(event) + ", ";
        line += percent;
        if (name != listeners.front()) continue;
        const auto act = acts.find(++listenerCalls_);
        if (act == acts.end()) continue;
        if (act->second == ListenerAct::stop) stop();
        if (act->second == ListenerAct::start) start();
    }
}

std::string ContractModel::overallProgress(std::int32_t percent) const {
    const bool inRun =
        materialIndex >= 0 && static_cast<std::size_t>(materialIndex) < materials.size();
    double all = 0;
    double before = 0;
    for (std::size_t i = 0; i < materials.size(); ++i) {
        const auto duration = static_cast<double>(durationOf(media[materials[i]]));
        all += duration;
        if (static_cast<std::int64_t>(i) < materialIndex) before += duration;
    }
    if (!inRun || all == 0 || taskIndex < 0) return "*";
    const auto p = static_cast<double>(percent);
    const auto c = static_cast<double>(durationOf(current()));
    const auto n = static_cast<double>(tasks.size());
    const double value =
        isStill(current())
            ? (p * c / all * 0.01 + before / all) * 1.0 * 100
            : (((p / n) * 0.01 + taskIndex / n) * c / all + before / all) * 1.0 * 100;
    if (!(std::abs(value) < 2147483647.0)) return "*";
    return std::to_string(static_cast<std::int32_t>(value));
}

int ContractModel::makings(Product product) const {
    const auto found = made_.find(product);
    return found == made_.end() ? 0 : found->second;
}

bool ContractModel::makes(Product product) {
    const int number = ++made_[product];
    const auto failing = faults.failingMakings.find(product);
    return failing == faults.failingMakings.end() || failing->second.count(number) == 0;
}

void ContractModel::note(std::size_t task, const std::string& call) {
    journal_.push_back("task" + std::to_string(task) + "." + call);
}

void ContractModel::log(const std::string& function, const std::string& text) {
    if (faults.loggerAbsent || faults.severityDisabled || faults.logStreamsFail) return;
    journal_.push_back("log " + function + ": \"" + visible(text) + "\"");
}

void ContractModel::logFinish(const std::string& function, const std::string& text) {
    log(function, text + std::to_string(materialIndex) + "\n");
}

std::int32_t ContractModel::kind() const {
    const auto index = static_cast<std::size_t>(taskIndex);
    return index < kinds.size() ? kinds[index] : 0;
}

ContractModel::Task* ContractModel::currentTask() {
    const auto index = static_cast<std::size_t>(taskIndex);
    if (index >= tasks.size() || tasks[index].interfaceHidden) return nullptr;
    return &tasks[index];
}

bool ContractModel::isLastTask() const {
    return static_cast<std::size_t>(taskIndex) + 1 == tasks.size();
}

}  // namespace fake_host
