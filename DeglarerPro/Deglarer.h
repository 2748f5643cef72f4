#pragma once
#include <atomic>
#include <cstdint>
#include <map>
#include <mutex>
#include <shared_mutex>

#include <boost/shared_ptr.hpp>

#include "../include/VideoEffect.h"
#include "FrameCaches.h"
#include "Intensities.h"

class CFrame;
class IVideoHost;

// The flash removal effect. What it remembers between renders lives in static pools keyed by
// the id that the host gives, so objects that share an id share their memory.
class CDeglarer : public IVideoEffect, public IParamToolTip, public IEffectUniqueId {
public:
    CDeglarer();
    ~CDeglarer() override;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    const char* GetName() override;
    unsigned int GetCaps() override;
    bool EnumParam(unsigned int index, EffectParamSetup* setup) override;
    bool Render(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                RenderInfo* info) override;
    const char* EnumPreset(unsigned int index) override;
    bool EnumPresetData(unsigned int preset, unsigned int param, EffectParam* value) override;
    const char* EnumToolTip(unsigned int index) override;
    void SetId(unsigned int id) override;
    unsigned int GetId() override;

    static const int kParamCount = 3;
    static const int kPresetCount = 8;
    static const char* const s_szToolTips[kParamCount];
    static const char* const s_szPresetNames[kPresetCount];
    static const uint64_t s_llPresetData[kPresetCount][kParamCount];

    // The memories of the sequential path, per effect id; entries live until the module unloads.
    static std::map<uint32_t, boost::shared_ptr<FrameCaches>> m_FrameCachesPool;

    // The intensities of a frame in hand, remembered under `frameIndex` for this object's id;
    // a frame already remembered isn't measured again. With a `copy`, the frame is also copied
    // into it as Processors::CCopy would, each strip right after it is measured, so that the
    // frame is read from memory once for both.
    Intensities GetAverageIntensity(int frameIndex, CFrame& frame, CFrame* copy = nullptr);
    // The same for a frame by its index, fetched from the host only if it isn't remembered yet
    // and given back at once. Four -1.0, and nothing remembered, when the host gives no frame.
    Intensities GetAverageIntensity(int frameIndex, IVideoHost* host, RenderInfo* info, PixelFormat format);
    // Asks the host for the frame at `frameIndex` in the format that `frame` names and wraps the
    // host's memory in `frame`. Returns the host's handle for ReleaseFrame, or null with `frame`
    // unchanged.
    static void* GetFrameByIndex(int frameIndex, CFrame& frame, IVideoHost* host, RenderInfo* info);

    // Effect id to frame index to intensities, shared by every render thread and every object of
    // one id. A record is written once, the first stored, and never changed or removed.
    typedef std::map<int32_t, Intensities> FrameIntensities;
    static std::map<uint32_t, FrameIntensities> m_FrameIntensitiesPool;
    static std::shared_mutex m_FrameIntensitiesPoolGuard;

private:
    bool RenderUsingTimeAccess(IVideoHost* host, FrameParams* source, FrameParams* second,
                               FrameParams* destination, RenderInfo* info);
    bool RenderUsingCache(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                          RenderInfo* info);

    // The sequential path's memory for `field` of this object's id. The field travels with the
    // call, so renders of one object on several threads can't change each other's choice.
    boost::shared_ptr<FrameCache> GetCache(int32_t field);
    boost::shared_ptr<FrameCache> GetCache() { return GetCache(m_lField.load(std::memory_order_relaxed)); }
    void BeginUsageCache(FrameCache& cache, IVideoHost* host);
    void EndUsageCache(FrameCache& cache);
    // The last frame's picture goes into its slot with the measurement (PrepareLastFrameSlot);
    // this stores its record, and only when the slot holds that picture.
    CFrame* PrepareLastFrameSlot(FrameCache& cache, CFrame& frame);
    void SaveLastFrameInfoToCache(FrameCache& cache, int index, const Intensities& intensities);
    void SaveLastGoodFrameToCache(FrameCache& cache, CFrame& frame, int index, const Intensities& intensities);
    // A good frame's copy to the destination and into the last good frame's slot, in one pass.
    void CopyOutAndSaveLastGoodFrame(FrameCache& cache, CFrame& frame, CFrame& destination, int index,
                                     const Intensities& intensities);
    int GetLastFrameIndexFromCache(FrameCache& cache);
    int GetLastGoodFrameIndexFromCache(FrameCache& cache);
    Intensities GetLastFrameIntensitiesFromCache(FrameCache& cache);
    Intensities GetLastGoodFrameIntensitiesFromCache(FrameCache& cache);
    bool GetLastGoodFrameFromCache(FrameCache& cache, CFrame& frame);
    void DropCache(FrameCache& cache);
    bool IsCurrentPresetDiffersWithStoredInCache(FrameCache& cache, IVideoHost* host);
    void SaveCurrentPresetInCache(FrameCache& cache, IVideoHost* host);

    uint32_t m_uId;
    std::atomic<int32_t> m_lRefCount;
    std::atomic<int32_t> m_lField;   // the field of the latest sequential render
};

// The fallback of both render paths: the source copied to the destination as it is.
bool CopySourceToDestination(FrameParams* source, FrameParams* destination);
