#pragma once
#include <atomic>
#include <cstdint>

// Atomic 32-bit counters; both return the value before the change.
inline int32_t IncrementAtomic(std::atomic<int32_t>* value) { return value->fetch_add(1); }
inline int32_t DecrementAtomic(std::atomic<int32_t>* value) { return value->fetch_sub(1); }
