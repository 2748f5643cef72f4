// The deglare program run as a user runs it, with the real effect loaded from the bundle, on
// clips generated with FFmpeg's libraries and read back frame by frame.
#include <gtest/gtest.h>

#include "DeglareTestSupport.h"

namespace {

using namespace Deglare;
using namespace DeglareTest;

std::vector<float> Steady(int count)
{
    std::vector<float> levels;
    for (int index = 0; index < count; ++index)
        levels.push_back(0.40f + 0.01f * (index % 3));
    return levels;
}

void ExpectSameTimestamps(const ReadClip& after, const ReadClip& before)
{
    ASSERT_EQ(after.frames.size(), before.frames.size());
    for (size_t index = 0; index < before.frames.size(); ++index)
        EXPECT_EQ(av_rescale_q(after.frames[index].pts, after.timeBase, before.timeBase), before.frames[index].pts)
            << "frame " << index;
}

// A clip whose frames show nothing the effect would take for a flash comes out frame for frame
// as it went in, whatever its form, on either render path.
TEST(DeglareEndToEnd, SteadyClipsComeOutUnchanged)
{
    struct Case {
        const char* name;
        int width, height;
        AVPixelFormat format;
        std::vector<int64_t> timestamps;   // in 1/1000 s; empty: 25 frames a second
        const char* extension;
        bool sequential;
    };
    const Case cases[] = {
        {"8-bit with audio", 64, 48, AV_PIX_FMT_YUV420P, {}, "mkv", false},
        {"8-bit, sequential", 64, 48, AV_PIX_FMT_YUV420P, {}, "mkv", true},
        {"10-bit", 64, 48, AV_PIX_FMT_YUV420P10LE, {}, "mkv", false},
        {"odd size", 65, 49, AV_PIX_FMT_YUV420P, {}, "mkv", false},
        {"4:4:4 in AVI", 80, 60, AV_PIX_FMT_YUV444P, {}, "avi", false},
        {"variable frame rate", 64, 48, AV_PIX_FMT_YUV420P,
         {0, 40, 80, 150, 190, 230, 330, 370, 410, 420, 430, 470, 510, 600, 640, 680, 720, 760, 900, 940}, "mkv",
         false},
    };
    for (const Case& test : cases) {
        SCOPED_TRACE(test.name);
        TempFolder folder;
        ClipSpec spec;
        spec.width = test.width;
        spec.height = test.height;
        spec.pixelFormat = test.format;
        spec.frameCount = test.timestamps.empty() ? 24 : static_cast<int>(test.timestamps.size());
        spec.audio = true;
        spec.timestamps = test.timestamps;
        spec.timeBase = test.timestamps.empty() ? AVRational{1, 25} : AVRational{1, 1000};
        spec.range = AVCOL_RANGE_MPEG;
        spec.primaries = AVCOL_PRI_BT709;
        spec.transfer = AVCOL_TRC_BT709;
        spec.matrix = AVCOL_SPC_BT709;
        spec.rotation = 90.0;
        const std::string input = folder.Path(std::string("in.") + test.extension);
        const std::string output = folder.Path(std::string("out.") + test.extension);
        WriteClip(input, spec, Scene(Steady(spec.frameCount)));

        std::vector<std::string> arguments = {input, output, "--codec", "ffv1", "--quiet"};
        if (test.sequential)
            arguments.push_back("--sequential");
        const ProgramRun run = RunDeglare(arguments);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_EQ(run.err, "");

        const ReadClip before = ReadBack(input);
        const ReadClip after = ReadBack(output);
        ASSERT_EQ(after.frames.size(), before.frames.size());
        for (size_t index = 0; index < before.frames.size(); ++index)
            EXPECT_TRUE(after.frames[index].planes == before.frames[index].planes) << "frame " << index;
        ExpectSameTimestamps(after, before);
        EXPECT_EQ(after.timeBase.num * before.timeBase.den, before.timeBase.num * after.timeBase.den);
        EXPECT_EQ(av_cmp_q(after.frameRate, before.frameRate), 0);
        EXPECT_EQ(after.pixelFormat, before.pixelFormat);
        EXPECT_EQ(after.width, test.width);
        EXPECT_EQ(after.height, test.height);
        EXPECT_EQ(after.range, before.range);
        EXPECT_EQ(after.primaries, before.primaries);
        EXPECT_EQ(after.transfer, before.transfer);
        EXPECT_EQ(after.matrix, before.matrix);
        EXPECT_EQ(after.rotation, before.rotation);

        // Audio bit for bit, with its timestamps.
        ASSERT_EQ(after.streamCount, before.streamCount);
        ASSERT_FALSE(before.otherPackets.empty());
        ASSERT_EQ(after.otherPackets.size(), before.otherPackets.size());
        for (size_t index = 0; index < before.otherPackets.size(); ++index) {
            EXPECT_TRUE(after.otherPackets[index].data == before.otherPackets[index].data) << "packet " << index;
            EXPECT_EQ(after.otherPackets[index].pts, before.otherPackets[index].pts) << "packet " << index;
        }
    }
}

} // namespace
