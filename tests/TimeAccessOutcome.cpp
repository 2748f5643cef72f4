#include "TimeAccessOutcome.h"

#include <vector>

#include "../Common/Frame.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/MarkFlashedFrame.h"

namespace TimeAccessOutcome {

void PrintTo(const Outcome& outcome, std::ostream* out)
{
    *out << "shows frame " << outcome.shows;
    if (outcome.mark == Mark::kRed)
        *out << " with a red cross";
    else if (outcome.mark == Mark::kBlue)
        *out << " with a blue cross";
}

namespace {
std::vector<uint8_t> Marked(TestHost::Clip& clip, int index, unsigned int colour)
{
    std::vector<uint8_t> bytes(clip.Frame(index), clip.Frame(index) + clip.FrameBytes());
    CFrame frame;
    frame.Init(bytes.data(), clip.Width(), clip.Height(), clip.ByteSpan(), clip.Depth(), clip.Format(), false);
    MarkFlashedFrame(frame, colour);
    return bytes;
}
} // namespace

Outcome Render(TestHost::InProcessHost& host, CDeglarer& effect, TestHost::Clip& clip, int index)
{
    TestHost::Picture output(clip.Width(), clip.Height(), clip.Format(), clip.ByteSpan());
    FrameParams destination = output.Params();
    if (!host.RenderFrame(&effect, index, &destination))
        return Outcome{-1, Mark::kNone};
    for (int candidate = 0; candidate < clip.FrameCount(); ++candidate)
        if (output.SameAs(clip, candidate))
            return Outcome{candidate, Mark::kNone};
    if (output.Bytes() == Marked(clip, index, kReplacedFrameColour))
        return Outcome{index, Mark::kRed};
    if (output.Bytes() == Marked(clip, index, kSparedFrameColour))
        return Outcome{index, Mark::kBlue};
    return Outcome{-1, Mark::kNone};
}

TestHost::Clip EventfulClip(PixelFormat format)
{
    const float levels[40] = {
        0.40f, 0.41f, 0.40f, 0.42f, 0.41f, 0.90f, 0.40f, 0.41f, 0.40f, 0.41f,   // one-frame flash
        0.40f, 0.41f, 0.40f, 0.41f, 0.40f, 0.85f, 0.95f, 0.80f, 0.41f, 0.40f,   // lower half at 10; burst
        0.41f, 0.40f, 0.02f, 0.02f, 0.50f, 0.02f, 0.02f, 0.40f, 0.41f, 0.40f,   // dark frames with a flash
        0.75f, 0.76f, 0.75f, 0.75f, 0.76f, 0.75f, 0.74f, 0.75f, 0.76f, 0.75f,   // lamp switched on
    };
    const int height = 24;
    TestHost::Clip clip(12, height, format, 40, 25.0);
    for (int index = 0; index < 40; ++index) {
        const float tag = (index + 1) / 255.0f;
        clip.Fill(index, levels[index] * 0.9f, levels[index], levels[index] * 0.95f, tag);
    }
    clip.FillRows(10, height / 2, height, 0.9f, 0.9f, 0.9f, 11 / 255.0f);
    return clip;
}

} // namespace TimeAccessOutcome
