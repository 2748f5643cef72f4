#include "CopyPlane.h"

#include "../include/PixelFormat.h"
#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

enum class Side { None, Floats, Bytes };

Side SideOf(const CFrame& src)
{
    switch (src.m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat:
    case pfMonoFloat: return Side::Floats;
    case pfVideoSample:
    case pfVideoSampleSwapped:
    case pfMono8: return Side::Bytes;
    default: return src.m_nDepth == 1 ? Side::Bytes : Side::None;
    }
}

// A plane beyond the record would move the copy into the next pixel, and past the row's end.
bool IsPlane(int plane)
{
    return plane >= 0 && plane < 4;
}

// The three forms of one sample type: four channels to one, one to four, four to four, chosen by
// the depths of one pixel of that type (a sample, four samples).
template <class Sample, IppStatus (*ToOne)(const Sample*, int, Sample*, int, IppiSize),
          IppStatus (*ToFour)(const Sample*, int, Sample*, int, IppiSize),
          IppStatus (*FourToFour)(const Sample*, int, Sample*, int, IppiSize)>
bool CopyPlane(const CFrame& src, const CFrame& dst, int srcPlane, int dstPlane)
{
    const int one = sizeof(Sample), four = 4 * sizeof(Sample);
    const bool srcFour = src.m_nDepth == four, dstFour = dst.m_nDepth == four;
    const bool srcOne = src.m_nDepth == one, dstOne = dst.m_nDepth == one;
    if (!((srcFour && dstOne) || (srcOne && dstFour) || (srcFour && dstFour)))
        return false;
    if ((srcFour && !IsPlane(srcPlane)) || (dstFour && !IsPlane(dstPlane)))
        return false;
    const IppiSize area = CommonArea(src, dst);
    if (!AreaFits(src, area, src.m_nDepth) || !AreaFits(dst, area, dst.m_nDepth))
        return false;
    const Sample* pFrom = reinterpret_cast<const Sample*>(src.m_pBuffer) + (srcFour ? srcPlane : 0);
    Sample* pTo = reinterpret_cast<Sample*>(dst.m_pBuffer) + (dstFour ? dstPlane : 0);
    IppStatus status;
    if (srcFour && dstFour)
        status = FourToFour(pFrom, src.m_nByteSpan, pTo, dst.m_nByteSpan, area);
    else if (srcFour)
        status = ToOne(pFrom, src.m_nByteSpan, pTo, dst.m_nByteSpan, area);
    else
        status = ToFour(pFrom, src.m_nByteSpan, pTo, dst.m_nByteSpan, area);
    return status == ippStsNoErr;
}

} // namespace

bool CCopyPlane::Process(CFrame* pSrc, CFrame* pDst, int srcPlane, int dstPlane)
{
    if (pSrc == nullptr || pDst == nullptr || pSrc->m_pBuffer == nullptr || pDst->m_pBuffer == nullptr)
        return false;
    switch (SideOf(*pSrc)) {
    case Side::Floats:
        return CopyPlane<Ipp32f, ippiCopy_32f_C4C1R, ippiCopy_32f_C1C4R, ippiCopy_32f_C4CR>(*pSrc, *pDst, srcPlane,
                                                                                           dstPlane);
    case Side::Bytes:
        return CopyPlane<Ipp8u, ippiCopy_8u_C4C1R, ippiCopy_8u_C1C4R, ippiCopy_8u_C4CR>(*pSrc, *pDst, srcPlane,
                                                                                        dstPlane);
    default: return false;
    }
}

} // namespace Processors
