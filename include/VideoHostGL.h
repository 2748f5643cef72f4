#pragma once
#include "PixelFormat.h"
#include "Unknown.h"

class IGLContext;
class IVideoEffect;
struct TextureParams;

// GL services of the host, asked for with IID_VideoHostGL.
class IVideoHostGL : public IUnknown {
public:
    virtual void Reserved1() = 0;
    virtual void Reserved2() = 0;
    virtual void Reserved3() = 0;
    virtual void Reserved4() = 0;
    virtual void Reserved5() = 0;
    virtual void Reserved6() = 0;
    virtual bool CreateNamedTexture(IGLContext* context, TextureParams& texture, const char* name, int width,
                                    int height, PixelFormat format, void* pixels, int options, bool* result) = 0;
    virtual void Reserved7() = 0;
    virtual void Reserved8() = 0;
    virtual void Reserved9() = 0;
    virtual void Reserved10() = 0;
    virtual bool FreeTexture(TextureParams* texture, bool ownedSuccess) = 0;
    virtual void Reserved11() = 0;
    virtual void Reserved12() = 0;
    virtual bool SetRenderTarget(IGLContext* context, TextureParams* texture, int samples, bool a, bool b) = 0;
    virtual void Reserved13() = 0;
    virtual void Reserved14() = 0;
    virtual bool GetEffectGLSupport(IVideoEffect* effect, void* support) = 0;
    virtual void Reserved15() = 0;
    virtual void Reserved16() = 0;
    virtual void Reserved17() = 0;
    virtual int GetGLInfoText(int selector, char* buffer, int size) = 0;
};
