#pragma once
#include "Picture.h"

namespace Deglare {

// The brightness of a picture in four overlapping horizontal bands, by the effect's published
// measuring rule: band 0 at the top rows, band 3 at the bottom, each a trapezoid of row
// weights, luminance (76 R + 149 G + 30 B) >> 8, scaled to 0..1. The host works these out
// itself for its report; the effect's own figures never leave it.
struct BandFigures {
    float band[4] = {0.0f, 0.0f, 0.0f, 0.0f};

    // The four bands added in order, in single precision, as the effect adds them.
    float Sum() const;
};

BandFigures MeasureBands(const Picture& picture);

} // namespace Deglare
