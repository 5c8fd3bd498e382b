#include "Clip.h"

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "host/status.h"

namespace minimal_host {
namespace {

constexpr std::string_view pictureMark = "FRAME\n";  // before each picture of a video
constexpr std::int64_t mostPictures = 10'000'000;

}  // namespace

Clip::Clip(const std::string& path) : path_(path), file_(std::u8string(path.begin(), path.end())) {
    readHeader();
    const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file_)) - begin_;
    pictures_ = stride_ > 0 ? bytes / stride_ : 0;
    if (pictures_ == 0 || pictures_ > mostPictures)
        throw std::runtime_error(path + " holds no pictures that can be read");
}

void Clip::readHeader() {
    std::string head(256, '\0');
    std::ifstream(file_, std::ios::binary).read(head.data(), 255);
    int length = 0;
    long rate = 0;
    long seconds = 0;
    // So many digits at most keep all products within 64 bits.
    const int found = std::sscanf(head.c_str(), "YUV4MPEG2 W%4zu H%4zu F%6ld:%4ld", &width_,
                                  &height_, &rate, &seconds);
    isVideo_ = found == 4 && rate > 0 && seconds > 0 && head.find('\n') != std::string::npos &&
               head.find(" C") == head.find(" C420jpeg");
    if (isVideo_) {
        rate_ = rate;
        ticksForRate_ = seconds * KOR::ticksPerSecond;
        length = static_cast<int>(head.find('\n'));
    } else {
        std::sscanf(head.c_str(), "P5 %4zu %4zu 255%n", &width_, &height_, &length);
    }
    if (length == 0 || width_ == 0 || height_ == 0) return;
    const std::size_t colour = isVideo_ ? (width_ + 1) / 2 * ((height_ + 1) / 2) * 2 : 0;
    const std::size_t mark = isVideo_ ? pictureMark.size() : 0;
    begin_ = length + 1;
    stride_ = static_cast<std::int64_t>(mark + width_ * height_ + colour);
}

std::int64_t Clip::positionOf(std::int64_t picture) const {
    return (picture * ticksForRate_ + rate_ - 1) / rate_;
}

std::int64_t Clip::firstFrom(std::int64_t ticks) const {
    return ticks <= 0 ? 0 : (ticks - 1) * rate_ / ticksForRate_ + 1;
}

Picture Clip::read(std::int64_t picture) const {
    std::ifstream in(file_, std::ios::binary);
    in.seekg(begin_ + picture * stride_);
    std::string mark(isVideo_ ? pictureMark.size() : 0, '\0');
    in.read(mark.data(), static_cast<std::streamsize>(mark.size()));
    Picture pixels(width_ * height_);
    in.read(reinterpret_cast<char*>(pixels.data()), static_cast<std::streamsize>(pixels.size()));
    if (in && picture >= 0 && (!isVideo_ || mark == pictureMark)) return pixels;
    throw std::runtime_error("picture " + std::to_string(picture) + " cannot be read");
}

}  // namespace minimal_host
