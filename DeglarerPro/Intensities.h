#pragma once

const int kIntensityBands = 4;

// The brightness of one frame in four overlapping horizontal bands, band 0 at the lowest rows in
// memory. Four -1.0 say that the host delivered no frame.
struct Intensities {
    float fBand[kIntensityBands];

    static Intensities Zero() { return Intensities{{0.0f, 0.0f, 0.0f, 0.0f}}; }
    static Intensities NoFrame() { return Intensities{{-1.0f, -1.0f, -1.0f, -1.0f}}; }

    // The four bands added in order, in single precision, as every decision adds them.
    float Sum() const { return ((fBand[0] + fBand[1]) + fBand[2]) + fBand[3]; }

    // False for the no-frame record and for any record a decision must not trust.
    bool AllAtLeastZero() const
    {
        return fBand[0] >= 0.0f && fBand[1] >= 0.0f && fBand[2] >= 0.0f && fBand[3] >= 0.0f;
    }
};
static_assert(sizeof(Intensities) == 16, "four 32-bit floats");

// A frame whose bands add up to no more than this is dark and never judged.
const float kDarknessLimit = 0x1.70a3d8p-4f;   // 0.09, bits 0x3DB851EC
