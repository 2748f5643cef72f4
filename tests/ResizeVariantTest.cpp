// Every variant of the resize members present against the plain one, bit for bit: random sizes,
// odd widths, starts off any vector alignment, and pictures and work space against guard pages.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
#include "GuardedBlock.h"
#include "ResizeTestPicture.h"

namespace {

TEST(ResizeVariants, Sse41GivesThePlainResultsBitForBit)
{
    if (!__builtin_cpu_supports("sse4.1"))
        GTEST_SKIP() << "this processor has no SSE4.1";
    std::mt19937 rng(61);
    auto pick = [&rng](int low, int high) { return std::uniform_int_distribution<int>(low, high)(rng); };
    const double factors[] = {1.0, 2.0, 0.5, 0.37, 1.43, 3.3, 0.667, 2.51};
    for (int round = 0; round < 800; ++round) {
        const Member& m = kMembers[round % 6];
        SCOPED_TRACE(testing::Message() << "round " << round << " " << m);
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
        ASSERT_EQ(RunMember(m, c, src.Data(), plainDst.Data(), work.Data(), Variant::Plain),
                  RunMember(m, c, src.Data(), fastDst.Data(), work.Data(), Variant::Sse41));
        ASSERT_EQ(0, std::memcmp(plainDst.Data(), fastDst.Data(), dstBytes))
            << "mode " << c.interpolation << " " << c.srcSize.width << "x" << c.srcSize.height;
    }
}

} // namespace
