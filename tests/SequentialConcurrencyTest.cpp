// Renders of one id and field wait for each other; renders of other ids or fields don't.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <condition_variable>
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

const int kThreads = 4;
const int kFrames = 12;

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

InProcessHost::Options Sequential(uint32_t instance)
{
    InProcessHost::Options options;
    options.timeAccess = false;
    options.instanceId = instance;
    return options;
}

// Each thread is a host instance of its own playing the whole clip on one effect object; the
// instances share the id and field, so their renders must take turns, and each must still see
// its own memory: frame 6 replaced by frame 5.
TEST(SequentialConcurrency, RendersOfOneIdAndFieldTakeTurns)
{
    Clip clip = FlashClip();
    CDeglarer effect;
    effect.SetId(0x7A000001u);
    std::atomic<int> inside{0};
    std::atomic<int> mostAtOnce{0};
    std::vector<std::unique_ptr<InProcessHost>> hosts;
    for (int t = 0; t < kThreads; ++t) {
        hosts.emplace_back(new InProcessHost(clip, Sequential(100 + t)));
        hosts.back()->SetParamReadHook([&] {
            const int now = ++inside;
            int seen = mostAtOnce.load();
            while (now > seen && !mostAtOnce.compare_exchange_weak(seen, now)) {
            }
            std::this_thread::sleep_for(std::chrono::microseconds(200));
            --inside;
        });
    }
    std::vector<std::vector<bool>> correct(kThreads, std::vector<bool>(kFrames, false));
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&, t] {
            for (int index = 0; index < kFrames; ++index) {
                Picture output(16, 8, pfVideoSample);
                FrameParams destination = output.Params();
                hosts[t]->RenderFrame(&effect, index, &destination);
                correct[t][index] = output.SameAs(clip, index == 6 ? 5 : index);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(mostAtOnce.load(), 1);
    for (int t = 0; t < kThreads; ++t)
        for (int index = 0; index < kFrames; ++index)
            EXPECT_TRUE(correct[t][index]) << "thread " << t << ", frame " << index;
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
    for (int r = 0; r < count; ++r) {
        hosts.emplace_back(new InProcessHost(clip, Sequential(1)));
        effects.emplace_back(new CDeglarer());
        effects.back()->SetId(renders[r].id);
        auto first = std::make_shared<std::atomic<bool>>(true);
        hosts.back()->SetParamReadHook([&, first] {
            if (!first->exchange(false))
                return;
            std::unique_lock<std::mutex> lock(mutex);
            ++waiting;
            arrived.notify_all();
            if (!arrived.wait_for(lock, std::chrono::seconds(20), [&] { return waiting == count; }))
                allMet = false;
        });
    }
    std::vector<std::thread> threads;
    for (int r = 0; r < count; ++r)
        threads.emplace_back([&, r] {
            Picture output(16, 8, pfVideoSample);
            FrameParams destination = output.Params();
            hosts[r]->RenderFrame(effects[r].get(), 0, &destination, renders[r].field);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_TRUE(allMet);
    EXPECT_EQ(waiting, count);
}

} // namespace
