#include "ClipWriter.h"

#include <cmath>
#include <stdexcept>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/display.h>
#include <libavutil/opt.h>
}

#include "ColourConverter.h"

namespace Deglare {

namespace {
const int kSampleRate = 48000;
const double kToneHertz = 440.0;
const double kToneLevel = 0.2;

void Check(int status, const std::string& what)
{
    if (status < 0)
        throw std::runtime_error(what + ": " + AvErrorText(status));
}

struct OutputFile {
    AVFormatContext* format = nullptr;
    ~OutputFile()
    {
        if (format == nullptr)
            return;
        if (format->pb != nullptr)
            avio_closep(&format->pb);
        avformat_free_context(format);
    }
};

CodecContextRef OpenVideoEncoder(const ClipRecipe& recipe, bool globalHeader)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(recipe.codec.c_str());
    if (codec == nullptr)
        throw std::runtime_error("no encoder " + recipe.codec);
    CodecContextRef context(avcodec_alloc_context3(codec));
    if (!context)
        throw std::bad_alloc();
    context->width = recipe.width;
    context->height = recipe.height;
    context->pix_fmt = recipe.pixelFormat;
    context->time_base = recipe.timeBase;
    context->framerate = recipe.frameRate;
    context->color_range = recipe.range;
    context->color_primaries = recipe.primaries;
    context->color_trc = recipe.transfer;
    context->colorspace = recipe.matrix;
    if (globalHeader)
        context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (recipe.crf >= 0)
        av_opt_set_int(context->priv_data, "crf", recipe.crf, 0);
    if (!recipe.speed.empty())
        av_opt_set(context->priv_data, "preset", recipe.speed.c_str(), 0);
    Check(avcodec_open2(context.get(), codec, nullptr), "can't open " + recipe.codec);
    return context;
}

CodecContextRef OpenAudioEncoder(const AVOutputFormat* container, bool globalHeader)
{
    const AVCodecID id = avformat_query_codec(container, AV_CODEC_ID_PCM_S16LE, FF_COMPLIANCE_NORMAL) == 1
                             ? AV_CODEC_ID_PCM_S16LE
                             : AV_CODEC_ID_AAC;
    const AVCodec* codec = avcodec_find_encoder(id);
    if (codec == nullptr)
        throw std::runtime_error("no audio encoder");
    CodecContextRef context(avcodec_alloc_context3(codec));
    if (!context)
        throw std::bad_alloc();
    context->sample_rate = kSampleRate;
    context->sample_fmt = codec->sample_fmts != nullptr ? codec->sample_fmts[0] : AV_SAMPLE_FMT_S16;
    av_channel_layout_default(&context->ch_layout, 1);
    context->time_base = {1, kSampleRate};
    if (globalHeader)
        context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    Check(avcodec_open2(context.get(), codec, nullptr), "can't open the audio encoder");
    return context;
}

void Drain(AVCodecContext* encoder, AVFrame* frame, AVFormatContext* format, AVStream* stream)
{
    Check(avcodec_send_frame(encoder, frame), "encoding");
    PacketRef packet = AllocatePacket();
    for (;;) {
        const int status = avcodec_receive_packet(encoder, packet.get());
        if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
            return;
        Check(status, "encoding");
        av_packet_rescale_ts(packet.get(), encoder->time_base, stream->time_base);
        packet->stream_index = stream->index;
        Check(av_interleaved_write_frame(format, packet.get()), "writing");
    }
}

// One frame of a quiet tone, `samples` long, starting at sample `first`.
FrameRef ToneFrame(const AVCodecContext* encoder, int64_t first, int samples)
{
    FrameRef frame = AllocateFrame();
    frame->format = encoder->sample_fmt;
    frame->nb_samples = samples;
    frame->sample_rate = encoder->sample_rate;
    Check(av_channel_layout_copy(&frame->ch_layout, &encoder->ch_layout), "audio layout");
    Check(av_frame_get_buffer(frame.get(), 0), "audio frame");
    for (int sample = 0; sample < samples; ++sample) {
        const double value = kToneLevel * std::sin(2.0 * M_PI * kToneHertz * (first + sample) / kSampleRate);
        if (encoder->sample_fmt == AV_SAMPLE_FMT_FLTP)
            reinterpret_cast<float*>(frame->data[0])[sample] = static_cast<float>(value);
        else
            reinterpret_cast<int16_t*>(frame->data[0])[sample] = static_cast<int16_t>(value * 32767.0);
    }
    frame->pts = first;
    return frame;
}
} // namespace

void WriteClip(const std::string& path, const ClipRecipe& recipe, const PicturePainter& paint)
{
    OutputFile file;
    Check(avformat_alloc_output_context2(&file.format, nullptr, nullptr, path.c_str()), "no container for " + path);
    const bool globalHeader = (file.format->oformat->flags & AVFMT_GLOBALHEADER) != 0;

    CodecContextRef video = OpenVideoEncoder(recipe, globalHeader);
    AVStream* videoStream = avformat_new_stream(file.format, nullptr);
    if (videoStream == nullptr)
        throw std::bad_alloc();
    Check(avcodec_parameters_from_context(videoStream->codecpar, video.get()), "video stream");
    videoStream->time_base = recipe.timeBase;
    videoStream->avg_frame_rate = recipe.frameRate;
    if (recipe.rotation != 0.0) {
        auto* matrix = reinterpret_cast<int32_t*>(
            av_stream_new_side_data(videoStream, AV_PKT_DATA_DISPLAYMATRIX, 9 * sizeof(int32_t)));
        if (matrix == nullptr)
            throw std::bad_alloc();
        av_display_rotation_set(matrix, recipe.rotation);
    }

    CodecContextRef audio;
    AVStream* audioStream = nullptr;
    if (recipe.audio) {
        audio = OpenAudioEncoder(file.format->oformat, globalHeader);
        audioStream = avformat_new_stream(file.format, nullptr);
        if (audioStream == nullptr)
            throw std::bad_alloc();
        Check(avcodec_parameters_from_context(audioStream->codecpar, audio.get()), "audio stream");
        audioStream->time_base = audio->time_base;
    }

    Check(avio_open(&file.format->pb, path.c_str(), AVIO_FLAG_WRITE), "can't write " + path);
    Check(avformat_write_header(file.format, nullptr), "header of " + path);

    ColourConverter converter;
    Picture picture(recipe.width, recipe.height);
    const int audioFrameSamples = audio && audio->frame_size > 0 ? audio->frame_size : 1024;
    int64_t samplesWritten = 0;
    for (int index = 0; index < recipe.frameCount; ++index) {
        paint(index, picture);
        FrameRef frame = AllocateFrame();
        frame->format = recipe.pixelFormat;
        frame->width = recipe.width;
        frame->height = recipe.height;
        frame->color_range = recipe.range;
        frame->color_primaries = recipe.primaries;
        frame->color_trc = recipe.transfer;
        frame->colorspace = recipe.matrix;
        Check(av_frame_get_buffer(frame.get(), 0), "video frame");
        converter.FromBgra(picture, frame.get());
        frame->pts = recipe.timestamps.empty()
                         ? av_rescale_q(index, av_inv_q(recipe.frameRate), recipe.timeBase)
                         : recipe.timestamps[index];
        Drain(video.get(), frame.get(), file.format, videoStream);

        // Audio up to the end of this frame, so the streams interleave as they would in a camera file.
        if (audio) {
            const int64_t frameEnd =
                av_rescale_q(index + 1, av_inv_q(recipe.frameRate), AVRational{1, kSampleRate});
            while (samplesWritten + audioFrameSamples <= frameEnd) {
                FrameRef tone = ToneFrame(audio.get(), samplesWritten, audioFrameSamples);
                Drain(audio.get(), tone.get(), file.format, audioStream);
                samplesWritten += audioFrameSamples;
            }
        }
    }
    Drain(video.get(), nullptr, file.format, videoStream);
    if (audio)
        Drain(audio.get(), nullptr, file.format, audioStream);
    Check(av_write_trailer(file.format), "trailer of " + path);
}

} // namespace Deglare
