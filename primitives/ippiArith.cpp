// Float arithmetic on four-float pixels: constants added and multiplied, the colour twist, square,
// square root and the lower threshold.
#include <cmath>
#include <limits>

#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

using ConstKernel = void (*)(const float*, float*, size_t, const float*);
using TwistKernel = void (*)(const float*, float*, size_t, const float (*)[4]);
using SqrKernel = void (*)(float*, size_t);
using SqrtKernel = bool (*)(float*, size_t);
using ThresholdKernel = void (*)(float*, size_t, const float*, const float*);

const size_t kPixelBytes = 4 * sizeof(float);

IppStatus WithConstant(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                       IppiSize roiSize, ConstKernel apply)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc, value, pDst); status != ippStsNoErr)
        return status;
    IppRegion::EachRow(pSrc, srcStep, pDst, dstStep, roiSize,
                       [&](const float* s, float* d, size_t n) { apply(s, d, n, value); });
    return ippStsNoErr;
}

IppStatus Twist(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                const Ipp32f twist[3][4], TwistKernel apply)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc, pDst, twist); status != ippStsNoErr)
        return status;
    if (srcStep < 1 || dstStep < 1)
        return ippStsStepErr;
    IppRegion::EachRow(pSrc, srcStep, pDst, dstStep, roiSize,
                       [&](const float* s, float* d, size_t n) { apply(s, d, n, twist); });
    return ippStsNoErr;
}

IppStatus CheckInPlace(const Ipp32f* pSrcDst, int step, IppiSize roiSize)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrcDst); status != ippStsNoErr)
        return status;
    if (step < 1)
        return ippStsStepErr;
    return ippStsNoErr;
}

IppStatus Sqr(Ipp32f* pSrcDst, int step, IppiSize roiSize, SqrKernel apply)
{
    const IppStatus status = CheckInPlace(pSrcDst, step, roiSize);
    if (status != ippStsNoErr)
        return status;
    IppRegion::EachRowOrWhole(pSrcDst, step, kPixelBytes, roiSize, apply);
    return ippStsNoErr;
}

// The whole picture is done even after a negative sample; the warning comes at the end.
IppStatus Sqrt(Ipp32f* pSrcDst, int step, IppiSize roiSize, SqrtKernel apply)
{
    const IppStatus status = CheckInPlace(pSrcDst, step, roiSize);
    if (status != ippStsNoErr)
        return status;
    bool negative = false;
    IppRegion::EachRowOrWhole(pSrcDst, step, kPixelBytes, roiSize,
                              [&](float* sd, size_t n) { negative |= apply(sd, n); });
    return negative ? ippStsSqrtNegArg : ippStsNoErr;
}

// The two arrays are checked after the step.
IppStatus Threshold(Ipp32f* pSrcDst, int step, IppiSize roiSize, const Ipp32f threshold[4], const Ipp32f value[4],
                    ThresholdKernel apply)
{
    const IppStatus status = CheckInPlace(pSrcDst, step, roiSize);
    if (status != ippStsNoErr)
        return status;
    if (threshold == nullptr || value == nullptr)
        return ippStsNullPtrErr;
    IppRegion::EachRow(pSrcDst, step, roiSize, [&](float* sd, size_t n) { apply(sd, n, threshold, value); });
    return ippStsNoErr;
}

} // namespace

void PlainRows::AddC(const float* s, float* d, size_t n, const float value[3])
{
    for (size_t x = 0; x < n; ++x, s += 4, d += 4)
        for (int c = 0; c < 3; ++c)
            d[c] = s[c] + value[c];
}

void PlainRows::MulC(const float* s, float* d, size_t n, const float value[3])
{
    for (size_t x = 0; x < n; ++x, s += 4, d += 4)
        for (int c = 0; c < 3; ++c)
            d[c] = s[c] * value[c];
}

// The three samples are read before any is written, so the source may be the destination.
void PlainRows::ColorTwist(const float* s, float* d, size_t n, const float twist[3][4])
{
    for (size_t x = 0; x < n; ++x, s += 4, d += 4) {
        const float s0 = s[0];
        const float s1 = s[1];
        const float s2 = s[2];
        for (int c = 0; c < 3; ++c)
            d[c] = twist[c][0] * s0 + twist[c][3] + twist[c][1] * s1 + twist[c][2] * s2;
    }
}

void PlainRows::Sqr(float* sd, size_t n)
{
    for (size_t i = 0; i < 4 * n; ++i)
        sd[i] = sd[i] * sd[i];
}

// Zero and not-a-number stay as they are; a negative sample becomes a not-a-number.
bool PlainRows::Sqrt(float* sd, size_t n)
{
    bool negative = false;
    for (size_t i = 0; i < 4 * n; ++i) {
        const float v = sd[i];
        if (v > 0) {
            sd[i] = static_cast<float>(std::sqrt(static_cast<double>(v)));
        } else if (v < 0) {
            sd[i] = std::numeric_limits<float>::quiet_NaN();
            negative = true;
        }
    }
    return negative;
}

// A sample equal to its threshold, or not a number, stays.
void PlainRows::Threshold(float* sd, size_t n, const float threshold[4], const float value[4])
{
    for (size_t x = 0; x < n; ++x, sd += 4)
        for (int c = 0; c < 4; ++c)
            if (threshold[c] > sd[c])
                sd[c] = value[c];
}

IppStatus mx_ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize)
{
    return WithConstant(pSrc, srcStep, value, pDst, dstStep, roiSize, PlainRows::AddC);
}

IppStatus mx_ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return WithConstant(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize, PlainRows::AddC);
}

IppStatus mx_ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize)
{
    return WithConstant(pSrc, srcStep, value, pDst, dstStep, roiSize, PlainRows::MulC);
}

IppStatus mx_ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return WithConstant(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize, PlainRows::MulC);
}

IppStatus mx_ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                     const Ipp32f twist[3][4])
{
    return Twist(pSrc, srcStep, pDst, dstStep, roiSize, twist, PlainRows::ColorTwist);
}

IppStatus mx_ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4])
{
    return Twist(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, twist, PlainRows::ColorTwist);
}

IppStatus mx_ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return Sqr(pSrcDst, srcDstStep, roiSize, PlainRows::Sqr);
}

IppStatus mx_ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return Sqrt(pSrcDst, srcDstStep, roiSize, PlainRows::Sqrt);
}

IppStatus mx_ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize,
                                          const Ipp32f threshold[4], const Ipp32f value[4])
{
    return Threshold(pSrcDst, srcDstStep, roiSize, threshold, value, PlainRows::Threshold);
}

IppStatus y8_ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize)
{
    return WithConstant(pSrc, srcStep, value, pDst, dstStep, roiSize, Sse41Rows::AddC);
}

IppStatus y8_ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return WithConstant(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize, Sse41Rows::AddC);
}

IppStatus y8_ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize)
{
    return WithConstant(pSrc, srcStep, value, pDst, dstStep, roiSize, Sse41Rows::MulC);
}

IppStatus y8_ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return WithConstant(pSrcDst, srcDstStep, value, pSrcDst, srcDstStep, roiSize, Sse41Rows::MulC);
}

IppStatus y8_ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                     const Ipp32f twist[3][4])
{
    return Twist(pSrc, srcStep, pDst, dstStep, roiSize, twist, Sse41Rows::ColorTwist);
}

IppStatus y8_ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4])
{
    return Twist(pSrcDst, srcDstStep, pSrcDst, srcDstStep, roiSize, twist, Sse41Rows::ColorTwist);
}

IppStatus y8_ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return Sqr(pSrcDst, srcDstStep, roiSize, Sse41Rows::Sqr);
}

IppStatus y8_ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return Sqrt(pSrcDst, srcDstStep, roiSize, Sse41Rows::Sqrt);
}

IppStatus y8_ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize,
                                          const Ipp32f threshold[4], const Ipp32f value[4])
{
    return Threshold(pSrcDst, srcDstStep, roiSize, threshold, value, Sse41Rows::Threshold);
}

namespace {
constexpr auto ippiAddC_32f_AC4R_arraddr = IppDispatch::WithSse41(mx_ippiAddC_32f_AC4R, y8_ippiAddC_32f_AC4R);
constexpr auto ippiAddC_32f_AC4IR_arraddr = IppDispatch::WithSse41(mx_ippiAddC_32f_AC4IR, y8_ippiAddC_32f_AC4IR);
constexpr auto ippiMulC_32f_AC4R_arraddr = IppDispatch::WithSse41(mx_ippiMulC_32f_AC4R, y8_ippiMulC_32f_AC4R);
constexpr auto ippiMulC_32f_AC4IR_arraddr = IppDispatch::WithSse41(mx_ippiMulC_32f_AC4IR, y8_ippiMulC_32f_AC4IR);
constexpr auto ippiColorTwist_32f_AC4R_arraddr =
    IppDispatch::WithSse41(mx_ippiColorTwist_32f_AC4R, y8_ippiColorTwist_32f_AC4R);
constexpr auto ippiColorTwist_32f_AC4IR_arraddr =
    IppDispatch::WithSse41(mx_ippiColorTwist_32f_AC4IR, y8_ippiColorTwist_32f_AC4IR);
constexpr auto ippiSqr_32f_C4IR_arraddr = IppDispatch::WithSse41(mx_ippiSqr_32f_C4IR, y8_ippiSqr_32f_C4IR);
constexpr auto ippiSqrt_32f_C4IR_arraddr = IppDispatch::WithSse41(mx_ippiSqrt_32f_C4IR, y8_ippiSqrt_32f_C4IR);
constexpr auto ippiThreshold_LTVal_32f_C4IR_arraddr =
    IppDispatch::WithSse41(mx_ippiThreshold_LTVal_32f_C4IR, y8_ippiThreshold_LTVal_32f_C4IR);
} // namespace

IppStatus ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                            IppiSize roiSize)
{
    return IppDispatch::Call(ippiAddC_32f_AC4R_arraddr, pSrc, srcStep, value, pDst, dstStep, roiSize);
}

IppStatus ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiAddC_32f_AC4IR_arraddr, value, pSrcDst, srcDstStep, roiSize);
}

IppStatus ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                            IppiSize roiSize)
{
    return IppDispatch::Call(ippiMulC_32f_AC4R_arraddr, pSrc, srcStep, value, pDst, dstStep, roiSize);
}

IppStatus ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiMulC_32f_AC4IR_arraddr, value, pSrcDst, srcDstStep, roiSize);
}

IppStatus ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                  const Ipp32f twist[3][4])
{
    return IppDispatch::Call(ippiColorTwist_32f_AC4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize, twist);
}

IppStatus ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4])
{
    return IppDispatch::Call(ippiColorTwist_32f_AC4IR_arraddr, pSrcDst, srcDstStep, roiSize, twist);
}

IppStatus ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSqr_32f_C4IR_arraddr, pSrcDst, srcDstStep, roiSize);
}

IppStatus ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSqrt_32f_C4IR_arraddr, pSrcDst, srcDstStep, roiSize);
}

IppStatus ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f threshold[4],
                                       const Ipp32f value[4])
{
    return IppDispatch::Call(ippiThreshold_LTVal_32f_C4IR_arraddr, pSrcDst, srcDstStep, roiSize, threshold, value);
}
