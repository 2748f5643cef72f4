#include "DecodedFrame.h"

extern "C" {
#include <libavutil/imgutils.h>
}

namespace Deglare {

DecodedFrame::DecodedFrame(int index, FrameRef original, Keep keep)
    : m_index(index), m_pts(original->best_effort_timestamp), m_keep(keep), m_original(std::move(original))
{
}

const Picture& DecodedFrame::Bgra(ColourConverter& converter, int width, int height) const
{
    std::call_once(m_converted, [&] {
        std::unique_ptr<Picture> picture = converter.NewPicture(width, height);
        converter.ToBgra(m_original.get(), *picture);
        m_bgra = std::move(picture);
        if (m_keep == Keep::UntilConverted)
            m_original.reset();
    });
    return *m_bgra;
}

size_t DecodedFrame::BytesFor(int width, int height, AVPixelFormat format)
{
    const int decoded = av_image_get_buffer_size(format, width, height, 64);
    return (decoded > 0 ? static_cast<size_t>(decoded) : Picture::BytesFor(width, height)) +
           Picture::BytesFor(width, height);
}

} // namespace Deglare
