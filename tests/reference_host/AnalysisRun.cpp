#include "tests/reference_host/AnalysisRun.h"

#include <gtest/gtest.h>

#include "host/lists.h"

namespace reference_host_tests {
namespace {

template <typename Element>
std::vector<Element> resultsOf(const Task& task, std::int32_t kind) {
    const auto list = hold(createKORAutoVoidPtrList());
    EXPECT_EQ(analysisOf(task).getResultList(kind, 0, list.get(), 0), KOR::statusOk);
    std::vector<Element> results;
    for (std::int64_t i = 0; i < list->count(); ++i) {
        results.push_back(*static_cast<const Element*>(list->at(i)));
    }
    return results;
}

}  // namespace

Task makeTask(std::initializer_list<std::int32_t> types) {
    const auto list = hold(createKORIntList());
    for (const std::int32_t type : types)
        list->append(type);
    return Task(createMediaAnalysisTask(list.get()));
}

KOR::IBsMediaAnalysisTask& analysisOf(const Task& task) {
    return *static_cast<KOR::IBsMediaAnalysisTask*>(task->queryInterface("IBsMediaAnalysisTask"));
}

std::vector<KOR::TickRange> scenesOf(const Task& task) {
    return resultsOf<KOR::TickRange>(task, KOR::analysisTypeScene);
}

std::vector<std::int64_t> keyFramesOf(const Task& task) {
    return resultsOf<std::int64_t>(task, KOR::analysisTypeKeyFrame);
}

std::vector<KOR::FaceDetectFrame> facesOf(const Task& task) {
    return resultsOf<KOR::FaceDetectFrame>(task, KOR::analysisTypeFace);
}

std::vector<KOR::EntropySample> entropiesOf(const Task& task) {
    return resultsOf<KOR::EntropySample>(task, KOR::analysisTypeEntropy);
}

std::vector<KOR::BlurSample> blursOf(const Task& task) {
    return resultsOf<KOR::BlurSample>(task, KOR::analysisTypeBlur);
}

AnalysisRun::AnalysisRun(std::initializer_list<std::int32_t> types,
                         const std::filesystem::path& file, const std::filesystem::path& cacheRoot)
    : material(import(file, cacheRoot)), task(makeTask(types)) {
    task->addCallBack(&recorder);
    prepare();
}

void AnalysisRun::prepare() {
    EXPECT_EQ(analysisOf(task).setSource(&sourceOf(material), 0, 0), KOR::statusOk);
}

void AnalysisRun::lookAt(const std::vector<std::int64_t>& positions) {
    const auto list = hold(createKORLonglongList());
    for (const std::int64_t position : positions)
        list->append(position);
    EXPECT_EQ(analysisOf(task).setKeyFramePositions(list.get()), KOR::statusOk);
}

void AnalysisRun::finish(std::size_t times) {
    ASSERT_EQ(task->start(), KOR::statusOk);
    recorder.waitFor(KOR::taskEventFinished, times);
}

}  // namespace reference_host_tests
