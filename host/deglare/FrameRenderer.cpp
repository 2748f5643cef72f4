#include "FrameRenderer.h"

#include <stdexcept>

namespace Deglare {

namespace {
// The sequential path replaces a frame only with the last good frame within "Max Frames" (at
// most 10) behind it; a few more cover frames rendered twice.
const size_t kEarlierFrames = 12;
// How far from a frame to look for the picture that came back when the effect's fetches don't
// say: substitutes lie next to the flash run.
const int kNeighbourSearch = 12;
} // namespace

FrameRenderer::FrameRenderer(IVideoEffect* effect, StreamHost& normalHost, StreamHost& testHost,
                             FrameSource& frames, ColourConverter& converter, const ClipShape& shape,
                             const RenderPlan& plan)
    : m_effect(effect), m_normalHost(normalHost), m_testHost(testHost), m_frames(frames), m_converter(converter),
      m_shape(shape), m_plan(plan)
{
}

const Picture& FrameRenderer::BgraOf(const FramePtr& frame)
{
    return frame->Bgra(m_converter, m_shape.width, m_shape.height);
}

FrameOutcome FrameRenderer::Render(const FramePtr& frame)
{
    const Picture& source = BgraOf(frame);
    FrameOutcome outcome;
    outcome.index = frame->Index();
    outcome.pts = frame->Pts();

    // The normal render shows what the output gets; it is needed for every frame when the
    // output shows it, and on the sequential path, whose memory must see every frame.
    Rendered normal;
    const bool normalFirst = m_plan.sequential || (m_plan.encode && !m_plan.testOutput);
    if (normalFirst)
        normal = RenderNormal(frame, source);
    const Mark mark = RenderTest(frame, source);
    // On the stateless path only a replaced frame needs the normal render, to tell by what.
    if (!normalFirst && mark == Mark::Red)
        normal = RenderNormal(frame, source);

    if (normal.shown >= 0 && normal.shown != outcome.index) {
        outcome.decision = Decision::Replaced;
        outcome.substitute = normal.shown;
    } else if (mark != Mark::None) {
        outcome.decision = Decision::Spared;
    }

    if (m_plan.measure) {
        outcome.bands = MeasureBands(source);
        outcome.measured = true;
    }

    if (m_plan.encode) {
        if (m_plan.testOutput) {
            if (mark != Mark::None)
                outcome.rendered = std::move(m_testDestination);
            else
                outcome.picture = CloneFrame(frame->Original());
        } else if (normal.shownFrame) {
            outcome.picture = CloneFrame(normal.shownFrame->Original());
        } else {
            // A picture that is no frame of the clip goes out as rendered.
            outcome.rendered = std::move(m_normalDestination);
        }
    }

    if (m_plan.sequential) {
        m_earlier.push_back(frame);
        if (m_earlier.size() > kEarlierFrames)
            m_earlier.pop_front();
    }
    return outcome;
}

FrameRenderer::Rendered FrameRenderer::RenderNormal(const FramePtr& frame, const Picture& source)
{
    // Without output a rendered picture is done with once read, so both renders share one.
    std::unique_ptr<Picture>& destination = m_plan.encode ? m_normalDestination : m_testDestination;
    if (!destination)
        destination = m_converter.NewPicture(m_shape.width, m_shape.height);
    RenderCall call;
    Rendered result;
    if (!RenderInto(m_normalHost, frame, source, *destination, call)) {
        result.shown = frame->Index();
        result.shownFrame = frame;
        return result;
    }
    result.shownFrame = FindShown(frame, *destination, call);
    if (result.shownFrame)
        result.shown = result.shownFrame->Index();
    return result;
}

Mark FrameRenderer::RenderTest(const FramePtr& frame, const Picture& source)
{
    if (!m_testDestination)
        m_testDestination = m_converter.NewPicture(m_shape.width, m_shape.height);
    RenderCall call;
    if (!RenderInto(m_testHost, frame, source, *m_testDestination, call))
        return Mark::None;
    return ReadMark(*m_testDestination, source);
}

bool FrameRenderer::RenderInto(StreamHost& host, const FramePtr& frame, const Picture& source,
                               Picture& destination, RenderCall& call)
{
    FrameParams sourceParams = source.Params();
    FrameParams destinationParams = destination.Params();
    RenderInfo info = host.MakeRenderInfo(frame->Index(), &call);
    return m_effect->Render(&host, &sourceParams, nullptr, &destinationParams, &info);
}

FramePtr FrameRenderer::FindShown(const FramePtr& frame, const Picture& rendered, const RenderCall& call)
{
    // The source first: on a tie with an identical neighbour, the frame keeps its own picture.
    if (rendered.SamePixels(BgraOf(frame)))
        return frame;
    const std::vector<FramePtr> fetched = call.FetchedFrames();
    for (auto candidate = fetched.rbegin(); candidate != fetched.rend(); ++candidate)
        if (rendered.SamePixels(BgraOf(*candidate)))
            return *candidate;
    for (auto candidate = m_earlier.rbegin(); candidate != m_earlier.rend(); ++candidate)
        if (rendered.SamePixels(BgraOf(*candidate)))
            return *candidate;
    for (int distance = 1; distance <= kNeighbourSearch; ++distance)
        for (int index : {frame->Index() - distance, frame->Index() + distance}) {
            if (index < 0 || index >= m_shape.frameCount)
                continue;
            FramePtr neighbour = m_frames.Frame(index);
            if (neighbour && rendered.SamePixels(BgraOf(neighbour)))
                return neighbour;
        }
    return nullptr;
}

} // namespace Deglare
