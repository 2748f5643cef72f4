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

} // namespace IppRegion
