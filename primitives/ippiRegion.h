#pragma once
// What the members share in walking a region of interest. Only the drivers of the plain variant's
// files include this; the files of other instruction sets hold row kernels alone.
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "ippdefs.h"

namespace IppRegion {

inline bool Holds(IppiSize size)
{
    return size.width >= 1 && size.height >= 1;
}

// The first sample of row y of a region whose rows lie step bytes apart.
template <typename T>
T* Row(T* first, int step, int y)
{
    using Byte = std::conditional_t<std::is_const_v<T>, const char, char>;
    return reinterpret_cast<T*>(reinterpret_cast<Byte*>(first) + static_cast<ptrdiff_t>(step) * y);
}

// True when rows follow one another without a gap, so that the region is one long row.
inline bool Contiguous(int step, IppiSize size, size_t pixelBytes)
{
    return step >= 0 && static_cast<size_t>(step) == static_cast<size_t>(size.width) * pixelBytes;
}

inline size_t Pixels(IppiSize size)
{
    return static_cast<size_t>(size.width) * static_cast<size_t>(size.height);
}

// The checks most members open with: every pointer, then the size.
template <typename... Pointers>
IppStatus CheckPointersAndSize(IppiSize size, const Pointers*... pointers)
{
    const bool anyNull = (... || (pointers == nullptr));
    if (anyNull)
        return ippStsNullPtrErr;
    if (!Holds(size))
        return ippStsSizeErr;
    return ippStsNoErr;
}

// Calls row(srcRow, dstRow, n) for each row of n pixels.
template <typename S, typename D, typename RowKernel>
void EachRow(S* src, int srcStep, D* dst, int dstStep, IppiSize size, RowKernel row)
{
    for (int y = 0; y < size.height; ++y)
        row(Row(src, srcStep, y), Row(dst, dstStep, y), static_cast<size_t>(size.width));
}

// The same over a region changed in place: row(rowStart, n).
template <typename T, typename RowKernel>
void EachRow(T* first, int step, IppiSize size, RowKernel row)
{
    EachRow(first, step, first, step, size, [&](T* sd, T*, size_t n) { row(sd, n); });
}

// As EachRow, but the region is one long row when the rows of both sides follow one another.
template <typename S, typename D, typename RowKernel>
void EachRowOrWhole(S* src, int srcStep, size_t srcPixelBytes, D* dst, int dstStep, size_t dstPixelBytes,
                    IppiSize size, RowKernel row)
{
    if (Contiguous(srcStep, size, srcPixelBytes) && Contiguous(dstStep, size, dstPixelBytes)) {
        row(src, dst, Pixels(size));
        return;
    }
    EachRow(src, srcStep, dst, dstStep, size, row);
}

template <typename T, typename RowKernel>
void EachRowOrWhole(T* first, int step, size_t pixelBytes, IppiSize size, RowKernel row)
{
    EachRowOrWhole(first, step, pixelBytes, first, step, pixelBytes, size, [&](T* sd, T*, size_t n) { row(sd, n); });
}

} // namespace IppRegion
