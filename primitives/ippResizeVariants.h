#pragma once
#include "ippdefs.h"

// The plain variant of each resize member: it defines the members' behaviour. The exported
// entries in ippResize.h call through to these, with the same arguments.
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

IppStatus mx_ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize);
