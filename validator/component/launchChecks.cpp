#include <cstddef>
#include <string>

#include "validator/component/groups.h"

namespace validator {
namespace {

/// Two scenes, with two keyframes in the first one and one in the second.
MediaSpec clip() {
    return video("clip.mp4", 100 * second)
        .scenes({{0, 40 * second}, {41 * second, 100 * second}})
        .keyFrames({10 * second, 20 * second, 60 * second});
}

/// Goes on with the run until the `number`th task is on, and returns what prepared and started it.
Lines launchOf(Stage& stage, std::size_t number) {
    while (!stage.task(number).running()) {
        FakeTask* const before = host().runningTask();
        if (before == nullptr) fail("the run", "a start of each task", "the end of the run");
        before->finish();
    }
    Lines lines = stage.journal();
    const std::string own = "task" + std::to_string(number) + ".";
    std::size_t first = lines.size();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i] == own + "addCallBack") continue;
        if (first == lines.size() && lines[i].starts_with(own)) first = i;
    }
    return {lines.begin() + static_cast<std::ptrdiff_t>(first), lines.end()};
}

/// Runs these kinds on a material and returns how the last one was launched.
Lines launchOfLast(Stage& stage, const MediaSpec& spec, const std::vector<std::int32_t>& kinds) {
    stage.insert(spec);
    stage.useKinds(kinds);
    stage.component().start();
    return launchOf(stage, kinds.size() - 1);
}

Lines photoLaunchOfLast(Stage& stage, const std::vector<std::int32_t>& kinds) {
    stage.setParam("photoNeedAnalysis", 1);
    return launchOfLast(stage, photo("photo.jpg"), kinds);
}

void face(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4, 3, 1}),
        {"task2.setSource(clip.mp4, 0, 0)", "task2.setPriority(100)", "task2.setParameterMode(0)",
         "task2.setKeyFramePositions(100000000, 200000000, 600000000)", "task2.start",
         R"(log startFaceDetect: "----Start Face Detect---素材idx: 0\n")"});
}

void blur(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4, 3, 2}),
        {"task2.setSource(clip.mp4, 0, 0)", "task2.setPriority(100)", "task2.setParameterMode(1)",
         "task2.setKeyFramePositions(100000000, 200000000, 600000000)", "task2.start",
         R"(log startBlurDetect: "----Start Blur Detect---素材idx: 0\n")"});
}

void keyFrames(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4, 3}),
        {"task1.setSource(clip.mp4, 0, 0)", "task1.setPriority(100)", "task1.setParameterMode(1)",
         "task1.setSceneRanges([0, 400000000) [410000000, 1000000000))", "task1.start",
         R"(log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n")"});
}

void scenes(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4}),
        {"task0.setSource(clip.mp4, 0, 0)", "task0.setPriority(100)", "task0.setParameterMode(1)",
         "task0.setParameterBlock(1, 1.0, 3.0, 0)", "task0.start",
         R"(log startScenceDetect: "----Start Scence Detect:---素材idx---0\n")"});
}

void entropy(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4, 3, 5}),
        {"task2.setSource(clip.mp4, 0, 0)", "task2.setPriority(100)", "task2.setParameterMode(0)",
         "task2.setKeyFramePositions(100000000, 200000000, 600000000)", "task2.start",
         R"(log startEntropyCalculate: "----Start Entropy Value---素材idx: 0\n")"});
}

void scenesAndKeyFrames(Stage& stage) {
    expectLines("the launch", launchOfLast(stage, clip(), {6}),
                {"task0.setSource(clip.mp4, 0, 0)", "task0.setPriority(100)",
                 "task0.setParameterMode(1)", "task0.setParameterBlock(1, 1.0, 3.0, 0)",
                 "task0.setParameterBlock(9, 6, 4, 0, 4, 2, 2)", "task0.start",
                 "log startScenceAndKeyframeDetect: \"----Start Scence Detect and keyframe "
                 "extrackt:---素材idx---0\\n\""});
}

void facesAndEntropy(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip(), {4, 3, 7}),
        {"task2.setSource(clip.mp4, 0, 0)", "task2.setPriority(100)", "task2.setParameterMode(0)",
         "task2.setKeyFramePositions(100000000, 200000000, 600000000)", "task2.start",
         "log startFaceAndEntropyAnalysis: \"----Start Face detect and Entropy "
         "Value---素材idx: 0\\n\""});
}

void faceOfPhoto(Stage& stage) {
    expectLines(
        "the launch", photoLaunchOfLast(stage, {4, 1}),
        {"task1.setSource(photo.jpg, 0, 0)", "task1.setPriority(100)", "task1.setParameterMode(0)",
         "task1.start", R"(log startFaceDetect: "----Start Face Detect---素材idx: 0\n")"});
}

void faceAndEntropyOfPhoto(Stage& stage) {
    expectLines("the launch", photoLaunchOfLast(stage, {4, 7}),
                {"task1.setSource(photo.jpg, 0, 0)", "task1.setPriority(100)",
                 "task1.setParameterMode(0)", "task1.start",
                 "log startFaceAndEntropyAnalysis: \"----Start Face detect and Entropy "
                 "Value---素材idx: 0\\n\""});
}

void laterKindsOfPhoto(Stage& stage) {
    stage.setParam("photoNeedAnalysis", 1);
    stage.insert(photo("photo.jpg"));
    stage.useKinds({4, 1, 3, 5, 2});
    stage.journal();
    stage.runToEnd();
    Lines lists = stage.journal("task");
    std::erase_if(lists, [](const std::string& line) {
        return !line.ends_with(".start") && line.find(".setKey") == line.npos &&
               line.find(".setScene") == line.npos;
    });
    expectLines("the lists handed over", lists,
                {"task1.start", "task2.start", "task3.start", "task4.start"});
}

void faceWithoutPositions(Stage& stage) {
    expectLines(
        "the launch", launchOfLast(stage, clip().sourceType(16), {4, 3, 1}),
        {"task2.setSource(clip.mp4, 0, 0)", "task2.setPriority(100)", "task2.setParameterMode(0)",
         "task2.start", R"(log startFaceDetect: "----Start Face Detect---素材idx: 0\n")"});
}

void otherSourceTypes(Stage& stage) {
    stage.useKinds({4, 3, 1});
    for (const std::uint32_t type : {0U, 1U, 8U, 15U, 17U, 32U, 0x40000U})
        stage.insert(clip().sourceType(type));
    stage.journal();
    stage.runToEnd();
    expectLines("the positions", stage.journal("task2.setKeyFramePositions"),
                Lines(7, "task2.setKeyFramePositions(100000000, 200000000, 600000000)"));
}

void otherKindsGetPositions(Stage& stage) {
    stage.insert(clip().sourceType(16));
    stage.useKinds({4, 3, 2, 5, 7});
    stage.journal();
    stage.runToEnd();
    Lines lists = stage.journal("task");
    std::erase_if(lists, [](const std::string& line) { return line.find(".setKey") == line.npos; });
    const std::string positions = ".setKeyFramePositions(100000000, 200000000, 600000000)";
    expectLines("the positions", lists,
                {"task2" + positions, "task3" + positions, "task4" + positions});
}

void emptyPositions(Stage& stage) {
    for (const std::int32_t kind : {1, 2, 5, 7}) {
        const Component fresh = stage.create();
        host().reset();
        const Owned<FakeMedia> media(new FakeMedia(clip()));
        fresh->insertMaterials(materialList({media.get()}).get(), 0);
        fresh->setAnalysisKinds(intList({kind}).get());
        fresh->start();
        expectLines("the positions for kind " + shown(kind),
                    stage.journal("task0.setKeyFramePositions"), {"task0.setKeyFramePositions()"});
    }
}

void emptyRanges(Stage& stage) {
    const Lines launch = launchOfLast(stage, clip(), {3});
    expectLines("the launch", launch,
                {"task0.setSource(clip.mp4, 0, 0)", "task0.setPriority(100)",
                 "task0.setParameterMode(1)", "task0.setSceneRanges()", "task0.start",
                 R"(log startKeyFrameDetect: "----Start Keyframe Extract---素材idx: 0\n")"});
}

/// A video longer than 2^40 ticks.
MediaSpec longClip() {
    constexpr std::int64_t far = std::int64_t{1} << 40;
    return video("long.mp4", 2 * far + 7)
        .scenes({{3, far + 1}, {far + 1, 2 * far + 7}})
        .keyFrames({far, 2 * far});
}

void wideRanges(Stage& stage) {
    const Lines launch = launchOfLast(stage, longClip(), {4, 3});
    expectEqual("the ranges", elementOf("calls", launch, 3),
                "task1.setSceneRanges([3, 1099511627777) [1099511627777, 2199023255559))");
}

void widePositions(Stage& stage) {
    const Lines launch = launchOfLast(stage, longClip(), {4, 3, 5});
    expectEqual("the positions", elementOf("calls", launch, 3),
                "task2.setKeyFramePositions(1099511627776, 2199023255552)");
}

void thresholdOfBoth(Stage& stage) {
    stage.setThreshold(0.1);
    stage.insert(clip());
    stage.useKinds({4, 6});
    stage.journal();
    stage.runToEnd();
    Lines blocks = stage.journal("task");
    std::erase_if(blocks, [](const std::string& line) {
        return line.find(".setParameterBlock(1,") == line.npos;
    });
    expectLines(
        "the blocks of scenes", blocks,
        {"task0.setParameterBlock(1, 1.0, 0.1, 0)", "task1.setParameterBlock(1, 1.0, 0.1, 0)"});
}

void sameTaskAgain(Stage& stage) {
    stage.insert(clip());
    stage.insert(video("next.mp4", 50 * second));
    stage.useKinds({4, 3});
    stage.runToEnd();
    expectEqual("tasks made", host().taskCount(), 2U);
    expectLines("the sources of the first task", stage.journal("task0.setSource"),
                {"task0.setSource(clip.mp4, 0, 0)", "task0.setSource(next.mp4, 0, 0)"});
}

void lineNamesMaterial(Stage& stage) {
    Lines expected;
    for (int i = 0; i < 13; ++i) {
        stage.insert(clip());
        expected.push_back("----Start Scence Detect:---素材idx---" + std::to_string(i) + "\n");
    }
    stage.useKinds({4});
    stage.runToEnd();
    Lines lines = stage.logTexts();
    std::erase_if(lines, [](const std::string& text) { return !text.starts_with("----Start"); });
    expectLines("the lines", lines, expected);
}

void linesAreFramed(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 2, 1, 5, 6, 7});
    stage.runToEnd();
    Lines functions;
    for (const LogLine& line : host().logLines()) {
        if (!line.text.starts_with("----Start")) continue;
        functions.push_back(line.function);
        expectEqual("the severity", line.severity, 4U);
        expectEqual("the source unit", line.sourceUnit,
                    "modules/BusinessLayer/MaterialAnalysis/KorMaterialAnalysis");
        expectEqual("the tag", line.tag, "");
        expect(line.sourceLine > 0, "the source line", "a number above 0", shown(line.sourceLine));
    }
    const std::string own = "KOR::KorMaterialAnalysis::";
    expectLines("the functions", functions,
                {own + "startScenceDetect", own + "startKeyFrameDetect", own + "startBlurDetect",
                 own + "startFaceDetect", own + "startEntropyCalculate",
                 own + "startScenceAndKeyframeDetect", own + "startFaceAndEntropyAnalysis"});
}

void listsAreReleased(Stage& stage) {
    stage.insert(clip());
    stage.useKinds({4, 3, 2, 1, 5, 6, 7});
    stage.component().start();
    for (std::size_t number = 0; number < 7; ++number) {
        launchOf(stage, number);
        expectEqual("lists that exist while a task runs", host().live.lists.load(), 0);
    }
}

}  // namespace

const std::vector<ComponentCheck> launchChecks = {
    {"launch.face", "Face detection of a video gets the keyframes' positions, and mode 0.", face},
    {"launch.blur", "Blur detection gets the keyframes' positions, and mode 1.", blur},
    {"launch.keyframes", "Keyframe extraction gets the scenes and no block, and mode 1.",
     keyFrames},
    {"launch.scenes", "Scene detection gets the block of scenes, and mode 1.", scenes},
    {"launch.entropy", "Entropy calculation gets the keyframes' positions, and mode 0.", entropy},
    {"launch.scenes-and-keyframes",
     "Scene and keyframe detection gets both blocks, that of scenes first, and mode 1.",
     scenesAndKeyFrames},
    {"launch.face-and-entropy",
     "Face and entropy analysis gets the keyframes' positions, and mode 0.", facesAndEntropy},
    {"launch.face-of-photo", "Face detection of a photo gets no positions.", faceOfPhoto},
    {"launch.face-and-entropy-of-photo", "Face and entropy analysis of a photo gets no positions.",
     faceAndEntropyOfPhoto},
    {"launch.later-kinds-of-photo",
     "The kinds behind a photo's face task get neither positions nor scenes.", laterKindsOfPhoto},
    {"launch.face-of-unseekable-source", "Face detection of a source of type 16 gets no positions.",
     faceWithoutPositions},
    {"launch.face-of-other-source-types",
     "Face detection of a video with a source of any other type gets positions.", otherSourceTypes},
    {"launch.other-kinds-of-unseekable-source",
     "Blur, entropy, and face and entropy of a source of type 16 get positions.",
     otherKindsGetPositions},
    {"launch.empty-positions", "Positions are handed over even where there are none.",
     emptyPositions},
    {"launch.empty-scenes",
     "Keyframe extraction without scenes gets an empty list of them, and is started.", emptyRanges},
    {"launch.wide-scenes", "Scenes are handed over with 64 bits.", wideRanges},
    {"launch.wide-positions", "Positions are handed over with 64 bits.", widePositions},
    {"launch.threshold-in-both-blocks",
     "The threshold is handed to scene detection, alone and with keyframes.", thresholdOfBoth},
    {"launch.same-task-again", "The same task is prepared again for the next material.",
     sameTaskAgain},
    {"launch.line-names-material", "The line of a start ends with the material's index.",
     lineNamesMaterial},
    {"launch.lines-are-framed",
     "The lines of starts have severity 4, the unit's name, no tag, and each function's own name.",
     linesAreFramed},
    {"launch.lists-are-released", "No list lives on while a task runs.", listsAreReleased},
};

}  // namespace validator
