#pragma once
#include "EffectParam.h"
#include "FrameParams.h"
#include "HostInfo.h"
#include "RenderInfo.h"
#include "Unknown.h"

// Implemented by the host. Slots the library never calls keep their place all the same.
class IVideoHost : public IUnknown {
public:
    virtual bool GetParamValue(uint32_t index, EffectParam* value, uint32_t type) = 0;
    virtual void Reserved1() = 0;
    // On entry the record names the wanted geometry and format with a null buffer; the host
    // fills it. Returns a handle for ReleaseFrame, null when it can't deliver.
    virtual void* GetFrameAt(RenderInfo* request, FrameParams* frame) = 0;
    virtual void ReleaseFrame(void* handle, FrameParams* frame) = 0;
    virtual void Reserved2() = 0;
    virtual HostInfo GetHostInfo() = 0;
};
