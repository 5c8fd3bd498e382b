// What scene detection sees of one file: the signals of all pictures that the host looks at, and
// the transitions that are found in them, as a table to be plotted.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <iostream>
#include <span>
#include <stop_token>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>
#include <fmt/core.h>

#include "reference_host/media/PictureReader.h"
#include "reference_host/media/inspect.h"
#include "reference_host/scenes/CutBar.h"
#include "reference_host/scenes/SignalBuilder.h"
#include "reference_host/scenes/Transitions.h"

namespace {

namespace media = reference_host::media;
namespace scenes = reference_host::scenes;

/// The longest stretch of which the host looks at no picture where it finds scenes alone.
constexpr std::int64_t longestGapTicks = 4 * scenes::ticksPerSecond;

std::vector<scenes::FrameSignal> signalsOf(const std::string& file, double threshold) {
    media::PictureReader::Plan plan;
    plan.threshold = threshold;
    plan.gap = {longestGapTicks, longestGapTicks, 0};
    media::PictureReader reader(file, media::inspect(file), plan, {}, [](double) {});
    scenes::SignalBuilder builder;
    scenes::PictureFeatures picture;
    while (reader.next(picture))
        builder.add(picture);
    return builder.finish();
}

double secondsOf(const scenes::FrameSignal& signal) {
    return static_cast<double>(signal.positionTicks) / scenes::ticksPerSecond;
}

/// Returns what is printed behind the signal of the frame `frame`: the transition that has its
/// boundary there, or three empty fields.
std::string transitionAt(std::size_t frame, std::span<const scenes::FrameSignal> signals,
                         std::span<const scenes::Transition> transitions) {
    for (const scenes::Transition& transition : transitions) {
        if (transition.boundary != frame) continue;
        // A fade may end with the last frame.
        const std::size_t end = std::min(transition.end, signals.size() - 1);
        return fmt::format("{},{:.3f},{:.3f}", transition.isCut() ? "cut" : "gradual",
                           secondsOf(signals[transition.begin]), secondsOf(signals[end]));
    }
    return ",,";
}

void print(std::span<const scenes::FrameSignal> signals, double threshold) {
    const std::vector<scenes::Transition> transitions = scenes::findTransitions(signals, threshold);
    fmt::print(
        "seconds,change,lasting_change,blend,contrast,least_cut,transition,transition_begin,"
        "transition_end\n");
    for (std::size_t i = 0; i < signals.size(); ++i) {
        const scenes::FrameSignal& signal = signals[i];
        const float before = i > 0 ? signals[i - 1].contrast : signal.contrast;
        fmt::print("{:.3f},{:.3f},{:.3f},{:.3f},{:.3f},{:.3f},{}\n", secondsOf(signal),
                   signal.change, signal.lastingChange, signal.blend.strength, signal.contrast,
                   scenes::leastCut(before, signal.contrast, threshold),
                   transitionAt(i, signals, transitions));
    }
}

int run(int argc, char** argv) {
    CLI::App app{
        "Prints the signals in which the reference host finds the scenes of a video, as CSV: one\n"
        "line for each picture that it looks at. bench/plot_signal.py makes a picture of them."};
    std::string file;
    double threshold = 3.0;
    app.add_option("--threshold", threshold, "How far a change of scene has to stand out")
        ->check(CLI::PositiveNumber);
    app.add_option("file", file)->required();
    CLI11_PARSE(app, argc, argv);
    print(signalsOf(file, threshold), threshold);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "scene_signal: " << error.what() << '\n';
        return 1;
    }
}
