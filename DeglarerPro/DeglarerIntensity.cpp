#include <mutex>

#include "../Common/Frame.h"
#include "../Common/FrameStrips.h"
#include "../include/VideoHost.h"
#include "Deglarer.h"
#include "HostFrame.h"
#include "IntensityMeasure.h"

std::map<uint32_t, CDeglarer::FrameIntensities> CDeglarer::m_FrameIntensitiesPool;
std::shared_mutex CDeglarer::m_FrameIntensitiesPoolGuard;

namespace {

// Only the look-up and the insertion hold the guard; measuring happens outside it.
bool FindIntensities(uint32_t id, int frameIndex, Intensities* known)
{
    std::shared_lock<std::shared_mutex> lock(CDeglarer::m_FrameIntensitiesPoolGuard);
    const auto frames = CDeglarer::m_FrameIntensitiesPool.find(id);
    if (frames == CDeglarer::m_FrameIntensitiesPool.end())
        return false;
    const auto record = frames->second.find(frameIndex);
    if (record == frames->second.end())
        return false;
    *known = record->second;
    return true;
}

// The first record stored under an index wins; every caller gets that one back, so threads that
// measured one frame at once agree.
Intensities StoreIntensities(uint32_t id, int frameIndex, const Intensities& measured)
{
    std::unique_lock<std::shared_mutex> lock(CDeglarer::m_FrameIntensitiesPoolGuard);
    return CDeglarer::m_FrameIntensitiesPool[id].emplace(frameIndex, measured).first->second;
}

} // namespace

Intensities CDeglarer::GetAverageIntensity(int frameIndex, CFrame& frame, CFrame* copy)
{
    Intensities known;
    const bool remembered = FindIntensities(m_uId, frameIndex, &known);
    if (remembered && copy == nullptr)
        return known;
    CFrameIntensityMeasure measure(frame);
    ForEachStrip(frame, [&](int firstRow, int rowCount) {
        if (!remembered)
            measure.MeasureRowsBefore(firstRow + rowCount);
        if (copy != nullptr)
            CopyStrip(frame, *copy, firstRow, rowCount);
    });
    return remembered ? known : StoreIntensities(m_uId, frameIndex, measure.Result());
}

Intensities CDeglarer::GetAverageIntensity(int frameIndex, IVideoHost* host, RenderInfo* info, PixelFormat format)
{
    Intensities known;
    if (FindIntensities(m_uId, frameIndex, &known))
        return known;
    CHostFrame fetched(host, format);
    if (!fetched.Fetch(frameIndex, info))
        return Intensities::NoFrame();   // nothing remembered: a later call asks the host again
    return StoreIntensities(m_uId, frameIndex, MeasureFrameIntensities(fetched.Frame()));
}

void* CDeglarer::GetFrameByIndex(int frameIndex, CFrame& frame, IVideoHost* host, RenderInfo* info)
{
    if (host == nullptr || info == nullptr)
        return nullptr;
    RenderInfo request = *info;
    request.nSize = sizeof(RenderInfo);
    request.dwFlags |= kRenderInfoFrameIndexValid;
    request.dTime = frameIndex / info->dFrameRate;
    request.nFrameIndex = frameIndex;
    request.dFactor1 = 1.0;
    request.dFactor2 = 1.0;
    // The host fills the buffer in.
    FrameParams params = frame.GetFrameParams();
    params.pBuffer = nullptr;
    void* handle = host->GetFrameAt(&request, &params);
    if (handle == nullptr)
        return nullptr;
    frame.Init(&params);
    return handle;
}
