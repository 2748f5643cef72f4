#include "VideoDecoder.h"

#include <stdexcept>

namespace Deglare {

VideoDecoder::VideoDecoder(const AVStream* stream, int threads, DamageWatch* watch)
{
    const AVCodec* codec = avcodec_find_decoder(stream->codecpar->codec_id);
    if (codec == nullptr)
        throw std::runtime_error(std::string("no decoder for ") + avcodec_get_name(stream->codecpar->codec_id));
    m_context.reset(avcodec_alloc_context3(codec));
    if (!m_context)
        throw std::bad_alloc();
    int status = avcodec_parameters_to_context(m_context.get(), stream->codecpar);
    if (status < 0)
        throw std::runtime_error("can't set up the video decoder: " + AvErrorText(status));
    m_context->pkt_timebase = stream->time_base;
    m_context->thread_count = threads;
    m_context->thread_type = FF_THREAD_FRAME | FF_THREAD_SLICE;
    m_context->opaque = watch;
    status = avcodec_open2(m_context.get(), codec, nullptr);
    if (status < 0)
        throw std::runtime_error(std::string("can't open the ") + codec->name + " decoder: " + AvErrorText(status));
}

int VideoDecoder::Send(const AVPacket* packet)
{
    return avcodec_send_packet(m_context.get(), packet);
}

int VideoDecoder::Receive(AVFrame* frame)
{
    return avcodec_receive_frame(m_context.get(), frame);
}

void VideoDecoder::Flush()
{
    avcodec_flush_buffers(m_context.get());
}

} // namespace Deglare
