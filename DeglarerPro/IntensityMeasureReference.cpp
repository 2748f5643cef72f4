#include "IntensityMeasureReference.h"

#include <cstddef>

#include "IntensityMeasure.h"
#include "LuminanceRows.h"

namespace IntensityReference {

namespace {

double PixelLuminance(const VideoSample& pixel) { return Luminance8u(pixel.r, pixel.g, pixel.b); }
double PixelLuminance(const VideoSampleSwapped& pixel) { return Luminance8u(pixel.r, pixel.g, pixel.b); }
double PixelLuminance(const VideoSampleFloat& pixel) { return Luminance32f(pixel.r, pixel.g, pixel.b); }
double PixelLuminance(const VideoSampleSwappedFloat& pixel) { return Luminance32f(pixel.r, pixel.g, pixel.b); }

template <class Pixel>
Intensities Measure(const Pixel* pixels, int pixelSpan, int width, int height)
{
    if (pixels == nullptr || width < 1 || height < kIntensityBands || pixelSpan < width)
        return Intensities::Zero();
    const int quarter = height / 4;
    double sums[kIntensityBands] = {0.0, 0.0, 0.0, 0.0};
    for (int row = 0; row < height; ++row) {
        double weights[kIntensityBands];
        BandWeights(row, quarter, height, weights);
        const Pixel* line = pixels + static_cast<ptrdiff_t>(row) * pixelSpan;
        for (int x = 0; x < width; ++x) {
            const double luminance = PixelLuminance(line[x]);
            for (int band = 0; band < kIntensityBands; ++band)
                if (weights[band] != 0.0)   // a product with weight 0 adds nothing
                    sums[band] += luminance * weights[band];
        }
    }
    const double edgeBandWeight = 1.5 * width * quarter;
    const double innerBandWeight = 2.0 * width * quarter;
    return Intensities{{static_cast<float>(sums[0] / edgeBandWeight), static_cast<float>(sums[1] / innerBandWeight),
                        static_cast<float>(sums[2] / innerBandWeight), static_cast<float>(sums[3] / edgeBandWeight)}};
}

} // namespace

Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height)
{
    return Measure(pixels, pixelSpan, width, height);
}

Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height)
{
    return Measure(pixels, pixelSpan, width, height);
}

Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height)
{
    return Measure(pixels, pixelSpan, width, height);
}

Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height)
{
    return Measure(pixels, pixelSpan, width, height);
}

} // namespace IntensityReference
