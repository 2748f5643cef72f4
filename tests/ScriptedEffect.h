#pragma once
// A stand-in for the effect with a fixed script, so that the host's machinery can be tested on
// its own: which picture comes back, marks in "Test mode", frames fetched near and far.
#include <atomic>
#include <map>
#include <mutex>
#include <set>
#include <vector>

#include "../include/VideoEffect.h"
#include "../include/VideoHost.h"

namespace DeglareTest {

class ScriptedEffect : public IVideoEffect {
public:
    // Frame -> the frame whose picture it shows (fetched with time access, else copied from
    // what the effect saw before).
    std::map<int, int> replacements;
    // Frames flagged but left as they are: a blue cross in "Test mode".
    std::set<int> spared;
    // Frames fetched, and immediately released, while rendering a frame: frame -> frames.
    std::map<int, std::vector<int>> looksAt;

    HRESULT QueryInterface(const _GUID& iid, void** ppv) override;
    ULONG AddRef() override { return ++m_references; }
    ULONG Release() override { return --m_references; }
    const char* GetName() override { return "Scripted"; }
    unsigned int GetCaps() override { return 0; }
    bool EnumParam(unsigned int, EffectParamSetup*) override { return false; }
    bool Render(IVideoHost* host, FrameParams* source, FrameParams* second, FrameParams* destination,
                RenderInfo* info) override;
    const char* EnumPreset(unsigned int) override { return nullptr; }
    bool EnumPresetData(unsigned int, unsigned int, EffectParam*) override { return false; }

    // Renders that fetched a frame the host couldn't give.
    int MissedFetches() const { return m_missed.load(); }

private:
    bool Fetch(IVideoHost* host, const RenderInfo& info, int index, const FrameParams& source, FrameParams* into);

    std::atomic<ULONG> m_references{1};
    std::atomic<int> m_missed{0};
    std::mutex m_mutex;
    std::map<int, std::vector<uint8_t>> m_seen;   // without time access: the sources seen
};

} // namespace DeglareTest
