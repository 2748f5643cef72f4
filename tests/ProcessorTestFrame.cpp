#include "ProcessorTestFrame.h"

#include <gtest/gtest.h>

TestFrame::TestFrame(PixelFormat format, int width, int height, int depth, int padBytes)
{
    if (depth == 0)
        depth = DepthOf(format);
    if (padBytes < 0)
        padBytes = 3 * depth;
    const int span = width * depth + padBytes;
    // One spare row of sentinels, so an operation that runs a row too far is seen.
    m_memory.assign(static_cast<size_t>(span) * (height + 1) + 16, kSentinel);
    m_frame.Init(m_memory.data(), width, height, span, depth, format, false);
}

int TestFrame::DepthOf(PixelFormat format)
{
    switch (format) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat: return 16;
    case pfMono8: return 1;
    default: return 4;
    }
}

float TestFrame::GetFloat(int x, int y, int c) const
{
    float value;
    std::memcpy(&value, &m_memory[Offset(x, y) + c * sizeof(float)], sizeof value);
    return value;
}

void TestFrame::SetFloat(int x, int y, int c, float value)
{
    std::memcpy(&m_memory[Offset(x, y) + c * sizeof(float)], &value, sizeof value);
}

void TestFrame::SetBytes(int x, int y, uint8_t s0, uint8_t s1, uint8_t s2, uint8_t s3)
{
    const uint8_t samples[4] = {s0, s1, s2, s3};
    std::memcpy(&m_memory[Offset(x, y)], samples, 4);
}

void TestFrame::SetFloats(int x, int y, float s0, float s1, float s2, float s3)
{
    const float samples[4] = {s0, s1, s2, s3};
    std::memcpy(&m_memory[Offset(x, y)], samples, sizeof samples);
}

void TestFrame::FillPattern()
{
    const bool floats = m_frame.m_pfPixelFormat == pfVideoSampleFloat ||
                        m_frame.m_pfPixelFormat == pfVideoSampleSwappedFloat || m_frame.m_pfPixelFormat == pfMonoFloat;
    for (int y = 0; y < m_frame.m_nHeight; ++y)
        for (int x = 0; x < m_frame.m_nWidth; ++x) {
            if (floats) {
                for (int c = 0; c < m_frame.m_nDepth / 4; ++c)
                    SetFloat(x, y, c, static_cast<float>((x * 37 + y * 11 + c * 5) % 23) / 16.0f - 0.25f);
            } else {
                for (int c = 0; c < m_frame.m_nDepth; ++c)
                    Byte(x, y, c) = static_cast<uint8_t>(x * 37 + y * 101 + c * 59 + 7);
            }
        }
}

void TestFrame::ExpectUntouchedOutside(const std::vector<uint8_t>& before, int width, int height) const
{
    ASSERT_EQ(before.size(), m_memory.size());
    for (size_t i = 0; i < before.size(); ++i) {
        const int y = static_cast<int>(i / m_frame.m_nByteSpan);
        const int x = static_cast<int>(i % m_frame.m_nByteSpan) / m_frame.m_nDepth;
        if (!(x < width && y < height)) {
            ASSERT_EQ(m_memory[i], before[i]) << "format " << m_frame.m_pfPixelFormat << " byte " << i;
        }
    }
}
