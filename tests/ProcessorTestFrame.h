#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "../Common/Frame.h"

// The formats of four samples a pixel: bytes and floats, each blue first or alpha first.
inline constexpr PixelFormat kFourSampleFormats[] = {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat,
                                                     pfVideoSampleSwappedFloat};

// A frame over memory of its own, every byte the sentinel to begin with, each row padded past the
// picture, so that a test sees any byte an operation writes outside what it should.
class TestFrame {
public:
    static constexpr uint8_t kSentinel = 0xA5;

    // depth 0 takes the format's own depth; padBytes -1 pads each row by three pixels, so that
    // the span holds a whole number of pixels.
    TestFrame(PixelFormat format, int width, int height, int depth = 0, int padBytes = -1);
    TestFrame(const TestFrame&) = delete;
    TestFrame& operator=(const TestFrame&) = delete;

    static int DepthOf(PixelFormat format);

    CFrame* operator->() { return &m_frame; }
    CFrame* Get() { return &m_frame; }
    CFrame& operator*() { return m_frame; }

    // Sample c of pixel (x, y), in record order.
    uint8_t& Byte(int x, int y, int c) { return m_memory[Offset(x, y) + c]; }
    float GetFloat(int x, int y, int c) const;
    void SetFloat(int x, int y, int c, float value);
    // Whether the format's samples are floats; Sample and SetSamples read and write them as such.
    bool Floats() const;
    double Sample(int x, int y, int c) const;
    void SetSample(int x, int y, int c, double value);
    void SetSamples(int x, int y, const std::vector<double>& samples);
    // The same by meaning: blue, green, red, alpha, wherever the format keeps them.
    void SetBgra(int x, int y, const std::vector<double>& bgra);
    std::vector<double> Bgra(int x, int y) const;

    // Fills every pixel's samples (bytes or floats by the depth) from a pattern of the position.
    void FillPattern();

    std::vector<uint8_t>& Memory() { return m_memory; }

    // Every byte outside the top-left width x height pixels is as it was before.
    void ExpectUntouchedOutside(const std::vector<uint8_t>& before, int width, int height) const;

    // The call answers false and leaves every byte of this frame as it was.
    template <typename Call>
    void ExpectRefused(Call call)
    {
        const std::vector<uint8_t> before = m_memory;
        EXPECT_FALSE(call());
        EXPECT_EQ(m_memory, before);
    }
    size_t Offset(int x, int y) const
    {
        return static_cast<size_t>(y) * m_frame.m_nByteSpan + static_cast<size_t>(x) * m_frame.m_nDepth;
    }

private:
    std::vector<uint8_t> m_memory;
    CFrame m_frame;
};
