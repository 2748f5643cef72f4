#pragma once
#include <cstdint>
#include <cstring>

#include "../include/EffectParam.h"
#include "Copy.h"
#include "Frame.h"

const uint32_t kAllSlots = 0xFFFFFFFFu;
const uint32_t kNoPresetStored = 0xFFFFFFFFu;
const int kCachePresetCapacity = 100;

// A fixed number of frame slots, each with its own copy of a picture and a record of user data,
// plus the parameter values in force when the memory was last reset. T's default value is the
// neutral record of an empty slot.
template <typename T>
class CEffectsLibCache {
public:
    explicit CEffectsLibCache(unsigned int count);
    virtual ~CEffectsLibCache() { Release(); }
    CEffectsLibCache(const CEffectsLibCache&) = delete;
    CEffectsLibCache& operator=(const CEffectsLibCache&) = delete;

    // Out of range or without storage: a shared empty frame / neutral record, never null.
    CFrame& GetFrame(unsigned int index);
    T& UserData(unsigned int index);

    void SetFrame(CFrame& frame, unsigned int index, T* pInfo);
    // SetFrame in two halves, for a caller that copies the picture in itself, a strip at a time:
    // the slot made ready for `frame` (its memory reused when the size is unchanged), or null when
    // nothing may be written: no storage, an index out of range, a frame without a buffer (the
    // slot is then emptied, record and all) or no memory. The caller then fills the slot and
    // stores the record through UserData.
    CFrame* PrepareSlot(CFrame& frame, unsigned int index);
    void Reset(unsigned int index);
    void Release();

    bool HasStorage() const { return m_FrameSlots != nullptr; }

    CFrame* m_FrameSlots;
    T* m_UserData;
    uint32_t m_nSlotCount;
    uint32_t m_nPresetCount;
    EffectParam m_Preset[kCachePresetCapacity];

private:
    void ClearPreset();
};

template <typename T>
CEffectsLibCache<T>::CEffectsLibCache(unsigned int count)
    : m_FrameSlots(nullptr), m_UserData(nullptr), m_nSlotCount(count), m_nPresetCount(kNoPresetStored)
{
    ClearPreset();
    if (count == 0)
        return;
    m_FrameSlots = new CFrame[count];
    try {
        m_UserData = new T[count]();
    } catch (...) {
        delete[] m_FrameSlots;
        m_FrameSlots = nullptr;
        throw;
    }
    Reset(kAllSlots);
}

template <typename T>
CFrame& CEffectsLibCache<T>::GetFrame(unsigned int index)
{
    static CFrame nullObject;
    if (!HasStorage() || index >= m_nSlotCount)
        return nullObject;
    return m_FrameSlots[index];
}

template <typename T>
T& CEffectsLibCache<T>::UserData(unsigned int index)
{
    static T nullObject;
    if (!HasStorage() || index >= m_nSlotCount)
        return nullObject;
    return m_UserData[index];
}

template <typename T>
void CEffectsLibCache<T>::SetFrame(CFrame& frame, unsigned int index, T* pInfo)
{
    CFrame* slot = PrepareSlot(frame, index);
    if (slot == nullptr)
        return;
    Processors::CCopy().Process(&frame, slot);
    if (pInfo != nullptr)
        m_UserData[index] = *pInfo;
}

template <typename T>
CFrame* CEffectsLibCache<T>::PrepareSlot(CFrame& frame, unsigned int index)
{
    if (!HasStorage() || index >= m_nSlotCount)
        return nullptr;
    CFrame& slot = m_FrameSlots[index];
    if (frame.m_pBuffer == nullptr) {
        slot.Clear();
        m_UserData[index] = T();
        return nullptr;
    }
    // A clip keeps one format and depth, so the same size means the slot's memory fits.
    const bool reusable = slot.m_pBuffer != nullptr && slot.m_nWidth == frame.m_nWidth &&
                          slot.m_nHeight == frame.m_nHeight && slot.m_nDepth == frame.m_nDepth;
    if (!reusable) {
        slot.Clear();
        if (!slot.Init(frame.m_nWidth, frame.m_nHeight, frame.m_nDepth, nullptr, frame.m_pfPixelFormat,
                       frame.m_bFlipped)) {
            slot.Clear();
            return nullptr;
        }
    }
    return &slot;
}

template <typename T>
void CEffectsLibCache<T>::Reset(unsigned int index)
{
    if (!HasStorage() || m_nSlotCount == 0)
        return;
    if (index == kAllSlots) {
        for (uint32_t slot = 0; slot < m_nSlotCount; ++slot) {
            m_FrameSlots[slot].Clear();
            m_UserData[slot] = T();
        }
        ClearPreset();
    } else if (index < m_nSlotCount) {
        m_FrameSlots[index].Clear();
        m_UserData[index] = T();
    }
}

template <typename T>
void CEffectsLibCache<T>::Release()
{
    if (HasStorage()) {
        delete[] m_FrameSlots;   // each CFrame frees its own picture
        delete[] m_UserData;
    }
    m_FrameSlots = nullptr;
    m_UserData = nullptr;
    m_nSlotCount = 0;
}

template <typename T>
void CEffectsLibCache<T>::ClearPreset()
{
    for (EffectParam& entry : m_Preset) {
        std::memset(entry.value.bytes, 0xFF, sizeof entry.value.bytes);
        entry.dwType = eptNone;
    }
}
