#pragma once
#include "ippdefs.h"

// Interpolation values of the resize members. Other values (area decimation, further cubic
// kernels, edge flags) are refused with ippStsInterpolationErr.
enum : int {
    IPPI_INTER_NN = 1,
    IPPI_INTER_LINEAR = 2,
    IPPI_INTER_CUBIC = 4,
    IPPI_INTER_LANCZOS = 16,
};

// L(j / 100) for j = 0 to 300, with L(x) = 3 sin(pi x) sin(pi x / 3) / (pi x)^2 and L(0) = 1,
// followed by zeros so that a lookup between two entries never leaves the table.
extern const float _tblLanczos3[304];

// Corner-to-corner mapping: the first and last output pixels fall on the region's first and last
// pixels (nearest neighbour maps pixel areas). pSrc addresses the picture's origin, pDst the
// destination region's first pixel.
IppStatus ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                            int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);
IppStatus ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                             int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation);

// Pixel-area mapping: source point x lands on x * xFactor + xShift, pixel centres on pixel
// centres. Both pSrc and pDst address picture origins; only destination pixels whose centres fall
// inside the mapped source region and dstRoi are written. pBuffer is work space of the size that
// ippiResizeGetBufSize gives.
IppStatus ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                    int dstStep, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
                                    double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                    int dstStep, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
                                    double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                     Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                     double xShift, double yShift, int interpolation, Ipp8u* pBuffer);
IppStatus ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                     Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                     double xShift, double yShift, int interpolation, Ipp8u* pBuffer);

// Work space of ippiResizeSqrPixel_* for a destination rectangle, in bytes.
IppStatus ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize);
