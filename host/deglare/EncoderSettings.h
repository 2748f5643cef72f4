#pragma once
#include <cstdint>
#include <string>

namespace Deglare {

// How the cleaned video is encoded.
struct EncoderSettings {
    std::string codec = "libx264";
    int crf = -1;               // -1: the encoder's own default, or high quality where it has crf
    uint64_t bitrate = 0;       // bits a second; 0: none asked for
    int threads = 0;            // 0: the encoder chooses
};

} // namespace Deglare
