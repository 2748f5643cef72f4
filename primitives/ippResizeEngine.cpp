#include "ippResizeEngine.h"

#include <algorithm>

#include "ippResizeRows.h"

namespace ResizeEngine {

namespace {

const int64_t kAlignment = 16;

int64_t RoundUp(int64_t bytes)
{
    return (bytes + kAlignment - 1) / kAlignment * kAlignment;
}

// Along one axis: first samples, then the weights a position keeps for the kernel.
void TakeAxis(Workspace& work, Kernel kernel, bool fixedPoint, AxisTable& table)
{
    table.first = static_cast<int32_t*>(work.Take(int64_t{4} * table.count));
    table.weights = nullptr;
    table.fixed = nullptr;
    if (kernel == Kernel::Linear && fixedPoint)
        table.fixed = static_cast<int16_t*>(work.Take(int64_t{4} * table.count));
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
    ResampleWith<LinearPasses, WeightedPasses>(job);
}

} // namespace ResizeEngine
