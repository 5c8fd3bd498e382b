#include <cstddef>

#include "host/IDmBaseObj.h"
#include "host/files.h"
#include "host/geometry.h"
#include "host/lists.h"
#include "host/logger.h"
#include "host/media.h"
#include "host/results.h"
#include "host/tasks.h"
#include "host/validation.h"
#include "host/value.h"
#include "modules/BusinessLayer/MaterialAnalysis/IKorMaterialAnalysis.h"

// All that the component and a host share, in one library: its description holds the layout of
// every type and the slot of every operation. See docs/binary-stability.md.

namespace {

/// What one side calls and the other has.
struct Functions {
    decltype(&createMaterialAnalysis) createComponent;
    decltype(&createMediaAnalysisTask) createTask;
    decltype(&createKORIntList) createIntList;
    decltype(&createKORLonglongList) createLonglongList;
    decltype(&createKORVoidPtrList) createVoidPtrList;
    decltype(&createKORAutoVoidPtrList) createAutoVoidPtrList;
    decltype(&loggerWrapper) logger;
    decltype(&kor_strlen) stringLength;
    decltype(&createValidationMaterial) createMaterial;
    decltype(&KOR::PathUtil::exists) exists;
    decltype(&KOR::PathUtil::join) join;
    decltype(&KOR::DirUtil::create) createDirectory;
    decltype(&KOR::FileUtil::remove) removeFile;
    decltype(&KOR::StringUtil::split) split;
    decltype(&KOR::width) width;
    decltype(&KOR::height) height;
    decltype(&KOR::centerPoint) centerPoint;
    decltype(&KOR::pointInRect) pointInRect;
};

/// Objects of one side that the other calls.
struct Objects {
    KOR::IDmBaseObj* object;
    KOR::IDmDestroyObserver* destroyObserver;
    KOR::IKorCallBack* callBack;
    KOR::IBsMediaAnalysisTask* task;
    KOR::IKorMaterialAnalysis* component;
    KOR::IDmBaseMedia* media;
    KOR::IDmSourceMedia* sourceMedia;
    KOR::IDmMediaSource* source;
    KOR::IDmMediaInformation* information;
    KOR::IKORIntList* intList;
    KOR::IKORLonglongList* longlongList;
    KOR::IKORVoidPtrList* voidPtrList;
    KOR::KorLoggerWrapper* logger;
    KOR::LogStream* logStream;
};

/// Plain data that crosses.
struct Data {
    KOR::KorValue value;
    KOR::KorPoint point;
    KOR::KorRect rect;
    KOR::TickRange range;
    KOR::FaceDetectFrame faces;
    KOR::EntropySample entropy;
    KOR::BlurSample blur;
    KOR::TaskEventPayload payload;
    KOR::SceneParameters sceneParameters;
    KOR::KeyFrameParameters keyFrameParameters;
    KOR::MaterialAnalysisResult result;
    KOR::TaskEvent event;
    KOR::MediaAnalysisType analysisType;
    KOR::ParameterMode parameterMode;
    KOR::AnalysisKind analysisKind;
    KOR::IBsLogger::Severity severity;
};

}  // namespace

extern "C" [[gnu::visibility("default")]] void contract(const Functions*, const Objects*,
                                                        const Data*) {}

// Where every field lies. Sizes, and what is easily got wrong, are checked beside the types; this
// is the rest, for compilers whose libraries are not compared with the description.
namespace KOR {

#define AT(type, field, bytes) static_assert(offsetof(type, field) == (bytes))

static_assert(sizeof(KorPoint) == 16);
AT(KorPoint, x, 0);
AT(KorPoint, y, 8);
static_assert(sizeof(KorRect) == 32);
AT(KorRect, x, 0);
AT(KorRect, y, 8);
AT(KorRect, width, 16);
AT(KorRect, height, 24);
static_assert(sizeof(TickRange) == 16);
AT(TickRange, begin, 0);
AT(TickRange, end, 8);
AT(FaceDetectFrame, pos, 0);
AT(EntropySample, pos, 0);
AT(EntropySample, entropy, 8);
AT(BlurSample, pos, 0);
AT(BlurSample, sharpness, 8);
AT(KorValue, type, 0);
AT(KorValue, asInt32, 8);
AT(KorValue, asReal, 8);
AT(KorValue, asText, 8);
AT(TaskEventPayload, reasonCode, 4);
AT(TaskEventPayload, reason, 8);
AT(SceneParameters, sensitivity, 0);
AT(SceneParameters, threshold, 8);
AT(SceneParameters, reserved, 16);
AT(KeyFrameParameters, maxPerScene, 0);
AT(KeyFrameParameters, secondsPerKeyFrame, 4);
AT(KeyFrameParameters, reserved, 8);
AT(KeyFrameParameters, candidatesPerKeyFrame, 12);
AT(KeyFrameParameters, marginFramesBegin, 16);
AT(KeyFrameParameters, marginFramesEnd, 20);
AT(MaterialAnalysisResult, score, 0);
AT(MaterialAnalysisResult, begin, 8);
AT(MaterialAnalysisResult, end, 16);
AT(MaterialAnalysisResult, posOfMaxScore, 24);
AT(MaterialAnalysisResult, media, 32);
AT(MaterialAnalysisResult, faceRectOfPhoto, 40);

#undef AT

}  // namespace KOR
