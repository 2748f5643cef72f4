#include "VideoEncoder.h"

#include <stdexcept>

extern "C" {
#include <libavutil/opt.h>
#include <libavutil/pixdesc.h>
}

#include "ExitStatus.h"
#include "MediaInput.h"

namespace Deglare {

namespace {
// High quality where the encoder takes a constant rate factor and nothing else was asked for.
int DefaultCrf(const std::string& codec)
{
    if (codec == "libx264" || codec == "libx264rgb")
        return 18;
    if (codec == "libx265")
        return 20;
    if (codec == "libvpx-vp9" || codec == "libaom-av1" || codec == "libsvtav1")
        return 30;
    return -1;
}

AVPixelFormat ChooseFormat(const AVCodec* codec, AVPixelFormat source)
{
    if (source == AV_PIX_FMT_NONE)
        source = AV_PIX_FMT_YUV420P;
    if (codec->pix_fmts == nullptr)
        return source;
    for (const AVPixelFormat* format = codec->pix_fmts; *format != AV_PIX_FMT_NONE; ++format)
        if (*format == source)
            return source;
    return avcodec_find_best_pix_fmt_of_list(codec->pix_fmts, source, 0, nullptr);
}

void SetUp(AVCodecContext* context, const AVStream* input, AVPixelFormat format, AVRational timeBase)
{
    const AVCodecParameters* parameters = input->codecpar;
    context->width = parameters->width;
    context->height = parameters->height;
    context->pix_fmt = format;
    context->time_base = timeBase;
    context->framerate = NominalFrameRate(input);
    context->sample_aspect_ratio =
        input->sample_aspect_ratio.num > 0 ? input->sample_aspect_ratio : parameters->sample_aspect_ratio;
    context->color_range = parameters->color_range;
    context->color_primaries = parameters->color_primaries;
    context->color_trc = parameters->color_trc;
    context->colorspace = parameters->color_space;
    context->chroma_sample_location = parameters->chroma_location;
    context->field_order = parameters->field_order;
}
} // namespace

const AVCodec* VideoEncoder::FindEncoder(const std::string& name)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(name.c_str());
    if (codec == nullptr || codec->type != AVMEDIA_TYPE_VIDEO)
        throw Failure(ExitStatus::UnknownEncoder, name + ": no such video encoder in this FFmpeg");
    return codec;
}

VideoEncoder::VideoEncoder(const EncoderSettings& settings, const AVStream* input, bool globalHeader,
                           Console& console)
    : m_packet(AllocatePacket())
{
    const AVCodec* codec = FindEncoder(settings.codec);
    const AVPixelFormat format = ChooseFormat(codec, static_cast<AVPixelFormat>(input->codecpar->format));
    if (format != input->codecpar->format && input->codecpar->format != AV_PIX_FMT_NONE)
        console.Warn(settings.codec + " can't encode " +
                     av_get_pix_fmt_name(static_cast<AVPixelFormat>(input->codecpar->format)) + "; using " +
                     av_get_pix_fmt_name(format));

    // The stream's own time base keeps every timestamp, variable frame rates included; an
    // encoder that can't work in it gets the frame period.
    const AVRational timeBases[] = {input->time_base, av_inv_q(NominalFrameRate(input))};
    int status = 0;
    for (const AVRational& timeBase : timeBases) {
        m_context.reset(avcodec_alloc_context3(codec));
        if (!m_context)
            throw std::bad_alloc();
        SetUp(m_context.get(), input, format, timeBase);
        m_context->thread_count = settings.threads;
        if (globalHeader)
            m_context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
        const int crf = settings.crf >= 0 ? settings.crf : (settings.bitrate == 0 ? DefaultCrf(codec->name) : -1);
        if (crf >= 0) {
            if (av_opt_set_int(m_context->priv_data, "crf", crf, 0) < 0)
                throw Failure(ExitStatus::Usage, settings.codec + ": this encoder has no --crf; use --bitrate");
        }
        if (settings.bitrate > 0)
            m_context->bit_rate = static_cast<int64_t>(settings.bitrate);
        status = avcodec_open2(m_context.get(), codec, nullptr);
        if (status >= 0)
            break;
    }
    if (status < 0) {
        const std::string cause = console.TakeLibraryMessage();
        throw Failure(ExitStatus::EncoderRefused,
                      settings.codec + ": refuses " + std::to_string(input->codecpar->width) + "x" +
                          std::to_string(input->codecpar->height) + " " + av_get_pix_fmt_name(format) + " video (" +
                          (cause.empty() ? AvErrorText(status) : cause) + ")");
    }
    if (av_cmp_q(m_context->time_base, input->time_base) != 0)
        console.Warn(settings.codec + " can't keep the stream's time base; timestamps follow the frame rate");
    m_inputTimeBase = input->time_base;
}

FrameRef VideoEncoder::NewFrame() const
{
    FrameRef frame = AllocateFrame();
    frame->format = m_context->pix_fmt;
    frame->width = m_context->width;
    frame->height = m_context->height;
    frame->color_range = m_context->color_range;
    frame->color_primaries = m_context->color_primaries;
    frame->color_trc = m_context->color_trc;
    frame->colorspace = m_context->colorspace;
    frame->chroma_location = m_context->chroma_sample_location;
    frame->sample_aspect_ratio = m_context->sample_aspect_ratio;
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        throw std::bad_alloc();
    return frame;
}

bool VideoEncoder::Accepts(const AVFrame* frame) const
{
    return frame->format == m_context->pix_fmt && frame->width == m_context->width &&
           frame->height == m_context->height;
}

void VideoEncoder::KeepTimesIncreasing(AVRational containerTimeBase)
{
    m_repair = std::make_unique<TimestampRepair>(m_context->time_base, containerTimeBase);
}

void VideoEncoder::Encode(AVFrame* frame, int index, const std::function<void(AVPacket*)>& sink)
{
    if (frame != nullptr) {
        if (frame->pts != AV_NOPTS_VALUE)
            frame->pts = av_rescale_q(frame->pts, m_inputTimeBase, m_context->time_base);
        if (m_repair)
            frame->pts = m_repair->Next(index, frame->pts);
        // The encoder chooses picture types itself, whatever the decoder saw.
        frame->pict_type = AV_PICTURE_TYPE_NONE;
    }
    int status = avcodec_send_frame(m_context.get(), frame);
    if (status < 0)
        throw std::runtime_error("the encoder refused a frame (" + AvErrorText(status) + ")");
    for (;;) {
        status = avcodec_receive_packet(m_context.get(), m_packet.get());
        if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
            return;
        if (status < 0)
            throw std::runtime_error("encoding failed (" + AvErrorText(status) + ")");
        sink(m_packet.get());
        av_packet_unref(m_packet.get());
    }
}

} // namespace Deglare
