#pragma once
// The pixel members of the primitive layer, each with the shapes of its pictures and one way to
// call it, for the tests that run every member alike: variant against variant, and with bad
// arguments.
#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "../primitives/ippi.h"

namespace PixelMembers {

// A picture of a member: bytes a pixel, and the bytes of the last pixel that the member may touch
// (less than a pixel for alpha-skipping forms and channel pointers).
struct Shape {
    size_t pixelBytes;
    size_t lastPixelBytes;
};
const Shape kNone = {0, 0};

// The pictures of one call: two sources and a destination (also the picture of an in-place
// member), each with its step, and the size.
struct Call {
    const uint8_t* s;
    int sStep;
    const uint8_t* s2;
    int s2Step;
    uint8_t* d;
    int dStep;
    IppiSize z;
};

struct Member {
    std::string name;
    Shape src1;
    Shape src2;
    Shape dst;
    std::function<IppStatus(const Call&)> run;
    bool Floats() const { return name.find("32f") != std::string::npos; }
    int MinWidth() const { return name.find("422") != std::string::npos ? 2 : 1; }   // pixels in pairs
    bool InPlace() const { return src1.pixelBytes == 0; }                              // no source of its own
    // Whether the step is checked, after the size; the swap checks it before, and alone.
    bool ChecksSteps() const
    {
        for (const char* checker : {"ColorTwist", "Sqr", "Threshold"})
            if (name.find(checker) != std::string::npos)
                return true;
        return false;
    }
};

inline const float* F(const uint8_t* p) { return reinterpret_cast<const float*>(p); }
inline float* F(uint8_t* p) { return reinterpret_cast<float*>(p); }

const Ipp32f kValue3[3] = {0.5f, -1.25f, 3e-3f};
const Ipp32f kFactor3[3] = {1.5f, -0.75f, 255.0f};
const Ipp32f kTwist[3][4] = {
    {0.299f, 0.587f, 0.114f, 0.0625f}, {-0.1687f, -0.3313f, 0.5f, 0.5f}, {0.5f, -0.4187f, -0.0813f, -0.25f}};
const Ipp32f kThreshold[4] = {0.25f, 0.5f, -0.5f, 0.75f};
const Ipp32f kReplacement[4] = {1.0f, 2.0f, 3.0f, 4.0f};
const Ipp8u kPixel8u[4] = {1, 128, 254, 255};
const Ipp32f kPixel32f[4] = {-0.5f, 0.25f, 1.5f, 1.0f};

// A member named without its "ippi", the shapes of its source and destination, and its arguments.
#define MEMBER(name, src, dst, ...) {#name, src, kNone, dst, [](const Call& c) { return ippi##name(__VA_ARGS__); }}

inline std::vector<Member> Members()
{
    const Shape b1 = {1, 1}, b4 = {4, 4}, f1 = {4, 4}, f4 = {16, 16};
    const Shape byteChannel = {4, 1}, floatChannel = {16, 4}, floatColour = {16, 12};
    std::vector<Member> members = {
        MEMBER(Copy_8u_C1R, b1, b1, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(Copy_8u_C4R, b4, b4, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(Copy_32f_C1R, f1, f1, F(c.s), c.sStep, F(c.d), c.dStep, c.z),
        MEMBER(Copy_32f_C4R, f4, f4, F(c.s), c.sStep, F(c.d), c.dStep, c.z),
        MEMBER(Copy_8u_C4C1R, byteChannel, b1, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(Copy_32f_C4C1R, floatChannel, f1, F(c.s), c.sStep, F(c.d), c.dStep, c.z),
        MEMBER(Copy_8u_C1C4R, b1, byteChannel, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(Copy_32f_C1C4R, f1, floatChannel, F(c.s), c.sStep, F(c.d), c.dStep, c.z),
        MEMBER(Copy_8u_C4CR, byteChannel, byteChannel, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(Copy_32f_C4CR, floatChannel, floatChannel, F(c.s), c.sStep, F(c.d), c.dStep, c.z),
        MEMBER(Set_8u_C1R, kNone, b1, 0xa5, c.d, c.dStep, c.z),
        MEMBER(Set_32f_C1R, kNone, f1, -0.375f, F(c.d), c.dStep, c.z),
        MEMBER(Set_8u_C4R, kNone, b4, kPixel8u, c.d, c.dStep, c.z),
        MEMBER(Set_32f_C4R, kNone, f4, kPixel32f, F(c.d), c.dStep, c.z),
        MEMBER(Set_8u_C4CR, kNone, byteChannel, 0x3c, c.d, c.dStep, c.z),
        MEMBER(Set_32f_C4CR, kNone, floatChannel, 2.5f, F(c.d), c.dStep, c.z),
        MEMBER(AlphaPremul_8u_AC4R, b4, b4, c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(YCbCr422ToBGR_8u_C2C4R, Shape({2, 2}), b4, c.s, c.sStep, c.d, c.dStep, c.z, 0x5a),
        MEMBER(BGRToYCbCr422_8u_AC4C2R, b4, Shape({2, 2}), c.s, c.sStep, c.d, c.dStep, c.z),
        MEMBER(AddC_32f_AC4R, floatColour, floatColour, F(c.s), c.sStep, kValue3, F(c.d), c.dStep, c.z),
        MEMBER(AddC_32f_AC4IR, kNone, floatColour, kValue3, F(c.d), c.dStep, c.z),
        MEMBER(MulC_32f_AC4R, floatColour, floatColour, F(c.s), c.sStep, kFactor3, F(c.d), c.dStep, c.z),
        MEMBER(MulC_32f_AC4IR, kNone, floatColour, kFactor3, F(c.d), c.dStep, c.z),
        MEMBER(ColorTwist_32f_AC4R, floatColour, floatColour, F(c.s), c.sStep, F(c.d), c.dStep, c.z, kTwist),
        MEMBER(ColorTwist_32f_AC4IR, kNone, floatColour, F(c.d), c.dStep, c.z, kTwist),
        MEMBER(Sqr_32f_C4IR, kNone, f4, F(c.d), c.dStep, c.z),
        MEMBER(Sqrt_32f_C4IR, kNone, f4, F(c.d), c.dStep, c.z),
        MEMBER(Threshold_LTVal_32f_C4IR, kNone, f4, F(c.d), c.dStep, c.z, kThreshold, kReplacement),
        // In place, as the processors may call it: the SSE4.1 kernels read the byte before each
        // block of four pixels, which the block before has already written.
        {"AlphaPremul_8u_AC4R in place", kNone, kNone, b4,
         [](const Call& c) { return ippiAlphaPremul_8u_AC4R(c.d, c.dStep, c.d, c.dStep, c.z); }},
    };
    for (int type = ippAlphaOver; type <= ippAlphaPlusPremul; ++type) {
        const auto alphaType = static_cast<IppiAlphaType>(type);
        members.push_back({"AlphaComp_8u_AC4R type " + std::to_string(type), b4, b4, b4, [=](const Call& c) {
                               return ippiAlphaComp_8u_AC4R(c.s, c.sStep, c.s2, c.s2Step, c.d, c.dStep, c.z, alphaType);
                           }});
        if (type == ippAlphaOver || type == ippAlphaOverPremul)   // onto its first picture
            members.push_back({members.back().name + " in place", kNone, b4, b4, [=](const Call& c) {
                                   return ippiAlphaComp_8u_AC4R(c.d, c.dStep, c.s2, c.s2Step, c.d, c.dStep, c.z,
                                                                alphaType);
                               }});
    }
    for (const auto& order : {std::array<int, 4>{3, 2, 1, 0}, {0, 0, 0, 0}, {2, 0, 3, 1}, {0, 1, 2, 3}})
        members.push_back({"SwapChannels_8u_C4IR order " + std::to_string(order[0]) + std::to_string(order[1]) +
                               std::to_string(order[2]) + std::to_string(order[3]),
                           kNone, kNone, b4,
                           [order](const Call& c) { return ippiSwapChannels_8u_C4IR(c.d, c.dStep, c.z, &order[0]); }});
    return members;
}

#undef MEMBER

} // namespace PixelMembers
