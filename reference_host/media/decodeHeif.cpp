#include "reference_host/media/decodeHeif.h"

#ifdef REFERENCE_HOST_HAS_LIBHEIF

#include <algorithm>
#include <array>
#include <memory>
#include <string>

#include <libheif/heif.h>

#include "reference_host/media/Limits.h"
#include "reference_host/media/MediaError.h"

namespace reference_host::media {
namespace {

constexpr std::int64_t bytesPerPixel = 3;

/// What is enough to recognise the format: the first box as far as its main brand.
constexpr std::size_t headBytes = 12;

struct HeifFree {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(const heif_image* image) const { heif_image_release(image); }
};

template <typename Object>
using HeifPointer = std::unique_ptr<Object, HeifFree>;

void require(const heif_error& error) {
    if (error.code == heif_error_Ok) return;
    // Some messages end with a line feed.
    std::string reason = error.message;
    reason.erase(reason.find_last_not_of('\n') + 1);
    throw MediaError("its picture cannot be decoded (" + reason + ")");
}

/// A file that libheif reads, one piece after the other.
class Input {
public:
    explicit Input(const ByteSource& file) : file_(file) {}

    static std::int64_t position(void* self) { return static_cast<Input*>(self)->offset_; }

    static int read(void* data, std::size_t size, void* self) {
        auto& input = *static_cast<Input*>(self);
        auto* to = static_cast<std::uint8_t*>(data);
        for (std::size_t done = 0; done < size;) {
            const std::ptrdiff_t got = input.file_.readAt(input.offset_, to + done, size - done);
            if (got <= 0) return -1;
            input.offset_ += got;
            done += static_cast<std::size_t>(got);
        }
        return 0;
    }

    static int seek(std::int64_t position, void* self) {
        static_cast<Input*>(self)->offset_ = position;
        return 0;
    }

    static heif_reader_grow_status waitForSize(std::int64_t size, void* self) {
        return size > static_cast<Input*>(self)->file_.sizeBytes()
                   ? heif_reader_grow_status_size_beyond_eof
                   : heif_reader_grow_status_size_reached;
    }

private:
    const ByteSource& file_;
    std::int64_t offset_ = 0;
};

constexpr heif_reader reader{.reader_api_version = 1,
                             .get_position = Input::position,
                             .read = Input::read,
                             .seek = Input::seek,
                             .wait_for_file_size = Input::waitForSize};

/// Photos only: what begins with the brand of a sequence of pictures is a video to FFmpeg.
bool isHeif(const ByteSource& file) {
    std::array<std::uint8_t, headBytes> head{};
    if (file.readAt(0, head.data(), head.size()) != std::ptrdiff_t{headBytes}) return false;
    // The brand of all photos, which does not tell how they are coded, is not enough for libheif to
    // be sure that it can read one.
    return heif_check_filetype(head.data(), headBytes) == heif_filetype_yes_supported ||
           heif_read_main_brand(head.data(), headBytes) == heif_fourcc_to_brand("mif1");
}

void requireSensibleSize(std::int64_t width, std::int64_t height) {
    const std::int64_t pixels = width * height;
    if (pixels <= std::min(maxPicturePixels, maxPictureBytes / bytesPerPixel)) return;
    const std::string size = std::to_string(width) + "x" + std::to_string(height);
    throw MediaError(pixels > maxPicturePixels ? "no picture could be decoded (Picture size " +
                                                     size + " is invalid): the limit is " +
                                                     std::to_string(maxPicturePixels) + " pixels"
                                               : "no picture could be decoded (Picture of " + size +
                                                     " is too large: the limit is " +
                                                     std::to_string(maxPictureBytes) + " bytes)");
}

void append(std::vector<std::uint8_t>& bytes, std::size_t number, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * i) & 0xff));
}

/// Begins a BMP file whose rows follow from top to bottom.
std::vector<std::uint8_t> bmpHead(int width, int height, std::size_t pictureBytes) {
    constexpr std::size_t headerBytes = 14 + 40;
    std::vector<std::uint8_t> head{'B', 'M'};
    head.reserve(headerBytes + pictureBytes);
    append(head, headerBytes + pictureBytes, 4);
    append(head, 0, 4);
    append(head, headerBytes, 4);
    append(head, 40, 4);
    append(head, static_cast<std::size_t>(width), 4);
    // Below 0: not upside down, as is usual.
    append(head, static_cast<std::size_t>(-std::int64_t{height}), 4);
    append(head, 1, 2);
    append(head, 8 * bytesPerPixel, 2);
    append(head, 0, 4);
    append(head, pictureBytes, 4);
    // No resolution and no palette.
    for (int i = 0; i < 4; ++i)
        append(head, 0, 4);
    return head;
}

std::vector<std::uint8_t> asBmp(const heif_image& image) {
    int stride = 0;
    const std::uint8_t* rows =
        heif_image_get_plane_readonly(&image, heif_channel_interleaved, &stride);
    const int width = heif_image_get_width(&image, heif_channel_interleaved);
    const int height = heif_image_get_height(&image, heif_channel_interleaved);
    if (rows == nullptr || width <= 0 || height <= 0) throw MediaError("it holds no picture");
    requireSensibleSize(width, height);

    // Rows take multiples of four bytes.
    const std::size_t rowBytes = (static_cast<std::size_t>(width) * bytesPerPixel + 3) / 4 * 4;
    std::vector<std::uint8_t> bmp =
        bmpHead(width, height, rowBytes * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y) {
        const std::uint8_t* pixel = rows + std::ptrdiff_t{y} * stride;
        const std::size_t end = bmp.size() + rowBytes;
        for (int x = 0; x < width; ++x, pixel += bytesPerPixel)
            bmp.insert(bmp.end(), {pixel[2], pixel[1], pixel[0]});
        bmp.resize(end);
    }
    return bmp;
}

}  // namespace

std::optional<std::vector<std::uint8_t>> decodeHeif(const ByteSource& file) {
    if (!isHeif(file)) return std::nullopt;
    const HeifPointer<heif_context> context(heif_context_alloc());
    if (!context) throw std::bad_alloc();
    Input input(file);
    require(heif_context_read_from_reader(context.get(), &reader, &input, nullptr));

    heif_image_handle* handle = nullptr;
    require(heif_context_get_primary_image_handle(context.get(), &handle));
    const HeifPointer<heif_image_handle> owned(handle);
    // What the file declares, before any of it is decoded. A picture put together from others can
    // turn out larger than that; libheif refuses those whose side reaches its limit.
    const int width = heif_image_handle_get_width(handle);
    const int height = heif_image_handle_get_height(handle);
    requireSensibleSize(width, height);
    heif_context_set_maximum_image_size_limit(context.get(), std::max(width, height) + 1);

    heif_image* image = nullptr;
    require(heif_decode_image(handle, &image, heif_colorspace_RGB, heif_chroma_interleaved_RGB,
                              nullptr));
    const HeifPointer<const heif_image> decoded(image);
    return asBmp(*decoded);
}

}  // namespace reference_host::media

#else

namespace reference_host::media {

std::optional<std::vector<std::uint8_t>> decodeHeif(const ByteSource&) {
    return std::nullopt;
}

}  // namespace reference_host::media

#endif
