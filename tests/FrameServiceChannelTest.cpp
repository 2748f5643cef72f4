// The frame service's operations on channels, colours and alpha, called by slot through the
// loaded module, on every pixel format each one takes.
#include <cmath>
#include <cstring>
#include <vector>

#include "FrameServiceFixture.h"

namespace {

using TestHost::BytesPerPixel;
using TestHost::Picture;

const PixelFormat kFourChannels[] = {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat,
                                     pfVideoSampleSwappedFloat};
const PixelFormat kNotHandled[] = {pfMono8, pfMonoFloat, static_cast<PixelFormat>(2), static_cast<PixelFormat>(5)};

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

float FloatAt(const Picture& picture, const FrameParams& params, int x, int y, int c)
{
    return static_cast<float>(SampleAt(picture, params, x, y, c));
}

void SetFloat(Picture& picture, const FrameParams& params, int x, int y, int c, float value)
{
    std::memcpy(picture.Data() + static_cast<size_t>(y) * params.nByteSpan + x * params.nDepth + 4 * c, &value, 4);
}

// The bytes of each row past `rowBytes` are what they were.
void ExpectRowEndsKept(const Picture& after, const std::vector<uint8_t>& before, const FrameParams& params,
                       int rowBytes, const char* what)
{
    for (int y = 0; y < params.nHeight; ++y)
        for (int x = rowBytes; x < params.nByteSpan; ++x)
            ASSERT_EQ(after.Bytes()[y * params.nByteSpan + x], before[y * params.nByteSpan + x])
                << what << " row " << y << " byte " << x;
}

TEST_F(FrameServiceTest, ReverseChannelsReversesEachPixelOfTheCommonArea)
{
    for (PixelFormat format : kFourChannels) {
        const int depth = BytesPerPixel(format);
        Picture source = Pattern(5, 4, format, 5 * depth + 4);
        Picture destination = Sentinel(4, 6, format, 4 * depth + 8);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->ReverseChannels(&src, &dst), 1u) << format;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                for (int c = 0; c < 4; ++c)
                    ASSERT_EQ(SampleAt(destination, dst, x, y, c), SampleAt(source, src, x, y, 3 - c)) << format;
        std::vector<uint8_t> sentinel(destination.Bytes().size(), kSentinel);
        ExpectRowEndsKept(destination, sentinel, dst, 4 * depth, "padding");
        for (size_t i = 4 * static_cast<size_t>(dst.nByteSpan); i < destination.Bytes().size(); ++i)
            ASSERT_EQ(destination.Bytes()[i], kSentinel) << format << " rows below the source";

        // One picture as both: reversed where it lies.
        Picture frame = Pattern(3, 2, format);
        const Picture before = frame;
        FrameParams both = frame.Params();
        ASSERT_EQ(service->ReverseChannels(&both, &both), 1u) << format;
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x)
                for (int c = 0; c < 4; ++c)
                    ASSERT_EQ(SampleAt(frame, both, x, y, c), SampleAt(before, both, x, y, 3 - c)) << format;
    }
}

TEST_F(FrameServiceTest, ChannelOperationsRefuseFormatsWithoutAPathAndLeaveTheFrame)
{
    for (PixelFormat format : kNotHandled) {
        Picture source = Pattern(4, 4, format == pfMonoFloat || format == pfMono8 ? format : pfVideoSample);
        Picture destination = Sentinel(4, 4, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = format;
        dst.pfFormat = format;
        unsigned int order[4] = {3, 2, 1, 0};
        EXPECT_EQ(service->ReverseChannels(&src, &dst), 0u) << format;
        EXPECT_EQ(service->SetChannelValue(&dst, 1, 0x40), 0u) << format;
        EXPECT_EQ(service->SwapChannels(&dst, order), 0u) << format;
        EXPECT_EQ(service->AlphaPremul(&dst), 0u) << format;
        EXPECT_EQ(service->AlphaBlend(&dst, &src, &src, false), 0u) << format;
        EXPECT_EQ(service->SqrInPlace(&dst), 0u) << format;
        EXPECT_EQ(service->SqrtInPlace(&dst), 0u) << format;
        const float thresholds[4] = {0.5f, 0.5f, 0.5f, 0.5f};
        EXPECT_EQ(service->ThresholdLTInPlace(&dst, thresholds), 0u) << format;
        EXPECT_TRUE(Untouched(destination)) << format;
    }
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
    for (FrameParams* missing : {static_cast<FrameParams*>(nullptr), &noPixels}) {
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
    EXPECT_TRUE(Untouched(destination));
}

// Packed 4:2:2 rows of the pairs (y0, cb, y1, cr), repeated.
Picture Packed(int width, int height, const uint8_t quad[4], int byteSpan = 0)
{
    Picture picture(width, height, pfMono8, byteSpan > 0 ? byteSpan : width * 2);
    const FrameParams params = picture.Params();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width * 2; ++x)
            picture.Data()[y * params.nByteSpan + x] = quad[x % 4];
    return picture;
}

FrameParams PackedParams(Picture& picture, int width)
{
    FrameParams params = picture.Params();
    params.nWidth = width;
    params.nDepth = 2;
    params.pfFormat = pfVideoSample;
    return params;
}

TEST_F(FrameServiceTest, YUY2ToRGBAConvertsTheCommonAreaWithTheGivenAlpha)
{
    struct Case {
        const char* what;
        uint8_t quad[4];
        uint8_t first[3], second[3];   // blue, green, red of the pair's two pixels
    };
    const Case cases[] = {
        {"black and near white", {16, 128, 235, 128}, {0, 0, 0}, {254, 254, 254}},
        {"red in the third byte", {81, 90, 81, 240}, {0, 0, 254}, {0, 0, 254}},
    };
    for (const Case& c : cases) {
        Picture source = Packed(10, 10, c.quad);
        Picture destination = Sentinel(8, 12, pfVideoSample);
        FrameParams src = PackedParams(source, 10), dst = destination.Params();
        ASSERT_EQ(service->YUY2ToRGBA(&src, &dst, 77, nullptr), 1u) << c.what;
        for (int y = 0; y < 12; ++y)
            for (int x = 0; x < 8; ++x) {
                const uint8_t* pixel = Row(destination, dst, y) + 4 * x;
                if (y >= 10) {
                    ASSERT_EQ(pixel[0], kSentinel) << "row " << y << " lies below the source";
                    continue;
                }
                const uint8_t* expected = x % 2 == 0 ? c.first : c.second;
                const uint8_t bgra[4] = {expected[0], expected[1], expected[2], 77};
                ASSERT_EQ(std::memcmp(pixel, bgra, 4), 0) << c.what << " at " << x << ", " << y;
            }
    }
}

TEST_F(FrameServiceTest, RGBAToYUY2PacksTheCommonArea)
{
    struct Case {
        const char* what;
        uint8_t bgra[4];
        uint8_t quad[4];
    };
    const Case cases[] = {
        {"black", {0, 0, 0, 255}, {16, 128, 16, 128}},
        {"white", {255, 255, 255, 0}, {235, 128, 235, 128}},
        {"red", {0, 0, 255, 255}, {82, 90, 82, 240}},
    };
    for (const Case& c : cases) {
        Picture source(6, 3, pfVideoSample);
        for (int i = 0; i < 18; ++i)
            std::memcpy(source.Data() + 4 * i, c.bgra, 4);
        Picture destination = Sentinel(10, 5, pfMono8);   // 10 bytes a row: 5 packed pixels
        FrameParams src = source.Params(), dst = PackedParams(destination, 4);
        ASSERT_EQ(service->RGBAToYUY2(&src, &dst, nullptr), 1u) << c.what;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 10; ++x) {
                const uint8_t expected = y < 3 && x < 8 ? c.quad[x % 4] : kSentinel;
                ASSERT_EQ(destination.Bytes()[y * 10 + x], expected) << c.what << " byte " << x << " row " << y;
            }
    }

    // An odd width: the last pixel has its Y and its own Cb, and no Cr.
    Picture red(3, 1, pfVideoSample);
    for (int i = 0; i < 3; ++i)
        std::memcpy(red.Data() + 4 * i, cases[2].bgra, 4);
    Picture packed = Sentinel(8, 1, pfMono8);
    FrameParams src = red.Params(), dst = PackedParams(packed, 3);
    ASSERT_EQ(service->RGBAToYUY2(&src, &dst, nullptr), 1u);
    const uint8_t expected[8] = {82, 90, 82, 240, 82, 90, kSentinel, kSentinel};
    EXPECT_EQ(std::memcmp(packed.Bytes().data(), expected, 8), 0);
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
        Picture packed = Packed(4, 3, quad);
        Picture unpacked = Sentinel(4, 3, pfVideoSample);
        FrameParams yuy2 = PackedParams(packed, c.width), rgba = unpacked.Params();
        yuy2.nByteSpan = c.packedSpan;
        rgba.nByteSpan = c.unpackedSpan;
        rgba.nWidth = c.width;
        EXPECT_EQ(service->YUY2ToRGBA(&yuy2, &rgba, 255, nullptr), 0u) << c.what;
        EXPECT_TRUE(Untouched(unpacked)) << c.what;

        Picture colours = Pattern(4, 3, pfVideoSample);
        Picture target = Sentinel(8, 3, pfMono8);
        FrameParams from = colours.Params(), to = PackedParams(target, c.width);
        from.nByteSpan = c.unpackedSpan;
        from.nWidth = c.width;
        to.nByteSpan = c.packedSpan;
        EXPECT_EQ(service->RGBAToYUY2(&from, &to, nullptr), 0u) << c.what;
        EXPECT_TRUE(Untouched(target)) << c.what;
    }
}

TEST_F(FrameServiceTest, SetChannelValueFillsOnePlaceOfEveryPixelWithTheLowByte)
{
    for (PixelFormat format : kFourChannels)
        for (unsigned int channel = 0; channel < 4; ++channel) {
            const int depth = BytesPerPixel(format);
            Picture frame = Pattern(3, 4, format, 3 * depth + 8);
            const Picture before = frame;
            FrameParams params = frame.Params();
            ASSERT_EQ(service->SetChannelValue(&params, channel, 0x1234), 1u) << format;
            const double value = IsFloat(format) ? 0x34 * (1.0f / 255.0f) : 0x34;
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 3; ++x)
                    for (int c = 0; c < 4; ++c)
                        ASSERT_EQ(SampleAt(frame, params, x, y, c),
                                  c == static_cast<int>(channel) ? value : SampleAt(before, params, x, y, c))
                            << format << " channel " << channel;
            ExpectRowEndsKept(frame, before.Bytes(), params, 3 * depth, "padding");
        }
    Picture frame = Sentinel(2, 2, pfVideoSample);
    FrameParams params = frame.Params();
    EXPECT_EQ(service->SetChannelValue(&params, 4, 0), 0u);
    EXPECT_EQ(service->SetChannelValue(&params, 0xFFFFFFFFu, 0), 0u);
    EXPECT_TRUE(Untouched(frame));
}

// A picture of one pixel repeated.
Picture Filled(int width, int height, PixelFormat format, const double samples[4])
{
    Picture picture(width, height, format);
    const FrameParams params = picture.Params();
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            for (int c = 0; c < 4; ++c) {
                if (IsFloat(format))
                    SetFloat(picture, params, x, y, c, static_cast<float>(samples[c]));
                else
                    picture.Data()[y * params.nByteSpan + x * 4 + c] = static_cast<uint8_t>(samples[c]);
            }
    return picture;
}

TEST_F(FrameServiceTest, AlphaBlendWritesItsFirstFrameOverTheCommonArea)
{
    struct Case {
        const char* what;
        PixelFormat format;
        bool premultiplied;
        double foreground[4], background[4], expected[4];
    };
    const Case cases[] = {
        {"bytes, opaque foreground over premultiplied", pfVideoSample, true, {10, 20, 30, 255}, {200, 100, 50, 128},
         {10, 20, 30, 255}},
        {"bytes, clear foreground", pfVideoSample, false, {10, 20, 30, 0}, {200, 100, 50, 128}, {100, 50, 25, 128}},
        {"bytes, premultiplied sums saturate", pfVideoSample, true, {200, 200, 200, 0}, {200, 200, 200, 0},
         {255, 255, 255, 0}},
        {"alpha first, opaque foreground", pfVideoSampleSwapped, false, {255, 10, 20, 30}, {128, 200, 100, 50},
         {255, 10, 20, 30}},
        {"alpha first, premultiplied", pfVideoSampleSwapped, true, {0, 100, 0, 7}, {255, 51, 255, 0},
         {255, 151, 255, 7}},
        {"floats, premultiplied", pfVideoSampleFloat, true, {0.125, 0.25, 0.0, 0.5}, {0.25, 0.5, 1.0, 1.0},
         {0.25, 0.5, 0.5, 1.0}},
        {"alpha-first floats, straight", pfVideoSampleSwappedFloat, false, {0.5, 0.5, 0.25, 1.0},
         {1.0, 0.25, 0.5, 0.0}, {1.0, 0.375, 0.375, 0.5}},
    };
    for (const Case& c : cases) {
        Picture foreground = Filled(4, 3, c.format, c.foreground);
        Picture background = Filled(6, 4, c.format, c.background);
        const Picture foregroundBefore = foreground, backgroundBefore = background;
        const int depth = BytesPerPixel(c.format);
        Picture output = Sentinel(5, 5, c.format, 5 * depth);
        FrameParams out = output.Params(), in1 = foreground.Params(), in2 = background.Params();
        ASSERT_EQ(service->AlphaBlend(&out, &in1, &in2, c.premultiplied), 1u) << c.what;
        for (int y = 0; y < 5; ++y)
            for (int x = 0; x < 5; ++x) {
                if (x >= 4 || y >= 3) {
                    ASSERT_EQ(Row(output, out, y)[x * depth], kSentinel) << c.what << " outside the inputs";
                    continue;
                }
                for (int s = 0; s < 4; ++s)
                    ASSERT_EQ(SampleAt(output, out, x, y, s), static_cast<float>(c.expected[s]))
                        << c.what << " sample " << s;
            }
        EXPECT_EQ(foreground.Bytes(), foregroundBefore.Bytes()) << c.what;
        EXPECT_EQ(background.Bytes(), backgroundBefore.Bytes()) << c.what;
    }
}

TEST_F(FrameServiceTest, SwapChannelsPermutesInPlaceOrRefusesABadOrder)
{
    struct Case {
        unsigned int order[4];
        bool done;
    };
    const Case cases[] = {{{3, 2, 1, 0}, true}, {{0, 0, 0, 0}, true}, {{1, 2, 3, 0}, true},
                          {{0, 1, 2, 4}, false}, {{7, 0, 0, 0}, false}};
    for (PixelFormat format : kFourChannels)
        for (const Case& c : cases) {
            Picture frame = Pattern(3, 2, format, 0, 4);
            const Picture before = frame;
            FrameParams params = frame.Params();
            unsigned int order[4] = {c.order[0], c.order[1], c.order[2], c.order[3]};
            ASSERT_EQ(service->SwapChannels(&params, order), c.done ? 1u : 0u) << format;
            for (int y = 0; y < 2; ++y)
                for (int x = 0; x < 3; ++x)
                    for (int s = 0; s < 4; ++s)
                        ASSERT_EQ(SampleAt(frame, params, x, y, s),
                                  SampleAt(before, params, x, y, c.done ? static_cast<int>(c.order[s]) : s))
                            << format << " sample " << s;
        }
}

TEST_F(FrameServiceTest, AlphaPremulMultipliesColourByAlphaInEachPath)
{
    for (PixelFormat format : kFourChannels) {
        const int alpha = format == pfVideoSample || format == pfVideoSampleFloat ? 3 : 0;
        Picture frame = Pattern(4, 3, format, 0, 6);
        FrameParams params = frame.Params();
        // Opaque, clear and half-transparent pixels among the pattern's alphas.
        const double alphas[3] = {IsFloat(format) ? 1.0 : 255.0, 0.0, IsFloat(format) ? 0.5 : 128.0};
        for (int x = 0; x < 3; ++x) {
            if (IsFloat(format))
                SetFloat(frame, params, x, 0, alpha, static_cast<float>(alphas[x]));
            else
                frame.Data()[x * 4 + alpha] = static_cast<uint8_t>(alphas[x]);
        }
        const Picture before = frame;
        ASSERT_EQ(service->AlphaPremul(&params), 1u) << format;
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 4; ++x) {
                const double a = SampleAt(before, params, x, y, alpha);
                for (int c = 0; c < 4; ++c) {
                    const double v = SampleAt(before, params, x, y, c);
                    double expected = v;
                    if (c != alpha) {
                        if (format == pfVideoSample) {
                            const int t = static_cast<int>(v * a);
                            expected = (t + (t >> 8) + 1) >> 8;
                        } else if (format == pfVideoSampleSwapped) {
                            expected = static_cast<int>(v * a) / 255;
                        } else {
                            expected = static_cast<float>(v) * static_cast<float>(a);
                        }
                    }
                    ASSERT_EQ(SampleAt(frame, params, x, y, c), expected) << format << " at " << x << ", " << y;
                }
                for (int c = 0; c < 4 && y == 0 && x == 0; ++c)
                    ASSERT_EQ(SampleAt(frame, params, x, y, c), SampleAt(before, params, x, y, c)) << "opaque";
                for (int c = 0; c < 4 && y == 0 && x == 1; ++c)
                    ASSERT_EQ(SampleAt(frame, params, x, y, c), 0.0) << "clear";
            }
    }
}

TEST_F(FrameServiceTest, StudioRangeConversionsOfAlphaFirstFloats)
{
    const float greys[] = {0.0f, 0.25f, 0.5f, 1.0f};
    for (float grey : greys) {
        const double pixel[4] = {0.75, grey, grey, grey};
        Picture rgb = Filled(3, 2, pfVideoSampleSwappedFloat, pixel);
        Picture yuv = Sentinel(3, 2, pfVideoSampleSwappedFloat);
        Picture back = Sentinel(3, 2, pfVideoSampleSwappedFloat);
        FrameParams src = rgb.Params(), mid = yuv.Params(), dst = back.Params();
        ASSERT_EQ(service->ARGB32ToAppleR4FL(&src, &mid), 1u);
        ASSERT_EQ(service->AppleR4FLToARGB32(&mid, &dst), 1u);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 3; ++x) {
                // Alpha is the next pixel's skipped fourth sample, so it is never written.
                EXPECT_EQ(Row(yuv, mid, y)[x * 16], kSentinel);
                EXPECT_NEAR(FloatAt(yuv, mid, x, y, 1), grey * 219.0 / 255.0, 1e-6);
                EXPECT_NEAR(FloatAt(yuv, mid, x, y, 2), 128.0 / 255.0, 1e-6);
                EXPECT_NEAR(FloatAt(yuv, mid, x, y, 3), 128.0 / 255.0, 1e-6);
                for (int c = 1; c < 4; ++c)
                    EXPECT_NEAR(FloatAt(back, dst, x, y, c), grey, 1e-5) << grey;
            }
    }
    // The converter reports success whatever its steps refused: a source of another format
    // gives 1 and leaves the destination.
    Picture blueFirst = Pattern(3, 2, pfVideoSampleFloat);
    Picture destination = Sentinel(3, 2, pfVideoSampleSwappedFloat);
    FrameParams src = blueFirst.Params(), dst = destination.Params();
    EXPECT_EQ(service->ARGB32ToAppleR4FL(&src, &dst), 1u);
    EXPECT_EQ(service->AppleR4FLToARGB32(&src, &dst), 1u);
    EXPECT_TRUE(Untouched(destination));
}

TEST_F(FrameServiceTest, CopyChannelMovesOnePlaceBetweenPicturesOfEachDepthPair)
{
    struct Case {
        PixelFormat srcFormat, dstFormat;
        int srcChannel, dstChannel;
        bool done;
    };
    const Case cases[] = {
        {pfVideoSample, pfMono8, 2, 0, true},
        {pfMono8, pfVideoSampleSwapped, 0, 1, true},
        {pfVideoSampleSwapped, pfVideoSample, 0, 3, true},
        {pfVideoSampleFloat, pfMonoFloat, 1, 0, true},
        {pfMonoFloat, pfVideoSampleSwappedFloat, 0, 2, true},
        {pfVideoSampleSwappedFloat, pfVideoSampleFloat, 3, 0, true},
        {pfVideoSample, pfVideoSampleFloat, 0, 0, false},   // bytes to floats: no primitive
        {pfVideoSampleFloat, pfMono8, 0, 0, false},
        {pfVideoSample, pfVideoSample, 4, 0, false},
        {pfVideoSample, pfVideoSample, 0, -1, false},
        {pfVideoSampleFloat, pfVideoSampleFloat, 0, 4, false},
    };
    for (const Case& c : cases) {
        const bool mono = c.dstFormat == pfMono8 || c.dstFormat == pfMonoFloat;
        Picture source = Pattern(5, 3, c.srcFormat, 0, 8);
        Picture destination = Sentinel(4, 4, c.dstFormat);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->CopyChannel(&src, &dst, c.srcChannel, c.dstChannel), c.done ? 1u : 0u)
            << c.srcFormat << " to " << c.dstFormat;
        if (!c.done) {
            EXPECT_TRUE(Untouched(destination));
            continue;
        }
        const int samples = mono ? 1 : 4;
        const bool srcMono = c.srcFormat == pfMono8 || c.srcFormat == pfMonoFloat;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 4; ++x)
                for (int s = 0; s < samples; ++s) {
                    const bool copied = y < 3 && s == (mono ? 0 : c.dstChannel);
                    const int sampleBytes = IsFloat(c.dstFormat) ? 4 : 1;
                    const uint8_t* out = Row(destination, dst, y) + x * dst.nDepth + s * sampleBytes;
                    if (!copied) {
                        ASSERT_EQ(*out, kSentinel) << c.srcFormat << " to " << c.dstFormat;
                        continue;
                    }
                    double expected;
                    if (srcMono) {
                        expected = IsFloat(c.srcFormat) ? FloatAt(source, src, x, y, 0) : Row(source, src, y)[x];
                    } else {
                        expected = SampleAt(source, src, x, y, c.srcChannel);
                    }
                    ASSERT_EQ(SampleAt(destination, dst, x, y, s), expected) << c.srcFormat << " to " << c.dstFormat;
                }
    }
}

TEST_F(FrameServiceTest, InvertChannelComplementsAPlaceOfEveryPixelPaddingIncluded)
{
    struct Case {
        PixelFormat format;
        int channel;
        bool done;
    };
    const Case cases[] = {
        {pfVideoSample, 1, true},        {pfVideoSampleSwapped, 0, true}, {pfVideoSampleFloat, 3, true},
        {pfVideoSampleSwappedFloat, 2, true}, {pfMono8, 9, true},     {pfMonoFloat, -3, true},
        {pfVideoSample, 4, false},       {pfVideoSampleFloat, -1, false},
    };
    for (const Case& c : cases) {
        const int depth = BytesPerPixel(c.format);
        const int span = 5 * depth;   // 3 pixels and 2 of padding: the run covers them all
        Picture frame = Pattern(3, 4, c.format, span, 9);
        const Picture before = frame;
        FrameParams params = frame.Params();
        ASSERT_EQ(service->InvertChannel(&params, c.channel), c.done ? 1u : 0u) << c.format;
        const bool mono = c.format == pfMono8 || c.format == pfMonoFloat;
        FrameParams padded = params;
        padded.nWidth = 5;
        for (int y = 0; y < 4; ++y)
            for (int x = 0; x < 5; ++x)
                for (int s = 0; s < (mono ? 1 : 4); ++s) {
                    const double old = SampleAt(before, padded, x, y, s);
                    double expected = old;
                    if (c.done && (mono || s == c.channel))
                        expected = IsFloat(c.format) ? static_cast<double>(1.0f - static_cast<float>(old)) : 255 - old;
                    ASSERT_EQ(SampleAt(frame, padded, x, y, s), expected) << c.format << " at " << x << ", " << y;
                }
        if (c.done) {
            ASSERT_EQ(service->InvertChannel(&params, c.channel), 1u);
            if (!IsFloat(c.format)) {
                EXPECT_EQ(frame.Bytes(), before.Bytes()) << "twice restores bytes";
            }
        }
    }
}

TEST_F(FrameServiceTest, FloatSampleOperationsOnAllFourChannels)
{
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat}) {
        Picture frame = Pattern(4, 3, format, 0, 10);
        const Picture before = frame;
        FrameParams params = frame.Params();
        ASSERT_EQ(service->SqrInPlace(&params), 1u);
        for (int y = 0; y < 3; ++y)
            for (int x = 0; x < 4; ++x)
                for (int c = 0; c < 4; ++c) {
                    const float v = FloatAt(before, params, x, y, c);
                    ASSERT_EQ(FloatAt(frame, params, x, y, c), v * v);
                }

        const double samples[4] = {4.0, 0.0, 0.25, 2.25};
        Picture roots = Filled(2, 2, format, samples);
        FrameParams rootParams = roots.Params();
        ASSERT_EQ(service->SqrtInPlace(&rootParams), 1u);
        const float expectedRoots[4] = {2.0f, 0.0f, 0.5f, 1.5f};
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(FloatAt(roots, rootParams, 1, 1, c), expectedRoots[c]);

        // A negative sample: not-a-number there, the rest done, and 0.
        SetFloat(roots, rootParams, 0, 0, 1, -1.0f);
        SetFloat(roots, rootParams, 1, 1, 0, 9.0f);
        EXPECT_EQ(service->SqrtInPlace(&rootParams), 0u);
        EXPECT_TRUE(std::isnan(FloatAt(roots, rootParams, 0, 0, 1)));
        EXPECT_EQ(FloatAt(roots, rootParams, 1, 1, 0), 3.0f);

        const double levels[4] = {0.05, 0.1, 0.2, 0.0};
        Picture floor = Filled(3, 2, format, levels);
        FrameParams floorParams = floor.Params();
        const float thresholds[4] = {0.1f, 0.1f, 0.1f, 0.0f};
        ASSERT_EQ(service->ThresholdLTInPlace(&floorParams, thresholds), 1u);
        const float raised[4] = {0.1f, 0.1f, 0.2f, 0.0f};   // only a sample below its threshold moves
        for (int c = 0; c < 4; ++c)
            EXPECT_EQ(FloatAt(floor, floorParams, 2, 1, c), raised[c]);
    }
}

} // namespace
