#pragma once
#include <cstdint>

// Pixel layouts, lowest address first. Values 2 and 5 are reserved: no operation handles them.
enum PixelFormat : int32_t {
    pfVideoSample = 0,             // B, G, R, A bytes
    pfVideoSampleSwapped = 1,      // A, R, G, B bytes
    pfVideoSampleFloat = 3,        // B, G, R, A floats
    pfVideoSampleSwappedFloat = 4, // A, R, G, B floats
    pfMono8 = 6,
    pfMonoFloat = 7,
};
static_assert(sizeof(PixelFormat) == 4, "PixelFormat is a 32-bit value");

struct VideoSample { uint8_t b, g, r, a; };
struct VideoSampleSwapped { uint8_t a, r, g, b; };
struct VideoSampleFloat { float b, g, r, a; };
struct VideoSampleSwappedFloat { float a, r, g, b; };
static_assert(sizeof(VideoSample) == 4 && sizeof(VideoSampleSwapped) == 4, "byte pixel");
static_assert(sizeof(VideoSampleFloat) == 16 && sizeof(VideoSampleSwappedFloat) == 16, "float pixel");
