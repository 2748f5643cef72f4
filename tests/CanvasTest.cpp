#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "../Common/Canvas.h"
#include "../Common/Frame.h"
#include "../DeglarerPro/MarkFlashedFrame.h"
#include "../host/Clip.h"

namespace {

const uint8_t kPadding = 0xEE;
const unsigned int kWhite = 0xFFFFFFFFu;

// A picture with padded rows over its own memory, every channel at `grey`, alpha at `alpha`.
struct Canvas {
    Canvas(int width, int height, PixelFormat format, uint8_t grey = 100, uint8_t alpha = 77)
        : depth(TestHost::BytesPerPixel(format)), span(width * TestHost::BytesPerPixel(format) + 12),
          bytes(static_cast<size_t>(span) * height, kPadding)
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                SetPixel(format, x, y, grey, alpha);
        frame.Init(bytes.data(), width, height, span, depth, format, false);
    }

    void SetPixel(PixelFormat format, int x, int y, uint8_t grey, uint8_t alpha)
    {
        uint8_t* at = bytes.data() + y * span + x * depth;
        switch (format) {
        case pfVideoSample: at[0] = at[1] = at[2] = grey; at[3] = alpha; break;
        case pfVideoSampleSwapped: at[1] = at[2] = at[3] = grey; at[0] = alpha; break;
        case pfVideoSampleFloat:
        case pfVideoSampleSwappedFloat: {
            const float value = grey / 255.0f, a = alpha / 255.0f;
            const bool swapped = format == pfVideoSampleSwappedFloat;
            const float px[4] = {swapped ? a : value, value, value, swapped ? value : a};
            std::memcpy(at, px, 16);
            break;
        }
        default: std::memset(at, grey, depth); break;
        }
    }

    // Channels of pixel (x, y) by meaning, as bytes or as floats times 255.
    struct Channels { float r, g, b, a; };
    Channels At(int x, int y) const
    {
        const uint8_t* at = bytes.data() + y * span + x * depth;
        float f[4];
        switch (frame.m_pfPixelFormat) {
        case pfVideoSample: return {float(at[2]), float(at[1]), float(at[0]), float(at[3])};
        case pfVideoSampleSwapped: return {float(at[1]), float(at[2]), float(at[3]), float(at[0])};
        case pfVideoSampleFloat: std::memcpy(f, at, 16); return {f[2] * 255, f[1] * 255, f[0] * 255, f[3] * 255};
        default: std::memcpy(f, at, 16); return {f[1] * 255, f[2] * 255, f[3] * 255, f[0] * 255};
        }
    }

    bool Touched(const std::vector<uint8_t>& before, int x, int y) const
    {
        const size_t at = static_cast<size_t>(y) * span + static_cast<size_t>(x) * depth;
        return std::memcmp(before.data() + at, bytes.data() + at, depth) != 0;
    }

    int depth;
    int span;
    std::vector<uint8_t> bytes;
    CFrame frame;
};

const PixelFormat kColourFormats[] = {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat,
                                      pfVideoSampleSwappedFloat};

TEST(Canvas, BlendsEachChannelByTheFormula)
{
    struct Case {
        float weight;
        unsigned int colour;
        uint8_t old;
        int red, green, blue;   // expected bytes
    };
    // The byte path divides by 256: full colour 255 becomes 254, and weight 1.0 darkens a step.
    const Case cases[] = {
        {0.0f, 0x00C8C8C8u, 50, 199, 199, 199},
        {0.0f, 0x00FF0000u, 100, 254, 0, 0},
        {1.0f, 0x00FF0000u, 200, 199, 199, 199},
        {0.5f, 0x000000FFu, 100, (100 * 127) >> 8, (100 * 127) >> 8, (100 * 127 + 255 * 128) >> 8},
    };
    for (const Case& c : cases) {
        for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped}) {
            Canvas canvas(3, 3, format, c.old);
            ASSERT_TRUE(Processors::CCanvas().DrawPixelMain(&canvas.frame, 1, 2, c.weight, c.colour));
            const Canvas::Channels px = canvas.At(1, 2);
            EXPECT_EQ(px.r, c.red) << format << " weight " << c.weight;
            EXPECT_EQ(px.g, c.green) << format;
            EXPECT_EQ(px.b, c.blue) << format;
            EXPECT_EQ(px.a, 77) << format;
        }
        for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
            Canvas canvas(3, 3, format, c.old);
            ASSERT_TRUE(Processors::CCanvas().DrawPixelMain(&canvas.frame, 1, 2, c.weight, c.colour));
            const float old = c.old / 255.0f;
            const float expectRed = old * c.weight + static_cast<float>((c.colour >> 16) & 0xFF) * (1.0f - c.weight) / 255.0f;
            const float expectBlue = old * c.weight + static_cast<float>(c.colour & 0xFF) * (1.0f - c.weight) / 255.0f;
            EXPECT_EQ(canvas.At(1, 2).r, expectRed * 255) << format;
            EXPECT_EQ(canvas.At(1, 2).b, expectBlue * 255) << format;
            EXPECT_EQ(canvas.At(1, 2).a, (77 / 255.0f) * 255) << format;
        }
    }
}

TEST(Canvas, RefusesPixelsOutsideOtherFormatsAndBadWeights)
{
    for (PixelFormat format : kColourFormats) {
        Canvas canvas(4, 3, format);
        const std::vector<uint8_t> before = canvas.bytes;
        Processors::CCanvas painter;
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, -1, 0, 0.0f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, 0, -1, 0.0f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, 4, 0, 0.0f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, 0, 3, 0.0f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, 1, 1, -0.5f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(&canvas.frame, 1, 1, 2.0f, kWhite));
        EXPECT_FALSE(painter.DrawPixelMain(nullptr, 1, 1, 0.0f, kWhite));
        EXPECT_EQ(canvas.bytes, before) << format;
    }
    for (PixelFormat format : {pfMono8, pfMonoFloat}) {
        Canvas canvas(5, 5, format);
        const std::vector<uint8_t> before = canvas.bytes;
        EXPECT_FALSE(Processors::CCanvas().DrawPixelMain(&canvas.frame, 1, 1, 0.0f, kWhite));
        Processors::CCanvas().DrawSmoothedLine(&canvas.frame, 0, 0, 4, 4, kWhite);
        MarkFlashedFrame(canvas.frame, kWhite);
        EXPECT_EQ(canvas.bytes, before) << format;
    }
    // A frame whose depth can't hold its format's pixel is left alone.
    Canvas narrow(4, 4, pfVideoSampleFloat);
    narrow.frame.m_nDepth = 4;
    const std::vector<uint8_t> before = narrow.bytes;
    EXPECT_FALSE(Processors::CCanvas().DrawPixelMain(&narrow.frame, 3, 3, 0.0f, kWhite));
    EXPECT_EQ(narrow.bytes, before);
}

TEST(Canvas, ZeroLengthLineDrawsNothingAndATenthOfAPixelDrawsItsEnds)
{
    Canvas canvas(6, 6, pfVideoSample);
    const std::vector<uint8_t> before = canvas.bytes;
    Processors::CCanvas().DrawSmoothedLine(&canvas.frame, 2.0, 2.0, 2.0, 2.0, kWhite);
    EXPECT_EQ(canvas.bytes, before);

    Processors::CCanvas().DrawSmoothedLine(&canvas.frame, 2.0, 2.0, 2.1, 2.0, 0x00FF0000u);
    for (int y = 0; y < 6; ++y)
        for (int x = 0; x < 6; ++x)
            EXPECT_EQ(canvas.Touched(before, x, y), x == 2 && y == 2) << x << "," << y;
    // Drawn twice at weight 0, so full red both times.
    EXPECT_EQ(canvas.At(2, 2).r, 254);
    EXPECT_EQ(canvas.At(2, 2).g, 0);
}

TEST(Canvas, HorizontalLineAtWholeRowPaintsThatRowAndOnlyStepsTheNext)
{
    Canvas canvas(10, 5, pfVideoSample, 100);
    const std::vector<uint8_t> before = canvas.bytes;
    Processors::CCanvas().DrawSmoothedLine(&canvas.frame, 0.0, 2.0, 9.0, 2.0, kWhite);
    for (int x = 0; x < 10; ++x) {
        EXPECT_EQ(canvas.At(x, 2).r, 254) << x;
        EXPECT_EQ(canvas.At(x, 2).a, 77) << x;
        // The end points of a flat line cover one pixel only; inside, row 3 keeps its value but
        // for the byte path's step.
        EXPECT_EQ(canvas.At(x, 3).g, (x == 0 || x == 9) ? 100 : (100 * 255) >> 8) << x;
        EXPECT_FALSE(canvas.Touched(before, x, 1)) << x;
        EXPECT_FALSE(canvas.Touched(before, x, 4)) << x;
    }
}

TEST(Canvas, EqualMagnitudesCountAsSteep)
{
    Canvas canvas(12, 12, pfVideoSample, 100);
    const std::vector<uint8_t> before = canvas.bytes;
    Processors::CCanvas().DrawSmoothedLine(&canvas.frame, 0.0, 0.0, 10.0, 10.0, 0x00FF0000u);
    // A steep end point also covers the pixel beside it on the minor axis, here x = 1 at y = 0,
    // at weight (1 - 0) x 0.5; a flat one would leave it alone.
    EXPECT_EQ(canvas.At(0, 0).r, 254);
    EXPECT_TRUE(canvas.Touched(before, 1, 0));
    EXPECT_EQ(canvas.At(1, 0).g, (100 * 127) >> 8);
    EXPECT_FALSE(canvas.Touched(before, 0, 1));
    for (int k = 1; k < 10; ++k) {
        EXPECT_EQ(canvas.At(k, k).r, 254) << k;
        EXPECT_EQ(canvas.At(k + 1, k).g, (100 * 255) >> 8) << k;
        EXPECT_FALSE(canvas.Touched(before, k, k + 1)) << k;
    }
}

TEST(Canvas, ExchangedEndPointsGiveTheSameLine)
{
    struct Line { double x1, y1, x2, y2; };
    const Line lines[] = {{1.3, 2.7, 8.6, 5.2}, {2.2, 0.4, 4.9, 9.7}, {7.5, 1.5, 0.25, 8.75}, {0.0, 0.0, 9.0, 9.0}};
    for (PixelFormat format : kColourFormats)
        for (const Line& line : lines) {
            Canvas forward(11, 11, format), backward(11, 11, format);
            Processors::CCanvas().DrawSmoothedLine(&forward.frame, line.x1, line.y1, line.x2, line.y2, 0x0030C050u);
            Processors::CCanvas().DrawSmoothedLine(&backward.frame, line.x2, line.y2, line.x1, line.y1, 0x0030C050u);
            EXPECT_EQ(forward.bytes, backward.bytes) << format << " " << line.x1 << "," << line.y1;
        }
}

TEST(Canvas, LinesPartlyOrWhollyOutsideDrawOnlyInside)
{
    for (PixelFormat format : kColourFormats) {
        Canvas canvas(10, 5, format);
        Processors::CCanvas painter;
        painter.DrawSmoothedLine(&canvas.frame, -5.0, 2.0, 20.0, 2.0, kWhite);
        for (int x = 0; x < 10; ++x)
            EXPECT_NEAR(canvas.At(x, 2).r, 254.0f, 1.0f) << format << " " << x;
        const std::vector<uint8_t> before = canvas.bytes;
        painter.DrawSmoothedLine(&canvas.frame, -50.0, -50.0, -10.0, -3.0, kWhite);
        painter.DrawSmoothedLine(&canvas.frame, 1e300, 0.0, 0.0, 1.0, kWhite);
        painter.DrawSmoothedLine(&canvas.frame, 0.0, 0.0, 5.0, std::nan(""), kWhite);
        EXPECT_EQ(canvas.bytes, before) << format;
        // Row padding is never written.
        for (int y = 0; y < 5; ++y)
            for (int i = 10 * canvas.depth; i < canvas.span; ++i)
                ASSERT_EQ(canvas.bytes[y * canvas.span + i], kPadding);
    }
}

TEST(MarkFlashedFrame, CrossesBothDiagonalsAndKeepsAlpha)
{
    for (PixelFormat format : kColourFormats) {
        Canvas canvas(9, 9, format, 40);
        MarkFlashedFrame(canvas.frame, 0xFF0000FFu);
        for (int k = 0; k < 9; ++k) {
            EXPECT_NEAR(canvas.At(k, k).b, 254.0f, 1.0f) << format << " " << k;
            EXPECT_NEAR(canvas.At(k, 8 - k).b, 254.0f, 1.0f) << format << " " << k;
            EXPECT_LE(canvas.At(k, k).r, 1.0f) << format;
        }
        for (int y = 0; y < 9; ++y)
            for (int x = 0; x < 9; ++x)
                EXPECT_NEAR(canvas.At(x, y).a, 77.0f, 1e-3f) << format;
        // Away from the diagonals the picture stays.
        EXPECT_NEAR(canvas.At(4, 0).g, 40.0f, 1e-3f) << format;
        EXPECT_NEAR(canvas.At(0, 4).g, 40.0f, 1e-3f) << format;
    }
    Canvas single(1, 1, pfVideoSample);
    const std::vector<uint8_t> before = single.bytes;
    MarkFlashedFrame(single.frame, kWhite);
    EXPECT_EQ(single.bytes, before);
}

} // namespace
