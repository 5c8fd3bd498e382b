#pragma once

#include <atomic>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/media.h"

namespace minimal_host {

/// The brightness of a picture, row by row.
using Picture = std::vector<std::uint8_t>;

/// A file of plain pictures, as the source of a material: YUV4MPEG2 is a video, PGM a photo.
///
/// Tasks share it, so that it stays for them when the material goes. Only `isTainted` ever changes.
class Clip final : public KOR::IDmMediaSource, public std::enable_shared_from_this<Clip> {
public:
    /// Throws where the file is none of these, or damaged. With an empty root nothing is kept.
    Clip(const std::string& path, const std::string& cacheRoot) : file(path), stamp_(stampNow()) {
        std::string head(1024, '\0');
        std::ifstream(file, std::ios::binary).read(head.data(), 1023);
        const std::string line = head.substr(0, head.find('\n'));
        isVideo = line.starts_with("YUV4MPEG2 ") && line.size() < head.size();
        if (isVideo)
            readVideoHeader(line);
        else
            readPhotoHeader(head);
        const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file)) - begin_;
        count = isVideo ? bytes / stride_ : 1;
        if (bytes < stride_ || (isVideo && bytes % stride_ != 0) || count > maxPictures)
            throw std::runtime_error("it is cut short, or too long");
        // Another place for every content, and with another number for what later versions find.
        const std::size_t name = std::filesystem::hash_value(std::filesystem::absolute(file));
        if (!cacheRoot.empty())
            cacheDirectory_ = cacheRoot + "/minimal-1-" + std::to_string(name) + "-" + stamp_;
    }
    virtual ~Clip() = default;

    KOR::Status getMediaInfo(const char* key, KOR::KorValue* value) override {
        const std::string name = key == nullptr ? "" : key;
        const bool isCache = name == KOR::mediaInfoKey::media_cache;
        const std::string text = getMediaInfoText(key);
        if (value == nullptr || (!isCache && name != KOR::mediaInfoKey::media_length) ||
            text.size() >= sizeof value->asText)  // part of a path is another path
            return KOR::statusFailed;
        value->type = isCache ? KOR::KorValue::text : KOR::KorValue::int64;
        value->asInt64 = 0;
        if (isCache) value->asText[text.copy(value->asText, text.size())] = '\0';
        return KOR::statusOk;
    }
    const char* getMediaInfoText(const char* key) override {
        const bool isCache = key != nullptr && std::string(key) == KOR::mediaInfoKey::media_cache;
        return isCache && !isTainted ? cacheDirectory_.c_str() : "";
    }

    /// Where a picture begins, in ticks; for `count` the duration.
    std::int64_t position(std::int64_t picture) const {
        return (picture * ticksForRate_ + rate_ - 1) / rate_;
    }
    /// The first picture that begins at `ticks`, which are not beyond the duration, or behind it.
    std::int64_t firstFrom(std::int64_t ticks) const {
        return ticks <= 0 ? 0 : (ticks - 1) * rate_ / ticksForRate_ + 1;
    }
    std::int64_t duration() const { return position(count); }

    /// Reads the picture that is shown at `ticks`; throws std::runtime_error where that cannot be.
    Picture readAt(std::int64_t ticks) const {
        const bool isInside = ticks >= 0 && ticks < duration();
        return read(isInside ? firstFrom(ticks + 1) - 1 : count);
    }
    Picture read(std::int64_t picture) const {
        std::ifstream in(file, std::ios::binary);
        in.seekg(begin_ + picture * stride_);
        std::string mark(isVideo ? pictureMark.size() : 0, '\0');
        in.read(mark.data(), static_cast<std::streamsize>(mark.size()));
        Picture pixels(width * height);
        in.read(reinterpret_cast<char*>(pixels.data()),
                static_cast<std::streamsize>(pixels.size()));
        if (!in || (isVideo && mark != pictureMark))
            throw std::runtime_error("picture " + std::to_string(picture) + " is damaged");
        return pixels;
    }
    /// Throws where the file is not any more what the material was made of.
    void checkUnchanged() const {
        if (stampNow() != stamp_) throw std::runtime_error("the file has changed");
    }

    const std::string file;
    bool isVideo = false;
    std::size_t width = 0;
    std::size_t height = 0;
    std::int64_t count = 0;              ///< pictures
    std::atomic<bool> isTainted{false};  ///< a task has failed on it: nothing may be kept

private:
    // More than is ever meant; products of what is within them stay in 64 bits.
    static constexpr unsigned maxSide = 8192;
    static constexpr std::int64_t maxPictures = 1'000'000;
    static constexpr unsigned maxRate = 200'000;
    inline static const std::string pictureMark = "FRAME\n";

    std::string stampNow() const {
        std::error_code error;  // a file that has just gone has another stamp
        if (!std::filesystem::is_regular_file(file, error))
            throw std::runtime_error("the file cannot be read");
        const auto time = std::filesystem::last_write_time(file, error).time_since_epoch().count();
        return std::to_string(std::filesystem::file_size(file, error)) + "-" + std::to_string(time);
    }
    void readVideoHeader(const std::string& line) {
        const auto valueOf = [&line](const char* tag) {
            const std::size_t place = line.find(tag);
            return place == std::string::npos
                       ? ""
                       : line.substr(place + 2, line.find(' ', place + 2) - place - 2);
        };
        unsigned seconds = 0;
        const std::string colours = valueOf(" C");
        std::sscanf(valueOf(" W").c_str(), "%9zu", &width);
        std::sscanf(valueOf(" H").c_str(), "%9zu", &height);
        std::sscanf(valueOf(" F").c_str(), "%9u:%9u", &rate_, &seconds);
        const bool isRate = rate_ > 0 && rate_ <= maxRate && seconds > 0 && seconds <= maxRate;
        const bool isMono = colours == "mono";
        const bool isHalved = colours.empty() || colours == "420" || colours == "420jpeg" ||
                              colours == "420mpeg2" || colours == "420paldv";
        if (!isRate || !(isMono || isHalved)) throw std::runtime_error("unknown format");
        ticksForRate_ = seconds * KOR::ticksPerSecond;
        const std::size_t chroma = isMono ? 0 : (width + 1) / 2 * ((height + 1) / 2) * 2;
        setPlace(line.size() + 1, pictureMark.size() + width * height + chroma);
    }
    void readPhotoHeader(const std::string& head) {
        unsigned brightest = 0;
        int length = 0;
        std::sscanf(head.c_str(), "P5 %9zu %9zu %9u%n", &width, &height, &brightest, &length);
        if (length == 0 || brightest != 255) throw std::runtime_error("unknown format");
        setPlace(static_cast<std::size_t>(length) + 1, width * height);
    }
    void setPlace(std::size_t begin, std::size_t stride) {
        if (width == 0 || height == 0 || width > maxSide || height > maxSide)
            throw std::runtime_error("it has no picture, or too large a one");
        begin_ = static_cast<std::int64_t>(begin);
        stride_ = static_cast<std::int64_t>(stride);
    }

    std::string stamp_;
    std::string cacheDirectory_;
    unsigned rate_ = 1;  // pictures in `ticksForRate_`
    std::int64_t ticksForRate_ = 1;
    std::int64_t begin_ = 0;   // of the first picture in the file, bytes
    std::int64_t stride_ = 0;  // from one picture to the next, bytes
};

}  // namespace minimal_host
