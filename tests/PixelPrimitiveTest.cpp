// The pixel members on small hand-worked pictures: rounding and saturation edges, the channel
// forms, and what each leaves alone. Every case runs at each variant index the processor can run.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string>
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

// Runs `check` once at each variant index this processor can run.
template <typename Check> void AtEveryIndex(Check check)
{
    for (int index : RunnableVariantIndices()) {
        SCOPED_TRACE("variant index " + std::to_string(index));
        ScopedVariantIndex variant(index);
        check();
    }
}

struct PremulCase {
    uint8_t sample;
    uint8_t alpha;
    uint8_t expected;
};

TEST(PixelPrimitives, PremultiplyDividesBy255WithTheLibrarysRounding)
{
    const PremulCase cases[] = {{255, 255, 255}, {0, 255, 0}, {128, 255, 128}, {255, 128, 128},
                                {254, 254, 253}, {1, 1, 0},   {255, 0, 0},     {200, 128, 100}};
    AtEveryIndex([&] {
        for (const PremulCase& c : cases) {
            // Five pixels, so that vectors and the plain tail both see the case.
            std::vector<uint8_t> src, dst(20, 0xee);
            for (int x = 0; x < 5; ++x)
                src.insert(src.end(), {c.sample, c.sample, c.sample, c.alpha});
            ASSERT_EQ(ippStsNoErr, ippiAlphaPremul_8u_AC4R(src.data(), 20, dst.data(), 20, {5, 1}));
            for (int x = 0; x < 5; ++x) {
                EXPECT_EQ(c.expected, dst[4 * x]) << int(c.sample) << " x " << int(c.alpha);
                EXPECT_EQ(c.expected, dst[4 * x + 2]);
                EXPECT_EQ(c.alpha, dst[4 * x + 3]);
            }
        }
    });
}

struct CompCase {
    const char* what;
    IppiAlphaType type;
    uint8_t first[4];
    uint8_t second[4];
    uint8_t expected[4];
};

TEST(PixelPrimitives, AlphaCompositeRulesOnHandWorkedPixels)
{
    const CompCase cases[] = {
        {"over, opaque first shows the first", ippAlphaOver, {10, 20, 30, 255}, {200, 100, 50, 255}, {10, 20, 30, 255}},
        {"over, clear first shows the second premultiplied",
         ippAlphaOver,
         {10, 20, 30, 0},
         {200, 100, 50, 128},
         {100, 50, 25, 128}},
        {"over premultiplied saturates",
         ippAlphaOverPremul,
         {200, 200, 200, 0},
         {200, 200, 200, 255},
         {255, 255, 255, 255}},
        {"over premultiplied keeps the first over an opaque second",
         ippAlphaOverPremul,
         {10, 20, 30, 255},
         {200, 100, 50, 255},
         {10, 20, 30, 255}},
        {"in weighs the first by the second's alpha",
         ippAlphaIn,
         {255, 255, 255, 255},
         {0, 0, 0, 128},
         {128, 128, 128, 128}},
        {"out of an opaque second is empty", ippAlphaOut, {255, 255, 255, 255}, {9, 9, 9, 255}, {0, 0, 0, 0}},
        {"atop a clear second is empty", ippAlphaATop, {255, 255, 255, 255}, {9, 9, 9, 0}, {0, 0, 0, 0}},
        {"xor of two opaque pictures is empty", ippAlphaXor, {255, 255, 255, 255}, {9, 9, 9, 255}, {0, 0, 0, 0}},
        {"plus saturates", ippAlphaPlus, {200, 200, 200, 200}, {200, 200, 200, 200}, {255, 255, 255, 255}},
        {"plus premultiplied adds", ippAlphaPlusPremul, {10, 20, 30, 40}, {1, 2, 3, 4}, {11, 22, 33, 44}},
    };
    AtEveryIndex([&] {
        for (const CompCase& c : cases) {
            std::vector<uint8_t> first, second, dst(24, 0xee);
            for (int x = 0; x < 6; ++x) {
                first.insert(first.end(), c.first, c.first + 4);
                second.insert(second.end(), c.second, c.second + 4);
            }
            ASSERT_EQ(ippStsNoErr,
                      ippiAlphaComp_8u_AC4R(first.data(), 24, second.data(), 24, dst.data(), 24, {6, 1}, c.type));
            for (int x = 0; x < 6; ++x)
                EXPECT_EQ(0, std::memcmp(c.expected, &dst[4 * x], 4)) << c.what << ", pixel " << x;
        }
    });
}

TEST(PixelPrimitives, BgrToYCbCr422GivesStudioRangeAndAnOddPixelItsOwnCb)
{
    struct Case {
        const char* what;
        std::vector<uint8_t> bgra;
        std::vector<uint8_t> expected;
    };
    const std::vector<Case> cases = {
        {"black", {0, 0, 0, 9, 0, 0, 0, 9}, {16, 128, 16, 128}},
        {"white", {255, 255, 255, 0, 255, 255, 255, 0}, {235, 128, 235, 128}},
        {"blue", {255, 0, 0, 0, 255, 0, 0, 0}, {41, 240, 41, 110}},
        {"blue and red, then an odd red", {255, 0, 0, 0, 0, 0, 255, 0, 0, 0, 255, 0}, {41, 165, 82, 175, 82, 90}},
    };
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            const int width = static_cast<int>(c.bgra.size() / 4);
            std::vector<uint8_t> dst(c.expected.size() + 2, 0xee);
            ASSERT_EQ(ippStsNoErr,
                      ippiBGRToYCbCr422_8u_AC4C2R(c.bgra.data(), width * 4, dst.data(), width * 2, {width, 1}));
            EXPECT_EQ(c.expected, std::vector<uint8_t>(dst.begin(), dst.begin() + c.expected.size())) << c.what;
            EXPECT_EQ(0xee, dst[c.expected.size()]) << c.what;
        }
    });
}

TEST(PixelPrimitives, YCbCr422ToBgrSaturatesAndAnOddPixelBorrowsThePairsCr)
{
    struct Case {
        const char* what;
        std::vector<uint8_t> packed;
        std::vector<uint8_t> expected;
    };
    const std::vector<Case> cases = {
        {"black", {16, 128, 16, 128}, {0, 0, 0, 0x7f, 0, 0, 0, 0x7f}},
        {"white stops at 254", {235, 128, 235, 128}, {254, 254, 254, 0x7f, 254, 254, 254, 0x7f}},
        {"odd width", {16, 128, 16, 240, 235, 16}, {0, 0, 178, 0x7f, 0, 0, 178, 0x7f, 29, 207, 255, 0x7f}},
    };
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            const int width = static_cast<int>(c.packed.size() / 2);
            std::vector<uint8_t> dst(c.expected.size() + 4, 0xee);
            ASSERT_EQ(ippStsNoErr,
                      ippiYCbCr422ToBGR_8u_C2C4R(c.packed.data(), width * 2, dst.data(), width * 4, {width, 1}, 0x7f));
            EXPECT_EQ(c.expected, std::vector<uint8_t>(dst.begin(), dst.begin() + c.expected.size())) << c.what;
            EXPECT_EQ(0xee, dst[c.expected.size()]) << c.what;
        }
    });
}

TEST(PixelPrimitives, SwapChannelsReadsThePixelFirst)
{
    struct Case {
        int order[4];
        uint8_t expected[4];
    };
    const Case cases[] = {{{3, 2, 1, 0}, {4, 3, 2, 1}}, {{0, 0, 0, 0}, {1, 1, 1, 1}}, {{1, 2, 3, 0}, {2, 3, 4, 1}}};
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            std::vector<uint8_t> picture;
            for (int x = 0; x < 7; ++x)
                picture.insert(picture.end(), {1, 2, 3, 4});
            ASSERT_EQ(ippStsNoErr, ippiSwapChannels_8u_C4IR(picture.data(), 28, {7, 1}, c.order));
            for (int x = 0; x < 7; ++x)
                EXPECT_EQ(0, std::memcmp(c.expected, &picture[4 * x], 4)) << "pixel " << x;
        }
    });
}

TEST(PixelPrimitives, FloatArithmeticEdges)
{
    struct Case {
        const char* what;
        float in[4];
        float expected[4];
    };
    // Sqrt: roots in double, rounded once; zero of either sign and not-a-number stay; a negative
    // sample becomes a not-a-number.
    const Case sqrtCases[] = {{"roots", {4.0f, 2.0f, 0.25f, kInf}, {2.0f, 1.41421354f, 0.5f, kInf}},
                              {"zeros and not-a-number stay", {0.0f, -0.0f, kNaN, 1.0f}, {0.0f, -0.0f, kNaN, 1.0f}}};
    const Case sqrCases[] = {{"squares", {-3.0f, 0.5f, 1e20f, kNaN}, {9.0f, 0.25f, kInf, kNaN}}};
    const float threshold[4] = {0.5f, 0.5f, 0.5f, -1.0f};
    const float value[4] = {0.5f, 7.0f, 9.0f, -1.0f};
    const Case thresholdCases[] = {
        {"below takes the value, equal and not-a-number stay", {0.25f, 0.25f, 0.5f, kNaN}, {0.5f, 7.0f, 0.5f, kNaN}},
        {"above stays", {0.75f, 2.0f, 1.5f, -0.5f}, {0.75f, 2.0f, 1.5f, -0.5f}}};
    AtEveryIndex([&] {
        auto run = [](const Case& c, auto member) {
            std::vector<float> picture;
            for (int x = 0; x < 5; ++x)
                picture.insert(picture.end(), c.in, c.in + 4);
            EXPECT_EQ(ippStsNoErr, member(picture.data()));
            for (int i = 0; i < 20; ++i)
                EXPECT_EQ(Bits(c.expected[i % 4]), Bits(picture[i])) << c.what << ", sample " << i;
        };
        for (const Case& c : sqrtCases)
            run(c, [](float* p) { return ippiSqrt_32f_C4IR(p, 80, {5, 1}); });
        for (const Case& c : sqrCases)
            run(c, [](float* p) { return ippiSqr_32f_C4IR(p, 80, {5, 1}); });
        for (const Case& c : thresholdCases)
            run(c, [&](float* p) { return ippiThreshold_LTVal_32f_C4IR(p, 80, {5, 1}, threshold, value); });
    });
}

TEST(PixelPrimitives, SqrtFinishesThePictureAfterANegativeSampleAndWarns)
{
    AtEveryIndex([] {
        // Two rows with padding between them; the negative sample comes first.
        std::vector<float> picture = {-1.0f, 4.0f, 9.0f, 16.0f, 99.0f, 25.0f, 36.0f, 49.0f, 64.0f, 99.0f};
        EXPECT_EQ(ippStsSqrtNegArg, ippiSqrt_32f_C4IR(picture.data(), 20, {1, 2}));
        EXPECT_TRUE(std::isnan(picture[0]));
        const std::vector<float> rest = {2.0f, 3.0f, 4.0f, 99.0f, 5.0f, 6.0f, 7.0f, 8.0f, 99.0f};
        EXPECT_EQ(rest, std::vector<float>(picture.begin() + 1, picture.end()));
    });
}

TEST(PixelPrimitives, ColourArithmeticLeavesTheFourthSampleAndSumsInItsOrder)
{
    // The first channel's terms sum to 1 only when added left to right: (1e8 - 1e8) + 1.
    const Ipp32f twist[3][4] = {{1e8f, 1.0f, 0.0f, -1e8f}, {0.0f, 0.0f, 2.0f, 0.5f}, {1.0f, 1.0f, 1.0f, 0.0f}};
    const Ipp32f identity[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
    const Ipp32f add[3] = {1.0f, -1.0f, 0.5f};
    const Ipp32f mul[3] = {2.0f, -1.0f, 0.0f};
    struct Case {
        const char* what;
        IppStatus (*member)(const float* s, float* d, const Ipp32f (*twist)[4], const Ipp32f* constant);
        const Ipp32f (*twist)[4];
        const Ipp32f* constant;
        float expected[3];
    };
    const float pixel[4] = {1.0f, 1.0f, 3.0f, kNaN};
    const Case cases[] = {
        {"twist",
         [](const float* s, float* d, const Ipp32f(*t)[4], const Ipp32f*) {
             return ippiColorTwist_32f_AC4R(s, 48, d, 48, {3, 1}, t);
         },
         twist,
         nullptr,
         {1.0f, 6.5f, 5.0f}},
        {"identity twist",
         [](const float* s, float* d, const Ipp32f(*t)[4], const Ipp32f*) {
             return ippiColorTwist_32f_AC4R(s, 48, d, 48, {3, 1}, t);
         },
         identity,
         nullptr,
         {1.0f, 1.0f, 3.0f}},
        {"add",
         [](const float* s, float* d, const Ipp32f(*)[4], const Ipp32f* c) {
             return ippiAddC_32f_AC4R(s, 48, c, d, 48, {3, 1});
         },
         nullptr,
         add,
         {2.0f, 0.0f, 3.5f}},
        {"multiply",
         [](const float* s, float* d, const Ipp32f(*)[4], const Ipp32f* c) {
             return ippiMulC_32f_AC4R(s, 48, c, d, 48, {3, 1});
         },
         nullptr,
         mul,
         {2.0f, -1.0f, 0.0f}},
    };
    AtEveryIndex([&] {
        for (const Case& c : cases) {
            std::vector<float> src, dst(12, -7.0f);
            for (int x = 0; x < 3; ++x)
                src.insert(src.end(), pixel, pixel + 4);
            ASSERT_EQ(ippStsNoErr, c.member(src.data(), dst.data(), c.twist, c.constant)) << c.what;
            for (int x = 0; x < 3; ++x) {
                for (int ch = 0; ch < 3; ++ch)
                    EXPECT_EQ(c.expected[ch], dst[4 * x + ch]) << c.what << ", pixel " << x << " channel " << ch;
                EXPECT_EQ(-7.0f, dst[4 * x + 3]) << c.what << ", pixel " << x;
            }
        }
        // In place, with the identity: the picture stays, the fourth sample included.
        std::vector<float> picture = {0.1f, 0.2f, 0.3f, kNaN, -0.5f, 2.0f, 3.0f, 0.4f};
        const std::vector<float> before = picture;
        ASSERT_EQ(ippStsNoErr, ippiColorTwist_32f_AC4IR(picture.data(), 32, {2, 1}, identity));
        for (size_t i = 0; i < picture.size(); ++i)
            EXPECT_EQ(Bits(before[i]), Bits(picture[i])) << "sample " << i;
    });
}

TEST(PixelPrimitives, ChannelCopiesAndSetsTouchOnlyTheirChannel)
{
    AtEveryIndex([] {
        const uint8_t four[12] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
        uint8_t one[3] = {0, 0, 0};
        ASSERT_EQ(ippStsNoErr, ippiCopy_8u_C4C1R(four + 2, 12, one, 3, {3, 1}));
        EXPECT_EQ(std::vector<uint8_t>({3, 7, 11}), std::vector<uint8_t>(one, one + 3));

        uint8_t target[12] = {};
        ASSERT_EQ(ippStsNoErr, ippiCopy_8u_C1C4R(one, 3, target + 1, 12, {3, 1}));
        EXPECT_EQ(std::vector<uint8_t>({0, 3, 0, 0, 0, 7, 0, 0, 0, 11, 0, 0}),
                  std::vector<uint8_t>(target, target + 12));

        ASSERT_EQ(ippStsNoErr, ippiCopy_8u_C4CR(four + 3, 12, target + 1, 12, {3, 1}));
        EXPECT_EQ(std::vector<uint8_t>({0, 4, 0, 0, 0, 8, 0, 0, 0, 12, 0, 0}),
                  std::vector<uint8_t>(target, target + 12));

        ASSERT_EQ(ippStsNoErr, ippiSet_8u_C4CR(0x99, target + 3, 12, {3, 1}));
        EXPECT_EQ(std::vector<uint8_t>({0, 4, 0, 0x99, 0, 8, 0, 0x99, 0, 12, 0, 0x99}),
                  std::vector<uint8_t>(target, target + 12));

        const float floats[8] = {0.5f, 1.5f, 2.5f, 3.5f, 4.5f, 5.5f, 6.5f, 7.5f};
        float plane[2] = {};
        ASSERT_EQ(ippStsNoErr, ippiCopy_32f_C4C1R(floats + 1, 32, plane, 8, {2, 1}));
        EXPECT_EQ(std::vector<float>({1.5f, 5.5f}), std::vector<float>(plane, plane + 2));
        float pixels[8] = {};
        ASSERT_EQ(ippStsNoErr, ippiCopy_32f_C1C4R(plane, 8, pixels + 3, 32, {2, 1}));
        ASSERT_EQ(ippStsNoErr, ippiCopy_32f_C4CR(floats + 2, 32, pixels, 32, {2, 1}));
        ASSERT_EQ(ippStsNoErr, ippiSet_32f_C4CR(-1.0f, pixels + 1, 32, {2, 1}));
        EXPECT_EQ(std::vector<float>({2.5f, -1.0f, 0, 1.5f, 6.5f, -1.0f, 0, 5.5f}),
                  std::vector<float>(pixels, pixels + 8));

        const Ipp8u colour[4] = {10, 20, 30, 40};
        std::vector<uint8_t> filled(2 * 12, 0xee); // two rows of two pixels, a pixel of padding each
        ASSERT_EQ(ippStsNoErr, ippiSet_8u_C4R(colour, filled.data(), 12, {2, 2}));
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 2; ++x)
                EXPECT_EQ(0, std::memcmp(colour, &filled[12 * y + 4 * x], 4));
            EXPECT_EQ(0xee, filled[12 * y + 8]);
        }
        std::vector<float> mono(5, 9.0f);
        ASSERT_EQ(ippStsNoErr, ippiSet_32f_C1R(0.25f, mono.data(), 12, {2, 2}));
        EXPECT_EQ(std::vector<float>({0.25f, 0.25f, 9.0f, 0.25f, 0.25f}), mono);
    });
}

// A 2 x 2 picture placed at column 1, row 1 of a 4 x 4 destination, and its edges replicated.
TEST(PixelPrimitives, ReplicateBorderPlacesThePictureAndExtendsItsEdges)
{
    const uint8_t picture[4] = {1, 2, 3, 4};
    const std::vector<uint8_t> expected = {1, 1, 2, 2, 1, 1, 2, 2, 3, 3, 4, 4, 3, 3, 4, 4};
    AtEveryIndex([&] {
        std::vector<uint8_t> dst(16, 0xee);
        ASSERT_EQ(ippStsNoErr, ippiCopyReplicateBorder_8u_C1R(picture, 2, {2, 2}, dst.data(), 4, {4, 4}, 1, 1));
        EXPECT_EQ(expected, dst);

        // In place: the picture already lies at (1, 1) of the frame; only the margin is filled.
        std::vector<uint8_t> frame = {0, 0, 0, 0, 0, 1, 2, 0, 0, 3, 4, 0, 0, 0, 0, 0};
        ASSERT_EQ(ippStsNoErr,
                  ippiCopyReplicateBorder_8u_C1R(frame.data() + 5, 4, {2, 2}, frame.data(), 4, {4, 4}, 1, 1));
        EXPECT_EQ(expected, frame);

        const uint8_t pixel[4] = {9, 8, 7, 6};
        std::vector<uint8_t> spread(3 * 2 * 4, 0);
        ASSERT_EQ(ippStsNoErr, ippiCopyReplicateBorder_8u_C4R(pixel, 4, {1, 1}, spread.data(), 12, {3, 2}, 1, 2));
        for (int p = 0; p < 6; ++p)
            EXPECT_EQ(0, std::memcmp(pixel, &spread[4 * p], 4)) << "pixel " << p;

        std::vector<uint8_t> copy(4, 0);
        ASSERT_EQ(ippStsNoErr, ippiCopyReplicateBorder_8u_C1R(picture, 2, {2, 2}, copy.data(), 2, {2, 2}, 0, 0));
        EXPECT_EQ(std::vector<uint8_t>(picture, picture + 4), copy);
    });
}

} // namespace
