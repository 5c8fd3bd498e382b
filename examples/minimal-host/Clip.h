#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace minimal_host {

/// The brightness of a picture, row by row.
using Picture = std::vector<unsigned char>;

/// A file of plain pictures: a YUV4MPEG2 video (8 bits, 4:2:0) or a PGM photo. Any thread.
class Clip {
public:
    /// `path` is UTF-8. Throws std::runtime_error where the file is neither.
    explicit Clip(const std::string& path);

    const std::string& path() const { return path_; }
    const std::filesystem::path& file() const { return file_; }
    bool isVideo() const { return isVideo_; }
    std::int64_t pictures() const { return pictures_; }
    std::int64_t durationTicks() const { return isVideo_ ? positionOf(pictures_) : 1; }

    /// Returns where a picture begins, in ticks, by its number from 0 on.
    std::int64_t positionOf(std::int64_t picture) const;

    /// Returns the first picture that begins at `ticks` or later.
    std::int64_t firstFrom(std::int64_t ticks) const;

    /// Reads a picture; throws std::runtime_error where it is not there or damaged.
    Picture read(std::int64_t picture) const;

private:
    void readHeader();

    std::string path_;            // in UTF-8
    std::filesystem::path file_;  // the same, as the system names it
    bool isVideo_ = false;
    std::int64_t pictures_ = 0;
    std::size_t width_ = 0;
    std::size_t height_ = 0;
    std::int64_t rate_ = 1;          // pictures ...
    std::int64_t ticksForRate_ = 1;  // ... in so many ticks
    std::int64_t begin_ = 0;         // of the first picture in the file, bytes
    std::int64_t stride_ = 0;        // from one picture to the next, bytes
};

}  // namespace minimal_host
