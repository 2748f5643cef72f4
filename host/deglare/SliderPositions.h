#pragma once

namespace Deglare {

// The effect's sliders hand back a control position from 0 to 1, which it decodes in single
// precision: "Sensitivity" to tenths, truncate(position x 10), and "Max Frames" to
// truncate(9 x position) + 1, held to 1..10. These give, for each value an editor shows, a
// position that decodes to exactly that value, also where the naive fraction would truncate
// to the value below.

const int kLeastSensitivity = 0;
const int kMostSensitivity = 100;
const int kLeastMaxFrames = 1;
const int kMostMaxFrames = 10;

// The position for "Sensitivity" shown as `shown` (0..100).
float SensitivityPosition(int shown);
// The position for "Max Frames" shown as `frames` (1..10).
float MaxFramesPosition(int frames);

// The effect's decoding of a position, mirrored: the tenth of sensitivity (0..10) ...
int DecodedSensitivityTenth(float position);
// ... and the frame limit (1..10).
int DecodedMaxFrames(float position);

// What an editor shows for a "Sensitivity" position: position x 100, to the nearest whole.
int ShownSensitivity(float position);

} // namespace Deglare
