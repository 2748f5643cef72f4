#pragma once

class CFrame;

namespace Processors {

// Draws anti-aliased straight lines into a frame of format 0, 1, 3 or 4. A colour word holds red
// in bits 16 to 23, green in 8 to 15 and blue in 0 to 7; no drawing changes a frame's alpha.
class CCanvas {
public:
    // A two-pixel-wide coverage line from (x1, y1) to (x2, y2). Pixels outside the frame are left
    // out; a line whose end points aren't finite or lie beyond kFarthestCoordinate draws nothing.
    void DrawSmoothedLine(CFrame* pFrame, double x1, double y1, double x2, double y2, unsigned int color);

    // Blends one pixel by the frame's format; false for other formats and pixels outside.
    bool DrawPixelMain(CFrame* pFrame, int x, int y, float weight, unsigned int color);

    // `weight` is how much of the old value stays: 0.0 paints the pure colour, 1.0 keeps the
    // pixel. Defined for the four colour records with their channel type.
    template <class Pixel, class Channel>
    bool DrawPixel(CFrame* pFrame, int x, int y, float weight, unsigned int color);

    static constexpr double kFarthestCoordinate = 16777216.0;
};

} // namespace Processors
