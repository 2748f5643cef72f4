#include "FillBorder.h"

#include <cstddef>
#include <cstring>

#include "../include/PixelFormat.h"
#include "../primitives/ippi.h"
#include "Frame.h"
#include "FrameArea.h"

namespace Processors {

namespace {

// Where the picture lies: its first pixel's offset in the source, in bytes, and its size.
struct Picture {
    int64_t offset;
    IppiSize size;
};

// Reads the arguments as both paths do. In place the picture sits inside the source with equal
// margins; margins that leave no picture, or negative ones, can't be read that way.
bool FindPicture(const CFrame& src, const CFrame& dst, int left, int top, int64_t rowBytes, Picture* pPicture)
{
    const bool inPlace =
        src.m_pBuffer == dst.m_pBuffer || (src.m_nWidth == dst.m_nWidth && src.m_nHeight == dst.m_nHeight);
    if (!inPlace) {
        *pPicture = {0, {src.m_nWidth, src.m_nHeight}};
        return true;
    }
    if (left < 0 || top < 0)
        return false;
    const int64_t width = static_cast<int64_t>(src.m_nWidth) - 2 * static_cast<int64_t>(left);
    const int64_t height = static_cast<int64_t>(src.m_nHeight) - 2 * static_cast<int64_t>(top);
    if (width < 1 || height < 1)
        return false;
    pPicture->offset = top * rowBytes + static_cast<int64_t>(left) * src.m_nDepth;
    pPicture->size = {static_cast<int>(width), static_cast<int>(height)};
    return true;
}

// Both frames' rows must hold them whole: the picture is read from the source's, the fill
// reaches every pixel of the destination.
bool FramesFit(const CFrame& src, const CFrame& dst)
{
    const IppiSize srcSize = {src.m_nWidth, src.m_nHeight}, dstSize = {dst.m_nWidth, dst.m_nHeight};
    return src.m_pBuffer != nullptr && dst.m_pBuffer != nullptr && !IsEmpty(srcSize) && !IsEmpty(dstSize) &&
           AreaFits(src, srcSize, src.m_nDepth) && AreaFits(dst, dstSize, dst.m_nDepth);
}

// The float fill, for pixels of pixelFloats floats and rows strides of whole floats apart.
class FloatFill {
public:
    FloatFill(const float* pPicture, ptrdiff_t pictureStride, IppiSize picture, float* pDst, ptrdiff_t dstStride,
              IppiSize dstSize, int left, int top, int pixelFloats)
        : m_pPicture(pPicture), m_nPictureStride(pictureStride), m_picture(picture), m_pDst(pDst),
          m_nDstStride(dstStride), m_nLeft(left), m_nTop(top), m_nRight(dstSize.width - (picture.width + left)),
          m_nBottom(dstSize.height - (picture.height + top)), m_nPixelFloats(pixelFloats)
    {
    }

    void Run() const
    {
        const int W = m_picture.width, H = m_picture.height;
        const int rightStart = W + m_nLeft, bottomStart = H + m_nTop;
        FillBlock(0, 0, m_nLeft, m_nTop, 0, 0);
        FillBlock(rightStart, 0, m_nRight, m_nTop, W - 1, 0);
        FillBlock(0, bottomStart, m_nLeft, m_nBottom, 0, H - 1);
        FillBlock(rightStart, bottomStart, m_nRight, m_nBottom, W - 1, H - 1);
        for (int y = 0; y < m_nTop; ++y)
            CopyRow(0, y);
        for (int y = bottomStart; y < bottomStart + m_nBottom; ++y)
            CopyRow(H - 1, y);
        for (int y = 0; y < H; ++y) {
            FillBlock(0, m_nTop + y, m_nLeft, 1, 0, y);
            FillBlock(rightStart, m_nTop + y, m_nRight, 1, W - 1, y);
        }
        for (int y = 0; y < H; ++y)
            CopyRow(y, m_nTop + y);   // in place, a row onto itself
    }

private:
    const float* PictureAt(int x, int y) const { return m_pPicture + y * m_nPictureStride + x * m_nPixelFloats; }
    float* DstAt(int x, int y) const { return m_pDst + y * m_nDstStride + x * m_nPixelFloats; }

    // Every pixel of a block of the destination from one picture pixel, read first: in place the
    // picture lies in the destination.
    void FillBlock(int x0, int y0, int columns, int rows, int pictureX, int pictureY) const
    {
        if (columns <= 0 || rows <= 0)
            return;
        float pixel[4];
        std::memcpy(pixel, PictureAt(pictureX, pictureY), m_nPixelFloats * sizeof(float));
        for (int y = y0; y < y0 + rows; ++y)
            for (float* pOut = DstAt(x0, y); pOut < DstAt(x0 + columns, y); pOut += m_nPixelFloats)
                std::memcpy(pOut, pixel, m_nPixelFloats * sizeof(float));
    }

    void CopyRow(int pictureY, int dstY) const
    {
        std::memmove(DstAt(m_nLeft, dstY), PictureAt(0, pictureY), m_picture.width * m_nPixelFloats * sizeof(float));
    }

    const float* m_pPicture;
    ptrdiff_t m_nPictureStride;
    IppiSize m_picture;
    float* m_pDst;
    ptrdiff_t m_nDstStride;
    int m_nLeft, m_nTop, m_nRight, m_nBottom;
    int m_nPixelFloats;
};

} // namespace

bool CFillBorder::Process(CFrame* pSrc, CFrame* pDst, int left, int top)
{
    if (pSrc == nullptr || pDst == nullptr || pSrc->m_pBuffer == nullptr || pDst->m_pBuffer == nullptr)
        return false;
    switch (pSrc->m_pfPixelFormat) {
    case pfVideoSampleFloat:
    case pfVideoSampleSwappedFloat:
    case pfMonoFloat: return Process32f(pSrc, pDst, left, top);
    case pfVideoSample:
    case pfVideoSampleSwapped: return Process8u(pSrc, pDst, left, top);
    default:
        if (pSrc->m_nDepth == 1 && pDst->m_nDepth == 1)
            return Process8u(pSrc, pDst, left, top);
        return false;
    }
}

bool CFillBorder::Process8u(CFrame* pSrc, CFrame* pDst, int left, int top)
{
    if (pSrc == nullptr || pDst == nullptr || pSrc->m_nDepth != pDst->m_nDepth)
        return false;
    if (pSrc->m_nDepth != 4 && pSrc->m_nDepth != 1)
        return false;
    Picture picture;
    if (!FramesFit(*pSrc, *pDst) || !FindPicture(*pSrc, *pDst, left, top, pSrc->m_nByteSpan, &picture))
        return false;
    const IppiSize dstSize = {pDst->m_nWidth, pDst->m_nHeight};
    const Ipp8u* pPicture = pSrc->m_pBuffer + picture.offset;
    const IppStatus status =
        pSrc->m_nDepth == 4
            ? ippiCopyReplicateBorder_8u_C4R(pPicture, pSrc->m_nByteSpan, picture.size, pDst->m_pBuffer,
                                             pDst->m_nByteSpan, dstSize, top, left)
            : ippiCopyReplicateBorder_8u_C1R(pPicture, pSrc->m_nByteSpan, picture.size, pDst->m_pBuffer,
                                             pDst->m_nByteSpan, dstSize, top, left);
    return status == ippStsNoErr;
}

bool CFillBorder::Process32f(CFrame* pSrc, CFrame* pDst, int left, int top)
{
    if (pSrc == nullptr || pDst == nullptr || pSrc->m_nDepth != pDst->m_nDepth)
        return false;
    if (pSrc->m_nDepth != 16 && pSrc->m_nDepth != 4)
        return false;
    // Rows lie a whole number of floats apart.
    const ptrdiff_t srcStride = pSrc->m_nByteSpan / static_cast<int>(sizeof(float));
    const ptrdiff_t dstStride = pDst->m_nByteSpan / static_cast<int>(sizeof(float));
    Picture picture;
    if (!FramesFit(*pSrc, *pDst) ||
        !FindPicture(*pSrc, *pDst, left, top, srcStride * static_cast<int64_t>(sizeof(float)), &picture))
        return false;
    // The margins are the caller's to choose; a picture that doesn't fit where they put it is
    // refused here rather than written past the destination's edge.
    const IppiSize dstSize = {pDst->m_nWidth, pDst->m_nHeight};
    if (left < 0 || top < 0 || static_cast<int64_t>(left) + picture.size.width > dstSize.width ||
        static_cast<int64_t>(top) + picture.size.height > dstSize.height)
        return false;
    const float* pPicture = reinterpret_cast<const float*>(pSrc->m_pBuffer + picture.offset);
    FloatFill(pPicture, srcStride, picture.size, reinterpret_cast<float*>(pDst->m_pBuffer), dstStride, dstSize, left,
              top, pSrc->m_nDepth / static_cast<int>(sizeof(float)))
        .Run();
    return true;
}

} // namespace Processors
