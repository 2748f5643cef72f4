#pragma once
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <vector>

#include "../primitives/ippdefs.h"

// A slow, direct evaluation of the resize members' formulas, output pixel by output pixel, in
// double precision, with no tables, no folding and no row stores: what the members must agree with.
namespace ResizeReference {

// Sample (x, y, channel) of the source picture; x and y always lie inside it.
using Sampler = std::function<double(int x, int y, int c)>;

struct Source {
    Sampler sample;
    IppiSize size;
    int channels;
    bool bytes;   // 8-bit samples: linear works in fixed point, results are rounded and limited
};

// The exact values of the written block of the destination picture, before the conversion to
// the sample type.
struct Expected {
    int64_t firstColumn = 0;
    int64_t firstRow = 0;
    int columns = 0;
    int rows = 0;
    int channels = 0;
    int interpolation = 0;   // after the reduction for small pictures
    bool bytes = false;
    std::vector<double> values;
    double At(int x, int y, int c) const { return values[(static_cast<size_t>(y) * columns + x) * channels + c]; }
};

// ippiResize_*: the block starts at the destination region's first pixel. An empty block for a
// call that writes nothing.
Expected Corners(const Source& src, IppiRect srcRoi, IppiSize dstRoiSize, double xFactor, double yFactor,
                 int interpolation);

// ippiResizeSqrPixel_*: the block is placed in the destination picture.
Expected Areas(const Source& src, IppiRect srcRoi, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
               double yShift, int interpolation);

// Compares a destination picture (origin, step in bytes, size in pixels) with the expectation:
// inside the block by the rounding of the sample type and kernel, outside it unchanged from
// `sentinel`.
testing::AssertionResult Matches(const Expected& expected, const uint8_t* dstOrigin, int dstStep, IppiSize dstSize,
                                 const std::vector<uint8_t>& sentinel);

// L(x) = 3 sin(pi x) sin(pi x / 3) / (pi x)^2, L(0) = 1.
double Lanczos3(double x);

} // namespace ResizeReference
