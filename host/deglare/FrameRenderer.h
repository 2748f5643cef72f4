#pragma once
#include <deque>
#include <memory>

#include "../../include/VideoEffect.h"
#include "FrameOutcome.h"
#include "MarkReader.h"
#include "StreamHost.h"

namespace Deglare {

// How a run uses the effect.
struct RenderPlan {
    bool sequential = false;    // a host without time access: frames strictly in order, one thread
    bool testOutput = false;    // the output shows the "Test mode" picture
    bool encode = true;         // false: decisions only (--analyze)
    bool measure = false;       // work out the band figures for a report
};

// Renders frames through the effect and tells what it did. Each frame goes through the effect
// as the output wants it, and through a second host in "Test mode" whose cross tells a
// flagged frame that was spared from an unflagged one. Which frame's picture came back is
// found by comparing the destination with the pictures the effect could have copied: the
// source, the frames it fetched during the call and, without time access, the frames it saw
// before. One renderer serves one thread.
class FrameRenderer {
public:
    // `normalHost` answers "Test mode" off, `testHost` on; `frames` is where substitutes are
    // looked up when the effect fetched nothing the destination matches.
    FrameRenderer(IVideoEffect* effect, StreamHost& normalHost, StreamHost& testHost, FrameSource& frames,
                  ColourConverter& converter, const ClipShape& shape, const RenderPlan& plan);

    FrameOutcome Render(const FramePtr& frame);

private:
    struct Rendered {
        int shown = -1;         // the frame whose picture came back; -1 none of them
        FramePtr shownFrame;
    };

    Rendered RenderNormal(const FramePtr& frame, const Picture& source);
    Mark RenderTest(const FramePtr& frame, const Picture& source);
    bool RenderInto(StreamHost& host, const FramePtr& frame, const Picture& source, Picture& destination,
                    RenderCall& call);
    FramePtr FindShown(const FramePtr& frame, const Picture& rendered, const RenderCall& call);
    const Picture& BgraOf(const FramePtr& frame);

    IVideoEffect* m_effect;
    StreamHost& m_normalHost;
    StreamHost& m_testHost;
    FrameSource& m_frames;
    ColourConverter& m_converter;
    ClipShape m_shape;
    RenderPlan m_plan;
    std::unique_ptr<Picture> m_normalDestination;
    std::unique_ptr<Picture> m_testDestination;
    // Without time access the effect copies from its own memory of earlier frames.
    std::deque<FramePtr> m_earlier;
};

} // namespace Deglare
