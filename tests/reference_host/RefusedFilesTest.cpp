#include <fstream>
#include <string>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include "reference_host/ReferenceHost.h"
#include "tests/reference_host/FootageFiles.h"

namespace reference_host_tests {
namespace {

/// Expects a refusal in one line that holds `reason`.
void expectRefused(const std::filesystem::path& file, const std::string& reason) {
    const std::string refusal = refusalOf(file);
    EXPECT_NE(refusal.find(reason), std::string::npos) << file << ": '" << refusal << "'";
    EXPECT_EQ(refusal.find('\n'), std::string::npos) << refusal;
}

TEST(RefusedFiles, WhatIsNoRegularFile) {
    const FootageFiles files;
    expectRefused(files.path("missing.mp4"), "no such file");
    expectRefused(files.path(""), "directory");
    ASSERT_EQ(::mkfifo(files.path("fifo.mp4").c_str(), 0600), 0);
    expectRefused(files.path("fifo.mp4"), "not a regular file");
    expectRefused("/dev/null", "not a regular file");
    expectRefused("/dev/zero", "not a regular file");
    expectRefused("", "no such file");
    expectRefused("-", "no such file");
    expectRefused("pipe:0", "no such file");
    expectRefused("http://localhost/a.mp4", "no such file");
}

TEST(RefusedFiles, WhatMayNotBeRead) {
    if (::geteuid() == 0) GTEST_SKIP() << "root may read everything";
    const FootageFiles files;
    const auto file = files.makeVideo("a.mp4", 2);
    std::filesystem::permissions(file, std::filesystem::perms::none);
    expectRefused(file, "may not be read");
}

TEST(RefusedFiles, WhatIsNoMedia) {
    const FootageFiles files;
    expectRefused(files.write("empty.mp4", ""), "empty");
    expectRefused(files.write("text.mp4", "All work and no play makes Jack a dull boy.\n"),
                  "not a media file");
    expectRefused(files.write("text.txt", "\033[31mRed\033[0m and green.\n"), "not a media file");
    expectRefused(
        files.write("a.svg", "<?xml version='1.0'?>\n<svg xmlns='http://www.w3.org/2000/svg'/>\n"),
        "no video");
    expectRefused(files.write("a.srt", "1\n00:00:01,000 --> 00:00:02,000\nHello\n"), "no video");
}

TEST(RefusedFiles, WhatHasNoPictureOfItsOwn) {
    const FootageFiles files;
    expectRefused(files.make("a.wav", "-f lavfi -i sine=d=0.2"), "no video and no picture");
    expectRefused(files.make("a.m4a", "-f lavfi -i sine=d=0.2 -c:a aac"),
                  "no video and no picture");
    const auto cover = files.makeVideo("cover.png", 1, "");
    expectRefused(files.make("a.mp3", "-f lavfi -i sine=d=0.2 -i '" + cover.string() +
                                          "' -map 0 -map 1 -c:v copy -disposition:v attached_pic"),
                  "only a cover");
}

TEST(RefusedFiles, WhatIsTooDamaged) {
    const FootageFiles files;
    const auto withoutIndex = files.makeVideo("a.mp4", 20);
    FootageFiles::truncate(withoutIndex, 0.5);
    expectRefused(withoutIndex, "not a media file that can be read");
    const auto headerOnly = files.makeVideo("a.png", 1, "");
    FootageFiles::truncate(headerOnly, 0.02);
    EXPECT_NE(refusalOf(headerOnly), "");
}

/// Replaces width and height in the sample description of an uncompressed video.
void patchSize(const std::filesystem::path& mov, const std::string& bytes) {
    const std::string content = contentOf(mov);
    const std::size_t description = content.find("raw ", content.find("stsd"));
    ASSERT_NE(description, std::string::npos);
    FootageFiles::patch(mov, static_cast<std::int64_t>(description) + 28, bytes);
}

TEST(RefusedFiles, PicturesBeyondTheLimitNameIt) {
    const FootageFiles files;
    const auto gif = files.makeVideo("a.gif", 1, "");
    FootageFiles::patch(gif, 6, std::string(4, '\xff'));
    expectRefused(gif, "65535x65535");
    const auto png = files.makeVideo("a.png", 1, "");
    FootageFiles::patch(png, 16, std::string("\x00\x00\x50\x00\x00\x00\x50\x00", 8));
    expectRefused(png, "the limit is 268435456 pixels");
    const auto mov = files.makeVideo("a.mov", 2, "-c:v rawvideo -pix_fmt rgb24");
    patchSize(mov, "\xff\xff\xff\xff");
    expectRefused(mov, "the limit is 268435456 pixels");
}

TEST(RefusedFiles, PhotosThatDeclareTooManyPixels) {
    const FootageFiles files;
    const std::string size("\x4e\x20\x4e\x20", 4);  // 20,000 twice, as two bytes each
    const auto jpeg = files.makeVideo("a.jpg", 1, "");
    const std::size_t frame = contentOf(jpeg).find("\xff\xc0");
    FootageFiles::patch(jpeg, static_cast<std::int64_t>(frame) + 5, size);
    expectRefused(jpeg, "the limit is 268435456 pixels");
    const auto bmp = files.makeVideo("a.bmp", 1, "");
    FootageFiles::patch(bmp, 18, std::string("\x20\x4e\0\0\x20\x4e\0\0", 8));
    expectRefused(bmp, "the limit is 268435456 pixels");
    const auto tiff = files.makeVideo("a.tiff", 1, "");
    const std::string entry("\x01\x04\0\x01\0\0\0", 7);
    for (const char tag : {'\0', '\1'}) {
        const std::size_t place = contentOf(tiff).find(tag + entry);
        FootageFiles::patch(tiff, static_cast<std::int64_t>(place) + 8, "\x20\x4e");
    }
    expectRefused(tiff, "the limit is 268435456 pixels");
    // The largest that the format can declare is within the limit, but there is nothing of it.
    const auto webp = files.makeVideo("a.webp", 1, "");
    const std::size_t key = contentOf(webp).find("\x9d\x01\x2a");
    FootageFiles::patch(webp, static_cast<std::int64_t>(key) + 3, "\xff\x3f\xff\x3f");
    EXPECT_NE(refusalOf(webp), "");
}

TEST(RefusedFiles, PicturesThatTakeTooManyBytes) {
    const FootageFiles files;
    // 67.5 million pixels are few enough; of 8 bytes each, they are too many.
    const std::string picture = "-f lavfi -i color=size=9000x7500 -frames:v 1 -pix_fmt ";
    expectRefused(files.make("deep.png", picture + "rgba64be -compression_level 1"),
                  "the limit is 536870912 bytes");
    EXPECT_EQ(refusalOf(files.make("plain.png", picture + "rgb24 -compression_level 1")), "");
}

// Nothing but the named file is opened, and its name has no meaning.

TEST(RefusedFiles, PlaylistsLeadNowhere) {
    const FootageFiles files;
    const auto video = files.makeVideo("video.ts", 5);
    const std::string name = video.string();
    EXPECT_NE(refusalOf(files.write("a.m3u8",
                                    "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:1\n"
                                    "#EXTINF:0.2,\nvideo.ts\n#EXT-X-ENDLIST\n")),
              "");
    EXPECT_NE(refusalOf(files.write("b.m3u8",
                                    "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:1\n"
                                    "#EXTINF:0.2,\nfile://" +
                                        name + "\n#EXT-X-ENDLIST\n")),
              "");
    EXPECT_NE(refusalOf(files.write("a.ffconcat", "ffconcat version 1.0\nfile video.ts\n")), "");
    EXPECT_NE(refusalOf(files.write("b.ffconcat", "ffconcat version 1.0\nfile '" + name + "'\n")),
              "");
    EXPECT_NE(
        refusalOf(files.write(
            "a.mpd",
            "<?xml version='1.0'?><MPD xmlns='urn:mpeg:dash:schema:mpd:2011' type='static' "
            "mediaPresentationDuration='PT1S'><Period><AdaptationSet mimeType='video/mp2t'>"
            "<Representation id='1' bandwidth='1'><BaseURL>video.ts</BaseURL></Representation>"
            "</AdaptationSet></Period></MPD>")),
        "");
    EXPECT_NE(refusalOf(files.write("a.sdp",
                                    "v=0\no=- 0 0 IN IP4 127.0.0.1\ns=-\nc=IN IP4 127.0.0.1\n"
                                    "t=0 0\nm=video 5004 RTP/AVP 96\na=rtpmap:96 H264/90000\n")),
              "");
}

TEST(RefusedFiles, ColonsInANameAreNoProtocol) {
    const FootageFiles files;
    for (const char* name : {"a:b.mp4", "file:a.mp4", "concat:a.mp4", "http:a.mp4"}) {
        EXPECT_EQ(mediaOf(import(files.makeVideo(name, 3))).getDuration(), 1200000) << name;
    }
}

TEST(RefusedFiles, PatternsInANameAreNoSequence) {
    const FootageFiles files;
    for (const char* name : {"001.png", "002.png", "003.png"})
        files.makeVideo(name, 1, "");
    expectRefused(files.path("%03d.png"), "no such file");
    expectRefused(files.path("00?.png"), "no such file");
    files.makeVideo("%03d.png", 1, "");
    EXPECT_EQ(mediaOf(import(files.path("%03d.png"))).getMediaType(), KOR::mediaTypePhoto);
    EXPECT_EQ(mediaOf(import(files.path("001.png"))).getMediaType(), KOR::mediaTypePhoto);
}

// What can be read in part.

TEST(DamagedFiles, TruncatedVideosAreReadInPart) {
    const FootageFiles files;
    const auto mp4 = files.makeVideo("a.mp4", 100, "-c:v libx264 -bf 0 -movflags faststart");
    const auto mkv = files.makeVideo("a.mkv", 100, "-c:v libx264 -bf 0");
    for (const auto& file : {mp4, mkv}) {
        FootageFiles::truncate(file, 0.6);
        const auto material = import(file);
        EXPECT_EQ(mediaOf(material).getMediaType(), KOR::mediaTypeVideo) << file;
        EXPECT_GT(mediaOf(material).getDuration(), 0) << file;
        EXPECT_LT(mediaOf(material).getDuration(), 100 * KOR::ticksPerSecond / 25) << file;
        const auto warnings = reference_host::reportOf(*material).warnings;
        ASSERT_EQ(warnings.size(), 1U) << file;
        EXPECT_EQ(warnings[0], "damaged: the file ends before its last frame");
    }
}

TEST(DamagedFiles, WholeOnesHaveNoWarning) {
    const FootageFiles files;
    for (const char* name : {"a.mp4", "a.mkv", "a.ts", "a.mov"}) {
        const auto material = import(files.makeVideo(name, 20));
        EXPECT_TRUE(reference_host::reportOf(*material).warnings.empty()) << name;
    }
    EXPECT_TRUE(
        reference_host::reportOf(*import(files.makeVideo("a.gif", 5, ""))).warnings.empty());
}

}  // namespace
}  // namespace reference_host_tests
