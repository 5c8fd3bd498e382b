#pragma once

#include <filesystem>
#include <initializer_list>
#include <vector>

#include "host/tasks.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/Holder.h"
#include "tests/reference_host/TaskRecorder.h"

namespace reference_host_tests {

using Task = Holder<KOR::IKorBaseTask>;

Task makeTask(std::initializer_list<std::int32_t> types);
KOR::IBsMediaAnalysisTask& analysisOf(const Task& task);
std::vector<KOR::TickRange> scenesOf(const Task& task);
std::vector<std::int64_t> keyFramesOf(const Task& task);
std::vector<KOR::FaceDetectFrame> facesOf(const Task& task);
std::vector<KOR::EntropySample> entropiesOf(const Task& task);
std::vector<KOR::BlurSample> blursOf(const Task& task);

/// A task that has the source of a file and a listener.
struct AnalysisRun {
    AnalysisRun(std::initializer_list<std::int32_t> types, const std::filesystem::path& file,
                const std::filesystem::path& cacheRoot = {});

    /// Hands the source over once more.
    void prepare();

    /// Hands over the positions of the pictures to be looked at.
    void lookAt(const std::vector<std::int64_t>& positions);

    /// Runs the task until it has finished `times` times in its life.
    void finish(std::size_t times = 1);

    std::vector<KOR::TickRange> scenes() const { return scenesOf(task); }
    std::vector<std::int64_t> keyFrames() const { return keyFramesOf(task); }

    std::vector<KOR::FaceDetectFrame> faces() const { return facesOf(task); }
    std::vector<KOR::EntropySample> entropies() const { return entropiesOf(task); }
    std::vector<KOR::BlurSample> blurs() const { return blursOf(task); }

    Holder<KOR::IDmBaseObj> material;
    TaskRecorder recorder;
    Task task;
};

}  // namespace reference_host_tests
