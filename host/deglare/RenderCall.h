#pragma once
#include <mutex>
#include <vector>

#include "DecodedFrame.h"

namespace Deglare {

// What the host saw during one Render call: every frame the effect fetched, in order, kept
// alive so that the destination can be compared with them after the call. The call's
// RenderInfo carries its address in the pass-through word, which the effect copies into each
// request.
class RenderCall {
public:
    void Fetched(const FramePtr& frame)
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_fetched.push_back(frame);
    }
    std::vector<FramePtr> FetchedFrames() const
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_fetched;
    }

private:
    mutable std::mutex m_mutex;
    std::vector<FramePtr> m_fetched;
};

} // namespace Deglare
