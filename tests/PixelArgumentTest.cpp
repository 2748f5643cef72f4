// Bad arguments get their status, checked in order (null pointers, sizes, steps, the member's own
// values), and leave every destination byte as it was.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "../primitives/ippi.h"
#include "VariantIndex.h"

namespace
{

const uint8_t kSentinel = 0xa5;
const int kStep = 64;

// A member reduced to the arguments a case varies: a source, a destination (the picture itself
// for an in-place member), steps and size.
using Member = std::function<IppStatus(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size)>;

const float* F(const uint8_t* p)
{
    return reinterpret_cast<const float*>(p);
}

float* F(uint8_t* p)
{
    return reinterpret_cast<float*>(p);
}

const Ipp32f kThree[3] = {1, 2, 3};
const Ipp32f kFour[4] = {1, 2, 3, 4};
const Ipp8u kBytes[4] = {1, 2, 3, 4};
const Ipp32f kTwist[3][4] = {{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}};
const int kOrder[4] = {3, 2, 1, 0};

struct Named {
    std::string name;
    Member member;
    bool inPlace;
};

// Members that check only pointers and size.
std::vector<Named> PointerAndSizeMembers()
{
    return {
        {"Copy_8u_C1R", [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_8u_C1R(s, ss, d, ds, z); },
         false},
        {"Copy_8u_C4R", [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_8u_C4R(s, ss, d, ds, z); },
         false},
        {"Copy_32f_C1R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_32f_C1R(F(s), ss, F(d), ds, z); }, false},
        {"Copy_32f_C4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_32f_C4R(F(s), ss, F(d), ds, z); }, false},
        {"Copy_8u_C4C1R", [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_8u_C4C1R(s, ss, d, ds, z); },
         false},
        {"Copy_8u_C1C4R", [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_8u_C1C4R(s, ss, d, ds, z); },
         false},
        {"Copy_8u_C4CR", [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_8u_C4CR(s, ss, d, ds, z); },
         false},
        {"Copy_32f_C4C1R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_32f_C4C1R(F(s), ss, F(d), ds, z); }, false},
        {"Copy_32f_C1C4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_32f_C1C4R(F(s), ss, F(d), ds, z); }, false},
        {"Copy_32f_C4CR",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiCopy_32f_C4CR(F(s), ss, F(d), ds, z); }, false},
        {"AlphaPremul_8u_AC4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiAlphaPremul_8u_AC4R(s, ss, d, ds, z); }, false},
        {"AlphaComp_8u_AC4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) {
             return ippiAlphaComp_8u_AC4R(s, ss, s, ss, d, ds, z, ippAlphaOver);
         },
         false},
        {"YCbCr422ToBGR_8u_C2C4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiYCbCr422ToBGR_8u_C2C4R(s, ss, d, ds, z, 255); },
         false},
        {"BGRToYCbCr422_8u_AC4C2R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiBGRToYCbCr422_8u_AC4C2R(s, ss, d, ds, z); },
         false},
        {"AddC_32f_AC4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiAddC_32f_AC4R(F(s), ss, kThree, F(d), ds, z); },
         false},
        {"MulC_32f_AC4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) { return ippiMulC_32f_AC4R(F(s), ss, kThree, F(d), ds, z); },
         false},
        {"AddC_32f_AC4IR",
         [](auto, int, auto d, int ds, IppiSize z) { return ippiAddC_32f_AC4IR(kThree, F(d), ds, z); }, true},
        {"MulC_32f_AC4IR",
         [](auto, int, auto d, int ds, IppiSize z) { return ippiMulC_32f_AC4IR(kThree, F(d), ds, z); }, true},
        {"Set_8u_C1R", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_8u_C1R(7, d, ds, z); }, true},
        {"Set_32f_C1R", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_32f_C1R(7, F(d), ds, z); }, true},
        {"Set_8u_C4R", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_8u_C4R(kBytes, d, ds, z); }, true},
        {"Set_32f_C4R", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_32f_C4R(kFour, F(d), ds, z); },
         true},
        {"Set_8u_C4CR", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_8u_C4CR(7, d, ds, z); }, true},
        {"Set_32f_C4CR", [](auto, int, auto d, int ds, IppiSize z) { return ippiSet_32f_C4CR(7, F(d), ds, z); }, true},
    };
}

// Members that also check steps, after the size.
std::vector<Named> StepCheckingMembers()
{
    return {
        {"ColorTwist_32f_AC4R",
         [](auto s, int ss, auto d, int ds, IppiSize z) {
             return ippiColorTwist_32f_AC4R(F(s), ss, F(d), ds, z, kTwist);
         },
         false},
        {"ColorTwist_32f_AC4IR",
         [](auto, int, auto d, int ds, IppiSize z) { return ippiColorTwist_32f_AC4IR(F(d), ds, z, kTwist); }, true},
        {"Sqr_32f_C4IR", [](auto, int, auto d, int ds, IppiSize z) { return ippiSqr_32f_C4IR(F(d), ds, z); }, true},
        {"Sqrt_32f_C4IR", [](auto, int, auto d, int ds, IppiSize z) { return ippiSqrt_32f_C4IR(F(d), ds, z); }, true},
        {"Threshold_LTVal_32f_C4IR",
         [](auto, int, auto d, int ds, IppiSize z) { return ippiThreshold_LTVal_32f_C4IR(F(d), ds, z, kFour, kFour); },
         true},
    };
}

struct BadCall {
    const char* what;
    bool nullSrc;
    bool nullDst;
    IppiSize size;
    int step;
    IppStatus expected;
    bool forStepCheckers; // the case is meaningful only for members that check steps
};

const BadCall kBadCalls[] = {
    {"null destination", false, true, {2, 2}, kStep, ippStsNullPtrErr, false},
    {"null source", true, false, {2, 2}, kStep, ippStsNullPtrErr, false},
    {"null before size", false, true, {0, 2}, kStep, ippStsNullPtrErr, false},
    {"zero width", false, false, {0, 2}, kStep, ippStsSizeErr, false},
    {"zero height", false, false, {2, 0}, kStep, ippStsSizeErr, false},
    {"negative width", false, false, {-3, 2}, kStep, ippStsSizeErr, false},
    {"size before step", false, false, {2, -1}, 0, ippStsSizeErr, true},
    {"zero step", false, false, {2, 2}, 0, ippStsStepErr, true},
    {"negative step", false, false, {2, 2}, -64, ippStsStepErr, true},
};

void ExpectRefused(const Named& named, const BadCall& bad)
{
    if (bad.nullSrc && named.inPlace)
        return;
    std::vector<uint8_t> src(4 * kStep, 1);
    std::vector<uint8_t> dst(4 * kStep, kSentinel);
    const IppStatus status = named.member(bad.nullSrc ? nullptr : src.data(), bad.step,
                                          bad.nullDst ? nullptr : dst.data(), bad.step, bad.size);
    EXPECT_EQ(bad.expected, status) << named.name << ": " << bad.what;
    EXPECT_EQ(std::vector<uint8_t>(dst.size(), kSentinel), dst) << named.name << ": " << bad.what;
}

TEST(PixelArguments, RefusedInOrderWithNothingWritten)
{
    for (int index : RunnableVariantIndices()) {
        ScopedVariantIndex variant(index);
        SCOPED_TRACE("variant index " + std::to_string(index));
        for (const Named& named : PointerAndSizeMembers())
            for (const BadCall& bad : kBadCalls)
                if (!bad.forStepCheckers)
                    ExpectRefused(named, bad);
        for (const Named& named : StepCheckingMembers())
            for (const BadCall& bad : kBadCalls)
                ExpectRefused(named, bad);
    }
}

// Cases of one member's own arguments.
struct OwnCase {
    const char* what;
    std::function<IppStatus(uint8_t* dst)> call;
    IppStatus expected;
};

TEST(PixelArguments, MembersOwnValuesAreRefusedLastWithNothingWritten)
{
    static const uint8_t src[4 * kStep] = {};
    const int badOrder[4] = {0, 1, 4, 2};
    const int negativeOrder[4] = {-1, 1, 2, 3};
    const OwnCase cases[] = {
        {"4:2:2 to BGR of width 1",
         [](uint8_t* d) {
             return ippiYCbCr422ToBGR_8u_C2C4R(src, kStep, d, kStep, {1, 2}, 0);
         },
         ippStsSizeErr},
        {"BGR to 4:2:2 of width 1",
         [](uint8_t* d) {
             return ippiBGRToYCbCr422_8u_AC4C2R(src, kStep, d, kStep, {1, 2});
         },
         ippStsSizeErr},
        {"alpha type 12",
         [](uint8_t* d) {
             return ippiAlphaComp_8u_AC4R(src, kStep, src, kStep, d, kStep, {2, 2}, IppiAlphaType(12));
         },
         ippStsAlphaTypeErr},
        {"alpha type -1",
         [](uint8_t* d) {
             return ippiAlphaComp_8u_AC4R(src, kStep, src, kStep, d, kStep, {2, 2}, IppiAlphaType(-1));
         },
         ippStsAlphaTypeErr},
        {"size before alpha type",
         [](uint8_t* d) {
             return ippiAlphaComp_8u_AC4R(src, kStep, src, kStep, d, kStep, {0, 2}, IppiAlphaType(12));
         },
         ippStsSizeErr},
        {"null second source",
         [](uint8_t* d) {
             return ippiAlphaComp_8u_AC4R(src, kStep, nullptr, kStep, d, kStep, {2, 2}, ippAlphaOver);
         },
         ippStsNullPtrErr},
        {"order entry 4",
         [&](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, kStep, {2, 2}, badOrder);
         },
         ippStsChannelOrderErr},
        {"order entry -1",
         [&](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, kStep, {2, 2}, negativeOrder);
         },
         ippStsChannelOrderErr},
        {"null order",
         [](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, kStep, {2, 2}, nullptr);
         },
         ippStsNullPtrErr},
        {"swap checks the step before the size",
         [](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, 0, {0, 2}, kOrder);
         },
         ippStsStepErr},
        {"swap of zero width",
         [](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, kStep, {0, 2}, kOrder);
         },
         ippStsSizeErr},
        {"size before order",
         [&](uint8_t* d) {
             return ippiSwapChannels_8u_C4IR(d, kStep, {0, 2}, badOrder);
         },
         ippStsSizeErr},
        {"threshold arrays after the step",
         [](uint8_t* d) {
             return ippiThreshold_LTVal_32f_C4IR(F(d), 0, {2, 2}, nullptr, kFour);
         },
         ippStsStepErr},
        {"null thresholds",
         [](uint8_t* d) {
             return ippiThreshold_LTVal_32f_C4IR(F(d), kStep, {2, 2}, nullptr, kFour);
         },
         ippStsNullPtrErr},
        {"null values",
         [](uint8_t* d) {
             return ippiThreshold_LTVal_32f_C4IR(F(d), kStep, {2, 2}, kFour, nullptr);
         },
         ippStsNullPtrErr},
        {"null twist",
         [](uint8_t* d) {
             return ippiColorTwist_32f_AC4IR(F(d), kStep, {2, 2}, nullptr);
         },
         ippStsNullPtrErr},
        {"null constant",
         [](uint8_t* d) {
             return ippiAddC_32f_AC4IR(nullptr, F(d), kStep, {2, 2});
         },
         ippStsNullPtrErr},
        {"null colour",
         [](uint8_t* d) {
             return ippiSet_8u_C4R(nullptr, d, kStep, {2, 2});
         },
         ippStsNullPtrErr},
        {"border: null source",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C4R(nullptr, kStep, {1, 1}, d, kStep, {2, 2}, 0, 0);
         },
         ippStsNullPtrErr},
        {"border: step before sizes",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C1R(src, 0, {0, 1}, d, kStep, {2, 2}, 0, 0);
         },
         ippStsStepErr},
        {"border: zero destination step",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C4R(src, kStep, {1, 1}, d, 0, {2, 2}, 0, 0);
         },
         ippStsStepErr},
        {"border: empty source",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C1R(src, kStep, {0, 1}, d, kStep, {2, 2}, 0, 0);
         },
         ippStsSizeErr},
        {"border: empty destination",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C1R(src, kStep, {1, 1}, d, kStep, {2, 0}, 0, 0);
         },
         ippStsSizeErr},
        {"border: negative top",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C4R(src, kStep, {1, 1}, d, kStep, {2, 2}, -1, 0);
         },
         ippStsSizeErr},
        {"border: negative left",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C4R(src, kStep, {1, 1}, d, kStep, {2, 2}, 0, -1);
         },
         ippStsSizeErr},
        {"border: too narrow",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C4R(src, kStep, {2, 1}, d, kStep, {3, 2}, 0, 2);
         },
         ippStsSizeErr},
        {"border: too short",
         [](uint8_t* d) {
             return ippiCopyReplicateBorder_8u_C1R(src, kStep, {2, 2}, d, kStep, {3, 3}, 2, 0);
         },
         ippStsSizeErr},
    };
    for (int index : RunnableVariantIndices()) {
        ScopedVariantIndex variant(index);
        for (const OwnCase& c : cases) {
            std::vector<uint8_t> dst(4 * kStep, kSentinel);
            EXPECT_EQ(c.expected, c.call(dst.data())) << c.what << " at index " << index;
            EXPECT_EQ(std::vector<uint8_t>(dst.size(), kSentinel), dst) << c.what << " at index " << index;
        }
    }
}

} // namespace
