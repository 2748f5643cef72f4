// The sequential path on 1920x1080 8-bit frames: steady play, where each frame is measured once,
// copied out and remembered, and a flashed frame replaced from the memory; and, as the floor under
// steady play, the copies alone that a steady frame's render makes.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "../Common/Frame.h"
#include "../Common/FrameStrips.h"
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

const size_t kFrameBytes = static_cast<size_t>(kWidth) * kHeight * 4;

// Per-frame time against the best memcpy of the frame, and against the memcpy timed beside the
// work in each iteration, which runs under the same load as the work itself.
void ReportRatios(benchmark::State& state, const Bench::Stopwatch& watch, const Bench::Stopwatch& copyWatch)
{
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * kFrameBytes);
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(kFrameBytes);
    state.counters["x_memcpy_beside"] = watch.Seconds() / copyWatch.Seconds();
}

void TimeMemcpy(Bench::Stopwatch& copyWatch, unsigned char* destination, const unsigned char* source)
{
    copyWatch.Start();
    std::memcpy(destination, source, kFrameBytes);
    benchmark::DoNotOptimize(destination);
    benchmark::ClobberMemory();
    copyWatch.Stop();
}

InProcessHost::Options Sequential()
{
    InProcessHost::Options options;
    options.timeAccess = false;
    return options;
}

// Frame 0 steady, frame 1 a flash; the index grows with every render so that each frame is
// new to the measurement, as in real play.
void RenderSequence(benchmark::State& state, bool flashEveryOtherFrame)
{
    Clip clip(kWidth, kHeight, pfVideoSample, 2, 25.0);
    clip.Fill(0, 0.4f, 0.4f, 0.4f);
    clip.Fill(1, 0.8f, 0.8f, 0.8f);
    InProcessHost host(clip, Sequential());
    host.SetMaxFrames(1.0f);
    static unsigned int id = 0x8E000000u;
    CDeglarer effect;
    effect.SetId(id++);
    Picture output(kWidth, kHeight, pfVideoSample);
    FrameParams destination = output.Params();
    FrameParams steady = clip.Params(0);
    FrameParams flash = clip.Params(1);

    int index = 1;
    RenderInfo info = host.MakeRenderInfo(0);
    effect.Render(&host, &steady, nullptr, &destination, &info);   // fills the memory
    Bench::Stopwatch watch;
    Bench::Stopwatch copyWatch;
    for (auto _ : state) {
        info = host.MakeRenderInfo(index);
        FrameParams* source = flashEveryOtherFrame && (index % 2 == 1) ? &flash : &steady;
        TimeMemcpy(copyWatch, output.Data(), source->pBuffer);
        watch.Start();
        effect.Render(&host, source, nullptr, &destination, &info);
        watch.Stop();
        benchmark::DoNotOptimize(output.Data());
        ++index;
    }
    ReportRatios(state, watch, copyWatch);
}

void BM_SequentialSteadyFrame(benchmark::State& state)
{
    RenderSequence(state, false);
}

// Every other frame flashed: half the renders copy the last good frame out of the memory.
void BM_SequentialAlternatingFlash(benchmark::State& state)
{
    RenderSequence(state, true);
}

// What a steady frame's render must write, without the measurement or any decision: the source
// into the last frame's slot, then into the destination and the last good frame's slot, strip by
// strip in two passes as the render does it. The steady render makes the same copies, so its time
// beyond this one is the measurement and the bookkeeping.
void BM_SequentialSteadyCopiesAlone(benchmark::State& state)
{
    Clip clip(kWidth, kHeight, pfVideoSample, 1, 25.0);
    clip.Fill(0, 0.4f, 0.4f, 0.4f);
    CFrame source;
    source.Init(clip.Frame(0), kWidth, kHeight, clip.ByteSpan(), 4, pfVideoSample, false);
    Picture output(kWidth, kHeight, pfVideoSample);
    FrameParams destinationParams = output.Params();
    CFrame destination;
    destination.Init(&destinationParams);
    CFrame lastFrameSlot;
    CFrame lastGoodFrameSlot;
    if (!lastFrameSlot.Init(kWidth, kHeight, 4, nullptr, pfVideoSample, false) ||
        !lastGoodFrameSlot.Init(kWidth, kHeight, 4, nullptr, pfVideoSample, false)) {
        state.SkipWithError("no memory for the slots");
        return;
    }
    Bench::Stopwatch watch;
    Bench::Stopwatch copyWatch;
    for (auto _ : state) {
        TimeMemcpy(copyWatch, output.Data(), source.m_pBuffer);
        watch.Start();
        ForEachStrip(source, [&](int firstRow, int rowCount) {
            CopyStrip(source, lastFrameSlot, firstRow, rowCount);
        });
        ForEachStrip(source, [&](int firstRow, int rowCount) {
            CopyStrip(source, destination, firstRow, rowCount);
            CopyStrip(source, lastGoodFrameSlot, firstRow, rowCount);
        });
        benchmark::ClobberMemory();
        watch.Stop();
    }
    ReportRatios(state, watch, copyWatch);
}

} // namespace

BENCHMARK(BM_SequentialSteadyFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SequentialAlternatingFlash)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SequentialSteadyCopiesAlone)->Unit(benchmark::kMillisecond);
