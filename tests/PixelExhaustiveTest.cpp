// The SSE4.1 variants of the byte members whose arithmetic is rebuilt from other instructions
// (divisions by 255, fixed-point colour conversions), against the plain variant over every input
// each result depends on: all (value, alpha) pairs, all Y'CbCr triples, all BGR triples and all
// pair sums that the chroma of a 4:2:2 pair is made of.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

#include "../primitives/ippi.h"
#include "VariantIndex.h"

namespace
{

const int kSse41 = 3;

// Runs a member at the plain and at the SSE4.1 index into two destinations of `bytes` bytes,
// both first filled with the same sentinel, and gives the offset of the first differing byte, or
// -1 when all agree. The destinations are kept from call to call.
class VariantComparison {
public:
    explicit VariantComparison(size_t bytes) : m_plain(bytes), m_fast(bytes) {}

    long FirstDifference(const std::function<IppStatus(uint8_t*)>& run)
    {
        std::fill(m_plain.begin(), m_plain.end(), 0xa5);
        std::fill(m_fast.begin(), m_fast.end(), 0xa5);
        {
            ScopedVariantIndex index(0);
            EXPECT_EQ(ippStsNoErr, run(m_plain.data()));
        }
        {
            ScopedVariantIndex index(kSse41);
            EXPECT_EQ(ippStsNoErr, run(m_fast.data()));
        }
        const auto differ = std::mismatch(m_plain.begin(), m_plain.end(), m_fast.begin());
        return differ.first == m_plain.end() ? -1 : static_cast<long>(differ.first - m_plain.begin());
    }

private:
    std::vector<uint8_t> m_plain;
    std::vector<uint8_t> m_fast;
};

class PixelExhaustiveTest : public testing::Test {
protected:
    void SetUp() override
    {
        const std::vector<int> indices = RunnableVariantIndices();
        if (std::find(indices.begin(), indices.end(), kSse41) == indices.end())
            GTEST_SKIP() << "no SSE4.1";
    }
};

// Over depends on (s1, a) and on (a, s2, b); over premultiplied on s1 and (a, s2); premultiply on
// (s1, a). Pictures for each a cover every (s2, b) with s1 running through every value beside them.
TEST_F(PixelExhaustiveTest, CompositeOverAndPremultiplyAgreeForEveryAlphaAndValueCombination)
{
    std::vector<uint8_t> first(256 * 256 * 4);
    std::vector<uint8_t> second(256 * 256 * 4);
    VariantComparison comparison(first.size());
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b)
            for (int v = 0; v < 256; ++v) {
                uint8_t* p = &first[(b * 256 + v) * 4];
                uint8_t* q = &second[(b * 256 + v) * 4];
                for (int c = 0; c < 3; ++c) {
                    p[c] = static_cast<uint8_t>(v + b + 85 * c);
                    q[c] = static_cast<uint8_t>(v + 85 * c);
                }
                p[3] = static_cast<uint8_t>(a);
                q[3] = static_cast<uint8_t>(b);
            }
        for (IppiAlphaType type : {ippAlphaOver, ippAlphaOverPremul}) {
            const long at = comparison.FirstDifference([&](uint8_t* d) {
                return ippiAlphaComp_8u_AC4R(first.data(), 256 * 4, second.data(), 256 * 4, d, 256 * 4, {256, 256},
                                             type);
            });
            ASSERT_EQ(-1, at) << "type " << type << ", alpha " << a << ", pixel " << at / 4;
        }
        const long at = comparison.FirstDifference([&](uint8_t* d) {
            return ippiAlphaPremul_8u_AC4R(first.data(), 256 * 4, d, 256 * 4, {256, 256});
        });
        ASSERT_EQ(-1, at) << "premultiply, alpha " << a << ", pixel " << at / 4;
    }
}

// Blue depends on (Y, Cb), red on (Y, Cr), green on all three. For each Cb, 256 rows of one Cr
// each hold every Y.
TEST_F(PixelExhaustiveTest, YCbCrToBgrAgreesForEveryTriple)
{
    std::vector<uint8_t> src(256 * 256 * 2);
    VariantComparison comparison(256 * 256 * 4);
    for (int cb = 0; cb < 256; ++cb) {
        for (int cr = 0; cr < 256; ++cr)
            for (int y = 0; y < 256; y += 2) {
                uint8_t* p = &src[(cr * 256 + y) * 2];
                p[0] = static_cast<uint8_t>(y);
                p[1] = static_cast<uint8_t>(cb);
                p[2] = static_cast<uint8_t>(y + 1);
                p[3] = static_cast<uint8_t>(cr);
            }
        const long at = comparison.FirstDifference([&](uint8_t* d) {
            return ippiYCbCr422ToBGR_8u_C2C4R(src.data(), 256 * 2, d, 256 * 4, {256, 256}, 0x3c);
        });
        ASSERT_EQ(-1, at) << "Cb " << cb << ", pixel " << at / 4;
    }
}

// Chroma depends on the pair sums of B, G and R, each 0 to 510; luma on one pixel's (B, G, R). For
// each blue sum, 511 rows of one green sum each hold every red sum, split over the pair as unevenly
// as bytes allow, so that each pixel of a pair also runs through every triple.
TEST_F(PixelExhaustiveTest, BgrToYCbCrAgreesForEveryTripleAndPairSum)
{
    const int sums = 511;
    std::vector<uint8_t> src(sums * sums * 8);
    VariantComparison comparison(static_cast<size_t>(sums) * sums * 4);
    const auto split = [](int sum, uint8_t* first, uint8_t* second) {
        *first = static_cast<uint8_t>(std::min(sum, 255));
        *second = static_cast<uint8_t>(sum - *first);
    };
    for (int sb = 0; sb < sums; ++sb) {
        for (int sg = 0; sg < sums; ++sg)
            for (int sr = 0; sr < sums; ++sr) {
                uint8_t* p = &src[(sg * sums + sr) * 8];
                split(sb, &p[0], &p[4]);
                split(sg, &p[1], &p[5]);
                split(sr, &p[2], &p[6]);
                p[3] = p[7] = 0;
            }
        const long at = comparison.FirstDifference([&](uint8_t* d) {
            return ippiBGRToYCbCr422_8u_AC4C2R(src.data(), sums * 8, d, sums * 4, {2 * sums, sums});
        });
        ASSERT_EQ(-1, at) << "blue sum " << sb << ", byte " << at;
    }
}

} // namespace
