#include "LuminanceRows.h"

namespace {

template <class Pixel>
uint64_t Sum8u(const Pixel* row, int width)
{
    uint64_t sum = 0;
    for (int x = 0; x < width; ++x)
        sum += Luminance8u(row[x].r, row[x].g, row[x].b);
    return sum;
}

template <class Pixel>
double Sum32f(const Pixel* row, int width)
{
    double sum = 0.0;
    for (int x = 0; x < width; ++x)
        sum += static_cast<double>(Luminance32f(row[x].r, row[x].g, row[x].b));
    return sum;
}

bool RunsAvx2()
{
    return __builtin_cpu_supports("avx2");
}

bool RunsAvx512()
{
    return RunsAvx2() && __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vnni");
}

std::vector<const LuminanceRowKernels*> FindAvailable()
{
    std::vector<const LuminanceRowKernels*> available{&kLuminanceRowsPlain};
    if (RunsAvx2())
        available.push_back(&kLuminanceRowsAvx2);
    if (RunsAvx512())
        available.push_back(&kLuminanceRowsAvx512);
    return available;
}

} // namespace

const LuminanceRowKernels kLuminanceRowsPlain = {
    "plain", Sum8u<VideoSample>, Sum8u<VideoSampleSwapped>, Sum32f<VideoSampleFloat>,
    Sum32f<VideoSampleSwappedFloat>,
};

const std::vector<const LuminanceRowKernels*>& AvailableLuminanceRowKernels()
{
    static const std::vector<const LuminanceRowKernels*> available = FindAvailable();
    return available;
}

const LuminanceRowKernels& ChosenLuminanceRowKernels()
{
    static const LuminanceRowKernels& chosen = *AvailableLuminanceRowKernels().back();
    return chosen;
}
