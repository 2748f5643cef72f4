// Measuring the four bands of a 1920x1080 frame in each format, with each set of row kernels this
// processor runs, beside a plain memcpy of the same frame.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include "../DeglarerPro/IntensityMeasure.h"
#include "../DeglarerPro/IntensityMeasureReference.h"
#include "../DeglarerPro/LuminanceRows.h"
#include "MemcpyFloor.h"

namespace {

const int kWidth = 1920;
const int kHeight = 1080;

template <class Pixel>
std::vector<Pixel> RandomFrame()
{
    std::mt19937 random(5);
    std::vector<Pixel> pixels(static_cast<size_t>(kWidth) * kHeight);
    for (Pixel& pixel : pixels) {
        if constexpr (sizeof(Pixel) == 4) {
            pixel.r = static_cast<uint8_t>(random());
            pixel.g = static_cast<uint8_t>(random());
            pixel.b = static_cast<uint8_t>(random());
            pixel.a = 255;
        } else {
            std::uniform_real_distribution<float> channel(0.0f, 1.0f);
            pixel.r = channel(random);
            pixel.g = channel(random);
            pixel.b = channel(random);
            pixel.a = 1.0f;
        }
    }
    return pixels;
}

Intensities Measure(const VideoSample* pixels, const LuminanceRowKernels& kernels)
{
    return getAverageIntensity8u(pixels, kWidth, kWidth, kHeight, kernels);
}
Intensities Measure(const VideoSampleSwapped* pixels, const LuminanceRowKernels& kernels)
{
    return getAverageIntensity8u(pixels, kWidth, kWidth, kHeight, kernels);
}
Intensities Measure(const VideoSampleFloat* pixels, const LuminanceRowKernels& kernels)
{
    return getAverageIntensity32f(pixels, kWidth, kWidth, kHeight, kernels);
}
Intensities Measure(const VideoSampleSwappedFloat* pixels, const LuminanceRowKernels& kernels)
{
    return getAverageIntensity32f(pixels, kWidth, kWidth, kHeight, kernels);
}

// Argument: the index of the kernel set among those this processor runs; the last is the one
// the library uses.
template <class Pixel>
void BM_MeasureFrame(benchmark::State& state)
{
    const std::vector<const LuminanceRowKernels*>& available = AvailableLuminanceRowKernels();
    const size_t set = static_cast<size_t>(state.range(0));
    if (set >= available.size()) {
        state.SkipWithError("kernel set not run by this processor");
        return;
    }
    const LuminanceRowKernels& kernels = *available[set];
    const std::vector<Pixel> frame = RandomFrame<Pixel>();
    const size_t bytes = frame.size() * sizeof(Pixel);
    // A memcpy of the same frame, timed in each iteration beside the measuring, gives a floor
    // under the same load as the measuring itself.
    std::vector<Pixel> copy(frame.size());
    Bench::Stopwatch watch;
    Bench::Stopwatch copyWatch;
    for (auto _ : state) {
        state.PauseTiming();
        copyWatch.Start();
        std::memcpy(copy.data(), frame.data(), bytes);
        benchmark::DoNotOptimize(copy.data());
        benchmark::ClobberMemory();
        copyWatch.Stop();
        state.ResumeTiming();
        watch.Start();
        Intensities figures = Measure(frame.data(), kernels);
        benchmark::DoNotOptimize(figures);
        watch.Stop();
    }
    state.counters["x_memcpy_beside"] = watch.Seconds() / copyWatch.Seconds();
    state.SetLabel(std::string(kernels.name) + (&kernels == &ChosenLuminanceRowKernels() ? " (used)" : ""));
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(bytes);
}

// The defining per-pixel double loop, for comparison.
template <class Pixel>
void BM_MeasureFramePerPixel(benchmark::State& state)
{
    const std::vector<Pixel> frame = RandomFrame<Pixel>();
    const size_t bytes = frame.size() * sizeof(Pixel);
    Bench::Stopwatch watch;
    for (auto _ : state) {
        watch.Start();
        Intensities figures;
        if constexpr (sizeof(Pixel) == 4)
            figures = IntensityReference::getAverageIntensity8u(frame.data(), kWidth, kWidth, kHeight);
        else
            figures = IntensityReference::getAverageIntensity32f(frame.data(), kWidth, kWidth, kHeight);
        benchmark::DoNotOptimize(figures);
        watch.Stop();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(bytes);
}

} // namespace

BENCHMARK_TEMPLATE(BM_MeasureFrame, VideoSample)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_MeasureFrame, VideoSampleSwapped)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_MeasureFrame, VideoSampleFloat)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_MeasureFrame, VideoSampleSwappedFloat)->DenseRange(0, 2)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_MeasureFramePerPixel, VideoSample)->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(BM_MeasureFramePerPixel, VideoSampleFloat)->Unit(benchmark::kMicrosecond);
