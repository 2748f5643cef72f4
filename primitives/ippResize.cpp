// The corner-to-corner resize members.
#include "ippResize.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

#include "ippMemory.h"
#include "ippResizeEngine.h"
#include "ippResizeVariants.h"

namespace {

using ResizeEngine::AxisTable;
using ResizeEngine::Kernel;

const double kIndexLift = 1e-7;   // a position a hair short of a sample counts as on it

// Corner-to-corner Lanczos wants 8 samples each way; below 2 only nearest neighbour is left.
Kernel ReduceForSmallPicture(Kernel kernel, IppiSize srcSize)
{
    if (std::min(srcSize.width, srcSize.height) < 2)
        return Kernel::Nearest;
    return ResizeEngine::NarrowForSmallPicture(kernel, srcSize.width, srcSize.height, 8);
}

// The output's length along one axis; false when the scaled region is below half a pixel.
bool OutputLength(int regionLength, double factor, int limit, int& length)
{
    const double scaled = regionLength * factor + kIndexLift;
    length = scaled >= limit ? limit : static_cast<int>(scaled);
    if (length >= 1)
        return true;
    length = 1;
    return scaled >= 0.5;
}

// Positions relative to the region's origin, by repeated addition of the step. Apart from nearest
// neighbour the first and last output pixels fall on the region's first and last samples.
void BuildAxis(AxisTable& table, Kernel kernel, bool fixedPoint, bool along, double factor, int regionLength,
               int offset)
{
    double step = 0;
    double position = 0;
    if (kernel == Kernel::Nearest) {
        step = 1.0 / factor;
        position = step / 2;
    } else {
        const double scaled = regionLength * factor;
        step = scaled > 1 ? (regionLength - 1) / (scaled - 1) : 0;
    }
    const int64_t last = table.samples - 1;
    ResizeEngine::BeginAxis(table);
    for (int j = 0; j < table.count; ++j, position += step) {
        const int64_t i = ResizeEngine::TruncIndex(position + kIndexLift);
        const int64_t at = std::min(offset + i, last);
        switch (kernel) {
        case Kernel::Nearest: ResizeEngine::SetNearest(table, j, at); break;
        case Kernel::Linear: ResizeEngine::SetLinear(table, j, at, position - i, fixedPoint); break;
        case Kernel::Cubic: {
            // The polynomial always comes from four samples inside the picture; near an edge it is
            // the nearest four, evaluated off centre.
            int64_t base = at;
            if (at == 0)
                base = 1;
            else if (at == last - 1)
                base = at - 1;
            else if (at == last)
                base = at - 2;
            const double t = at == last ? 2.0 : position - static_cast<double>(base - offset);
            ResizeEngine::SetCubic(table, j, base - 1, t, along);
            break;
        }
        case Kernel::Lanczos: ResizeEngine::SetLanczos(table, j, at - 2, position - i, along); break;
        }
    }
}

// The member's body; `resample` is the variant's engine.
template <typename T>
IppStatus ResizeCorners(const T* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, T* pDst, int dstStep,
                        IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation,
                        void (*resample)(const ResizeEngine::Job&))
{
    if (pSrc == nullptr || pDst == nullptr)
        return ippStsNullPtrErr;
    if (srcSize.width < 1 || srcSize.height < 1 || srcRoi.x < 0 || srcRoi.y < 0 || srcRoi.width < 1 ||
        srcRoi.height < 1)
        return ippStsSizeErr;
    if (srcRoi.x >= srcSize.width || srcRoi.y >= srcSize.height)
        return ippStsWrongIntersectROI;
    if (dstRoiSize.width < 1 || dstRoiSize.height < 1)
        return ippStsSizeErr;
    if (!(xFactor > 0) || !(yFactor > 0))
        return ippStsResizeFactorErr;
    Kernel kernel;
    if (!ResizeEngine::KernelOf(interpolation, kernel))
        return ippStsInterpolationErr;
    kernel = ReduceForSmallPicture(kernel, srcSize);

    const int regionWidth = std::min(srcRoi.width, srcSize.width - srcRoi.x);
    const int regionHeight = std::min(srcRoi.height, srcSize.height - srcRoi.y);
    ResizeEngine::Job job;
    if (!OutputLength(regionWidth, xFactor, dstRoiSize.width, job.along.count) ||
        !OutputLength(regionHeight, yFactor, dstRoiSize.height, job.down.count))
        return ippStsResizeNoOperationErr;
    job.kernel = kernel;
    job.floats = std::is_same_v<T, Ipp32f>;
    job.channels = 4;
    job.src = reinterpret_cast<const uint8_t*>(pSrc);
    job.srcStep = srcStep;
    job.dst = reinterpret_cast<uint8_t*>(pDst);
    job.dstStep = dstStep;
    job.along.samples = srcSize.width;
    job.down.samples = srcSize.height;

    const int64_t workBytes = ResizeEngine::WorkBytes(kernel, job.channels, job.along.count, job.down.count);
    Ipp8u* pWork = workBytes <= INT32_MAX ? ippsMalloc_8u(static_cast<int>(workBytes)) : nullptr;
    if (pWork == nullptr)
        return ippStsMemAllocErr;
    ResizeEngine::Workspace work(pWork);
    ResizeEngine::TakeWork(work, job);
    BuildAxis(job.along, kernel, !job.floats, true, xFactor, regionWidth, srcRoi.x);
    BuildAxis(job.down, kernel, !job.floats, false, yFactor, regionHeight, srcRoi.y);
    resample(job);
    ippsFree(pWork);
    return ippStsNoErr;
}

} // namespace

IppStatus mx_ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                               int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return ResizeCorners(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor, interpolation,
                         ResizeEngine::Resample);
}

IppStatus mx_ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                                int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return ResizeCorners(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor, interpolation,
                         ResizeEngine::Resample);
}

IppStatus y8_ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                               int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return ResizeCorners(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor, interpolation,
                         ResizeEngine::ResampleSse41);
}

IppStatus y8_ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                                int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return ResizeCorners(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor, interpolation,
                         ResizeEngine::ResampleSse41);
}

IppStatus ippiResize_8u_C4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                            int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return mx_ippiResize_8u_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor,
                                interpolation);
}

IppStatus ippiResize_32f_C4R(const Ipp32f* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp32f* pDst,
                             int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor, int interpolation)
{
    return mx_ippiResize_32f_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor,
                                 interpolation);
}
