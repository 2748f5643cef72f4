#include "ippResizeEngine.h"

#include <algorithm>
#include <type_traits>

namespace ResizeEngine {

namespace {

const int64_t kAlignment = 16;
const int kMaxTaps = 6;

int64_t RoundUp(int64_t bytes)
{
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

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
uint8_t ToByte(float value)
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
    for (int y = 0; y < job.down.count; ++y) {
        const T* srcRow = SourceRow<T>(job, job.down.first[y]);
        T* out = OutputRow<T>(job, y);
        for (int x = 0; x < job.along.count; ++x) {
            const T* pixel = srcRow + static_cast<ptrdiff_t>(job.along.first[x]) * NCH;
            for (int c = 0; c < NCH; ++c)
                out[x * NCH + c] = pixel[c];
        }
    }
}

// Linear along a byte row: sums of 16 bits with 6 fractional bits. An edge position takes its
// sample whole, which is the same sum with all weight on that sample.
template <int NCH>
void AlongLinear(const uint8_t* src, const AxisTable& along, int32_t* out)
{
    int x = 0;
    for (; x < along.leftEdge; ++x)
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = src[c] << 6;
    for (; x < along.rightEdge; ++x) {
        const uint8_t* pair = src + static_cast<ptrdiff_t>(along.first[x]) * NCH;
        const int32_t w1 = along.fixed[x];
        const int32_t w0 = kFixedOne - w1;
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = (w0 * pair[c] + w1 * pair[NCH + c] + 128) >> 8;
    }
    for (; x < along.count; ++x) {
        const uint8_t* last = src + static_cast<ptrdiff_t>(along.first[x]) * NCH;
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = last[c] << 6;
    }
}

template <int NCH>
void AlongLinear(const float* src, const AxisTable& along, float* out)
{
    int x = 0;
    for (; x < along.leftEdge; ++x)
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = src[c];
    for (; x < along.rightEdge; ++x) {
        const float* pair = src + static_cast<ptrdiff_t>(along.first[x]) * NCH;
        const float t = along.weights[x];
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = pair[c] + (pair[NCH + c] - pair[c]) * t;
    }
    for (; x < along.count; ++x) {
        const float* last = src + static_cast<ptrdiff_t>(along.first[x]) * NCH;
        for (int c = 0; c < NCH; ++c)
            out[x * NCH + c] = last[c];
    }
}

// Cubic and Lanczos along a row, in single precision, neither rounded nor limited.
template <int TAPS, typename T, int NCH>
void AlongWeighted(const T* src, const AxisTable& along, float* out)
{
    for (int x = 0; x < along.count; ++x) {
        const T* taps = src + static_cast<ptrdiff_t>(along.first[x]) * NCH;
        const float* w = along.weights + static_cast<ptrdiff_t>(x) * TAPS;
        for (int c = 0; c < NCH; ++c) {
            float sum = static_cast<float>(taps[c]) * w[0];
            for (int k = 1; k < TAPS; ++k)
                sum += static_cast<float>(taps[k * NCH + c]) * w[k];
            out[x * NCH + c] = sum;
        }
    }
}

void DownLinear(const int32_t* r0, const int32_t* r1, int32_t u, uint8_t* out, int length)
{
    const int32_t u0 = kFixedOne - u;
    for (int i = 0; i < length; ++i)
        out[i] = static_cast<uint8_t>((r0[i] * u0 + r1[i] * u + 0x80000) >> 20);
}

void DownLinear(const float* r0, const float* r1, float u, float* out, int length)
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
void DownWeighted(const float* const* rows, const float* w, uint8_t* out, int length)
{
    for (int i = 0; i < length; ++i)
        out[i] = ToByte(DownSum<TAPS>(rows, w, i));
}

template <int TAPS>
void DownWeighted(const float* const* rows, const float* w, float* out, int length)
{
    for (int i = 0; i < length; ++i)
        out[i] = DownSum<TAPS>(rows, w, i);
}

// Linear keeps bytes in 16-bit fixed point between the passes, everything else single precision.
template <typename T>
struct StoreOf {
    using Type = float;
};
template <>
struct StoreOf<uint8_t> {
    using Type = int32_t;
};

template <typename T, int NCH>
struct LinearPasses {
    using Store = typename StoreOf<T>::Type;
    static void Along(const T* src, const AxisTable& along, Store* out) { AlongLinear<NCH>(src, along, out); }
    static void Down(const Store* const* rows, const AxisTable& down, int y, T* out, int length)
    {
        if constexpr (std::is_same_v<T, uint8_t>)
            DownLinear(rows[0], rows[1], down.fixed[y], out, length);
        else
            DownLinear(rows[0], rows[1], down.weights[y], out, length);
    }
};

template <int TAPS, typename T, int NCH>
struct WeightedPasses {
    using Store = float;
    static void Along(const T* src, const AxisTable& along, Store* out) { AlongWeighted<TAPS, T, NCH>(src, along, out); }
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

template <typename T, int NCH>
void ResampleAs(const Job& job)
{
    switch (job.kernel) {
    case Kernel::Nearest: ResampleNearest<T, NCH>(job); break;
    case Kernel::Linear: ResampleSeparable<LinearPasses<T, NCH>, T, NCH>(job, 2); break;
    case Kernel::Cubic: ResampleSeparable<WeightedPasses<4, T, NCH>, T, NCH>(job, 4); break;
    case Kernel::Lanczos: ResampleSeparable<WeightedPasses<6, T, NCH>, T, NCH>(job, 6); break;
    }
}

// Along one axis: first samples, then the weights a position keeps for the kernel.
void TakeAxis(Workspace& work, Kernel kernel, bool fixedPoint, AxisTable& table)
{
    table.first = static_cast<int32_t*>(work.Take(int64_t{4} * table.count));
    table.weights = nullptr;
    table.fixed = nullptr;
    if (kernel == Kernel::Linear && fixedPoint)
        table.fixed = static_cast<int32_t*>(work.Take(int64_t{4} * table.count));
    else if (kernel == Kernel::Linear)
        table.weights = static_cast<float*>(work.Take(int64_t{4} * table.count));
    else if (kernel != Kernel::Nearest)
        table.weights = static_cast<float*>(work.Take(int64_t{4} * table.count * TapCount(kernel)));
}

} // namespace

Workspace::Workspace(uint8_t* pBlock) : m_pStart(nullptr), m_nPad(kAlignment - 1), m_nUsed(0)
{
    if (pBlock != nullptr) {
        m_nPad = static_cast<int64_t>((kAlignment - reinterpret_cast<uintptr_t>(pBlock) % kAlignment) % kAlignment);
        m_pStart = pBlock + m_nPad;
    }
}

void* Workspace::Take(int64_t bytes)
{
    void* taken = m_pStart != nullptr ? m_pStart + m_nUsed : nullptr;
    m_nUsed += RoundUp(bytes);
    return taken;
}

int64_t Workspace::Bytes() const
{
    return m_nPad + m_nUsed;
}

void TakeWork(Workspace& work, Job& job)
{
    const bool fixedPoint = !job.floats;
    TakeAxis(work, job.kernel, fixedPoint, job.along);
    TakeAxis(work, job.kernel, fixedPoint, job.down);
    std::fill(job.stores, job.stores + kMaxTaps, nullptr);
    if (job.kernel == Kernel::Nearest)
        return;
    const int64_t storeBytes = int64_t{4} * job.along.count * job.channels;
    for (int k = 0; k < TapCount(job.kernel); ++k)
        job.stores[k] = work.Take(storeBytes);
}

int64_t WorkBytes(Kernel kernel, int channels, int columns, int rows)
{
    Job job;
    job.kernel = kernel;
    job.channels = channels;
    job.along.count = columns;
    job.down.count = rows;
    Workspace counter(nullptr);
    TakeWork(counter, job);
    return counter.Bytes();
}

void Resample(const Job& job)
{
    if (job.floats)
        job.channels == 1 ? ResampleAs<float, 1>(job) : ResampleAs<float, 4>(job);
    else
        job.channels == 1 ? ResampleAs<uint8_t, 1>(job) : ResampleAs<uint8_t, 4>(job);
}

} // namespace ResizeEngine
