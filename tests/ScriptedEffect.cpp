#include "ScriptedEffect.h"

#include <algorithm>
#include <cstring>

#include "../include/InterfaceIds.h"

namespace DeglareTest {

namespace {
const uint32_t kRed = 0xFFFF0000u;
const uint32_t kBlue = 0xFF0000FFu;

void CopyPicture(const FrameParams& from, const FrameParams& to)
{
    for (int y = 0; y < to.nHeight; ++y)
        std::memcpy(to.pBuffer + static_cast<size_t>(y) * to.nByteSpan,
                    from.pBuffer + static_cast<size_t>(y) * from.nByteSpan, static_cast<size_t>(to.nWidth) * 4);
}

// The main diagonal in a solid colour: enough of a cross for the host to read.
void DrawDiagonal(const FrameParams& frame, uint32_t colour)
{
    const int steps = std::max(frame.nWidth, frame.nHeight);
    for (int step = 0; step < steps; ++step) {
        const int x = step * (frame.nWidth - 1) / std::max(steps - 1, 1);
        const int y = step * (frame.nHeight - 1) / std::max(steps - 1, 1);
        uint8_t* pixel = frame.pBuffer + static_cast<size_t>(y) * frame.nByteSpan + 4 * x;
        pixel[0] = colour & 0xFF;
        pixel[1] = (colour >> 8) & 0xFF;
        pixel[2] = (colour >> 16) & 0xFF;
    }
}
} // namespace

HRESULT ScriptedEffect::QueryInterface(const _GUID& iid, void** ppv)
{
    if (IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_VideoEffect)) {
        *ppv = this;
        AddRef();
        return S_OK;
    }
    *ppv = nullptr;
    return E_NOINTERFACE;
}

bool ScriptedEffect::Fetch(IVideoHost* host, const RenderInfo& info, int index, const FrameParams& source,
                           FrameParams* into)
{
    RenderInfo request = info;
    request.nFrameIndex = index;
    request.dTime = index / info.dFrameRate;
    FrameParams fetched = {};
    fetched.pfFormat = source.pfFormat;
    void* handle = host->GetFrameAt(&request, &fetched);
    if (handle == nullptr) {
        ++m_missed;
        return false;
    }
    if (into != nullptr)
        CopyPicture(fetched, *into);
    host->ReleaseFrame(handle, &fetched);
    return true;
}

bool ScriptedEffect::Render(IVideoHost* host, FrameParams* source, FrameParams*, FrameParams* destination,
                            RenderInfo* info)
{
    if (host == nullptr || source == nullptr || destination == nullptr || info == nullptr)
        return false;
    EffectParam test = {};
    host->GetParamValue(2, &test, eptBool);
    const bool timeAccess = (host->GetHostInfo().m_dwCaps & kHostCapsTimeAccess) != 0;
    const int index = info->nFrameIndex;

    // Renders run on several threads at once: the script is only read.
    auto looks = looksAt.find(index);
    if (timeAccess && looks != looksAt.end())
        for (int other : looks->second)
            Fetch(host, *info, other, *source, nullptr);

    CopyPicture(*source, *destination);
    auto replacement = replacements.find(index);
    if (replacement != replacements.end()) {
        if (test.value.bValue) {
            DrawDiagonal(*destination, kRed);
        } else if (timeAccess) {
            Fetch(host, *info, replacement->second, *source, destination);
        } else {
            std::lock_guard<std::mutex> lock(m_mutex);
            auto seen = m_seen.find(replacement->second);
            if (seen != m_seen.end()) {
                FrameParams remembered = *source;
                remembered.pBuffer = seen->second.data();
                CopyPicture(remembered, *destination);
            }
        }
    } else if (spared.count(index) != 0 && test.value.bValue) {
        DrawDiagonal(*destination, kBlue);
    }

    if (!timeAccess && !test.value.bValue) {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_seen[index].assign(source->pBuffer, source->pBuffer + static_cast<size_t>(source->nByteSpan) * source->nHeight);
    }
    return true;
}

} // namespace DeglareTest
