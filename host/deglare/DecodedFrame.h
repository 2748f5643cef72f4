#pragma once
#include <cstdint>
#include <memory>
#include <mutex>

#include "AvSupport.h"
#include "ColourConverter.h"
#include "Picture.h"

namespace Deglare {

// One frame of the clip as the decoder gave it, and, once the effect has needed it, the same
// picture as 8-bit BGRA. The decoded frame is what gets encoded; the BGRA picture is only
// what the effect looks at.
class DecodedFrame {
public:
    // What the decoded frame is kept for.
    enum class Keep {
        ForEncoding,        // as long as the frame lives
        UntilConverted,     // only to make the BGRA picture: a run that encodes nothing
    };

    DecodedFrame(int index, FrameRef original, Keep keep = Keep::ForEncoding);

    int Index() const { return m_index; }
    // Presentation time in the stream's time base; AV_NOPTS_VALUE when the stream has none.
    int64_t Pts() const { return m_pts; }
    // Null once converted when kept only until then, so that its buffer goes back to the
    // decoder's pool while the frame itself stays in the window.
    const AVFrame* Original() const { return m_original.get(); }

    // The picture as the effect sees it, at `width` x `height`: converted on first use by any
    // thread, kept afterwards.
    const Picture& Bgra(ColourConverter& converter, int width, int height) const;

    // The most memory one frame of this size and format can hold, both forms counted.
    static size_t BytesFor(int width, int height, AVPixelFormat format);

private:
    int m_index;
    int64_t m_pts;
    Keep m_keep;
    mutable FrameRef m_original;
    mutable std::once_flag m_converted;
    mutable std::unique_ptr<Picture> m_bgra;
};

using FramePtr = std::shared_ptr<const DecodedFrame>;

} // namespace Deglare
