// The render path for hosts without time access: frames arrive in order, one per call, and the
// effect compares each with the last frame and the last good frame it remembers.
#include <cstdlib>
#include <cstring>
#include <new>

#include "../Common/Copy.h"
#include "../Common/Frame.h"
#include "../Common/FrameStrips.h"
#include "../Common/MemoryAllocator.h"
#include "../foundation/AssertBox.h"
#include "../include/VideoHost.h"
#include "Deglarer.h"
#include "EffectParameters.h"
#include "FramePosition.h"
#include "MarkFlashedFrame.h"

std::map<uint32_t, boost::shared_ptr<FrameCaches>> CDeglarer::m_FrameCachesPool;

namespace {

// Guards look-up and insertion in m_FrameCachesPool; held only for the look-up.
std::mutex g_frameCachesPoolGuard;

const uint32_t kSlotsPerCache = 2;
enum CacheSlot : uint32_t { kLastFrameSlot = 0, kLastGoodFrameSlot = 1 };

const int kLongestWait = 6;   // frames a changed picture may stay behind the last good frame

// Leaves the cache's region on every way out of a render.
class CacheUsage {
public:
    CacheUsage(FrameCache& cache) : m_cache(cache) {}
    ~CacheUsage() { m_cache.Unlock(); }
    CacheUsage(const CacheUsage&) = delete;
    CacheUsage& operator=(const CacheUsage&) = delete;

private:
    FrameCache& m_cache;
};

CEffectsLibCache<FlashInfo>* CacheOfCurrentKey(FrameCache& cache)
{
    return cache.GetCacheForCurrentThread(true).m_pCache;
}

// (a - b) / a > threshold; a quotient that is not a number is not greater.
bool RelativeChangeExceeds(float a, float b, float threshold)
{
    return (a - b) / a > threshold;
}

} // namespace

boost::shared_ptr<FrameCache> CDeglarer::GetCache(int32_t field)
{
    boost::shared_ptr<FrameCaches> caches;
    {
        std::lock_guard<std::mutex> guard(g_frameCachesPoolGuard);
        auto found = m_FrameCachesPool.find(m_uId);
        if (found == m_FrameCachesPool.end()) {
            boost::shared_ptr<FrameCaches> created(new FrameCaches);
            created->m_pField3.reset(new FrameCache(kSlotsPerCache));
            created->m_pField1.reset(new FrameCache(kSlotsPerCache));
            created->m_pField2.reset(new FrameCache(kSlotsPerCache));
            found = m_FrameCachesPool.emplace(m_uId, created).first;
        }
        caches = found->second;
    }
    if (!(field == 1 || field == 2 || field == 3))
        __TSDebug::AssertBox("m_lField == 1 || m_lField == 2 || m_lField == 3",
                             "boost::shared_ptr<FrameCache> CDeglarer::GetCache()", "Deglarer", 1239, "%s", "");
    if (field == 1)
        return caches->m_pField1;
    if (field == 2)
        return caches->m_pField2;
    return caches->m_pField3;
}

void CDeglarer::BeginUsageCache(FrameCache& cache, IVideoHost* host)
{
    cache.Lock();
    cache.m_nCacheKey = host != nullptr ? host->GetHostInfo().m_InstanceID : 0;
}

void CDeglarer::EndUsageCache(FrameCache& cache)
{
    cache.Unlock();
}

CFrame* CDeglarer::PrepareLastFrameSlot(FrameCache& cache, CFrame& frame)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    return current != nullptr ? current->PrepareSlot(frame, kLastFrameSlot) : nullptr;
}

void CDeglarer::SaveLastFrameInfoToCache(FrameCache& cache, int index, const Intensities& intensities)
{
    // A slot that couldn't take the picture is empty and keeps its record, as SetFrame leaves it.
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    if (current != nullptr && current->GetFrame(kLastFrameSlot).m_pBuffer != nullptr)
        current->UserData(kLastFrameSlot) = FlashInfo(index, intensities);
}

void CDeglarer::SaveLastGoodFrameToCache(FrameCache& cache, CFrame& frame, int index,
                                         const Intensities& intensities)
{
    if (CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache)) {
        FlashInfo info(index, intensities);
        current->SetFrame(frame, kLastGoodFrameSlot, &info);
    }
}

void CDeglarer::CopyOutAndSaveLastGoodFrame(FrameCache& cache, CFrame& frame, CFrame& destination, int index,
                                            const Intensities& intensities)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    CFrame* slot = current != nullptr ? current->PrepareSlot(frame, kLastGoodFrameSlot) : nullptr;
    ForEachStrip(frame, [&](int firstRow, int rowCount) {
        CopyStrip(frame, destination, firstRow, rowCount);
        if (slot != nullptr)
            CopyStrip(frame, *slot, firstRow, rowCount);
    });
    if (slot != nullptr)
        current->UserData(kLastGoodFrameSlot) = FlashInfo(index, intensities);
}

int CDeglarer::GetLastFrameIndexFromCache(FrameCache& cache)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    return current != nullptr ? current->UserData(kLastFrameSlot).m_nFrameIndex : -1;
}

int CDeglarer::GetLastGoodFrameIndexFromCache(FrameCache& cache)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    return current != nullptr ? current->UserData(kLastGoodFrameSlot).m_nFrameIndex : -1;
}

Intensities CDeglarer::GetLastFrameIntensitiesFromCache(FrameCache& cache)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    return current != nullptr ? current->UserData(kLastFrameSlot).m_Intensities : Intensities::Zero();
}

Intensities CDeglarer::GetLastGoodFrameIntensitiesFromCache(FrameCache& cache)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    return current != nullptr ? current->UserData(kLastGoodFrameSlot).m_Intensities : Intensities::Zero();
}

bool CDeglarer::GetLastGoodFrameFromCache(FrameCache& cache, CFrame& frame)
{
    return cache.GetFrame(kLastGoodFrameSlot, frame);
}

void CDeglarer::DropCache(FrameCache& cache)
{
    if (CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache))
        current->Reset(kAllSlots);
}

bool CDeglarer::IsCurrentPresetDiffersWithStoredInCache(FrameCache& cache, IVideoHost* host)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    if (current == nullptr || current->m_nPresetCount == kNoPresetStored)
        return true;
    for (uint32_t index = 0; index < current->m_nPresetCount; ++index) {
        if (index >= static_cast<uint32_t>(kCachePresetCapacity))
            return true;
        const EffectParam& stored = current->m_Preset[index];
        EffectParam value;
        std::memset(&value, 0, sizeof value);
        host->GetParamValue(index, &value, stored.dwType);
        if (std::memcmp(value.value.bytes, stored.value.bytes, sizeof value.value.bytes) != 0)
            return true;
    }
    return false;
}

void CDeglarer::SaveCurrentPresetInCache(FrameCache& cache, IVideoHost* host)
{
    CEffectsLibCache<FlashInfo>* current = CacheOfCurrentKey(cache);
    if (current == nullptr)
        return;
    current->m_nPresetCount = 0;
    EffectParamSetup setup;
    std::memset(&setup, 0, sizeof setup);
    uint32_t index = 0;
    for (; EnumParam(index, &setup); ++index) {
        EffectParam value;
        std::memset(&value, 0, sizeof value);
        host->GetParamValue(index, &value, setup.dwType);
        if (index < static_cast<uint32_t>(kCachePresetCapacity)) {
            std::memcpy(current->m_Preset[index].value.bytes, value.value.bytes, sizeof value.value.bytes);
            current->m_Preset[index].dwType = setup.dwType;
        }
    }
    current->m_nPresetCount = index;
}

bool CDeglarer::RenderUsingCache(IVideoHost* host, FrameParams* source, FrameParams*, FrameParams* destination,
                                 RenderInfo* info)
{
    // The field word selects the memory; it is read once and carried through the call.
    const int32_t field = info->nField;
    m_lField.store(field, std::memory_order_relaxed);
    const boost::shared_ptr<FrameCache> cache = GetCache(field);
    BeginUsageCache(*cache, host);
    CacheUsage usage(*cache);

    MemoryAllocator allocator(host);
    const DecodedParameters parameters = DecodeParameters(host);
    CFrame sourceFrame;
    CFrame destinationFrame;
    sourceFrame.Init(source);
    destinationFrame.Init(destination);
    const int current = CurrentFrameIndex(*info);

    // Remembering the last frame's picture rides on the measurement: each strip of the source goes into
    // the last-frame slot while it is still in cache. Nothing here reads that slot's picture, and
    // its record, which the decision reads, is written only where it always was.
    CFrame* lastFrameSlot = PrepareLastFrameSlot(*cache, sourceFrame);
    const Intensities intensities = GetAverageIntensity(current, sourceFrame, lastFrameSlot);
    int lastIndex = GetLastFrameIndexFromCache(*cache);
    int goodIndex = GetLastGoodFrameIndexFromCache(*cache);

    // A jump, a step backward, a new clip or a changed parameter starts the memory afresh: the
    // frame becomes its own predecessor and comes out good.
    const bool reset = current == 0 || IsCurrentPresetDiffersWithStoredInCache(*cache, host) || lastIndex < 0 ||
                       (lastIndex != current - 1 && lastIndex != current) || (goodIndex >= 0 && current < goodIndex);
    if (reset) {
        SaveLastFrameInfoToCache(*cache, current, intensities);
        SaveLastGoodFrameToCache(*cache, sourceFrame, current, intensities);
        SaveCurrentPresetInCache(*cache, host);
        lastIndex = current;
        goodIndex = current;
    }

    const Intensities last = GetLastFrameIntensitiesFromCache(*cache);
    const Intensities good = GetLastGoodFrameIntensitiesFromCache(*cache);
    const bool bright = intensities.Sum() > kDarknessLimit;
    bool rise = false;
    bool fall = false;
    bool nearGood = false;
    if (bright) {
        nearGood = true;
        for (int band = 0; band < kIntensityBands; ++band) {
            rise = rise || RelativeChangeExceeds(intensities.fBand[band], last.fBand[band], parameters.threshold);
            nearGood = nearGood && !RelativeChangeExceeds(intensities.fBand[band], good.fBand[band], parameters.threshold);
        }
        for (int band = 0; band < kIntensityBands && !rise; ++band)
            fall = fall || RelativeChangeExceeds(last.fBand[band], intensities.fBand[band], parameters.threshold);
    }

    SaveLastFrameInfoToCache(*cache, current, intensities);

    const bool flashed = rise || (!fall && lastIndex != goodIndex && !nearGood && current - goodIndex <= kLongestWait);
    Processors::CCopy copy;
    if (!flashed) {
        if (bright) {
            CopyOutAndSaveLastGoodFrame(*cache, sourceFrame, destinationFrame, current, intensities);
        } else {
            DropCache(*cache);   // a dark frame empties the memory
            copy.Process(&sourceFrame, &destinationFrame);
        }
        return true;
    }

    if (goodIndex < 0 || std::abs(current - goodIndex) > parameters.limit) {
        copy.Process(&sourceFrame, &destinationFrame);
        if (parameters.test)
            MarkFlashedFrame(destinationFrame, kSparedFrameColour);
        return true;
    }

    // The stand-in comes from the host's allocator where it offers one, and a host that refuses the
    // picture gets its source back unmarked: either way the host sees the same calls in and out of
    // Test mode.
    CFrame goodFrame;
    goodFrame.Init(sourceFrame.m_nWidth, sourceFrame.m_nHeight, sourceFrame.m_nDepth, &allocator,
                   sourceFrame.m_pfPixelFormat, sourceFrame.m_bFlipped);
    if (!GetLastGoodFrameFromCache(*cache, goodFrame)) {
        copy.Process(&sourceFrame, &destinationFrame);
    } else if (!parameters.test) {
        copy.Process(&goodFrame, &destinationFrame);
    } else {
        copy.Process(&sourceFrame, &destinationFrame);
        MarkFlashedFrame(destinationFrame, kReplacedFrameColour);
    }
    return true;
}
