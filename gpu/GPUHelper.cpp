#include "GPUHelper.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstring>

namespace {

const double kNearPlane = 2.0;
const double kFarPlane = 12.0;
// Just inside the near plane, so that a quad is never clipped by it.
const float kQuadDepth = static_cast<float>(-kNearPlane) - 0.00001f;
const int kSampleCeiling = 7;

} // namespace

GPUHelper::GPUHelper()
{
    std::memset(m_Description, 0, sizeof m_Description);
}

int GPUHelper::SetParams(IVideoHostGL* host, IGLContext* context)
{
    m_pHost = host;
    m_pContext = context;
    if (context != nullptr) {
        const uint8_t* description = context->GetDescription();
        if (description != nullptr)
            std::memcpy(m_Description, description, sizeof m_Description);
        m_Blender.Initialize(context);
        m_nTextures = 0;
        m_nShaders = 0;
        m_bMultisample = false;
    } else {
        m_Blender.Terminate();
    }
    return 1;
}

void GPUHelper::ConfigProjectionMatrix(float width, float height)
{
    m_dHalfWidth = width / 2.0;
    m_dHalfHeight = height / 2.0;
    m_dOffsetX = 0;
    m_dOffsetY = 0;
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(-m_dHalfWidth, m_dHalfWidth, -m_dHalfHeight, m_dHalfHeight, kNearPlane, kFarPlane);
}

bool GPUHelper::SetRenderTarget(const TextureParams* target, bool multisample, bool a, bool b)
{
    m_bMultisample = target != nullptr && multisample;
    if (m_pHost == nullptr)
        return false;
    TextureParams* texture = const_cast<TextureParams*>(target);
    bool done;
    if (!multisample) {
        done = m_pHost->SetRenderTarget(m_pContext, texture, 0, a, b);
    } else {
        GLint maxSamples = 0;
        glGetIntegerv(GL_MAX_SAMPLES, &maxSamples);
        int samples = FirstSampleCount(maxSamples);
        // Fewer samples on each refusal; the last try is with none.
        for (;;) {
            done = m_pHost->SetRenderTarget(m_pContext, texture, samples, a, b);
            if (done || samples <= 0)
                break;
            samples /= 2;
        }
    }
    if (done) {
        m_nTargetWidth = target != nullptr ? target->nImageWidth : 0;
        m_nTargetHeight = target != nullptr ? target->nImageHeight : 0;
    }
    return done;
}

int GPUHelper::FirstSampleCount(int maxSamples)
{
    while (maxSamples > kSampleCeiling)
        maxSamples /= 2;
    return maxSamples;
}

bool GPUHelper::CreateNamedTexture(TextureParams& texture, const char* name, int width, int height,
                                   PixelFormat format, void* pixels, int options, bool* result)
{
    if (m_pHost == nullptr)
        return false;
    const bool created =
        m_pHost->CreateNamedTexture(m_pContext, texture, name, width, height, format, pixels, options, result);
    m_nTextures += created ? 1 : 0;
    return created;
}

bool GPUHelper::FreeTexture(TextureParams& texture)
{
    const bool freed = texture.pTexture != nullptr && texture.pTexture->Free();
    if (m_pHost != nullptr)
        m_pHost->FreeTexture(&texture, freed);
    if (freed)
        --m_nTextures;
    return freed;
}

bool GPUHelper::CreateShader(ShaderStruct vertex, ShaderStruct fragment, GLShaderProgram& program)
{
    if (m_pContext == nullptr)
        return false;
    IGLShader* shader = m_pContext->CreateShader(vertex, fragment);
    const bool taken = program.Init(m_pHost, m_pContext, shader);
    if (!taken && shader != nullptr)
        shader->Free();   // an unusable shader isn't kept, so it goes back at once
    m_nShaders += taken ? 1 : 0;
    return taken;
}

void GPUHelper::FreeShader(GLShaderProgram& program)
{
    if (m_pCurrentShader == &program)
        m_pCurrentShader = nullptr;
    if (program.Free())
        --m_nShaders;
}

int GPUHelper::PrepareShader(const TextureParams* t0, const TextureParams* t1, const TextureParams* t2)
{
    if (m_pCurrentShader == nullptr || !m_pCurrentShader->IsTracked())
        return 1;
    const TextureParams* textures[] = {t0, t1, t2};
    for (unsigned unit = 0; unit < 3; ++unit)
        if (textures[unit] != nullptr)
            m_pCurrentShader->SetTexInf(unit, *textures[unit], GPUStuff::kWholeImage);
    return 1;
}

GPUStuff::TextureRect GPUHelper::GetPolygonRect(bool flipped, const GPUStuff::TextureRect* rect) const
{
    const GPUStuff::TextureRect& area = rect != nullptr ? *rect : GPUStuff::kWholeImage;
    GPUStuff::TextureRect polygon;
    polygon.left = static_cast<float>(2 * m_dHalfWidth * area.left - m_dHalfWidth);
    polygon.right = static_cast<float>(2 * m_dHalfWidth * area.right - m_dHalfWidth);
    polygon.top = static_cast<float>(2 * m_dHalfHeight * area.top - m_dHalfHeight);
    polygon.bottom = static_cast<float>(2 * m_dHalfHeight * area.bottom - m_dHalfHeight);
    if (flipped)
        std::swap(polygon.top, polygon.bottom);
    return polygon;
}

void GPUHelper::BuildQuad(const TextureParams& texture, bool flipped, GPUStuff::TextureRect* rect)
{
    PrepareShader(&texture, nullptr, nullptr);
    const GPUStuff::TextureRect polygon = GetPolygonRect(flipped, rect);
    glBegin(GL_TRIANGLE_STRIP);
    glTexCoord2f(0.0f, 0.0f);
    glVertex3f(polygon.left, polygon.top, kQuadDepth);
    glTexCoord2f(0.0f, 1.0f);
    glVertex3f(polygon.left, polygon.bottom, kQuadDepth);
    glTexCoord2f(1.0f, 0.0f);
    glVertex3f(polygon.right, polygon.top, kQuadDepth);
    glTexCoord2f(1.0f, 1.0f);
    glVertex3f(polygon.right, polygon.bottom, kQuadDepth);
    glEnd();
}
