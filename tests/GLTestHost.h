#pragma once
#include <map>
#include <string>
#include <vector>

#include "../include/GLContext.h"
#include "../include/VideoHostGL.h"

// A host's GL side over a real context of Mesa's software renderer, made without a display:
// textures, framebuffer objects as render targets and compiled GLSL programs, with a record of
// what the helpers asked of it.
namespace GLTestHost {

// Makes a compatibility-profile context current on the calling thread for its lifetime.
class Context : public IGLContext {
public:
    Context();
    ~Context() override;
    bool Made() const { return m_made; }

    const uint8_t* GetDescription() override { return m_description; }
    IGLShader* CreateShader(const ShaderStruct& vertex, const ShaderStruct& fragment) override;

private:
    void* m_display = nullptr;
    void* m_context = nullptr;
    bool m_made = false;
    uint8_t m_description[96];
};

class Host : public IVideoHostGL {
public:
    ~Host() override;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override { return ++m_references; }
    ULONG Release() override { return --m_references; }
    void Reserved1() override {}
    void Reserved2() override {}
    void Reserved3() override {}
    void Reserved4() override {}
    void Reserved5() override {}
    void Reserved6() override {}
    bool CreateNamedTexture(IGLContext* context, TextureParams& texture, const char* name, int width, int height,
                            PixelFormat format, void* pixels, int options, bool* result) override;
    void Reserved7() override {}
    void Reserved8() override {}
    void Reserved9() override {}
    void Reserved10() override {}
    bool FreeTexture(TextureParams* texture, bool ownedSuccess) override;
    void Reserved11() override {}
    void Reserved12() override {}
    // Refuses sample counts above RefuseSamplesAbove (all when negative); binds the texture as
    // the target of a framebuffer object, or the default target for none.
    bool SetRenderTarget(IGLContext* context, TextureParams* texture, int samples, bool a, bool b) override;
    void Reserved13() override {}
    void Reserved14() override {}
    bool GetEffectGLSupport(IVideoEffect*, void*) override { return false; }
    void Reserved15() override {}
    void Reserved16() override {}
    void Reserved17() override {}
    int GetGLInfoText(int, char*, int) override { return 0; }

    int RefuseSamplesAbove = 64;
    std::vector<int> SampleRequests;
    std::vector<bool> FreeReports;
    int References() const { return m_references; }

private:
    int m_references = 0;
    unsigned m_framebuffer = 0;
};

// Reads the current render target's pixels, bottom row first as GL keeps them, as 0xAARRGGBB.
std::vector<uint32_t> ReadPixels(int width, int height);

} // namespace GLTestHost
