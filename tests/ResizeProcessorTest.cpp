// Processors::CResize: the general resize between rectangles of two frames.
#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "../Common/Frame.h"
#include "../Common/Resize.h"
#include "../primitives/ippResize.h"
#include "ProcessorTestFrame.h"
#include "ResizeTestPicture.h"

namespace {

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
                            int interpolation, double xFactor, double yFactor)
{
    std::vector<uint8_t> out = dst.Memory();
    const IppiSize srcSize = {srcRect.right - srcRect.left, srcRect.bottom - srcRect.top};
    const IppiRect srcRoi = {0, 0, srcSize.width, srcSize.height};
    const IppiRect dstRoi = {0, 0, dstRect.right - dstRect.left, dstRect.bottom - dstRect.top};
    int bytes = 0;
    EXPECT_EQ(ippiResizeGetBufSize(srcRoi, dstRoi, format.channels, interpolation, &bytes), ippStsNoErr);
    std::vector<uint8_t> work(bytes);
    const Call call = {srcSize, src->m_nByteSpan, srcRoi, dst->m_nByteSpan, dstRoi, xFactor, yFactor, 0, 0,
                       interpolation};
    const uint8_t* srcStart = &src.Memory()[src.Offset(srcRect.left, srcRect.top)];
    EXPECT_EQ(RunMember({true, !format.floats, format.channels}, call, srcStart,
                        &out[dst.Offset(dstRect.left, dstRect.top)], work.data()),
              ippStsNoErr);
    return out;
}

TEST(ResizeProcessor, EqualRectanglesWithFactorsZeroCopyExactly)
{
    for (const Format& f : kFormats)
        for (int interpolation = 0; interpolation < 4; ++interpolation) {
            TestFrame src(f.format, 12, 10, f.depth), dst(f.format, 12, 10, f.depth);
            src.FillPattern();
            std::vector<uint8_t> expected = dst.Memory();
            for (int y = 2; y < 10; ++y)
                std::memcpy(&expected[dst.Offset(1, y)], &src.Memory()[src.Offset(1, y)], 10 * f.depth);
            ASSERT_TRUE(Processors::CResize().Process(src.Get(), dst.Get(), {1, 2, 11, 10}, {1, 2, 11, 10},
                                                      interpolation, 0.0, 0.0, 0.0, 0.0));
            ASSERT_EQ(dst.Memory(), expected) << f.format << " depth " << f.depth << " interpolation " << interpolation;
        }
}

// Each format reaches the member of its depth and channels, with the rectangles as pictures of
// their own (nothing outside the source rectangle is read), and the argument's interpolation; 3 is
// Lanczos here, 7 linear.
TEST(ResizeProcessor, TakesMemberByFormatAndTranslatesInterpolation)
{
    const int translations[][2] = {{0, IPPI_INTER_NN},       {1, IPPI_INTER_LINEAR}, {2, IPPI_INTER_CUBIC},
                                   {3, IPPI_INTER_LANCZOS}, {7, IPPI_INTER_LINEAR}, {-1, IPPI_INTER_LINEAR}};
    for (const Format& f : kFormats)
        for (const auto& translation : translations) {
            TestFrame src(f.format, 14, 13, f.depth), dst(f.format, 30, 25, f.depth);
            src.FillPattern();
            const tagRECT srcRect = {2, 3, 12, 12}, dstRect = {3, 1, 29, 24};
            const std::vector<uint8_t> expected =
                Direct(src, srcRect, dst, dstRect, f, translation[1], 2.6, 23.0 / 9);
            ASSERT_TRUE(Processors::CResize().Process(src.Get(), dst.Get(), srcRect, dstRect, translation[0], 0.0,
                                                      0.0, 0.0, 0.0));
            EXPECT_EQ(dst.Memory(), expected) << f.format << " depth " << f.depth << " argument " << translation[0];
        }
}

// A given factor stands: the scaled picture fills only part of the rectangle, moved by the shift.
TEST(ResizeProcessor, GivenFactorAndShiftLeaveRestOfRectangle)
{
    TestFrame src(pfMono8, 4, 4, 1), dst(pfMono8, 12, 12, 1);
    src.FillPattern();
    ASSERT_TRUE(
        Processors::CResize().Process(src.Get(), dst.Get(), {0, 0, 4, 4}, {2, 2, 12, 12}, 1, 1.0, 1.0, 3.0, 1.0));
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 12; ++x) {
            const bool written = x >= 5 && x < 9 && y >= 3 && y < 7;
            ASSERT_EQ(dst.Byte(x, y, 0), written ? src.Byte(x - 5, y - 3, 0) : TestFrame::kSentinel) << x << "," << y;
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
    for (const Case& c : cases) {
        TestFrame src(c.srcFormat, 8, 8, c.srcDepth), dst(c.srcFormat, 8, 8, c.dstDepth);
        src.FillPattern();
        if (c.nullBuffer)
            src->m_pBuffer = nullptr;
        if (c.dstSpan != 0)
            dst->m_nByteSpan = c.dstSpan;
        const std::vector<uint8_t> before = dst.Memory();
        EXPECT_EQ(Processors::CResize().Process(src.Get(), dst.Get(), c.srcRect, c.dstRect, 1, 0, 0, 0, 0),
                  c.result)
            << c.what;
        EXPECT_EQ(dst.Memory(), before) << c.what;
    }
    TestFrame frame(pfVideoSample, 8, 8, 4);
    EXPECT_FALSE(Processors::CResize().Process(nullptr, frame.Get(), {0, 0, 8, 8}, {0, 0, 8, 8}, 1, 0, 0, 0, 0));
}

} // namespace
