// The parts of the command-line host that stand on their own: slider positions, options,
// measuring, reading marks, runs, progress, memory planning and frame numbering.
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>
#include <sstream>

#include "../DeglarerPro/IntensityMeasureReference.h"
#include "../host/deglare/BandFigures.h"
#include "../host/deglare/Console.h"
#include "../host/deglare/DecodedFrame.h"
#include "../host/deglare/DemoFootage.h"
#include "../host/deglare/FlashRuns.h"
#include "../host/deglare/FrameIndex.h"
#include "../host/deglare/FrameNumbering.h"
#include "../host/deglare/MarkReader.h"
#include "../host/deglare/MemoryPlan.h"
#include "../host/deglare/Options.h"
#include "../host/deglare/PicturePool.h"
#include "../host/deglare/Progress.h"
#include "../host/deglare/SliderPositions.h"
#include "../host/deglare/Summary.h"

extern "C" {
#include <libavutil/avutil.h>
}

namespace {

using namespace Deglare;

float FromBits(uint32_t bits)
{
    float value;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

// Each value an editor shows maps to a position that the effect's own single-precision decoding,
// written out here apart from the host's mirror, turns back into that value; the mirror decodes
// the stock presets' positions, truncation edge included, as the effect does.
TEST(DeglareSliders, EveryShownValueDecodesToItself)
{
    for (int shown = 0; shown <= 100; ++shown) {
        const float position = SensitivityPosition(shown);
        EXPECT_EQ(static_cast<int>(std::trunc(position * 10.0f)), shown / 10) << "sensitivity " << shown;
        EXPECT_EQ(ShownSensitivity(position), shown);
    }
    for (int frames = 1; frames <= 10; ++frames) {
        const float position = MaxFramesPosition(frames);
        EXPECT_EQ(static_cast<int>(std::trunc(9.0f * position)) + 1, frames) << "max frames " << frames;
        EXPECT_EQ(DecodedMaxFrames(position), frames);
        EXPECT_TRUE(position >= 0.0f && position <= 1.0f) << position;
    }
    const std::pair<uint32_t, int> stockPositions[] = {{0x3EAAAAAB, 4}, {0x3EAAAA9F, 3}, {0x3DE38E2A, 1},
                                                       {0x00000000, 1}, {0x3F800000, 10}, {0x3E4CCCCD, 2}};
    for (const auto& [bits, limit] : stockPositions)
        EXPECT_EQ(DecodedMaxFrames(FromBits(bits)), limit) << std::hex << bits;
}

// Options read from `arguments`, quietly, into `options`: the one-line complaints are the
// end-to-end tests' part.
ParseResult Parse(const std::vector<const char*>& arguments, Options* options = nullptr)
{
    std::vector<const char*> argv = {"deglare"};
    argv.insert(argv.end(), arguments.begin(), arguments.end());
    Options parsed;
    std::ostringstream out, err;
    const ParseResult result = ParseOptions(static_cast<int>(argv.size()), argv.data(), parsed, out, err);
    if (options != nullptr)
        *options = parsed;
    return result;
}

TEST(DeglareOptions, RangesAndCombinationsAreChecked)
{
    const ParseResult Run = ParseResult::Run, Invalid = ParseResult::Invalid, Done = ParseResult::Done;
    const std::pair<std::vector<const char*>, ParseResult> cases[] = {
        {{"in.mp4", "out.mp4", "--sensitivity", "0", "--max-frames", "10"}, Run},
        {{"in.mp4", "out.mp4", "--sensitivity", "100", "--max-frames", "1", "--threads", "4"}, Run},
        {{"in.mp4", "out.mp4", "--sensitivity", "101"}, Invalid},
        {{"in.mp4", "out.mp4", "--sensitivity", "-1"}, Invalid},
        {{"in.mp4", "out.mp4", "--sensitivity", "high"}, Invalid},
        {{"in.mp4", "out.mp4", "--max-frames", "0"}, Invalid},
        {{"in.mp4", "out.mp4", "--max-frames", "11"}, Invalid},
        {{"in.mp4", "out.mp4", "--threads", "0"}, Invalid},
        {{"in.mp4", "out.mp4", "--memory", "10"}, Invalid},
        {{"in.mp4", "out.mp4", "--crf", "18", "--bitrate", "8M"}, Invalid},
        {{"in.mp4", "out.mp4", "--crf", "64"}, Invalid},
        {{"in.mp4", "out.mp4", "--bitrate", "fast"}, Invalid},
        {{"in.mp4", "out.mp4", "--report", "r.txt"}, Invalid},
        {{"in.mp4", "out.mp4", "--report", "r.CSV", "--plot", "p.svg"}, Run},
        {{"in.mp4", "out.mp4", "--plot", "p.jpg"}, Invalid},
        {{"in.mp4", "out.mp4", "--no-such-option"}, Invalid},
        {{"in.mp4"}, Invalid},
        {{}, Invalid},
        {{"in.mp4", "--analyze"}, Run},
        {{"in.mp4", "out.mp4", "--analyze"}, Invalid},
        {{"--demo"}, Run},
        {{"--demo", "in.mp4"}, Invalid},
        {{"--help"}, Done},
        {{"--version"}, Done},
    };
    for (const auto& [arguments, result] : cases) {
        std::string line;
        for (const char* argument : arguments)
            line += std::string(argument) + " ";
        EXPECT_EQ(Parse(arguments), result) << line;
    }
}

TEST(DeglareOptions, ValuesAreRead)
{
    Options options;
    ASSERT_EQ(Parse({"a.mov", "b.mkv", "--sensitivity", "35", "--max-frames", "4", "--bitrate", "2500k", "--codec",
                     "ffv1", "--test-mode", "--sequential", "--threads", "3", "--memory", "512", "--quiet"},
                    &options),
              ParseResult::Run);
    EXPECT_EQ(std::make_tuple(options.input, options.output, *options.sensitivity, *options.maxFrames,
                              options.encoder.bitrate, options.encoder.codec, options.threads, options.memoryMegabytes),
              std::make_tuple(std::string("a.mov"), std::string("b.mkv"), 35, 4, 2500000u, std::string("ffv1"), 3, 512u));
    EXPECT_TRUE(options.testMode && options.sequential && options.quiet);

    ASSERT_EQ(Parse({"a.mov", "b.mkv"}, &options), ParseResult::Run);
    EXPECT_FALSE(options.sensitivity.has_value() || options.maxFrames.has_value());
    EXPECT_EQ(options.encoder.codec, "libx264");
}

// A picture filled by `fill(x, y, pixel)`.
template <typename Fill>
Picture Painted(int width, int height, Fill fill)
{
    Picture picture(width, height);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            fill(x, y, picture.Row(y) + 4 * x);
    return picture;
}

// The report's figures are the effect's own: the host's measuring against the effect's defining
// loops, on noise of several sizes with rows left over, and on white, whose edge bands see half a
// row more or less than their nominal share.
TEST(DeglareBands, MeasureAsTheEffectDoes)
{
    const auto effectBands = [](const Picture& picture) {
        const Intensities figures = IntensityReference::getAverageIntensity8u(
            reinterpret_cast<const VideoSample*>(picture.Data()), picture.Span() / 4, picture.Width(),
            picture.Height());
        return std::vector<float>{figures.fBand[0] / 255.0f, figures.fBand[1] / 255.0f,
                                  figures.fBand[2] / 255.0f, figures.fBand[3] / 255.0f};
    };
    const Picture white = Painted(64, 48, [](int, int, uint8_t* p) { std::memset(p, 255, 4); });
    const double whiteShares[4] = {18.5 / 18.0, 1.0, 1.0, 17.5 / 18.0};
    for (int band = 0; band < 4; ++band)
        EXPECT_NEAR(MeasureBands(white).band[band], whiteShares[band] * 254.0 / 255.0, 1e-6) << band;
    std::mt19937 random(7);
    for (const auto& [width, height] : {std::make_pair(37, 29), std::make_pair(64, 48), std::make_pair(5, 7)}) {
        const Picture noise = Painted(width, height, [&](int, int, uint8_t* p) {
            for (int channel = 0; channel < 4; ++channel)
                p[channel] = static_cast<uint8_t>(random());
        });
        const std::vector<float> expected = effectBands(noise);
        for (int band = 0; band < 4; ++band)
            EXPECT_FLOAT_EQ(MeasureBands(noise).band[band], expected[band]) << width << "x" << height;
    }
    // Fewer than four rows: no bands, no fault.
    for (float band : MeasureBands(Painted(8, 3, [](int, int, uint8_t* p) { std::memset(p, 200, 4); })).band)
        EXPECT_EQ(band, 0.0f);
}

TEST(DeglareMarks, CrossColourTellsReplacedFromSpared)
{
    const auto grey = [](int, int, uint8_t* p) { p[0] = p[1] = p[2] = 120, p[3] = 255; };
    const Picture source = Painted(40, 30, grey);
    // A smoothed line blends towards its colour; the centre pixels are solid.
    const auto crossed = [&](uint8_t red, uint8_t blue) {
        return Painted(40, 30, [&](int x, int y, uint8_t* p) {
            grey(x, y, p);
            const int distance = std::abs(x * 30 / 40 - y);
            if (distance <= 1) {
                const int share = distance == 0 ? 255 : 96;
                p[2] = static_cast<uint8_t>((red * share + p[2] * (255 - share)) / 255);
                p[1] = static_cast<uint8_t>(p[1] * (255 - share) / 255);
                p[0] = static_cast<uint8_t>((blue * share + p[0] * (255 - share)) / 255);
            }
        });
    };
    EXPECT_EQ(ReadMark(Painted(40, 30, grey), source), Mark::None);
    EXPECT_EQ(ReadMark(crossed(255, 0), source), Mark::Red);
    EXPECT_EQ(ReadMark(crossed(0, 255), source), Mark::Blue);
}

std::vector<FrameRecord> Records(const std::vector<Decision>& decisions)
{
    std::vector<FrameRecord> records;
    for (size_t index = 0; index < decisions.size(); ++index) {
        FrameRecord record;
        record.index = static_cast<int>(index);
        record.time = index * 0.04;
        record.decision = decisions[index];
        record.substitute = decisions[index] == Decision::Replaced ? static_cast<int>(index) - 1 : -1;
        records.push_back(record);
    }
    return records;
}

TEST(DeglareRuns, NeighbouringFlaggedFramesFormOneRun)
{
    const Decision K = Decision::Kept, R = Decision::Replaced, S = Decision::Spared;
    const std::vector<FrameRecord> records = Records({K, R, K, K, R, R, S, K, S, K, R});
    std::vector<std::array<int, 4>> found;     // first, last, replaced, spared
    for (const FlashRun& run : FindFlashRuns(records))
        found.push_back({run.first, run.last, run.replaced, run.spared});
    EXPECT_EQ(found, (std::vector<std::array<int, 4>>{{1, 1, 1, 0}, {4, 6, 2, 1}, {8, 8, 0, 1}, {10, 10, 1, 0}}));
    EXPECT_EQ(CountReplaced(records), 4);
    EXPECT_EQ(SummaryLine(records, 2.345), "11 frames read, 4 flashes found, 4 frames replaced, in 2.3 s");
    const std::vector<std::string> lines = RunLines(records);
    ASSERT_EQ(lines.size(), 4u);
    EXPECT_EQ(lines[1], "frames 4-6 at 0.16 s: 4 replaced by 3; 5 replaced by 4; 6 spared");

    // A frame lost between two flagged ones splits them.
    std::vector<FrameRecord> gap = Records({K, R, R});
    gap[2].index = 3;
    EXPECT_EQ(FindFlashRuns(gap).size(), 2u);
    EXPECT_EQ(SummaryLine(Records({K}), 0.0), "1 frame read, 0 flashes found, 0 frames replaced, in 0.0 s");
}

TEST(DeglareProgress, TellsFramesRateAndTimeLeft)
{
    EXPECT_EQ(Progress::Describe(50, 200, 10.0, false), "50/200 frames  5.0 fps  0:30 left");
    EXPECT_EQ(Progress::Describe(0, 200, 0.0, false), "0/200 frames  0.0 fps  --:-- left");
    EXPECT_EQ(Progress::Describe(100, 4000, 1.0, false), "100/4000 frames  100.0 fps  0:39 left");
    EXPECT_EQ(Progress::Describe(1, 40000, 1.0, false), "1/40000 frames  1.0 fps  11:06:39 left");
    const std::string bar = Progress::Describe(15, 30, 3.0, true);
    EXPECT_EQ(bar.substr(0, 32), "[" + std::string(15, '#') + std::string(15, '.') + "]");
    // Plain lines when standard error isn't a terminal, none with --quiet.
    for (const bool quiet : {false, true}) {
        std::ostringstream err;
        Console(err, false, quiet).Progress("5/10 frames");
        EXPECT_EQ(err.str(), quiet ? "" : "deglare: 5/10 frames\n");
    }
}

TEST(DeglareMemory, PlanStaysInTheBudgetAndFourKFitsTwoGigabytes)
{
    const size_t megabyte = size_t(1) << 20;
    const struct {
        int width, height;
        AVPixelFormat format;
        int threads;
    } cases[] = {{1920, 1080, AV_PIX_FMT_YUV420P, 2}, {1920, 1080, AV_PIX_FMT_YUV420P, 16},
                 {3840, 2160, AV_PIX_FMT_YUV420P, 2}, {3840, 2160, AV_PIX_FMT_YUV420P10LE, 2},
                 {3840, 2160, AV_PIX_FMT_YUV444P10LE, 8}};
    for (const auto& test : cases) {
        const size_t picture = Picture::BytesFor(test.width, test.height);
        const size_t frame = DecodedFrame::BytesFor(test.width, test.height, test.format);
        const MemoryPlan plan = PlanMemory(1024 * megabyte, frame, picture, frame - picture, test.threads);
        SCOPED_TRACE(std::to_string(test.height) + "p on " + std::to_string(test.threads) + " threads");
        EXPECT_GE(plan.windowFrames, test.threads + 10);
        EXPECT_TRUE(plan.keepBehind >= 2 && plan.keepBehind < plan.windowFrames) << plan.keepBehind;
        EXPECT_TRUE(plan.raised || plan.plannedBytes <= 1024 * megabyte) << plan.plannedBytes;
        EXPECT_TRUE(test.threads > 2 || plan.plannedBytes <= 1280 * megabyte) << "leaves the encoder its share of 2 GB";
        EXPECT_TRUE(plan.startPictures > plan.decodeAhead && plan.startPictures <= plan.windowFrames + 2 * test.threads)
            << "pictures readied at the start: " << plan.startPictures;
    }
    // Small frames get the longest window, and no more.
    const MemoryPlan small = PlanMemory(1024 * megabyte, 20000, 12288, 7712, 2);
    EXPECT_EQ(small.windowFrames, 32);
    EXPECT_FALSE(small.raised);
}

TEST(DeglareMemory, WarmedPicturesLeaveThePoolWithTheirPagesIn)
{
    // Big enough for memory of its own from the system, which has no page in until touched.
    const size_t bytes = size_t(4) << 20;
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const auto resident = [&](uint8_t* pixels) {
        std::vector<unsigned char> pages((bytes + page - 1) / page);
        return mincore(pixels, bytes, pages.data()) == 0 &&
               std::all_of(pages.begin(), pages.end(), [](unsigned char in) { return (in & 1) != 0; });
    };
    PicturePool pool(2);
    pool.Warm(bytes, 3);   // one more than the pool keeps
    uint8_t* first = pool.Take(bytes);
    uint8_t* second = pool.Take(bytes);
    EXPECT_NE(first, second);
    EXPECT_TRUE(resident(first));
    EXPECT_TRUE(resident(second));
    pool.Give(first, bytes);
    pool.Give(second, bytes);
}

TEST(DeglareFrameIndex, FindsFramesByTimestampInPresentationOrder)
{
    const auto indexed = [](std::initializer_list<int64_t> times) {
        FrameIndex index;
        for (int64_t pts : times)
            index.Add(pts);
        index.Finish();
        return index;
    };
    const FrameIndex index = indexed({0, 3000, 1000, 2000, 6000, 4000});   // decode order with B-frames
    EXPECT_EQ(index.Count(), 6);
    EXPECT_TRUE(index.Timed());
    EXPECT_EQ(index.IndexOf(4000), 4);
    EXPECT_EQ(index.IndexOf(6000), 5);
    EXPECT_EQ(index.IndexOf(5000), FrameIndex::kNotFound);
    EXPECT_EQ(index.PtsOf(2), 2000);
    EXPECT_EQ(index.PtsOf(6), AV_NOPTS_VALUE);

    FrameNumbering numbering(index);
    numbering.StartAtBeginning();
    EXPECT_EQ(numbering.Number(0), 0);
    EXPECT_EQ(numbering.Number(2000), 2) << "a frame lost to damage leaves a gap";
    EXPECT_EQ(numbering.Number(AV_NOPTS_VALUE), 3) << "no timestamp: the next one";
    numbering.StartAfterSeek();
    EXPECT_EQ(numbering.Number(AV_NOPTS_VALUE), FrameNumbering::kUnknown);
    EXPECT_EQ(numbering.Number(3000), 3);
    EXPECT_EQ(numbering.Number(AV_NOPTS_VALUE), 4);

    const FrameIndex untimed = indexed({0, 1000, 1000});
    EXPECT_EQ(untimed.Count(), 3);
    EXPECT_FALSE(untimed.Timed()) << "two frames with one timestamp can't be told apart";
    const FrameIndex noTimes = indexed({AV_NOPTS_VALUE});
    EXPECT_FALSE(noTimes.Timed());
    EXPECT_EQ(noTimes.IndexOf(0), FrameIndex::kNotFound);
}

// The demo's clip holds the flashes it tells of: each a jump of every band, or of the lower
// bands only, after which the scene comes back; the lamp's jump lasts to the end.
TEST(DeglareDemo, FootageHoldsTheFlashesItClaims)
{
    const auto bandsOf = [](int index) {
        Picture picture(DemoFootage::kWidth, DemoFootage::kHeight);
        DemoFootage::Paint(index, picture);
        return MeasureBands(picture);
    };
    const auto rise = [](const BandFigures& from, const BandFigures& to, int band) {
        return (to.band[band] - from.band[band]) / to.band[band];
    };
    ASSERT_EQ(DemoFootage::Events().size(), 4u);
    for (const DemoFootage::Event& event : DemoFootage::Events()) {
        SCOPED_TRACE(event.what);
        const bool partial = std::string(event.what).find("partial") != std::string::npos;
        const bool lamp = std::string(event.what).find("lamp") != std::string::npos;
        const BandFigures before = bandsOf(event.first - 1);
        const BandFigures flashed = bandsOf(event.first);
        const BandFigures after = bandsOf(lamp ? DemoFootage::kFrameCount - 1 : event.last + 1);
        for (int band = 0; band < 4; ++band) {
            if (partial && band == 0)
                EXPECT_LT(rise(before, flashed, band), 0.02f) << "band " << band;
            else
                EXPECT_GT(rise(before, flashed, band), 0.25f) << "band " << band;
            EXPECT_LT(std::fabs(rise(lamp ? flashed : before, after, band)), 0.03f) << "band " << band;
        }
    }
}

} // namespace
