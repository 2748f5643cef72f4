#pragma once
#include <atomic>
#include <cstdint>

#include "../../include/VideoHost.h"
#include "ColourConverter.h"
#include "EffectSettings.h"
#include "FrameSource.h"
#include "RenderCall.h"

namespace Deglare {

// The clip's shape as the effect is told it.
struct ClipShape {
    int width = 0;              // of the pictures the effect sees
    int height = 0;
    int frameCount = 0;
    double frameRate = 25.0;    // nominal frames a second
};

// IVideoHost over a decoded stream: parameter values from the command line, and, with time
// access, any frame of the clip by index from a FrameSource, as 8-bit BGRA. Slots never throw.
class StreamHost : public IVideoHost {
public:
    StreamHost(FrameSource& frames, ColourConverter& converter, const ClipShape& shape,
               const EffectSettings& settings, bool timeAccess, uint32_t instanceId);
    virtual ~StreamHost();

    // The RenderInfo of a render of frame `index`, whose fetches `call` records.
    RenderInfo MakeRenderInfo(int index, RenderCall* call) const;
    const EffectSettings& Settings() const { return m_settings; }
    // Frames delivered and not yet given back.
    int OutstandingFrames() const { return m_outstanding.load(); }

    // IUnknown
    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IVideoHost
    bool GetParamValue(uint32_t index, EffectParam* value, uint32_t type) override;
    void Reserved1() override {}
    void* GetFrameAt(RenderInfo* request, FrameParams* frame) override;
    void ReleaseFrame(void* handle, FrameParams* frame) override;
    void Reserved2() override {}
    HostInfo GetHostInfo() override;

    // Whole frames: both fields of an interlaced picture in one.
    static constexpr int16_t kWholeFrame = 3;

private:
    FrameSource& m_frames;
    ColourConverter& m_converter;
    ClipShape m_shape;
    EffectSettings m_settings;
    bool m_timeAccess;
    uint32_t m_instanceId;
    char m_hostName[16];
    std::atomic<int> m_outstanding{0};
    std::atomic<int32_t> m_references{0};
};

} // namespace Deglare
