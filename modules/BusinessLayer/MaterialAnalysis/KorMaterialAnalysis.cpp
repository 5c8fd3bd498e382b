#include "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis.h"

#include <algorithm>
#include <string_view>

#include "modules/BusinessLayer/MaterialAnalysis/NestedStart.h"
#include "modules/BusinessLayer/MaterialAnalysis/ValuePayload.h"

namespace KOR {

namespace analysisParamKey {

const char* const minScenceDuration = "minScenceDuration";
const char* const scenceDetectionThreshold = "scenceDetectionThreshold";
const char* const minNeedAnalysisDuartion = "minNeedAnalysisDuartion";
const char* const photoNeedAnalysis = "photoNeedAnalysis";

}  // namespace analysisParamKey

namespace {

constexpr std::uint32_t materialAnalysisTaskType = 10;

/// Asks an element of a host's list of materials for its media interface. Null for a null element.
IDmBaseMedia* baseMediaOf(void* element) {
    if (element == nullptr) return nullptr;
    auto* const object = static_cast<IDmBaseObj*>(element);
    return static_cast<IDmBaseMedia*>(object->queryInterface("IDmBaseMedia"));
}

}  // namespace

KorMaterialAnalysis::~KorMaterialAnalysis() {
    NestedStart::ownerDestroyed(this);
    cancelled.exchange(1);
    materials.clear();
    tasks.clear();
    analysisKinds.clear();
    scenceRanges.clear();
    intOptions.clear();
    keyFramesOfScences.clear();
    scenceScores.clear();
    analysisResults.clear();
}

std::uint32_t KorMaterialAnalysis::addRef() {
    return RefCnt<void>::addRef();
}

std::uint32_t KorMaterialAnalysis::release() {
    return RefCnt<void>::release();
}

std::uint32_t KorMaterialAnalysis::refCount() const {
    return RefCnt<void>::refCount();
}

IDmDestroyObserver* KorMaterialAnalysis::getDestroyObserver() const {
    return RefCnt<void>::getDestroyObserver();
}

void KorMaterialAnalysis::setDestroyObserver(IDmDestroyObserver* observer) {
    RefCnt<void>::setDestroyObserver(observer);
}

void* KorMaterialAnalysis::queryInterface(const char* name) {
    if (name == nullptr) return nullptr;
    if (std::string_view(name) == "IKorMaterialAnalysis") {
        return static_cast<IKorMaterialAnalysis*>(this);
    }
    if (std::string_view(name) == "IDmBaseObj") return static_cast<IDmBaseObj*>(this);
    return nullptr;
}

std::uint32_t KorMaterialAnalysis::getTaskType() {
    return materialAnalysisTaskType;
}

Status KorMaterialAnalysis::setTaskInfo(std::uint32_t first, std::uint32_t second,
                                        std::uint32_t third) {
    taskInfo = {first, second, third};
    return statusOk;
}

Status KorMaterialAnalysis::getTaskInfo(std::uint32_t* first, std::uint32_t* second,
                                        std::uint32_t* third) {
    if (first == nullptr || second == nullptr || third == nullptr) return statusFailed;
    *first = taskInfo[0];
    *second = taskInfo[1];
    *third = taskInfo[2];
    return statusOk;
}

const char* KorMaterialAnalysis::getTaskName() {
    return taskName.c_str();
}

Status KorMaterialAnalysis::setTaskName(const char* name) {
    if (name == nullptr) return statusFailed;
    taskName = name;
    return statusOk;
}

Status KorMaterialAnalysis::addCallBack(IKorCallBack* callBack) {
    if (callBack != nullptr) callBacks.add(*callBack);
    return statusOk;
}

Status KorMaterialAnalysis::removeCallBack(IKorCallBack* callBack) {
    if (callBack == nullptr) return statusFailed;
    callBacks.remove(*callBack);
    return statusOk;
}

Status KorMaterialAnalysis::pause() {
    return statusFailed;
}

Status KorMaterialAnalysis::resume() {
    return statusFailed;
}

std::uint32_t KorMaterialAnalysis::getState() {
    return state;
}

Status KorMaterialAnalysis::setPriority(std::uint32_t priority) {
    taskPriority = priority;
    return statusOk;
}

std::uint32_t KorMaterialAnalysis::getPriority() {
    return taskPriority;
}

Status KorMaterialAnalysis::setIntOption(std::int32_t key, std::int32_t value) {
    intOptions[key] = value;
    return statusOk;
}

Status KorMaterialAnalysis::insertMaterials(IKORVoidPtrList* list, std::int32_t position) {
    if (list == nullptr) return statusFailed;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        IDmBaseMedia* const media = baseMediaOf(list->at(i));
        if (media == nullptr) continue;
        const auto end = static_cast<std::int64_t>(materials.size());
        const std::int64_t index = std::clamp<std::int64_t>(position + i, 0, end);
        materials.insert(materials.begin() + index, Ref<IDmBaseMedia>::share(media));
    }
    return statusOk;
}

Status KorMaterialAnalysis::removeMaterials(IKORVoidPtrList* list) {
    if (list == nullptr) return statusFailed;
    if (materials.empty()) return statusOk;
    const std::int64_t passes = list->count();
    for (std::int64_t pass = 0; pass < passes; ++pass) {
        for (std::size_t k = 0; k < materials.size(); ++k) {
            IDmBaseMedia* const media = baseMediaOf(list->at(static_cast<std::int64_t>(k)));
            if (media != nullptr && media == materials[k].get()) {
                materials.erase(materials.begin() + static_cast<std::ptrdiff_t>(k));
            }
        }
    }
    return statusOk;
}

Status KorMaterialAnalysis::removeMaterialAt(std::int32_t index) {
    if (index < 0 || static_cast<std::size_t>(index) >= materials.size()) return statusFailed;
    materials.erase(materials.begin() + index);
    return statusOk;
}

Status KorMaterialAnalysis::clearMaterials() {
    materials.clear();
    analysisResults.clear();
    return statusOk;
}

Status KorMaterialAnalysis::getResults(IKORVoidPtrList* list) {
    if (list == nullptr) return statusFailed;
    for (const OwnedResult& result : analysisResults) {
        OwnedResult copy = makeResult(*result->media);
        *copy = *result;
        if (list->append(copy.get()) != statusOk) return statusFailed;
        copy.release();
        result->media->addRef();
    }
    return statusOk;
}

Status KorMaterialAnalysis::setAnalysisParam(const char* key, const KorValue* value) {
    if (key == nullptr || value == nullptr) return statusFailed;
    const std::string_view name(key);
    if (name == analysisParamKey::minScenceDuration) {
        minScenceDuration = payloadOf<std::int32_t>(value);
    } else if (name == analysisParamKey::scenceDetectionThreshold) {
        scenceDetectionThreshold = payloadOf<double>(value);
    } else if (name == analysisParamKey::minNeedAnalysisDuartion) {
        minNeedAnalysisDuartion = payloadOf<std::int32_t>(value);
    } else if (name == analysisParamKey::photoNeedAnalysis) {
        photoNeedAnalysis = payloadOf<std::int32_t>(value);
    } else {
        return statusFailed;
    }
    return statusOk;
}

Status KorMaterialAnalysis::onReserved() {
    return statusOk;
}

}  // namespace KOR

KOR::IKorMaterialAnalysis* createMaterialAnalysis() {
    // The parentheses zero the object before its members are initialised.
    KOR::IKorMaterialAnalysis* const component = new KOR::KorMaterialAnalysis();
    component->addRef();
    return component;
}
