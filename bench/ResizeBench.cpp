// The 8-bit four-channel resize members between 1080p and 720p, up and down, linear and cubic,
// beside a memcpy of the destination frame and, where OpenCV is installed, its resize of the same
// picture.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "../primitives/ippResizeVariants.h"
#include "MemcpyFloor.h"

#ifdef DEGLARER_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace {

struct Case {
    IppiSize src, dst;
};
const Case kCases[] = {{{1920, 1080}, {1280, 720}}, {{1280, 720}, {1920, 1080}}};

std::vector<Ipp8u> RandomPicture(IppiSize size)
{
    std::vector<Ipp8u> pixels(static_cast<size_t>(size.width) * size.height * 4);
    std::mt19937 rng(1);
    for (Ipp8u& sample : pixels)
        sample = static_cast<Ipp8u>(rng());
    return pixels;
}

#ifdef DEGLARER_HAVE_OPENCV
// Best of a few runs of OpenCV's resize of the same picture, for a ratio in the same run.
double OpenCvSeconds(std::vector<Ipp8u>& src, const Case& c, int interpolation)
{
    cv::Mat in(c.src.height, c.src.width, CV_8UC4, src.data()), out;
    const int cvInterpolation = interpolation == IPPI_INTER_CUBIC ? cv::INTER_CUBIC : cv::INTER_LINEAR;
    double best = 1e30;
    for (int i = 0; i < 20; ++i) {
        Bench::Stopwatch watch;
        watch.Start();
        cv::resize(in, out, cv::Size(c.dst.width, c.dst.height), 0, 0, cvInterpolation);
        benchmark::DoNotOptimize(out.data);
        watch.Stop();
        best = std::min(best, watch.Seconds());
    }
    return best;
}
#endif

// The exported entries, and the SSE4.1 variants by name, so that they are timed even before the
// entries choose them.
using CornerMember = IppStatus (*)(const Ipp8u*, IppiSize, int, IppiRect, Ipp8u*, int, IppiSize, double, double, int);
using AreaMember = IppStatus (*)(const Ipp8u*, IppiSize, int, IppiRect, Ipp8u*, int, IppiRect, double, double, double,
                                 double, int, Ipp8u*);
const CornerMember kCornerMembers[] = {ippiResize_8u_C4R, y8_ippiResize_8u_C4R};
const AreaMember kAreaMembers[] = {ippiResizeSqrPixel_8u_C4R, y8_ippiResizeSqrPixel_8u_C4R};
const char* const kVariantNames[] = {"entry", "y8"};

// range(0): the case; range(1): the interpolation; range(2): 0 corner-to-corner, 1 pixel-area;
// range(3): 0 the exported entry, 1 the SSE4.1 variant.
void BM_Resize8uC4(benchmark::State& state)
{
    const Case& c = kCases[state.range(0)];
    const int interpolation = static_cast<int>(state.range(1));
    const bool areas = state.range(2) == 1;
    const int variant = static_cast<int>(state.range(3));
    if (variant == 1 && !__builtin_cpu_supports("sse4.1")) {
        state.SkipWithError("this processor has no SSE4.1");
        return;
    }
    std::vector<Ipp8u> src = RandomPicture(c.src), dst(static_cast<size_t>(c.dst.width) * c.dst.height * 4);
    const double xFactor = static_cast<double>(c.dst.width) / c.src.width;
    const double yFactor = static_cast<double>(c.dst.height) / c.src.height;
    const IppiRect srcRoi = {0, 0, c.src.width, c.src.height}, dstRoi = {0, 0, c.dst.width, c.dst.height};
    int workBytes = 0;
    ippiResizeGetBufSize(srcRoi, dstRoi, 4, interpolation, &workBytes);
    std::vector<Ipp8u> work(workBytes);
    Bench::Stopwatch watch;
    for (auto _ : state) {
        watch.Start();
        const IppStatus status =
            areas ? kAreaMembers[variant](src.data(), c.src, c.src.width * 4, srcRoi, dst.data(), c.dst.width * 4,
                                          dstRoi, xFactor, yFactor, 0, 0, interpolation, work.data())
                  : kCornerMembers[variant](src.data(), c.src, c.src.width * 4, srcRoi, dst.data(), c.dst.width * 4,
                                            c.dst, xFactor, yFactor, interpolation);
        benchmark::DoNotOptimize(dst.data());
        benchmark::ClobberMemory();
        watch.Stop();
        if (status != ippStsNoErr)
            state.SkipWithError("the resize failed");
    }
    const double seconds = watch.Seconds() / state.iterations();
    state.counters["x_memcpy"] = seconds / Bench::MemcpySeconds(dst.size());
#ifdef DEGLARER_HAVE_OPENCV
    state.counters["x_opencv"] = seconds / OpenCvSeconds(src, c, interpolation);
#endif
    state.SetLabel(std::string(kVariantNames[variant]) + (areas ? " SqrPixel " : " Resize ") +
                   (interpolation == IPPI_INTER_LINEAR ? "linear " : "cubic ") +
                   std::to_string(c.src.width) + "x" + std::to_string(c.src.height) + " to " +
                   std::to_string(c.dst.width) + "x" + std::to_string(c.dst.height));
}

#ifdef DEGLARER_HAVE_OPENCV
void BM_OpenCvResize8uC4(benchmark::State& state)
{
    const Case& c = kCases[state.range(0)];
    std::vector<Ipp8u> src = RandomPicture(c.src);
    cv::Mat in(c.src.height, c.src.width, CV_8UC4, src.data()), out;
    const int cvInterpolation = state.range(1) == IPPI_INTER_CUBIC ? cv::INTER_CUBIC : cv::INTER_LINEAR;
    for (auto _ : state) {
        cv::resize(in, out, cv::Size(c.dst.width, c.dst.height), 0, 0, cvInterpolation);
        benchmark::DoNotOptimize(out.data);
    }
}
BENCHMARK(BM_OpenCvResize8uC4)
    ->ArgsProduct({{0, 1}, {IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}})
    ->Unit(benchmark::kMillisecond);
#endif

} // namespace

BENCHMARK(BM_Resize8uC4)
    ->ArgsProduct({{0, 1}, {IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}, {0, 1}, {0, 1}})
    ->Unit(benchmark::kMillisecond);
