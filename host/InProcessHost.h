#pragma once
#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <set>
#include <string>
#include <vector>

#include "../include/MemoryAllocatorInterface.h"
#include "../include/VideoEffect.h"
#include "../include/VideoHost.h"
#include "Clip.h"

namespace TestHost {

// A host over an in-memory clip, written from the host contract alone. It serves frames by
// index (when it has time access), parameter values and picture memory, and keeps a record of
// every call the effect makes so tests can check economy and balance.
class InProcessHost : public IVideoHost, public IMemoryAllocator {
public:
    struct Options {
        bool timeAccess = true;
        bool offerAllocator = true;
        // The allocator is offered but gives no picture, as a host out of memory would.
        bool refusePictures = false;
        uint32_t instanceId = 1;
        // Each delivered frame is a private copy, so that a write into it or a use after release
        // shows; off, GetFrameAt hands out the clip's own memory, as a host with frames in memory
        // would (benchmarks).
        bool copyDeliveries = true;
    };

    explicit InProcessHost(Clip& clip);
    InProcessHost(Clip& clip, const Options& options);
    ~InProcessHost() override;

    // Parameter values as the host would hand them back: control positions 0..1.
    void SetSensitivity(float position);
    void SetMaxFrames(float position);
    void SetTestMode(bool on);
    // Any value bytes for parameter `index` (0 to 2), as a host might hand them back.
    void SetParam(unsigned int index, const EffectParam& value);
    // Applies one of the effect's stock presets through EnumPresetData.
    bool ApplyPreset(IVideoEffect* effect, unsigned int preset);

    void SetUndeliverable(int index, bool undeliverable = true);
    // Called at each parameter read, outside the host's own lock: tests use it to see which
    // renders run at the same time.
    void SetParamReadHook(std::function<void()> hook) { m_paramReadHook = std::move(hook); }
    void SetTimeAccess(bool on) { m_options.timeAccess = on; }
    void SetInstanceId(uint32_t id) { m_options.instanceId = id; }
    void SetRefusePictures(bool refuse) { m_options.refusePictures = refuse; }

    // A RenderInfo for frame `index`, with the frame index valid.
    RenderInfo MakeRenderInfo(int index, int16_t field = 1) const;
    // Renders frame `index` of the clip into `destination`.
    bool RenderFrame(IVideoEffect* effect, int index, FrameParams* destination, int16_t field = 1);

    // One GetFrameAt call as the host saw it on entry.
    struct FrameRequest {
        RenderInfo info;
        FrameParams frame;
    };

    // The call record.
    std::vector<int> FetchedIndices() const;
    std::vector<FrameRequest> FrameRequests() const;
    size_t FetchCount() const;
    size_t ReleaseCount() const;
    size_t ParamReads() const;
    size_t AllocationCount() const;
    // Width, height and depth of each picture asked for, refused ones included; pictures freed.
    struct PictureRequest {
        int width, height, depth;
        bool operator==(const PictureRequest& other) const
        {
            return width == other.width && height == other.height && depth == other.depth;
        }
    };
    std::vector<PictureRequest> PictureRequests() const;
    size_t FreeCount() const;
    void ClearRecord();
    // Empty when every handle, picture and interface reference went back; otherwise what didn't.
    std::string Leaks() const;

    // IUnknown
    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IVideoHost
    bool GetParamValue(uint32_t index, EffectParam* value, uint32_t type) override;
    void Reserved1() override {}
    void* GetFrameAt(RenderInfo* request, FrameParams* frame) override;
    void ReleaseFrame(void* handle, FrameParams* frame) override;
    HostInfo GetHostInfo() override;

    // IMemoryAllocator
    void Reserved2() override {}
    int AllocatePicture(unsigned char** ppBuffer, int width, int height, int depth, int* pSpan) override;
    void FreePicture(void* buffer) override;

private:
    struct Delivery {
        int index;
        std::vector<uint8_t> pixels;   // empty when the clip's memory is handed out
        uint8_t* buffer;
    };

    Clip& m_clip;
    Options m_options;
    EffectParam m_params[3];
    std::set<int> m_undeliverable;
    std::function<void()> m_paramReadHook;
    char m_hostName[32];

    mutable std::mutex m_mutex;
    std::vector<int> m_fetched;
    std::vector<FrameRequest> m_requests;
    size_t m_released = 0;
    size_t m_paramReads = 0;
    size_t m_allocations = 0;
    std::vector<PictureRequest> m_pictureRequests;
    size_t m_frees = 0;
    std::map<void*, Delivery*> m_deliveries;
    std::set<void*> m_pictures;
    std::atomic<int32_t> m_references{0};
    std::vector<std::string> m_faults;
};

} // namespace TestHost
