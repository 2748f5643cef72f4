#pragma once
#include <cstddef>
#include <cstdint>
#include "PixelFormat.h"

// One picture as host and library pass it.
struct FrameParams {
    uint8_t* pBuffer;     // null: no picture; on a request the host fills it
    int32_t nWidth;
    int32_t nHeight;
    int32_t nByteSpan;    // a negative span describes a bottom-up picture from its top row
    int32_t nDepth;       // bytes a pixel
    int32_t nReserved1;
    int32_t nReserved2;
    PixelFormat pfFormat;
    bool bFlipped;
};
static_assert(sizeof(FrameParams) == 40, "FrameParams size");
static_assert(offsetof(FrameParams, pBuffer) == 0, "FrameParams.pBuffer");
static_assert(offsetof(FrameParams, nWidth) == 8, "FrameParams.nWidth");
static_assert(offsetof(FrameParams, nHeight) == 12, "FrameParams.nHeight");
static_assert(offsetof(FrameParams, nByteSpan) == 16, "FrameParams.nByteSpan");
static_assert(offsetof(FrameParams, nDepth) == 20, "FrameParams.nDepth");
static_assert(offsetof(FrameParams, nReserved1) == 24, "FrameParams.nReserved1");
static_assert(offsetof(FrameParams, nReserved2) == 28, "FrameParams.nReserved2");
static_assert(offsetof(FrameParams, pfFormat) == 32, "FrameParams.pfFormat");
static_assert(offsetof(FrameParams, bFlipped) == 36, "FrameParams.bFlipped");

// Rectangle with inclusive right and bottom.
struct tagRECT {
    int32_t left;
    int32_t top;
    int32_t right;
    int32_t bottom;
};
static_assert(sizeof(tagRECT) == 16, "tagRECT size");
static_assert(offsetof(tagRECT, left) == 0 && offsetof(tagRECT, top) == 4, "tagRECT left/top");
static_assert(offsetof(tagRECT, right) == 8 && offsetof(tagRECT, bottom) == 12, "tagRECT right/bottom");

// The published device-independent bitmap header.
struct tagBITMAPINFOHEADER {
    uint32_t biSize;
    int32_t biWidth;
    int32_t biHeight;     // negative: rows run top-down in memory
    uint16_t biPlanes;
    uint16_t biBitCount;
    uint32_t biCompression;
    uint32_t biSizeImage;
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed;
    uint32_t biClrImportant;
};
static_assert(sizeof(tagBITMAPINFOHEADER) == 40, "tagBITMAPINFOHEADER size");
static_assert(offsetof(tagBITMAPINFOHEADER, biWidth) == 4, "biWidth");
static_assert(offsetof(tagBITMAPINFOHEADER, biHeight) == 8, "biHeight");
static_assert(offsetof(tagBITMAPINFOHEADER, biBitCount) == 14, "biBitCount");

// An opaque reference to a host window, passed through and never looked into.
struct OpaqueWindowPtr;
