// Copies of one channel: from four channels to one, from one to four, and from four to four.
#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

template <typename T>
using ChannelKernel = void (*)(const T*, T*, size_t);

// srcSamples and dstSamples are the samples a pixel on each side; one of them is 4. A region
// whose rows are contiguous on both sides is done as one row when oneRow allows it.
template <typename T>
IppStatus CopyChannel(const T* pSrc, int srcStep, T* pDst, int dstStep, IppiSize roiSize, int srcSamples,
                      int dstSamples, bool oneRow, ChannelKernel<T> copy)
{
    if (const IppStatus status = IppRegion::CheckPointersAndSize(roiSize, pSrc, pDst); status != ippStsNoErr)
        return status;
    if (oneRow)
        IppRegion::EachRowOrWhole(pSrc, srcStep, srcSamples * sizeof(T), pDst, dstStep, dstSamples * sizeof(T), roiSize,
                                  copy);
    else
        IppRegion::EachRow(pSrc, srcStep, pDst, dstStep, roiSize, copy);
    return ippStsNoErr;
}

template <typename T>
void FourToOne(const T* s, T* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[x] = s[4 * x];
}

template <typename T>
void OneToFour(const T* s, T* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[4 * x] = s[x];
}

template <typename T>
void FourToFour(const T* s, T* d, size_t n)
{
    for (size_t x = 0; x < n; ++x)
        d[4 * x] = s[4 * x];
}

} // namespace

void PlainRows::CopyC4C1_8u(const uint8_t* s, uint8_t* d, size_t n)
{
    FourToOne(s, d, n);
}

void PlainRows::CopyC4C1_32f(const float* s, float* d, size_t n)
{
    FourToOne(s, d, n);
}

void PlainRows::CopyC1C4_8u(const uint8_t* s, uint8_t* d, size_t n)
{
    OneToFour(s, d, n);
}

void PlainRows::CopyC1C4_32f(const float* s, float* d, size_t n)
{
    OneToFour(s, d, n);
}

void PlainRows::CopyC4CR_8u(const uint8_t* s, uint8_t* d, size_t n)
{
    FourToFour(s, d, n);
}

void PlainRows::CopyC4CR_32f(const float* s, float* d, size_t n)
{
    FourToFour(s, d, n);
}

IppStatus mx_ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 1, true, PlainRows::CopyC4C1_8u);
}

IppStatus mx_ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 1, true, PlainRows::CopyC4C1_32f);
}

IppStatus mx_ippiCopy_8u_C1C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 1, 4, true, PlainRows::CopyC1C4_8u);
}

IppStatus mx_ippiCopy_32f_C1C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 1, 4, true, PlainRows::CopyC1C4_32f);
}

IppStatus mx_ippiCopy_8u_C4CR(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 4, false, PlainRows::CopyC4CR_8u);
}

IppStatus mx_ippiCopy_32f_C4CR(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 4, false, PlainRows::CopyC4CR_32f);
}

IppStatus y8_ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 1, true, Sse41Rows::CopyC4C1_8u);
}

IppStatus y8_ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return CopyChannel(pSrc, srcStep, pDst, dstStep, roiSize, 4, 1, true, Sse41Rows::CopyC4C1_32f);
}

// Writing one sample of four gains nothing from vectors without rewriting the other three, which
// the members must leave alone; these run their plain variant at every index.
namespace {
constexpr auto ippiCopy_8u_C4C1R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_8u_C4C1R, y8_ippiCopy_8u_C4C1R);
constexpr auto ippiCopy_32f_C4C1R_arraddr = IppDispatch::WithSse41(mx_ippiCopy_32f_C4C1R, y8_ippiCopy_32f_C4C1R);
constexpr auto ippiCopy_8u_C1C4R_arraddr = IppDispatch::PlainOnly(mx_ippiCopy_8u_C1C4R);
constexpr auto ippiCopy_32f_C1C4R_arraddr = IppDispatch::PlainOnly(mx_ippiCopy_32f_C1C4R);
constexpr auto ippiCopy_8u_C4CR_arraddr = IppDispatch::PlainOnly(mx_ippiCopy_8u_C4CR);
constexpr auto ippiCopy_32f_C4CR_arraddr = IppDispatch::PlainOnly(mx_ippiCopy_32f_C4CR);
} // namespace

IppStatus ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_8u_C4C1R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_32f_C4C1R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_8u_C1C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_8u_C1C4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_32f_C1C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_32f_C1C4R_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_8u_C4CR(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_8u_C4CR_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiCopy_32f_C4CR(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize)
{
    return IppDispatch::Call(ippiCopy_32f_C4CR_arraddr, pSrc, srcStep, pDst, dstStep, roiSize);
}
