#include "DemoFootage.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Deglare {

namespace {
const int kOneFrameFlash = 10;
const int kPartialFlash = 22;
const int kBurstFirst = 34;
const int kLampOn = 48;

// How much light each frame gains, over the whole picture and over its lower half.
struct Light {
    float whole;
    float lower;
};

Light LightOf(int index)
{
    if (index == kOneFrameFlash)
        return {0.55f, 0.55f};
    if (index == kPartialFlash)
        return {0.0f, 0.60f};
    if (index >= kBurstFirst && index < kBurstFirst + 3) {
        const float burst[3] = {0.45f, 0.60f, 0.40f};
        return {burst[index - kBurstFirst], burst[index - kBurstFirst]};
    }
    if (index >= kLampOn)
        return {0.22f, 0.22f};
    return {0.0f, 0.0f};
}

// Film grain that changes from frame to frame: a small hash of the position and the frame.
int Grain(int x, int y, int index)
{
    uint32_t h = static_cast<uint32_t>(x) * 73856093u ^ static_cast<uint32_t>(y) * 19349663u ^
                 static_cast<uint32_t>(index) * 83492791u;
    h ^= h >> 13;
    h *= 0x5bd1e995u;
    h ^= h >> 15;
    return static_cast<int>(h & 7) - 4;
}

uint8_t Clamp(float value)
{
    return static_cast<uint8_t>(std::clamp(value, 0.0f, 255.0f));
}
} // namespace

ClipRecipe DemoFootage::Recipe()
{
    ClipRecipe recipe;
    recipe.width = kWidth;
    recipe.height = kHeight;
    recipe.frameCount = kFrameCount;
    recipe.frameRate = {25, 1};
    recipe.timeBase = {1, 25};
    recipe.codec = "libx264";
    recipe.crf = 16;
    recipe.speed = "veryfast";
    recipe.audio = true;
    recipe.range = AVCOL_RANGE_MPEG;
    recipe.primaries = AVCOL_PRI_BT709;
    recipe.transfer = AVCOL_TRC_BT709;
    recipe.matrix = AVCOL_SPC_BT709;
    return recipe;
}

const std::vector<DemoFootage::Event>& DemoFootage::Events()
{
    static const std::vector<Event> events = {
        {kOneFrameFlash, kOneFrameFlash, "one-frame flash"},
        {kPartialFlash, kPartialFlash, "partial flash over the lower half"},
        {kBurstFirst, kBurstFirst + 2, "three-frame burst"},
        {kLampOn, kLampOn, "lamp switched on, and it stays on"},
    };
    return events;
}

void DemoFootage::Paint(int index, Picture& picture)
{
    const Light light = LightOf(index);
    const int width = picture.Width();
    const int height = picture.Height();
    // A ball crossing the picture and a bar sliding the other way.
    const float ballX = width * (0.15f + 0.7f * index / kFrameCount);
    const float ballY = height * (0.45f + 0.12f * std::sin(index * 0.25f));
    const float ballRadius = height * 0.09f;
    const int barLeft = static_cast<int>(width * (0.8f - 0.5f * index / kFrameCount));
    const int barWidth = width / 12;
    for (int y = 0; y < height; ++y) {
        uint8_t* row = picture.Row(y);
        const float sky = 0.30f + 0.18f * y / height;
        const float gain = y >= height / 2 ? light.lower : light.whole;
        const float dy = y - ballY;
        for (int x = 0; x < width; ++x) {
            float red = sky * 0.85f, green = sky * 0.95f, blue = sky * 1.1f;
            // Distant stripes that drift slowly.
            if (((x + 3 * index) / 96) % 2 == 0 && y > height * 2 / 3) {
                red += 0.05f;
                green += 0.04f;
            }
            if (x >= barLeft && x < barLeft + barWidth && y > height * 0.55f && y < height * 0.8f) {
                red = 0.55f, green = 0.25f, blue = 0.15f;
            }
            const float dx = x - ballX;
            if (dx * dx + dy * dy < ballRadius * ballRadius) {
                red = 0.85f, green = 0.75f, blue = 0.30f;
            }
            const float grain = static_cast<float>(Grain(x, y, index));
            uint8_t* pixel = row + 4 * x;
            pixel[0] = Clamp((blue + gain) * 255.0f + grain);
            pixel[1] = Clamp((green + gain) * 255.0f + grain);
            pixel[2] = Clamp((red + gain) * 255.0f + grain);
            pixel[3] = 255;
        }
    }
}

} // namespace Deglare
