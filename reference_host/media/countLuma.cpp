#include "reference_host/media/countLuma.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <functional>
#include <vector>

#include "reference_host/media/FrameScaler.h"
#include "reference_host/media/pixelRange.h"

namespace reference_host::media {
namespace {

using vision::LumaHistogram;

/// What is added up of red, green and blue for brightness (ITU-R BT.601), as parts of 65,536, which
/// is what they are together: grey keeps its value to the last bit.
constexpr std::array<std::uint32_t, 3> lumaWeights{19595, 38470, 7471};
constexpr int weightBits = 16;
static_assert(lumaWeights[0] + lumaWeights[1] + lumaWeights[2] == 1U << weightBits);

/// Deeper samples than this are not counted as integers.
constexpr int maxDepth = 16;

std::uint32_t weighted(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    return (red * lumaWeights[0] + green * lumaWeights[1] + blue * lumaWeights[2] +
            (1U << (weightBits - 1))) >>
           weightBits;
}

/// Returns the full-range 8-bit value of each sample value of `depth` bits.
std::vector<std::uint8_t> levelsOf(int depth, bool fullRange) {
    const int count = 1 << depth;
    std::vector<std::uint8_t> levels(static_cast<std::size_t>(count));
    // 16 and 219 are black and the way to white in limited range of 8 bits.
    const double black = fullRange ? 0 : 16.0 * count / 256;
    const double contrast = fullRange ? count - 1 : 219.0 * count / 256;
    for (int value = 0; value < count; ++value) {
        const double level = (value - black) * 255 / contrast;
        // Eight bits and more of full range: equally many values for each level.
        const double exact = fullRange && depth >= 8 ? value >> (depth - 8) : level + 0.5;
        levels[static_cast<std::size_t>(value)] =
            static_cast<std::uint8_t>(std::clamp(exact, 0.0, 255.0));
    }
    return levels;
}

/// Reads single components of a frame's rows, whatever their layout.
class Rows {
public:
    Rows(const AVFrame& frame, const AVPixFmtDescriptor& description)
        : frame_(frame), description_(description) {
        for (std::size_t i = 0; i < planes_.size(); ++i) {
            planes_[i] = frame.data[i];
            strides_[i] = frame.linesize[i];
        }
    }

    void read(std::vector<std::uint16_t>& samples, int row, int component) const {
        samples.resize(static_cast<std::size_t>(frame_.width));
        av_read_image_line2(samples.data(), const_cast<const std::uint8_t**>(planes_.data()),
                            strides_.data(), &description_, 0, row, component, frame_.width, 0,
                            sizeof(std::uint16_t));
    }

private:
    const AVFrame& frame_;
    const AVPixFmtDescriptor& description_;
    std::array<const std::uint8_t*, 4> planes_{};
    std::array<int, 4> strides_{};
};

/// Neighbours are often alike, and one count after the other in the same place has to wait for it:
/// so those of every fourth column share a table.
LumaHistogram countBytes(const AVFrame& frame) {
    std::array<LumaHistogram, 4> tables{};
    for (int y = 0; y < frame.height; ++y) {
        const std::uint8_t* row = frame.data[0] + std::ptrdiff_t{y} * frame.linesize[0];
        int x = 0;
        for (; x + 4 <= frame.width; x += 4) {
            for (std::size_t i = 0; i < tables.size(); ++i)
                ++tables[i][row[x + static_cast<int>(i)]];
        }
        for (; x < frame.width; ++x)
            ++tables[0][row[x]];
    }
    LumaHistogram histogram{};
    for (const LumaHistogram& table : tables)
        std::transform(table.begin(), table.end(), histogram.begin(), histogram.begin(),
                       std::plus<>());
    return histogram;
}

/// Counts what is seen instead of each of 256 values.
LumaHistogram mapped(const LumaHistogram& values, const std::vector<std::uint8_t>& levels) {
    LumaHistogram histogram{};
    for (std::size_t value = 0; value < values.size(); ++value)
        histogram[levels[value]] += values[value];
    return histogram;
}

LumaHistogram countPalette(const AVFrame& frame) {
    std::vector<std::uint8_t> levels(256);
    for (std::size_t i = 0; i < levels.size(); ++i) {
        std::uint32_t colour = 0;
        std::memcpy(&colour, frame.data[1] + i * sizeof(colour), sizeof(colour));
        levels[i] = static_cast<std::uint8_t>(
            weighted(colour >> 16 & 0xff, colour >> 8 & 0xff, colour & 0xff));
    }
    return mapped(countBytes(frame), levels);
}

LumaHistogram countLumaSamples(const AVFrame& frame, const AVPixFmtDescriptor& description) {
    const AVComponentDescriptor& luma = description.comp[0];
    std::vector<std::uint8_t> levels = levelsOf(luma.depth, isFullRange(frame));
    if (frame.format == AV_PIX_FMT_MONOWHITE) std::reverse(levels.begin(), levels.end());
    if (luma.depth == 8 && luma.step == 1) return mapped(countBytes(frame), levels);

    LumaHistogram histogram{};
    const Rows rows(frame, description);
    std::vector<std::uint16_t> samples;
    for (int y = 0; y < frame.height; ++y) {
        rows.read(samples, y, 0);
        for (const std::uint16_t sample : samples)
            ++histogram[levels[sample]];
    }
    return histogram;
}

LumaHistogram countColours(const AVFrame& frame, const AVPixFmtDescriptor& description) {
    const auto& parts = description.comp;
    const bool areAlike = parts[0].depth == parts[1].depth && parts[1].depth == parts[2].depth;
    // Before they are added up, samples of different depths have to be made alike.
    const bool addFirst = areAlike && parts[0].depth >= 8;
    std::array<std::vector<std::uint8_t>, 3> levels;
    for (std::size_t i = 0; i < levels.size(); ++i)
        levels[i] = levelsOf(parts[i].depth, true);

    LumaHistogram histogram{};
    const Rows rows(frame, description);
    std::array<std::vector<std::uint16_t>, 3> samples;
    for (int y = 0; y < frame.height; ++y) {
        for (std::size_t i = 0; i < samples.size(); ++i)
            rows.read(samples[i], y, static_cast<int>(i));
        for (std::size_t x = 0; x < samples[0].size(); ++x) {
            const auto part = [&](std::size_t i) -> std::uint32_t {
                return addFirst ? samples[i][x] : levels[i][samples[i][x]];
            };
            const std::uint32_t luma = weighted(part(0), part(1), part(2));
            ++histogram[addFirst ? levels[0][luma] : luma];
        }
    }
    return histogram;
}

/// Says whether all samples are integers that can be read one by one and mean what they say.
bool isReadable(const AVPixFmtDescriptor& description, AVPixelFormat format) {
    constexpr std::uint64_t unreadable =
        AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    const bool isXyz = format == AV_PIX_FMT_XYZ12LE || format == AV_PIX_FMT_XYZ12BE;
    return (description.flags & unreadable) == 0 && !isXyz &&
           std::all_of(description.comp, description.comp + description.nb_components,
                       [](const AVComponentDescriptor& part) { return part.depth <= maxDepth; });
}

}  // namespace

std::optional<LumaHistogram> countLuma(const AVFrame& frame) {
    const auto format = static_cast<AVPixelFormat>(frame.format);
    const AVPixFmtDescriptor* description = av_pix_fmt_desc_get(format);
    if (description == nullptr) return std::nullopt;
    if ((description->flags & AV_PIX_FMT_FLAG_PAL) != 0) return countPalette(frame);
    if (isReadable(*description, format)) {
        return (description->flags & AV_PIX_FMT_FLAG_RGB) != 0
                   ? countColours(frame, *description)
                   : countLumaSamples(frame, *description);
    }
    FrameScaler scaler(AV_PIX_FMT_RGB24, SWS_POINT | SWS_ACCURATE_RND);
    const AVFrame* plain = scaler.scale(frame, frame.width, frame.height);
    if (plain == nullptr) return std::nullopt;
    return countColours(*plain, *av_pix_fmt_desc_get(AV_PIX_FMT_RGB24));
}

}  // namespace reference_host::media
