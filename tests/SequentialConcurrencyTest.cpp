// Renders of one id and field wait for each other; renders of other ids or fields don't.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "../DeglarerPro/Deglarer.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TestHost::Picture;

const int kFrames = 12;

// Grey frames told apart by one byte, frame 6 a flash.
Clip FlashClip()
{
    Clip clip(16, 8, pfVideoSample, kFrames, 25.0);
    for (int index = 0; index < kFrames; ++index) {
        const float level = index == 6 ? 0.8f : 0.4f;
        clip.Fill(index, level, level, level);
        clip.Frame(index)[0] = static_cast<uint8_t>(index);
    }
    return clip;
}

std::unique_ptr<InProcessHost> SequentialHost(Clip& clip, uint32_t instance)
{
    InProcessHost::Options options;
    options.timeAccess = false;
    options.instanceId = instance;
    return std::unique_ptr<InProcessHost>(new InProcessHost(clip, options));
}

void OnThreads(int count, const std::function<void(int)>& work)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < count; ++t)
        threads.emplace_back(work, t);
    for (std::thread& thread : threads)
        thread.join();
}

// Each thread is a host instance of its own playing the whole clip on one effect object; the
// instances share the id and field, so their renders must take turns, and each must still see
// its own memory: frame 6 replaced by frame 5.
TEST(SequentialConcurrency, RendersOfOneIdAndFieldTakeTurns)
{
    const int threads = 4;
    Clip clip = FlashClip();
    CDeglarer effect;
    effect.SetId(0x7A000001u);
    std::atomic<int> inside{0};
    std::atomic<int> mostAtOnce{0};
    std::vector<std::unique_ptr<InProcessHost>> hosts;
    for (int t = 0; t < threads; ++t) {
        hosts.push_back(SequentialHost(clip, 100 + t));
        hosts.back()->SetParamReadHook([&] {
            const int now = ++inside;
            int seen = mostAtOnce.load();
            while (now > seen && !mostAtOnce.compare_exchange_weak(seen, now)) {
            }
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            --inside;
        });
    }
    std::atomic<int> wrong{0};
    OnThreads(threads, [&](int t) {
        for (int index = 0; index < kFrames; ++index) {
            Picture output(16, 8, pfVideoSample);
            FrameParams destination = output.Params();
            hosts[t]->RenderFrame(&effect, index, &destination);
            wrong += !output.SameAs(clip, index == 6 ? 5 : index);
        }
    });
    EXPECT_EQ(mostAtOnce.load(), 1);
    EXPECT_EQ(wrong.load(), 0) << "renders that showed the wrong frame";
}

// Renders of different ids or fields meet inside their regions at the same moment: each waits
// there until all have arrived, which can only happen if none blocks the others.
TEST(SequentialConcurrency, OtherIdsAndFieldsDontBlock)
{
    Clip clip = FlashClip();
    struct Render {
        unsigned int id;
        int16_t field;
    };
    const Render renders[] = {{0x7B000001u, 1}, {0x7B000001u, 2}, {0x7B000001u, 3}, {0x7B000002u, 1}};
    const int count = static_cast<int>(sizeof renders / sizeof renders[0]);
    std::mutex mutex;
    std::condition_variable arrived;
    int waiting = 0;
    bool allMet = true;
    std::vector<std::unique_ptr<InProcessHost>> hosts;
    std::vector<std::unique_ptr<CDeglarer>> effects;
    for (const Render& render : renders) {
        hosts.push_back(SequentialHost(clip, 1));
        effects.emplace_back(new CDeglarer());
        effects.back()->SetId(render.id);
        // Each render's first read waits for all the others; later reads find them all arrived.
        hosts.back()->SetParamReadHook([&] {
            std::unique_lock<std::mutex> lock(mutex);
            ++waiting;
            arrived.notify_all();
            if (!arrived.wait_for(lock, std::chrono::seconds(20), [&] { return waiting >= count; }))
                allMet = false;
        });
    }
    OnThreads(count, [&](int r) {
        Picture output(16, 8, pfVideoSample);
        FrameParams destination = output.Params();
        hosts[r]->RenderFrame(effects[r].get(), 0, &destination, renders[r].field);
    });
    EXPECT_TRUE(allMet);
    EXPECT_GE(waiting, count);
}

} // namespace
