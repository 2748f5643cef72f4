#pragma once
#include <memory>
#include <string>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswscale/swscale.h>
}

namespace Deglare {

// Owners for the FFmpeg objects, so every way out of a call frees what it made.
struct FrameDeleter {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};
struct PacketDeleter {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};
struct CodecContextDeleter {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};
struct InputFormatDeleter {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};
struct ScaleContextDeleter {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

using FrameRef = std::unique_ptr<AVFrame, FrameDeleter>;
using PacketRef = std::unique_ptr<AVPacket, PacketDeleter>;
using CodecContextRef = std::unique_ptr<AVCodecContext, CodecContextDeleter>;
using InputFormatRef = std::unique_ptr<AVFormatContext, InputFormatDeleter>;
using ScaleContextRef = std::unique_ptr<SwsContext, ScaleContextDeleter>;

// Allocations that throw std::bad_alloc instead of returning null.
FrameRef AllocateFrame();
PacketRef AllocatePacket();
// A new reference to the same pictures.
FrameRef CloneFrame(const AVFrame* frame);

// FFmpeg's text for an error code, starting in lower case to follow "file: ".
std::string AvErrorText(int error);

} // namespace Deglare
