#pragma once
#include <functional>
#include <memory>
#include <string>

#include "DecodedFrame.h"
#include "FrameIndex.h"
#include "FrameNumbering.h"
#include "MediaInput.h"
#include "VideoDecoder.h"

namespace Deglare {

// Decodes the video frames of an input one after the other and numbers them by the clip's
// frame index. Packets of the other streams go to `otherPackets` when one is set, else they
// are not read at all. Damaged data is skipped and told to `damage`.
class FrameReader {
public:
    using PacketSink = std::function<void(AVPacket* packet)>;
    using DamageReport = std::function<void(const std::string& text)>;

    // Reads `input`, which the reader takes over; `threads` 0 lets the decoder choose.
    FrameReader(std::unique_ptr<MediaInput> input, const FrameIndex& index, int threads);

    void SetOtherPackets(PacketSink sink);
    void SetDamageReport(DamageReport report) { m_damage = std::move(report); }
    // How long the frames it gives out keep their decoded pictures.
    void SetKeep(DecodedFrame::Keep keep) { m_keep = keep; }

    // The next frame in presentation order with its index; null at the end of the stream.
    FramePtr Next();
    // Goes to the keyframe at or before frame `index`; frames then come with their indices as
    // far as their timestamps tell. False if the stream can't seek.
    bool SeekBefore(int index);
    // Back to the first frame, by opening the input anew.
    void Restart();

    const MediaInput& Input() const { return *m_input; }
    long DecodedCount() const { return m_decoded; }

private:
    bool Feed();
    void ReportDamage(const std::string& text);
    void CheckComplaints(int upTo);
    std::string Where(int64_t pts) const;

    std::unique_ptr<MediaInput> m_input;
    const FrameIndex& m_index;
    int m_threads;
    DamageWatch m_watch;
    std::unique_ptr<VideoDecoder> m_decoder;
    FrameNumbering m_numbering;
    PacketRef m_packet;
    PacketSink m_otherPackets;
    DamageReport m_damage;
    DecodedFrame::Keep m_keep = DecodedFrame::Keep::ForEncoding;
    bool m_draining = false;
    int m_lastNumbered = -1;
    int m_newestSent = -1;          // the highest frame index whose packet went to the decoder
    int m_checkedUpTo = -1;         // complaints up to here are accounted for
    long m_complaintsSeen = 0;
    long m_decoded = 0;
};

} // namespace Deglare
