// Region fills: every sample, all four samples of each pixel, or one channel of four.
#include <cstring>

#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

// Checks, then fills row by row; `fill` does one row of n pixels.
template <typename T, typename Fill>
IppStatus SetRows(T* pDst, int dstStep, IppiSize roiSize, Fill fill)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pDst); status != ippStsNoErr)
        return status;
    IppRegion::EachRow(pDst, dstStep, roiSize, fill);
    return ippStsNoErr;
}

template <typename T>
IppStatus SetOne(T value, T* pDst, int dstStep, IppiSize roiSize, void (*fill)(T, T*, size_t))
{
    return SetRows(pDst, dstStep, roiSize, [&](T* d, size_t n) { fill(value, d, n); });
}

template <typename T>
IppStatus SetFour(const T value[4], T* pDst, int dstStep, IppiSize roiSize, void (*fill)(const T*, T*, size_t))
{
    if (value == nullptr)
        return ippStsNullPtrErr;
    return SetRows(pDst, dstStep, roiSize, [&](T* d, size_t n) { fill(value, d, n); });
}

} // namespace

void PlainRows::Set_8u_C1(uint8_t value, uint8_t* d, size_t n)
{
    std::memset(d, value, n);
}

void PlainRows::Set_32f_C1(float value, float* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[x] = value;
}

void PlainRows::Set_8u_C4(const uint8_t value[4], uint8_t* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        std::memcpy(d + 4 * x, value, 4);
}

void PlainRows::Set_32f_C4(const float value[4], float* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        std::memcpy(d + 4 * x, value, 4 * sizeof(float));
}

void PlainRows::Set_8u_C4C(uint8_t value, uint8_t* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[4 * x] = value;
}

void PlainRows::Set_32f_C4C(float value, float* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[4 * x] = value;
}

IppStatus mx_ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, PlainRows::Set_8u_C1);
}

IppStatus mx_ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, PlainRows::Set_32f_C1);
}

IppStatus mx_ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return SetFour(value, pDst, dstStep, roiSize, PlainRows::Set_8u_C4);
}

IppStatus mx_ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return SetFour(value, pDst, dstStep, roiSize, PlainRows::Set_32f_C4);
}

IppStatus mx_ippiSet_8u_C4CR(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, PlainRows::Set_8u_C4C);
}

IppStatus mx_ippiSet_32f_C4CR(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, PlainRows::Set_32f_C4C);
}

IppStatus y8_ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, Sse41Rows::Set_8u_C1);
}

IppStatus y8_ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return SetOne(value, pDst, dstStep, roiSize, Sse41Rows::Set_32f_C1);
}

IppStatus y8_ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return SetFour(value, pDst, dstStep, roiSize, Sse41Rows::Set_8u_C4);
}

IppStatus y8_ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return SetFour(value, pDst, dstStep, roiSize, Sse41Rows::Set_32f_C4);
}

// Filling one sample of four runs its plain variant at every index, as the channel copies do.
namespace {
constexpr auto ippiSet_8u_C1R_arraddr = IppDispatch::WithSse41(mx_ippiSet_8u_C1R, y8_ippiSet_8u_C1R);
constexpr auto ippiSet_32f_C1R_arraddr = IppDispatch::WithSse41(mx_ippiSet_32f_C1R, y8_ippiSet_32f_C1R);
constexpr auto ippiSet_8u_C4R_arraddr = IppDispatch::WithSse41(mx_ippiSet_8u_C4R, y8_ippiSet_8u_C4R);
constexpr auto ippiSet_32f_C4R_arraddr = IppDispatch::WithSse41(mx_ippiSet_32f_C4R, y8_ippiSet_32f_C4R);
constexpr auto ippiSet_8u_C4CR_arraddr = IppDispatch::PlainOnly(mx_ippiSet_8u_C4CR);
constexpr auto ippiSet_32f_C4CR_arraddr = IppDispatch::PlainOnly(mx_ippiSet_32f_C4CR);
} // namespace

IppStatus ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_8u_C1R_arraddr, value, pDst, dstStep, roiSize);
}

IppStatus ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_32f_C1R_arraddr, value, pDst, dstStep, roiSize);
}

IppStatus ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_8u_C4R_arraddr, value, pDst, dstStep, roiSize);
}

IppStatus ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_32f_C4R_arraddr, value, pDst, dstStep, roiSize);
}

IppStatus ippiSet_8u_C4CR(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_8u_C4CR_arraddr, value, pDst, dstStep, roiSize);
}

IppStatus ippiSet_32f_C4CR(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiSet_32f_C4CR_arraddr, value, pDst, dstStep, roiSize);
}
