#include <algorithm>

#include "validator/host/Run.h"
#include "validator/host/footage.h"
#include "validator/host/groups.h"

namespace validator {
namespace {

using Ticks = std::vector<std::int64_t>;

constexpr KOR::KeyFrameParameters usual{6, 4, 0, 4, 2, 2};

/// So high that no picture begins a scene.
constexpr double highThreshold = 1e9;

/// The begin and end of each scene, one after another.
Ticks bounds(const std::vector<KOR::TickRange>& ranges) {
    Ticks all;
    for (const KOR::TickRange& range : ranges) {
        all.push_back(range.begin);
        all.push_back(range.end);
    }
    return all;
}

const Ticks threeScenes = bounds({footage::softScene, footage::fineScene, footage::halvedScene});
const Ticks oneScene = {0, footage::videoTicks};

void needOurVideo(const HostLibrary& host) {
    if (!host.hasOurVideo()) skip("what is in the video is not known");
}

/// How many of `positions` lie in the range.
std::int64_t countIn(const KOR::TickRange& range, const Ticks& positions) {
    return std::count_if(positions.begin(), positions.end(), [&](std::int64_t position) {
        return position >= range.begin && position < range.end;
    });
}

void expectAscending(const std::string& what, const Ticks& values) {
    const bool isAscending =
        std::adjacent_find(values.begin(), values.end(), std::greater_equal()) == values.end();
    expect(isAscending, what, "ascending", shown(values));
}

void ascendWithinDuration(HostLibrary& host) {
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.finish();
    const auto scenes = run.scenes();
    expect(!scenes.empty(), "the scenes of a video", "at least one", "none");
    std::int64_t end = 0;
    for (const KOR::TickRange& scene : scenes) {
        expect(scene.begin >= end && scene.end > scene.begin, "the scenes", "ascending",
               shown(bounds(scenes)));
        end = scene.end;
    }
    expect(end <= video.media->getDuration(), "the end of the last scene",
           shown(video.media->getDuration()) + " at most", shown(end));
}

void areFoundAtCuts(HostLibrary& host) {
    needOurVideo(host);
    const Material video = host.video();
    Run run(host, {1}, video.source);
    run.finish();
    expectEqual("the bounds of the scenes", bounds(run.scenes()), threeScenes);
}

/// Tries one setting of a scene run, and what scenes it gives.
template <typename Prepare>
void expectScenes(const HostLibrary& host, const Ticks& expected, Prepare prepare) {
    needOurVideo(host);
    const Material video = host.video();
    Run run(host, {1}, video.source);
    prepare(run);
    run.finish();
    expectEqual("the bounds of the scenes", bounds(run.scenes()), expected);
}

void followThreshold(HostLibrary& host) {
    expectScenes(host, oneScene, [](Run& run) {
        run.setMode(KOR::parameterModeExplicit);
        KOR::SceneParameters block{1.0, highThreshold, 0};
        run.setBlock(block);
        // Copied by then.
        block = {1.0, 3.0, 0};
    });
}

void ignoreBlocks(HostLibrary& host) {
    expectScenes(host, threeScenes, [](Run& run) {
        run.setMode(KOR::parameterModeDefault);
        run.setBlock(KOR::SceneParameters{1.0, highThreshold, 0});
    });
}

void ignoreBlocksUnlessTold(HostLibrary& host) {
    expectScenes(host, threeScenes, [](Run& run) {
        run.setBlock(KOR::SceneParameters{1.0, highThreshold, 0});
    });
}

void haveDefaults(HostLibrary& host) {
    expectScenes(host, threeScenes, [](Run& run) { run.setMode(KOR::parameterModeExplicit); });
}

void divideBySensitivity(HostLibrary& host) {
    expectScenes(host, threeScenes, [](Run& run) {
        run.setMode(KOR::parameterModeExplicit);
        run.setBlock(KOR::SceneParameters{highThreshold / 3.0, highThreshold, 0});
    });
}

void keepDefaultsOnRefusal(HostLibrary& host) {
    expectScenes(host, threeScenes, [](Run& run) {
        run.setMode(KOR::parameterModeExplicit);
        const KOR::SceneParameters block{-1.0, highThreshold, 0};
        expectEqual("setParameterBlock() with a negative sensitivity",
                    run.analysis.setParameterBlock(KOR::analysisTypeScene, &block),
                    KOR::statusFailed);
    });
}

void comeWithKeyFrames(HostLibrary& host) {
    const Material video = host.video();
    Run alone(host, {1}, video.source);
    alone.finish();
    Run both(host, {1, 9}, video.source);
    both.finish();
    const auto scenes = both.scenes();
    if (host.hasOurVideo()) {
        expectEqual("the bounds of the scenes", bounds(scenes), bounds(alone.scenes()));
    }
    for (const KOR::TickRange& scene : scenes)
        expect(countIn(scene, both.keyFrames()) > 0,
               "the keyframes in a scene of {" + shown(scene.begin) + ", " + shown(scene.end) + "}",
               "at least one", "none");
}

/// The keyframes of a run of type 9 in these ranges, with this block where there is one.
Ticks keyFramesIn(const HostLibrary& host, const std::vector<KOR::TickRange>& ranges,
                  const KOR::KeyFrameParameters* block = nullptr) {
    const Material video = host.video();
    Run run(host, {9}, video.source);
    if (!ranges.empty()) run.setRanges(ranges);
    if (block != nullptr) {
        run.setMode(KOR::parameterModeExplicit);
        run.setBlock(*block);
    }
    run.finish();
    const Ticks positions = run.keyFrames();
    expectAscending("the keyframes", positions);
    return positions;
}

void keyFramesAscend(HostLibrary& host) {
    const std::int64_t duration = host.video().media->getDuration();
    const Ticks positions = keyFramesIn(host, {});
    expect(!positions.empty(), "the keyframes of a video", "at least one", "none");
    expectEqual("the keyframes from 0 to the duration", countIn({0, duration}, positions),
                static_cast<std::int64_t>(positions.size()));
}

void keyFramesStayInRanges(HostLibrary& host) {
    const std::vector<KOR::TickRange> ranges = {{second / 2, second}, {3 * second / 2, 2 * second}};
    const Ticks positions = keyFramesIn(host, ranges);
    for (const KOR::TickRange& range : ranges)
        expect(countIn(range, positions) > 0,
               "the keyframes in a range of {" + shown(range.begin) + ", " + shown(range.end) + "}",
               "at least one", shown(positions));
    expectEqual("the keyframes in both ranges",
                countIn(ranges[0], positions) + countIn(ranges[1], positions),
                static_cast<std::int64_t>(positions.size()));
}

void noRangesAreOneScene(HostLibrary& host) {
    const std::int64_t duration = host.video().media->getDuration();
    const Ticks whole = keyFramesIn(host, {{0, duration}});
    expectEqual("the keyframes without ranges", keyFramesIn(host, {}), whole);
    const Material video = host.video();
    Run run(host, {9}, video.source);
    run.setRanges({});
    run.finish();
    expectEqual("the keyframes of an empty list", run.keyFrames(), whole);
}

void keyFramesAreLimited(HostLibrary& host) {
    KOR::KeyFrameParameters block = usual;
    block.secondsPerKeyFrame = 1;
    for (const std::int32_t most : {1, 2}) {
        block.maxPerScene = most;
        const std::vector<KOR::TickRange> ranges = {{0, 3 * second / 2},
                                                    {3 * second / 2, 3 * second}};
        const Ticks positions = keyFramesIn(host, ranges, &block);
        for (const KOR::TickRange& range : ranges) {
            const std::int64_t count = countIn(range, positions);
            expect(count >= 1 && count <= most,
                   "the keyframes in a scene, where maxPerScene is " + shown(most),
                   "1 to " + shown(most), shown(count));
        }
    }
}

void keyFramesFollowStretches(HostLibrary& host) {
    needOurVideo(host);
    const std::vector<KOR::TickRange> ranges = {footage::softScene};
    KOR::KeyFrameParameters block{6, 2, 0, 4, 0, 0};
    expectEqual("the keyframes in 2 s, one for every 2 s", keyFramesIn(host, ranges, &block).size(),
                std::size_t{1});
    block.secondsPerKeyFrame = 1;
    expectEqual("the keyframes in 2 s, one for every second",
                keyFramesIn(host, ranges, &block).size(), std::size_t{2});
    expectEqual("the keyframes in 2.1 s, one for every second",
                keyFramesIn(host, {{0, 21 * second / 10}}, &block).size(), std::size_t{3});
}

void keyFramesIgnoreBlocks(HostLibrary& host) {
    needOurVideo(host);
    const Material video = host.video();
    Run run(host, {9}, video.source);
    run.setMode(KOR::parameterModeDefault);
    run.setBlock(KOR::KeyFrameParameters{1, 1, 0, 1, 0, 0});
    run.finish();
    // 6 s, one for each started stretch of 4 s.
    expectEqual("the keyframes", run.keyFrames().size(), std::size_t{2});
}

void keyFramesKeepMargins(HostLibrary& host) {
    needOurVideo(host);
    constexpr std::int32_t begin = 7;
    constexpr std::int32_t end = 9;
    KOR::KeyFrameParameters block{6, 1, 0, 100, begin, end};
    const std::vector<KOR::TickRange> ranges = {footage::softScene, footage::fineScene};
    const Ticks positions = keyFramesIn(host, ranges, &block);
    for (const KOR::TickRange& range : ranges) {
        const KOR::TickRange inner{range.begin + begin * footage::frameTicks,
                                   range.end - end * footage::frameTicks};
        expect(countIn(inner, positions) > 0, "the keyframes between a scene's margins",
               "at least one", shown(positions));
        expectEqual("the keyframes in a scene outside of its margins", countIn(inner, positions),
                    countIn(range, positions));
    }
}

void keyFramesArePictures(HostLibrary& host) {
    needOurVideo(host);
    for (const std::int64_t position : keyFramesIn(host, {{second / 3, 2 * second}}))
        expectEqual("a keyframe's distance from the begin of a picture",
                    position % footage::frameTicks, 0);
}

}  // namespace

const std::vector<HostCheck> sceneChecks = {
    {"scenes.ascend-within-duration",
     "Scenes ascend, each has a length, and none goes beyond the duration.", ascendWithinDuration},
    {"scenes.are-found-at-cuts", "Three plain scenes are found where they are cut.",
     areFoundAtCuts},
    {"scenes.follow-threshold",
     "In explicit mode a scene block counts: a high threshold finds one scene.", followThreshold},
    {"scenes.ignore-blocks-by-default", "In default mode a scene block does not count.",
     ignoreBlocks},
    {"scenes.default-mode-comes-first", "The mode is the default one until it is set.",
     ignoreBlocksUnlessTold},
    {"scenes.have-defaults", "In explicit mode without a block the defaults count.", haveDefaults},
    {"scenes.divide-by-sensitivity", "The threshold is divided by the sensitivity.",
     divideBySensitivity},
    {"scenes.keep-defaults-on-refusal", "After a block that is refused the defaults stay.",
     keepDefaultsOnRefusal},
    {"scenes.come-with-keyframes",
     "A task of both types finds the scenes and a keyframe in each of them.", comeWithKeyFrames},
    {"keyframes.ascend", "Keyframes ascend and lie within the duration.", keyFramesAscend},
    {"keyframes.stay-in-ranges",
     "Keyframes are found in the ranges that were set and nowhere else, though the caller has "
     "taken list and ranges back.",
     keyFramesStayInRanges},
    {"keyframes.without-ranges",
     "Without ranges, and with an empty list of them, there is one scene of the whole duration.",
     noRangesAreOneScene},
    {"keyframes.are-limited", "No scene has more keyframes than maxPerScene.", keyFramesAreLimited},
    {"keyframes.follow-stretches",
     "There is a keyframe for each started stretch of secondsPerKeyFrame.",
     keyFramesFollowStretches},
    {"keyframes.ignore-blocks-by-default", "In default mode a keyframe block does not count.",
     keyFramesIgnoreBlocks},
    {"keyframes.keep-margins", "Keyframes keep clear of the frames of both margins.",
     keyFramesKeepMargins},
    {"keyframes.are-pictures", "A keyframe's position is where its picture begins.",
     keyFramesArePictures},
};

}  // namespace validator
