#include <cstdlib>

#include <gtest/gtest.h>

#include "host/status.h"
#include "reference_host/media/PositionReader.h"
#include "reference_host/media/inspect.h"
#include "reference_host/vision/FaceDetector.h"

namespace reference_host::vision {
namespace {

/// Real footage.
class ClipsFaces : public testing::Test {
protected:
    void SetUp() override {
        const char* directory = std::getenv("MATERIAL_ANALYSIS_CLIPS");
        if (directory == nullptr) GTEST_SKIP() << "MATERIAL_ANALYSIS_CLIPS is not set";
        clips = directory;
    }

    struct Count {
        int pictures = 0;
        int withFace = 0;
    };

    /// Looks for faces in `picturesPerSecond` of a clip.
    Count count(const std::string& clip, int picturesPerSecond) {
        const media::FootageFacts facts = media::inspect(clips / clip);
        media::PositionReader reader(clips / clip, facts, {});
        const std::unique_ptr<FaceDetector> detector = makeFaceDetector();
        Count count;
        Picture picture;
        for (std::int64_t position = 0; position < facts.durationTicks;
             position += KOR::ticksPerSecond / picturesPerSecond) {
            if (!reader.read(position, picture)) continue;
            ++count.pictures;
            if (!detector->detect(picture).empty()) ++count.withFace;
        }
        return count;
    }

    std::filesystem::path clips;
};

TEST_F(ClipsFaces, AreFoundInNearlyEveryPictureOfThem) {
    Count total;
    for (const char* clip :
         {"again.mkv", "eat.mkv", "no.mkv", "thanks.mkv", "want.mkv",
          "head-pose-face-detection-male.gif", "face-demographics-walking-and-pause.gif"}) {
        const Count found = count(clip, 3);
        EXPECT_GT(found.pictures, 3) << clip;
        total.pictures += found.pictures;
        total.withFace += found.withFace;
    }
    EXPECT_GE(total.withFace, 0.92 * total.pictures) << total.withFace << " of " << total.pictures;
}

TEST_F(ClipsFaces, AreNotFoundWhereThereAreNone) {
    for (const char* clip :
         {"man-on-green-screen.mp4", "testsrc.mkv", "bolt-multi-size-detection.gif"}) {
        const Count found = count(clip, 2);
        EXPECT_GT(found.pictures, 3) << clip;
        EXPECT_EQ(found.withFace, 0) << clip;
    }
}

TEST_F(ClipsFaces, AreNotSeenInDrawnAnimals) {
    // So many pictures that one is among them that only the last of the detectors refuses.
    const Count found = count("bigbuckbunny.mp4", 12);
    EXPECT_GT(found.pictures, 60);
    EXPECT_EQ(found.withFace, 0);
}

}  // namespace
}  // namespace reference_host::vision
