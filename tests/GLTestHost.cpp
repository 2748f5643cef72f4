#include "GLTestHost.h"

#define GL_GLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstring>

#include "../include/InterfaceIds.h"

namespace GLTestHost {

namespace {

class Texture : public IGLTexture {
public:
    explicit Texture(GLuint name) : m_name(name) {}
    bool Free() override
    {
        if (m_name == 0)
            return false;
        glDeleteTextures(1, &m_name);
        m_name = 0;
        return true;
    }
    uint32_t Name() override { return m_name; }

private:
    GLuint m_name;
};

GLuint Compile(GLenum stage, const ShaderStruct& source)
{
    const GLuint shader = glCreateShader(stage);
    const GLint length = source.nLength;
    glShaderSource(shader, 1, &source.pSource, &length);
    glCompileShader(shader);
    return shader;
}

class Shader : public IGLShader {
public:
    Shader(const ShaderStruct& vertex, const ShaderStruct& fragment) : m_program(glCreateProgram())
    {
        const GLuint stages[] = {Compile(GL_VERTEX_SHADER, vertex), Compile(GL_FRAGMENT_SHADER, fragment)};
        for (GLuint stage : stages)
            glAttachShader(m_program, stage);
        glLinkProgram(m_program);
        for (GLuint stage : stages)
            glDeleteShader(stage);
        GLint linked = 0;
        glGetProgramiv(m_program, GL_LINK_STATUS, &linked);
        m_usable = linked == GL_TRUE;
    }
    bool IsUsable() override { return m_usable; }
    int GetUniformCount() override
    {
        GLint count = 0;
        glGetProgramiv(m_program, GL_ACTIVE_UNIFORMS, &count);
        return count;
    }
    int GetUniformNames(GLUniformName* names, int count) override
    {
        for (int index = 0; index < count; ++index) {
            GLint size;
            GLenum type;
            glGetActiveUniform(m_program, index, sizeof names[index].szName, nullptr, &size, &type,
                               names[index].szName);
        }
        return count;
    }
    void SetFloat2(const char* name, float x, float y) override
    {
        glUseProgram(m_program);
        glUniform2f(glGetUniformLocation(m_program, name), x, y);
    }
    void SetTexture2D(const char* name, const TextureParams& texture) override
    {
        const GLint unit = static_cast<GLint>(m_units.emplace(name, m_units.size()).first->second);
        glUseProgram(m_program);
        glActiveTexture(GL_TEXTURE0 + unit);
        glBindTexture(GL_TEXTURE_2D, texture.pTexture != nullptr ? texture.pTexture->Name() : 0);
        glUniform1i(glGetUniformLocation(m_program, name), unit);
        glActiveTexture(GL_TEXTURE0);
    }
    bool Bind(int width, int height) override
    {
        glUseProgram(m_program);
        glViewport(0, 0, width, height);
        return true;
    }
    bool Free() override
    {
        glUseProgram(0);
        glDeleteProgram(m_program);
        delete this;
        return true;
    }

private:
    GLuint m_program;
    bool m_usable = false;
    std::map<std::string, size_t> m_units;
};

} // namespace

Context::Context()
{
    for (size_t index = 0; index < sizeof m_description; ++index)
        m_description[index] = static_cast<uint8_t>(index * 7 + 1);
    const auto platformDisplay =
        reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(eglGetProcAddress("eglGetPlatformDisplayEXT"));
    if (platformDisplay == nullptr)
        return;
    EGLDisplay display = platformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
        return;
    m_display = display;
    eglBindAPI(EGL_OPENGL_API);
    const EGLint attributes[] = {EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_COMPATIBILITY_PROFILE_BIT,
                                 EGL_NONE};
    EGLContext context = eglCreateContext(display, EGL_NO_CONFIG_KHR, EGL_NO_CONTEXT, attributes);
    if (context == EGL_NO_CONTEXT)
        return;
    m_context = context;
    m_made = eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, context) == EGL_TRUE;
}

Context::~Context()
{
    if (m_display == nullptr)
        return;
    eglMakeCurrent(m_display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    if (m_context != nullptr)
        eglDestroyContext(m_display, m_context);
    // The display stays initialised for the process: terminating it unloads Mesa's driver, and
    // the leak check at exit could then no longer tell the driver's own allocations apart.
    eglReleaseThread();
}

IGLShader* Context::CreateShader(const ShaderStruct& vertex, const ShaderStruct& fragment)
{
    return new Shader(vertex, fragment);
}

Host::~Host()
{
    if (m_framebuffer != 0)
        glDeleteFramebuffers(1, &m_framebuffer);
}

HRESULT Host::QueryInterface(const _GUID& iid, void** ppv)
{
    *ppv = IsEqualGUID(iid, IID_VideoHostGL) ? this : nullptr;
    if (*ppv == nullptr)
        return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

bool Host::CreateNamedTexture(IGLContext*, TextureParams& texture, const char*, int width, int height, PixelFormat,
                              void* pixels, int, bool* result)
{
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_BGRA, GL_UNSIGNED_BYTE, pixels);
    glBindTexture(GL_TEXTURE_2D, 0);
    std::memset(&texture, 0, sizeof texture);
    texture.pTexture = new Texture(name);
    texture.nAllocatedWidth = texture.nImageWidth = width;
    texture.nAllocatedHeight = texture.nImageHeight = height;
    if (result != nullptr)
        *result = true;
    return true;
}

bool Host::FreeTexture(TextureParams* texture, bool ownedSuccess)
{
    FreeReports.push_back(ownedSuccess);
    delete texture->pTexture;
    texture->pTexture = nullptr;
    return true;
}

bool Host::SetRenderTarget(IGLContext*, TextureParams* texture, int samples, bool, bool)
{
    SampleRequests.push_back(samples);
    if (RefuseSamplesAbove < 0 || samples > RefuseSamplesAbove)
        return false;
    if (texture == nullptr) {
        glBindFramebuffer(GL_FRAMEBUFFER, 0);
        return true;
    }
    if (m_framebuffer == 0)
        glGenFramebuffers(1, &m_framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, m_framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture->pTexture->Name(), 0);
    glViewport(0, 0, texture->nImageWidth, texture->nImageHeight);
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

std::vector<uint32_t> ReadPixels(int width, int height)
{
    std::vector<uint32_t> pixels(static_cast<size_t>(width) * height);
    glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV, pixels.data());
    return pixels;
}

} // namespace GLTestHost
