// The host's scene detection by itself: one file, one task, no component.

#include <chrono>
#include <cstdint>
#include <exception>
#include <iostream>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "bench/RunWatch.h"
#include "host/lists.h"
#include "host/media.h"
#include "host/tasks.h"
#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/Holder.h"

namespace {

using reference_host_tests::hold;
using reference_host_tests::Holder;

using bench::Course;
using Clock = std::chrono::steady_clock;

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
    bench::RunWatch watch;
    task.addCallBack(&watch);
    if (task.start() != KOR::statusOk) throw std::runtime_error("the task did not start");
    Course course = watch.waitForEnd();
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
    const double importSeconds = std::chrono::duration<double>(Clock::now() - begin).count();

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
