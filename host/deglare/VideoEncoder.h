#pragma once
#include <functional>
#include <memory>
#include <string>

#include "AvSupport.h"
#include "Console.h"
#include "EncoderSettings.h"
#include "TimestampRepair.h"

namespace Deglare {

// The encoder of the cleaned video: the codec asked for, the input's size, pixel format (or the
// nearest one the codec takes), colour properties, aspect and frame rate, and the input
// stream's time base, so that timestamps go through unchanged.
class VideoEncoder {
public:
    // Throws Failure when the codec is unknown or refuses the stream.
    VideoEncoder(const EncoderSettings& settings, const AVStream* input, bool globalHeader, Console& console);

    const AVCodecContext* Context() const { return m_context.get(); }
    AVPixelFormat Format() const { return m_context->pix_fmt; }
    AVRational TimeBase() const { return m_context->time_base; }
    // The time base of the timestamps that Encode is given.
    AVRational InputTimeBase() const { return m_inputTimeBase; }

    // A frame of the encoder's format and size, with its colour properties, buffers allocated.
    FrameRef NewFrame() const;
    // Whether `frame` can go to the encoder as it is.
    bool Accepts(const AVFrame* frame) const;

    // From now on frame times are kept strictly increasing also in `containerTimeBase`, the
    // time base the muxer chose for the stream.
    void KeepTimesIncreasing(AVRational containerTimeBase);
    // Encodes frame `index` (its pts in the input time base), or drains the encoder with null;
    // each packet, in the encoder's time base, goes to `sink`.
    void Encode(AVFrame* frame, int index, const std::function<void(AVPacket*)>& sink);
    // The frames whose times had to be moved forward; empty when none.
    std::string RepairedFrames() const { return m_repair ? m_repair->RepairedFrames() : std::string(); }

    // Throws the Failure for an encoder name that FFmpeg doesn't know as a video encoder.
    static const AVCodec* FindEncoder(const std::string& name);

private:
    CodecContextRef m_context;
    AVRational m_inputTimeBase;
    PacketRef m_packet;
    std::unique_ptr<TimestampRepair> m_repair;
};

} // namespace Deglare
