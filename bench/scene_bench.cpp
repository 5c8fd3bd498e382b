// What scene detection costs beside decoding: the features of a decoded picture, and the signals of
// a moving sequence. Pictures of the first are in the cache; from memory they take up to twice as
// long.

extern "C" {
#include <libavutil/frame.h>
}

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include <benchmark/benchmark.h>

#include "reference_host/media/PictureScaler.h"
#include "reference_host/scenes/SignalBuilder.h"

namespace {

using reference_host::media::adopt;
using reference_host::media::AvPointer;
using reference_host::media::PictureScaler;
using reference_host::scenes::FrameSignal;
using reference_host::scenes::PictureSample;
using reference_host::scenes::SignalBuilder;

constexpr int picturesPerSecond = 30;

/// A landscape of soft spots with some grain, as brightness or one of the colours.
std::uint8_t sampleAt(int scene, int plane, int x, int y) {
    const auto cell = [&](int column, int row) {
        const auto seed =
            static_cast<std::uint32_t>((scene * 3 + plane) * 7919 + row * 101 + column);
        return static_cast<int>(seed * 2654435761U >> 25U);
    };
    constexpr int size = 64;
    const int column = x / size;
    const int row = y / size;
    const int right = x % size;
    const int down = y % size;
    const int upper = cell(column, row) * (size - right) + cell(column + 1, row) * right;
    const int lower = cell(column, row + 1) * (size - right) + cell(column + 1, row + 1) * right;
    const int grain =
        static_cast<int>(static_cast<std::uint32_t>(x * 31 + y * 17) * 2654435761U >> 29U);
    return static_cast<std::uint8_t>(60 + (upper * (size - down) + lower * down) / (size * size) +
                                     grain);
}

/// Makes what a camera sees of a scene, `moved` pixels from where it began.
AvPointer<AVFrame> makeFrame(int width, int height, int scene, int moved) {
    AvPointer<AVFrame> frame = adopt(av_frame_alloc());
    frame->format = AV_PIX_FMT_YUV420P;
    frame->width = width;
    frame->height = height;
    if (av_frame_get_buffer(frame.get(), 0) < 0) throw std::bad_alloc();
    for (int plane = 0; plane < 3; ++plane) {
        const int step = plane == 0 ? 1 : 2;
        for (int y = 0; y < height / step; ++y) {
            std::uint8_t* row = frame->data[plane] + std::ptrdiff_t{y} * frame->linesize[plane];
            for (int x = 0; x < width / step; ++x)
                row[x] = sampleAt(scene, plane, x * step + moved, y * step + moved / 4);
        }
    }
    return frame;
}

void featuresOfAPicture(benchmark::State& state) {
    const AvPointer<AVFrame> frame =
        makeFrame(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), 0, 0);
    PictureScaler scaler;
    const auto picture = std::make_unique<PictureSample>();
    for (auto _ : state) {
        scaler.scale(*frame, *picture);
        benchmark::DoNotOptimize(picture->luma.data());
    }
}
BENCHMARK(featuresOfAPicture)->Args({1280, 720})->Args({1920, 1080})->Unit(benchmark::kMicrosecond);

/// Ten shots of two seconds: a camera that pans by eight pixels from one picture to the next, and
/// cuts between the shots.
std::vector<PictureSample> makeSequence() {
    PictureScaler scaler;
    std::vector<PictureSample> pictures(20 * picturesPerSecond);
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const int number = static_cast<int>(i);
        const int shot = number / (2 * picturesPerSecond);
        const int moved = number % (2 * picturesPerSecond) * 8;
        scaler.scale(*makeFrame(1280, 720, shot, moved), pictures[i]);
        pictures[i].positionTicks = static_cast<std::int64_t>(i) *
                                    reference_host::scenes::ticksPerSecond / picturesPerSecond;
    }
    return pictures;
}

void signalsOfAMovingSequence(benchmark::State& state) {
    const std::vector<PictureSample> pictures = makeSequence();
    for (auto _ : state) {
        SignalBuilder builder;
        for (const PictureSample& picture : pictures)
            builder.add(featuresOf(picture));
        const std::vector<FrameSignal> signals = builder.finish();
        benchmark::DoNotOptimize(signals.data());
    }
    state.counters["per picture"] =
        benchmark::Counter(static_cast<double>(state.iterations() * pictures.size()),
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(signalsOfAMovingSequence)->Unit(benchmark::kMillisecond);

}  // namespace
