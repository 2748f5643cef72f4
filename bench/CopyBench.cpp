// Processors::CCopy on a 1920x1080 frame of each format, beside a plain memcpy of the same bytes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "../Common/Copy.h"
#include "../Common/Frame.h"
#include "MemcpyFloor.h"

namespace {

const int kWidth = 1920;
const int kHeight = 1080;

int DepthOf(PixelFormat format)
{
    switch (format) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return 16;
    case pfMono8: return 1;
    default: return 4;
    }
}

void BM_Memcpy(benchmark::State& state)
{
    const size_t bytes = static_cast<size_t>(kWidth) * kHeight * state.range(0);
    std::vector<uint8_t> src(bytes, 1), dst(bytes);
    for (auto _ : state) {
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
}

void BM_CCopy(benchmark::State& state)
{
    const PixelFormat format = static_cast<PixelFormat>(state.range(0));
    const int depth = DepthOf(format);
    const size_t bytes = static_cast<size_t>(kWidth) * kHeight * depth;
    std::vector<uint8_t> src(bytes, 1), dst(bytes);
    CFrame srcFrame, dstFrame;
    srcFrame.Init(src.data(), kWidth, kHeight, kWidth * depth, depth, format, false);
    dstFrame.Init(dst.data(), kWidth, kHeight, kWidth * depth, depth, format, false);
    Processors::CCopy copy;
    Bench::Stopwatch watch;
    for (auto _ : state) {
        watch.Start();
        copy.Process(&srcFrame, &dstFrame);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
        watch.Stop();
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * bytes);
    // Measured in the same run so the ratio holds on a noisy machine.
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(bytes);
}

} // namespace

BENCHMARK(BM_Memcpy)->Arg(1)->Arg(4)->Arg(16)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_CCopy)
    ->Arg(pfVideoSample)
    ->Arg(pfVideoSampleSwapped)
    ->Arg(pfVideoSampleFloat)
    ->Arg(pfVideoSampleSwappedFloat)
    ->Arg(pfMono8)
    ->Arg(pfMonoFloat)
    ->Unit(benchmark::kMicrosecond);
