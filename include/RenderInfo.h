#pragma once
#include <cstddef>
#include <cstdint>

// What the host says about the frame to render, and the form of a request for another frame.
struct RenderInfo {
    uint32_t nSize;          // 64 in every request the library forms
    uint32_t dwFlags;        // kRenderInfoFrameIndexValid: nFrameIndex is valid
    uint64_t qwPassThrough;  // copied unchanged into requests
    double dTime;            // seconds
    double dClipLength;      // seconds
    double dFrameRate;       // frames a second
    double dFactor1;         // 1.0 in requests
    int32_t nFrameIndex;
    int16_t nField;          // 1, 2 or 3
    int16_t nPadding;
    double dFactor2;         // 1.0 in requests
};
static_assert(sizeof(RenderInfo) == 64, "RenderInfo size");
static_assert(offsetof(RenderInfo, nSize) == 0, "RenderInfo.nSize");
static_assert(offsetof(RenderInfo, dwFlags) == 4, "RenderInfo.dwFlags");
static_assert(offsetof(RenderInfo, qwPassThrough) == 8, "RenderInfo.qwPassThrough");
static_assert(offsetof(RenderInfo, dTime) == 16, "RenderInfo.dTime");
static_assert(offsetof(RenderInfo, dClipLength) == 24, "RenderInfo.dClipLength");
static_assert(offsetof(RenderInfo, dFrameRate) == 32, "RenderInfo.dFrameRate");
static_assert(offsetof(RenderInfo, dFactor1) == 40, "RenderInfo.dFactor1");
static_assert(offsetof(RenderInfo, nFrameIndex) == 48, "RenderInfo.nFrameIndex");
static_assert(offsetof(RenderInfo, nField) == 52, "RenderInfo.nField");
static_assert(offsetof(RenderInfo, dFactor2) == 56, "RenderInfo.dFactor2");

const uint32_t kRenderInfoFrameIndexValid = 0x10;
