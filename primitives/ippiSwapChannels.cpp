// Reorders the four samples of each pixel in place.
#include "ippDispatch.h"
#include "ippiRegion.h"
#include "ippiRows.h"
#include "ippiVariants.h"

namespace {

using SwapKernel = void (*)(uint8_t*, size_t, const int*);

// This member checks the step before the size.
IppStatus SwapChannels(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4], SwapKernel swap)
{
    if (pSrcDst == nullptr || dstOrder == nullptr)
        return ippStsNullPtrErr;
    if (srcDstStep < 1)
        return ippStsStepErr;
    if (!IppRegion::Holds(roiSize))
        return ippStsSizeErr;
    for (int c = 0; c < 4; ++c)
        if (dstOrder[c] < 0 || dstOrder[c] > 3)
            return ippStsChannelOrderErr;
    IppRegion::EachRow(pSrcDst, srcDstStep, roiSize, [&](uint8_t* sd, size_t n) { swap(sd, n, dstOrder); });
    return ippStsNoErr;
}

} // namespace

void PlainRows::SwapChannels(uint8_t* sd, size_t n, const int order[4])
{
    for (size_t x = 0; x < n; ++x) {
        uint8_t* pixel = sd + 4 * x;
        const uint8_t old[4] = {pixel[0], pixel[1], pixel[2], pixel[3]};
        for (int c = 0; c < 4; ++c)
            pixel[c] = old[order[c]];
    }
}

IppStatus mx_ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4])
{
    return SwapChannels(pSrcDst, srcDstStep, roiSize, dstOrder, PlainRows::SwapChannels);
}

IppStatus y8_ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4])
{
    return SwapChannels(pSrcDst, srcDstStep, roiSize, dstOrder, Sse41Rows::SwapChannels);
}

namespace {
constexpr auto ippiSwapChannels_8u_C4IR_arraddr =
    IppDispatch::WithSse41(mx_ippiSwapChannels_8u_C4IR, y8_ippiSwapChannels_8u_C4IR);
} // namespace

IppStatus ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4])
{
    return IppDispatch::Call(ippiSwapChannels_8u_C4IR_arraddr, pSrcDst, srcDstStep, roiSize, dstOrder);
}
