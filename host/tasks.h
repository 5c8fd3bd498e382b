#pragma once

#include <cstddef>
#include <cstdint>

#include "host/IDmBaseObj.h"
#include "host/lists.h"
#include "host/media.h"
#include "host/results.h"
#include "host/status.h"

namespace KOR {

/// The only category of events that tasks and the component send.
constexpr std::uint32_t taskEventCategory = 1;

/// What an event says. A task's run sends any number of `progress`, then exactly one of
/// `finished` (alone, or after `failed`) and `stopped`, which is the last event of that run.
enum TaskEvent : std::uint32_t {
    /// The payload's `progress` is how far the task is.
    taskEventProgress = 1,
    /// The task has come to its end, well or not, and all its results are complete.
    taskEventFinished = 2,
    /// The task failed; `reason` in the payload says why. `finished` still follows, so that a run
    /// over many materials always ends.
    taskEventFailed = 3,
    /// The task was stopped before its end. No `finished` follows.
    taskEventStopped = 4,
};

/// What an event carries. Owned by the sender and valid during the call only.
struct TaskEventPayload {
    std::int32_t progress;    ///< percent, 0 to 100
    std::int32_t reasonCode;  ///< of a failed task, the host's own; otherwise 0
    char reason[2128];        ///< of a failed task: UTF-8, zero-terminated; otherwise empty
};

static_assert(sizeof(TaskEventPayload) == 2136, "the size is part of the contract");
static_assert(offsetof(TaskEventPayload, progress) == 0, "the percentage comes first");

/// Listens to a task.
class IKorCallBack {
public:
    /// 0.
    virtual ~IKorCallBack() = default;

    /// 1. Does nothing; kept for its slot. Returns 0.
    virtual Status onReserved() = 0;

    /// 2. Is told of an event.
    ///
    /// `sender` is the task, without a reference; `category` is taskEventCategory, and events of
    /// another category are to be ignored; `event` is a TaskEvent, and unknown ones are to be
    /// ignored; `payload` is a TaskEventPayload or null. Comes on whatever thread the task reports
    /// on, never two at a time from one task. The listener may, in here, start or stop tasks, take
    /// itself or others off, and give back the last reference on the sender. Returns 0; senders
    /// ignore it.
    virtual Status onTaskEvent(IDmBaseObj* sender, std::uint32_t category, std::uint32_t event,
                               void* payload) = 0;
};

/// A piece of work that runs by itself and reports to listeners.
///
/// Life: made by a factory, prepared, started; it reports until its last event, and may then be
/// prepared and started again, also from inside that last event. Setters are called between runs
/// only. What a task needs of the outside it copies, or takes its own hold on, when it is told, so
/// that nothing that the caller owns is touched after an operation has returned, the listeners
/// aside. Giving back the last reference on a running task ends its run without a further event;
/// from another thread it returns when no event can still come.
class IKorBaseTask : public virtual IDmBaseObj {
public:
    /// 0. Returns the code of the kind of task; the component is itself a task, of type 10.
    virtual std::uint32_t getTaskType() = 0;

    /// 1. Stores three values that mean something to their owner only.
    virtual Status setTaskInfo(std::uint32_t first, std::uint32_t second, std::uint32_t third) = 0;

    /// 2. Gives them back. With a null among the pointers: statusFailed, and nothing is written.
    virtual Status getTaskInfo(std::uint32_t* first, std::uint32_t* second,
                               std::uint32_t* third) = 0;

    /// 3. Returns the name set last, zero-terminated and never null, valid until it is set again.
    virtual const char* getTaskName() = 0;

    /// 4. Copies `name`. Null gives statusFailed.
    virtual Status setTaskName(const char* name) = 0;

    /// 5. Adds a listener at the end of those told of every event; null is ignored. Not owned: it
    /// outlives the task or is removed before. A listener added twice is told twice; one added
    /// during an event hears from the next event on.
    virtual Status addCallBack(IKorCallBack* callBack) = 0;

    /// 6. Removes every entry of a listener, also during an event, from which moment on it is not
    /// called any more. Null gives statusFailed.
    virtual Status removeCallBack(IKorCallBack* callBack) = 0;

    /// 7. Starts a run. The task may report, even finish, before this returns, on this thread or
    /// another; and its last reference may be given back in such a report. statusFailed when no run
    /// was started, as when one is on already: no event comes then.
    virtual Status start() = 0;

    /// 8. Pauses the run, where the task can; otherwise statusFailed without effect.
    virtual Status pause() = 0;

    /// 9. Goes on with a paused run, where the task can; otherwise statusFailed without effect.
    virtual Status resume() = 0;

    /// 10. Stops the run. May be called from any thread, and also when nothing runs.
    ///
    /// When it returns, no event of this run can still come; a running task has sent
    /// taskEventStopped as its last. Called from inside one of the task's own events it does not
    /// wait for that event, and no other of this run follows it but taskEventStopped, which may
    /// come as late as after the event: a run started in there comes behind it.
    virtual Status stop() = 0;

    /// 11. Returns the task's state; its values are the task's own.
    virtual std::uint32_t getState() = 0;

    /// 12. Sets the priority of the runs to come, 0 to 100, where 100 is an ordinary foreground
    /// task. It is a wish.
    virtual Status setPriority(std::uint32_t priority) = 0;

    /// 13. Returns it.
    virtual std::uint32_t getPriority() = 0;

protected:
    ~IKorBaseTask() = default;
};

/// What an analysis task is asked to compute, and at the same time the kind of a parameter block
/// and of a result list.
enum MediaAnalysisType : std::int32_t {
    analysisTypeScene = 1,
    analysisTypeBlur = 2,
    analysisTypeFace = 3,
    analysisTypeEntropy = 8,
    analysisTypeKeyFrame = 9,
};

/// How scenes are to be found (block of analysisTypeScene).
struct SceneParameters {
    /// Divides the threshold; above 0. 1.0, which is also the default, takes it as it stands.
    double sensitivity;
    /// The ratio by which a frame's change must stand out from that of its neighbours to begin a
    /// scene; above 0, a lower one finds more scenes. Default 3.0.
    double threshold;
    /// 0.
    std::int64_t reserved;
};

/// How keyframes are to be chosen (block of analysisTypeKeyFrame).
struct KeyFrameParameters {
    std::int32_t maxPerScene;            ///< no scene gets more; at least 1. Default 6.
    std::int32_t secondsPerKeyFrame;     ///< one for each started stretch this long. Default 4.
    std::int32_t reserved;               ///< 0.
    std::int32_t candidatesPerKeyFrame;  ///< frames compared for each one chosen. Default 4.
    std::int32_t marginFramesBegin;      ///< frames kept clear after a scene's begin. Default 2.
    std::int32_t marginFramesEnd;        ///< frames kept clear before a scene's end. Default 2.
};

static_assert(sizeof(SceneParameters) == 24, "the size is part of the contract");
static_assert(sizeof(KeyFrameParameters) == 24, "the size is part of the contract");

/// How a task is told whether its parameter blocks count (IBsMediaAnalysisTask::setParameterMode).
enum ParameterMode : std::int32_t {
    /// Every type runs with its defaults, whatever block was set.
    parameterModeDefault = 0,
    /// Each type runs with the block set for it, or with its defaults where none was.
    parameterModeExplicit = 1,
};

/// A task that analyses one source; obtained by the name "IBsMediaAnalysisTask".
///
/// A run is prepared in this order: the source, the mode, then the lists and blocks that the types
/// of the task call for. The same task runs for one source after another.
class IBsMediaAnalysisTask : public virtual IKorBaseTask {
public:
    /// 0. Sets the source of the next run and forgets what belonged to the one before: its lists,
    /// blocks, mode and results. The two further arguments are 0. The task takes its own hold on
    /// what it will read: the source is only sure to live during this call, since its material may
    /// be removed while the run is on. statusFailed, also for null: the task has no source, and a
    /// run of it fails with taskEventFailed and still finishes.
    virtual Status setSource(IDmMediaSource* source, std::int64_t reserved1,
                             std::int64_t reserved2) = 0;

    virtual Status reserved1() = 0;  ///< 1. Not called.
    virtual Status reserved2() = 0;  ///< 2. Not called.
    virtual Status reserved3() = 0;  ///< 3. Not called.

    /// 4. Says whether parameter blocks count: a ParameterMode, parameterModeDefault until it is
    /// set.
    virtual Status setParameterMode(std::int32_t mode) = 0;

    virtual Status reserved5() = 0;  ///< 5. Not called.
    virtual Status reserved6() = 0;  ///< 6. Not called.

    /// 7. Sets the scenes in which keyframes are to be looked for: each element points to a
    /// TickRange. Both the list and the ranges stay the caller's and are copied before this
    /// returns. An empty list, or none, means one scene from 0 to the duration. Null gives
    /// statusFailed. A task that finds the scenes itself does not need them.
    virtual Status setSceneRanges(IKORVoidPtrList* ranges) = 0;

    virtual Status reserved8() = 0;   ///< 8. Not called.
    virtual Status reserved9() = 0;   ///< 9. Not called.
    virtual Status reserved10() = 0;  ///< 10. Not called.

    /// 11. Sets the positions, in ticks, that are to be analysed (faces, blur, entropy), and so the
    /// order of their results. Copied before this returns; may be empty. Null gives statusFailed. A
    /// still source is handed none and is analysed as the one picture that it is.
    virtual Status setKeyFramePositions(IKORLonglongList* positions) = 0;

    virtual Status reserved12() = 0;  ///< 12. Not called.
    virtual Status reserved13() = 0;  ///< 13. Not called.

    /// 14. Sets the parameter block of one MediaAnalysisType (SceneParameters or
    /// KeyFrameParameters); copied before this returns. statusFailed for null, for a type without
    /// a block, and for values outside their range; the defaults then stay.
    virtual Status setParameterBlock(std::int32_t type, const void* block) = 0;

    virtual Status reserved15() = 0;  ///< 15. Not called.
    virtual Status reserved16() = 0;  ///< 16. Not called.

    /// 17. Appends the results of one kind (a MediaAnalysisType) of the run that finished last to
    /// `list`, which owns them from then on: an element is a copy in a block of its own from
    /// `::operator new`. The same run gives the same results however often it is asked, from the
    /// moment of its taskEventFinished (from inside it, too) until setSource or start. The second
    /// and fourth arguments are 0.
    ///
    /// Elements: analysisTypeScene a TickRange, the scenes ascending; analysisTypeKeyFrame an
    /// int64, the position in ticks, ascending; analysisTypeFace a FaceDetectFrame,
    /// analysisTypeEntropy an EntropySample and analysisTypeBlur a BlurSample, one for each
    /// position that was set and in that order, or a single one for a still source. A picture that
    /// cannot be looked at has an element all the same, with no face, entropy 0.0 and sharpness
    /// 0.0, so that the n-th element always belongs to the n-th position.
    ///
    /// A kind that the task does not compute, or a task that failed, gives no elements and
    /// statusOk. Null, or an element that cannot be added, gives statusFailed; what was appended
    /// until then stays in the list.
    virtual Status getResultList(std::int32_t kind, std::int32_t reserved1, IKORVoidPtrList* list,
                                 std::int32_t reserved2) = 0;

protected:
    ~IBsMediaAnalysisTask() = default;
};

}  // namespace KOR

extern "C" {

/// Makes a task that computes the listed MediaAnalysisTypes in one run. The list stays the
/// caller's. Returns it with one reference, or null. Any thread.
///
/// The component adds itself as a listener and does not take itself off: when its reference on the
/// task goes, so must the task's events. A host that holds a task itself sends none after that.
KOR::IKorBaseTask* createMediaAnalysisTask(KOR::IKORIntList* types);
}
