#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "fake_host/faces.h"
#include "modules/BusinessLayer/MaterialAnalysis/FaceScore.h"
#include "tests/component/PropertyCase.h"

namespace fake_host {
namespace {

/// Bounds of regions and of the picture, values between and around them, and what is no number.
double anyCoordinate() {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    static const std::vector<double> special{
        0.0, 0.1,  0.2,  0.8, 0.9,      1.0,       0.05,
        0.5, 0.01, -0.1, 1.1, infinity, -infinity, std::numeric_limits<double>::quiet_NaN()};
    const auto pick = *rc::gen::inRange<std::size_t>(0, special.size() * 2);
    return pick < special.size() ? special[pick] : *rc::gen::inRange(-10, 111) * 0.01;
}

KOR::FaceDetectFrame anyFrame() {
    KOR::FaceDetectFrame frame{};
    frame.faceCount = *rc::gen::inRange(-3, 24);
    for (KOR::KorRect& face : frame.faceRects)
        face = {anyCoordinate(), anyCoordinate(), anyCoordinate(), anyCoordinate()};
    return frame;
}

/// The score of a region by its bounds; below 0 outside the picture.
double regionScoreAt(double x, double y) {
    if (y >= 0.0 && y <= 0.9 && x >= 0.0 && x <= 1.0) {
        if (x >= 0.2) return 0.9;
        return x >= 0.1 ? 0.3 : 0.1;
    }
    return y >= 0.9 && y <= 1.0 && x >= 0.0 && x <= 1.0 ? 0.1 : -1.0;
}

/// Says in its own words what the face score is: the earliest of the largest areas above zero.
double modelOfFaceScore(const KOR::FaceDetectFrame& frame) {
    const int count = std::min(frame.faceCount, 20);
    if (count <= 0) return 0.42;
    std::vector<double> areas;
    for (int i = 0; i < count; ++i) {
        const double area = frame.faceRects[i].width * frame.faceRects[i].height;
        areas.push_back(std::isnan(area) ? 0.0 : std::max(area, 0.0));
    }
    const auto largest = std::max_element(areas.begin(), areas.end());
    KOR::KorRect face{0, 0, 0, 0};
    if (*largest > 0) face = frame.faceRects[largest - areas.begin()];
    const double region = regionScoreAt(face.x + face.width / 2, face.y + face.height / 2);
    if (region < 0) return 0.42;
    return (region * 0.6 + (*largest >= 0.01 ? 0.7 : 0.3) * 0.4) * 0.6;
}

RC_GTEST_PROP(FaceScoreProperty, EqualsItsModelBitForBit, ()) {
    host().reset();
    const KOR::FaceDetectFrame frame = anyFrame();
    RC_ASSERT(KOR::faceScoreOfFrame(frame) == modelOfFaceScore(frame));
}

RC_GTEST_PROP(FaceScoreProperty, LeavesFacesBehindTheCountAlone, ()) {
    host().reset();
    KOR::FaceDetectFrame frame = anyFrame();
    const double score = KOR::faceScoreOfFrame(frame);
    for (int i = std::clamp(frame.faceCount, 0, 20); i < 20; ++i)
        frame.faceRects[i] = {0, 0, 1, 1};
    frame.pos = *rc::gen::arbitrary<std::int64_t>();
    RC_ASSERT(KOR::faceScoreOfFrame(frame) == score);
}

RC_GTEST_PROP(FaceScoreProperty, OfAnyBytesIsOneOfSeven, ()) {
    host().reset();
    KOR::FaceDetectFrame frame{};
    const auto bytes = *rc::gen::container<std::vector<std::uint8_t>>(
        sizeof frame, rc::gen::arbitrary<std::uint8_t>());
    std::memcpy(&frame, bytes.data(), sizeof frame);
    const double score = KOR::faceScoreOfFrame(frame);
    const std::vector<double> all{scoreWithoutFaces,       faceScoreIn(0.9, true),
                                  faceScoreIn(0.9, false), faceScoreIn(0.3, true),
                                  faceScoreIn(0.3, false), faceScoreIn(0.1, true),
                                  faceScoreIn(0.1, false)};
    RC_ASSERT(std::count(all.begin(), all.end(), score) == 1);
}

RC_GTEST_PROP(PairingProperty, RestartsForEverySceneAndEndsWithTheShorter, ()) {
    Case run;
    const auto keyFrameCounts = *rc::gen::resize(
        8, rc::gen::container<std::vector<std::size_t>>(rc::gen::inRange<std::size_t>(0, 7)));
    const auto corners = *rc::gen::resize(
        8, rc::gen::container<std::vector<double>>(rc::gen::element(-0.5, 0.05, 0.15, 0.5)));
    const auto bits =
        *rc::gen::resize(8, rc::gen::container<std::vector<int>>(rc::gen::inRange(0, 800)));

    std::vector<KOR::FaceDetectFrame> frames;
    std::vector<KOR::EntropySample> samples;
    for (const double x : corners)
        frames.push_back(frameWith({largeFaceAt(x, 0.5)}));
    for (const int hundredths : bits)
        samples.push_back({hundredths, hundredths * 0.01});

    std::vector<std::vector<KOR::KeyFrameScore>> before;
    auto expected = before;
    for (std::size_t s = 0; s < keyFrameCounts.size(); ++s) {
        before.emplace_back();
        expected.emplace_back();
        for (std::size_t j = 0; j < keyFrameCounts[s]; ++j) {
            const auto pos = static_cast<std::int64_t>(s * 100 + j);
            KOR::KeyFrameScore keyFrame{static_cast<std::int32_t>(s), 0.7, pos};
            before.back().push_back(keyFrame);
            if (j < frames.size()) keyFrame.score += modelOfFaceScore(frames[j]);
            if (j < samples.size()) keyFrame.score += samples[j].entropy * 0.125 * 0.1;
            expected.back().push_back(keyFrame);
        }
    }

    FakeMedia& material = run.insert(video("clip.mp4", 1000).faceFrames(frames).entropies(samples));
    run.useKinds({7});
    host().task(0).setSource(&material, 0, 0);
    run.probe().moveTo(0, 0);
    run.probe().keyFramesOfScences() = before;
    const KOR::Status status = run.probe().faceAndEntropyAnalysisFinished(&host().task(0));
    RC_ASSERT(status == KOR::statusOk);
    RC_ASSERT(run.probe().keyFramesOfScences() == expected);
    RC_ASSERT(host().task(0).askedFor(KOR::analysisTypeFace) == 1);
    RC_ASSERT(host().task(0).askedFor(KOR::analysisTypeEntropy) ==
              static_cast<int>(keyFrameCounts.size()));
}

RC_GTEST_PROP(PhotoProperty, TakesTheFirstFaceOfTheFirstFrame, ()) {
    Case run;
    std::vector<KOR::FaceDetectFrame> frames;
    for (int i = *rc::gen::inRange(0, 4); i > 0; --i)
        frames.push_back(anyFrame());
    FakeMedia& material = run.insert(photo("photo.jpg").faceFrames(frames));
    run.useKinds({1});
    host().task(0).setSource(&material, 0, 0);
    run.probe().moveTo(0, 0);
    run.probe().addDefaultResult(1);
    RC_ASSERT(run.probe().faceDetectFinished(&host().task(0)) == KOR::statusOk);

    KOR::KorRect expected{};
    if (!frames.empty() && frames[0].faceCount > 0) expected = frames[0].faceRects[0];
    const KOR::KorRect taken = run.probe().results().at(0).faceRectOfPhoto;
    // By their bytes, since not every coordinate is a number.
    RC_ASSERT(std::memcmp(&taken, &expected, sizeof taken) == 0);
}

}  // namespace
}  // namespace fake_host
