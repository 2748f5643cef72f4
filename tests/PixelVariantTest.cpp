// Every variant of the pixel members that this processor can run, against the plain one, bit for
// bit: random sizes, odd widths, steps wider than the row, starts off any alignment, and every
// picture ending exactly at an inaccessible page, so that an over-read or over-write faults here.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "GuardedBlock.h"
#include "PixelMembers.h"
#include "VariantIndex.h"

namespace
{

using namespace PixelMembers;

// Samples that probe edges: bytes favour 0, 1, 254 and 255; floats include zeros of both signs,
// infinities, not-a-numbers, tiny and huge values among ordinary ones.
void Fill(uint8_t* p, size_t bytes, bool floats, std::mt19937& random)
{
    if (!floats) {
        const uint8_t edges[] = {0, 1, 254, 255};
        for (size_t i = 0; i < bytes; ++i)
            p[i] = random() % 4 == 0 ? edges[random() % 4] : static_cast<uint8_t>(random());
        return;
    }
    const float edgeValues[] = {0.0f, -0.0f, std::numeric_limits<float>::infinity(), -1.0f, 1.0f,
                                std::numeric_limits<float>::quiet_NaN(), 1e-40f, 3e38f};
    std::uniform_real_distribution<float> ordinary(-2.0f, 2.0f);
    for (size_t i = 0; i + 4 <= bytes; i += 4) {
        const float v = random() % 8 == 0 ? edgeValues[random() % 8] : ordinary(random);
        std::memcpy(p + i, &v, 4);
    }
    for (size_t i = bytes / 4 * 4; i < bytes; ++i)
        p[i] = static_cast<uint8_t>(random());
}

struct Picture {
    std::unique_ptr<GuardedBlock> block;
    size_t bytes = 0;
    int step = 0;
};

// A picture whose region's last touched byte is the last readable one.
Picture Place(const Shape& shape, IppiSize size, size_t widen, bool floats, uint32_t seed)
{
    Picture picture;
    if (shape.pixelBytes == 0)
        return picture;
    // Float rows keep the samples' own alignment; bytes may start anywhere.
    picture.step = static_cast<int>(size.width * shape.pixelBytes + (floats ? widen / 4 * 4 : widen));
    picture.bytes = static_cast<size_t>(size.height - 1) * picture.step + (size.width - 1) * shape.pixelBytes +
                    shape.lastPixelBytes;
    picture.block = std::make_unique<GuardedBlock>(picture.bytes, GuardedBlock::Guard::AfterEnd);
    std::mt19937 random(seed);
    Fill(picture.block->Data(), picture.bytes, floats, random);
    return picture;
}

struct Trial {
    Picture src1, src2, dst;
    IppStatus status;
};

Trial RunAt(const Member& member, IppiSize size, const size_t widen[3], uint32_t seed, int index)
{
    Trial trial;
    trial.src1 = Place(member.src1, size, widen[0], member.Floats(), seed);
    trial.src2 = Place(member.src2, size, widen[1], member.Floats(), seed + 1);
    trial.dst = Place(member.dst, size, widen[2], member.Floats(), seed + 2);
    auto data = [](Picture& p) { return p.block ? p.block->Data() : nullptr; };
    const Call call = {
        data(trial.src1), trial.src1.step, data(trial.src2), trial.src2.step, data(trial.dst), trial.dst.step, size};
    ScopedVariantIndex variant(index);
    trial.status = member.run(call);
    return trial;
}

bool SameBytes(Picture& a, Picture& b)
{
    return a.bytes == b.bytes && (a.bytes == 0 || std::memcmp(a.block->Data(), b.block->Data(), a.bytes) == 0);
}

TEST(PixelVariants, EveryVariantMatchesThePlainOneBitForBit)
{
    std::mt19937 random(20261123);
    const std::vector<Member> members = Members();
    for (int index : RunnableVariantIndices()) {
        if (index == 0)
            continue;
        for (const Member& member : members) {
            for (int t = 0; t < 60; ++t) {
                // Mostly narrow pictures, where the vector loops meet their tails, and some wide ones.
                const int width = member.MinWidth() + static_cast<int>(t % 3 == 0 ? random() % 300 : random() % 20);
                const IppiSize size = {width, 1 + static_cast<int>(random() % 5)};
                const bool contiguous = t % 4 == 0;
                const size_t widen[3] = {contiguous ? 0 : random() % 37, contiguous ? 0 : random() % 37,
                                         contiguous ? 0 : random() % 37};
                const uint32_t seed = static_cast<uint32_t>(random());
                Trial plain = RunAt(member, size, widen, seed, 0);
                Trial fast = RunAt(member, size, widen, seed, index);
                SCOPED_TRACE(member.name + " at index " + std::to_string(index) + ", " + std::to_string(size.width) +
                             "x" + std::to_string(size.height) + (contiguous ? " contiguous" : ""));
                EXPECT_EQ(plain.status, fast.status);
                EXPECT_TRUE(SameBytes(plain.dst, fast.dst));
                EXPECT_TRUE(SameBytes(plain.src1, fast.src1));
                if (HasFailure())
                    return;
            }
        }
    }
}

} // namespace
