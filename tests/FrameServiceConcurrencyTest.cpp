// One frame service shared by several host threads: its count stays exact and each thread's
// operations on its own frames give what they give alone.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "../Common/FrameProcessor.h"
#include "../include/InterfaceIds.h"

namespace {

const int kThreads = 6;

std::vector<uint8_t> Gradient(int width, int height, int seed)
{
    std::vector<uint8_t> pixels(static_cast<size_t>(width) * height * 4);
    for (size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<uint8_t>(i * 13 + seed);
    return pixels;
}

FrameParams Record(std::vector<uint8_t>& pixels, int width, int height)
{
    FrameParams params = {};
    params.pBuffer = pixels.data();
    params.nWidth = width;
    params.nHeight = height;
    params.nByteSpan = width * 4;
    params.nDepth = 4;
    return params;
}

TEST(FrameServiceConcurrency, SharedServiceKeepsItsCountAndItsResults)
{
    IFrameProcessor* service = new FrameProcessor();
    // What each thread's work gives when done alone.
    std::vector<std::vector<uint8_t>> expected;
    for (int t = 0; t < kThreads; ++t) {
        std::vector<uint8_t> source = Gradient(31, 17, t);
        std::vector<uint8_t> scaled(47 * 23 * 4);
        FrameParams src = Record(source, 31, 17), dst = Record(scaled, 47, 23);
        ASSERT_EQ(service->Resize(&src, &dst, 2), 1u);
        ASSERT_EQ(service->FlipFrame(&dst), 1u);
        expected.push_back(scaled);
    }

    std::vector<std::vector<uint8_t>> results(kThreads);
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([service, t, &results] {
            for (int i = 0; i < 200; ++i) {
                IFrameProcessor* held = nullptr;
                service->QueryInterface(IID_FrameProcessor, reinterpret_cast<void**>(&held));
                service->AddRef();
                std::vector<uint8_t> source = Gradient(31, 17, t);
                std::vector<uint8_t> scaled(47 * 23 * 4);
                FrameParams src = Record(source, 31, 17), dst = Record(scaled, 47, 23);
                held->Resize(&src, &dst, 2);
                held->FlipFrame(&dst);
                results[t] = scaled;
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
