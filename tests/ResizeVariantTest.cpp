// Every variant of the resize members present against the plain one, bit for bit: random sizes,
// odd widths, starts off any vector alignment, and pictures and work space against guard pages.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "../primitives/ippResizeVariants.h"
#include "GuardedBlock.h"

namespace {

const int kModes[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS};

enum class Variant { Plain, Sse41 };

struct Member {
    bool bytes;
    int channels;
    bool areas;
};
const Member kMembers[] = {{true, 4, false}, {false, 4, false}, {true, 1, true},
                           {true, 4, true},  {false, 1, true},  {false, 4, true}};

struct Call {
    IppiSize srcSize;
    int srcStep;
    IppiRect srcRoi;
    int dstStep;
    IppiRect dstRoi;   // corner-to-corner members take its size
    double xFactor, yFactor, xShift, yShift;
    int interpolation;
};

IppStatus RunVariant(Variant variant, const Member& m, const Call& c, const uint8_t* src, uint8_t* dst, uint8_t* work)
{
    const bool plain = variant == Variant::Plain;
    const auto* fSrc = reinterpret_cast<const Ipp32f*>(src);
    auto* fDst = reinterpret_cast<Ipp32f*>(dst);
    const IppiSize dstSize = {c.dstRoi.width, c.dstRoi.height};
    if (!m.areas && m.bytes)
        return (plain ? mx_ippiResize_8u_C4R : y8_ippiResize_8u_C4R)(src, c.srcSize, c.srcStep, c.srcRoi, dst,
                                                                     c.dstStep, dstSize, c.xFactor, c.yFactor,
                                                                     c.interpolation);
    if (!m.areas)
        return (plain ? mx_ippiResize_32f_C4R : y8_ippiResize_32f_C4R)(fSrc, c.srcSize, c.srcStep, c.srcRoi, fDst,
                                                                       c.dstStep, dstSize, c.xFactor, c.yFactor,
                                                                       c.interpolation);
    if (m.bytes && m.channels == 1)
        return (plain ? mx_ippiResizeSqrPixel_8u_C1R : y8_ippiResizeSqrPixel_8u_C1R)(
            src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.xFactor, c.yFactor, c.xShift, c.yShift,
            c.interpolation, work);
    if (m.bytes)
        return (plain ? mx_ippiResizeSqrPixel_8u_C4R : y8_ippiResizeSqrPixel_8u_C4R)(
            src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi, c.xFactor, c.yFactor, c.xShift, c.yShift,
            c.interpolation, work);
    if (m.channels == 1)
        return (plain ? mx_ippiResizeSqrPixel_32f_C1R : y8_ippiResizeSqrPixel_32f_C1R)(
            fSrc, c.srcSize, c.srcStep, c.srcRoi, fDst, c.dstStep, c.dstRoi, c.xFactor, c.yFactor, c.xShift,
            c.yShift, c.interpolation, work);
    return (plain ? mx_ippiResizeSqrPixel_32f_C4R : y8_ippiResizeSqrPixel_32f_C4R)(
        fSrc, c.srcSize, c.srcStep, c.srcRoi, fDst, c.dstStep, c.dstRoi, c.xFactor, c.yFactor, c.xShift, c.yShift,
        c.interpolation, work);
}

void FillRandom(uint8_t* bytes, size_t length, bool byteSamples, std::mt19937& rng)
{
    for (size_t i = 0; i < length; i += byteSamples ? 1 : 4) {
        const float sample = static_cast<float>(rng() % 1000) / 999.0f;
        if (byteSamples)
            bytes[i] = static_cast<uint8_t>(rng());
        else
            std::memcpy(bytes + i, &sample, sizeof sample);
    }
}

TEST(ResizeVariants, Sse41GivesThePlainResultsBitForBit)
{
    if (!__builtin_cpu_supports("sse4.1"))
        GTEST_SKIP() << "this processor has no SSE4.1";
    std::mt19937 rng(61);
    auto pick = [&rng](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    const double factors[] = {1.0, 2.0, 0.5, 0.37, 1.43, 3.3, 0.667, 2.51};
    for (int round = 0; round < 800; ++round) {
        const Member& m = kMembers[round % 6];
        const int sampleBytes = m.bytes ? 1 : 4;
        const int pixelBytes = sampleBytes * m.channels;
        Call c;
        c.srcSize = {pick(1, 45), pick(1, 30)};
        c.srcStep = c.srcSize.width * pixelBytes + sampleBytes * pick(0, 5);
        c.srcRoi = {pick(0, c.srcSize.width - 1), pick(0, c.srcSize.height - 1), pick(1, 45), pick(1, 30)};
        c.dstRoi = {m.areas ? pick(0, 3) : 0, m.areas ? pick(0, 3) : 0, pick(1, 70), pick(1, 50)};
        c.dstStep = (c.dstRoi.x + c.dstRoi.width) * pixelBytes + sampleBytes * pick(0, 5);
        c.xFactor = factors[pick(0, 7)];
        c.yFactor = factors[pick(0, 7)];
        c.xShift = m.areas ? pick(-8, 8) / 4.0 : 0;
        c.yShift = m.areas ? pick(-8, 8) / 4.0 : 0;
        c.interpolation = kModes[pick(0, 3)];
        // The source's last byte and the destination's touch a guard; the starts are off any vector
        // alignment.
        const size_t srcBytes = static_cast<size_t>(c.srcStep) * (c.srcSize.height - 1) + c.srcSize.width * pixelBytes;
        const size_t dstBytes = static_cast<size_t>(c.dstStep) * (c.dstRoi.y + c.dstRoi.height - 1) +
                                static_cast<size_t>(c.dstRoi.x + c.dstRoi.width) * pixelBytes;
        GuardedBlock src(srcBytes, GuardedBlock::Guard::AfterEnd);
        GuardedBlock plainDst(dstBytes, GuardedBlock::Guard::AfterEnd);
        GuardedBlock fastDst(dstBytes, GuardedBlock::Guard::AfterEnd);
        FillRandom(src.Data(), srcBytes, m.bytes, rng);
        std::memset(plainDst.Data(), 0xCD, dstBytes);
        std::memset(fastDst.Data(), 0xCD, dstBytes);
        int workBytes = 1;
        if (m.areas) {
            ASSERT_EQ(ippiResizeGetBufSize(c.srcRoi, c.dstRoi, m.channels, c.interpolation, &workBytes), ippStsNoErr);
        }
        GuardedBlock work(static_cast<size_t>(workBytes), GuardedBlock::Guard::AfterEnd);
        const IppStatus plain = RunVariant(Variant::Plain, m, c, src.Data(), plainDst.Data(), work.Data());
        const IppStatus fast = RunVariant(Variant::Sse41, m, c, src.Data(), fastDst.Data(), work.Data());
        ASSERT_EQ(plain, fast) << "round " << round;
        ASSERT_EQ(0, std::memcmp(plainDst.Data(), fastDst.Data(), dstBytes))
            << "round " << round << (m.areas ? " pixel-area " : " corners ") << (m.bytes ? "bytes C" : "floats C")
            << m.channels << " mode " << c.interpolation << " " << c.srcSize.width << "x" << c.srcSize.height;
    }
}

} // namespace
