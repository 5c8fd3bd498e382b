#include <cmath>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "host/lists.h"
#include "host/tasks.h"
#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/AnalysisRun.h"
#include "tests/reference_host/FootageFiles.h"
#include "tests/reference_host/TaskRecorder.h"

namespace reference_host_tests {
namespace {

constexpr std::int64_t frame = 400000;  // 25 a second
constexpr std::int64_t oneColour = 3 * frame;
constexpr std::int64_t twoColours = 30 * frame;

/// A second of one even grey, then a second of two: 0 bits, then 1 bit. Stored without loss.
std::filesystem::path greyVideo(const FootageFiles& files) {
    return files.make("grey.mkv",
                      "-f lavfi -i nullsrc=size=128x96:rate=25:duration=2 -vf "
                      "\"geq=lum='if(lt(N,25),100,if(lt(X,W/2),50,200))':cb=128:cr=128\" "
                      "-pix_fmt gray -c:v ffv1 -g 5");
}

std::filesystem::path greyPhoto(const FootageFiles& files) {
    return files.make("grey.png",
                      "-f lavfi -i nullsrc=size=128x96 -vf "
                      "\"geq=lum='if(lt(X,W/2),50,200)':cb=128:cr=128\" "
                      "-pix_fmt gray -frames:v 1");
}

/// The entropy that a run finds in one picture: `brightness` is ffmpeg's formula for each of its
/// pixels, in numbers of the pixel format.
double bitsIn(const std::string& name, const std::string& size, const std::string& pixelFormat,
              const std::string& brightness, const std::string& storage) {
    const FootageFiles files;
    const auto file = files.make(name, "-f lavfi -i nullsrc=size=" + size +
                                           " -vf \"format=" + pixelFormat + ",geq=lum='" +
                                           brightness + "':cb=128:cr=128\" -frames:v 1 " + storage);
    AnalysisRun run({8}, file);
    run.finish();
    return run.entropies().at(0).entropy;
}

std::vector<std::int64_t> positionsOf(const std::vector<KOR::EntropySample>& samples) {
    std::vector<std::int64_t> positions;
    for (const KOR::EntropySample& sample : samples)
        positions.push_back(sample.pos);
    return positions;
}

std::vector<double> bitsOf(const std::vector<KOR::EntropySample>& samples) {
    std::vector<double> bits;
    for (const KOR::EntropySample& sample : samples)
        bits.push_back(sample.entropy);
    return bits;
}

TEST(PictureTask, GivesEveryHandedPositionItsSampleInOrder) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    const std::vector<std::int64_t> handed = {twoColours, oneColour, twoColours, 0, oneColour};
    run.lookAt(handed);
    run.finish();
    EXPECT_EQ(positionsOf(run.entropies()), handed);
    EXPECT_EQ(bitsOf(run.entropies()), (std::vector{1.0, 0.0, 1.0, 0.0, 0.0}));
    EXPECT_TRUE(run.faces().empty()) << "it was not asked for them";
    EXPECT_TRUE(run.blurs().empty()) << "it was not asked for them";
}

TEST(PictureTask, FindsInManyPicturesWhatItFindsInFew) {
    constexpr std::int64_t frames = 60;
    const FootageFiles files;
    const auto video =
        files.make("many.mkv", movingPictures(frames, "320x240") + " -c:v ffv1 -g 5");
    std::vector<std::int64_t> handed;
    // 7 has no factor in common with the number of frames: all of them, out of order.
    for (std::int64_t i = 0; i < frames; ++i)
        handed.push_back(i * 7 % frames * frame);
    AnalysisRun many({2, 3, 8}, video);
    many.lookAt(handed);
    many.finish();
    ASSERT_EQ(positionsOf(many.entropies()), handed);
    // So few that they are looked at one after the other.
    constexpr std::size_t few = 6;
    AnalysisRun run({2, 3, 8}, video);
    for (std::size_t begin = 0; begin < handed.size(); begin += few) {
        run.prepare();
        const auto at = handed.begin() + static_cast<std::ptrdiff_t>(begin);
        run.lookAt({at, at + few});
        run.finish(begin / few + 1);
        const auto entropies = run.entropies();
        const auto blurs = run.blurs();
        const auto faces = run.faces();
        ASSERT_EQ(entropies.size(), few);
        for (std::size_t i = 0; i < few; ++i) {
            EXPECT_EQ(many.entropies()[begin + i].entropy, entropies[i].entropy);
            EXPECT_EQ(many.blurs()[begin + i].sharpness, blurs[i].sharpness);
            EXPECT_EQ(many.faces()[begin + i].pos, faces[i].pos);
            EXPECT_EQ(many.faces()[begin + i].faceCount, faces[i].faceCount);
            EXPECT_EQ(reference_host::facesAt(*many.material, handed[begin + i]),
                      faces[i].faceCount);
        }
    }
}

TEST(PictureTask, TellsOfProgressInAscendingOrder) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    run.lookAt(std::vector<std::int64_t>(2000, oneColour));
    run.finish();
    std::int32_t last = -1;
    for (const TaskRecorder::Event& event : run.recorder.events()) {
        EXPECT_GT(event.progress, last - (event.event == KOR::taskEventFinished ? 1 : 0));
        last = event.progress;
    }
    EXPECT_EQ(last, 100);
}

TEST(PictureTask, KeepsThePlaceOfAPictureThatIsNotThere) {
    const FootageFiles files;
    AnalysisRun run({3, 8, 2}, greyVideo(files));
    run.lookAt({-frame, twoColours});
    run.finish();
    EXPECT_EQ(bitsOf(run.entropies()), (std::vector{0.0, 1.0}));
    ASSERT_EQ(run.blurs().size(), 2U);
    EXPECT_EQ(run.blurs()[0].pos, -frame);
    EXPECT_EQ(run.blurs()[0].sharpness, 0.0);
    EXPECT_GT(run.blurs()[1].sharpness, 0.0);
    ASSERT_EQ(run.faces().size(), 2U);
    for (const KOR::FaceDetectFrame& faces : run.faces()) {
        EXPECT_EQ(faces.faceCount, 0);
        EXPECT_EQ(faces.reserved, 0);
    }
    EXPECT_EQ(run.faces()[0].pos, -frame);
    EXPECT_EQ(run.faces()[1].pos, twoColours);
}

TEST(PictureTask, LooksAtNothingWherePositionsAreMissing) {
    const FootageFiles files;
    AnalysisRun run({3, 8}, greyVideo(files));
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
    EXPECT_TRUE(run.faces().empty());
    EXPECT_TRUE(run.entropies().empty());
}

TEST(PictureTask, ForgetsPositionsWithTheSource) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    run.lookAt({0, twoColours});
    run.prepare();
    run.finish();
    EXPECT_TRUE(run.entropies().empty());
}

TEST(PictureTask, LooksAtAPhotoOnce) {
    const FootageFiles files;
    AnalysisRun run({2, 3, 8}, greyPhoto(files));
    run.finish();
    ASSERT_EQ(run.faces().size(), 1U);
    EXPECT_EQ(run.faces()[0].pos, 0);
    EXPECT_EQ(run.faces()[0].faceCount, 0);
    EXPECT_EQ(positionsOf(run.entropies()), (std::vector<std::int64_t>{0}));
    EXPECT_EQ(bitsOf(run.entropies()), std::vector{1.0});
    ASSERT_EQ(run.blurs().size(), 1U);
    EXPECT_GT(run.blurs()[0].sharpness, 0.0);
}

TEST(PictureTask, EveryTypeEndsNormallyOnAPhoto) {
    const FootageFiles files;
    const auto photo = greyPhoto(files);
    for (const std::int32_t type : {1, 2, 3, 8, 9}) {
        SCOPED_TRACE(type);
        AnalysisRun run({type}, photo);
        run.finish();
        EXPECT_EQ(run.recorder.milestones(), Milestones{2});
        EXPECT_EQ(reference_host::reportOf(*run.material).failure, "");
    }
}

TEST(PictureTask, TellsSharpFromBlurred) {
    const FootageFiles files;
    const auto video = files.make("blur.mkv", movingPictures(50, "320x240") +
                                                  " -vf \"gblur=sigma=3:enable='gte(n,25)'\" "
                                                  "-c:v ffv1 -g 5");
    AnalysisRun run({2}, video);
    run.lookAt({oneColour, twoColours});
    run.finish();
    ASSERT_EQ(run.blurs().size(), 2U);
    EXPECT_GT(run.blurs()[0].sharpness, 4 * run.blurs()[1].sharpness);
}

TEST(PictureTask, MeasuresTheEntropyOfFullRangeExactly) {
    const std::string png = "-pix_fmt gray";
    EXPECT_EQ(bitsIn("a.png", "64x64", "gray", "77", png), 0.0);
    EXPECT_EQ(bitsIn("a.png", "64x64", "gray", "if(lt(X,W/2),3,250)", png), 1.0);
    EXPECT_NEAR(bitsIn("a.png", "256x4", "gray", "X", png), 8.0, 1e-9);
}

TEST(PictureTask, CountsThePixelsOfAllColumns) {
    for (const int width : {1, 2, 3, 4, 5, 6, 7, 8, 9}) {
        SCOPED_TRACE(width);
        const double bits =
            bitsIn("a.png", std::to_string(width) + "x3", "gray", "10*X", "-pix_fmt gray");
        EXPECT_NEAR(bits, std::log2(width), 1e-9);
    }
}

TEST(PictureTask, MeasuresTheEntropyOfOtherFormatsClosely) {
    EXPECT_NEAR(bitsIn("a.mkv", "1024x4", "gray10", "X", "-c:v ffv1"), 8.0, 0.01);
    EXPECT_NEAR(bitsIn("a.mkv", "256x4", "yuv422p", "X", "-c:v ffv1 -color_range pc"), 8.0, 0.01);
    // The 220 levels of limited range.
    EXPECT_NEAR(bitsIn("a.mkv", "220x4", "yuv420p", "16+X", "-c:v ffv1"), std::log2(220.0), 0.001);
}

TEST(PictureTask, ReportsProgressThatReachesTheEnd) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    run.lookAt({oneColour});
    run.finish();
    const auto events = run.recorder.events();
    ASSERT_EQ(events.size(), 2U);
    EXPECT_EQ(events[0].event, std::uint32_t{KOR::taskEventProgress});
    EXPECT_EQ(events[0].progress, 100);
}

TEST(PictureTask, TellsWhereItHasLookedForFaces) {
    const FootageFiles files;
    AnalysisRun run({3}, greyVideo(files));
    const auto facesAt = [&](std::int64_t position) {
        return reference_host::facesAt(*run.material, position);
    };
    EXPECT_EQ(facesAt(0), std::nullopt) << "nobody has looked yet";
    run.lookAt({0, twoColours, -frame});
    run.finish();
    EXPECT_EQ(facesAt(-frame), std::nullopt) << "there is no picture";
    EXPECT_EQ(facesAt(0), 0);
    EXPECT_EQ(facesAt(twoColours), 0);
    EXPECT_EQ(facesAt(oneColour), std::nullopt);
    run.prepare();
    run.lookAt({oneColour});
    run.finish(2);
    EXPECT_EQ(facesAt(oneColour), 0);
    EXPECT_EQ(facesAt(0), std::nullopt) << "only the last detection counts";
}

TEST(PictureTask, LooksForNoFacesInAnEntropyRun) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    run.lookAt({0});
    run.finish();
    EXPECT_EQ(reference_host::facesAt(*run.material, 0), std::nullopt);
}

TEST(PictureTask, FailsWhereTheFileIsGone) {
    const FootageFiles files;
    const auto video = greyVideo(files);
    AnalysisRun run({3, 8}, video);
    run.lookAt({0});
    std::filesystem::remove(video);
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), (Milestones{3, 2}));
    EXPECT_NE(reference_host::reportOf(*run.material).failure, "");
    EXPECT_TRUE(run.entropies().empty());
    EXPECT_EQ(reference_host::facesAt(*run.material, 0), std::nullopt);
}

TEST(PictureTask, StopsBetweenPictures) {
    const FootageFiles files;
    AnalysisRun run({8}, greyVideo(files));
    run.lookAt(std::vector<std::int64_t>(100000, oneColour));
    run.recorder.inside = [&](const TaskRecorder::Event& entry) {
        if (entry.event == KOR::taskEventProgress) run.task->stop();
    };
    run.task->start();
    run.recorder.waitFor(KOR::taskEventStopped);
    EXPECT_EQ(run.recorder.milestones(), Milestones{4});
    EXPECT_TRUE(run.entropies().empty());
}

TEST(FaceModel, ThatCannotBeUsedChangesNothing) {
    const FootageFiles files;
    const auto noModel = files.write("no_model.onnx", "nothing of the kind");
    try {
        reference_host::useFaceModel(noModel);
        ADD_FAILURE() << "it was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_NE(std::string(error.what()).find(noModel.string()), std::string::npos)
            << error.what();
    }
    AnalysisRun run({3}, greyPhoto(files));
    run.finish();
    EXPECT_EQ(run.recorder.milestones(), Milestones{2});
    EXPECT_EQ(run.faces().size(), 1U);
}

}  // namespace
}  // namespace reference_host_tests
