// The frame service's operations on channels, colours and alpha, called by slot through the
// loaded module. Their arithmetic on every format is the processors' and is tested with them;
// here, one worked value each shows the right processor driven with the right arguments.
#include <cmath>
#include <cstring>
#include <vector>

#include "FrameServiceFixture.h"

namespace {

using TestHost::BytesPerPixel;
using TestHost::Picture;

bool IsFloat(PixelFormat format)
{
    return format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
}

// Sample c of pixel (x, y) as a number, whatever the sample type.
double SampleAt(const Picture& picture, const FrameParams& params, int x, int y, int c)
{
    const uint8_t* pixel = Row(picture, params, y) + x * params.nDepth;
    if (!IsFloat(params.pfFormat))
        return pixel[c];
    float value;
    std::memcpy(&value, pixel + 4 * c, 4);
    return value;
}

// A picture of one pixel repeated.
Picture Filled(int width, int height, PixelFormat format, const double samples[4])
{
    Picture picture(width, height, format);
    const bool floats = IsFloat(format);
    for (size_t i = 0; i < picture.Bytes().size() / (floats ? 4 : 1); ++i) {
        const float value = static_cast<float>(samples[i % 4]);
        if (floats)
            std::memcpy(picture.Data() + 4 * i, &value, 4);
        else
            picture.Data()[i] = static_cast<uint8_t>(value);
    }
    return picture;
}

// Every sample of the first width by height pixels is `expected` of the pixel before.
template <typename Expected>
void ExpectSamples(const Picture& after, const Picture& before, const FrameParams& params, int width, int height,
                   Expected expected)
{
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(SampleAt(after, params, x, y, c), expected(before, x, y, c)) << x << ", " << y << " #" << c;
}

TEST_F(FrameServiceTest, EveryOperationRefusesMissingRecordsAndPixels)
{
    Picture source = Pattern(4, 4, pfVideoSampleFloat);
    Picture destination = Sentinel(4, 4, pfVideoSampleFloat);
    FrameParams src = source.Params(), dst = destination.Params();
    FrameParams noPixels = src;
    noPixels.pBuffer = nullptr;
    unsigned int order[4] = {0, 1, 2, 3};
    const float thresholds[4] = {0.5f, 0.5f, 0.5f, 0.5f};
    tagRECT rect = {0, 0, 1, 1};
    for (FrameParams* missing : {static_cast<FrameParams*>(nullptr), &noPixels}) {
        SCOPED_TRACE(missing == nullptr ? "no record" : "no pixels");
        EXPECT_EQ(service->Copy(missing, &dst), 0u);
        EXPECT_EQ(service->Copy(&src, missing), 0u);
        EXPECT_EQ(service->Resize(missing, &dst, 1), 0u);
        EXPECT_EQ(service->Resize(&src, missing, 1), 0u);
        EXPECT_EQ(service->ResizeCrop(missing, &rect, &dst, 1), 0u);
        EXPECT_EQ(service->ResizeCrop(&src, &rect, missing, 1), 0u);
        EXPECT_EQ(service->ReverseChannels(missing, &dst), 0u);
        EXPECT_EQ(service->ReverseChannels(&src, missing), 0u);
        EXPECT_EQ(service->YUY2ToRGBA(missing, &dst, 255, nullptr), 0u);
        EXPECT_EQ(service->YUY2ToRGBA(&src, missing, 255, nullptr), 0u);
        EXPECT_EQ(service->RGBAToYUY2(missing, &dst, nullptr), 0u);
        EXPECT_EQ(service->RGBAToYUY2(&src, missing, nullptr), 0u);
        EXPECT_EQ(service->SetChannelValue(missing, 0, 0), 0u);
        EXPECT_EQ(service->AlphaBlend(missing, &src, &src, true), 0u);
        EXPECT_EQ(service->AlphaBlend(&dst, missing, &src, true), 0u);
        EXPECT_EQ(service->AlphaBlend(&dst, &src, missing, true), 0u);
        EXPECT_EQ(service->SwapChannels(missing, order), 0u);
        EXPECT_EQ(service->AlphaPremul(missing), 0u);
        EXPECT_EQ(service->AppleR4FLToARGB32(missing, &dst), 0u);
        EXPECT_EQ(service->AppleR4FLToARGB32(&src, missing), 0u);
        EXPECT_EQ(service->ARGB32ToAppleR4FL(missing, &dst), 0u);
        EXPECT_EQ(service->ARGB32ToAppleR4FL(&src, missing), 0u);
        EXPECT_EQ(service->CopyChannel(missing, &dst, 0, 0), 0u);
        EXPECT_EQ(service->CopyChannel(&src, missing, 0, 0), 0u);
        EXPECT_EQ(service->InvertChannel(missing, 0), 0u);
        EXPECT_EQ(service->SqrInPlace(missing), 0u);
        EXPECT_EQ(service->SqrtInPlace(missing), 0u);
        EXPECT_EQ(service->ThresholdLTInPlace(missing, thresholds), 0u);
    }
    EXPECT_EQ(service->SwapChannels(&dst, nullptr), 0u);
    EXPECT_EQ(service->ThresholdLTInPlace(&dst, nullptr), 0u);
    EXPECT_EQ(service->ResizeCrop(&src, nullptr, &dst, 1), 0u);
    EXPECT_EQ(service->FlipFrame(nullptr, &dst), 0u);
    EXPECT_EQ(service->FlipFrame(&src, nullptr), 0u);
    EXPECT_EQ(service->FlipFrame(nullptr), 0u);
    EXPECT_TRUE(Untouched(destination));
}

// Refused formats and arguments: 0, and the frame as it was.
TEST_F(FrameServiceTest, ChannelOperationsRefuseFormatsAndChannelsWithoutAPath)
{
    for (PixelFormat format : {pfMono8, pfMonoFloat, static_cast<PixelFormat>(2), static_cast<PixelFormat>(5)}) {
        SCOPED_TRACE(format);
        Picture source = Pattern(4, 4, format == pfMonoFloat || format == pfMono8 ? format : pfVideoSample);
        Picture destination = Sentinel(4, 4, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = format;
        dst.pfFormat = format;
        unsigned int order[4] = {3, 2, 1, 0};
        const float thresholds[4] = {0.5f, 0.5f, 0.5f, 0.5f};
        EXPECT_EQ(service->ReverseChannels(&src, &dst), 0u);
        EXPECT_EQ(service->SetChannelValue(&dst, 1, 0x40), 0u);
        EXPECT_EQ(service->SwapChannels(&dst, order), 0u);
        EXPECT_EQ(service->AlphaPremul(&dst), 0u);
        EXPECT_EQ(service->AlphaBlend(&dst, &src, &src, false), 0u);
        EXPECT_EQ(service->SqrInPlace(&dst), 0u);
        EXPECT_EQ(service->SqrtInPlace(&dst), 0u);
        EXPECT_EQ(service->ThresholdLTInPlace(&dst, thresholds), 0u);
        EXPECT_TRUE(Untouched(destination));
    }

    // Bytes to floats has no path; channels lie in 0 to 3.
    Picture bytes = Pattern(4, 4, pfVideoSample);
    Picture floats = Sentinel(4, 4, pfVideoSampleFloat);
    FrameParams src = bytes.Params(), dst = floats.Params();
    unsigned int order[4] = {0, 1, 2, 4};
    EXPECT_EQ(service->CopyChannel(&src, &dst, 0, 0), 0u);
    EXPECT_EQ(service->CopyChannel(&dst, &dst, 4, 0), 0u);
    EXPECT_EQ(service->CopyChannel(&dst, &dst, 0, -1), 0u);
    EXPECT_EQ(service->SetChannelValue(&dst, 4, 0), 0u);
    EXPECT_EQ(service->SetChannelValue(&dst, 0xFFFFFFFFu, 0), 0u);
    EXPECT_EQ(service->InvertChannel(&dst, 4), 0u);
    EXPECT_EQ(service->InvertChannel(&dst, -1), 0u);
    EXPECT_EQ(service->SwapChannels(&dst, order), 0u);
    EXPECT_TRUE(Untouched(floats));
}

TEST_F(FrameServiceTest, ReverseChannelsReversesEachPixelOfTheCommonArea)
{
    Picture source = Pattern(5, 4, pfVideoSampleSwappedFloat, 5 * 16 + 4);
    Picture destination = Sentinel(4, 6, pfVideoSampleSwappedFloat, 4 * 16 + 8);
    FrameParams src = source.Params(), dst = destination.Params();
    ASSERT_EQ(service->ReverseChannels(&src, &dst), 1u);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(SampleAt(destination, dst, x, y, c), SampleAt(source, src, x, y, 3 - c));
    for (int y = 0; y < 6; ++y)
        for (int x = y < 4 ? 64 : 0; x < dst.nByteSpan; ++x)
            ASSERT_EQ(Row(destination, dst, y)[x], kSentinel) << "outside the common area at " << x << ", " << y;
}

// Packed 4:2:2 rows of the pairs (y0, cb, y1, cr), repeated, as the service takes them.
FrameParams Packed(Picture& picture, int width, const uint8_t* quad)
{
    FrameParams params = picture.Params();
    for (int y = 0; quad != nullptr && y < params.nHeight; ++y)
        for (int x = 0; x < params.nByteSpan; ++x)
            picture.Data()[y * params.nByteSpan + x] = quad[x % 4];
    params.nWidth = width;
    params.nDepth = 2;
    params.pfFormat = pfVideoSample;
    return params;
}

TEST_F(FrameServiceTest, FourTwoTwoConversionsConvertTheCommonArea)
{
    // Red: its third byte in blue, green, red order; the given alpha in the fourth.
    const uint8_t red[4] = {81, 90, 81, 240};
    Picture packed(20, 10, pfMono8);   // 20 bytes a row: 10 packed pixels
    Picture unpacked = Sentinel(8, 12, pfVideoSample);
    FrameParams yuy2 = Packed(packed, 10, red), rgba = unpacked.Params();
    ASSERT_EQ(service->YUY2ToRGBA(&yuy2, &rgba, 77, nullptr), 1u);
    const uint8_t bgra[4] = {0, 0, 254, 77};
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 8; ++x) {
            const uint8_t* pixel = Row(unpacked, rgba, y) + 4 * x;
            if (y < 10)
                ASSERT_EQ(std::memcmp(pixel, bgra, 4), 0) << x << ", " << y;
            else
                ASSERT_EQ(pixel[0], kSentinel) << "row " << y << " lies below the source";
        }

    const double redPixel[4] = {0, 0, 255, 255};
    Picture colours = Filled(6, 3, pfVideoSample, redPixel);
    Picture target = Sentinel(10, 5, pfMono8);   // 10 bytes a row: 5 packed pixels
    FrameParams from = colours.Params(), to = Packed(target, 4, nullptr);
    ASSERT_EQ(service->RGBAToYUY2(&from, &to, nullptr), 1u);
    const uint8_t quad[4] = {82, 90, 82, 240};
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 10; ++x)
            ASSERT_EQ(target.Bytes()[y * 10 + x], y < 3 && x < 8 ? quad[x % 4] : kSentinel) << x << ", " << y;
}

TEST_F(FrameServiceTest, FourTwoTwoConversionsRefuseBottomUpEmptyAndSinglePixelAreas)
{
    struct Case {
        const char* what;
        int packedSpan, unpackedSpan, width;
    };
    const Case cases[] = {
        {"packed span 0", 0, 16, 4},     {"unpacked span 0", 8, 0, 4},     {"packed bottom-up", -8, 16, 4},
        {"unpacked bottom-up", 8, -16, 4}, {"one pixel wide", 8, 16, 1},   {"no width", 8, 16, 0},
        {"packed rows too short", 6, 16, 4}, {"unpacked rows too short", 8, 12, 4},
    };
    const uint8_t quad[4] = {16, 128, 235, 128};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture packed(8, 3, pfMono8);
        Picture unpacked = Sentinel(4, 3, pfVideoSample);
        FrameParams yuy2 = Packed(packed, c.width, quad), rgba = unpacked.Params();
        yuy2.nByteSpan = c.packedSpan;
        rgba.nByteSpan = c.unpackedSpan;
        rgba.nWidth = c.width;
        EXPECT_EQ(service->YUY2ToRGBA(&yuy2, &rgba, 255, nullptr), 0u);
        EXPECT_TRUE(Untouched(unpacked));

        Picture colours = Pattern(4, 3, pfVideoSample);
        Picture target = Sentinel(8, 3, pfMono8);
        FrameParams from = colours.Params(), to = Packed(target, c.width, nullptr);
        from.nByteSpan = c.unpackedSpan;
        from.nWidth = c.width;
        to.nByteSpan = c.packedSpan;
        EXPECT_EQ(service->RGBAToYUY2(&from, &to, nullptr), 0u);
        EXPECT_TRUE(Untouched(target));
    }
}

TEST_F(FrameServiceTest, SetChannelValueFillsTheChannelWithTheLowByte)
{
    Picture frame = Pattern(3, 4, pfVideoSample, 3 * 4 + 8);
    const Picture before = frame;
    FrameParams params = frame.Params();
    ASSERT_EQ(service->SetChannelValue(&params, 2, 0x1234), 1u);
    ExpectSamples(frame, before, params, 3, 4, [&](const Picture& old, int x, int y, int c) {
        return c == 2 ? 0x34 : SampleAt(old, params, x, y, c);
    });
    for (int y = 0; y < 4; ++y)
        EXPECT_EQ(std::memcmp(Row(frame, params, y) + 12, Row(before, params, y) + 12, 8), 0) << "padding " << y;
}

// The output comes first at the slot: the first input is the foreground, the second the background.
TEST_F(FrameServiceTest, AlphaBlendWritesItsFirstFrameOverTheCommonArea)
{
    struct Case {
        const char* what;
        PixelFormat format;
        bool premultiplied;
        double foreground[4], background[4], expected[4];
    };
    const Case cases[] = {
        {"bytes, clear foreground", pfVideoSample, false, {10, 20, 30, 0}, {200, 100, 50, 128}, {100, 50, 25, 128}},
        {"alpha-first floats, premultiplied", pfVideoSampleSwappedFloat, true, {0.5, 0.25, 0.0, 0.125},
         {1.0, 0.5, 0.25, 1.0}, {1.0, 0.5, 0.125, 0.625}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture foreground = Filled(4, 3, c.format, c.foreground);
        Picture background = Filled(6, 4, c.format, c.background);
        const Picture foregroundBefore = foreground, backgroundBefore = background;
        const int depth = BytesPerPixel(c.format);
        Picture output = Sentinel(5, 5, c.format, 5 * depth);
        FrameParams out = output.Params(), in1 = foreground.Params(), in2 = background.Params();
        ASSERT_EQ(service->AlphaBlend(&out, &in1, &in2, c.premultiplied), 1u);
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                if (x >= 4 || y >= 3) {
                    ASSERT_EQ(Row(output, out, y)[x * depth], kSentinel) << "outside the inputs";
                    continue;
                }
                for (int s = 0; s < 4; ++s)
                    ASSERT_EQ(SampleAt(output, out, x, y, s), static_cast<float>(c.expected[s])) << "sample " << s;
            }
        EXPECT_EQ(foreground.Bytes(), foregroundBefore.Bytes());
        EXPECT_EQ(background.Bytes(), backgroundBefore.Bytes());
    }
}

TEST_F(FrameServiceTest, SwapChannelsTakesSampleOrderOfEachPlace)
{
    Picture frame = Pattern(3, 2, pfVideoSampleFloat, 0, 4);
    const Picture before = frame;
    FrameParams params = frame.Params();
    unsigned int order[4] = {1, 2, 3, 0};
    ASSERT_EQ(service->SwapChannels(&params, order), 1u);
    ExpectSamples(frame, before, params, 3, 2, [&](const Picture& old, int x, int y, int c) {
        return SampleAt(old, params, x, y, static_cast<int>(order[c]));
    });
}

TEST_F(FrameServiceTest, AlphaPremulMultipliesColourByAlpha)
{
    const double pixel[4] = {200, 100, 50, 128};
    Picture frame = Filled(2, 2, pfVideoSample, pixel);
    FrameParams params = frame.Params();
    ASSERT_EQ(service->AlphaPremul(&params), 1u);
    const uint8_t expected[4] = {100, 50, 25, 128};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(std::memcmp(frame.Bytes().data() + 4 * i, expected, 4), 0) << "pixel " << i;
}

TEST_F(FrameServiceTest, StudioRangeConversionsOfAlphaFirstFloats)
{
    const double pixel[4] = {0.75, 0.5, 0.5, 0.5};
    Picture rgb = Filled(3, 2, pfVideoSampleSwappedFloat, pixel);
    Picture yuv = Sentinel(3, 2, pfVideoSampleSwappedFloat);
    Picture back = Sentinel(3, 2, pfVideoSampleSwappedFloat);
    FrameParams src = rgb.Params(), mid = yuv.Params(), dst = back.Params();
    ASSERT_EQ(service->ARGB32ToAppleR4FL(&src, &mid), 1u);
    ASSERT_EQ(service->AppleR4FLToARGB32(&mid, &dst), 1u);
    EXPECT_NEAR(SampleAt(yuv, mid, 2, 1, 1), 0.5 * 219.0 / 255.0, 1e-6);
    EXPECT_NEAR(SampleAt(yuv, mid, 2, 1, 2), 128.0 / 255.0, 1e-6);
    for (int c = 1; c < 4; ++c)
        EXPECT_NEAR(SampleAt(back, dst, 2, 1, c), 0.5, 1e-5) << c;

    // The converter reports success whatever its steps refused: a source of another format
    // gives 1 and leaves the destination.
    Picture blueFirst = Pattern(3, 2, pfVideoSampleFloat);
    Picture destination = Sentinel(3, 2, pfVideoSampleSwappedFloat);
    FrameParams other = blueFirst.Params(), target = destination.Params();
    EXPECT_EQ(service->ARGB32ToAppleR4FL(&other, &target), 1u);
    EXPECT_EQ(service->AppleR4FLToARGB32(&other, &target), 1u);
    EXPECT_TRUE(Untouched(destination));
}

// The source channel is the first number, the destination's the second.
TEST_F(FrameServiceTest, CopyChannelMovesOnePlaceFromSourceToDestination)
{
    Picture source = Pattern(5, 3, pfVideoSampleSwapped, 0, 8);
    Picture destination = Sentinel(4, 4, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    ASSERT_EQ(service->CopyChannel(&src, &dst, 1, 3), 1u);
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            for (int c = 0; c < 4; ++c)
                ASSERT_EQ(SampleAt(destination, dst, x, y, c),
                          y < 3 && c == 3 ? SampleAt(source, src, x, y, 1) : kSentinel)
                    << x << ", " << y << " #" << c;
}

TEST_F(FrameServiceTest, InvertChannelComplementsOneChannel)
{
    Picture frame = Pattern(3, 4, pfVideoSample, 0, 9);
    const Picture before = frame;
    FrameParams params = frame.Params();
    ASSERT_EQ(service->InvertChannel(&params, 1), 1u);
    ExpectSamples(frame, before, params, 3, 4, [&](const Picture& old, int x, int y, int c) {
        return c == 1 ? 255 - SampleAt(old, params, x, y, c) : SampleAt(old, params, x, y, c);
    });
}

// Square, root and threshold on each of the four channels, and a negative root giving 0.
TEST_F(FrameServiceTest, FloatSampleOperationsOnAllFourChannels)
{
    const double samples[4] = {4.0, 0.25, 0.05, -1.0};
    Picture squares = Filled(1, 1, pfVideoSampleSwappedFloat, samples);
    Picture roots = squares, floor = squares;
    FrameParams squared = squares.Params(), rooted = roots.Params(), raised = floor.Params();
    const float thresholds[4] = {0.0f, 0.5f, 0.1f, 0.0f};
    EXPECT_EQ(service->SqrInPlace(&squared), 1u);
    EXPECT_EQ(service->SqrtInPlace(&rooted), 0u);   // the negative sample
    EXPECT_EQ(service->ThresholdLTInPlace(&raised, thresholds), 1u);
    const float expectedSquares[4] = {16.0f, 0.0625f, 0.05f * 0.05f, 1.0f};
    const float expectedRoots[3] = {2.0f, 0.5f, std::sqrt(0.05f)}, expectedRaised[4] = {4.0f, 0.5f, 0.1f, 0.0f};
    for (int c = 0; c < 4; ++c) {
        EXPECT_EQ(SampleAt(squares, squared, 0, 0, c), expectedSquares[c]) << c;
        EXPECT_EQ(SampleAt(floor, raised, 0, 0, c), expectedRaised[c]) << c;
    }
    for (int c = 0; c < 3; ++c)
        EXPECT_EQ(SampleAt(roots, rooted, 0, 0, c), expectedRoots[c]) << c;
    EXPECT_TRUE(std::isnan(SampleAt(roots, rooted, 0, 0, 3)));
}

} // namespace
