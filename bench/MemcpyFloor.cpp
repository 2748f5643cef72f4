#include "MemcpyFloor.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace Bench {

double MemcpySeconds(size_t bytes)
{
    std::vector<unsigned char> src(bytes, 1), dst(bytes, 0);
    std::memcpy(dst.data(), src.data(), bytes);   // fault the pages in before timing
    const int repeats = 30;
    double best = 1e30;
    for (int i = 0; i < repeats; ++i) {
        Stopwatch watch;
        watch.Start();
        std::memcpy(dst.data(), src.data(), bytes);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
        watch.Stop();
        best = std::min(best, watch.Seconds());
    }
    return best;
}

} // namespace Bench
