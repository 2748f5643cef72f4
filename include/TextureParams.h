#pragma once
#include <cstddef>
#include <cstdint>

// A GL texture object of the host: it knows how to free itself.
class IGLTexture {
public:
    virtual ~IGLTexture() {}
    // Deletes the GL texture; true when it did.
    virtual bool Free() = 0;
    // The GL name of the texture, for binding.
    virtual uint32_t Name() = 0;
};

// One GL texture as host and effect describe it: the texture's size in texels and the image's
// place inside it.
struct TextureParams {
    IGLTexture* pTexture;
    uint32_t dwReserved;
    int32_t nAllocatedWidth;
    int32_t nAllocatedHeight;
    int32_t nImageWidth;
    int32_t nImageHeight;
    int32_t nLeft;
    int32_t nTop;
};
static_assert(sizeof(TextureParams) == 40, "TextureParams size");
static_assert(offsetof(TextureParams, pTexture) == 0, "TextureParams.pTexture");
static_assert(offsetof(TextureParams, dwReserved) == 8, "TextureParams.dwReserved");
static_assert(offsetof(TextureParams, nAllocatedWidth) == 12, "TextureParams.nAllocatedWidth");
static_assert(offsetof(TextureParams, nAllocatedHeight) == 16, "TextureParams.nAllocatedHeight");
static_assert(offsetof(TextureParams, nImageWidth) == 20, "TextureParams.nImageWidth");
static_assert(offsetof(TextureParams, nImageHeight) == 24, "TextureParams.nImageHeight");
static_assert(offsetof(TextureParams, nLeft) == 28, "TextureParams.nLeft");
static_assert(offsetof(TextureParams, nTop) == 32, "TextureParams.nTop");
