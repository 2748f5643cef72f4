// The sequential path on 1920x1080 8-bit frames: steady play, where each frame is measured once,
// copied out and remembered, and a flashed frame replaced from the memory.
#include <benchmark/benchmark.h>

#include <vector>

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
    for (auto _ : state) {
        info = host.MakeRenderInfo(index);
        FrameParams* source = flashEveryOtherFrame && (index % 2 == 1) ? &flash : &steady;
        watch.Start();
        effect.Render(&host, source, nullptr, &destination, &info);
        watch.Stop();
        benchmark::DoNotOptimize(output.Data());
        ++index;
    }
    const size_t frameBytes = static_cast<size_t>(kWidth) * kHeight * 4;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * frameBytes);
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / Bench::MemcpySeconds(frameBytes);
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

} // namespace

BENCHMARK(BM_SequentialSteadyFrame)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_SequentialAlternatingFlash)->Unit(benchmark::kMillisecond);
