// Every variant of the pixel members that this processor can run, against the plain one, bit for
// bit: random sizes, odd widths, steps wider than the row, starts off any alignment, and every
// picture ending exactly at an inaccessible page, so that an over-read or over-write faults here.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "../primitives/ippi.h"
#include "GuardedBlock.h"
#include "VariantIndex.h"

namespace
{

// A picture of a member: bytes a pixel, and the bytes of the last pixel that the member may touch
// (less than a pixel for alpha-skipping forms and channel pointers).
struct Shape {
    size_t pixelBytes;
    size_t lastPixelBytes;
};
const Shape kNone = {0, 0};

struct Call {
    const uint8_t* src1;
    int src1Step;
    const uint8_t* src2;
    int src2Step;
    uint8_t* dst; // also the picture of an in-place member
    int dstStep;
    IppiSize size;
};

struct Member {
    std::string name;
    Shape src1;
    Shape src2;
    Shape dst;
    bool floats;
    int minWidth;
    std::function<IppStatus(const Call&)> run;
};

const float* F(const uint8_t* p)
{
    return reinterpret_cast<const float*>(p);
}

float* F(uint8_t* p)
{
    return reinterpret_cast<float*>(p);
}

const Ipp32f kValue3[3] = {0.5f, -1.25f, 3e-3f};
const Ipp32f kFactor3[3] = {1.5f, -0.75f, 255.0f};
const Ipp32f kTwist[3][4] = {
    {0.299f, 0.587f, 0.114f, 0.0625f}, {-0.1687f, -0.3313f, 0.5f, 0.5f}, {0.5f, -0.4187f, -0.0813f, -0.25f}};
const Ipp32f kThreshold[4] = {0.25f, 0.5f, -0.5f, 0.75f};
const Ipp32f kReplacement[4] = {1.0f, 2.0f, 3.0f, 4.0f};
const Ipp8u kPixel8u[4] = {1, 128, 254, 255};
const Ipp32f kPixel32f[4] = {-0.5f, 0.25f, 1.5f, 1.0f};

std::vector<Member> Members()
{
    const Shape b1 = {1, 1}, b2 = {2, 2}, b4 = {4, 4}, f1 = {4, 4}, f4 = {16, 16};
    const Shape byteChannel = {4, 1}, floatChannel = {16, 4}, floatColour = {16, 12};
    std::vector<Member> members = {
        {"Copy_8u_C1R", b1, kNone, b1, false, 1,
         [](const Call& c) { return ippiCopy_8u_C1R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"Copy_8u_C4R", b4, kNone, b4, false, 1,
         [](const Call& c) { return ippiCopy_8u_C4R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"Copy_32f_C1R", f1, kNone, f1, true, 1,
         [](const Call& c) { return ippiCopy_32f_C1R(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size); }},
        {"Copy_32f_C4R", f4, kNone, f4, true, 1,
         [](const Call& c) { return ippiCopy_32f_C4R(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size); }},
        {"Copy_8u_C4C1R", byteChannel, kNone, b1, false, 1,
         [](const Call& c) { return ippiCopy_8u_C4C1R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"Copy_32f_C4C1R", floatChannel, kNone, f1, true, 1,
         [](const Call& c) { return ippiCopy_32f_C4C1R(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size); }},
        {"Copy_8u_C1C4R", b1, kNone, byteChannel, false, 1,
         [](const Call& c) { return ippiCopy_8u_C1C4R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"Copy_32f_C1C4R", f1, kNone, floatChannel, true, 1,
         [](const Call& c) { return ippiCopy_32f_C1C4R(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size); }},
        {"Copy_8u_C4CR", byteChannel, kNone, byteChannel, false, 1,
         [](const Call& c) { return ippiCopy_8u_C4CR(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"Copy_32f_C4CR", floatChannel, kNone, floatChannel, true, 1,
         [](const Call& c) { return ippiCopy_32f_C4CR(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size); }},
        {"Set_8u_C1R", kNone, kNone, b1, false, 1,
         [](const Call& c) { return ippiSet_8u_C1R(0xa5, c.dst, c.dstStep, c.size); }},
        {"Set_32f_C1R", kNone, kNone, f1, true, 1,
         [](const Call& c) { return ippiSet_32f_C1R(-0.375f, F(c.dst), c.dstStep, c.size); }},
        {"Set_8u_C4R", kNone, kNone, b4, false, 1,
         [](const Call& c) { return ippiSet_8u_C4R(kPixel8u, c.dst, c.dstStep, c.size); }},
        {"Set_32f_C4R", kNone, kNone, f4, true, 1,
         [](const Call& c) { return ippiSet_32f_C4R(kPixel32f, F(c.dst), c.dstStep, c.size); }},
        {"Set_8u_C4CR", kNone, kNone, byteChannel, false, 1,
         [](const Call& c) { return ippiSet_8u_C4CR(0x3c, c.dst, c.dstStep, c.size); }},
        {"Set_32f_C4CR", kNone, kNone, floatChannel, true, 1,
         [](const Call& c) { return ippiSet_32f_C4CR(2.5f, F(c.dst), c.dstStep, c.size); }},
        {"AlphaPremul_8u_AC4R", b4, kNone, b4, false, 1,
         [](const Call& c) { return ippiAlphaPremul_8u_AC4R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"YCbCr422ToBGR_8u_C2C4R", b2, kNone, b4, false, 2,
         [](const Call& c) { return ippiYCbCr422ToBGR_8u_C2C4R(c.src1, c.src1Step, c.dst, c.dstStep, c.size, 0x5a); }},
        {"BGRToYCbCr422_8u_AC4C2R", b4, kNone, b2, false, 2,
         [](const Call& c) { return ippiBGRToYCbCr422_8u_AC4C2R(c.src1, c.src1Step, c.dst, c.dstStep, c.size); }},
        {"AddC_32f_AC4R", floatColour, kNone, floatColour, true, 1,
         [](const Call& c) { return ippiAddC_32f_AC4R(F(c.src1), c.src1Step, kValue3, F(c.dst), c.dstStep, c.size); }},
        {"AddC_32f_AC4IR", kNone, kNone, floatColour, true, 1,
         [](const Call& c) { return ippiAddC_32f_AC4IR(kValue3, F(c.dst), c.dstStep, c.size); }},
        {"MulC_32f_AC4R", floatColour, kNone, floatColour, true, 1,
         [](const Call& c) { return ippiMulC_32f_AC4R(F(c.src1), c.src1Step, kFactor3, F(c.dst), c.dstStep, c.size); }},
        {"MulC_32f_AC4IR", kNone, kNone, floatColour, true, 1,
         [](const Call& c) { return ippiMulC_32f_AC4IR(kFactor3, F(c.dst), c.dstStep, c.size); }},
        {"ColorTwist_32f_AC4R", floatColour, kNone, floatColour, true, 1,
         [](const Call& c) {
             return ippiColorTwist_32f_AC4R(F(c.src1), c.src1Step, F(c.dst), c.dstStep, c.size, kTwist);
         }},
        {"ColorTwist_32f_AC4IR", kNone, kNone, floatColour, true, 1,
         [](const Call& c) { return ippiColorTwist_32f_AC4IR(F(c.dst), c.dstStep, c.size, kTwist); }},
        {"Sqr_32f_C4IR", kNone, kNone, f4, true, 1,
         [](const Call& c) { return ippiSqr_32f_C4IR(F(c.dst), c.dstStep, c.size); }},
        {"Sqrt_32f_C4IR", kNone, kNone, f4, true, 1,
         [](const Call& c) { return ippiSqrt_32f_C4IR(F(c.dst), c.dstStep, c.size); }},
        {"Threshold_LTVal_32f_C4IR", kNone, kNone, f4, true, 1,
         [](const Call& c) {
             return ippiThreshold_LTVal_32f_C4IR(F(c.dst), c.dstStep, c.size, kThreshold, kReplacement);
         }},
    };
    for (int type = ippAlphaOver; type <= ippAlphaPlusPremul; ++type)
        members.push_back(
            {"AlphaComp_8u_AC4R type " + std::to_string(type), b4, b4, b4, false, 1, [type](const Call& c) {
                 return ippiAlphaComp_8u_AC4R(c.src1, c.src1Step, c.src2, c.src2Step, c.dst, c.dstStep, c.size,
                                              static_cast<IppiAlphaType>(type));
             }});
    // In place, as the processors may call them: the SSE4.1 kernels read the byte before each block
    // of four pixels, which the block before has already written.
    members.push_back({"AlphaPremul_8u_AC4R in place", kNone, kNone, b4, false, 1, [](const Call& c) {
                           return ippiAlphaPremul_8u_AC4R(c.dst, c.dstStep, c.dst, c.dstStep, c.size);
                       }});
    for (IppiAlphaType type : {ippAlphaOver, ippAlphaOverPremul})
        members.push_back({"AlphaComp_8u_AC4R type " + std::to_string(type) + " onto its first picture", kNone, b4,
                           b4, false, 1, [type](const Call& c) {
                               return ippiAlphaComp_8u_AC4R(c.dst, c.dstStep, c.src2, c.src2Step, c.dst, c.dstStep,
                                                            c.size, type);
                           }});
    const int orders[][4] = {{3, 2, 1, 0}, {0, 0, 0, 0}, {2, 0, 3, 1}, {0, 1, 2, 3}};
    for (const auto& order : orders)
        members.push_back({"SwapChannels_8u_C4IR order " + std::to_string(order[0]) + std::to_string(order[1]) +
                               std::to_string(order[2]) + std::to_string(order[3]),
                           kNone, kNone, b4, false, 1, [order](const Call& c) {
                               return ippiSwapChannels_8u_C4IR(c.dst, c.dstStep, c.size, order);
                           }});
    return members;
}

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
    const float edgeValues[] = {0.0f,   -0.0f, std::numeric_limits<float>::infinity(),
                              -1.0f,  1.0f,  std::numeric_limits<float>::quiet_NaN(),
                              1e-40f, 3e38f};
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
    IppiSize size;
    IppStatus status;
};

Trial RunAt(const Member& member, IppiSize size, const size_t widen[3], uint32_t seed, int index)
{
    Trial trial;
    trial.size = size;
    trial.src1 = Place(member.src1, size, widen[0], member.floats, seed);
    trial.src2 = Place(member.src2, size, widen[1], member.floats, seed + 1);
    trial.dst = Place(member.dst, size, widen[2], member.floats, seed + 2);
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
                const int width = member.minWidth + static_cast<int>(t % 3 == 0 ? random() % 300 : random() % 20);
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
