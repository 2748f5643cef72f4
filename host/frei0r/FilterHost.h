#pragma once
#include <atomic>
#include <cstdint>

#include "../../include/VideoHost.h"

namespace Frei0r {

// The effect's host inside a frei0r filter: it serves the three parameter values as control
// positions and has no time access, so the effect remembers what came before.
class FilterHost : public IVideoHost {
public:
    explicit FilterHost(uint32_t instanceId);
    virtual ~FilterHost() {}

    float m_fSensitivity = 0;   // positions 0..1
    float m_fMaxFrames = 0;
    bool m_bTestMode = false;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override { return static_cast<ULONG>(++m_references); }
    ULONG Release() override { return static_cast<ULONG>(--m_references); }
    bool GetParamValue(uint32_t index, EffectParam* value, uint32_t type) override;
    void Reserved1() override {}
    void* GetFrameAt(RenderInfo*, FrameParams*) override { return nullptr; }
    void ReleaseFrame(void*, FrameParams*) override {}
    void Reserved2() override {}
    HostInfo GetHostInfo() override;

private:
    uint32_t m_instanceId;
    char m_hostName[8] = "frei0r";
    std::atomic<int32_t> m_references{0};
};

} // namespace Frei0r
