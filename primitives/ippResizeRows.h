#pragma once
// The row passes of the resize engine and the loop that drives them. Each variant's file includes
// this and compiles its own copy (everything here has internal linkage), so that one variant's
// instructions never end up in another's code; a variant replaces the passes it makes faster.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ippResizeEngine.h"

namespace ResizeEngine {
namespace {

template <typename T>
const T* SourceRow(const Job& job, int y)
{
    return reinterpret_cast<const T*>(job.src + y * job.srcStep);
}

template <typename T>
T* OutputRow(const Job& job, int y)
{
    return reinterpret_cast<T*>(job.dst + y * job.dstStep);
}

// Cubic and Lanczos bytes: v + 0.5000001 in double precision, truncated, limited to a byte.
inline uint8_t ToByte(float value)
{
    const double rounded = static_cast<double>(value) + 0.5000001;
    if (!(rounded > 0))
        return 0;
    if (rounded >= 255)
        return 255;
    return static_cast<uint8_t>(rounded);
}

template <typename T, int NCH>
void ResampleNearest(const Job& job)
{
    const int32_t* __restrict first = job.along.first;
    const int columns = job.along.count;
    for (int y = 0; y < job.down.count; ++y) {
        const T* __restrict srcRow = SourceRow<T>(job, job.down.first[y]);
        T* __restrict out = OutputRow<T>(job, y);
        for (int x = 0; x < columns; ++x) {
            const T* pixel = srcRow + static_cast<ptrdiff_t>(first[x]) * NCH;
            for (int c = 0; c < NCH; ++c)
                out[x * NCH + c] = pixel[c];
        }
    }
}

// An edge position of linear takes its sample whole: for bytes that is the row sum with all weight
// on the sample, 64 times it.
template <int NCH, typename T, typename Store>
void AlongEdges(const T* __restrict src, const AxisTable& along, Store* __restrict out)
{
    for (int x = 0; x < along.leftEdge; ++x)
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = static_cast<Store>(std::is_same_v<T, uint8_t> ? src[c] * 64 : src[c]);
    const T* last = src + static_cast<ptrdiff_t>(along.samples - 1) * NCH;
    for (int x = along.rightEdge; x < along.count; ++x)
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = static_cast<Store>(std::is_same_v<T, uint8_t> ? last[c] * 64 : last[c]);
}

// Linear along a byte row: sums of 16 bits with 6 fractional bits.
template <int NCH>
void AlongLinear(const uint8_t* __restrict src, const AxisTable& along, int16_t* __restrict out)
{
    AlongEdges<NCH>(src, along, out);
    const int32_t* __restrict first = along.first;
    const int16_t* __restrict weights = along.fixed;
    for (int x = along.leftEdge; x < along.rightEdge; ++x) {
        const uint8_t* pair = src + static_cast<ptrdiff_t>(first[x]) * NCH;
        const int32_t w0 = weights[2 * x], w1 = weights[2 * x + 1];
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = static_cast<int16_t>((w0 * pair[c] + w1 * pair[NCH + c] + 128) >> 8);
    }
}

template <int NCH>
void AlongLinear(const float* __restrict src, const AxisTable& along, float* __restrict out)
{
    AlongEdges<NCH>(src, along, out);
    const int32_t* __restrict first = along.first;
    const float* __restrict fractions = along.weights;
    for (int x = along.leftEdge; x < along.rightEdge; ++x) {
        const float* pair = src + static_cast<ptrdiff_t>(first[x]) * NCH;
        const float t = fractions[x];
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = pair[c] + (pair[NCH + c] - pair[c]) * t;
    }
}

// Cubic and Lanczos along a row, in single precision, neither rounded nor limited.
template <int TAPS, typename T, int NCH>
void AlongWeighted(const T* __restrict src, const AxisTable& along, float* __restrict out)
{
    const int32_t* __restrict first = along.first;
    const float* __restrict weights = along.weights;
    for (int x = 0; x < along.count; ++x) {
        const T* taps = src + static_cast<ptrdiff_t>(first[x]) * NCH;
        const float* w = weights + static_cast<ptrdiff_t>(x) * TAPS;
        for (int c = 0; c < NCH; ++c) {
            float sum = static_cast<float>(taps[c]) * w[0];
            for (int k = 1; k < TAPS; ++k)
                sum += static_cast<float>(taps[k * NCH + c]) * w[k];
            out[x * NCH + c] = sum;
        }
    }
}

// Linear down byte rows: weights of 14 bits on sums with 6 give 20 fractional bits.
inline void DownLinear(const int16_t* __restrict r0, const int16_t* __restrict r1, const int16_t* weights,
                       uint8_t* __restrict out, int length)
{
    const int16_t u0 = weights[0], u1 = weights[1];
    for (int i = 0; i < length; ++i)
        out[i] = static_cast<uint8_t>((r0[i] * u0 + r1[i] * u1 + 0x80000) >> 20);
}

inline void DownLinear(const float* __restrict r0, const float* __restrict r1, float u, float* __restrict out,
                       int length)
{
    const float u0 = 1.0f - u;
    for (int i = 0; i < length; ++i)
        out[i] = r0[i] * u0 + r1[i] * u;
}

template <int TAPS>
float DownSum(const float* const* rows, const float* w, int i)
{
    float sum = rows[0][i] * w[0];
    for (int k = 1; k < TAPS; ++k)
        sum += rows[k][i] * w[k];
    return sum;
}

template <int TAPS>
void DownWeighted(const float* const* rows, const float* w, uint8_t* __restrict out, int length)
{
    for (int i = 0; i < length; ++i)
        out[i] = ToByte(DownSum<TAPS>(rows, w, i));
}

template <int TAPS>
void DownWeighted(const float* const* rows, const float* w, float* __restrict out, int length)
{
    for (int i = 0; i < length; ++i)
        out[i] = DownSum<TAPS>(rows, w, i);
}

// Linear keeps bytes in 16-bit fixed point between the passes, everything else single precision.
template <typename T>
using LinearStore = std::conditional_t<std::is_same_v<T, uint8_t>, int16_t, float>;

template <typename T, int NCH>
struct LinearPasses {
    using Store = LinearStore<T>;
    static void Along(const T* src, const AxisTable& along, Store* out) { AlongLinear<NCH>(src, along, out); }
    static void Down(const Store* const* rows, const AxisTable& down, int y, T* out, int length)
    {
        if constexpr (std::is_same_v<T, uint8_t>)
            DownLinear(rows[0], rows[1], down.fixed + 2 * static_cast<ptrdiff_t>(y), out, length);
        else
            DownLinear(rows[0], rows[1], down.weights[y], out, length);
    }
};

template <int TAPS, typename T, int NCH>
struct WeightedPasses {
    using Store = float;
    static void Along(const T* src, const AxisTable& along, Store* out)
    {
        AlongWeighted<TAPS, T, NCH>(src, along, out);
    }
    static void Down(const Store* const* rows, const AxisTable& down, int y, T* out, int length)
    {
        DownWeighted<TAPS>(rows, down.weights + static_cast<ptrdiff_t>(y) * TAPS, out, length);
    }
};

// Each output row needs `taps` source rows, clamped to the picture. A source row's pass is kept in
// store (row mod taps) and redone only when a row not held there is needed; the rows of one output
// row lie within `taps` consecutive indices, so they never compete for a store.
template <typename Passes, typename T, int NCH>
void ResampleSeparable(const Job& job, int taps)
{
    using Store = typename Passes::Store;
    int held[kMaxTaps];
    std::fill(held, held + kMaxTaps, -1);
    const Store* rows[kMaxTaps];
    const int length = job.along.count * NCH;
    const int lastRow = job.down.samples - 1;
    for (int y = 0; y < job.down.count; ++y) {
        for (int k = 0; k < taps; ++k) {
            const int row = std::min(std::max(job.down.first[y] + k, 0), lastRow);
            Store* store = static_cast<Store*>(job.stores[row % taps]);
            if (held[row % taps] != row) {
                Passes::Along(SourceRow<T>(job, row), job.along, store);
                held[row % taps] = row;
            }
            rows[k] = store;
        }
        Passes::Down(rows, job.down, y, OutputRow<T>(job, y), length);
    }
}

// Runs a job with a variant's passes: Linear<T, NCH> and Weighted<TAPS, T, NCH>.
template <template <typename, int> class Linear, template <int, typename, int> class Weighted, typename T, int NCH>
void ResampleAs(const Job& job)
{
    switch (job.kernel) {
    case Kernel::Nearest: ResampleNearest<T, NCH>(job); break;
    case Kernel::Linear: ResampleSeparable<Linear<T, NCH>, T, NCH>(job, 2); break;
    case Kernel::Cubic: ResampleSeparable<Weighted<4, T, NCH>, T, NCH>(job, 4); break;
    case Kernel::Lanczos: ResampleSeparable<Weighted<6, T, NCH>, T, NCH>(job, 6); break;
    }
}

template <template <typename, int> class Linear, template <int, typename, int> class Weighted>
void ResampleWith(const Job& job)
{
    if (job.floats)
        job.channels == 1 ? ResampleAs<Linear, Weighted, float, 1>(job) : ResampleAs<Linear, Weighted, float, 4>(job);
    else
        job.channels == 1 ? ResampleAs<Linear, Weighted, uint8_t, 1>(job)
                          : ResampleAs<Linear, Weighted, uint8_t, 4>(job);
}

} // namespace
} // namespace ResizeEngine
