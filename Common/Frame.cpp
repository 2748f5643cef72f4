#include "Frame.h"

#include <cstdlib>

#include "../include/MemoryAllocatorInterface.h"
#include "../primitives/ippMemory.h"
#include "MemoryAllocator.h"

CFrame::CFrame()
    : m_pBuffer(nullptr), m_nWidth(0), m_nHeight(0), m_nByteSpan(0), m_nPixelSpan(0), m_nDepth(0),
      m_bLocalAlloc(false), m_bFlipped(false), m_pfPixelFormat(pfVideoSample), m_pMemoryAllocator(nullptr)
{
}

CFrame::~CFrame()
{
    Clear();
}

void CFrame::Clear()
{
    if (m_bLocalAlloc && m_pBuffer != nullptr) {
        // The free path follows the allocator's state now: a buffer must go back the way it came.
        if (m_pMemoryAllocator != nullptr && m_pMemoryAllocator->HostAllocator() != nullptr)
            m_pMemoryAllocator->HostAllocator()->FreePicture(m_pBuffer);
        else
            ippiFree(m_pBuffer);
    }
    m_pBuffer = nullptr;
    m_nWidth = m_nHeight = m_nByteSpan = m_nPixelSpan = m_nDepth = 0;
    m_bLocalAlloc = false;
    m_bFlipped = false;
    m_pfPixelFormat = pfVideoSample;
    m_pMemoryAllocator = nullptr;
}

bool CFrame::Init(unsigned char* pBuffer, int width, int height, int byteSpan, int depth, PixelFormat format,
                  bool flipped)
{
    Clear();
    if (byteSpan < 0) {
        // A bottom-up picture described from its top row: start at the lowest row in memory.
        flipped = !flipped;
        if (pBuffer != nullptr && height > 0)
            pBuffer += static_cast<ptrdiff_t>(height - 1) * byteSpan;
        byteSpan = byteSpan == INT32_MIN ? INT32_MAX : -byteSpan;
    }
    m_nDepth = depth;
    m_nByteSpan = byteSpan;
    m_nWidth = width;
    m_nHeight = height;
    m_nPixelSpan = depth != 0 ? byteSpan / depth : 0;
    m_pBuffer = pBuffer;
    m_bFlipped = flipped;
    m_pfPixelFormat = format;
    return true;
}

bool CFrame::Init(tagBITMAPINFOHEADER* pHeader, unsigned char* pBits)
{
    if (pHeader == nullptr) {
        Clear();
        return false;
    }
    const int depth = pHeader->biBitCount >> 3;
    const int width = pHeader->biWidth;
    const bool flipped = pHeader->biHeight < 0;
    const int height = flipped ? (pHeader->biHeight == INT32_MIN ? INT32_MAX : -pHeader->biHeight) : pHeader->biHeight;
    const int64_t span = static_cast<int64_t>(depth) * width;
    return Init(pBits, width, height, span > INT32_MAX || span < INT32_MIN ? 0 : static_cast<int>(span), depth,
                pfVideoSample, flipped);
}

bool CFrame::Init(const FrameParams* pParams)
{
    Clear();
    if (pParams == nullptr)
        return false;
    return Init(pParams->pBuffer, pParams->nWidth, pParams->nHeight, pParams->nByteSpan, pParams->nDepth,
                pParams->pfFormat, pParams->bFlipped);
}

bool CFrame::Init(int width, int height, int depth, MemoryAllocator* pAllocator, PixelFormat format, bool flipped)
{
    Clear();
    m_bLocalAlloc = true;
    m_nWidth = width;
    m_nHeight = height;
    m_nDepth = depth;
    m_pMemoryAllocator = pAllocator;
    if (pAllocator != nullptr) {
        pAllocator->AllocatePicture(&m_pBuffer, width, height, depth, &m_nByteSpan);
    } else {
        MemoryAllocator ownAllocator(nullptr);
        ownAllocator.AllocatePicture(&m_pBuffer, width, height, depth, &m_nByteSpan);
    }
    m_nPixelSpan = depth != 0 ? m_nByteSpan / depth : 0;
    m_pfPixelFormat = depth == 1 ? pfMono8 : format;
    m_bFlipped = flipped;
    return m_pBuffer != nullptr;
}

FrameParams CFrame::GetFrameParams() const
{
    FrameParams params = {};
    params.pBuffer = m_pBuffer;
    params.nWidth = m_nWidth;
    params.nHeight = m_nHeight;
    params.nByteSpan = m_nByteSpan;
    params.nDepth = m_nDepth;
    params.pfFormat = m_pfPixelFormat;
    params.bFlipped = m_bFlipped;
    return params;
}
