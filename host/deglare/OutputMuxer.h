#pragma once
#include <map>
#include <mutex>
#include <string>

#include "AvSupport.h"
#include "Console.h"

namespace Deglare {

// The output container: the cleaned video stream and every other stream of the input copied
// unchanged, with the input's metadata, chapters and stream side data (rotation among them).
// The container follows the extension of `outputName`; the bytes go to `path`. Packets may
// come from several threads.
class OutputMuxer {
public:
    // Throws Failure when the extension names no container or `path` can't be opened.
    OutputMuxer(const std::string& outputName, const std::string& path);
    ~OutputMuxer();
    OutputMuxer(const OutputMuxer&) = delete;
    OutputMuxer& operator=(const OutputMuxer&) = delete;

    bool WantsGlobalHeader() const;
    // The cleaned video, encoded by `encoder`, standing for input stream `input`.
    void AddVideo(const AVCodecContext* encoder, const AVStream* input);
    // Input stream `input` copied as it is; a stream that the container can't hold is left out
    // with a warning.
    void AddCopy(const AVStream* input, Console& console);
    // Writes the header, with the metadata and chapters of `input`.
    void Start(const AVFormatContext* input);
    // The time base the container chose for the video stream; known once Start has run.
    AVRational VideoTimeBase() const;

    // The video's packets, in `timeBase`.
    void WriteVideo(AVPacket* packet, AVRational timeBase);
    // A packet of a copied input stream, as the demuxer gave it.
    void WriteCopy(AVPacket* packet, const AVStream* input);
    // Writes the trailer and closes the file; throws Failure when the file couldn't be
    // completed.
    void Finish();

    // Throws the Failure for an OUTPUT whose extension names no container.
    static const AVOutputFormat* FormatFor(const std::string& outputName);

private:
    void Write(AVPacket* packet, int stream, AVRational timeBase);
    void ThrowWriteFailure(int status);
    static void CopyStreamDetails(const AVStream* from, AVStream* to);

    std::string m_outputName;
    AVFormatContext* m_format = nullptr;
    int m_videoStream = -1;
    std::map<int, int> m_copies;          // input stream -> output stream
    std::mutex m_mutex;
};

} // namespace Deglare
