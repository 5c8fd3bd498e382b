// The host's scene detection by itself: one file, one task, no component.

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <exception>
#include <iostream>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "host/lists.h"
#include "host/media.h"
#include "host/tasks.h"
#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/Holder.h"

namespace {

using reference_host_tests::hold;
using reference_host_tests::Holder;

using Clock = std::chrono::steady_clock;

double secondsBetween(Clock::time_point begin, Clock::time_point end) {
    return std::chrono::duration<double>(end - begin).count();
}

/// What a run has told of how far it is.
struct Course {
    int progressEvents = 0;
    std::int32_t highest = 0;
    bool wentBackwards = false;
    /// The longest time without a higher percentage than any before, from the start to the end.
    double longestStandstill = 0;
    double seconds = 0;
    /// Why it failed, where it did.
    std::optional<std::string> failure;
};

/// Watches one run of a task, from its own making on.
class RunWatch final : public KOR::IKorCallBack {
public:
    KOR::Status onReserved() override { return KOR::statusOk; }

    KOR::Status onTaskEvent(KOR::IDmBaseObj*, std::uint32_t, std::uint32_t event,
                            void* payload) override {
        const Clock::time_point now = Clock::now();
        const auto* const values = static_cast<const KOR::TaskEventPayload*>(payload);
        const std::scoped_lock lock(mutex_);
        if (event == KOR::taskEventProgress && values != nullptr)
            noteProgress(values->progress, now);
        if (event == KOR::taskEventFailed)
            course_.failure = values == nullptr ? "" : values->reason;
        if (event == KOR::taskEventFinished) noteEnd(now);
        return KOR::statusOk;
    }

    Course waitForEnd() {
        std::unique_lock lock(mutex_);
        ended_.wait(lock, [this] { return isOver_; });
        return course_;
    }

private:
    void noteProgress(std::int32_t percent, Clock::time_point now) {
        ++course_.progressEvents;
        course_.wentBackwards = course_.wentBackwards || percent < last_;
        last_ = percent;
        if (percent <= course_.highest) return;
        course_.highest = percent;
        noteMove(now);
    }

    void noteEnd(Clock::time_point now) {
        noteMove(now);
        course_.seconds = secondsBetween(begin_, now);
        isOver_ = true;
        ended_.notify_all();
    }

    void noteMove(Clock::time_point now) {
        course_.longestStandstill =
            std::max(course_.longestStandstill, secondsBetween(movedAt_, now));
        movedAt_ = now;
    }

    const Clock::time_point begin_ = Clock::now();
    std::mutex mutex_;
    std::condition_variable ended_;
    Clock::time_point movedAt_ = begin_;
    std::int32_t last_ = 0;
    bool isOver_ = false;
    Course course_;
};

Holder<KOR::IDmBaseObj> import(const std::string& file) {
    const reference_host::ImportedMaterial imported = reference_host::importMaterial(file, {});
    if (imported.object == nullptr) throw std::runtime_error(imported.error);
    return hold(imported.object);
}

KOR::IDmMediaSource* sourceOf(const Holder<KOR::IDmBaseObj>& material) {
    auto* const media =
        static_cast<KOR::IDmSourceMedia*>(material->queryInterface("IDmSourceMedia"));
    return media == nullptr ? nullptr : media->getSource();
}

Holder<KOR::IKorBaseTask> makeSceneTask() {
    const auto types = hold(createKORIntList());
    types->append(KOR::analysisTypeScene);
    return hold(createMediaAnalysisTask(types.get()));
}

KOR::IBsMediaAnalysisTask& analysisOf(const Holder<KOR::IKorBaseTask>& task) {
    return *static_cast<KOR::IBsMediaAnalysisTask*>(task->queryInterface("IBsMediaAnalysisTask"));
}

void setThreshold(KOR::IBsMediaAnalysisTask& analysis, double threshold) {
    const KOR::SceneParameters block{1.0, threshold, 0};
    if (analysis.setParameterMode(KOR::parameterModeExplicit) != KOR::statusOk ||
        analysis.setParameterBlock(KOR::analysisTypeScene, &block) != KOR::statusOk) {
        throw std::runtime_error("the threshold was refused");
    }
}

Course runToEnd(KOR::IKorBaseTask& task) {
    RunWatch watch;
    task.addCallBack(&watch);
    if (task.start() != KOR::statusOk) throw std::runtime_error("the task did not start");
    const Course course = watch.waitForEnd();
    task.removeCallBack(&watch);
    if (course.failure) throw std::runtime_error(*course.failure);
    return course;
}

std::vector<KOR::TickRange> scenesOf(KOR::IBsMediaAnalysisTask& analysis) {
    const auto list = hold(createKORAutoVoidPtrList());
    if (analysis.getResultList(KOR::analysisTypeScene, 0, list.get(), 0) != KOR::statusOk) {
        throw std::runtime_error("the task gave no list of scenes");
    }
    std::vector<KOR::TickRange> scenes;
    for (std::int64_t i = 0; i < list->count(); ++i)
        scenes.push_back(*static_cast<const KOR::TickRange*>(list->at(i)));
    return scenes;
}

void printBoundaries(const std::vector<KOR::TickRange>& scenes) {
    for (const KOR::TickRange& scene : scenes) {
        if (scene.begin > 0) fmt::print("{}\n", scene.begin);
    }
}

void printSummary(const std::vector<KOR::TickRange>& scenes, const Course& course,
                  double importSeconds) {
    fmt::print("{{\"scenes\": [");
    const char* separator = "";
    for (const KOR::TickRange& scene : scenes) {
        fmt::print("{}[{}, {}]", separator, scene.begin, scene.end);
        separator = ", ";
    }
    fmt::print(
        "], \"progressEvents\": {}, \"longestStandstillSeconds\": {:.3f}, \"wentBackwards\": {}, "
        "\"reached100\": {}, \"importSeconds\": {:.3f}, \"taskSeconds\": {:.3f}}}\n",
        course.progressEvents, course.longestStandstill, course.wentBackwards,
        course.highest == 100, importSeconds, course.seconds);
}

int run(int argc, char** argv) {
    CLI::App app{
        "Finds the scenes of one file by a single task of the reference host, without a cache.\n"
        "Prints one line of JSON; all positions in ticks of 100 nanoseconds."};
    std::string file;
    std::optional<double> threshold;
    bool boundariesOnly = false;
    app.add_option("--threshold", threshold, "How far a change of scene has to stand out");
    app.add_flag("--boundaries", boundariesOnly,
                 "Print where each scene but the first begins instead, one a line");
    app.add_option("file", file)->required();
    CLI11_PARSE(app, argc, argv);

    const Clock::time_point begin = Clock::now();
    const Holder<KOR::IDmBaseObj> material = import(file);
    const double importSeconds = secondsBetween(begin, Clock::now());

    const Holder<KOR::IKorBaseTask> task = makeSceneTask();
    KOR::IBsMediaAnalysisTask& analysis = analysisOf(task);
    if (analysis.setSource(sourceOf(material), 0, 0) != KOR::statusOk) {
        throw std::runtime_error("the file has no source to analyse");
    }
    if (threshold) setThreshold(analysis, *threshold);
    const Course course = runToEnd(*task);

    const std::vector<KOR::TickRange> scenes = scenesOf(analysis);
    if (boundariesOnly) {
        printBoundaries(scenes);
    } else {
        printSummary(scenes, course, importSeconds);
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "scene_task: " << error.what() << '\n';
        return 1;
    }
}
