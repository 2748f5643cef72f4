#pragma once
#include <cstdint>

typedef int32_t IppStatus;

struct IppiSize {
    int32_t width;
    int32_t height;
};

struct IppiRect {
    int32_t x;
    int32_t y;
    int32_t width;
    int32_t height;
};

typedef uint8_t Ipp8u;
typedef float Ipp32f;

enum : IppStatus {
    ippStsResizeNoOperationErr = -201,
    ippStsChannelOrderErr = -60,
    ippStsNumChannelsErr = -53,
    ippStsAlphaTypeErr = -50,
    ippStsResizeFactorErr = -23,
    ippStsInterpolationErr = -22,
    ippStsStepErr = -14,
    ippStsMemAllocErr = -9,
    ippStsNullPtrErr = -8,
    ippStsSizeErr = -6,
    ippStsNoErr = 0,
    ippStsNoOperation = 1,
    ippStsSqrtNegArg = 3,
    ippStsNonIntelCpu = 20,
    ippStsWrongIntersectROI = 29,
    ippStsNotSupportedCpu = 36,
};

// Alpha compositing rules of ippiAlphaComp_8u_AC4R: over, in, out, atop, xor and plus, first on
// straight colours, then on colours already multiplied by their alpha.
enum IppiAlphaType : int {
    ippAlphaOver = 0,
    ippAlphaIn = 1,
    ippAlphaOut = 2,
    ippAlphaATop = 3,
    ippAlphaXor = 4,
    ippAlphaPlus = 5,
    ippAlphaOverPremul = 6,
    ippAlphaInPremul = 7,
    ippAlphaOutPremul = 8,
    ippAlphaATopPremul = 9,
    ippAlphaXorPremul = 10,
    ippAlphaPlusPremul = 11,
};
