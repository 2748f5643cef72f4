#include "BandFigures.h"

#include <cstdint>
#include <vector>

namespace Deglare {

namespace {
const unsigned kRedWeight = 76;
const unsigned kGreenWeight = 149;
const unsigned kBlueWeight = 30;
const float kByteScale = 255.0f;

// The sum of the luminance of one row of B, G, R, A pixels.
uint64_t RowLuminance(const uint8_t* row, int width)
{
    uint64_t sum = 0;
    for (int x = 0; x < width; ++x, row += 4)
        sum += (kRedWeight * row[2] + kGreenWeight * row[1] + kBlueWeight * row[0]) >> 8;
    return sum;
}
} // namespace

float BandFigures::Sum() const
{
    float sum = 0.0f;
    for (float figure : band)
        sum += figure;
    return sum;
}

BandFigures MeasureBands(const Picture& picture)
{
    BandFigures figures;
    const int width = picture.Width();
    const int height = picture.Height();
    const int q = height / 4;
    if (q == 0 || width <= 0)
        return figures;

    // Every pixel of a row has the row's weights, so a row's luminance sum stands for its
    // pixels: the same weighted sum, in far fewer multiplications.
    double accumulators[4] = {0.0, 0.0, 0.0, 0.0};
    const double quarter = q;
    for (int r = 0; r < height; ++r) {
        const double luminance = static_cast<double>(RowLuminance(picture.Row(r), width));
        double weights[4] = {0.0, 0.0, 0.0, 0.0};
        if (r < q) {
            weights[0] = 1.0;
            weights[1] = r / quarter;
        } else if (r < 2 * q) {
            weights[0] = (2 * q - r) / quarter;
            weights[1] = 1.0;
            weights[2] = (r - q) / quarter;
        } else if (r < 3 * q) {
            weights[1] = (3 * q - r) / quarter;
            weights[2] = 1.0;
            weights[3] = (r - 2 * q) / quarter;
        } else {
            weights[2] = (height - r) / quarter;
            weights[3] = 1.0;
        }
        for (int band = 0; band < 4; ++band)
            accumulators[band] += luminance * weights[band];
    }
    const double edgeBandWeight = 1.5 * width * q;
    const double middleBandWeight = 2.0 * width * q;
    figures.band[0] = static_cast<float>(accumulators[0] / edgeBandWeight) / kByteScale;
    figures.band[1] = static_cast<float>(accumulators[1] / middleBandWeight) / kByteScale;
    figures.band[2] = static_cast<float>(accumulators[2] / middleBandWeight) / kByteScale;
    figures.band[3] = static_cast<float>(accumulators[3] / edgeBandWeight) / kByteScale;
    return figures;
}

} // namespace Deglare
