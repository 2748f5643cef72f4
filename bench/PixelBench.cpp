// The heavy-traffic pixel members on a 1920x1080 picture, each at the plain variant (index 0) and
// at the SSE4.1 one (index 3) where the processor has it, with the ratio to a memcpy of the
// destination's bytes measured in the same run.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "../primitives/ippCpu.h"
#include "../primitives/ippcore.h"
#include "../primitives/ippi.h"
#include "MemcpyFloor.h"

namespace
{

const int kWidth = 1920;
const int kHeight = 1080;
const IppiSize kSize = {kWidth, kHeight};

struct Pictures {
    const uint8_t* src1;
    int src1Step;
    const uint8_t* src2;
    int src2Step;
    uint8_t* dst; // the picture itself for an in-place member
    int dstStep;
};

struct Member {
    const char* name;
    int srcPixelBytes; // 0 for a member without a source
    int dstPixelBytes;
    bool twoSources;
    std::function<IppStatus(const Pictures&)> run;
};

const float* F(const uint8_t* p)
{
    return reinterpret_cast<const float*>(p);
}

float* F(uint8_t* p)
{
    return reinterpret_cast<float*>(p);
}

const Ipp8u kColour8u[4] = {10, 20, 30, 255};
const Ipp32f kColour32f[4] = {0.1f, 0.2f, 0.3f, 1.0f};
const Ipp32f kValue3[3] = {0.5f, 0.25f, 0.125f};
const Ipp32f kTwist[3][4] = {
    {0.299f, 0.587f, 0.114f, 0.0f}, {-0.1687f, -0.3313f, 0.5f, 0.5f}, {0.5f, -0.4187f, -0.0813f, 0.5f}};
const Ipp32f kThreshold[4] = {0.5f, 0.5f, 0.5f, 0.5f};
const int kReverse[4] = {3, 2, 1, 0};

const Member kMembers[] = {
    {"Copy_8u_C4R", 4, 4, false,
     [](const Pictures& p) { return ippiCopy_8u_C4R(p.src1, p.src1Step, p.dst, p.dstStep, kSize); }},
    {"Copy_32f_C4R", 16, 16, false,
     [](const Pictures& p) { return ippiCopy_32f_C4R(F(p.src1), p.src1Step, F(p.dst), p.dstStep, kSize); }},
    {"Set_8u_C4R", 0, 4, false, [](const Pictures& p) { return ippiSet_8u_C4R(kColour8u, p.dst, p.dstStep, kSize); }},
    {"Set_32f_C4R", 0, 16, false,
     [](const Pictures& p) { return ippiSet_32f_C4R(kColour32f, F(p.dst), p.dstStep, kSize); }},
    {"Set_8u_C1R", 0, 1, false, [](const Pictures& p) { return ippiSet_8u_C1R(7, p.dst, p.dstStep, kSize); }},
    {"SwapChannels_8u_C4IR", 0, 4, false,
     [](const Pictures& p) { return ippiSwapChannels_8u_C4IR(p.dst, p.dstStep, kSize, kReverse); }},
    {"AlphaComp_8u_AC4R_Over", 4, 4, true,
     [](const Pictures& p) {
         return ippiAlphaComp_8u_AC4R(p.src1, p.src1Step, p.src2, p.src2Step, p.dst, p.dstStep, kSize, ippAlphaOver);
     }},
    {"AlphaComp_8u_AC4R_OverPremul", 4, 4, true,
     [](const Pictures& p) {
         return ippiAlphaComp_8u_AC4R(p.src1, p.src1Step, p.src2, p.src2Step, p.dst, p.dstStep, kSize,
                                      ippAlphaOverPremul);
     }},
    {"AlphaPremul_8u_AC4R", 4, 4, false,
     [](const Pictures& p) { return ippiAlphaPremul_8u_AC4R(p.src1, p.src1Step, p.dst, p.dstStep, kSize); }},
    {"YCbCr422ToBGR_8u_C2C4R", 2, 4, false,
     [](const Pictures& p) { return ippiYCbCr422ToBGR_8u_C2C4R(p.src1, p.src1Step, p.dst, p.dstStep, kSize, 255); }},
    {"BGRToYCbCr422_8u_AC4C2R", 4, 2, false,
     [](const Pictures& p) { return ippiBGRToYCbCr422_8u_AC4C2R(p.src1, p.src1Step, p.dst, p.dstStep, kSize); }},
    {"Copy_8u_C4C1R", 4, 1, false,
     [](const Pictures& p) { return ippiCopy_8u_C4C1R(p.src1 + 1, p.src1Step, p.dst, p.dstStep, kSize); }},
    {"Copy_32f_C4C1R", 16, 4, false,
     [](const Pictures& p) { return ippiCopy_32f_C4C1R(F(p.src1) + 1, p.src1Step, F(p.dst), p.dstStep, kSize); }},
    {"Copy_8u_C1C4R", 1, 4, false,
     [](const Pictures& p) { return ippiCopy_8u_C1C4R(p.src1, p.src1Step, p.dst + 2, p.dstStep, kSize); }},
    {"AddC_32f_AC4IR", 0, 16, false,
     [](const Pictures& p) { return ippiAddC_32f_AC4IR(kValue3, F(p.dst), p.dstStep, kSize); }},
    {"MulC_32f_AC4R", 16, 16, false,
     [](const Pictures& p) { return ippiMulC_32f_AC4R(F(p.src1), p.src1Step, kValue3, F(p.dst), p.dstStep, kSize); }},
    {"ColorTwist_32f_AC4R", 16, 16, false,
     [](const Pictures& p) {
         return ippiColorTwist_32f_AC4R(F(p.src1), p.src1Step, F(p.dst), p.dstStep, kSize, kTwist);
     }},
    {"Sqr_32f_C4IR", 0, 16, false, [](const Pictures& p) { return ippiSqr_32f_C4IR(F(p.dst), p.dstStep, kSize); }},
    {"Sqrt_32f_C4IR", 0, 16, false, [](const Pictures& p) { return ippiSqrt_32f_C4IR(F(p.dst), p.dstStep, kSize); }},
    {"Threshold_LTVal_32f_C4IR", 0, 16, false,
     [](const Pictures& p) {
         return ippiThreshold_LTVal_32f_C4IR(F(p.dst), p.dstStep, kSize, kThreshold, kThreshold);
     }},
};

// Samples that stay finite under repeated squaring and roots: floats in [0, 1], random bytes.
std::vector<uint8_t> Picture(int pixelBytes, bool floats)
{
    std::vector<uint8_t> bytes(static_cast<size_t>(kWidth) * kHeight * pixelBytes);
    std::mt19937 random(7);
    if (floats) {
        std::uniform_real_distribution<float> unit(0.0f, 1.0f);
        for (size_t i = 0; i + 4 <= bytes.size(); i += 4) {
            const float v = unit(random);
            std::memcpy(&bytes[i], &v, 4);
        }
    } else {
        for (uint8_t& b : bytes)
            b = static_cast<uint8_t>(random());
    }
    return bytes;
}

void RunMember(benchmark::State& state, const Member& member, int index)
{
    const bool floats = member.dstPixelBytes == 16 || std::string(member.name).find("32f") != std::string::npos;
    std::vector<uint8_t> src1 = member.srcPixelBytes ? Picture(member.srcPixelBytes, floats) : std::vector<uint8_t>();
    std::vector<uint8_t> src2 = member.twoSources ? Picture(member.srcPixelBytes, floats) : std::vector<uint8_t>();
    std::vector<uint8_t> dst = Picture(member.dstPixelBytes, floats);
    const Pictures pictures = {src1.data(), kWidth * member.srcPixelBytes, src2.data(), kWidth * member.srcPixelBytes,
                               dst.data(),  kWidth * member.dstPixelBytes};
    const int saved = ippJumpIndexForMergedLibs;
    ippJumpIndexForMergedLibs = index;
    const double floor = Bench::MemcpySeconds(dst.size());
    Bench::Stopwatch watch;
    double best = 1e30;
    for (auto _ : state) {
        const double before = watch.Seconds();
        watch.Start();
        const IppStatus status = member.run(pictures);
        benchmark::DoNotOptimize(status);
        benchmark::ClobberMemory();
        watch.Stop();
        best = std::min(best, watch.Seconds() - before);
    }
    ippJumpIndexForMergedLibs = saved;
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * dst.size());
    state.counters["x_memcpy"] = (watch.Seconds() / state.iterations()) / floor;
    // The floor is the best of several memcpys; on a busy machine the best run of the member is
    // its fairer peer.
    state.counters["x_memcpy_best"] = best / floor;
}

// Registered before main runs; the SSE4.1 variant only on a processor that has it.
const bool kRegistered = [] {
    unsigned long long features = 0;
    const bool sse41 = ippGetCpuFeatures(&features, nullptr) == ippStsNoErr && IppCpu::VariantIndexOf(features) >= 3;
    for (const Member& member : kMembers) {
        for (int index : {0, 3}) {
            if (index == 3 && !sse41)
                continue;
            const std::string name = std::string(member.name) + (index == 0 ? "/mx" : "/y8");
            benchmark::RegisterBenchmark(name.c_str(), RunMember, member, index)->Unit(benchmark::kMicrosecond);
        }
    }
    return true;
}();

} // namespace
