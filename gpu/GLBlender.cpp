#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>

#include "GPUHelper.h"

uint32_t GPUHelper::GLBlender::GLEquation(int equation)
{
    switch (equation) {
    case kFuncSubtract: return GL_FUNC_SUBTRACT;
    case kMin: return GL_MIN;
    case kMax: return GL_MAX;
    default: return GL_FUNC_ADD;
    }
}

uint32_t GPUHelper::GLBlender::GLFactor(int factor)
{
    static const uint32_t factors[] = {
        GL_ZERO, GL_ONE, GL_SRC_COLOR, GL_ONE_MINUS_SRC_COLOR, GL_DST_COLOR, GL_ONE_MINUS_DST_COLOR,
        GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_DST_ALPHA, GL_ONE_MINUS_DST_ALPHA, GL_CONSTANT_COLOR,
        GL_ONE_MINUS_CONSTANT_COLOR, GL_CONSTANT_ALPHA, GL_ONE_MINUS_CONSTANT_ALPHA};
    return factor > 0 && factor < static_cast<int>(sizeof factors / sizeof factors[0]) ? factors[factor] : GL_ZERO;
}

void GPUHelper::GLBlender::Initialize(IGLContext* context)
{
    m_pContext = context;
    if (context == nullptr)
        return;
    glGetFloatv(GL_BLEND_COLOR, m_BlendColor);
    glGetIntegerv(GL_BLEND_EQUATION_RGB, &m_nEquationRGB);
    glGetIntegerv(GL_BLEND_EQUATION_ALPHA, &m_nEquationAlpha);
    glGetIntegerv(GL_BLEND_SRC_RGB, &m_nSrcRGB);
    glGetIntegerv(GL_BLEND_SRC_ALPHA, &m_nSrcAlpha);
    glGetIntegerv(GL_BLEND_DST_RGB, &m_nDstRGB);
    glGetIntegerv(GL_BLEND_DST_ALPHA, &m_nDstAlpha);
}

void GPUHelper::GLBlender::Enable(BlendEquation rgb, BlendEquation alpha)
{
    glEnable(GL_BLEND);
    glBlendEquationSeparate(GLEquation(rgb), GLEquation(alpha));
}

void GPUHelper::GLBlender::BlendFuncSeparate(BlendFactor srcRGB, BlendFactor dstRGB, BlendFactor srcAlpha,
                                             BlendFactor dstAlpha)
{
    glBlendFuncSeparate(GLFactor(srcRGB), GLFactor(dstRGB), GLFactor(srcAlpha), GLFactor(dstAlpha));
}

void GPUHelper::GLBlender::Terminate()
{
    // Without a context there is nothing saved and no GL to restore it in.
    if (m_pContext == nullptr)
        return;
    glBlendColor(m_BlendColor[0], m_BlendColor[1], m_BlendColor[2], m_BlendColor[3]);
    glBlendEquationSeparate(static_cast<GLenum>(m_nEquationRGB), static_cast<GLenum>(m_nEquationAlpha));
    glBlendFuncSeparate(static_cast<GLenum>(m_nSrcRGB), static_cast<GLenum>(m_nDstRGB),
                        static_cast<GLenum>(m_nSrcAlpha), static_cast<GLenum>(m_nDstAlpha));
    glDisable(GL_BLEND);
    m_pContext = nullptr;
}
