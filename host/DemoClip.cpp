#include "DemoClip.h"

namespace TestHost {

namespace {
const int kWidth = 64;
const int kHeight = 36;
const double kFrameRate = 25.0;
} // namespace

Clip MakeDemoClip(std::vector<std::string>* labels)
{
    struct Shot {
        float level;
        float lowerLevel;   // the lower half, for a partial flash
        const char* label;
    };
    // A slowly drifting scene; each entry is one frame.
    const Shot shots[] = {
        {0.40f, 0.40f, "scene"},        {0.41f, 0.41f, "scene"},         {0.40f, 0.40f, "scene"},
        {0.90f, 0.90f, "one-frame flash"}, {0.41f, 0.41f, "scene"},       {0.40f, 0.40f, "scene"},
        {0.40f, 0.90f, "partial flash (lower half)"}, {0.41f, 0.41f, "scene"}, {0.40f, 0.40f, "scene"},
        {0.85f, 0.85f, "burst 1 of 3"}, {0.90f, 0.90f, "burst 2 of 3"},   {0.85f, 0.85f, "burst 3 of 3"},
        {0.41f, 0.41f, "scene"},        {0.40f, 0.40f, "scene"},         {0.75f, 0.75f, "lamp switched on"},
        {0.75f, 0.75f, "lamp on"},      {0.76f, 0.76f, "lamp on"},       {0.75f, 0.75f, "lamp on"},
        {0.75f, 0.75f, "lamp on"},      {0.76f, 0.76f, "lamp on"},
    };
    const int frameCount = static_cast<int>(sizeof(shots) / sizeof(shots[0]));
    Clip clip(kWidth, kHeight, pfVideoSample, frameCount, kFrameRate);
    labels->clear();
    for (int index = 0; index < frameCount; ++index) {
        const Shot& shot = shots[index];
        clip.FillRows(index, 0, kHeight / 2, shot.level * 0.9f, shot.level, shot.level * 0.95f);
        clip.FillRows(index, kHeight / 2, kHeight, shot.lowerLevel * 0.9f, shot.lowerLevel, shot.lowerLevel * 0.95f);
        // A little per-frame texture so that no two frames are identical.
        uint8_t* first = clip.Frame(index);
        first[0] = static_cast<uint8_t>(index);
        labels->push_back(shot.label);
    }
    return clip;
}

} // namespace TestHost
