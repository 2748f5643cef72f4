#pragma once
#include "../include/PixelFormat.h"
#include "Intensities.h"

// The measuring loops in their defining form: each pixel's luminance times its row's band weight
// added into double sums one pixel at a time. The faster loops of IntensityMeasure.h must give
// the same narrowed figures.
namespace IntensityReference {

Intensities getAverageIntensity8u(const VideoSample* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity8u(const VideoSampleSwapped* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity32f(const VideoSampleFloat* pixels, int pixelSpan, int width, int height);
Intensities getAverageIntensity32f(const VideoSampleSwappedFloat* pixels, int pixelSpan, int width, int height);

} // namespace IntensityReference
