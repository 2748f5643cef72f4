#include "AvSupport.h"

#include <cctype>
#include <new>

namespace Deglare {

FrameRef AllocateFrame()
{
    FrameRef frame(av_frame_alloc());
    if (!frame)
        throw std::bad_alloc();
    return frame;
}

PacketRef AllocatePacket()
{
    PacketRef packet(av_packet_alloc());
    if (!packet)
        throw std::bad_alloc();
    return packet;
}

FrameRef CloneFrame(const AVFrame* frame)
{
    FrameRef clone(av_frame_clone(frame));
    if (!clone)
        throw std::bad_alloc();
    return clone;
}

std::string AvErrorText(int error)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(error, text, sizeof(text));
    std::string result(text);
    if (result.size() > 1 && std::isupper(static_cast<unsigned char>(result[0])) &&
        std::islower(static_cast<unsigned char>(result[1])))
        result[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(result[0])));
    return result;
}

} // namespace Deglare
