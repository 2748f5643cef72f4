#include "StreamHost.h"

#include <cmath>
#include <cstring>

#include "../../include/InterfaceIds.h"

namespace Deglare {

namespace {
const uint32_t kParamSensitivity = 0;
const uint32_t kParamMaxFrames = 1;
const uint32_t kParamTestMode = 2;

// What travels through the opaque handle of a delivered frame.
struct Delivery {
    FramePtr frame;
};
} // namespace

StreamHost::StreamHost(FrameSource& frames, ColourConverter& converter, const ClipShape& shape,
                       const EffectSettings& settings, bool timeAccess, uint32_t instanceId)
    : m_frames(frames), m_converter(converter), m_shape(shape), m_settings(settings), m_timeAccess(timeAccess),
      m_instanceId(instanceId)
{
    std::strcpy(m_hostName, "deglare");
}

StreamHost::~StreamHost() = default;

RenderInfo StreamHost::MakeRenderInfo(int index, RenderCall* call) const
{
    RenderInfo info = {};
    info.nSize = sizeof(RenderInfo);
    info.dwFlags = kRenderInfoFrameIndexValid;
    info.qwPassThrough = reinterpret_cast<uintptr_t>(call);
    // The effect asks for frame i at i / rate; the render's own time follows the same rule so
    // that both ways of naming a frame agree, also where the stream's frame rate varies.
    info.dTime = index / m_shape.frameRate;
    info.dClipLength = m_shape.frameCount / m_shape.frameRate;
    info.dFrameRate = m_shape.frameRate;
    info.dFactor1 = 1.0;
    info.nFrameIndex = index;
    info.nField = kWholeFrame;
    info.dFactor2 = 1.0;
    return info;
}

HRESULT StreamHost::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    if (!IsEqualGUID(iid, IID_IUnknown)) {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    *ppv = static_cast<IVideoHost*>(this);
    AddRef();
    return S_OK;
}

// The host outlives every render; the count only keeps the protocol.
ULONG StreamHost::AddRef()
{
    return static_cast<ULONG>(++m_references);
}

ULONG StreamHost::Release()
{
    const int32_t after = --m_references;
    return static_cast<ULONG>(after < 0 ? 0 : after);
}

bool StreamHost::GetParamValue(uint32_t index, EffectParam* value, uint32_t)
{
    if (value == nullptr)
        return false;
    std::memset(value->value.bytes, 0, sizeof(value->value.bytes));
    switch (index) {
    case kParamSensitivity:
        value->value.fValue = m_settings.sensitivityPosition;
        return true;
    case kParamMaxFrames:
        value->value.fValue = m_settings.maxFramesPosition;
        return true;
    case kParamTestMode:
        value->value.bValue = m_settings.testMode;
        return true;
    default:
        return false;
    }
}

void* StreamHost::GetFrameAt(RenderInfo* request, FrameParams* frame)
{
    if (!m_timeAccess || request == nullptr || frame == nullptr)
        return nullptr;
    // Only the effect's own format is served; it asks in the format of the source it was given.
    if (frame->pfFormat != pfVideoSample)
        return nullptr;
    try {
        const int index = (request->dwFlags & kRenderInfoFrameIndexValid)
                              ? request->nFrameIndex
                              : static_cast<int>(std::floor(request->dTime * request->dFrameRate + 0.5));
        if (index < 0 || index >= m_shape.frameCount)
            return nullptr;
        FramePtr found = m_frames.Frame(index);
        if (!found)
            return nullptr;
        const Picture& picture = found->Bgra(m_converter, m_shape.width, m_shape.height);
        if (request->qwPassThrough != 0)
            reinterpret_cast<RenderCall*>(static_cast<uintptr_t>(request->qwPassThrough))->Fetched(found);
        *frame = picture.Params();
        ++m_outstanding;
        return new Delivery{found};
    } catch (...) {
        // A frame that can't be had is one the effect goes on without.
        return nullptr;
    }
}

void StreamHost::ReleaseFrame(void* handle, FrameParams*)
{
    if (handle == nullptr)
        return;
    delete static_cast<Delivery*>(handle);
    --m_outstanding;
}

HostInfo StreamHost::GetHostInfo()
{
    HostInfo info = {};
    info.m_HostName = m_hostName;
    info.m_HelpFile = nullptr;
    info.m_dwCaps = m_timeAccess ? kHostCapsTimeAccess : 0;
    info.m_InstanceID = m_instanceId;
    return info;
}

} // namespace Deglare
