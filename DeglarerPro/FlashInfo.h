#pragma once
#include <cstdint>

#include "Intensities.h"

// The record of one cache slot: which frame it holds and how bright that frame was.
struct FlashInfo {
    FlashInfo() : m_nFrameIndex(-1), m_Intensities(Intensities::Zero()) {}
    FlashInfo(int32_t index, const Intensities& intensities) : m_nFrameIndex(index), m_Intensities(intensities) {}

    int32_t m_nFrameIndex;   // -1: the slot holds nothing
    Intensities m_Intensities;
};
