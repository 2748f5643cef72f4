// The measuring loops: every instruction-set variant against the per-pixel double loop that
// defines the figures, on pictures chosen to break row sums, tails and band edges.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "../Common/Frame.h"
#include "../DeglarerPro/IntensityMeasure.h"
#include "../DeglarerPro/IntensityMeasureReference.h"
#include "../DeglarerPro/LuminanceRows.h"
#include "GuardedBlock.h"

namespace {

// The four figures bit for bit.
::testing::AssertionResult SameFigures(const Intensities& expected, const Intensities& actual)
{
    for (int band = 0; band < kIntensityBands; ++band)
        if (std::memcmp(&expected.fBand[band], &actual.fBand[band], sizeof(float)) != 0)
            return ::testing::AssertionFailure()
                   << "band " << band << ": expected " << expected.fBand[band] << " got " << actual.fBand[band];
    return ::testing::AssertionSuccess();
}

// A picture of `span` pixels a row, `width` of them used; the rest of each row is garbage that
// must not count, and so is the alpha.
enum class Fill { kRandom, kWhite, kAlternatingPixels, kAlternatingRows, kRandomOutOfRange };

template <class Pixel>
struct Picture {
    int width, height, span;
    std::vector<Pixel> pixels;
    Picture(int w, int h, int s, Fill fill, std::mt19937& random)
        : width(w), height(h), span(s), pixels(static_cast<size_t>(s) * h)
    {
        const bool bytes = sizeof(Pixel) == 4;
        // A sample from 0 to 1 (bytes: a whole number of 255ths), or beyond for floats.
        auto sample = [&](int x, int y) -> double {
            switch (fill) {
            case Fill::kWhite: return 1.0;
            case Fill::kAlternatingPixels: return (x + y) % 2;
            case Fill::kAlternatingRows: return y % 2;
            case Fill::kRandomOutOfRange: return std::uniform_real_distribution<double>(-0.5, 3.0)(random);
            default: return bytes ? random() % 256 / 255.0 : std::uniform_real_distribution<double>(0, 1)(random);
            }
        };
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < span; ++x) {
                const bool inside = x < width;
                const double garbage = bytes ? 1.0 : 1e30;
                const double r = inside ? sample(x, y) : garbage, g = inside ? sample(x + 1, y) : garbage,
                             b = inside ? sample(x + 2, y) : garbage;
                Pixel& pixel = pixels[static_cast<size_t>(y) * span + x];
                if constexpr (sizeof(Pixel) == 4) {
                    pixel.r = static_cast<uint8_t>(std::lround(r * 255));
                    pixel.g = static_cast<uint8_t>(std::lround(g * 255));
                    pixel.b = static_cast<uint8_t>(std::lround(b * 255));
                    pixel.a = static_cast<uint8_t>(random());
                } else {
                    pixel.r = static_cast<float>(r);
                    pixel.g = static_cast<float>(g);
                    pixel.b = static_cast<float>(b);
                    pixel.a = 1e30f;
                }
            }
    }
};

struct Shape {
    int width, height, span;
};

std::vector<Shape> Shapes(std::mt19937& random)
{
    // Odd widths around each vector length, spans wider than the width, heights on and off a
    // multiple of 4, and one full-size frame.
    std::vector<Shape> shapes = {{1, 4, 1},  {1, 7, 3},   {3, 5, 3},    {7, 4, 9},     {8, 8, 8},
                                 {9, 6, 9},  {15, 9, 16}, {16, 13, 21}, {17, 11, 17},  {31, 4, 40},
                                 {33, 10, 33}, {64, 7, 65}, {100, 23, 107}, {1920, 1080, 1920}};
    for (int i = 0; i < 40; ++i) {
        const int width = 1 + static_cast<int>(random() % 300);
        shapes.push_back({width, 4 + static_cast<int>(random() % 60), width + static_cast<int>(random() % 8)});
    }
    return shapes;
}

// The measuring loop of the pixel type, with the given kernels or as the reference defines it.
template <class Pixel>
Intensities Measured(const Pixel* pixels, int span, int width, int height, const LuminanceRowKernels* kernels)
{
    if constexpr (sizeof(Pixel) == 4)
        return kernels ? getAverageIntensity8u(pixels, span, width, height, *kernels)
                       : IntensityReference::getAverageIntensity8u(pixels, span, width, height);
    else
        return kernels ? getAverageIntensity32f(pixels, span, width, height, *kernels)
                       : IntensityReference::getAverageIntensity32f(pixels, span, width, height);
}

template <class Pixel>
void CheckEveryVariant(const std::vector<Fill>& fills)
{
    std::mt19937 random(20240611);
    for (const Shape& shape : Shapes(random))
        for (Fill fill : fills) {
            Picture<Pixel> picture(shape.width, shape.height, shape.span, fill, random);
            const Pixel* pixels = picture.pixels.data();
            const Intensities expected = Measured(pixels, shape.span, shape.width, shape.height, nullptr);
            for (const LuminanceRowKernels* kernels : AvailableLuminanceRowKernels())
                EXPECT_TRUE(SameFigures(expected, Measured(pixels, shape.span, shape.width, shape.height, kernels)))
                    << kernels->name << " " << shape.width << "x" << shape.height << " span " << shape.span
                    << " fill " << static_cast<int>(fill);
        }
}

TEST(IntensityMeasure, EveryVariantGivesTheFiguresOfThePerPixelLoop)
{
    const std::vector<Fill> bytes = {Fill::kRandom, Fill::kWhite, Fill::kAlternatingPixels, Fill::kAlternatingRows};
    const std::vector<Fill> floats = {Fill::kRandom, Fill::kRandomOutOfRange, Fill::kWhite, Fill::kAlternatingPixels};
    CheckEveryVariant<VideoSample>(bytes);
    CheckEveryVariant<VideoSampleSwapped>(bytes);
    CheckEveryVariant<VideoSampleFloat>(floats);
    CheckEveryVariant<VideoSampleSwappedFloat>(floats);
}

// The pictures end right at a page that faults when read, and each comes with its swapped twin:
// the same pixels must give the same figures, bit for bit, with every variant.
TEST(IntensityMeasure, NoVariantReadsPastThePictureAndSwappedFormatsGiveThePlainFigures)
{
    std::mt19937 random(99);
    for (int width = 1; width <= 40; ++width)
        for (int height = 4; height <= 6; ++height) {
            const size_t count = static_cast<size_t>(width) * height;
            const Picture<VideoSample> bytes(width, height, width, Fill::kRandom, random);
            const Picture<VideoSampleFloat> floats(width, height, width, Fill::kRandomOutOfRange, random);
            const GuardedBlock::Guard end = GuardedBlock::Guard::AfterEnd;
            GuardedBlock blocks[4] = {{count * 4, end}, {count * 4, end}, {count * 16, end}, {count * 16, end}};
            auto* plain = reinterpret_cast<VideoSample*>(blocks[0].Data());
            auto* swapped = reinterpret_cast<VideoSampleSwapped*>(blocks[1].Data());
            auto* plainFloat = reinterpret_cast<VideoSampleFloat*>(blocks[2].Data());
            auto* swappedFloat = reinterpret_cast<VideoSampleSwappedFloat*>(blocks[3].Data());
            for (size_t i = 0; i < count; ++i) {
                const VideoSample& p = plain[i] = bytes.pixels[i];
                swapped[i] = VideoSampleSwapped{p.a, p.r, p.g, p.b};
                const VideoSampleFloat& f = plainFloat[i] = floats.pixels[i];
                swappedFloat[i] = VideoSampleSwappedFloat{f.a, f.r, f.g, f.b};
            }
            for (const LuminanceRowKernels* kernels : AvailableLuminanceRowKernels()) {
                EXPECT_TRUE(SameFigures(Measured(plain, width, width, height, kernels),
                                        Measured(swapped, width, width, height, kernels)))
                    << kernels->name << " " << width << "x" << height;
                EXPECT_TRUE(SameFigures(Measured(plainFloat, width, width, height, kernels),
                                        Measured(swappedFloat, width, width, height, kernels)))
                    << kernels->name << " " << width << "x" << height;
            }
        }
}

// The strip measure must agree bit for bit with the whole-picture loop, with every kernel set,
// however its rows are handed in: heights on and off a multiple of 4 (the band quarters) and of
// every strip height, and rows wider than their pixels.
template <class Pixel>
void CheckStrips(PixelFormat format)
{
    std::mt19937 random(5);
    for (const Shape& shape : {Shape{37, 4, 37}, Shape{61, 23, 64}, Shape{128, 97, 131}, Shape{17, 1080, 17}}) {
        Picture<Pixel> picture(shape.width, shape.height, shape.span, Fill::kRandom, random);
        CFrame frame;
        frame.Init(reinterpret_cast<uint8_t*>(picture.pixels.data()), shape.width, shape.height,
                   shape.span * static_cast<int>(sizeof(Pixel)), static_cast<int>(sizeof(Pixel)), format, false);
        for (const LuminanceRowKernels* kernels : AvailableLuminanceRowKernels()) {
            Intensities expected = Measured(picture.pixels.data(), shape.span, shape.width, shape.height, kernels);
            for (float& band : expected.fBand)
                band /= sizeof(Pixel) == 4 ? 255.0f : 1.0f;
            for (int rows : {1, 3, 7, 64, 5000}) {
                CFrameIntensityMeasure measure(frame, *kernels);
                for (int endRow = rows; endRow < shape.height + rows; endRow += rows) {
                    measure.MeasureRowsBefore(endRow);
                    measure.MeasureRowsBefore(endRow);   // rows already added aren't added again
                }
                EXPECT_TRUE(SameFigures(expected, measure.Result())) << kernels->name << " format " << format << " "
                                                                     << shape.width << "x" << shape.height
                                                                     << " strips of " << rows;
            }
        }
    }
}

TEST(IntensityMeasure, StripsGiveTheWholePictureFiguresBitForBit)
{
    CheckStrips<VideoSample>(pfVideoSample);
    CheckStrips<VideoSampleSwapped>(pfVideoSampleSwapped);
    CheckStrips<VideoSampleFloat>(pfVideoSampleFloat);
    CheckStrips<VideoSampleSwappedFloat>(pfVideoSampleSwappedFloat);
}

// A frame over a picture of one grey level, or bright in some rows and black in the rest.
struct ByteFrame {
    std::vector<uint8_t> bytes;
    CFrame frame;
    ByteFrame(int width, int height, PixelFormat format, int brightRows, uint8_t level)
        : bytes(static_cast<size_t>(width) * height * 4, 0)
    {
        for (int y = 0; y < brightRows; ++y)
            for (int x = 0; x < width; ++x) {
                uint8_t* px = &bytes[(static_cast<size_t>(y) * width + x) * 4];
                px[0] = px[1] = px[2] = px[3] = level;
            }
        frame.Init(bytes.data(), width, height, width * 4, 4, format, false);
    }
};

TEST(IntensityMeasure, FramesGiveTheirBandFigures)
{
    // 400 rows, q = 100. Over a uniform picture band 0 gathers the weights q (the first quarter)
    // and 100/100 + ... + 1/100 = (q + 1) / 2 (its slope), against the divisor 1.5 q; band 3
    // gathers (q - 1) / 2 + q; bands 1 and 2 gather exactly their divisor 2 q. Over a first
    // quarter only, band 0 gathers q and band 1 its rising slope 0/100 + ... + 99/100.
    const double q = 100.0;
    const double white = 254.0 / 255.0;
    struct Case {
        const char* what;
        int brightRows;   // of 400
        uint8_t level;
        double expected[4];
    };
    const Case cases[] = {
        {"white", 400, 255,
         {white * (1.5 * q + 0.5) / (1.5 * q), white, white, white * (1.5 * q - 0.5) / (1.5 * q)}},
        {"black", 400, 0, {0.0, 0.0, 0.0, 0.0}},
        {"first quarter white", 100, 255, {white * 2.0 / 3.0, white * (q - 1) / 2 / (2 * q), 0.0, 0.0}},
    };
    for (const Case& c : cases)
        for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped}) {
            ByteFrame picture(37, 400, format, c.brightRows, c.level);
            const Intensities figures = MeasureFrameIntensities(picture.frame);
            for (int band = 0; band < 4; ++band)
                EXPECT_NEAR(figures.fBand[band], c.expected[band], 1e-6) << c.what << " band " << band;
        }
}

TEST(IntensityMeasure, UnmeasurableInputGivesZerosWithoutReading)
{
    VideoSample pixel = {200, 200, 200, 200};
    const Intensities zero = Intensities::Zero();
    // Fewer than 4 rows, no width, a span shorter than a row, no pixels.
    const int shapes[][3] = {{1, 1, 3}, {1, 0, 4}, {1, -3, 4}, {0, 1, 4}};   // span, width, height
    for (const auto& s : shapes)
        EXPECT_TRUE(SameFigures(zero, getAverageIntensity8u(&pixel, s[0], s[1], s[2]))) << s[0] << " " << s[1];
    EXPECT_TRUE(SameFigures(zero, getAverageIntensity8u(static_cast<VideoSample*>(nullptr), 8, 8, 8)));
    EXPECT_TRUE(SameFigures(zero, getAverageIntensity32f(static_cast<VideoSampleFloat*>(nullptr), 8, 8, 8)));

    ByteFrame picture(8, 8, pfVideoSample, 8, 200);
    for (PixelFormat format : {pfMono8, pfMonoFloat, static_cast<PixelFormat>(2), static_cast<PixelFormat>(-1)}) {
        picture.frame.m_pfPixelFormat = format;
        EXPECT_TRUE(SameFigures(zero, MeasureFrameIntensities(picture.frame))) << format;
    }
    // A float format over 4-byte pixels would read four times the picture.
    picture.frame.m_pfPixelFormat = pfVideoSampleFloat;
    EXPECT_TRUE(SameFigures(zero, MeasureFrameIntensities(picture.frame)));
    picture.frame.m_pfPixelFormat = pfVideoSample;
    EXPECT_GT(MeasureFrameIntensities(picture.frame).fBand[0], 0.7f);
    picture.frame.m_pBuffer = nullptr;
    EXPECT_TRUE(SameFigures(zero, MeasureFrameIntensities(picture.frame)));
}

TEST(IntensityMeasure, BandWeightsFormTrapezoids)
{
    // Height 10: q = 2, rows 8 and 9 are left over and fall into the last quarter.
    const double expected[10][4] = {
        {1, 0, 0, 0},   {1, 0.5, 0, 0}, {1, 1, 0, 0},   {0.5, 1, 0.5, 0}, {0, 1, 1, 0},
        {0, 0.5, 1, 0.5}, {0, 0, 2, 1}, {0, 0, 1.5, 1}, {0, 0, 1, 1},     {0, 0, 0.5, 1},
    };
    for (int row = 0; row < 10; ++row) {
        double weights[4];
        BandWeights(row, 2, 10, weights);
        for (int band = 0; band < 4; ++band)
            EXPECT_EQ(weights[band], expected[row][band]) << "row " << row << " band " << band;
    }
}

} // namespace
