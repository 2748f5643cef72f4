#pragma once
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "AvSupport.h"
#include "Picture.h"

namespace Deglare {

// What a generated clip is like.
struct ClipRecipe {
    int width = 64;
    int height = 48;
    int frameCount = 30;
    AVRational frameRate = {25, 1};
    // Presentation times in `timeBase`, one a frame, for a variable frame rate; empty: frames
    // at regular steps of the frame rate.
    std::vector<int64_t> timestamps;
    AVRational timeBase = {1, 25};
    std::string codec = "ffv1";
    AVPixelFormat pixelFormat = AV_PIX_FMT_YUV420P;
    int crf = -1;                       // for encoders that take one
    std::string speed;                  // the encoder's "preset", where it has one
    bool audio = false;                 // a tone beside the video
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    double rotation = 0.0;              // degrees, as the display matrix of the stream
};

// Paints frame `index` into `picture` (8-bit BGRA).
using PicturePainter = std::function<void(int index, Picture& picture)>;

// Writes a clip of `recipe` painted by `paint` to `path`, whose extension chooses the container.
// Throws std::runtime_error on failure. The demo and the tests make their clips with it.
void WriteClip(const std::string& path, const ClipRecipe& recipe, const PicturePainter& paint);

} // namespace Deglare
