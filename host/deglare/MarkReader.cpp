#include "MarkReader.h"

#include <algorithm>
#include <cstdint>

namespace Deglare {

namespace {
// A smoothed line covers the pixel nearest to its ideal path at least half; one pixel either
// side catches it whichever way the drawing rounds.
const int kReach = 1;

struct Shift {
    int64_t red = 0;
    int64_t blue = 0;
    bool changed = false;
};

void Compare(const Picture& rendered, const Picture& source, int x, int y, Shift& shift)
{
    if (x < 0 || y < 0 || x >= source.Width() || y >= source.Height())
        return;
    const uint8_t* after = rendered.Row(y) + 4 * x;
    const uint8_t* before = source.Row(y) + 4 * x;
    if (after[0] == before[0] && after[1] == before[1] && after[2] == before[2])
        return;
    shift.changed = true;
    shift.blue += static_cast<int>(after[0]) - before[0];
    shift.red += static_cast<int>(after[2]) - before[2];
}
} // namespace

Mark ReadMark(const Picture& rendered, const Picture& source)
{
    // The cross runs corner to corner: only the pixels along the two diagonals are read, which
    // is a thousandth of the picture.
    const int width = std::min(rendered.Width(), source.Width());
    const int height = std::min(rendered.Height(), source.Height());
    if (width < 1 || height < 1)
        return Mark::None;
    const int steps = std::max(width, height);
    Shift shift;
    for (int step = 0; step < steps; ++step) {
        const double along = steps > 1 ? static_cast<double>(step) / (steps - 1) : 0.0;
        const int x = static_cast<int>(along * (width - 1) + 0.5);
        const int down = static_cast<int>(along * (height - 1) + 0.5);
        const int up = height - 1 - down;
        for (int offset = -kReach; offset <= kReach; ++offset) {
            if (width >= height) {
                Compare(rendered, source, x, down + offset, shift);
                Compare(rendered, source, x, up + offset, shift);
            } else {
                Compare(rendered, source, x + offset, down, shift);
                Compare(rendered, source, x + offset, up, shift);
            }
        }
    }
    if (!shift.changed)
        return Mark::None;
    // A smoothed line blends towards its colour, so the changed pixels gain red and lose blue
    // for a red cross, and the other way round for a blue one.
    return shift.red - shift.blue >= 0 ? Mark::Red : Mark::Blue;
}

} // namespace Deglare
