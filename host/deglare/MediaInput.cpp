#include "MediaInput.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "ExitStatus.h"

namespace Deglare {

namespace {
const AVRational kFallbackFrameRate = {25, 1};

InputFormatRef OpenFormat(const std::string& path)
{
    AVFormatContext* format = nullptr;
    const int status = avformat_open_input(&format, path.c_str(), nullptr, nullptr);
    if (status < 0)
        throw Failure(ExitStatus::InputNotMedia,
                      path + ": not a media file that FFmpeg can read (" + AvErrorText(status) + ")");
    return InputFormatRef(format);
}

bool IsPicture(const AVStream* stream)
{
    return stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO &&
           (stream->disposition & AV_DISPOSITION_ATTACHED_PIC) == 0;
}
} // namespace

void MediaInput::CheckReadable(const std::string& path)
{
    struct stat info;
    if (stat(path.c_str(), &info) != 0)
        throw Failure(ExitStatus::InputUnreadable, path + ": " + std::strerror(errno));
    if (S_ISDIR(info.st_mode))
        throw Failure(ExitStatus::InputUnreadable, path + ": is a folder, not a media file");
    const int descriptor = open(path.c_str(), O_RDONLY);
    if (descriptor < 0)
        throw Failure(ExitStatus::InputUnreadable, path + ": " + std::strerror(errno));
    close(descriptor);
}

MediaInput::MediaInput(const std::string& path) : m_path(path)
{
    CheckReadable(path);
    m_format = OpenFormat(path);
    const int status = avformat_find_stream_info(m_format.get(), nullptr);
    if (status < 0)
        throw Failure(ExitStatus::InputNotMedia, path + ": its streams can't be read (" + AvErrorText(status) + ")");
    // The best video stream that is a moving picture, not a cover image.
    const int best = av_find_best_stream(m_format.get(), AVMEDIA_TYPE_VIDEO, -1, -1, nullptr, 0);
    if (best >= 0 && IsPicture(m_format->streams[best]))
        m_videoIndex = best;
    for (unsigned int index = 0; m_videoIndex < 0 && index < m_format->nb_streams; ++index)
        if (IsPicture(m_format->streams[index]))
            m_videoIndex = static_cast<int>(index);
    if (m_videoIndex < 0)
        throw Failure(ExitStatus::NoVideoStream, path + ": has no video stream");
    const AVCodecParameters* parameters = Video()->codecpar;
    if (avcodec_find_decoder(parameters->codec_id) == nullptr)
        throw Failure(ExitStatus::InputNotMedia,
                      path + ": no decoder for its video (" + avcodec_get_name(parameters->codec_id) + ")");
    if (parameters->width <= 0 || parameters->height <= 0)
        throw Failure(ExitStatus::InputNotMedia, path + ": its video has no picture size");
}

void MediaInput::ReadVideoOnly()
{
    for (unsigned int index = 0; index < m_format->nb_streams; ++index)
        if (static_cast<int>(index) != m_videoIndex)
            m_format->streams[index]->discard = AVDISCARD_ALL;
}

bool MediaInput::Read(AVPacket* packet, int* error)
{
    *error = 0;
    const int status = av_read_frame(m_format.get(), packet);
    if (status >= 0)
        return true;
    if (status != AVERROR_EOF)
        *error = status;
    return false;
}

bool MediaInput::SeekVideo(int64_t pts)
{
    return av_seek_frame(m_format.get(), m_videoIndex, pts, AVSEEK_FLAG_BACKWARD) >= 0;
}

FrameIndex MediaInput::IndexVideoFrames(const std::string& path, int videoIndex)
{
    // Headers suffice to tell the packets apart; the streams need no probing by decoding.
    InputFormatRef format = OpenFormat(path);
    if (videoIndex >= static_cast<int>(format->nb_streams) ||
        format->streams[videoIndex]->codecpar->codec_type != AVMEDIA_TYPE_VIDEO) {
        // Streams that appear only as the file is read: probe as the main input did.
        avformat_find_stream_info(format.get(), nullptr);
    }
    for (unsigned int index = 0; index < format->nb_streams; ++index)
        if (static_cast<int>(index) != videoIndex)
            format->streams[index]->discard = AVDISCARD_ALL;

    FrameIndex frames;
    PacketRef packet = AllocatePacket();
    while (av_read_frame(format.get(), packet.get()) >= 0) {
        // Packets that the demuxer marks as discarded (before an edit's start) never show.
        if (packet->stream_index == videoIndex && (packet->flags & AV_PKT_FLAG_DISCARD) == 0)
            frames.Add(packet->pts);
        av_packet_unref(packet.get());
    }
    frames.Finish();
    return frames;
}

AVRational NominalFrameRate(const AVStream* stream)
{
    if (stream->avg_frame_rate.num > 0 && stream->avg_frame_rate.den > 0)
        return stream->avg_frame_rate;
    if (stream->r_frame_rate.num > 0 && stream->r_frame_rate.den > 0)
        return stream->r_frame_rate;
    return kFallbackFrameRate;
}

} // namespace Deglare
