#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "../Common/Canvas.h"
#include "../DeglarerPro/MarkFlashedFrame.h"
#include "ProcessorTestFrame.h"

namespace {

const unsigned int kWhite = 0xFFFFFFFFu;
const unsigned int kRed = 0x00FF0000u;

// Every pixel grey at `grey`, alpha at 77, as bytes or as the floats of those bytes; row padding
// stays the sentinel.
void Paint(TestFrame& frame, uint8_t grey = 100)
{
    auto value = [&](uint8_t byte) { return frame.Floats() ? byte / 255.0f : byte; };
    for (int y = 0; y < frame->m_nHeight; ++y)
        for (int x = 0; x < frame->m_nWidth; ++x) {
            if (frame->m_nDepth == (frame.Floats() ? 16 : 4))
                frame.SetBgra(x, y, {value(grey), value(grey), value(grey), value(77)});
            else
                frame.SetSample(x, y, 0, value(grey));   // one sample a pixel
        }
}

// Blue, green, red, alpha of pixel (x, y), floats as bytes (times 255).
std::vector<double> At(TestFrame& frame, int x, int y)
{
    std::vector<double> bgra = frame.Bgra(x, y);
    for (double& sample : bgra)
        sample *= frame.Floats() ? 255 : 1;
    return bgra;
}

bool Touched(TestFrame& frame, const std::vector<uint8_t>& before, int x, int y)
{
    const size_t at = frame.Offset(x, y);
    return std::memcmp(before.data() + at, frame.Memory().data() + at, frame->m_nDepth) != 0;
}

void Line(TestFrame& frame, double x1, double y1, double x2, double y2, unsigned int colour)
{
    Processors::CCanvas().DrawSmoothedLine(frame.Get(), x1, y1, x2, y2, colour);
}

// The byte path divides by 256: full colour 255 becomes 254, and weight 1.0 darkens a step. The
// float path weighs the old value against the colour's bytes over 255, exactly.
TEST(Canvas, BlendsEachChannelByTheFormula)
{
    struct Case {
        float weight;
        unsigned int colour;
        uint8_t old;
        double bytes[3], floats[3];   // blue, green, red expected, floats times 255
    };
    const Case cases[] = {
        {0.0f, 0x00C8C8C8u, 50, {199, 199, 199}, {200, 200, 200}},
        {0.0f, kRed, 100, {0, 0, 254}, {0, 0, 255}},
        {1.0f, kRed, 200, {199, 199, 199}, {200, 200, 200}},
        {0.5f, 0x000000FFu, 100, {177, 49, 49}, {177.5, 50, 50}},
    };
    for (const Case& c : cases)
        for (PixelFormat format : kFourSampleFormats) {
            SCOPED_TRACE(testing::Message() << "format " << format << " weight " << c.weight);
            TestFrame canvas(format, 3, 3);
            Paint(canvas, c.old);
            ASSERT_TRUE(Processors::CCanvas().DrawPixelMain(canvas.Get(), 1, 2, c.weight, c.colour));
            const double* expected = canvas.Floats() ? c.floats : c.bytes;
            for (int s = 0; s < 4; ++s)
                EXPECT_NEAR(At(canvas, 1, 2)[s], s < 3 ? expected[s] : 77, 1e-3) << "bgra sample " << s;
        }
}

TEST(Canvas, RefusesPixelsOutsideOtherFormatsAndBadWeights)
{
    Processors::CCanvas painter;
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame canvas(format, 4, 3);
        Paint(canvas);
        canvas.ExpectRefused([&] {
            CFrame* f = canvas.Get();
            return painter.DrawPixelMain(f, -1, 0, 0.0f, kWhite) || painter.DrawPixelMain(f, 0, -1, 0.0f, kWhite) ||
                   painter.DrawPixelMain(f, 4, 0, 0.0f, kWhite) || painter.DrawPixelMain(f, 0, 3, 0.0f, kWhite) ||
                   painter.DrawPixelMain(f, 1, 1, -0.5f, kWhite) || painter.DrawPixelMain(f, 1, 1, 2.0f, kWhite) ||
                   painter.DrawPixelMain(nullptr, 1, 1, 0.0f, kWhite);
        });
    }
    for (PixelFormat format : {pfMono8, pfMonoFloat}) {
        TestFrame canvas(format, 5, 5);
        Paint(canvas);
        canvas.ExpectRefused([&] {
            Line(canvas, 0, 0, 4, 4, kWhite);
            MarkFlashedFrame(*canvas, kWhite);
            return painter.DrawPixelMain(canvas.Get(), 1, 1, 0.0f, kWhite);
        });
    }
    // A frame whose depth can't hold its format's pixel is left alone.
    TestFrame narrow(pfVideoSampleFloat, 4, 4);
    Paint(narrow);
    narrow->m_nDepth = 4;
    narrow.ExpectRefused([&] { return painter.DrawPixelMain(narrow.Get(), 3, 3, 0.0f, kWhite); });
}

TEST(Canvas, ShortFlatAndDiagonalLinesCoverTheirEndsAndRows)
{
    TestFrame canvas(pfVideoSample, 12, 12);
    Paint(canvas);
    const std::vector<uint8_t> before = canvas.Memory();
    Line(canvas, 2.0, 2.0, 2.0, 2.0, kWhite);
    EXPECT_EQ(canvas.Memory(), before) << "a line of no length draws nothing";
    // A tenth of a pixel draws its one pixel twice, at weight 0: full red both times.
    Line(canvas, 2.0, 2.0, 2.1, 2.0, kRed);
    for (int i = 0; i < 144; ++i)
        EXPECT_EQ(Touched(canvas, before, i % 12, i / 12), i == 26) << i % 12 << "," << i / 12;
    EXPECT_EQ(At(canvas, 2, 2), std::vector<double>({0, 0, 254, 77}));

    // A flat line at a whole row paints that row; its end points cover one pixel only, and inside,
    // row 3 keeps its value but for the byte path's step.
    Paint(canvas);
    Line(canvas, 0.0, 2.0, 9.0, 2.0, kWhite);
    for (int x = 0; x < 10; ++x) {
        EXPECT_EQ(At(canvas, x, 2), std::vector<double>({254, 254, 254, 77})) << x;
        EXPECT_EQ(At(canvas, x, 3)[1], (x == 0 || x == 9) ? 100 : (100 * 255) >> 8) << x;
        EXPECT_FALSE(Touched(canvas, before, x, 1) || Touched(canvas, before, x, 4)) << x;
    }

    // Equal magnitudes count as steep: an end point also covers the pixel beside it on the minor
    // axis, here x = 1 at y = 0, at weight (1 - 0) x 0.5; a flat one would leave it alone.
    Paint(canvas);
    Line(canvas, 0.0, 0.0, 10.0, 10.0, kRed);
    EXPECT_EQ(At(canvas, 0, 0)[2], 254);
    EXPECT_EQ(At(canvas, 1, 0)[1], (100 * 127) >> 8);
    EXPECT_FALSE(Touched(canvas, before, 0, 1));
    for (int k = 1; k < 10; ++k) {
        EXPECT_EQ(At(canvas, k, k)[2], 254) << k;
        EXPECT_EQ(At(canvas, k + 1, k)[1], (100 * 255) >> 8) << k;
        EXPECT_FALSE(Touched(canvas, before, k, k + 1)) << k;
    }
}

// Exchanged end points give the same line. A line partly outside draws the pixels inside and
// no row padding; one wholly outside, or too far or not a number, draws nothing.
TEST(Canvas, LinesAreTheSameEitherWayAndDrawOnlyInside)
{
    const double lines[][4] = {{1.3, 2.7, 8.6, 5.2}, {2.2, 0.4, 4.9, 9.7}, {7.5, 1.5, 0.25, 8.75}, {0, 0, 9, 9}};
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        for (const auto& e : lines) {
            TestFrame forward(format, 11, 11), backward(format, 11, 11);
            Paint(forward);
            Paint(backward);
            Line(forward, e[0], e[1], e[2], e[3], 0x0030C050u);
            Line(backward, e[2], e[3], e[0], e[1], 0x0030C050u);
            EXPECT_EQ(forward.Memory(), backward.Memory()) << e[0] << "," << e[1];
        }
        TestFrame canvas(format, 10, 5);
        Paint(canvas);
        const std::vector<uint8_t> painted = canvas.Memory();
        Line(canvas, -5.0, 2.0, 20.0, 2.0, kWhite);
        for (int x = 0; x < 10; ++x)
            EXPECT_NEAR(At(canvas, x, 2)[2], 254.0, 1.0) << x;
        canvas.ExpectUntouchedOutside(painted, 10, 5);
        canvas.ExpectRefused([&] {
            Line(canvas, -50.0, -50.0, -10.0, -3.0, kWhite);
            Line(canvas, 1e300, 0.0, 0.0, 1.0, kWhite);
            Line(canvas, 0.0, 0.0, 5.0, std::nan(""), kWhite);
            return false;
        });
    }
}

TEST(MarkFlashedFrame, CrossesBothDiagonalsAndKeepsAlpha)
{
    for (PixelFormat format : kFourSampleFormats) {
        SCOPED_TRACE(testing::Message() << "format " << format);
        TestFrame canvas(format, 9, 9);
        Paint(canvas, 40);
        MarkFlashedFrame(*canvas, 0xFF0000FFu);
        for (int k = 0; k < 9; ++k) {
            EXPECT_NEAR(At(canvas, k, k)[0], 254.0, 1.0) << k;
            EXPECT_NEAR(At(canvas, k, 8 - k)[0], 254.0, 1.0) << k;
            EXPECT_LE(At(canvas, k, k)[2], 1.0) << k;
        }
        for (int i = 0; i < 81; ++i)
            EXPECT_NEAR(At(canvas, i % 9, i / 9)[3], 77.0, 1e-3) << i;
        // Away from the diagonals the picture stays.
        EXPECT_NEAR(At(canvas, 4, 0)[1], 40.0, 1e-3);
        EXPECT_NEAR(At(canvas, 0, 4)[1], 40.0, 1e-3);
    }
    TestFrame single(pfVideoSample, 1, 1);
    Paint(single);
    single.ExpectRefused([&] {
        MarkFlashedFrame(*single, kWhite);
        return false;
    });
}

} // namespace
