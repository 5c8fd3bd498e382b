#include <cmath>

#include "fake_host/faces.h"
#include "fake_host/text.h"
#include "validator/component/groups.h"
#include "validator/component/scoredRuns.h"

namespace validator {
namespace {

/// One scene, as long as the video, with these keyframes.
MediaSpec oneScene(std::vector<std::int64_t> keyFrames) {
    return video("clip.mp4", 1000).scenes({{0, 1000}}).keyFrames(std::move(keyFrames));
}

/// Fails unless a frame with these faces scores `score`, in the log and in the record.
void expectScore(Stage& stage, const KOR::FaceDetectFrame& frame, double score) {
    countInTicks(stage);
    const Records records = recordsOf(stage, oneScene({10}).faceFrames({frame}), {6, 1});
    expectEqual("the keyframe's score", only(records).score,
                durationScoreOf(0, 1000, 1000) + score);
}

void expectScore(Stage& stage, const std::vector<KOR::KorRect>& faces, double score) {
    expectScore(stage, frameWith(faces), score);
}

/// Runs a video with these frames and gives what the log says of faces.
Lines faceLog(Stage& stage, MediaSpec spec, std::vector<KOR::FaceDetectFrame> frames) {
    countInTicks(stage);
    recordsOf(stage, spec.faceFrames(std::move(frames)), {6, 1});
    return loggedBy(stage, "faceDetectFinishedInternal");
}

std::string rectText(const KOR::KorRect& rect) {
    return asText(rect.x) + " " + asText(rect.y) + " " + asText(rect.width) + " " +
           asText(rect.height);
}

const Lines regionTable = {"0.2 0.0 0.8 0.9", "0.1 0.0 0.1 0.9", "0.0 0.0 0.1 0.9",
                           "0.8 0.0 0.1 0.9", "0.9 0.0 0.1 0.9", "0.0 0.9 1.0 0.1"};

/// Lets the host find the face's centre in the `hit`th region alone, which it says by `answer`.
/// Gives the regions that it was asked about.
Lines askedRegions(Stage& stage, std::size_t hit, std::int32_t answer, double score) {
    Lines asked;
    host().geometry.pointInRect = [&](const KOR::KorPoint&, const KOR::KorRect& rect) {
        asked.push_back(rectText(rect));
        return asked.size() == hit ? answer : 0;
    };
    expectScore(stage, {largeFaceAt(0.5, 0.5)}, score);
    host().geometry = {};
    return asked;
}

void asksAllRegions(Stage& stage) {
    expectLines("the regions asked for", askedRegions(stage, 0, 1, 0.42), regionTable);
}

void stopsAtFirstRegion(Stage& stage) {
    const double scores[] = {0.9, 0.3, 0.1, 0.3, 0.1, 0.1};
    for (std::size_t hit = 1; hit <= regionTable.size(); ++hit) {
        Stage again(stage.occasion());
        expectLines("the regions asked for",
                    askedRegions(again, hit, 1, faceScoreIn(scores[hit - 1], true)),
                    {regionTable.begin(), regionTable.begin() + static_cast<std::ptrdiff_t>(hit)});
    }
}

void trustsHostsCentre(Stage& stage) {
    host().geometry.centerPoint = [](const KOR::KorRect&) { return KOR::KorPoint{0.05, 0.5}; };
    expectScore(stage, {largeFaceAt(0.5, 0.5)}, faceScoreIn(0.1, true));
}

void trustsHostsSides(Stage& stage) {
    host().geometry.width = [](const KOR::KorRect& rect) { return rect.width * 2; };
    host().geometry.height = [](const KOR::KorRect& rect) { return rect.height * 2; };
    expectScore(stage, {smallFaceAt(0.5, 0.5)}, faceScoreIn(0.9, true));
}

void beginsAnewForEachScene(Stage& stage) {
    const Lines log = faceLog(
        stage, video("clip.mp4", 1000).scenes({{0, 100}, {100, 200}}).keyFrames({10, 20, 110, 120}),
        {frameWith({largeFaceAt(0.5, 0.5)}), frameWith({}), frameWith({smallFaceAt(0.05, 0.5)}),
         frameWith({smallFaceAt(0.05, 0.5)})});
    expectLines("the log", log,
                {"face score result: {", "[10:0.492000]", "[20:0.420000]", "[110:0.492000]",
                 "[120:0.420000]", "}\\n"});
}

void decidesByFirstOfEquals(Stage& stage) {
    expectScore(stage, {largeFaceAt(0.05, 0.5), largeFaceAt(0.5, 0.5)}, faceScoreIn(0.1, true));
}

void addsNothingWithoutList(Stage& stage) {
    countInTicks(stage);
    stage.insert(oneScene({10}).faceFrames({frameWith({})}));
    stage.useKinds({6, 1});
    stage.component().start();
    stage.task(0).finish();
    host().faults.failEveryMaking(Product::owningList);
    stage.journal();
    stage.task(1).finish();
    host().faults = {};
    expectEqual("the first call", firstOf("calls", stage.journal("task1")),
                "task1.getResultList(3, 0, null, 0)");
    expectEqual("the score", only(stage.results()).score, durationScoreOf(0, 1000, 1000));
}

}  // namespace

const std::vector<ComponentCheck> facesChecks = {
    {"faces.large-in-the-middle", "A large face in the middle adds (0.9 x 0.6 + 0.7 x 0.4) x 0.6.",
     [](Stage& stage) {
         expectScore(stage, {faceAt(0.5, 0.5, 0.2, 0.2)}, (0.9 * 0.6 + 0.7 * 0.4) * 0.6);
     }},
    {"faces.small-in-the-middle", "A small face in the middle adds (0.9 x 0.6 + 0.3 x 0.4) x 0.6.",
     [](Stage& stage) {
         expectScore(stage, {faceAt(0.5, 0.5, 0.05, 0.05)}, (0.9 * 0.6 + 0.3 * 0.4) * 0.6);
     }},
    {"faces.left-of-the-middle", "A face between 0.1 and 0.2 from the left has region score 0.3.",
     [](Stage& stage) { expectScore(stage, {largeFaceAt(0.15, 0.5)}, faceScoreIn(0.3, true)); }},
    {"faces.at-the-left-edge", "A face within 0.1 from the left has region score 0.1.",
     [](Stage& stage) { expectScore(stage, {smallFaceAt(0.05, 0.5)}, faceScoreIn(0.1, false)); }},
    {"faces.at-the-right-count-as-middle",
     "A face on the right, up to the very edge, scores as one in the middle.",
     [](Stage& stage) {
         const Lines log =
             faceLog(stage, oneScene({10, 20}),
                     {frameWith({largeFaceAt(0.85, 0.5)}), frameWith({largeFaceAt(0.9375, 0.5)})});
         expectLines("the log", log,
                     {"face score result: {", "[10:0.492000]", "[20:0.492000]", "}\\n"});
     }},
    {"faces.at-the-bottom", "A face below 0.9 has region score 0.1.",
     [](Stage& stage) {
         const Lines log =
             faceLog(stage, oneScene({10, 20}),
                     {frameWith({largeFaceAt(0.5, 0.95)}), frameWith({smallFaceAt(0.5, 0.95)})});
         expectLines("the log", log,
                     {"face score result: {", "[10:0.204000]", "[20:0.108000]", "}\\n"});
     }},
    {"faces.outside-the-picture", "A face whose centre no region holds adds 0.42.",
     [](Stage& stage) { expectScore(stage, {largeFaceAt(0.5, 1.5)}, 0.42); }},
    {"faces.none", "A frame without faces adds 0.42.",
     [](Stage& stage) { expectScore(stage, frameWith({}), 0.42); }},
    {"faces.negative-count", "A frame whose count of faces is negative adds 0.42.",
     [](Stage& stage) { expectScore(stage, frameCounting(-1, {smallFaceAt(0.05, 0.5)}), 0.42); }},
    {"faces.area-of-a-hundredth-is-large",
     "A face of exactly one hundredth of the frame is large, one a breath smaller is not.",
     [](Stage& stage) {
         const double less = std::nextafter(0.04, 0.0);
         const Lines log =
             faceLog(stage, oneScene({10, 20}),
                     {frameWith({{0.5, 0.5, 0.25, 0.04}}), frameWith({{0.5, 0.5, 0.25, less}})});
         expectLines("the log", log,
                     {"face score result: {", "[10:0.492000]", "[20:0.396000]", "}\\n"});
     }},
    {"faces.largest-decides", "The face of the largest area decides, wherever it is listed.",
     [](Stage& stage) {
         expectScore(stage,
                     {largeFaceAt(0.5, 0.5), faceAt(0.15, 0.5, 0.25, 0.25), largeFaceAt(0.5, 0.5)},
                     faceScoreIn(0.3, true));
     }},
    {"faces.first-of-equals-decides", "Of faces of equal area the one listed first decides.",
     decidesByFirstOfEquals},
    {"faces.without-area-count-as-corner",
     "Where no face has an area, an all-zero rectangle stands for them, in the upper left corner.",
     [](Stage& stage) {
         expectScore(stage, {faceAt(0.5, 0.5, 0.0, 0.5), faceAt(0.5, 0.5, 0.5, 0.0)},
                     faceScoreIn(0.1, false));
     }},
    {"faces.behind-the-count-are-ignored", "Rectangles behind the count of faces are no faces.",
     [](Stage& stage) {
         expectScore(stage, frameCounting(1, {smallFaceAt(0.05, 0.5), largeFaceAt(0.5, 0.5)}),
                     faceScoreIn(0.1, false));
     }},
    {"faces.twenty-count", "All of twenty faces count, the last one too.",
     [](Stage& stage) {
         std::vector<KOR::KorRect> faces(19, smallFaceAt(0.5, 0.5));
         faces.push_back(largeFaceAt(0.15, 0.5));
         expectScore(stage, faces, faceScoreIn(0.3, true));
     }},
    {"faces.all-regions-are-asked-in-order",
     "The host is asked for six regions in their order as long as none holds the centre.",
     asksAllRegions},
    {"faces.first-region-decides",
     "The first region that the host says holds the centre decides, and no further one is asked.",
     stopsAtFirstRegion},
    {"faces.any-answer-but-0-is-inside", "Any answer but 0 says that a point lies in a rectangle.",
     [](Stage& stage) {
         expectLines("the regions asked for", askedRegions(stage, 2, -7, faceScoreIn(0.3, true)),
                     {regionTable[0], regionTable[1]});
     }},
    {"faces.centre-is-the-hosts", "Where a face's centre is, is what the host's geometry says.",
     trustsHostsCentre},
    {"faces.sides-are-the-hosts", "How large a face is, is what the host's geometry says.",
     trustsHostsSides},
    {"faces.frames-begin-anew-for-each-scene",
     "The n-th frame belongs to the n-th keyframe of every scene.", beginsAnewForEachScene},
    {"faces.surplus-frames-are-ignored", "Frames beyond a scene's keyframes count for nothing.",
     [](Stage& stage) {
         const Lines log = faceLog(stage, oneScene({10}), {frameWith({}), frameWith({})});
         expectLines("the log", log, {"face score result: {", "[10:0.420000]", "}\\n"});
     }},
    {"faces.keyframes-without-frame-get-nothing",
     "Keyframes beyond the frames get no face score, not that of a frame without faces.",
     [](Stage& stage) {
         const Lines log =
             faceLog(stage, oneScene({10, 20}), {frameWith({largeFaceAt(0.05, 0.5)})});
         expectLines("the log", log, {"face score result: {", "[10:0.204000]", "}\\n"});
         expectEqual("the best score", only(stage.results()).score,
                     durationScoreOf(0, 1000, 1000) + faceScoreIn(0.1, true));
     }},
    {"faces.no-frames-leave-scores", "Without any frame no score changes and none is logged.",
     [](Stage& stage) {
         expectLines("the log", faceLog(stage, oneScene({10}), {}),
                     {"face score result: {", "}\\n"});
         expectEqual("the score", only(stage.results()).score, durationScoreOf(0, 1000, 1000));
     }},
    {"faces.no-list-leaves-scores",
     "Where no list can be made, the task is asked with null, and no score changes.",
     addsNothingWithoutList},
    {"faces.are-asked-for-once", "The task is asked for its faces once, however many scenes.",
     [](Stage& stage) {
         countInTicks(stage);
         recordsOf(stage,
                   video("clip.mp4", 1000).scenes({{0, 100}, {100, 200}}).keyFrames({1, 101}),
                   {6, 1});
         expectLines("the queries", stage.journal("task1.getResultList"),
                     {"task1.getResultList(3, 0, list, 0)"});
     }},
};

}  // namespace validator
