#pragma once

namespace GPUStuff {

// A rectangle as fractions of an image: (0, 0, 1, 1) is the whole image.
struct TextureRect {
    float left, top, right, bottom;
};

const TextureRect kWholeImage = {0.0f, 0.0f, 1.0f, 1.0f};

} // namespace GPUStuff
