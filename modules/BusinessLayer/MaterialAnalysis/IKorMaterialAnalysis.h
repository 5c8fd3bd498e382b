#pragma once

#include <cstddef>
#include <cstdint>

#include "host/geometry.h"
#include "host/lists.h"
#include "host/media.h"
#include "host/status.h"
#include "host/tasks.h"
#include "host/value.h"

namespace KOR {

// "Scence" and "Duartion" are spelled so in every name, key and log text that hosts match.

/// Kinds of analysis, as listed in setAnalysisKinds.
enum AnalysisKind : std::int32_t {
    analysisKindFace = 1,
    analysisKindBlur = 2,
    analysisKindKeyFrame = 3,
    analysisKindScence = 4,
    analysisKindEntropy = 5,
    analysisKindScenceAndKeyFrame = 6,
    analysisKindFaceAndEntropy = 7,
};

/// Names of the parameters of setAnalysisParam. A change takes effect where the parameter is read
/// next: at the next material, or at the next task's start. No value is clamped or refused.
namespace analysisParamKey {

/// "minScenceDuration", int32, whole seconds, default 2: a shorter scene is dropped.
extern const char* const minScenceDuration;

/// "scenceDetectionThreshold", double, default 3.0: see SceneParameters::threshold.
extern const char* const scenceDetectionThreshold;

/// "minNeedAnalysisDuartion", int32, whole seconds, default 2: a video not longer than this is not
/// analysed and gets a default record.
extern const char* const minNeedAnalysisDuartion;

/// "photoNeedAnalysis", int32, default 0: whether photos are analysed for faces. A photo then runs
/// the first face kind listed, or else the first face-and-entropy kind, and every kind listed
/// behind it. With that kind as the very first one a photo would be selected for ever: list another
/// before.
extern const char* const photoNeedAnalysis;

}  // namespace analysisParamKey

/// One candidate segment of a material: a scene of a video, or the whole of a photo or short video.
struct MaterialAnalysisResult {
    double score;                ///< of the best keyframe; 1.0 in a default record
    std::int64_t begin;          ///< ticks, included
    std::int64_t end;            ///< ticks, excluded
    std::int64_t posOfMaxScore;  ///< ticks: position of the best keyframe
    IDmBaseMedia* media;         ///< the material, with a reference
    KorRect faceRectOfPhoto;     ///< of an analysed photo: its first face; otherwise all zero
};

static_assert(sizeof(MaterialAnalysisResult) == 72, "the size is part of the contract");

/// Analyses materials one after another by driving the host's tasks, and keeps the auto-trim
/// results.
///
/// Every operation returns statusOk or statusFailed; a null pointer gives statusFailed, save in
/// addCallBack. queryInterface knows "IKorMaterialAnalysis" and "IDmBaseObj" only.
///
/// As a task (IKorBaseTask), its run goes over all materials: start() begins with the first one and
/// forgets the results before; its listeners are told of progress over the whole run (event 1, in a
/// block of the sender's), of the run's end (event 2, progress 100), and of its tasks' events 3 and
/// 4 as they are. pause and resume are not supported, and getState is always 0.
///
/// stop() cancels the run. The task that runs is stopped and says so (event 4), and no event 2
/// comes, with two exceptions that a host has to know: a run that is just ending may still send its
/// event 2, and a run that is just between two tasks ends without any event. In that moment stop()
/// can also miss the task that is being started: call it again.
///
/// Threads: the component owns none and takes no lock. It works on the thread that calls start and
/// on those on which its tasks report. While a run is on, only stop, addRef, refCount, and a
/// release that is not the last one may be called from elsewhere. Everything else, the last release
/// included, belongs inside a notification, between runs, or after stop has returned. A listener
/// may, inside a notification, do all that IKorCallBack allows. The last release may also come from
/// another thread right after the last listener was told of event 2, while that notification is
/// still returning. It does not stop a running task.
class IKorMaterialAnalysis : public virtual IKorBaseTask {
public:
    /// 0. Makes one host task for each AnalysisKind listed, in that order; others are ignored.
    /// Tasks of an earlier call stay in front, so call it once. The list stays the caller's.
    virtual Status setAnalysisKinds(IKORIntList* kinds) = 0;

    /// 1. Stores an option. Nothing reads it. Always statusOk.
    virtual Status setIntOption(std::int32_t key, std::int32_t value) = 0;

    /// 2. Inserts the materials of `list`, whose elements are `IDmBaseObj*`, taking a reference on
    /// each. Element i goes to index `position + i`, or as near to it as the list allows; one that
    /// is no "IDmBaseMedia" is passed over. The list stays the caller's.
    virtual Status insertMaterials(IKORVoidPtrList* list, std::int32_t position) = 0;

    /// 3. Removes materials. `list` is aligned with the material list: its element k is compared
    /// with material k. Each pass (there are as many as the list has elements) removes material k
    /// where they are the same object and goes on with k + 1; the list is asked for every index
    /// below the number of materials.
    virtual Status removeMaterials(IKORVoidPtrList* list) = 0;

    /// 4. Removes the material at `index`; statusFailed when there is none.
    virtual Status removeMaterialAt(std::int32_t index) = 0;

    /// 5. Removes all materials and all results.
    virtual Status clearMaterials() = 0;

    /// 6. Appends a copy of every MaterialAnalysisResult, in the order in which they were produced.
    ///
    /// Pass a list of createKORAutoVoidPtrList: it frees the copies (with another list the caller
    /// does, each by `::operator delete`). Each copy leaves two references on its `media`, which
    /// the caller gives back when it is done with it.
    virtual Status getResults(IKORVoidPtrList* list) = 0;

    /// 7. Sets the parameter called `key` (analysisParamKey) from the payload of `value`, whose
    /// type is not looked at. An unknown key gives statusFailed and changes nothing.
    virtual Status setAnalysisParam(const char* key, const KorValue* value) = 0;

protected:
    ~IKorMaterialAnalysis() = default;
};

}  // namespace KOR

extern "C" {

/// Makes a component with one reference, which the caller ends with release(). Never null: when
/// memory runs out, std::bad_alloc leaves the call.
KOR::IKorMaterialAnalysis* createMaterialAnalysis();
}
