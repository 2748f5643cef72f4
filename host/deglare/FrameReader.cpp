#include "FrameReader.h"

#include <algorithm>

namespace Deglare {

FrameReader::FrameReader(std::unique_ptr<MediaInput> input, const FrameIndex& index, int threads)
    : m_input(std::move(input)), m_index(index), m_threads(threads),
      m_decoder(std::make_unique<VideoDecoder>(m_input->Video(), threads, &m_watch)), m_numbering(index),
      m_packet(AllocatePacket())
{
    m_input->ReadVideoOnly();
    m_numbering.StartAtBeginning();
}

void FrameReader::SetOtherPackets(PacketSink sink)
{
    m_otherPackets = std::move(sink);
    AVFormatContext* format = m_input->Format();
    for (unsigned int index = 0; index < format->nb_streams; ++index)
        if (static_cast<int>(index) != m_input->VideoIndex())
            format->streams[index]->discard = m_otherPackets ? AVDISCARD_DEFAULT : AVDISCARD_ALL;
}

void FrameReader::ReportDamage(const std::string& text)
{
    if (m_damage)
        m_damage(m_input->Path() + ": " + text);
}

std::string FrameReader::Where(int64_t pts) const
{
    const int index = m_index.IndexOf(pts);
    if (index != FrameIndex::kNotFound)
        return "frame " + std::to_string(index);
    return "after frame " + std::to_string(m_lastNumbered);
}

// Hands one packet to the decoder, or the end of the stream; false when there is nothing left.
bool FrameReader::Feed()
{
    if (m_draining)
        return false;
    int error = 0;
    while (m_input->Read(m_packet.get(), &error)) {
        if (m_packet->stream_index != m_input->VideoIndex()) {
            if (m_otherPackets)
                m_otherPackets(m_packet.get());
            av_packet_unref(m_packet.get());
            continue;
        }
        const int64_t pts = m_packet->pts;
        const int sentIndex = m_index.IndexOf(pts);
        m_newestSent = std::max(m_newestSent, sentIndex != FrameIndex::kNotFound ? sentIndex : m_newestSent + 1);
        const int status = m_decoder->Send(m_packet.get());
        av_packet_unref(m_packet.get());
        if (status < 0 && status != AVERROR(EAGAIN))
            ReportDamage(Where(pts) + ": damaged data (" + AvErrorText(status) + "), decoding goes on past it");
        return true;
    }
    if (error != 0)
        ReportDamage("reading stopped " + Where(AV_NOPTS_VALUE) + " (" + AvErrorText(error) + ")");
    m_decoder->Send(nullptr);
    m_draining = true;
    return true;
}

FramePtr FrameReader::Next()
{
    FrameRef frame = AllocateFrame();
    for (;;) {
        const int status = m_decoder->Receive(frame.get());
        if (status == AVERROR(EAGAIN)) {
            if (!Feed())
                return nullptr;
            continue;
        }
        if (status == AVERROR_EOF) {
            CheckComplaints(m_newestSent);
            return nullptr;
        }
        if (status < 0) {
            ReportDamage(Where(AV_NOPTS_VALUE) + ": a picture couldn't be decoded (" + AvErrorText(status) +
                         "), decoding goes on past it");
            continue;
        }
        ++m_decoded;
        const int number = m_numbering.Number(frame->best_effort_timestamp);
        if (number == FrameNumbering::kUnknown) {
            av_frame_unref(frame.get());
            continue;
        }
        m_lastNumbered = number;
        if ((frame->flags & AV_FRAME_FLAG_CORRUPT) != 0 || frame->decode_error_flags != 0) {
            ReportDamage("frame " + std::to_string(number) + ": damaged picture, decoded as far as it goes");
            // The decoder's complaints about it are told.
            m_complaintsSeen = m_watch.Count();
        }
        CheckComplaints(number);
        return std::make_shared<DecodedFrame>(number, std::move(frame), m_keep);
    }
}

// Frames come out in order once decoded, and a decoder complains while it decodes. So a
// complaint heard since the last check came from a frame after the one that came out then, up
// to the newest one sent; `upTo` is the frame just out, or the newest sent at the end.
void FrameReader::CheckComplaints(int upTo)
{
    const long complaints = m_watch.Count();
    if (complaints != m_complaintsSeen) {
        m_complaintsSeen = complaints;
        const int first = m_checkedUpTo + 1;
        const int last = std::max(first, std::max(upTo, m_newestSent));
        const std::string frames = first == last ? "frame " + std::to_string(first)
                                                 : "frames " + std::to_string(first) + "-" + std::to_string(last);
        ReportDamage(frames + ": the decoder met damaged data (" + m_watch.Last() + "); decoding goes on past it");
    }
    m_checkedUpTo = std::max(m_checkedUpTo, upTo);
}

bool FrameReader::SeekBefore(int index)
{
    const int64_t pts = m_index.PtsOf(index);
    if (pts == AV_NOPTS_VALUE || !m_input->SeekVideo(pts))
        return false;
    m_decoder->Flush();
    m_draining = false;
    m_numbering.StartAfterSeek();
    m_newestSent = index - 1;
    m_checkedUpTo = index - 1;
    m_complaintsSeen = m_watch.Count();
    return true;
}

void FrameReader::Restart()
{
    auto input = std::make_unique<MediaInput>(m_input->Path());
    input->ReadVideoOnly();
    m_decoder = std::make_unique<VideoDecoder>(input->Video(), m_threads, &m_watch);
    m_input = std::move(input);
    m_otherPackets = nullptr;
    m_draining = false;
    m_lastNumbered = -1;
    m_newestSent = -1;
    m_checkedUpTo = -1;
    m_complaintsSeen = m_watch.Count();
    m_numbering.StartAtBeginning();
}

} // namespace Deglare
