#include "fake_host/FakeTask.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>
#include <utility>

#include "fake_host/FakeHost.h"
#include "fake_host/FakeLists.h"
#include "fake_host/text.h"

namespace fake_host {
namespace {

std::string rangesText(KOR::IKORVoidPtrList* list) {
    if (list == nullptr) return "null";
    std::string text;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        KOR::TickRange range{};
        std::memcpy(&range, list->at(i), sizeof range);
        if (i > 0) text += " ";
        text += "[";
        text += joined(std::vector{range.begin, range.end});
        text += ")";
    }
    return text;
}

std::string positionsText(KOR::IKORLonglongList* list) {
    if (list == nullptr) return "null";
    std::vector<std::int64_t> positions;
    for (std::int64_t i = 0; i < list->count(); ++i)
        positions.push_back(list->at(i));
    return joined(positions);
}

std::string blockText(std::int32_t type, const void* block) {
    if (block == nullptr) return "null";
    if (type == KOR::analysisTypeScene) {
        KOR::SceneParameters p{};
        std::memcpy(&p, block, sizeof p);
        return asText(p.sensitivity) + ", " + asText(p.threshold) + ", " +
               std::to_string(p.reserved);
    }
    std::vector<std::int32_t> values(6);
    std::memcpy(values.data(), block, sizeof(KOR::KeyFrameParameters));
    return joined(values);
}

struct FreeBlock {
    void operator()(void* block) const { ::operator delete(block); }
};

/// What a list of results takes over as one element.
using Block = std::unique_ptr<void, FreeBlock>;

/// Counts a start that has not returned yet, without the task, which may be gone by then.
class OpenStart {
public:
    OpenStart() {
        const int depth = ++host().startDepth;
        host().deepestStartDepth = std::max(host().deepestStartDepth.load(), depth);
        ++host().startCount;
    }
    OpenStart(const OpenStart&) = delete;
    OpenStart& operator=(const OpenStart&) = delete;
    ~OpenStart() { --host().startDepth; }
};

}  // namespace

FakeTask::FakeTask(std::vector<std::int32_t> types)
    : Counted(host().live.tasks), types_(std::move(types)), number_(host().enrol(*this)) {}

FakeTask::~FakeTask() {
    note("destruction");
    enter("destruction");
    *alive_ = false;
    host().strikeOff(number_);
}

int FakeTask::askedFor(std::int32_t kind) const {
    const auto found = asked_.find(kind);
    return found == asked_.end() ? 0 : found->second;
}

void FakeTask::progress(std::int32_t percent) {
    KOR::TaskEventPayload payload{};
    payload.progress = percent;
    send(KOR::taskEventCategory, KOR::taskEventProgress, &payload);
}

void FakeTask::finish() {
    running_ = false;
    KOR::TaskEventPayload payload{};
    send(KOR::taskEventCategory, KOR::taskEventFinished, &payload);
}

void FakeTask::fail(std::int32_t code, const std::string& reason) {
    KOR::TaskEventPayload payload{};
    payload.reasonCode = code;
    reason.copy(payload.reason, sizeof payload.reason - 1);
    const auto alive = alive_;
    send(KOR::taskEventCategory, KOR::taskEventFailed, &payload);
    if (*alive) finish();
}

void FakeTask::send(std::uint32_t category, std::uint32_t event, void* payload) {
    const auto alive = alive_;
    for (KOR::IKorCallBack* const callBack : std::vector(callBacks_)) {
        const KOR::Status status = callBack->onTaskEvent(this, category, event, payload);
        if (status != KOR::statusOk) host().complain("an event was not answered with 0");
        if (!*alive) return;
    }
}

void FakeTask::answer(const std::string& operation, KOR::Status status) {
    answers_[operation] = status;
}

void FakeTask::onCall(const std::string& operation, std::function<void()> action) {
    hooks_[operation] = std::move(action);
}

void* FakeTask::queryInterface(const char* name) {
    const std::string_view wanted = name == nullptr ? "" : name;
    if (wanted == "IDmBaseObj") return static_cast<KOR::IDmBaseObj*>(this);
    if (wanted == "IKorBaseTask") return static_cast<KOR::IKorBaseTask*>(this);
    if (wanted == "IBsMediaAnalysisTask" && !analysisInterfaceHidden_) {
        return static_cast<KOR::IBsMediaAnalysisTask*>(this);
    }
    return nullptr;
}

KOR::Status FakeTask::setTaskInfo(std::uint32_t, std::uint32_t, std::uint32_t) {
    return unexpected("setTaskInfo");
}

KOR::Status FakeTask::getTaskInfo(std::uint32_t*, std::uint32_t*, std::uint32_t*) {
    return unexpected("getTaskInfo");
}

KOR::Status FakeTask::addCallBack(KOR::IKorCallBack* callBack) {
    note("addCallBack");
    if (callBack != nullptr) callBacks_.push_back(callBack);
    return enter("addCallBack");
}

KOR::Status FakeTask::removeCallBack(KOR::IKorCallBack* callBack) {
    std::erase(callBacks_, callBack);
    return callBack == nullptr ? KOR::statusFailed : KOR::statusOk;
}

KOR::Status FakeTask::start() {
    const OpenStart open;
    note("start");
    const auto answer = answers_.find("start");
    const bool refused = answer != answers_.end() && answer->second == KOR::statusFailed;
    if (running_ || refused) return KOR::statusFailed;
    asked_.clear();
    running_ = true;
    const auto alive = alive_;
    const KOR::Status status = enter("start");
    if (*alive && running_ && host().tasksFinishInsideStart) finish();
    return status;
}

KOR::Status FakeTask::stop() {
    note("stop");
    const auto alive = alive_;
    if (running_.exchange(false) && !stopsSilently_) {
        KOR::TaskEventPayload payload{};
        send(KOR::taskEventCategory, KOR::taskEventStopped, &payload);
    }
    return *alive ? enter("stop") : KOR::statusOk;
}

KOR::Status FakeTask::setPriority(std::uint32_t priority) {
    if (host().recording) note("setPriority", {std::to_string(priority)});
    return enter("setPriority");
}

KOR::Status FakeTask::setSource(KOR::IDmMediaSource* source, std::int64_t reserved1,
                                std::int64_t reserved2) {
    source_.reset(static_cast<FakeMedia*>(source));
    if (source_ != nullptr) source_->addRef();
    if (host().recording) {
        note("setSource", {source_ == nullptr ? "null" : source_->spec.fileName,
                           std::to_string(reserved1), std::to_string(reserved2)});
    }
    return enter("setSource", source == nullptr ? KOR::statusFailed : KOR::statusOk);
}

KOR::Status FakeTask::setParameterMode(std::int32_t mode) {
    if (host().recording) note("setParameterMode", {std::to_string(mode)});
    return enter("setParameterMode");
}

KOR::Status FakeTask::setSceneRanges(KOR::IKORVoidPtrList* ranges) {
    if (host().recording) note("setSceneRanges", {rangesText(ranges)});
    return enter("setSceneRanges", ranges == nullptr ? KOR::statusFailed : KOR::statusOk);
}

KOR::Status FakeTask::setKeyFramePositions(KOR::IKORLonglongList* positions) {
    if (host().recording) note("setKeyFramePositions", {positionsText(positions)});
    return enter("setKeyFramePositions", positions == nullptr ? KOR::statusFailed : KOR::statusOk);
}

KOR::Status FakeTask::setParameterBlock(std::int32_t type, const void* block) {
    if (host().recording) {
        note("setParameterBlock", {std::to_string(type), blockText(type, block)});
    }
    return enter("setParameterBlock", block == nullptr ? KOR::statusFailed : KOR::statusOk);
}

KOR::Status FakeTask::getResultList(std::int32_t kind, std::int32_t reserved1,
                                    KOR::IKORVoidPtrList* list, std::int32_t reserved2) {
    ++asked_[kind];
    if (host().recording) {
        note("getResultList", {std::to_string(kind), std::to_string(reserved1),
                               list == nullptr ? "null" : "list", std::to_string(reserved2)});
    }
    const KOR::Status status = enter("getResultList");
    if (status != KOR::statusOk) return status;
    if (list == nullptr) return KOR::statusFailed;
    if (source_ == nullptr || std::count(types_.begin(), types_.end(), kind) == 0) {
        return KOR::statusOk;
    }
    const MediaSpec& found = source_->spec;
    switch (kind) {
        case KOR::analysisTypeScene:
            return appendCopies(found.sceneResults, *list);
        case KOR::analysisTypeBlur:
            return appendCopies(found.blurResults, *list);
        case KOR::analysisTypeFace:
            return appendCopies(found.faceResults, *list);
        case KOR::analysisTypeEntropy:
            return appendCopies(found.entropyResults, *list);
        case KOR::analysisTypeKeyFrame:
            return appendCopies(found.keyFrameResults, *list);
        default:
            return KOR::statusOk;
    }
}

template <typename Result>
KOR::Status FakeTask::appendCopies(const std::vector<Result>& results,
                                   KOR::IKORVoidPtrList& list) const {
    for (std::size_t i = 0; i < results.size(); ++i) {
        Block copy;
        if (lostElements_.count(i) == 0) {
            copy.reset(::operator new(sizeof(Result)));
            std::memcpy(copy.get(), &results[i], sizeof(Result));
        }
        if (list.append(copy.get()) == KOR::statusFailed) return KOR::statusFailed;
        copy.release();
    }
    return KOR::statusOk;
}

void FakeTask::note(const char* operation) const {
    if (!host().recording) return;
    std::string line = "task";
    line += std::to_string(number_);
    line += ".";
    line += operation;
    host().note(line);
}

void FakeTask::note(std::string operation, const std::vector<std::string>& arguments) const {
    operation += "(";
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (i > 0) operation += ", ";
        operation += arguments[i];
    }
    operation += ")";
    note(operation.c_str());
}

KOR::Status FakeTask::unexpected(const std::string& operation) const {
    host().complain("the component called " + operation);
    return KOR::statusFailed;
}

KOR::Status FakeTask::enter(const char* operation, KOR::Status otherwise) {
    const auto hook = hooks_.find(operation);
    const auto answer = answers_.find(operation);
    const KOR::Status status = answer == answers_.end() ? otherwise : answer->second;
    if (hook != hooks_.end()) {
        const std::function<void()> action = hook->second;
        action();
    }
    return status;
}

}  // namespace fake_host

KOR::IKorBaseTask* createMediaAnalysisTask(KOR::IKORIntList* types) {
    using fake_host::host;
    std::vector<std::int32_t> codes;
    for (std::int64_t i = 0; types != nullptr && i < types->count(); ++i) {
        codes.push_back(types->at(i));
    }
    if (host().recording) {
        host().note("createMediaAnalysisTask(" + fake_host::joined(codes) + ")");
    }
    if (host().nextMakingFails(fake_host::Product::task)) return nullptr;
    return new fake_host::FakeTask(std::move(codes));
}
