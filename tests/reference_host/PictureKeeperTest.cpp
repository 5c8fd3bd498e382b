#include <cstdint>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "reference_host/media/Container.h"
#include "reference_host/media/PictureKeeper.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

using namespace reference_host::media;
using Timestamps = std::vector<std::int64_t>;

/// Parts of 100 from 1000 on.
constexpr TimeGrid inParts(std::size_t extras) {
    return {.origin = 1000, .step = 100, .extras = extras};
}

Timestamps timestampsOf(const std::vector<KeptPicture>& pictures) {
    Timestamps timestamps;
    for (const KeptPicture& picture : pictures)
        timestamps.push_back(picture.timestamp);
    return timestamps;
}

class KeptPicturesTest : public testing::Test {
protected:
    /// Appends pictures of this sharpness.
    static void append(KeptPictures& kept, float sharpness, const Timestamps& timestamps) {
        std::vector<KeptPicture> more;
        for (const std::int64_t timestamp : timestamps)
            more.push_back({timestamp, sharpness, nullptr});
        kept.append(std::move(more));
    }
};

TEST_F(KeptPicturesTest, GoOnWhereTheOnesBeforeEnd) {
    KeptPictures kept(inParts(0));
    append(kept, 1, {1010, 1110});
    append(kept, 1, {});
    append(kept, 1, {1210});
    EXPECT_EQ(timestampsOf(kept.take()), Timestamps({1010, 1110, 1210}));
}

TEST_F(KeptPicturesTest, TheSharperOfAPartStays) {
    KeptPictures kept(inParts(0));
    append(kept, 1, {1010});
    append(kept, 2, {1090, 1110});
    append(kept, 1, {1190, 1210});
    EXPECT_EQ(timestampsOf(kept.take()), Timestamps({1090, 1110, 1210}));
}

TEST_F(KeptPicturesTest, ExtrasStayWhileThereMayBeSome) {
    KeptPictures kept(inParts(2));
    append(kept, 1, {1010, 1020, 1110, 1120, 1210, 1220});
    append(kept, 2, {1310, 1320});
    EXPECT_EQ(timestampsOf(kept.take()), Timestamps({1010, 1020, 1110, 1120, 1210, 1310}));
}

class PictureKeeperTest : public testing::Test {
protected:
    PictureKeeperTest()
        : container_(files_.makeVideo("a.mp4", 2, "-c:v libx264"), {}),
          frame_(adopt(av_frame_alloc())) {
        frame_->width = 64;
        frame_->height = 48;
        frame_->format = AV_PIX_FMT_YUV420P;
        EXPECT_EQ(av_frame_get_buffer(frame_.get(), 0), 0);
    }

    void offer(std::int64_t timestamp, float sharpness) {
        keeper_.offer(*frame_, timestamp, sharpness);
    }

    FootageFiles files_;
    Container container_;
    AvPointer<AVFrame> frame_;
    PictureKeeper keeper_{container_.video(), inParts(9)};
};

TEST_F(PictureKeeperTest, KeepsTheSharpestOfEachPart) {
    offer(1000, 1);
    offer(1050, 3);
    offer(1099, 2);
    offer(1100, 1);
    offer(950, 1);
    const std::vector<KeptPicture> kept = keeper_.take();
    EXPECT_EQ(timestampsOf(kept), Timestamps({950, 1050, 1100}));
    for (const KeptPicture& picture : kept)
        EXPECT_NE(picture.picture, nullptr);
    EXPECT_TRUE(keeper_.take().empty());
}

TEST_F(PictureKeeperTest, KeepsOneOfEitherView) {
    offer(1000, 3);
    offer(1010, 4);
    keeper_.changeView(1050);
    offer(1050, 1);
    offer(1060, 2);
    offer(1100, 1);
    EXPECT_EQ(timestampsOf(keeper_.take()), Timestamps({1010, 1060, 1100}));
    offer(1000, 3);
    offer(1050, 1);
    EXPECT_EQ(timestampsOf(keeper_.take()), Timestamps({1000})) << "the change is forgotten";
}

TEST_F(PictureKeeperTest, TakesTheFirstOfSeveralChanges) {
    // In the order of decoding: the change is seen at 1080 first, and then found to be at 1040.
    offer(1000, 3);
    keeper_.changeView(1080);
    offer(1080, 1);
    keeper_.changeView(1040);
    offer(1040, 2);
    keeper_.changeView(1090);
    offer(1090, 1);
    EXPECT_EQ(timestampsOf(keeper_.take()), Timestamps({1000, 1040}));
}

}  // namespace
}  // namespace reference_host_tests
