#pragma once
#include <stdexcept>
#include <string>

namespace Deglare {

// Each kind of failure ends the program with a status of its own, so a script can tell them
// apart without reading the message.
enum class ExitStatus : int {
    Success = 0,
    Failure = 1,                  // an unexpected failure while working
    Usage = 2,                    // options unknown, missing or out of range
    InputUnreadable = 3,          // missing, a folder, or not readable
    InputNotMedia = 4,            // nothing FFmpeg can demux and decode
    NoVideoStream = 5,
    NoVideoFrames = 6,
    OutputIsInput = 7,
    OutputFolderMissing = 8,
    OutputFolderNotWritable = 9,
    OutputIsFolder = 10,
    UnknownEncoder = 11,
    EncoderRefused = 12,          // the encoder can't take this picture size or format
    UnknownOutputFormat = 13,     // OUTPUT's extension names no container
    UnknownPreset = 14,
    PresetFileRejected = 15,
    WriteFailed = 16,             // the disk filled up or the output could not be written
    ModuleUnavailable = 17,       // the effect's bundle can't be loaded
    Interrupted = 130,            // Ctrl-C, as shells report it
};

// A failure that ends the run: its message names the file and the cause in one line.
class Failure : public std::runtime_error {
public:
    Failure(ExitStatus status, const std::string& message) : std::runtime_error(message), m_status(status) {}
    ExitStatus Status() const { return m_status; }

private:
    ExitStatus m_status;
};

} // namespace Deglare
