#pragma once
#include <cstdint>

namespace Platform {

// Milliseconds of the system's monotonic clock, truncated to 32 bits; differences are taken
// modulo 2^32.
uint32_t MonotonicMilliseconds();

// Tests move time by hand: while a source is installed it answers instead of the system clock.
// Null restores the system clock.
typedef uint64_t (*MillisecondSource)();
void SetMillisecondSourceForTesting(MillisecondSource source);

} // namespace Platform
