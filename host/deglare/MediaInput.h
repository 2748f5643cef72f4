#pragma once
#include <string>

#include "AvSupport.h"
#include "FrameIndex.h"

namespace Deglare {

// An input file opened for demuxing, with the video stream that deglare works on chosen. The
// constructor throws a Failure that names the file and the cause when the file is missing or
// unreadable, isn't media, or has no decodable video.
class MediaInput {
public:
    explicit MediaInput(const std::string& path);

    const std::string& Path() const { return m_path; }
    AVFormatContext* Format() const { return m_format.get(); }
    AVStream* Video() const { return m_format->streams[m_videoIndex]; }
    int VideoIndex() const { return m_videoIndex; }

    // Skips the packets of every other stream from now on.
    void ReadVideoOnly();
    // The next packet; false at the end of the file or when reading fails, with `error` set to
    // the cause in the second case and to 0 in the first.
    bool Read(AVPacket* packet, int* error);
    // Moves to the keyframe at or before `pts` of the video stream.
    bool SeekVideo(int64_t pts);

    // Reads every video packet of `path` once, without decoding, for the frame count and the
    // timestamps. `videoIndex` is the stream chosen by a MediaInput of the same file.
    static FrameIndex IndexVideoFrames(const std::string& path, int videoIndex);

    // Throws the Failure for a path that can't be read as a file.
    static void CheckReadable(const std::string& path);

private:
    std::string m_path;
    InputFormatRef m_format;
    int m_videoIndex = -1;
};

// The nominal frame rate of a video stream: its average, else its base rate, else 25.
AVRational NominalFrameRate(const AVStream* stream);

} // namespace Deglare
