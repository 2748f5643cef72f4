#pragma once
#include <cstddef>

#include "TextureParams.h"

// The name of one active uniform as a shader lists it.
struct GLUniformName {
    char szName[68];
};
static_assert(sizeof(GLUniformName) == 68, "GLUniformName size");

// One compiled and linked shader of the host.
class IGLShader {
public:
    virtual ~IGLShader() {}
    // False when compiling or linking failed.
    virtual bool IsUsable() = 0;
    virtual int GetUniformCount() = 0;
    // Fills up to `count` records; the number written.
    virtual int GetUniformNames(GLUniformName* names, int count) = 0;
    virtual void SetFloat2(const char* name, float x, float y) = 0;
    virtual void SetTexture2D(const char* name, const TextureParams& texture) = 0;
    // Makes the shader current for a render target of this size.
    virtual bool Bind(int width, int height) = 0;
    // Deletes the shader and this object; true when the GL objects went.
    virtual bool Free() = 0;
};
