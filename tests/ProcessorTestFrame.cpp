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

bool TestFrame::Floats() const
{
    const PixelFormat format = m_frame.m_pfPixelFormat;
    return format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
}

double TestFrame::Sample(int x, int y, int c) const
{
    return Floats() ? GetFloat(x, y, c) : m_memory[Offset(x, y) + c];
}

void TestFrame::SetSample(int x, int y, int c, double value)
{
    if (Floats())
        SetFloat(x, y, c, static_cast<float>(value));
    else
        m_memory[Offset(x, y) + c] = static_cast<uint8_t>(value);
}

void TestFrame::SetSamples(int x, int y, const std::vector<double>& samples)
{
    int c = 0;
    for (double value : samples)
        SetSample(x, y, c++, value);
}

namespace {
// Where a four-sample record keeps sample bgraIndex (0 blue, 1 green, 2 red, 3 alpha): alpha-first
// records reverse the order, any other keeps it.
int RecordIndex(PixelFormat format, int bgraIndex)
{
    return format == pfVideoSampleSwapped || format == pfVideoSampleSwappedFloat ? 3 - bgraIndex : bgraIndex;
}
} // namespace

void TestFrame::SetBgra(int x, int y, const std::vector<double>& bgra)
{
    int s = 0;
    for (double value : bgra)
        SetSample(x, y, RecordIndex(m_frame.m_pfPixelFormat, s++), value);
}

std::vector<double> TestFrame::Bgra(int x, int y) const
{
    std::vector<double> bgra(4);
    for (int s = 0; s < 4; ++s)
        bgra[s] = Sample(x, y, RecordIndex(m_frame.m_pfPixelFormat, s));
    return bgra;
}

void TestFrame::FillPattern()
{
    const bool floats = Floats();
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
