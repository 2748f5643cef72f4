#pragma once
#include <cstdint>

#include "../include/FrameParams.h"

class MemoryAllocator;

// A picture: wraps foreign memory without owning it, or owns memory from a MemoryAllocator and
// gives it back the way it came. Pixel (x, y) is at m_pBuffer + y * m_nByteSpan + x * m_nDepth.
class CFrame {
public:
    CFrame();
    ~CFrame();
    CFrame(const CFrame&) = delete;
    CFrame& operator=(const CFrame&) = delete;

    void Clear();
    bool Init(unsigned char* pBuffer, int width, int height, int byteSpan, int depth, PixelFormat format,
              bool flipped);
    bool Init(tagBITMAPINFOHEADER* pHeader, unsigned char* pBits);
    bool Init(const FrameParams* pParams);
    bool Init(int width, int height, int depth, MemoryAllocator* pAllocator, PixelFormat format, bool flipped);
    FrameParams GetFrameParams() const;

    unsigned char* m_pBuffer;
    int32_t m_nWidth;
    int32_t m_nHeight;
    int32_t m_nByteSpan;
    int32_t m_nPixelSpan;
    int32_t m_nDepth;
    bool m_bLocalAlloc;
    bool m_bFlipped;
    PixelFormat m_pfPixelFormat;
    MemoryAllocator* m_pMemoryAllocator;
};
