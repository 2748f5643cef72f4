#pragma once
// The variants of the copies and the pixel members, with the arguments of the exported entries in
// ippCopy.h and ippi.h. mx, the plain variant, defines behaviour; y8 gives the same results with
// SSE4.1 instructions and may run only on a processor that has them. A member without a y8 here
// runs its plain variant at every index.
#include "ippdefs.h"

IppStatus mx_ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize);
IppStatus mx_ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus mx_ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize);
IppStatus mx_ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus mx_ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                     const Ipp32f twist[3][4]);
IppStatus mx_ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4]);
IppStatus mx_ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                   int dstStep, IppiSize roiSize, IppiAlphaType alphaType);
IppStatus mx_ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                        Ipp8u alphaValue);
IppStatus mx_ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopyReplicateBorder_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                            int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
IppStatus mx_ippiCopyReplicateBorder_8u_C4R(const Ipp8u* pSrc, int srcStep, IppiSize srcRoiSize, Ipp8u* pDst,
                                            int dstStep, IppiSize dstRoiSize, int topBorderHeight, int leftBorderWidth);
IppStatus mx_ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_8u_C1C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_8u_C4CR(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_32f_C1C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiCopy_32f_C4CR(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_8u_C4CR(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSet_32f_C4CR(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus mx_ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus mx_ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus mx_ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4]);
IppStatus mx_ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f threshold[4],
                                          const Ipp32f value[4]);

IppStatus y8_ippiCopy_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiCopy_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiCopy_32f_C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiCopy_32f_C4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiAddC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize);
IppStatus y8_ippiAddC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus y8_ippiMulC_32f_AC4R(const Ipp32f* pSrc, int srcStep, const Ipp32f value[3], Ipp32f* pDst, int dstStep,
                               IppiSize roiSize);
IppStatus y8_ippiMulC_32f_AC4IR(const Ipp32f value[3], Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus y8_ippiColorTwist_32f_AC4R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize,
                                     const Ipp32f twist[3][4]);
IppStatus y8_ippiColorTwist_32f_AC4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f twist[3][4]);
IppStatus y8_ippiAlphaComp_8u_AC4R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                                   int dstStep, IppiSize roiSize, IppiAlphaType alphaType);
IppStatus y8_ippiAlphaPremul_8u_AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                        Ipp8u alphaValue);
IppStatus y8_ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiCopy_8u_C4C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiCopy_32f_C4C1R(const Ipp32f* pSrc, int srcStep, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiSet_32f_C1R(Ipp32f value, Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiSet_8u_C4R(const Ipp8u value[4], Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiSet_32f_C4R(const Ipp32f value[4], Ipp32f* pDst, int dstStep, IppiSize roiSize);
IppStatus y8_ippiSqr_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus y8_ippiSqrt_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus y8_ippiSwapChannels_8u_C4IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize, const int dstOrder[4]);
IppStatus y8_ippiThreshold_LTVal_32f_C4IR(Ipp32f* pSrcDst, int srcDstStep, IppiSize roiSize, const Ipp32f threshold[4],
                                          const Ipp32f value[4]);
