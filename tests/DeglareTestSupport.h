#pragma once
// Helpers for the tests of the command-line host: clips made with FFmpeg's libraries, read
// back frame by frame, and the deglare program run as a user would run it.
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "../host/deglare/AvSupport.h"
#include "../host/deglare/ClipWriter.h"
#include "../host/deglare/Pipeline.h"

namespace DeglareTest {

// A folder under the system's temporary folder, removed with everything in it.
class TempFolder {
public:
    TempFolder();
    ~TempFolder();
    std::string Path(const std::string& name) const { return m_path + "/" + name; }
    const std::string& Path() const { return m_path; }
    // The names of the files in it, sorted.
    std::vector<std::string> Files() const;

private:
    std::string m_path;
};

// A flat scene whose brightness `levels[i]` (0..1) frame i has, with a little texture that
// tells the frames apart, and `lowerLevels[i]` for the lower half when given (a rolling
// shutter's partial flash).
Deglare::PicturePainter Scene(std::vector<float> levels, std::vector<float> lowerLevels = {});

// Levels of 0.40 to 0.42, a step of a frame far below any threshold: nothing to take for a flash;
// and a clip of `recipe` with `frames` frames of them written to `path`, which it gives back.
std::vector<float> SteadyLevels(int count);
std::string WriteSteadyClip(const std::string& path, int frames, Deglare::ClipRecipe recipe = {});

// A clip read back: each video frame's planes, packed, with its timestamp, and the packets of
// every other stream.
struct ReadClip {
    struct Frame {
        int64_t pts;
        std::vector<uint8_t> planes;
    };
    struct Packet {
        int64_t pts;
        std::vector<uint8_t> data;
    };
    std::vector<Frame> frames;
    std::vector<Packet> otherPackets;
    AVRational timeBase = {0, 1};
    AVRational frameRate = {0, 1};
    AVPixelFormat pixelFormat = AV_PIX_FMT_NONE;
    int width = 0;
    int height = 0;
    AVColorRange range = AVCOL_RANGE_UNSPECIFIED;
    AVColorPrimaries primaries = AVCOL_PRI_UNSPECIFIED;
    AVColorTransferCharacteristic transfer = AVCOL_TRC_UNSPECIFIED;
    AVColorSpace matrix = AVCOL_SPC_UNSPECIFIED;
    double rotation = 0.0;
    int streamCount = 0;
};
ReadClip ReadBack(const std::string& path);

// Which input frame each output frame shows: its index among `input.frames`, or -1 if it
// equals none of them.
std::vector<int> ShownFrames(const ReadClip& output, const ReadClip& input);
// What ShownFrames gives for a clip of `count` frames whose frames in `changed` show the frame
// mapped to (-1 for a marked picture) and the others themselves.
std::vector<int> ShownWith(int count, const std::map<int, int>& changed);

// A frame's decision as the tests compare it: "kept", "spared" or "replaced by N".
std::string Told(const std::string& decision, int substitute);
// The decisions of `count` frames whose frames in `replaced` take the frame mapped to and those
// in `spared` are flagged but kept.
std::vector<std::string> ToldFor(int count, const std::map<int, int>& replaced, const std::set<int>& spared);

// The host's pipeline run quietly in process: its result, what each output frame shows (when it
// writes one) and the decisions as Told gives them.
struct PipelineRun {
    Deglare::RunResult result;
    std::vector<int> shown;
    std::vector<std::string> told;
};
PipelineRun RunPipeline(IVideoEffect* effect, const Deglare::RunSettings& settings);

// The deglare program run with `arguments`, its exit status and what it printed.
struct ProgramRun {
    int status = -1;
    std::string out;
    std::string err;
};
// `fileSizeLimit` > 0 caps the size of any file the program writes, as a full disk would.
ProgramRun RunDeglare(const std::vector<std::string>& arguments, long fileSizeLimit = 0,
                      const std::string& workingFolder = "");

// The program started with its output discarded, and its exit status when it ends.
int StartDeglare(const std::vector<std::string>& arguments);
int WaitForDeglare(int process);

std::string ReadFile(const std::string& path);
void WriteFile(const std::string& path, const std::string& content);

} // namespace DeglareTest
