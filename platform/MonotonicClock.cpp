#include "MonotonicClock.h"

#include <atomic>
#include <ctime>

namespace Platform {

namespace {
std::atomic<MillisecondSource> g_source{nullptr};

uint64_t SystemMilliseconds()
{
    timespec now = {};
    clock_gettime(CLOCK_MONOTONIC, &now);
    const uint64_t nanoseconds = static_cast<uint64_t>(now.tv_sec) * 1000000000u + static_cast<uint64_t>(now.tv_nsec);
    return nanoseconds / 1000000u;
}
} // namespace

uint32_t MonotonicMilliseconds()
{
    const MillisecondSource source = g_source.load(std::memory_order_acquire);
    return static_cast<uint32_t>(source != nullptr ? source() : SystemMilliseconds());
}

void SetMillisecondSourceForTesting(MillisecondSource source)
{
    g_source.store(source, std::memory_order_release);
}

} // namespace Platform
