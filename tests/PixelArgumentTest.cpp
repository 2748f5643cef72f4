// Bad arguments get their status, checked in order (null pointers, sizes, steps, the member's own
// values), and leave every destination byte as it was.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "PixelMembers.h"
#include "VariantIndex.h"

namespace
{

using namespace PixelMembers;

const int kStep = 64;
const uint8_t kSrc[4 * kStep] = {};
const Ipp32f kFour[4] = {1, 2, 3, 4};
const int kOrder[4] = {3, 2, 1, 0};

struct BadCall {
    const char* what;
    bool nullSrc, nullDst;
    IppiSize size;
    int step;
    IppStatus expected;
    bool forStepCheckers;   // meaningful only for members that check steps
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

// A call on the destination d alone, for a member's own values.
#define ON_DST(call) [](uint8_t* d) { return call; }

struct OwnCase {
    const char* what;
    std::function<IppStatus(uint8_t* d)> call;
    IppStatus expected;
};

// Each member's own values, refused after the common checks.
std::vector<OwnCase> OwnCases()
{
    static const int badOrder[4] = {0, 1, 4, 2}, negativeOrder[4] = {-1, 1, 2, 3};
    auto comp = [](IppiSize size, const uint8_t* second, int type) {
        return [=](uint8_t* d) {
            return ippiAlphaComp_8u_AC4R(kSrc, kStep, second, kStep, d, kStep, size, IppiAlphaType(type));
        };
    };
    auto swap = [](int step, IppiSize size, const int* order) {
        return [=](uint8_t* d) { return ippiSwapChannels_8u_C4IR(d, step, size, order); };
    };
    auto threshold = [](int step, const Ipp32f* limits, const Ipp32f* values) {
        return [=](uint8_t* d) { return ippiThreshold_LTVal_32f_C4IR(F(d), step, {2, 2}, limits, values); };
    };
    auto border = [](bool four, const uint8_t* src, int srcStep, IppiSize srcSize, int dstStep, IppiSize dstSize,
                     int top, int left) {
        const auto member = four ? ippiCopyReplicateBorder_8u_C4R : ippiCopyReplicateBorder_8u_C1R;
        return [=](uint8_t* d) { return member(src, srcStep, srcSize, d, dstStep, dstSize, top, left); };
    };
    return {
        {"to BGR, width 1", ON_DST(ippiYCbCr422ToBGR_8u_C2C4R(kSrc, kStep, d, kStep, {1, 2}, 9)), ippStsSizeErr},
        {"to 4:2:2, width 1", ON_DST(ippiBGRToYCbCr422_8u_AC4C2R(kSrc, kStep, d, kStep, {1, 2})), ippStsSizeErr},
        {"alpha type 12", comp({2, 2}, kSrc, 12), ippStsAlphaTypeErr},
        {"alpha type -1", comp({2, 2}, kSrc, -1), ippStsAlphaTypeErr},
        {"size before alpha type", comp({0, 2}, kSrc, 12), ippStsSizeErr},
        {"null second source", comp({2, 2}, nullptr, ippAlphaOver), ippStsNullPtrErr},
        {"order entry 4", swap(kStep, {2, 2}, badOrder), ippStsChannelOrderErr},
        {"order entry -1", swap(kStep, {2, 2}, negativeOrder), ippStsChannelOrderErr},
        {"null order", swap(kStep, {2, 2}, nullptr), ippStsNullPtrErr},
        {"swap checks the step before the size", swap(0, {0, 2}, kOrder), ippStsStepErr},
        {"size before order", swap(kStep, {0, 2}, badOrder), ippStsSizeErr},
        {"threshold arrays after the step", threshold(0, nullptr, kFour), ippStsStepErr},
        {"null thresholds", threshold(kStep, nullptr, kFour), ippStsNullPtrErr},
        {"null values", threshold(kStep, kFour, nullptr), ippStsNullPtrErr},
        {"null twist", ON_DST(ippiColorTwist_32f_AC4IR(F(d), kStep, {2, 2}, nullptr)), ippStsNullPtrErr},
        {"null constant", ON_DST(ippiAddC_32f_AC4IR(nullptr, F(d), kStep, {2, 2})), ippStsNullPtrErr},
        {"null colour", ON_DST(ippiSet_8u_C4R(nullptr, d, kStep, {2, 2})), ippStsNullPtrErr},
        {"border: null source", border(true, nullptr, kStep, {1, 1}, kStep, {2, 2}, 0, 0), ippStsNullPtrErr},
        {"border: step before sizes", border(false, kSrc, 0, {0, 1}, kStep, {2, 2}, 0, 0), ippStsStepErr},
        {"border: zero destination step", border(true, kSrc, kStep, {1, 1}, 0, {2, 2}, 0, 0), ippStsStepErr},
        {"border: empty source", border(false, kSrc, kStep, {0, 1}, kStep, {2, 2}, 0, 0), ippStsSizeErr},
        {"border: empty destination", border(false, kSrc, kStep, {1, 1}, kStep, {2, 0}, 0, 0), ippStsSizeErr},
        {"border: negative top", border(true, kSrc, kStep, {1, 1}, kStep, {2, 2}, -1, 0), ippStsSizeErr},
        {"border: negative left", border(true, kSrc, kStep, {1, 1}, kStep, {2, 2}, 0, -1), ippStsSizeErr},
        {"border: too narrow", border(true, kSrc, kStep, {2, 1}, kStep, {3, 2}, 0, 2), ippStsSizeErr},
        {"border: too short", border(false, kSrc, kStep, {2, 2}, kStep, {3, 3}, 2, 0), ippStsSizeErr},
    };
}

void ExpectRefused(const std::string& what, const std::function<IppStatus(uint8_t*)>& call, IppStatus expected)
{
    std::vector<uint8_t> dst(4 * kStep, 0xa5);
    EXPECT_EQ(expected, call(dst.data())) << what;
    EXPECT_EQ(std::vector<uint8_t>(dst.size(), 0xa5), dst) << what;
}

TEST(PixelArguments, RefusedInOrderWithNothingWritten)
{
    AtEveryIndex([] {
        for (const Member& member : Members())
            for (const BadCall& bad : kBadCalls) {
                if ((bad.nullSrc && member.InPlace()) || (bad.forStepCheckers && !member.ChecksSteps()))
                    continue;
                const uint8_t* src = bad.nullSrc ? nullptr : kSrc;
                ExpectRefused(member.name + ": " + bad.what, [&](uint8_t* d) {
                    return member.run({src, bad.step, src, bad.step, bad.nullDst ? nullptr : d, bad.step, bad.size});
                }, bad.expected);
            }
        for (const OwnCase& c : OwnCases())
            ExpectRefused(c.what, c.call, c.expected);
    });
}

} // namespace
