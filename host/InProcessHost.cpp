#include "InProcessHost.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sstream>

#include "../include/InterfaceIds.h"

namespace TestHost {

namespace {
const int kParamCount = 3;
const size_t kPictureAlignment = 32;

EffectParam FloatParam(float position)
{
    EffectParam param = {};
    param.value.fValue = position;
    param.dwType = eptFloat;
    return param;
}
} // namespace

InProcessHost::InProcessHost(Clip& clip) : InProcessHost(clip, Options()) {}

InProcessHost::InProcessHost(Clip& clip, const Options& options) : m_clip(clip), m_options(options), m_params()
{
    std::strcpy(m_hostName, "In-process host");
    m_params[0] = FloatParam(0.7f);
    m_params[1] = FloatParam(0.2f);
    m_params[2].dwType = eptBool;
}

InProcessHost::~InProcessHost()
{
    for (auto& delivery : m_deliveries)
        delete delivery.second;
    for (void* picture : m_pictures)
        std::free(picture);
}

void InProcessHost::SetSensitivity(float position) { m_params[0] = FloatParam(position); }
void InProcessHost::SetMaxFrames(float position) { m_params[1] = FloatParam(position); }

void InProcessHost::SetTestMode(bool on)
{
    m_params[2] = EffectParam();
    m_params[2].value.bValue = on;
    m_params[2].dwType = eptBool;
}

void InProcessHost::SetParam(unsigned int index, const EffectParam& value)
{
    if (index < kParamCount)
        m_params[index] = value;
}

bool InProcessHost::ApplyPreset(IVideoEffect* effect, unsigned int preset)
{
    for (unsigned int param = 0; param < kParamCount; ++param) {
        EffectParam value = {};
        if (!effect->EnumPresetData(preset, param, &value))
            return false;
        value.dwType = param == 2 ? eptBool : eptFloat;
        m_params[param] = value;
    }
    return true;
}

void InProcessHost::SetUndeliverable(int index, bool undeliverable)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (undeliverable)
        m_undeliverable.insert(index);
    else
        m_undeliverable.erase(index);
}

RenderInfo InProcessHost::MakeRenderInfo(int index, int16_t field) const
{
    RenderInfo info = {};
    info.nSize = sizeof(RenderInfo);
    info.dwFlags = kRenderInfoFrameIndexValid;
    info.dFrameRate = m_clip.FrameRate();
    info.dTime = index / m_clip.FrameRate();
    info.dClipLength = m_clip.FrameCount() / m_clip.FrameRate();
    info.dFactor1 = 1.0;
    info.dFactor2 = 1.0;
    info.nFrameIndex = index;
    info.nField = field;
    return info;
}

bool InProcessHost::RenderFrame(IVideoEffect* effect, int index, FrameParams* destination, int16_t field)
{
    FrameParams source = m_clip.Params(index);
    RenderInfo info = MakeRenderInfo(index, field);
    return effect->Render(this, &source, nullptr, destination, &info);
}

std::vector<int> InProcessHost::FetchedIndices() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_fetched;
}

std::vector<InProcessHost::FrameRequest> InProcessHost::FrameRequests() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_requests;
}

size_t InProcessHost::FetchCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_fetched.size();
}

size_t InProcessHost::ReleaseCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_released;
}

size_t InProcessHost::ParamReads() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_paramReads;
}

size_t InProcessHost::AllocationCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_allocations;
}

std::vector<InProcessHost::PictureRequest> InProcessHost::PictureRequests() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_pictureRequests;
}

size_t InProcessHost::FreeCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_frees;
}

void InProcessHost::ClearRecord()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_fetched.clear();
    m_requests.clear();
    m_released = 0;
    m_paramReads = 0;
    m_allocations = 0;
    m_pictureRequests.clear();
    m_frees = 0;
}

std::string InProcessHost::Leaks() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::ostringstream out;
    for (const auto& delivery : m_deliveries)
        out << "frame " << delivery.second->index << " delivered and never released; ";
    if (!m_pictures.empty())
        out << m_pictures.size() << " picture(s) allocated and never freed; ";
    if (m_references.load() != 0)
        out << m_references.load() << " interface reference(s) still held; ";
    for (const std::string& fault : m_faults)
        out << fault << "; ";
    return out.str();
}

HRESULT InProcessHost::QueryInterface(const _GUID& iid, void** ppv)
{
    if (ppv == nullptr)
        return E_POINTER;
    if (IsEqualGUID(iid, IID_IUnknown))
        *ppv = static_cast<IVideoHost*>(this);
    else if (IsEqualGUID(iid, IID_MemoryAllocator) && m_options.offerAllocator)
        *ppv = static_cast<IMemoryAllocator*>(this);
    else {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

// The host lives on the caller's stack; counting only checks that the effect gives back what it took.
ULONG InProcessHost::AddRef()
{
    return static_cast<ULONG>(++m_references);
}

ULONG InProcessHost::Release()
{
    const int32_t after = --m_references;
    if (after < 0) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_faults.push_back("Release without a reference");
    }
    return static_cast<ULONG>(after < 0 ? 0 : after);
}

bool InProcessHost::GetParamValue(uint32_t index, EffectParam* value, uint32_t type)
{
    if (m_paramReadHook)
        m_paramReadHook();
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_paramReads;
    if (value == nullptr || index >= kParamCount) {
        m_faults.push_back("GetParamValue with a bad index or null record");
        return false;
    }
    if (type != m_params[index].dwType)
        m_faults.push_back("GetParamValue asked for parameter " + std::to_string(index) + " with type " +
                           std::to_string(type));
    std::memcpy(value->value.bytes, m_params[index].value.bytes, sizeof(value->value.bytes));
    return true;
}

void* InProcessHost::GetFrameAt(RenderInfo* request, FrameParams* frame)
{
    if (request == nullptr || frame == nullptr)
        return nullptr;
    int index;
    if (request->dwFlags & kRenderInfoFrameIndexValid)
        index = request->nFrameIndex;
    else
        index = static_cast<int>(request->dTime * request->dFrameRate + 0.5);

    std::lock_guard<std::mutex> lock(m_mutex);
    m_fetched.push_back(index);
    m_requests.push_back(FrameRequest{*request, *frame});
    if (!m_options.timeAccess || index < 0 || index >= m_clip.FrameCount() || m_undeliverable.count(index) != 0)
        return nullptr;
    if (frame->pBuffer != nullptr)
        m_faults.push_back("GetFrameAt with a non-null buffer for frame " + std::to_string(index));
    Delivery* delivery = new Delivery{index, {}, m_clip.Frame(index)};
    if (m_options.copyDeliveries) {
        delivery->pixels.assign(m_clip.Frame(index), m_clip.Frame(index) + m_clip.FrameBytes());
        delivery->buffer = delivery->pixels.data();
    }
    frame->pBuffer = delivery->buffer;
    frame->nWidth = m_clip.Width();
    frame->nHeight = m_clip.Height();
    frame->nByteSpan = m_clip.ByteSpan();
    frame->nDepth = m_clip.Depth();
    frame->pfFormat = m_clip.Format();
    frame->bFlipped = false;
    m_deliveries[delivery] = delivery;
    return delivery;
}

void InProcessHost::ReleaseFrame(void* handle, FrameParams* frame)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_released;
    auto found = m_deliveries.find(handle);
    if (found == m_deliveries.end()) {
        m_faults.push_back("ReleaseFrame with an unknown handle");
        return;
    }
    Delivery* delivery = found->second;
    if (frame == nullptr || frame->pBuffer != delivery->buffer)
        m_faults.push_back("ReleaseFrame of frame " + std::to_string(delivery->index) + " with another record");
    else if (!delivery->pixels.empty() &&
             std::memcmp(delivery->pixels.data(), m_clip.Frame(delivery->index), m_clip.FrameBytes()) != 0)
        m_faults.push_back("the effect wrote into delivered frame " + std::to_string(delivery->index));
    m_deliveries.erase(found);
    delete delivery;
}

HostInfo InProcessHost::GetHostInfo()
{
    HostInfo info = {};
    info.m_HostName = m_hostName;
    info.m_HelpFile = nullptr;
    info.m_dwCaps = m_options.timeAccess ? kHostCapsTimeAccess : 0;
    info.m_InstanceID = m_options.instanceId;
    return info;
}

int InProcessHost::AllocatePicture(unsigned char** ppBuffer, int width, int height, int depth, int* pSpan)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_pictureRequests.push_back({width, height, depth});
    }
    if (ppBuffer == nullptr || pSpan == nullptr || width < 1 || height < 1 || depth < 1 || m_options.refusePictures)
        return 0;
    // Rows padded to an odd 8 bytes beyond the row, so nothing may assume 32-byte steps.
    const size_t span = static_cast<size_t>(width) * depth + 8;
    void* picture = nullptr;
    if (posix_memalign(&picture, kPictureAlignment, span * height) != 0)
        return 0;
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_allocations;
    m_pictures.insert(picture);
    *ppBuffer = static_cast<unsigned char*>(picture);
    *pSpan = static_cast<int>(span);
    return 1;
}

void InProcessHost::FreePicture(void* buffer)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_frees;
    if (m_pictures.erase(buffer) == 0) {
        m_faults.push_back("FreePicture of a buffer the host never gave");
        return;
    }
    std::free(buffer);
}

} // namespace TestHost
