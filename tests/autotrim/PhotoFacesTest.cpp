#include <array>
#include <cmath>

#include <gtest/gtest.h>

#include "autotrim/ExitCode.h"
#include "tests/autotrim/Portrait.h"
#include "tests/autotrim/Process.h"
#include "tests/autotrim/ProgramReport.h"
#include "tests/autotrim/RealFootage.h"
#include "tests/autotrim/TemporaryDirectory.h"

namespace autotrim {
namespace {

using std::filesystem::path;

/// x, y, width, height in fractions of a picture.
using Rect = std::array<double, 4>;

class PhotoFaces : public RealFootage {
protected:
    path portrait(int orientation) const {
        const path file = directory_.path() / ("portrait" + std::to_string(orientation) + ".jpg");
        makePortrait(clip("again.mkv"), orientation, file);
        return file;
    }

private:
    TemporaryDirectory directory_;
};

/// Runs autotrim --photos on good photos, and returns the report's entries.
Json lookedAt(const std::vector<path>& photos) {
    std::vector<std::string> arguments = {"--photos", "--json", "-"};
    for (const path& photo : photos)
        arguments.push_back(photo.string());
    const Ended ended = run(arguments);
    EXPECT_EQ(ended.exitCode, exitAllDone);
    EXPECT_EQ(ended.errors, "");
    return Json::parse(ended.output)["materials"];
}

TEST_F(PhotoFaces, AreFoundWhereTheyAre) {
    const Json entry = lookedAt({portrait(1)})[0];
    EXPECT_EQ(entry["type"], "photo");
    EXPECT_EQ(entry["outcome"], "analysed");
    ASSERT_EQ(entry["results"].size(), 1U);
    const Json& record = entry["results"][0];
    EXPECT_EQ(record["score"], 1.0);
    EXPECT_EQ(record["faces"], 1);
    // From the chin to the hair, and from ear to ear, as one sees it.
    const auto [x, y, width, height] = record["faceRectOfPhoto"].get<Rect>();
    EXPECT_NEAR(x + width / 2, 0.44, 0.06);
    EXPECT_NEAR(y + height / 2, 0.24, 0.06);
    EXPECT_NEAR(width, 0.24, 0.1);
    EXPECT_NEAR(height, 0.21, 0.1);
}

TEST_F(PhotoFaces, AreTheSameInEveryOrientation) {
    std::vector<path> portraits;
    for (int orientation = 1; orientation <= 8; ++orientation)
        portraits.push_back(portrait(orientation));
    const Json entries = lookedAt(portraits);
    ASSERT_EQ(entries.size(), 8U);
    const auto rectOf = [](const Json& entry) {
        EXPECT_EQ(entry["results"][0]["faces"], 1) << entry["file"];
        return entry["results"][0]["faceRectOfPhoto"].get<Rect>();
    };
    const Rect upright = rectOf(entries[0]);
    for (const Json& entry : entries) {
        const Rect rect = rectOf(entry);
        for (std::size_t i = 0; i < rect.size(); ++i)
            EXPECT_NEAR(rect[i], upright[i], 0.03) << entry["file"] << " " << i;
    }
}

TEST_F(PhotoFaces, AreLeftAloneUnlessAsked) {
    const Ended ended = run({"--json", "-", portrait(1).string()});
    const Json entry = Json::parse(ended.output)["materials"][0];
    EXPECT_EQ(entry["outcome"], "default");
    EXPECT_EQ(entry["results"][0]["faceRectOfPhoto"].get<Rect>(), Rect{});
    EXPECT_TRUE(entry["results"][0]["faces"].is_null());
}

}  // namespace
}  // namespace autotrim
