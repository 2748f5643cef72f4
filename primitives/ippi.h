#pragma once
// The pixel members of the primitive layer. Each works on a region of interest whose first pixel
// the pointers address; steps are bytes from a row's start to the next row's. For a channel form
// (C4C1, C1C4, C4CR) the pointer addresses the channel's first sample. Arguments are checked
// before anything is written: null pointers, then sizes, then steps where a member checks them,
// then the member's own values.
#include "ippCopy.h"
#include "ippdefs.h"

// d[c] = s[c] + value[c] and d[c] = s[c] * value[c] for c = 0, 1, 2; the fourth sample is not
// written.
IppStatus ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                            IppiSize roiSize);
IppStatus ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                            IppiSize roiSize);
IppStatus ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);

// d[c] = twist[c][0] s[0] + twist[c][3] + twist[c][1] s[1] + twist[c][2] s[2], c = 0, 1, 2, summed
// in that order in single precision; the fourth sample is not written.
IppStatus ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                  const Ipp32f twist[3][4]);
IppStatus ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4]);

// Composites pSrc1 with pSrc2 by alphaType; ippStsAlphaTypeErr above ippAlphaPlusPremul.
IppStatus ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                int dstStep, IppiSize roiSize, IppiAlphaType alphaType);
// Colours multiplied by their alpha, divided by 255 with rounding; alpha is copied.
IppStatus ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// Packed 4:2:2 (Y0, Cb, Y1, Cr) to blue, green, red and alphaValue, and back; widths below 2 are
// refused.
IppStatus ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                     Ipp8u alphaValue);
IppStatus ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// Places the source at (leftBorderWidth, topBorderHeight) in the destination and fills the rest
// with the nearest edge pixel. The source may lie in place inside the destination.
IppStatus ippiCopyReplicateBorder_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                         int dstStep, IppiSize dstRoiSize, int topBorderHeight,
                                         int leftBorderWidth);
IppStatus ippiCopyReplicateBorder_8u_C4R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                         int dstStep, IppiSize dstRoiSize, int topBorderHeight,
                                         int leftBorderWidth);

// One channel of four to one, one to one of four, and one of four to one of four.
IppStatus ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiCopy_8u_C1C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiCopy_8u_C4CR(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiCopy_32f_C1C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiCopy_32f_C4CR(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);

// Fills a region: every sample, all four samples of each pixel, or one channel of four.
IppStatus ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_8u_C4CR(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_32f_C4CR(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize);

// v = v * v, and v = its root, over all four samples. A negative sample becomes a not-a-number and
// the whole picture is still done; the status is then ippStsSqrtNegArg.
IppStatus ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);

// Each pixel read whole, then d[c] = old[dstOrder[c]]; an entry outside 0 to 3 is refused.
IppStatus ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4]);

// For all four samples: v = value[c] where threshold[c] > v.
IppStatus ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f threshold[4],
                                       const Ipp32f value[4]);
