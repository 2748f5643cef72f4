#include "OutputMuxer.h"

#include <cstring>

#include "ExitStatus.h"

namespace Deglare {

const AVOutputFormat* OutputMuxer::FormatFor(const std::string& outputName)
{
    const AVOutputFormat* format = av_guess_format(nullptr, outputName.c_str(), nullptr);
    if (format == nullptr)
        throw Failure(ExitStatus::UnknownOutputFormat,
                      outputName + ": its extension names no container that FFmpeg can write");
    return format;
}

OutputMuxer::OutputMuxer(const std::string& outputName, const std::string& path) : m_outputName(outputName)
{
    const AVOutputFormat* format = FormatFor(outputName);
    if (avformat_alloc_output_context2(&m_format, format, nullptr, path.c_str()) < 0 || m_format == nullptr)
        throw std::bad_alloc();
    if ((format->flags & AVFMT_NOFILE) == 0) {
        const int status = avio_open(&m_format->pb, path.c_str(), AVIO_FLAG_WRITE);
        if (status < 0)
            throw Failure(ExitStatus::OutputFolderNotWritable, outputName + ": can't be written (" + AvErrorText(status) + ")");
    }
}

OutputMuxer::~OutputMuxer()
{
    if (m_format == nullptr)
        return;
    if (m_format->pb != nullptr && (m_format->oformat->flags & AVFMT_NOFILE) == 0)
        avio_closep(&m_format->pb);
    avformat_free_context(m_format);
}

bool OutputMuxer::WantsGlobalHeader() const
{
    return (m_format->oformat->flags & AVFMT_GLOBALHEADER) != 0;
}

void OutputMuxer::CopyStreamDetails(const AVStream* from, AVStream* to)
{
    av_dict_copy(&to->metadata, from->metadata, 0);
    to->disposition = from->disposition;
    to->time_base = from->time_base;
    to->avg_frame_rate = from->avg_frame_rate;
    to->r_frame_rate = from->r_frame_rate;
    to->sample_aspect_ratio = from->sample_aspect_ratio;
    for (int index = 0; index < from->nb_side_data; ++index) {
        const AVPacketSideData& side = from->side_data[index];
        uint8_t* data = av_stream_new_side_data(to, side.type, side.size);
        if (data == nullptr)
            throw std::bad_alloc();
        std::memcpy(data, side.data, side.size);
    }
}

void OutputMuxer::AddVideo(const AVCodecContext* encoder, const AVStream* input)
{
    if (avformat_query_codec(m_format->oformat, encoder->codec_id, FF_COMPLIANCE_NORMAL) == 0)
        throw Failure(ExitStatus::EncoderRefused, m_outputName + ": the " + m_format->oformat->name +
                                                      " container can't hold " + avcodec_get_name(encoder->codec_id) +
                                                      " video; choose another --codec or extension");
    AVStream* stream = avformat_new_stream(m_format, nullptr);
    if (stream == nullptr)
        throw std::bad_alloc();
    if (avcodec_parameters_from_context(stream->codecpar, encoder) < 0)
        throw std::bad_alloc();
    CopyStreamDetails(input, stream);
    stream->time_base = encoder->time_base;
    stream->sample_aspect_ratio = encoder->sample_aspect_ratio;
    m_videoStream = stream->index;
}

void OutputMuxer::AddCopy(const AVStream* input, Console& console)
{
    const AVCodecParameters* parameters = input->codecpar;
    if (avformat_query_codec(m_format->oformat, parameters->codec_id, FF_COMPLIANCE_NORMAL) == 0) {
        console.Warn(m_outputName + ": the " + m_format->oformat->name + " container can't hold stream #" +
                     std::to_string(input->index) + " (" + avcodec_get_name(parameters->codec_id) +
                     "); it is left out");
        return;
    }
    AVStream* stream = avformat_new_stream(m_format, nullptr);
    if (stream == nullptr || avcodec_parameters_copy(stream->codecpar, parameters) < 0)
        throw std::bad_alloc();
    // The tag is the input container's; the output container picks its own.
    stream->codecpar->codec_tag = 0;
    CopyStreamDetails(input, stream);
    m_copies[input->index] = stream->index;
}

void OutputMuxer::Start(const AVFormatContext* input)
{
    av_dict_copy(&m_format->metadata, input->metadata, 0);
    for (unsigned int index = 0; index < input->nb_chapters; ++index) {
        const AVChapter* chapter = input->chapters[index];
        AVChapter** grown = static_cast<AVChapter**>(
            av_realloc_array(m_format->chapters, m_format->nb_chapters + 1, sizeof(AVChapter*)));
        if (grown == nullptr)
            throw std::bad_alloc();
        m_format->chapters = grown;
        AVChapter* copy = static_cast<AVChapter*>(av_mallocz(sizeof(AVChapter)));
        if (copy == nullptr)
            throw std::bad_alloc();
        copy->id = chapter->id;
        copy->time_base = chapter->time_base;
        copy->start = chapter->start;
        copy->end = chapter->end;
        av_dict_copy(&copy->metadata, chapter->metadata, 0);
        m_format->chapters[m_format->nb_chapters++] = copy;
    }
    const int status = avformat_write_header(m_format, nullptr);
    if (status < 0)
        ThrowWriteFailure(status);
}

AVRational OutputMuxer::VideoTimeBase() const
{
    return m_format->streams[m_videoStream]->time_base;
}

void OutputMuxer::ThrowWriteFailure(int status)
{
    throw Failure(ExitStatus::WriteFailed, m_outputName + ": writing failed (" + AvErrorText(status) + ")");
}

void OutputMuxer::Write(AVPacket* packet, int stream, AVRational timeBase)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    packet->stream_index = stream;
    av_packet_rescale_ts(packet, timeBase, m_format->streams[stream]->time_base);
    packet->pos = -1;
    const int status = av_interleaved_write_frame(m_format, packet);
    if (status < 0)
        ThrowWriteFailure(status);
    if (m_format->pb != nullptr && m_format->pb->error < 0)
        ThrowWriteFailure(m_format->pb->error);
}

void OutputMuxer::WriteVideo(AVPacket* packet, AVRational timeBase)
{
    Write(packet, m_videoStream, timeBase);
}

void OutputMuxer::WriteCopy(AVPacket* packet, const AVStream* input)
{
    auto found = m_copies.find(input->index);
    if (found == m_copies.end())
        return;
    Write(packet, found->second, input->time_base);
}

void OutputMuxer::Finish()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    int status = av_write_trailer(m_format);
    if (status < 0)
        ThrowWriteFailure(status);
    if (m_format->pb != nullptr && (m_format->oformat->flags & AVFMT_NOFILE) == 0) {
        avio_flush(m_format->pb);
        status = m_format->pb->error;
        const int closed = avio_closep(&m_format->pb);
        if (status < 0 || closed < 0)
            ThrowWriteFailure(status < 0 ? status : closed);
    }
}

} // namespace Deglare
