// The frame service's operations on channels, colours and alpha, called by slot through the
// loaded module. Their arithmetic on every format is the processors' and is tested with them;
// here, one worked value each shows the right processor driven with the right arguments.
#include <cmath>
#include <cstring>
#include <vector>

#include "FrameServiceFixture.h"

namespace {

using TestHost::Picture;

const float kHalves[4] = {0.5f, 0.5f, 0.5f, 0.5f};

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

TEST_F(FrameServiceTest, EveryOperationRefusesMissingRecordsAndPixels)
{
    Picture source = Pattern(4, 4, pfVideoSampleFloat);
    Picture destination = Sentinel(4, 4, pfVideoSampleFloat);
    FrameParams src = source.Params(), dst = destination.Params(), noPixels = src;
    noPixels.pBuffer = nullptr;
    unsigned int order[4] = {0, 1, 2, 3};
    tagRECT rect = {0, 0, 1, 1};
    FrameService& s = *service;
    for (FrameParams* m : {static_cast<FrameParams*>(nullptr), &noPixels}) {
        SCOPED_TRACE(m == nullptr ? "no record" : "no pixels");
        // Each answer is 0, so any that isn't shows in the sum.
        EXPECT_EQ(s.Copy(m, &dst) + s.Copy(&src, m) + s.Resize(m, &dst, 1) + s.Resize(&src, m, 1), 0u);
        EXPECT_EQ(s.ResizeCrop(m, &rect, &dst, 1) + s.ResizeCrop(&src, &rect, m, 1), 0u);
        EXPECT_EQ(s.ReverseChannels(m, &dst) + s.ReverseChannels(&src, m) + s.SwapChannels(m, order), 0u);
        EXPECT_EQ(s.YUY2ToRGBA(m, &dst, 255, nullptr) + s.YUY2ToRGBA(&src, m, 255, nullptr), 0u);
        EXPECT_EQ(s.RGBAToYUY2(m, &dst, nullptr) + s.RGBAToYUY2(&src, m, nullptr), 0u);
        EXPECT_EQ(s.AlphaBlend(m, &src, &src, true) + s.AlphaBlend(&dst, m, &src, true), 0u);
        EXPECT_EQ(s.AlphaBlend(&dst, &src, m, true) + s.AlphaPremul(m) + s.SetChannelValue(m, 0, 0), 0u);
        EXPECT_EQ(s.AppleR4FLToARGB32(m, &dst) + s.AppleR4FLToARGB32(&src, m), 0u);
        EXPECT_EQ(s.ARGB32ToAppleR4FL(m, &dst) + s.ARGB32ToAppleR4FL(&src, m), 0u);
        EXPECT_EQ(s.CopyChannel(m, &dst, 0, 0) + s.CopyChannel(&src, m, 0, 0) + s.InvertChannel(m, 0), 0u);
        EXPECT_EQ(s.SqrInPlace(m) + s.SqrtInPlace(m) + s.ThresholdLTInPlace(m, kHalves), 0u);
    }
    EXPECT_EQ(s.SwapChannels(&dst, nullptr) + s.ThresholdLTInPlace(&dst, nullptr), 0u);
    EXPECT_EQ(s.ResizeCrop(&src, nullptr, &dst, 1) + s.FlipFrame(nullptr), 0u);
    EXPECT_EQ(s.FlipFrame(nullptr, &dst) + s.FlipFrame(&src, nullptr), 0u);
    EXPECT_TRUE(Untouched(destination));
}

// Refused formats and arguments: 0, and the frame as it was.
TEST_F(FrameServiceTest, ChannelOperationsRefuseFormatsAndChannelsWithoutAPath)
{
    FrameService& s = *service;
    for (PixelFormat format : {pfMono8, pfMonoFloat, static_cast<PixelFormat>(2), static_cast<PixelFormat>(5)}) {
        SCOPED_TRACE(format);
        Picture source = Pattern(4, 4, format == pfMonoFloat || format == pfMono8 ? format : pfVideoSample);
        Picture destination = Sentinel(4, 4, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = dst.pfFormat = format;
        unsigned int order[4] = {3, 2, 1, 0};
        EXPECT_EQ(s.ReverseChannels(&src, &dst) + s.SetChannelValue(&dst, 1, 0x40) + s.SwapChannels(&dst, order), 0u);
        EXPECT_EQ(s.AlphaPremul(&dst) + s.AlphaBlend(&dst, &src, &src, false), 0u);
        EXPECT_EQ(s.SqrInPlace(&dst) + s.SqrtInPlace(&dst) + s.ThresholdLTInPlace(&dst, kHalves), 0u);
        EXPECT_TRUE(Untouched(destination));
    }

    // Bytes to floats has no path; channels lie in 0 to 3.
    Picture bytes = Pattern(4, 4, pfVideoSample);
    Picture floats = Sentinel(4, 4, pfVideoSampleFloat);
    FrameParams src = bytes.Params(), dst = floats.Params();
    unsigned int order[4] = {0, 1, 2, 4};
    EXPECT_EQ(s.CopyChannel(&src, &dst, 0, 0) + s.CopyChannel(&dst, &dst, 4, 0) + s.CopyChannel(&dst, &dst, 0, -1), 0u);
    EXPECT_EQ(s.SetChannelValue(&dst, 4, 0) + s.SetChannelValue(&dst, 0xFFFFFFFFu, 0), 0u);
    EXPECT_EQ(s.InvertChannel(&dst, 4) + s.InvertChannel(&dst, -1) + s.SwapChannels(&dst, order), 0u);
    EXPECT_TRUE(Untouched(floats));
}

// One pixel through each channel slot: the arguments reach the processor in their order.
TEST_F(FrameServiceTest, ChannelSlotsPassTheirArgumentsInOrder)
{
    using Bytes = std::vector<uint8_t>;
    const double pixel[4] = {10, 20, 30, 40};
    Picture frame = Filled(1, 1, pfVideoSample, pixel), target = Sentinel(1, 1, pfVideoSample);
    FrameParams params = frame.Params(), dst = target.Params();
    unsigned int order[4] = {1, 2, 3, 0};
    ASSERT_EQ(service->SetChannelValue(&params, 2, 0x1234), 1u);   // the low byte
    EXPECT_EQ(frame.Bytes(), Bytes({10, 20, 0x34, 40}));
    ASSERT_EQ(service->InvertChannel(&params, 1), 1u);
    EXPECT_EQ(frame.Bytes(), Bytes({10, 235, 0x34, 40}));
    ASSERT_EQ(service->SwapChannels(&params, order), 1u);
    EXPECT_EQ(frame.Bytes(), Bytes({235, 0x34, 40, 10}));
    ASSERT_EQ(service->ReverseChannels(&params, &dst), 1u);   // the source first
    EXPECT_EQ(target.Bytes(), Bytes({10, 40, 0x34, 235}));
    ASSERT_EQ(service->CopyChannel(&params, &dst, 1, 0), 1u);   // the source's channel first
    EXPECT_EQ(target.Bytes(), Bytes({0x34, 40, 0x34, 235}));
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
    const uint8_t bgra[4] = {0, 0, 254, 77}, sentinels[4] = {kSentinel, kSentinel, kSentinel, kSentinel};
    for (int y = 0; y < 12; ++y)
        for (int x = 0; x < 8; ++x)   // rows 10 and 11 lie below the source
            ASSERT_EQ(std::memcmp(Row(unpacked, rgba, y) + 4 * x, y < 10 ? bgra : sentinels, 4), 0) << x << ", " << y;

    const double redPixel[4] = {0, 0, 255, 255};
    Picture colours = Filled(6, 3, pfVideoSample, redPixel);
    Picture target = Sentinel(10, 5, pfMono8);   // 10 bytes a row: 5 packed pixels
    FrameParams from = colours.Params(), to = Packed(target, 4, nullptr);
    ASSERT_EQ(service->RGBAToYUY2(&from, &to, nullptr), 1u);
    const uint8_t quad[4] = {82, 90, 82, 240};
    for (int i = 0; i < 50; ++i)
        ASSERT_EQ(target.Bytes()[i], i / 10 < 3 && i % 10 < 8 ? quad[i % 10 % 4] : kSentinel) << "byte " << i;
}

TEST_F(FrameServiceTest, FourTwoTwoConversionsRefuseBottomUpEmptyAndSinglePixelAreas)
{
    struct Case {
        const char* what;
        int packedSpan, unpackedSpan, width;
    };
    const Case cases[] = {
        {"packed span 0", 0, 16, 4},         {"unpacked span 0", 8, 0, 4},          {"packed bottom-up", -8, 16, 4},
        {"unpacked bottom-up", 8, -16, 4},   {"one pixel wide", 8, 16, 1},          {"no width", 8, 16, 0},
        {"packed rows too short", 6, 16, 4}, {"unpacked rows too short", 8, 12, 4},
    };
    const uint8_t quad[4] = {16, 128, 235, 128};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture packed(8, 3, pfMono8), colours = Pattern(4, 3, pfVideoSample);
        Picture unpacked = Sentinel(4, 3, pfVideoSample), target = Sentinel(8, 3, pfMono8);
        FrameParams yuy2 = Packed(packed, c.width, quad), rgba = unpacked.Params();
        FrameParams from = colours.Params(), to = Packed(target, c.width, nullptr);
        yuy2.nByteSpan = to.nByteSpan = c.packedSpan;
        rgba.nByteSpan = from.nByteSpan = c.unpackedSpan;
        rgba.nWidth = from.nWidth = c.width;
        EXPECT_EQ(service->YUY2ToRGBA(&yuy2, &rgba, 255, nullptr), 0u);
        EXPECT_EQ(service->RGBAToYUY2(&from, &to, nullptr), 0u);
        EXPECT_TRUE(Untouched(unpacked));
        EXPECT_TRUE(Untouched(target));
    }
}

// The output comes first at the slot: the first input is the foreground, the second the background.
TEST_F(FrameServiceTest, AlphaBlendAndPremulDriveTheirProcessors)
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
        Picture foreground = Filled(1, 1, c.format, c.foreground), background = Filled(1, 1, c.format, c.background);
        Picture output = Sentinel(1, 1, c.format);
        FrameParams out = output.Params(), in1 = foreground.Params(), in2 = background.Params();
        ASSERT_EQ(service->AlphaBlend(&out, &in1, &in2, c.premultiplied), 1u);
        for (int s = 0; s < 4; ++s)
            EXPECT_EQ(SampleAt(output, out, 0, 0, s), static_cast<float>(c.expected[s])) << "sample " << s;
    }
    // Premultiplying in place, through the primitive.
    const double pixel[4] = {200, 100, 50, 128};
    Picture frame = Filled(2, 1, pfVideoSample, pixel);
    FrameParams params = frame.Params();
    ASSERT_EQ(service->AlphaPremul(&params), 1u);
    EXPECT_EQ(frame.Bytes(), std::vector<uint8_t>({100, 50, 25, 128, 100, 50, 25, 128}));
}

// A grey to studio-range Y'CbCr and back. The converter reports success whatever its steps
// refused: a source of another format gives 1 and leaves the destination.
TEST_F(FrameServiceTest, StudioRangeConversionsOfAlphaFirstFloats)
{
    const double grey[4] = {0.75, 0.5, 0.5, 0.5};
    Picture rgb = Filled(1, 1, pfVideoSampleSwappedFloat, grey), yuv = Sentinel(1, 1, pfVideoSampleSwappedFloat),
            back = Sentinel(1, 1, pfVideoSampleSwappedFloat), blueFirst = Pattern(1, 1, pfVideoSampleFloat);
    FrameParams src = rgb.Params(), mid = yuv.Params(), dst = back.Params(), other = blueFirst.Params();
    ASSERT_EQ(service->ARGB32ToAppleR4FL(&src, &mid), 1u);
    EXPECT_NEAR(SampleAt(yuv, mid, 0, 0, 1), 0.5 * 219.0 / 255.0, 1e-6);
    EXPECT_NEAR(SampleAt(yuv, mid, 0, 0, 2), 128.0 / 255.0, 1e-6);
    EXPECT_EQ(service->AppleR4FLToARGB32(&other, &dst) + service->ARGB32ToAppleR4FL(&other, &dst), 2u);
    EXPECT_TRUE(Untouched(back));
    ASSERT_EQ(service->AppleR4FLToARGB32(&mid, &dst), 1u);
    for (int c = 1; c < 4; ++c)
        EXPECT_NEAR(SampleAt(back, dst, 0, 0, c), 0.5, 1e-5) << c;
}

// Square, root and threshold on each of the four channels, and a negative root giving 0.
TEST_F(FrameServiceTest, FloatSampleOperationsOnAllFourChannels)
{
    const double samples[4] = {4.0, 0.25, 0.05, -1.0};
    Picture squares = Filled(1, 1, pfVideoSampleSwappedFloat, samples), roots = squares, floor = squares;
    FrameParams squared = squares.Params(), rooted = roots.Params(), raised = floor.Params();
    const float thresholds[4] = {0.0f, 0.5f, 0.1f, 0.0f};
    EXPECT_EQ(service->SqrInPlace(&squared), 1u);
    EXPECT_EQ(service->SqrtInPlace(&rooted), 0u);   // the negative sample
    EXPECT_EQ(service->ThresholdLTInPlace(&raised, thresholds), 1u);
    const double expected[3][4] = {{16.0f, 0.0625f, 0.05f * 0.05f, 1.0f},
                                   {2.0f, 0.5f, std::sqrt(0.05f), std::nan("")},
                                   {4.0f, 0.5f, 0.1f, 0.0f}};
    const Picture* pictures[3] = {&squares, &roots, &floor};
    for (int i = 0; i < 12; ++i) {
        const double value = SampleAt(*pictures[i / 4], squared, 0, 0, i % 4), want = expected[i / 4][i % 4];
        EXPECT_TRUE(std::isnan(want) ? std::isnan(value) : value == want) << "operation " << i / 4 << " #" << i % 4;
    }
}

} // namespace
