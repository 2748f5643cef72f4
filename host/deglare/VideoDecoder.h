#pragma once
#include "AvSupport.h"
#include "DamageWatch.h"

namespace Deglare {

// The decoder of one video stream, with FFmpeg's send-and-receive protocol.
class VideoDecoder {
public:
    // `threads` 0 lets the decoder choose; `watch`, when given, hears its complaints.
    VideoDecoder(const AVStream* stream, int threads, DamageWatch* watch = nullptr);

    // Feeds one packet, or the end of the stream with null. A negative result is the decoder's
    // complaint about damaged data; the packet is then lost and decoding goes on.
    int Send(const AVPacket* packet);
    // 0 with a frame in `frame`; AVERROR(EAGAIN) when it wants more input; AVERROR_EOF when
    // drained; another negative value for a picture that couldn't be decoded.
    int Receive(AVFrame* frame);
    // Forgets everything in flight, for a seek.
    void Flush();

    const AVCodecContext* Context() const { return m_context.get(); }

private:
    CodecContextRef m_context;
};

} // namespace Deglare
