// The pixel members on small hand-worked pictures: rounding and saturation edges, and what each
// leaves alone. Every case runs at each variant index the processor can run. The channel copies,
// sets, swap and replicated border are worked through the processors built on them, at each index
// too (ColourChannelTest.cpp, FillBorderTest.cpp).
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include "../primitives/ippi.h"
#include "VariantIndex.h"

namespace
{

const float kNaN = std::numeric_limits<float>::quiet_NaN();
const float kInf = std::numeric_limits<float>::infinity();

uint32_t Bits(float v)
{
    uint32_t bits;
    std::memcpy(&bits, &v, 4);
    return bits;
}

// A row of n copies of one four-sample pixel: enough pixels that vectors and the plain tail both
// see a case.
template <typename T>
std::vector<T> Repeat(const T (&pixel)[4], int n)
{
    std::vector<T> row;
    for (int x = 0; x < n; ++x)
        row.insert(row.end(), pixel, pixel + 4);
    return row;
}

TEST(PixelPrimitives, PremultiplyAndCompositeRoundAndSaturateOnHandWorkedPixels)
{
    struct PremulCase {
        uint8_t sample, alpha, expected;
    };
    const PremulCase premul[] = {{255, 255, 255}, {0, 255, 0},   {128, 255, 128}, {255, 128, 128},
                                 {254, 254, 253}, {1, 1, 0},     {255, 0, 0},     {200, 128, 100}};
    struct CompCase {
        IppiAlphaType type;
        uint8_t first[4], second[4], expected[4];
    };
    const CompCase comp[] = {
        {ippAlphaOver, {10, 20, 30, 255}, {200, 100, 50, 255}, {10, 20, 30, 255}},
        {ippAlphaOver, {10, 20, 30, 0}, {200, 100, 50, 128}, {100, 50, 25, 128}},   // the second, premultiplied
        {ippAlphaOverPremul, {200, 200, 200, 0}, {200, 200, 200, 255}, {255, 255, 255, 255}},
        {ippAlphaOverPremul, {10, 20, 30, 255}, {200, 100, 50, 255}, {10, 20, 30, 255}},
        {ippAlphaIn, {255, 255, 255, 255}, {0, 0, 0, 128}, {128, 128, 128, 128}},
        {ippAlphaOut, {255, 255, 255, 255}, {9, 9, 9, 255}, {0, 0, 0, 0}},
        {ippAlphaATop, {255, 255, 255, 255}, {9, 9, 9, 0}, {0, 0, 0, 0}},
        {ippAlphaXor, {255, 255, 255, 255}, {9, 9, 9, 255}, {0, 0, 0, 0}},
        {ippAlphaPlus, {200, 200, 200, 200}, {200, 200, 200, 200}, {255, 255, 255, 255}},
        {ippAlphaPlusPremul, {10, 20, 30, 40}, {1, 2, 3, 4}, {11, 22, 33, 44}},
    };
    AtEveryIndex([&] {
        for (const PremulCase& c : premul) {
            const std::vector<uint8_t> src = Repeat<uint8_t>({c.sample, c.sample, c.sample, c.alpha}, 5);
            std::vector<uint8_t> dst(20, 0xee);
            ASSERT_EQ(ippStsNoErr, ippiAlphaPremul_8u_AC4R(src.data(), 20, dst.data(), 20, {5, 1}));
            EXPECT_EQ(Repeat<uint8_t>({c.expected, c.expected, c.expected, c.alpha}, 5), dst)
                << int(c.sample) << " x " << int(c.alpha);
        }
        for (const CompCase& c : comp) {
            const std::vector<uint8_t> first = Repeat(c.first, 6), second = Repeat(c.second, 6);
            std::vector<uint8_t> dst(24, 0xee);
            ASSERT_EQ(ippStsNoErr,
                      ippiAlphaComp_8u_AC4R(first.data(), 24, second.data(), 24, dst.data(), 24, {6, 1}, c.type));
            EXPECT_EQ(Repeat(c.expected, 6), dst) << "type " << c.type << ", first alpha " << int(c.first[3]);
        }
    });
}

// To 4:2:2: studio range, and an odd last pixel with a Cb of its own. Back: saturated, and an odd
// last pixel borrowing the pair's Cr.
TEST(PixelPrimitives, YCbCr422ConversionsBothWays)
{
    struct Case {
        bool toPacked;
        std::vector<uint8_t> in, expected;
    };
    const std::vector<Case> cases = {
        {true, {0, 0, 0, 9, 0, 0, 0, 9}, {16, 128, 16, 128}},
        {true, {255, 255, 255, 0, 255, 255, 255, 0}, {235, 128, 235, 128}},
        {true, {255, 0, 0, 0, 255, 0, 0, 0}, {41, 240, 41, 110}},
        {true, {255, 0, 0, 0, 0, 0, 255, 0, 0, 0, 255, 0}, {41, 165, 82, 175, 82, 90}},
        {false, {16, 128, 16, 128}, {0, 0, 0, 0x7f, 0, 0, 0, 0x7f}},
        {false, {235, 128, 235, 128}, {254, 254, 254, 0x7f, 254, 254, 254, 0x7f}},   // white stops at 254
        {false, {16, 128, 16, 240, 235, 16}, {0, 0, 178, 0x7f, 0, 0, 178, 0x7f, 29, 207, 255, 0x7f}},
    };
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            const int width = static_cast<int>(c.in.size() / (c.toPacked ? 4 : 2));
            std::vector<uint8_t> dst(c.expected.size() + 4, 0xee);
            const IppiSize size = {width, 1};
            const uint8_t* in = c.in.data();
            const IppStatus status =
                c.toPacked ? ippiBGRToYCbCr422_8u_AC4C2R(in, width * 4, dst.data(), width * 2, size)
                           : ippiYCbCr422ToBGR_8u_C2C4R(in, width * 2, dst.data(), width * 4, size, 0x7f);
            ASSERT_EQ(ippStsNoErr, status);
            std::vector<uint8_t> expected = c.expected;
            expected.resize(dst.size(), 0xee);
            EXPECT_EQ(expected, dst) << (c.toPacked ? "to" : "from") << " 4:2:2, width " << width;
        }
    });
}

// Roots in double, rounded once; zero of either sign and not-a-number stay. The colour members
// leave the fourth sample, and the twist's first channel sums to 1 only when its terms are added
// left to right, (1e8 - 1e8) + 1; in place, each result is written after all three samples are read.
TEST(PixelPrimitives, FloatArithmeticEdges)
{
    static const Ipp32f twist[3][4] = {{1e8f, 1.0f, 0.0f, -1e8f}, {0.0f, 0.0f, 2.0f, 0.5f}, {1.0f, 1.0f, 1.0f, 0.0f}};
    static const Ipp32f add[3] = {1.0f, -1.0f, 0.5f}, mul[3] = {2.0f, -1.0f, 0.0f};
    static const Ipp32f limit[4] = {0.5f, 0.5f, 0.5f, -1.0f}, value[4] = {0.5f, 7.0f, 9.0f, -1.0f};
    static const std::vector<float> colour = Repeat({1.0f, 1.0f, 3.0f, kNaN}, 5);
    struct Case {
        const char* what;
        IppStatus (*member)(float* picture);   // five pixels in a row, in place or as the destination
        float in[4], expected[4];
    };
    const float n = kNaN, d = -7.0f;   // d: a destination sample as it was
    const auto root = [](float* p) { return ippiSqrt_32f_C4IR(p, 80, {5, 1}); };
    const auto floor = [](float* p) { return ippiThreshold_LTVal_32f_C4IR(p, 80, {5, 1}, limit, value); };
    const Case cases[] = {
        {"roots", root, {4, 2, 0.25f, kInf}, {2, 1.41421354f, 0.5f, kInf}},
        {"roots of zeros", root, {0, -0.0f, n, 1}, {0, -0.0f, n, 1}},
        {"squares", [](float* p) { return ippiSqr_32f_C4IR(p, 80, {5, 1}); }, {-3, 0.5f, 1e20f, n},
         {9, 0.25f, kInf, n}},
        {"below takes the value, equal and NaN stay", floor, {0.25f, 0.25f, 0.5f, n}, {0.5f, 7, 0.5f, n}},
        {"above stays", floor, {0.75f, 2, 1.5f, -0.5f}, {0.75f, 2, 1.5f, -0.5f}},
        {"twist", [](float* p) { return ippiColorTwist_32f_AC4R(colour.data(), 80, p, 80, {5, 1}, twist); },
         {d, d, d, d}, {1, 6.5f, 5, d}},
        {"twist in place", [](float* p) { return ippiColorTwist_32f_AC4IR(p, 80, {5, 1}, twist); }, {1, 1, 3, n},
         {1, 6.5f, 5, n}},
        {"add", [](float* p) { return ippiAddC_32f_AC4R(colour.data(), 80, add, p, 80, {5, 1}); }, {d, d, d, d},
         {2, 0, 3.5f, d}},
        {"multiply", [](float* p) { return ippiMulC_32f_AC4R(colour.data(), 80, mul, p, 80, {5, 1}); }, {d, d, d, d},
         {2, -1, 0, d}},
    };
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            std::vector<float> picture = Repeat(c.in, 5);
            EXPECT_EQ(ippStsNoErr, c.member(picture.data()));
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(Bits(c.expected[i % 4]), Bits(picture[i])) << c.what << ", sample " << i;
        }
        // A negative sample first: a not-a-number, the warning, and the rest of both rows still done.
        std::vector<float> picture = {-1.0f, 4.0f, 9.0f, 16.0f, 99.0f, 25.0f, 36.0f, 49.0f, 64.0f, 99.0f};
        EXPECT_EQ(ippStsSqrtNegArg, ippiSqrt_32f_C4IR(picture.data(), 20, {1, 2}));
        EXPECT_TRUE(std::isnan(picture[0]));
        EXPECT_EQ(std::vector<float>({2.0f, 3.0f, 4.0f, 99.0f, 5.0f, 6.0f, 7.0f, 8.0f, 99.0f}),
                  std::vector<float>(picture.begin() + 1, picture.end()));
    });
}

} // namespace
