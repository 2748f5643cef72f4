#include "GLShaderProgram.h"

#include <cstring>

namespace {

const char* const kTextureNames[] = {"Texture0", "Texture1", "Texture2", "Texture3", "Texture4",
                                     "Texture5", "Texture6", "Texture7", "Texture8", "Texture9"};
const float kNoRangeEdge = 1.5f;   // a size above this has two distinct texel centres

// The quantities of one axis of a texture region: the first texel's centre, the distance
// between the first and the last centre, and the texel count.
struct Axis {
    float allocated, l, w, S, renderTarget;
};

Axis MakeAxis(int allocated, int image, int offset, int renderTarget, float r0, float r1)
{
    Axis axis;
    axis.allocated = static_cast<float>(allocated);
    axis.l = static_cast<float>(offset) + static_cast<float>(image) * r0 + 0.5f;
    axis.w = static_cast<float>(image) * (r1 - r0) - 1.0f;
    axis.S = axis.w + 1.0f;
    axis.renderTarget = static_cast<float>(renderTarget);
    return axis;
}

float Scale(const Axis& a) { return a.w / a.allocated; }
float Shift(const Axis& a) { return a.l / a.allocated; }
float RT2TEXScale(const Axis& a) { return a.renderTarget > kNoRangeEdge ? a.renderTarget / (a.renderTarget - 1.0f) * a.w / a.S : 0.0f; }
float RT2TEXShift(const Axis& a) { return a.renderTarget > kNoRangeEdge ? (0.5f / a.S) * (1.0f - a.w / (a.renderTarget - 1.0f)) : 0.5f; }
float RT2TEXiScale(const Axis& a) { return a.renderTarget > kNoRangeEdge ? a.renderTarget / (a.renderTarget - 1.0f) * a.w : 0.0f; }
float RT2TEXiShift(const Axis& a) { return a.renderTarget > kNoRangeEdge ? -0.5f * a.w / (a.renderTarget - 1.0f) : 0.0f; }
float TEX2NORMScale(const Axis& a) { return a.allocated > kNoRangeEdge ? a.S / a.w : 0.0f; }
float TEX2NORMShift(const Axis& a) { return a.allocated > kNoRangeEdge ? -0.5f / a.w : 0.5f; }
float TEXi2NORMScale(const Axis& a) { return a.allocated > kNoRangeEdge ? 1.0f / a.w : 0.0f; }
float TEXi2NORMShift(const Axis& a) { return a.allocated > kNoRangeEdge ? 0.0f : 0.5f; }

} // namespace

GLShaderProgram::GLShaderProgram(bool trackUniforms) : m_bTrackUniforms(trackUniforms) {}

GLShaderProgram::~GLShaderProgram()
{
    Free();
}

bool GLShaderProgram::Init(IVideoHostGL* host, IGLContext* context, IGLShader* shader)
{
    Free();
    if (shader == nullptr || !shader->IsUsable())
        return false;
    m_pHost = host;
    m_pContext = context;
    m_pShader = shader;
    if (m_pHost != nullptr)
        m_pHost->AddRef();
    if (m_bTrackUniforms) {
        const int count = shader->GetUniformCount();
        if (count > 0) {
            std::vector<GLUniformName> names(static_cast<size_t>(count));
            const int listed = shader->GetUniformNames(names.data(), count);
            for (int index = 0; index < listed && index < count; ++index)
                m_UniformNames.emplace_back(names[index].szName, strnlen(names[index].szName, sizeof names[index].szName));
        }
        m_UniformSet.assign(m_UniformNames.size(), false);
    }
    return true;
}

bool GLShaderProgram::Free()
{
    bool freed = false;
    if (m_pShader != nullptr)
        freed = m_pShader->Free();
    if (m_pHost != nullptr)
        m_pHost->Release();
    m_pShader = nullptr;
    m_pHost = nullptr;
    m_pContext = nullptr;
    m_UniformNames.clear();
    m_UniformSet.clear();
    return freed;
}

int GLShaderProgram::FindUniform(const char* name) const
{
    if (name == nullptr)
        return -1;
    for (size_t index = 0; index < m_UniformNames.size(); ++index)
        if (m_UniformNames[index] == name)
            return static_cast<int>(index);
    return -1;
}

bool GLShaderProgram::CheckUniform(const char* name)
{
    if (!m_bTrackUniforms)
        return true;
    const int index = FindUniform(name);
    if (index < 0)
        return false;
    m_UniformSet[static_cast<size_t>(index)] = true;
    return true;
}

void GLShaderProgram::SetFloat2(const char* name, float x, float y)
{
    if (m_pShader != nullptr && CheckUniform(name))
        m_pShader->SetFloat2(name, x, y);
}

void GLShaderProgram::SetTex2D(const char* name, const TextureParams& texture)
{
    if (m_pShader != nullptr && CheckUniform(name))
        m_pShader->SetTexture2D(name, texture);
}

bool GLShaderProgram::Bind(int width, int height)
{
    if (m_pHost == nullptr || m_pShader == nullptr)
        return false;
    m_pShader->Bind(width, height);
    if (m_bTrackUniforms) {
        std::memset(m_UnitDone, 0, sizeof m_UnitDone);
        m_UniformSet.assign(m_UniformSet.size(), false);
    }
    m_nWidth = width > 1 ? width : 1;
    m_nHeight = height > 1 ? height : 1;
    if (m_bTrackUniforms) {
        const float x = static_cast<float>(m_nWidth), y = static_cast<float>(m_nHeight);
        SetFloat2("vRTSize", x, y);
        SetFloat2("vRT2NORM_Scale", m_nWidth == 1 ? 0.0f : x / (x - 1.0f), m_nHeight == 1 ? 0.0f : y / (y - 1.0f));
        SetFloat2("vRT2NORM_Shift", m_nWidth == 1 ? 0.5f : -0.5f / (x - 1.0f),
                  m_nHeight == 1 ? 0.5f : -0.5f / (y - 1.0f));
    }
    return true;
}

void GLShaderProgram::SetTexInf(unsigned int unit, const TextureParams& texture, GPUStuff::TextureRect rect)
{
    if (m_pShader == nullptr || !m_bTrackUniforms || unit >= kServedUnits || m_UnitDone[unit])
        return;
    m_UnitDone[unit] = true;
    const Axis x = MakeAxis(texture.nAllocatedWidth, texture.nImageWidth, texture.nLeft, m_nWidth, rect.left, rect.right);
    const Axis y = MakeAxis(texture.nAllocatedHeight, texture.nImageHeight, texture.nTop, m_nHeight, rect.top, rect.bottom);
    const std::string prefix = kTextureNames[unit];
    const auto set = [&](const char* suffix, float (*value)(const Axis&)) {
        SetFloat2((prefix + suffix).c_str(), value(x), value(y));
    };
    SetTex2D((prefix + "_texture").c_str(), texture);
    set(".vScale", Scale);
    set(".vShift", Shift);
    set(".vScaleTEXi", [](const Axis& a) { return Scale(a) * TEXi2NORMScale(a); });
    set(".vShiftTEXi", [](const Axis& a) { return Shift(a) + Scale(a) * TEXi2NORMShift(a); });
    set(".vRT2TEX_Scale", RT2TEXScale);
    set(".vRT2TEX_Shift", RT2TEXShift);
    set(".vRT2TEXi_Scale", RT2TEXiScale);
    set(".vRT2TEXi_Shift", RT2TEXiShift);
    set(".vTEX2NORM_Scale", TEX2NORMScale);
    set(".vTEX2NORM_Shift", TEX2NORMShift);
    set(".vTEX2TEXi_Scale", [](const Axis& a) { return a.S; });
    set(".vTEX2TEXi_Shift", [](const Axis&) { return -0.5f; });
    set(".vTEXi2NORM_Scale", TEXi2NORMScale);
    set(".vTEXi2NORM_Shift", TEXi2NORMShift);
    set(".vNORM2TEXi_Scale", [](const Axis& a) { return a.w; });
    set(".texelSize", [](const Axis& a) { return 1.0f / a.w; });
    set(".roiLeftTop", Shift);
    set(".roiWH", Scale);
}
