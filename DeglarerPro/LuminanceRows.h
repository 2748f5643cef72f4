#pragma once
#include <cstdint>
#include <vector>

#include "../include/PixelFormat.h"

// Luminance of one pixel. The 8-bit weights add up to 255, not 256, so white has luminance 254.
inline unsigned int Luminance8u(unsigned int red, unsigned int green, unsigned int blue)
{
    return (76u * red + 149u * green + 30u * blue) >> 8;
}

// The float weights are the single-precision numbers 0x3E989375, 0x3F160419 and 0x3DE76C8B;
// the products are added in this order.
inline float Luminance32f(float red, float green, float blue)
{
    return (0x1.3126eap-2f * red + 0x1.2c0832p-1f * green) + 0x1.ced916p-4f * blue;
}

// Sums of the luminance over one row of `width` pixels, one set for each instruction set. The
// 8-bit sums are exact integers in every set; the float sums are doubles that differ between
// sets only in the order of their additions.
struct LuminanceRowKernels {
    const char* name;
    uint64_t (*sum8u)(const VideoSample* row, int width);
    uint64_t (*sum8uSwapped)(const VideoSampleSwapped* row, int width);
    double (*sum32f)(const VideoSampleFloat* row, int width);
    double (*sum32fSwapped)(const VideoSampleSwappedFloat* row, int width);
};

extern const LuminanceRowKernels kLuminanceRowsPlain;
extern const LuminanceRowKernels kLuminanceRowsAvx2;
extern const LuminanceRowKernels kLuminanceRowsAvx512;

// The sets this processor can run, the plain one first.
const std::vector<const LuminanceRowKernels*>& AvailableLuminanceRowKernels();

// The widest set this processor can run, chosen once when the library loads.
const LuminanceRowKernels& ChosenLuminanceRowKernels();
