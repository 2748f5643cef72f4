#pragma once
#include "ippdefs.h"

// The variants of each resize member, with the same arguments as the exported entries in
// ippResize.h: mx, the plain variant, defines the members' behaviour; y8 gives the same results
// with SSE4.1 instructions and may only run on a processor that has them.
IppStatus mx_ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                               int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);
IppStatus mx_ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                                int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);

IppStatus mx_ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus mx_ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus mx_ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus mx_ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer);

IppStatus y8_ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                               int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);
IppStatus y8_ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                                int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);

IppStatus y8_ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus y8_ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus y8_ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus y8_ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer);

IppStatus mx_ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize);
