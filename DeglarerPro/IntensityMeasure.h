#pragma once
#include "../include/PixelFormat.h"
#include "Intensities.h"

class CFrame;
struct LuminanceRowKernels;

// The weight of row `row` in each of the four bands of a picture of `height` rows, with
// q = height / 4: trapezoids over the rows, bands 1 and 2 rising over one quarter, staying at 1
// for one and falling over one; band 0 doesn't rise and band 3 doesn't fall. Needs q > 0.
void BandWeights(int row, int quarter, int height, double weights[kIntensityBands]);

// The average luminance of each band, as the sums of luminance x row weight divided by the
// weight sums 1.5 x width x q (bands 0, 3) and 2 x width x q (bands 1, 2), narrowed to floats.
// 8-bit pictures give figures from 0 to about 255. `pixelSpan` is the row distance in pixels.
// A null picture, a picture of less than 4 rows or one pixel, and a span shorter than a row
// give four zeros with nothing read.
Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height);

// The same with one given set of row kernels, so that every set can be checked.
Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height,
                                  const LuminanceRowKernels& kernels);
Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height,
                                  const LuminanceRowKernels& kernels);
Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height,
                                   const LuminanceRowKernels& kernels);
Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height,
                                   const LuminanceRowKernels& kernels);

// The intensities of a frame in hand, without a host or the pool: formats 0 and 1 scaled to
// 0..1 by 255, formats 3 and 4 in the frame's own scale, any other format (or a frame whose
// depth doesn't match its format) four zeros with no pixel read.
Intensities MeasureFrameIntensities(const CFrame& frame);

// MeasureFrameIntensities taken a strip of rows at a time, top row first, for a caller that does
// more with each strip while it is still in the processor's cache. Every row is added once and
// in order, as a whole frame adds it, so the figures are the same bit for bit however the rows
// are split. The frame must outlive the measure.
class CFrameIntensityMeasure {
public:
    explicit CFrameIntensityMeasure(const CFrame& frame);
    CFrameIntensityMeasure(const CFrame& frame, const LuminanceRowKernels& kernels);

    // Adds the rows from where the last call stopped up to, not including, `endRow`.
    void MeasureRowsBefore(int endRow);
    // The figures, once every row has been added.
    Intensities Result() const;

private:
    template <class Pixel, class RowSum>
    void AddRows(RowSum rowSum, int endRow);

    const CFrame& m_Frame;
    const LuminanceRowKernels& m_Kernels;
    bool m_bMeasurable;
    int m_nNextRow;
    double m_dSums[kIntensityBands];
};
