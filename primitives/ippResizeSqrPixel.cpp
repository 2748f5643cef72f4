// The pixel-area resize members and the size of their work space.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <type_traits>

#include "ippResize.h"
#include "ippResizeEngine.h"
#include "ippResizeVariants.h"

namespace {

using ResizeEngine::AxisTable;
using ResizeEngine::Kernel;

// Positions this far out read an edge sample whatever the kernel.
const double kFarOutside = 1e12;

bool RectHolds(IppiRect rect)
{
    return rect.x >= 0 && rect.y >= 0 && rect.width >= 1 && rect.height >= 1;
}

// Destination pixels, along one axis, whose centres lie in the mapped source region and in the
// destination's region; false when there are none.
bool MappedSpan(int regionStart, int regionLength, double factor, double shift, int roiStart, int roiLength,
                int64_t& first, int& count)
{
    const double low = std::max(regionStart * factor + shift, static_cast<double>(roiStart));
    const double high = std::min((static_cast<double>(regionStart) + regionLength) * factor + shift,
                                 static_cast<double>(roiStart) + roiLength);
    if (!(low < high))
        return false;
    first = static_cast<int64_t>(low + 0.4999999999);
    const int64_t end = static_cast<int64_t>(high + 0.5000000001);
    count = static_cast<int>(end - first);
    return end > first;
}

// Pixel centres map to pixel centres; every tap outside the picture reads its edge sample.
void BuildAxis(AxisTable& table, Kernel kernel, bool fixedPoint, bool along, double factor, double shift,
               int64_t firstOutput)
{
    const double dx = 1.0 / factor;
    const double offset = -shift / factor;
    ResizeEngine::BeginAxis(table);
    for (int j = 0; j < table.count; ++j) {
        const double d = static_cast<double>(firstOutput + j);
        if (kernel == Kernel::Nearest) {
            ResizeEngine::SetNearest(table, j, ResizeEngine::TruncIndex((d + 0.5) * dx - 1e-10 + offset));
            continue;
        }
        double p = (d + 0.5) * dx - 0.5 + offset;
        if (!(std::fabs(p) < kFarOutside))
            p = p > 0 ? kFarOutside : -kFarOutside;
        const int64_t i = ResizeEngine::FloorIndex(p);
        const double t = p - static_cast<double>(i);
        switch (kernel) {
        case Kernel::Linear: ResizeEngine::SetLinear(table, j, i, t, fixedPoint); break;
        case Kernel::Cubic: ResizeEngine::SetCubic(table, j, i - 1, t, along); break;
        case Kernel::Lanczos: ResizeEngine::SetLanczos(table, j, i - 2, t, along); break;
        case Kernel::Nearest: break;
        }
    }
}

// The members' body; `resample` is the variant's engine.
template <typename T, int NCH>
IppStatus ResizeAreas(const T* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, T* pDst, int dstStep,
                      IppiRect dstRoi, double xFactor, double yFactor, double xShift, double yShift,
                      int interpolation, Ipp8u* pBuffer, void (*resample)(const ResizeEngine::Job&))
{
    if (pSrc == nullptr || pDst == nullptr || pBuffer == nullptr)
        return ippStsNullPtrErr;
    if (srcSize.width < 1 || srcSize.height < 1 || !RectHolds(srcRoi) || !RectHolds(dstRoi))
        return ippStsSizeErr;
    if (!(xFactor > 0) || !(yFactor > 0))
        return ippStsResizeFactorErr;
    Kernel kernel;
    if (!ResizeEngine::KernelOf(interpolation, kernel))
        return ippStsInterpolationErr;
    kernel = ResizeEngine::NarrowForSmallPicture(kernel, srcSize.width, srcSize.height, 6);
    if (srcRoi.x >= srcSize.width || srcRoi.y >= srcSize.height)
        return ippStsWrongIntersectROI;

    const int regionWidth = std::min(srcRoi.width, srcSize.width - srcRoi.x);
    const int regionHeight = std::min(srcRoi.height, srcSize.height - srcRoi.y);
    ResizeEngine::Job job;
    int64_t firstColumn = 0;
    int64_t firstRow = 0;
    if (!MappedSpan(srcRoi.x, regionWidth, xFactor, xShift, dstRoi.x, dstRoi.width, firstColumn, job.along.count) ||
        !MappedSpan(srcRoi.y, regionHeight, yFactor, yShift, dstRoi.y, dstRoi.height, firstRow, job.down.count))
        return ippStsNoOperation;
    job.kernel = kernel;
    job.floats = std::is_same_v<T, Ipp32f>;
    job.channels = NCH;
    job.src = reinterpret_cast<const uint8_t*>(pSrc);
    job.srcStep = srcStep;
    job.dst = reinterpret_cast<uint8_t*>(pDst) + firstRow * dstStep + firstColumn * NCH * int64_t{sizeof(T)};
    job.dstStep = dstStep;
    job.along.samples = srcSize.width;
    job.down.samples = srcSize.height;

    // A mapped area this large has no work space that ippiResizeGetBufSize could have given.
    if (ResizeEngine::WorkBytes(kernel, NCH, job.along.count, job.down.count) > INT32_MAX)
        return ippStsSizeErr;
    ResizeEngine::Workspace work(pBuffer);
    ResizeEngine::TakeWork(work, job);
    BuildAxis(job.along, kernel, !job.floats, true, xFactor, xShift, firstColumn);
    BuildAxis(job.down, kernel, !job.floats, false, yFactor, yShift, firstRow);
    resample(job);
    return ippStsNoErr;
}

int64_t RoundUp(int64_t value, int64_t multiple)
{
    return (value + multiple - 1) / multiple * multiple;
}

} // namespace

IppStatus mx_ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp8u, 1>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                 yShift, interpolation, pBuffer, ResizeEngine::Resample);
}

IppStatus mx_ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp8u, 4>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                 yShift, interpolation, pBuffer, ResizeEngine::Resample);
}

IppStatus mx_ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp32f, 1>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                  yShift, interpolation, pBuffer, ResizeEngine::Resample);
}

IppStatus mx_ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp32f, 4>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                  yShift, interpolation, pBuffer, ResizeEngine::Resample);
}

IppStatus y8_ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp8u, 1>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                 yShift, interpolation, pBuffer, ResizeEngine::ResampleSse41);
}

IppStatus y8_ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                       Ipp8u* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                       double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp8u, 4>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                 yShift, interpolation, pBuffer, ResizeEngine::ResampleSse41);
}

IppStatus y8_ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp32f, 1>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                  yShift, interpolation, pBuffer, ResizeEngine::ResampleSse41);
}

IppStatus y8_ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                        Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                        double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return ResizeAreas<Ipp32f, 4>(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift,
                                  yShift, interpolation, pBuffer, ResizeEngine::ResampleSse41);
}

// Nearest neighbour and linear take the fixed figures; cubic and Lanczos what their tables and row
// stores take, which stays within four times the linear figure.
IppStatus mx_ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize)
{
    if (pSize == nullptr)
        return ippStsNullPtrErr;
    if (!RectHolds(srcRoi) || !RectHolds(dstRoi))
        return ippStsSizeErr;
    if (nChannel != 1 && nChannel != 3 && nChannel != 4)
        return ippStsNumChannelsErr;
    Kernel kernel;
    if (!ResizeEngine::KernelOf(interpolation, kernel))
        return ippStsInterpolationErr;
    const int64_t width = dstRoi.width;
    const int64_t height = dstRoi.height;
    const int64_t indices = 64 * ((width + 15) / 16 + (height + 15) / 16);
    int64_t size = 0;
    switch (kernel) {
    case Kernel::Nearest: size = indices + 16; break;
    case Kernel::Linear:
        size = indices + 4 * (RoundUp(width, 64) + RoundUp(height, 64)) +
               4 * nChannel * ((2 * width + 127) & ~int64_t{63}) + 16;
        break;
    case Kernel::Cubic:
    case Kernel::Lanczos: size = ResizeEngine::WorkBytes(kernel, nChannel, dstRoi.width, dstRoi.height); break;
    }
    if (size > INT32_MAX)
        return ippStsSizeErr;
    *pSize = static_cast<int>(size);
    return ippStsNoErr;
}

IppStatus ippiResizeSqrPixel_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                    int dstStep, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
                                    double yShift, int interpolation, Ipp8u* pBuffer)
{
    return mx_ippiResizeSqrPixel_8u_C1R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                        xShift, yShift, interpolation, pBuffer);
}

IppStatus ippiResizeSqrPixel_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                    int dstStep, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
                                    double yShift, int interpolation, Ipp8u* pBuffer)
{
    return mx_ippiResizeSqrPixel_8u_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                        xShift, yShift, interpolation, pBuffer);
}

IppStatus ippiResizeSqrPixel_32f_C1R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                     Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                     double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return mx_ippiResizeSqrPixel_32f_C1R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                         xShift, yShift, interpolation, pBuffer);
}

IppStatus ippiResizeSqrPixel_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                                     Ipp32f* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                                     double xShift, double yShift, int interpolation, Ipp8u* pBuffer)
{
    return mx_ippiResizeSqrPixel_32f_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                         xShift, yShift, interpolation, pBuffer);
}

IppStatus ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize)
{
    return mx_ippiResizeGetBufSize(srcRoi, dstRoi, nChannel, interpolation, pSize);
}
