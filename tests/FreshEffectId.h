#pragma once
#include <atomic>

// The intensities pool lives as long as the process: each test works under ids no other test
// has used, so it starts from an empty pool entry.
inline unsigned int FreshEffectId()
{
    static std::atomic<unsigned int> next{0x5EED0000u};
    return next++;
}
