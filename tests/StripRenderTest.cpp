// The sequential path walks its frames in strips of rows: a measure and a copy into the memory in
// one pass, the output and the last good frame in another. These tests break what strips can get
// wrong and whole frames can't: a last strip shorter than the others, spans wider than a row,
// pixels of 16 bytes, and slots filled apart from their records. The strip measure itself is
// tested with the measuring loops.
#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <utility>
#include <vector>

#include "../Common/Copy.h"
#include "../Common/FrameStrips.h"
#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/IntensityMeasure.h"
#include "../host/Clip.h"
#include "../host/InProcessHost.h"
#include "FreshEffectId.h"

namespace {

using TestHost::Clip;
using TestHost::InProcessHost;
using TestHost::Picture;

struct Shape {
    int width, height, byteSpan;
};

// A picture of random bytes in memory of its own, with the frame over it; float formats get
// channel values in 0..1 so the figures mean something. Random rows follow the frame's last one:
// a write past the frame shows there.
struct Owned {
    Owned(const Shape& shape, PixelFormat format, std::mt19937& random)
        : bytes(static_cast<size_t>(shape.byteSpan) * (shape.height + 40))
    {
        std::uniform_real_distribution<float> channel(0.0f, 1.0f);
        if (format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat)
            for (size_t i = 0; i + sizeof(float) <= bytes.size(); i += sizeof(float)) {
                const float value = channel(random);
                std::memcpy(&bytes[i], &value, sizeof value);
            }
        else
            for (uint8_t& byte : bytes)
                byte = static_cast<uint8_t>(random());
        frame.Init(bytes.data(), shape.width, shape.height, shape.byteSpan, TestHost::BytesPerPixel(format), format,
                   false);
    }
    std::vector<uint8_t> bytes;
    CFrame frame;
};

TEST(FrameStrips, CopyingStripByStripGivesTheBytesOfOneCopy)
{
    struct Case {
        PixelFormat format;
        Shape source, destination;
    };
    // Rows of 4000 and 16000 bytes make strips of 32 and 8 rows; heights leave a short last strip.
    const Case cases[] = {
        {pfVideoSampleSwapped, {1000, 101, 4012}, {1003, 101, 4040}},
        {pfVideoSample, {1000, 100, 4000}, {900, 45, 3600}},      // destination shorter and narrower
        {pfVideoSample, {990, 40, 3960}, {1000, 100, 4000}},      // destination taller
        {pfVideoSampleFloat, {1000, 30, 16000}, {1000, 30, 16016}},
        {pfVideoSampleSwappedFloat, {1000, 17, 16000}, {500, 9, 8000}},
        {pfMono8, {1000, 300, 1000}, {1000, 300, 1000}},
        {pfMonoFloat, {1000, 70, 4000}, {999, 70, 4000}},
    };
    std::mt19937 random(71);
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << "format " << c.format << ", source " << c.source.width << "x"
                                          << c.source.height << ", destination " << c.destination.width);
        Owned source(c.source, c.format, random);
        Owned stripped(c.destination, c.format, random);
        std::vector<uint8_t> whole = stripped.bytes;
        CFrame wholeFrame;
        wholeFrame.Init(whole.data(), c.destination.width, c.destination.height, c.destination.byteSpan,
                        stripped.frame.m_nDepth, c.format, false);
        ASSERT_LT(RowsPerStrip(source.frame), c.source.height) << "the case must take several strips";
        Processors::CCopy().Process(&source.frame, &wholeFrame);
        int rowsVisited = 0;
        ForEachStrip(source.frame, [&](int firstRow, int rowCount) {
            EXPECT_EQ(firstRow, rowsVisited);
            rowsVisited += rowCount;
            CopyStrip(source.frame, stripped.frame, firstRow, rowCount);
        });
        EXPECT_EQ(rowsVisited, c.source.height);
        EXPECT_EQ(stripped.bytes, whole);
    }
}

// Slot `slot` of the memory of host instance 1, field 1, holds frame `index` of the clip with its
// index and its figures.
::testing::AssertionResult SlotHolds(unsigned int effectId, uint32_t slot, Clip& clip, int index)
{
    FrameCache& wrapper = *CDeglarer::m_FrameCachesPool.at(effectId)->m_pField1;
    CCritSectLock lock(wrapper.m_Lock);
    wrapper.m_nCacheKey = 1;
    Picture copy(clip.Width(), clip.Height(), clip.Format());
    FrameParams params = copy.Params();
    CFrame frame;
    frame.Init(&params);
    if (!wrapper.GetFrame(slot, frame) || !copy.SameAs(clip, index))
        return ::testing::AssertionFailure() << "slot " << slot << " doesn't hold the picture of frame " << index;
    const FlashInfo& record = wrapper.GetCacheForCurrentThread(false).m_pCache->UserData(slot);
    if (record.m_nFrameIndex != index)
        return ::testing::AssertionFailure() << "slot " << slot << " records frame " << record.m_nFrameIndex;
    CFrame source;
    source.Init(clip.Frame(index), clip.Width(), clip.Height(), clip.ByteSpan(), clip.Depth(), clip.Format(), false);
    const Intensities figures = MeasureFrameIntensities(source);
    if (std::memcmp(&figures, &record.m_Intensities, sizeof figures) != 0)
        return ::testing::AssertionFailure() << "slot " << slot << " holds other figures than frame " << index << "'s";
    return ::testing::AssertionSuccess();
}

TEST(SequentialRender, StripsFillTheSlotsWithTheWholeFramesAndTheirRecords)
{
    // Several strips each, a short last one, and rows wider than their pixels.
    const std::pair<PixelFormat, Shape> cases[] = {{pfVideoSample, {700, 203, 0}},
                                                   {pfVideoSampleSwapped, {700, 101, 700 * 4 + 52}},
                                                   {pfVideoSampleFloat, {300, 97, 0}},
                                                   {pfVideoSampleSwappedFloat, {300, 61, 300 * 16 + 32}}};
    // Frame 4 is a one-frame flash: it is remembered as the last frame but not as a good one. The
    // step back to frame 2 resets the memory with a frame whose figures are already known, so the
    // picture goes into the slots without a measure.
    const float levels[] = {0.4f, 0.4f, 0.4f, 0.4f, 0.8f, 0.4f};
    struct Step {
        int index, shown;
    };
    const Step steps[] = {{0, 0}, {1, 1}, {2, 2}, {3, 3}, {4, 3}, {5, 5}, {2, 2}};
    std::mt19937 random(12);
    for (const auto& [format, c] : cases) {
        SCOPED_TRACE(::testing::Message() << "format " << format << " " << c.width << "x" << c.height);
        Clip clip(c.width, c.height, format, 6, 25.0, c.byteSpan);
        for (int index = 0; index < clip.FrameCount(); ++index) {
            clip.Fill(index, levels[index], levels[index], levels[index]);
            // A dim speck in a random spot of every row tells the frames and their rows apart.
            for (int y = 0; y < c.height; ++y)
                clip.Frame(index)[static_cast<size_t>(y) * clip.ByteSpan() + random() % (c.width * clip.Depth())] ^= 1;
        }
        InProcessHost::Options options;
        options.timeAccess = false;
        InProcessHost host(clip, options);
        CDeglarer effect;
        const unsigned int id = FreshEffectId();
        effect.SetId(id);
        for (const Step& step : steps) {
            Picture output(c.width, c.height, format);
            FrameParams destination = output.Params();
            ASSERT_TRUE(host.RenderFrame(&effect, step.index, &destination));
            EXPECT_TRUE(output.SameAs(clip, step.shown)) << "output of frame " << step.index;
            EXPECT_TRUE(SlotHolds(id, 0, clip, step.index)) << "after frame " << step.index;
            EXPECT_TRUE(SlotHolds(id, 1, clip, step.shown)) << "after frame " << step.index;
        }
    }
}

} // namespace
