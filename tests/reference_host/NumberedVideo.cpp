#include "tests/reference_host/NumberedVideo.h"

#include "reference_host/scenes/PictureFeatures.h"
#include "tests/reference_host/PictureReaders.h"

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

int numberOf(const reference_host::scenes::Thumbnail& thumbnail) {
    using namespace reference_host::scenes;
    return readNumber([&](double x, double y) {
        const auto column = static_cast<std::size_t>(x * thumbnailWidthPx);
        const auto row = static_cast<std::size_t>(y * thumbnailHeightPx);
        return thumbnail.luma[row * thumbnailWidthPx + column];
    });
}

std::vector<NumberedPicture> numberedPictures(const std::filesystem::path& file) {
    const auto reader = readerOfAll(file);
    reference_host::scenes::PictureFeatures picture;
    std::vector<NumberedPicture> pictures;
    while (reader->next(picture))
        pictures.push_back({picture.positionTicks, numberOf(picture.thumbnail)});
    return pictures;
}

}  // namespace reference_host_tests
