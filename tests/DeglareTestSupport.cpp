#include "DeglareTestSupport.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

extern "C" {
#include <libavutil/display.h>
#include <libavutil/imgutils.h>
}

#include "../host/deglare/ReportWriter.h"
#include "../host/deglare/VideoDecoder.h"

namespace DeglareTest {

namespace fs = std::filesystem;

TempFolder::TempFolder()
{
    std::string pattern = (fs::temp_directory_path() / "deglare-test-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("can't make a temporary folder");
    m_path = pattern;
}

TempFolder::~TempFolder()
{
    std::error_code error;
    fs::permissions(m_path, fs::perms::owner_all, fs::perm_options::add, error);
    fs::remove_all(m_path, error);
}

std::vector<std::string> TempFolder::Files() const
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(m_path))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

Deglare::PicturePainter Scene(std::vector<float> levels, std::vector<float> lowerLevels)
{
    return [levels, lowerLevels](int index, Deglare::Picture& picture) {
        for (int y = 0; y < picture.Height(); ++y) {
            const bool lower = y >= picture.Height() / 2 && !lowerLevels.empty();
            const float level = lower ? lowerLevels[index] : levels[index];
            uint8_t* row = picture.Row(y);
            for (int x = 0; x < picture.Width(); ++x) {
                // A gentle diagonal texture that moves a pixel a frame.
                const int texture = ((x + y + index) % 8) - 4;
                const int value = std::clamp(static_cast<int>(level * 255.0f) + texture, 0, 255);
                row[4 * x + 0] = static_cast<uint8_t>(value * 9 / 10);
                row[4 * x + 1] = static_cast<uint8_t>(value);
                row[4 * x + 2] = static_cast<uint8_t>(value * 19 / 20);
                row[4 * x + 3] = 255;
            }
        }
        // The frame's number in two small grey blocks, so that no two frames are alike.
        const int marks[2] = {16 + 2 * (index % 100), 16 + 2 * (index / 100 % 100)};
        for (int block = 0; block < 2; ++block)
            for (int y = 0; y < 2; ++y)
                for (int x = 2 * block; x < 2 * block + 2; ++x)
                    std::fill_n(picture.Row(y) + 4 * x, 3, static_cast<uint8_t>(marks[block]));
    };
}

std::vector<float> SteadyLevels(int count)
{
    std::vector<float> levels;
    for (int index = 0; index < count; ++index)
        levels.push_back(0.40f + 0.01f * (index % 3));
    return levels;
}

std::string WriteSteadyClip(const std::string& path, int frames, Deglare::ClipRecipe recipe)
{
    recipe.frameCount = frames;
    Deglare::WriteClip(path, recipe, Scene(SteadyLevels(frames)));
    return path;
}

ReadClip ReadBack(const std::string& path)
{
    using namespace Deglare;
    ReadClip clip;
    AVFormatContext* opened = nullptr;
    if (avformat_open_input(&opened, path.c_str(), nullptr, nullptr) < 0)
        throw std::runtime_error("can't open " + path);
    InputFormatRef format(opened);
    if (avformat_find_stream_info(format.get(), nullptr) < 0)
        throw std::runtime_error("can't read streams of " + path);
    const int videoIndex = av_find_best_stream(format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (videoIndex < 0)
        throw std::runtime_error("no video in " + path);
    const AVStream* video = format->streams[videoIndex];
    clip.streamCount = static_cast<int>(format->nb_streams);
    clip.timeBase = video->time_base;
    clip.frameRate = video->avg_frame_rate;
    const auto* matrix = reinterpret_cast<const int32_t*>(av_stream_get_side_data(video, AV_PKT_DATA_DISPLAYMATRIX, nullptr));
    if (matrix != nullptr)
        clip.rotation = av_display_rotation_get(matrix);

    VideoDecoder decoder(video, 1);
    PacketRef packet = AllocatePacket();
    FrameRef frame = AllocateFrame();
    auto receive = [&] {
        while (decoder.Receive(frame.get()) == 0) {
            clip.pixelFormat = static_cast<AVPixelFormat>(frame->format);
            clip.width = frame->width;
            clip.height = frame->height;
            clip.range = frame->color_range;
            clip.primaries = frame->color_primaries;
            clip.transfer = frame->color_trc;
            clip.matrix = frame->colorspace;
            const int size = av_image_get_buffer_size(clip.pixelFormat, frame->width, frame->height, 1);
            ReadClip::Frame copy{frame->best_effort_timestamp, std::vector<uint8_t>(size)};
            av_image_copy_to_buffer(copy.planes.data(), size, frame->data, frame->linesize, clip.pixelFormat,
                                    frame->width, frame->height, 1);
            clip.frames.push_back(std::move(copy));
            av_frame_unref(frame.get());
        }
    };
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        if (packet->stream_index == videoIndex) {
            decoder.Send(packet.get());
            receive();
        } else {
            clip.otherPackets.push_back({packet->pts, std::vector<uint8_t>(packet->data, packet->data + packet->size)});
        }
        av_packet_unref(packet.get());
    }
    decoder.Send(nullptr);
    receive();
    return clip;
}

std::vector<int> ShownFrames(const ReadClip& output, const ReadClip& input)
{
    std::vector<int> shown;
    for (const ReadClip::Frame& frame : output.frames) {
        int found = -1;
        for (size_t index = 0; index < input.frames.size() && found < 0; ++index)
            if (input.frames[index].planes == frame.planes)
                found = static_cast<int>(index);
        shown.push_back(found);
    }
    return shown;
}

std::vector<int> ShownWith(int count, const std::map<int, int>& changed)
{
    std::vector<int> shown;
    for (int index = 0; index < count; ++index)
        shown.push_back(changed.count(index) != 0 ? changed.at(index) : index);
    return shown;
}

std::string Told(const std::string& decision, int substitute)
{
    return decision == "replaced" ? "replaced by " + std::to_string(substitute) : decision;
}

std::vector<std::string> ToldFor(int count, const std::map<int, int>& replaced, const std::set<int>& spared)
{
    std::vector<std::string> told;
    for (int index = 0; index < count; ++index)
        told.push_back(replaced.count(index) != 0 ? Told("replaced", replaced.at(index))
                                                  : spared.count(index) != 0 ? "spared" : "kept");
    return told;
}

PipelineRun RunPipeline(IVideoEffect* effect, const Deglare::RunSettings& settings)
{
    std::ostringstream messages;
    Deglare::Console console(messages, false, true);
    PipelineRun run{Deglare::Pipeline(effect, console).Run(settings), {}, {}};
    if (!settings.analyze)
        run.shown = ShownFrames(ReadBack(settings.output), ReadBack(settings.input));
    for (const Deglare::FrameRecord& record : run.result.frames)
        run.told.push_back(Told(Deglare::DecisionName(record.decision), record.substitute));
    return run;
}

namespace {
// Starts the program with its output going to the two files; everything the child needs is
// made before the fork, so that it only calls what is safe there.
pid_t Spawn(const std::vector<std::string>& arguments, const std::string& outPath, const std::string& errPath,
            long fileSizeLimit, const std::string& workingFolder)
{
    std::vector<char*> argv;
    argv.push_back(const_cast<char*>(DEGLARE_PROGRAM));
    for (const std::string& argument : arguments)
        argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        const int out = open(outPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        const int err = open(errPath.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        dup2(out, STDOUT_FILENO);
        dup2(err, STDERR_FILENO);
        if (!workingFolder.empty() && chdir(workingFolder.c_str()) != 0)
            _exit(127);
        if (fileSizeLimit > 0) {
            // Writing past the limit then fails with EFBIG instead of raising SIGXFSZ.
            signal(SIGXFSZ, SIG_IGN);
            struct rlimit limit = {static_cast<rlim_t>(fileSizeLimit), static_cast<rlim_t>(fileSizeLimit)};
            setrlimit(RLIMIT_FSIZE, &limit);
        }
        execv(DEGLARE_PROGRAM, argv.data());
        _exit(127);
    }
    return child;
}
} // namespace

ProgramRun RunDeglare(const std::vector<std::string>& arguments, long fileSizeLimit, const std::string& workingFolder)
{
    TempFolder captures;
    const pid_t child = Spawn(arguments, captures.Path("out"), captures.Path("err"), fileSizeLimit, workingFolder);
    ProgramRun run;
    run.status = WaitForDeglare(child);
    run.out = ReadFile(captures.Path("out"));
    run.err = ReadFile(captures.Path("err"));
    return run;
}

int StartDeglare(const std::vector<std::string>& arguments)
{
    return Spawn(arguments, "/dev/null", "/dev/null", 0, "");
}

int WaitForDeglare(int process)
{
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string ReadFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream content;
    content << file.rdbuf();
    return content.str();
}

void WriteFile(const std::string& path, const std::string& content)
{
    std::ofstream file(path, std::ios::binary);
    file << content;
}

} // namespace DeglareTest

namespace {
// FFmpeg's notes about the clips the tests make are noise in a test log.
class QuietLibraries : public ::testing::Environment {
public:
    void SetUp() override { av_log_set_level(AV_LOG_ERROR); }
};
const ::testing::Environment* const s_quietLibraries = ::testing::AddGlobalTestEnvironment(new QuietLibraries);
} // namespace
