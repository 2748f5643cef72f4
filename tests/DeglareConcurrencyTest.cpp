// The command-line host's threads: the window and the queue under decoding, rendering and
// encoding threads at once, and a run that gives the same file on any number of threads, with a
// scripted effect and with the real one.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <numeric>
#include <random>
#include <thread>

#include "../host/deglare/EffectModule.h"
#include "../host/deglare/FrameWindow.h"
#include "../host/deglare/OutcomeQueue.h"
#include "DeglareTestSupport.h"
#include "ScriptedEffect.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;

FramePtr MakeFrame(int index)
{
    FrameRef frame = AllocateFrame();
    frame->best_effort_timestamp = index;
    return std::make_shared<DecodedFrame>(index, std::move(frame));
}

// Frames from far away, made on request and counted.
class FarFrames : public FrameSource {
public:
    explicit FarFrames(int count) : m_count(count) {}
    FramePtr Frame(int index) override
    {
        if (index < 0 || index >= m_count)
            return nullptr;
        ++requests;
        return MakeFrame(index);
    }
    std::atomic<int> requests{0};

private:
    int m_count;
};

TEST(DeglareThreads, WindowServesEveryRequestWhileFramesFlowInOrder)
{
    const int frameCount = 400;
    const int renderThreads = 4;
    FarFrames far(frameCount);
    FrameWindow window(16, 4, &far);
    OutcomeQueue queue(renderThreads + 2);
    std::atomic<int> wrongFrames{0};    // missing, or another frame than asked for

    std::thread decoder([&] {
        for (int index = 0; index < frameCount; ++index)
            if (!window.Push(MakeFrame(index)))
                return;
        window.Finish();
    });
    std::atomic<int> liveRenderers{renderThreads};
    std::vector<std::thread> renderers;
    for (int thread = 0; thread < renderThreads; ++thread)
        renderers.emplace_back([&, thread] {
            std::mt19937 random(thread);
            long ordinal = 0;
            while (FramePtr frame = window.NextToRender(&ordinal)) {
                if (!queue.WaitForRoom(ordinal))
                    break;
                // Scans behind and ahead, now and then far out.
                for (int request = 0; request < 6; ++request) {
                    int wanted = frame->Index() + static_cast<int>(random() % 14) - 4;
                    if (random() % 16 == 0)
                        wanted = static_cast<int>(random() % frameCount);
                    if (wanted < 0 || wanted >= frameCount)
                        continue;
                    const FramePtr found = window.Frame(wanted);
                    if (!found || found->Index() != wanted)
                        ++wrongFrames;
                }
                FrameOutcome outcome;
                outcome.index = frame->Index();
                queue.Put(ordinal, std::move(outcome));
                window.Rendered(frame->Index());
            }
            if (--liveRenderers == 0)
                queue.Finish(window.Handed());
        });

    std::vector<int> consumed;
    FrameOutcome outcome;
    while (queue.Take(&outcome))
        consumed.push_back(outcome.index);
    decoder.join();
    for (std::thread& renderer : renderers)
        renderer.join();

    std::vector<int> inOrder(frameCount);
    std::iota(inOrder.begin(), inOrder.end(), 0);
    EXPECT_EQ(consumed, inOrder);
    EXPECT_EQ(wrongFrames.load(), 0);
    EXPECT_GT(far.requests.load(), 0);
}

// Unasked, the decoder stays a few frames ahead of the oldest frame in use; a request further
// ahead within reach lets it on as far as that frame.
TEST(DeglareThreads, DecoderRunsAheadOnlyAsFarAsAsked)
{
    const int decodeAhead = 4;
    FrameWindow window(32, 2, nullptr, decodeAhead);
    std::atomic<int> pushed{0};
    std::thread decoder([&] {
        for (int index = 0; index < 20; ++index) {
            if (!window.Push(MakeFrame(index)))
                return;
            ++pushed;
        }
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(pushed.load(), decodeAhead);
    FramePtr asked = window.Frame(9);
    ASSERT_NE(asked, nullptr);
    EXPECT_EQ(asked->Index(), 9);
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(pushed.load(), 10);
    window.Cancel();
    decoder.join();
}

TEST(DeglareThreads, CancelReleasesEveryWaiter)
{
    FrameWindow window(8, 1, nullptr);
    ASSERT_TRUE(window.Push(MakeFrame(0)));
    ASSERT_TRUE(window.Push(MakeFrame(1)));
    long ordinal = 0;
    ASSERT_NE(window.NextToRender(&ordinal), nullptr);
    ASSERT_NE(window.NextToRender(&ordinal), nullptr);
    OutcomeQueue queue(1);
    std::vector<std::thread> waiters;
    waiters.emplace_back([&] { EXPECT_EQ(window.Frame(5), nullptr); });           // not decoded yet
    waiters.emplace_back([&] { EXPECT_FALSE(window.Push(MakeFrame(20))); });      // beyond the window
    waiters.emplace_back([&] { EXPECT_EQ(window.NextToRender(&ordinal), nullptr); });
    waiters.emplace_back([&] { EXPECT_FALSE(queue.WaitForRoom(5)); });
    waiters.emplace_back([&] {
        FrameOutcome outcome;
        EXPECT_FALSE(queue.Take(&outcome));
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    window.Cancel();
    queue.Cancel();
    for (std::thread& waiter : waiters)
        waiter.join();
}

// A scripted effect that looks far outside the window and fetches frames far off, and the real
// one, loaded from the bundle, whose scans reach past it: with the least window, so that far
// frames are decoded apart, the same pictures and decisions on one thread and on four.
TEST(DeglareThreads, SameFileAndDecisionsOnAnyNumberOfThreads)
{
    const int frames = 40;
    std::vector<float> flashed = SteadyLevels(frames);
    for (int flash : {7, 20, 30})
        flashed[flash] = 0.85f;
    for (const bool real : {false, true}) {
        SCOPED_TRACE(real ? "real effect" : "scripted effect");
        const std::map<int, int> replaced = real ? std::map<int, int>{{7, 6}, {20, 19}, {30, 29}}
                                                 : std::map<int, int>{{7, 6}, {8, 9}, {27, 1}, {2, 38}};
        const std::set<int> spared = real ? std::set<int>{} : std::set<int>{20};
        TempFolder folder;
        ClipRecipe recipe;
        recipe.frameCount = frames;
        RunSettings settings;
        settings.input = folder.Path("input.mkv");
        WriteClip(settings.input, recipe, Scene(real ? flashed : SteadyLevels(frames)));
        settings.encoder.codec = "ffv1";
        settings.encoder.threads = 1;
        settings.memoryBudget = 1;
        for (int threads : {1, 4}) {
            SCOPED_TRACE(threads);
            ScriptedEffect scripted;
            scripted.replacements = replaced;
            scripted.spared = spared;
            scripted.looksAt = {{5, {6, 7, 8, 9, 10, 11}}, {25, {35, 36, 2}}};
            std::unique_ptr<EffectModule> module = real ? std::make_unique<EffectModule>(DEGLARER_BUNDLE_PATH) : nullptr;
            settings.threads = threads;
            settings.output = folder.Path("output-" + std::to_string(threads) + ".mkv");
            const PipelineRun run = RunPipeline(real ? module->Effect() : &scripted, settings);
            EXPECT_EQ(run.shown, ShownWith(frames, replaced));
            EXPECT_EQ(run.told, ToldFor(frames, replaced, spared));
            // The scripted effect's far frames are decoded apart, and every fetch is served.
            EXPECT_TRUE(real || run.result.farDecodedFrames > 0) << run.result.farDecodedFrames;
            EXPECT_EQ(scripted.MissedFetches(), 0);
        }
    }
}

} // namespace
