// The time-access path on 1920x1080 8-bit frames: renders whose neighbourhood is already
// measured (a copy and the pool look-ups), and a first render in the middle of an unmeasured
// clip, which fetches and measures the frames its scans reach.
#include <benchmark/benchmark.h>

#include <atomic>
#include <cstring>

#include "../DeglarerPro/Deglarer.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "MemcpyFloor.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TestHost::Picture;

const int kWidth = 1920;
const int kHeight = 1080;
const int kFrames = 17;
const int kFlash = 8;        // a one-frame flash, replaced by frame 7
const int kSteadyFrame = 4;  // flags nothing

const size_t kFrameBytes = static_cast<size_t>(kWidth) * kHeight * 4;

// A steady scene with a slight flicker and one flashed frame in the middle.
Clip FlashClip()
{
    Clip clip(kWidth, kHeight, pfVideoSample, kFrames, 25.0);
    for (int index = 0; index < kFrames; ++index) {
        const float level = index == kFlash ? 0.8f : (index % 2 ? 0.41f : 0.40f);
        clip.Fill(index, level, level, level);
    }
    return clip;
}

// The host hands out its own frame memory, as one with the clip in memory would, so that only
// the effect's work is timed.
InProcessHost::Options SharedFrames()
{
    InProcessHost::Options options;
    options.copyDeliveries = false;
    return options;
}

unsigned int NewEffectId()
{
    static std::atomic<unsigned int> next{0x7A000000u};
    return next++;
}

// Argument: the frame rendered, steady or flashed.
void BM_TimeAccessMeasuredNeighbourhood(benchmark::State& state)
{
    const int index = static_cast<int>(state.range(0));
    Clip clip = FlashClip();
    InProcessHost host(clip, SharedFrames());
    CDeglarer effect;
    effect.SetId(NewEffectId());
    Picture output(kWidth, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    for (int frame = 0; frame < kFrames; ++frame)
        host.RenderFrame(&effect, frame, &destination);
    host.ClearRecord();

    // A memcpy of the same frame into the same destination, timed in each iteration beside the
    // render, gives a floor under the same load as the render itself.
    Bench::Stopwatch watch;
    Bench::Stopwatch copyWatch;
    for (auto _ : state) {
        state.PauseTiming();
        copyWatch.Start();
        std::memcpy(output.Data(), clip.Frame(index), kFrameBytes);
        benchmark::DoNotOptimize(output.Data());
        benchmark::ClobberMemory();
        copyWatch.Stop();
        state.ResumeTiming();
        watch.Start();
        host.RenderFrame(&effect, index, &destination);
        watch.Stop();
        benchmark::DoNotOptimize(output.Data());
        benchmark::ClobberMemory();
    }
    const bool replaced = output.SameAs(clip, kFlash - 1);
    state.SetLabel(index == kFlash ? (replaced ? "flashed, replaced" : "flashed, NOT replaced") : "steady");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFrameBytes);
    state.counters["fetched"] = static_cast<double>(host.FetchCount()) / state.iterations();
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(kFrameBytes);
    state.counters["x_memcpy_beside"] = watch.Seconds() / copyWatch.Seconds();
}

// Each render is the first of a new effect id, so nothing of the clip is measured yet.
void BM_TimeAccessFirstRenderUnmeasured(benchmark::State& state)
{
    const int index = static_cast<int>(state.range(0));
    Clip clip = FlashClip();
    InProcessHost host(clip, SharedFrames());
    Picture output(kWidth, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    Bench::Stopwatch watch;
    for (auto _ : state) {
        CDeglarer effect;
        effect.SetId(NewEffectId());
        watch.Start();
        host.RenderFrame(&effect, index, &destination);
        watch.Stop();
        benchmark::DoNotOptimize(output.Data());
        benchmark::ClobberMemory();
    }
    state.SetLabel(index == kFlash ? "flashed" : "steady");
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFrameBytes);
    state.counters["fetched"] = static_cast<double>(host.FetchCount()) / state.iterations();
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(kFrameBytes);
}

} // namespace

BENCHMARK(BM_TimeAccessMeasuredNeighbourhood)->Arg(kSteadyFrame)->Arg(kFlash)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_TimeAccessFirstRenderUnmeasured)->Arg(kSteadyFrame)->Arg(kFlash)->Unit(benchmark::kMillisecond);
