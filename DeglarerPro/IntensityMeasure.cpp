#include "IntensityMeasure.h"

#include <cstddef>
#include <cstdint>

#include "../Common/Frame.h"
#include "LuminanceRows.h"

namespace {

const float kByteScale = 255.0f;

bool Measurable(const void* pixels, int pixelSpan, int width, int height)
{
    return pixels != nullptr && width >= 1 && height >= kIntensityBands && pixelSpan >= width;
}

// Rows are summed first, then weighted once per row and band: the same figures as weighting
// each pixel, since a row's pixels share their weights.
template <class Pixel, class RowSum>
Intensities Measure(const Pixel* pixels, int pixelSpan, int width, int height, RowSum rowSum)
{
    if (!Measurable(pixels, pixelSpan, width, height))
        return Intensities::Zero();
    const int quarter = height / 4;
    double sums[kIntensityBands] = {0.0, 0.0, 0.0, 0.0};
    for (int row = 0; row < height; ++row) {
        const double luminance = static_cast<double>(rowSum(pixels + static_cast<ptrdiff_t>(row) * pixelSpan, width));
        double weights[kIntensityBands];
        BandWeights(row, quarter, height, weights);
        for (int band = 0; band < kIntensityBands; ++band)
            if (weights[band] != 0.0)
                sums[band] += luminance * weights[band];
    }
    const double edgeBandWeight = 1.5 * width * quarter;
    const double innerBandWeight = 2.0 * width * quarter;
    return Intensities{{static_cast<float>(sums[0] / edgeBandWeight), static_cast<float>(sums[1] / innerBandWeight),
                        static_cast<float>(sums[2] / innerBandWeight), static_cast<float>(sums[3] / edgeBandWeight)}};
}

template <class Pixel>
const Pixel* PixelsOf(const CFrame& frame)
{
    return reinterpret_cast<const Pixel*>(frame.m_pBuffer);
}

Intensities ScaledFromBytes(Intensities figures)
{
    for (float& band : figures.fBand)
        band /= kByteScale;
    return figures;
}

} // namespace

void BandWeights(int row, int quarter, int height, double weights[kIntensityBands])
{
    const double q = quarter;
    if (row < quarter) {
        weights[0] = 1.0;
        weights[1] = row / q;
        weights[2] = 0.0;
        weights[3] = 0.0;
    } else if (row < 2 * quarter) {
        weights[0] = (2 * quarter - row) / q;
        weights[1] = 1.0;
        weights[2] = (row - quarter) / q;
        weights[3] = 0.0;
    } else if (row < 3 * quarter) {
        weights[0] = 0.0;
        weights[1] = (3 * quarter - row) / q;
        weights[2] = 1.0;
        weights[3] = (row - 2 * quarter) / q;
    } else {
        // Rows left over when the height isn't a multiple of 4 fall here, where band 2's weight
        // can start above 1.
        weights[0] = 0.0;
        weights[1] = 0.0;
        weights[2] = (height - row) / q;
        weights[3] = 1.0;
    }
}

Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height,
                                  const LuminanceRowKernels& kernels)
{
    return Measure(pixels, pixelSpan, width, height, kernels.sum8u);
}

Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height,
                                  const LuminanceRowKernels& kernels)
{
    return Measure(pixels, pixelSpan, width, height, kernels.sum8uSwapped);
}

Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height,
                                   const LuminanceRowKernels& kernels)
{
    return Measure(pixels, pixelSpan, width, height, kernels.sum32f);
}

Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height,
                                   const LuminanceRowKernels& kernels)
{
    return Measure(pixels, pixelSpan, width, height, kernels.sum32fSwapped);
}

Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height)
{
    return getAverageIntensity8u(pixels, pixelSpan, width, height, ChosenLuminanceRowKernels());
}

Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height)
{
    return getAverageIntensity8u(pixels, pixelSpan, width, height, ChosenLuminanceRowKernels());
}

Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height)
{
    return getAverageIntensity32f(pixels, pixelSpan, width, height, ChosenLuminanceRowKernels());
}

Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height)
{
    return getAverageIntensity32f(pixels, pixelSpan, width, height, ChosenLuminanceRowKernels());
}

Intensities MeasureFrameIntensities(const CFrame& frame)
{
    const int span = frame.m_nPixelSpan;
    const int width = frame.m_nWidth;
    const int height = frame.m_nHeight;
    const int depth = frame.m_nDepth;
    switch (frame.m_pfPixelFormat) {
    case pfVideoSample:
        if (depth != static_cast<int>(sizeof(VideoSample)))
            break;
        return ScaledFromBytes(getAverageIntensity8u(PixelsOf<VideoSample>(frame), span, width, height));
    case pfVideoSampleSwapped:
        if (depth != static_cast<int>(sizeof(VideoSampleSwapped)))
            break;
        return ScaledFromBytes(getAverageIntensity8u(PixelsOf<VideoSampleSwapped>(frame), span, width, height));
    case pfVideoSampleFloat:
        if (depth != static_cast<int>(sizeof(VideoSampleFloat)))
            break;
        return getAverageIntensity32f(PixelsOf<VideoSampleFloat>(frame), span, width, height);
    case pfVideoSampleSwappedFloat:
        if (depth != static_cast<int>(sizeof(VideoSampleSwappedFloat)))
            break;
        return getAverageIntensity32f(PixelsOf<VideoSampleSwappedFloat>(frame), span, width, height);
    default:
        break;
    }
    return Intensities::Zero();
}
