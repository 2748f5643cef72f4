#include "MarkReader.h"

#include <cstdint>
#include <cstring>

namespace Deglare {

Mark ReadMark(const Picture& rendered, const Picture& source)
{
    if (rendered.SamePixels(source))
        return Mark::None;
    // A smoothed line blends towards its colour, so the changed pixels gain red and lose blue
    // for a red cross, and the other way round for a blue one.
    int64_t redShift = 0;
    int64_t blueShift = 0;
    const size_t rowBytes = static_cast<size_t>(source.Width()) * 4;
    for (int y = 0; y < source.Height(); ++y) {
        const uint8_t* after = rendered.Row(y);
        const uint8_t* before = source.Row(y);
        if (std::memcmp(after, before, rowBytes) == 0)
            continue;
        for (size_t byte = 0; byte < rowBytes; byte += 4) {
            blueShift += static_cast<int>(after[byte]) - before[byte];
            redShift += static_cast<int>(after[byte + 2]) - before[byte + 2];
        }
    }
    return redShift - blueShift >= 0 ? Mark::Red : Mark::Blue;
}

} // namespace Deglare
