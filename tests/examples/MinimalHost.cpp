#include "tests/examples/MinimalHost.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "host/lists.h"
#include "host/validation.h"

namespace minimal_host_tests {
namespace {

void* load(const char* file, int scope) {
    void* const library = dlopen(file, RTLD_NOW | scope);
    if (library == nullptr) throw std::runtime_error(dlerror());
    return library;
}

void* symbolOf(void* library, const char* name) {
    void* const address = dlsym(library, name);
    if (address == nullptr) throw std::runtime_error(dlerror());
    return address;
}

}  // namespace

void* hostSymbol(const char* name) {
    static void* const library = load(MINIMAL_HOST_LIBRARY, RTLD_GLOBAL);
    return symbolOf(library, name);
}

Holder<KOR::IKorMaterialAnalysis> makeComponent() {
    hostSymbol("loggerWrapper");
    static void* const library = load(MATERIAL_ANALYSIS_LIBRARY, RTLD_LOCAL);
    return hold(reinterpret_cast<decltype(&createMaterialAnalysis)>(
        symbolOf(library, "createMaterialAnalysis"))());
}

Material import(const std::filesystem::path& file, const std::filesystem::path& cache) {
    return hold(HOST(createValidationMaterial)(file.c_str(), cache.c_str()));
}

KOR::IDmBaseMedia& mediaOf(const Material& material) {
    return *static_cast<KOR::IDmBaseMedia*>(material->queryInterface("IDmBaseMedia"));
}

KOR::IDmMediaSource& sourceOf(const Material& material) {
    auto* const media =
        static_cast<KOR::IDmSourceMedia*>(material->queryInterface("IDmSourceMedia"));
    return *media->getSource();
}

Task makeTask(std::initializer_list<std::int32_t> types) {
    const auto list = hold(HOST(createKORIntList)());
    for (const std::int32_t type : types)
        list->append(type);
    return hold(HOST(createMediaAnalysisTask)(list.get()));
}

KOR::IBsMediaAnalysisTask& analysisOf(const Task& task) {
    return *static_cast<KOR::IBsMediaAnalysisTask*>(task->queryInterface("IBsMediaAnalysisTask"));
}

void lookAt(const Task& task, const std::vector<std::int64_t>& positions) {
    const auto list = hold(HOST(createKORLonglongList)());
    for (const std::int64_t position : positions)
        list->append(position);
    EXPECT_EQ(analysisOf(task).setKeyFramePositions(list.get()), KOR::statusOk);
}

void lookWithin(const Task& task, std::vector<KOR::TickRange> ranges) {
    const auto list = hold(HOST(createKORVoidPtrList)());
    for (KOR::TickRange& range : ranges)
        list->append(&range);
    EXPECT_EQ(analysisOf(task).setSceneRanges(list.get()), KOR::statusOk);
}

std::vector<const void*> elementsOf(const Holder<KOR::IKORVoidPtrList>& list) {
    std::vector<const void*> elements;
    for (std::int64_t i = 0; i < list->count(); ++i)
        elements.push_back(list->at(i));
    return elements;
}

Holder<KOR::IKORVoidPtrList> resultsOf(const Task& task, std::int32_t kind) {
    auto list = hold(HOST(createKORAutoVoidPtrList)());
    EXPECT_EQ(analysisOf(task).getResultList(kind, 0, list.get(), 0), KOR::statusOk);
    return list;
}

TaskRun::TaskRun(std::initializer_list<std::int32_t> types, const std::filesystem::path& file,
                 const std::filesystem::path& cache)
    : material(import(file, cache)), task(makeTask(types)) {
    if (!material) throw std::runtime_error("not a material: " + file.string());
    task->addCallBack(&recorder);
    EXPECT_EQ(analysisOf(task).setSource(&sourceOf(material), 0, 0), KOR::statusOk);
}

TaskRun::~TaskRun() {
    if (task) task->stop();  // the recorder goes before a task that someone else holds
}

void TaskRun::finish(std::size_t times) {
    ASSERT_EQ(task->start(), KOR::statusOk);
    recorder.waitFor(KOR::taskEventFinished, times);
}

}  // namespace minimal_host_tests
