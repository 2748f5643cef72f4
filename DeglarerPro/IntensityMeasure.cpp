#include "IntensityMeasure.h"

#include <algorithm>
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
void AddWeightedRow(double sums[kIntensityBands], int row, int height, double luminance)
{
    double weights[kIntensityBands];
    BandWeights(row, height / 4, height, weights);
    for (int band = 0; band < kIntensityBands; ++band)
        if (weights[band] != 0.0)
            sums[band] += luminance * weights[band];
}

Intensities BandAverages(const double sums[kIntensityBands], int width, int height)
{
    const int quarter = height / 4;
    const double edgeBandWeight = 1.5 * width * quarter;
    const double innerBandWeight = 2.0 * width * quarter;
    return Intensities{{static_cast<float>(sums[0] / edgeBandWeight), static_cast<float>(sums[1] / innerBandWeight),
                        static_cast<float>(sums[2] / innerBandWeight), static_cast<float>(sums[3] / edgeBandWeight)}};
}

template <class Pixel, class RowSum>
Intensities Measure(const Pixel* pixels, int pixelSpan, int width, int height, RowSum rowSum)
{
    if (!Measurable(pixels, pixelSpan, width, height))
        return Intensities::Zero();
    double sums[kIntensityBands] = {0.0, 0.0, 0.0, 0.0};
    for (int row = 0; row < height; ++row)
        AddWeightedRow(sums, row, height,
                       static_cast<double>(rowSum(pixels + static_cast<ptrdiff_t>(row) * pixelSpan, width)));
    return BandAverages(sums, width, height);
}

// The formats that are measured, each with the pixel size that its rows are read with.
bool KnownFormatAndDepth(const CFrame& frame)
{
    switch (frame.m_pfPixelFormat) {
    case pfVideoSample: return frame.m_nDepth == static_cast<int>(sizeof(VideoSample));
    case pfVideoSampleSwapped: return frame.m_nDepth == static_cast<int>(sizeof(VideoSampleSwapped));
    case pfVideoSampleFloat: return frame.m_nDepth == static_cast<int>(sizeof(VideoSampleFloat));
    case pfVideoSampleSwappedFloat: return frame.m_nDepth == static_cast<int>(sizeof(VideoSampleSwappedFloat));
    default: return false;
    }
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
    CFrameIntensityMeasure measure(frame);
    measure.MeasureRowsBefore(frame.m_nHeight);
    return measure.Result();
}

CFrameIntensityMeasure::CFrameIntensityMeasure(const CFrame& frame)
    : CFrameIntensityMeasure(frame, ChosenLuminanceRowKernels())
{
}

CFrameIntensityMeasure::CFrameIntensityMeasure(const CFrame& frame, const LuminanceRowKernels& kernels)
    : m_Frame(frame), m_Kernels(kernels),
      m_bMeasurable(KnownFormatAndDepth(frame) &&
                    Measurable(frame.m_pBuffer, frame.m_nPixelSpan, frame.m_nWidth, frame.m_nHeight)),
      m_nNextRow(0), m_dSums{0.0, 0.0, 0.0, 0.0}
{
}

void CFrameIntensityMeasure::MeasureRowsBefore(int endRow)
{
    if (!m_bMeasurable)
        return;
    switch (m_Frame.m_pfPixelFormat) {
    case pfVideoSample: AddRows<VideoSample>(m_Kernels.sum8u, endRow); break;
    case pfVideoSampleSwapped: AddRows<VideoSampleSwapped>(m_Kernels.sum8uSwapped, endRow); break;
    case pfVideoSampleFloat: AddRows<VideoSampleFloat>(m_Kernels.sum32f, endRow); break;
    case pfVideoSampleSwappedFloat: AddRows<VideoSampleSwappedFloat>(m_Kernels.sum32fSwapped, endRow); break;
    default: break;
    }
}

template <class Pixel, class RowSum>
void CFrameIntensityMeasure::AddRows(RowSum rowSum, int endRow)
{
    const Pixel* pixels = PixelsOf<Pixel>(m_Frame);
    const int lastRow = std::min(endRow, m_Frame.m_nHeight);
    for (; m_nNextRow < lastRow; ++m_nNextRow) {
        const Pixel* row = pixels + static_cast<ptrdiff_t>(m_nNextRow) * m_Frame.m_nPixelSpan;
        AddWeightedRow(m_dSums, m_nNextRow, m_Frame.m_nHeight, static_cast<double>(rowSum(row, m_Frame.m_nWidth)));
    }
}

Intensities CFrameIntensityMeasure::Result() const
{
    if (!m_bMeasurable)
        return Intensities::Zero();
    const Intensities figures = BandAverages(m_dSums, m_Frame.m_nWidth, m_Frame.m_nHeight);
    const bool bytes = m_Frame.m_pfPixelFormat == pfVideoSample || m_Frame.m_pfPixelFormat == pfVideoSampleSwapped;
    return bytes ? ScaledFromBytes(figures) : figures;
}
