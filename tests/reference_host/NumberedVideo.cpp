#include "tests/reference_host/NumberedVideo.h"

#include "reference_host/media/PictureReader.h"
#include "reference_host/media/inspect.h"

namespace reference_host_tests {
namespace {

constexpr int bits = 8;

/// Reads the number from a picture whose brightness at a place, in parts of the sides, is asked
/// for.
template <typename Brightness>
int readNumber(Brightness brightnessAt) {
    int number = 0;
    for (int bit = 0; bit < bits; ++bit) {
        if (brightnessAt((bit + 0.5) / bits, 0.25) >= 128) number |= 1 << bit;
    }
    return number;
}

}  // namespace

std::filesystem::path makeNumbered(const FootageFiles& files, const std::string& name, int frames,
                                   const std::string& arguments) {
    // The blocks fill the upper half, the lower one goes on moving.
    return files.make(name, movingPictures(frames) +
                                " -vf \"format=yuv420p,"
                                "geq=lum='if(lt(Y,H/2),16+219*mod(floor(N/pow(2,floor(8*X/W))),2),"
                                "lum(X,Y))':cb='if(lt(Y,H/2),128,cb(X,Y))'"
                                ":cr='if(lt(Y,H/2),128,cr(X,Y))'\" " +
                                arguments);
}

int numberOf(const reference_host::vision::Picture& picture) {
    return readNumber([&](double x, double y) {
        const auto column = static_cast<std::size_t>(x * picture.widthPx);
        const auto row = static_cast<std::size_t>(y * picture.heightPx);
        const auto width = static_cast<std::size_t>(picture.widthPx);
        return picture.bgr[(row * width + column) * 3 + 1];
    });
}

std::vector<NumberedPicture> numberedPictures(const std::filesystem::path& file) {
    using namespace reference_host;
    media::PictureReader reader(file, media::inspect(file), {});
    scenes::PictureSample sample;
    std::vector<NumberedPicture> pictures;
    while (reader.next(sample)) {
        const int number = readNumber([&](double x, double y) {
            const auto column = static_cast<std::size_t>(x * scenes::lumaWidthPx);
            const auto row = static_cast<std::size_t>(y * scenes::lumaHeightPx);
            return sample.luma[row * scenes::lumaWidthPx + column];
        });
        pictures.push_back({sample.positionTicks, number});
    }
    return pictures;
}

}  // namespace reference_host_tests
