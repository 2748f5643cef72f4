#pragma once
#include <cstdint>

#include "../include/GLContext.h"
#include "../include/PixelFormat.h"
#include "../include/VideoHostGL.h"
#include "GLShaderProgram.h"
#include "TextureRect.h"

// Wraps one GL context of the host for a GL-capable effect: projection, render target,
// textures and shaders it counts, and textured quads. It belongs to the thread on which the
// host made the context current.
class GPUHelper {
public:
    enum BlendEquation { kFuncAdd = 0, kFuncSubtract = 1, kMin = 2, kMax = 3 };
    enum BlendFactor {
        kZero = 0, kOne, kSrcColor, kOneMinusSrcColor, kDstColor, kOneMinusDstColor, kSrcAlpha, kOneMinusSrcAlpha,
        kDstAlpha, kOneMinusDstAlpha, kConstantColor, kOneMinusConstantColor, kConstantAlpha, kOneMinusConstantAlpha
    };

    // Saves the context's blend state so that an effect's blending can be undone.
    class GLBlender {
    public:
        void Initialize(IGLContext* context);
        void Enable(BlendEquation rgb, BlendEquation alpha);
        void BlendFuncSeparate(BlendFactor srcRGB, BlendFactor dstRGB, BlendFactor srcAlpha, BlendFactor dstAlpha);
        void Terminate();

        static uint32_t GLEquation(int equation);
        static uint32_t GLFactor(int factor);

    private:
        IGLContext* m_pContext = nullptr;
        float m_BlendColor[4] = {};
        int32_t m_nEquationRGB = 0, m_nEquationAlpha = 0;
        int32_t m_nSrcRGB = 0, m_nSrcAlpha = 0, m_nDstRGB = 0, m_nDstAlpha = 0;
    };

    GPUHelper();

    int SetParams(IVideoHostGL* host, IGLContext* context);
    void ConfigProjectionMatrix(float width, float height);
    bool SetRenderTarget(const TextureParams* target, bool multisample, bool a, bool b);
    // The sample count of the first multisampled try: the context's most, halved while above 7.
    static int FirstSampleCount(int maxSamples);
    bool CreateNamedTexture(TextureParams& texture, const char* name, int width, int height, PixelFormat format,
                            void* pixels, int options, bool* result);
    bool FreeTexture(TextureParams& texture);
    bool CreateShader(ShaderStruct vertex, ShaderStruct fragment, GLShaderProgram& program);
    void FreeShader(GLShaderProgram& program);
    void SetCurrentShader(GLShaderProgram* program) { m_pCurrentShader = program; }
    int PrepareShader(const TextureParams* t0, const TextureParams* t1, const TextureParams* t2);
    // Where a rectangle of the image lies in the projection's coordinates.
    GPUStuff::TextureRect GetPolygonRect(bool flipped, const GPUStuff::TextureRect* rect) const;
    void BuildQuad(const TextureParams& texture, bool flipped, GPUStuff::TextureRect* rect);

    GLBlender& Blender() { return m_Blender; }
    int LiveTextures() const { return m_nTextures; }
    int LiveShaders() const { return m_nShaders; }
    int RenderTargetWidth() const { return m_nTargetWidth; }
    int RenderTargetHeight() const { return m_nTargetHeight; }
    bool IsMultisampled() const { return m_bMultisample; }
    const uint8_t* ContextDescription() const { return m_Description; }

private:
    uint8_t m_Description[kGLContextDescriptionSize];
    GLBlender m_Blender;
    bool m_bMultisample = false;
    IGLContext* m_pContext = nullptr;
    IVideoHostGL* m_pHost = nullptr;
    double m_dHalfWidth = 0, m_dHalfHeight = 0, m_dOffsetX = 0, m_dOffsetY = 0;
    GLShaderProgram* m_pCurrentShader = nullptr;
    int m_nTargetWidth = 0, m_nTargetHeight = 0;
    int m_nTextures = 0, m_nShaders = 0;
};
