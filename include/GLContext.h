#pragma once
#include <cstddef>
#include <cstdint>

#include "GLShader.h"

// One stage of a shader as source text.
struct ShaderStruct {
    const char* pSource;
    int32_t nLength;   // -1: up to the terminator
    int32_t nStage;    // 0 vertex, 1 fragment
};
static_assert(sizeof(ShaderStruct) == 16, "ShaderStruct size");
static_assert(offsetof(ShaderStruct, pSource) == 0, "ShaderStruct.pSource");
static_assert(offsetof(ShaderStruct, nLength) == 8, "ShaderStruct.nLength");
static_assert(offsetof(ShaderStruct, nStage) == 12, "ShaderStruct.nStage");

// How much of a context's description the helpers keep.
const size_t kGLContextDescriptionSize = 87;

// A GL context of the host, current on the thread that renders.
class IGLContext {
public:
    virtual ~IGLContext() {}
    // At least kGLContextDescriptionSize bytes that describe the context.
    virtual const uint8_t* GetDescription() = 0;
    // Compiles and links the two stages; null when the host can't make a shader at all.
    virtual IGLShader* CreateShader(const ShaderStruct& vertex, const ShaderStruct& fragment) = 0;
};
