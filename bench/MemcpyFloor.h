#pragma once
#include <chrono>
#include <cstddef>

namespace Bench {

// Seconds for one plain memcpy of `bytes`, measured now, so a benchmark can report its ratio to
// the natural floor in the same run.
double MemcpySeconds(size_t bytes);

// Accumulates wall time of the timed part of each iteration.
class Stopwatch {
public:
    void Start() { m_start = std::chrono::steady_clock::now(); }
    void Stop() { m_seconds += std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count(); }
    double Seconds() const { return m_seconds; }

private:
    std::chrono::steady_clock::time_point m_start;
    double m_seconds = 0;
};

} // namespace Bench
