// Processors::CResize: the general resize between rectangles of two frames.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "../Common/Frame.h"
#include "../Common/Resize.h"
#include "../primitives/ippResize.h"
#include "ResizeTestPicture.h"

namespace {

const uint8_t kSentinel = 0xCD;

// A frame over memory of its own, rows padded, filled with the sentinel.
struct TestFrame {
    TestFrame(int width, int height, int depth, PixelFormat format)
        : span(width * depth + 8), bytes(static_cast<size_t>(span) * height, kSentinel)
    {
        frame.Init(bytes.data(), width, height, span, depth, format, false);
    }
    void FillRandom(std::mt19937& rng, bool floats) { ::FillRandom(bytes.data(), bytes.size(), !floats, rng); }
    uint8_t* Pixel(int x, int y)
    {
        return bytes.data() + static_cast<size_t>(y) * span + static_cast<size_t>(x) * frame.m_nDepth;
    }

    int span;
    std::vector<uint8_t> bytes;
    CFrame frame;
};

struct Format {
    int depth;
    PixelFormat format;
    int channels;
    bool floats;
};
const Format kFormats[] = {
    {4, pfVideoSample, 4, false},      {4, pfVideoSampleSwapped, 4, false}, {16, pfVideoSampleFloat, 4, true},
    {16, pfVideoSampleSwappedFloat, 4, true}, {1, pfMono8, 1, false}, {1, pfVideoSample, 1, false},
    {4, pfMonoFloat, 1, true},
};

// What the pixel-area member gives for the rectangles as pictures of their own.
std::vector<uint8_t> Direct(TestFrame& src, tagRECT srcRect, TestFrame& dst, tagRECT dstRect, const Format& format,
                            int interpolation, double xFactor, double yFactor, double xShift, double yShift)
{
    std::vector<uint8_t> out = dst.bytes;
    const IppiSize srcSize = {srcRect.right - srcRect.left, srcRect.bottom - srcRect.top};
    const IppiRect srcRoi = {0, 0, srcSize.width, srcSize.height};
    const IppiRect dstRoi = {0, 0, dstRect.right - dstRect.left, dstRect.bottom - dstRect.top};
    int bytes = 0;
    EXPECT_EQ(ippiResizeGetBufSize(srcRoi, dstRoi, format.channels, interpolation, &bytes), ippStsNoErr);
    std::vector<uint8_t> work(bytes);
    uint8_t* dstStart = out.data() + static_cast<size_t>(dstRect.top) * dst.span +
                        static_cast<size_t>(dstRect.left) * format.depth;
    const Call call = {srcSize, src.span, srcRoi, dst.span, dstRoi, xFactor, yFactor, xShift, yShift, interpolation};
    EXPECT_EQ(RunMember({true, !format.floats, format.channels}, call, src.Pixel(srcRect.left, srcRect.top), dstStart,
                  work.data()),
              ippStsNoErr);
    return out;
}

TEST(ResizeProcessor, EqualRectanglesWithFactorsZeroCopyExactly)
{
    std::mt19937 rng(41);
    for (const Format& f : kFormats)
        for (int interpolation = 0; interpolation < 4; ++interpolation) {
            TestFrame src(12, 10, f.depth, f.format), dst(12, 10, f.depth, f.format);
            src.FillRandom(rng, f.floats);
            std::vector<uint8_t> expected = dst.bytes;
            for (int y = 2; y < 10; ++y)
                std::memcpy(&expected[dst.Pixel(1, y) - dst.bytes.data()], src.Pixel(1, y), 10 * f.depth);
            ASSERT_TRUE(Processors::CResize().Process(&src.frame, &dst.frame, {1, 2, 11, 10}, {1, 2, 11, 10},
                                                      interpolation, 0.0, 0.0, 0.0, 0.0));
            ASSERT_EQ(dst.bytes, expected) << f.format << " depth " << f.depth << " interpolation " << interpolation;
        }
}

// Each format reaches the member of its depth and channels, with the rectangles as pictures of
// their own (nothing outside the source rectangle is read), and the argument's interpolation; 3 is
// Lanczos here, 7 linear.
TEST(ResizeProcessor, TakesMemberByFormatAndTranslatesInterpolation)
{
    const int translations[][2] = {{0, IPPI_INTER_NN},       {1, IPPI_INTER_LINEAR}, {2, IPPI_INTER_CUBIC},
                                   {3, IPPI_INTER_LANCZOS}, {7, IPPI_INTER_LINEAR}, {-1, IPPI_INTER_LINEAR}};
    std::mt19937 rng(43);
    for (const Format& f : kFormats)
        for (const auto& translation : translations) {
            TestFrame src(14, 13, f.depth, f.format), dst(30, 25, f.depth, f.format);
            src.FillRandom(rng, f.floats);
            const tagRECT srcRect = {2, 3, 12, 12}, dstRect = {3, 1, 29, 24};
            const std::vector<uint8_t> expected =
                Direct(src, srcRect, dst, dstRect, f, translation[1], 2.6, 23.0 / 9, 0.0, 0.0);
            ASSERT_TRUE(Processors::CResize().Process(&src.frame, &dst.frame, srcRect, dstRect, translation[0], 0.0,
                                                      0.0, 0.0, 0.0));
            EXPECT_EQ(dst.bytes, expected) << f.format << " depth " << f.depth << " argument " << translation[0];
        }
}

// A given factor stands: the scaled picture fills only part of the rectangle, moved by the shift.
TEST(ResizeProcessor, GivenFactorAndShiftLeaveRestOfRectangle)
{
    std::mt19937 rng(53);
    TestFrame src(4, 4, 1, pfMono8), dst(12, 12, 1, pfMono8);
    src.FillRandom(rng, false);
    ASSERT_TRUE(Processors::CResize().Process(&src.frame, &dst.frame, {0, 0, 4, 4}, {2, 2, 12, 12}, 1, 1.0,
                                              1.0, 3.0, 1.0));
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x) {
            const bool written = x >= 5 && x < 9 && y >= 3 && y < 7;
            ASSERT_EQ(*dst.Pixel(x, y), written ? *src.Pixel(x - 5, y - 3) : kSentinel) << x << "," << y;
        }
}

TEST(ResizeProcessor, RefusesWithoutWritingOrIgnoresUnknownFormats)
{
    struct Case {
        const char* what;
        int srcDepth;
        PixelFormat srcFormat;
        int dstDepth;
        bool nullBuffer;
        tagRECT srcRect, dstRect;
        bool result;
        int dstSpan = 0;   // 0: the frame's own
    };
    const tagRECT whole = {0, 0, 8, 8};
    const Case cases[] = {
        {"depths differ", 4, pfVideoSample, 16, false, whole, whole, false},
        {"depth 2 has no resize", 2, pfVideoSample, 2, false, whole, whole, true},
        {"format 2 at depth 4", 4, static_cast<PixelFormat>(2), 4, false, whole, whole, true},
        {"byte format at depth 16", 16, pfVideoSample, 16, false, whole, whole, true},
        {"no source pixels", 4, pfVideoSample, 4, true, whole, whole, false},
        {"empty source rectangle", 4, pfVideoSample, 4, false, {3, 3, 3, 8}, whole, false},
        {"reversed destination rectangle", 4, pfVideoSample, 4, false, whole, {5, 0, 2, 8}, false},
        {"source rectangle past the frame", 4, pfVideoSample, 4, false, {0, 0, 9, 8}, whole, false},
        {"destination rectangle before the frame", 4, pfVideoSample, 4, false, whole, {-1, 0, 8, 8}, false},
        {"rows shorter than the rectangle", 4, pfVideoSample, 4, false, whole, whole, false, 7 * 4},
    };
    std::mt19937 rng(59);
    for (const Case& c : cases) {
        TestFrame src(8, 8, c.srcDepth, c.srcFormat), dst(8, 8, c.dstDepth, c.srcFormat);
        src.FillRandom(rng, false);
        if (c.nullBuffer)
            src.frame.m_pBuffer = nullptr;
        if (c.dstSpan != 0)
            dst.frame.m_nByteSpan = c.dstSpan;
        const std::vector<uint8_t> before = dst.bytes;
        EXPECT_EQ(Processors::CResize().Process(&src.frame, &dst.frame, c.srcRect, c.dstRect, 1, 0, 0, 0, 0),
                  c.result)
            << c.what;
        EXPECT_EQ(dst.bytes, before) << c.what;
    }
    TestFrame frame(8, 8, 4, pfVideoSample);
    EXPECT_FALSE(
        Processors::CResize().Process(nullptr, &frame.frame, {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 0, 0, 0));
}

} // namespace
