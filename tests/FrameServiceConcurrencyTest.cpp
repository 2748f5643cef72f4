// One frame service shared by several host threads: its count stays exact and each thread's
// operations on its own frames give what they give alone.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "../Common/FrameProcessor.h"
#include "../include/InterfaceIds.h"

namespace {

const int kThreads = 6;

// One thread's work: a gradient of its own, resized and flipped through the service; empty when
// the service refuses.
std::vector<uint8_t> ResizedAndFlipped(IFrameProcessor* service, int seed)
{
    std::vector<uint8_t> source(31 * 17 * 4), scaled(47 * 23 * 4);
    for (size_t i = 0; i < source.size(); ++i)
        source[i] = static_cast<uint8_t>(i * 13 + seed);
    FrameParams src = {source.data(), 31, 17, 31 * 4, 4, 0, 0, pfVideoSample, false};
    FrameParams dst = {scaled.data(), 47, 23, 47 * 4, 4, 0, 0, pfVideoSample, false};
    const bool done = service->Resize(&src, &dst, 2) == 1u && service->FlipFrame(&dst) == 1u;
    return done ? scaled : std::vector<uint8_t>();
}

TEST(FrameServiceConcurrency, SharedServiceKeepsItsCountAndItsResults)
{
    IFrameProcessor* service = new FrameProcessor();
    // What each thread's work gives when done alone.
    std::vector<std::vector<uint8_t>> expected;
    for (int t = 0; t < kThreads; ++t) {
        expected.push_back(ResizedAndFlipped(service, t));
        ASSERT_FALSE(expected.back().empty());
    }

    std::vector<std::vector<uint8_t>> results(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([service, t, &results] {
            for (int i = 0; i < 200; ++i) {
                IFrameProcessor* held = nullptr;
                service->QueryInterface(IID_FrameProcessor, reinterpret_cast<void**>(&held));
                service->AddRef();
                results[t] = ResizedAndFlipped(held, t);
                held->Release();
                service->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(results[t], expected[t]) << t;
    EXPECT_EQ(service->Release(), 0u);
}

} // namespace
