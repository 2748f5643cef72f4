#include "FrameWindow.h"

#include <algorithm>

namespace Deglare {

FrameWindow::FrameWindow(int capacity, int keepBehind, FrameSource* farFrames, int decodeAhead)
    : m_capacity(std::max(capacity, 1)), m_keepBehind(std::max(keepBehind, 0)),
      m_decodeAhead(decodeAhead > 0 ? decodeAhead : m_capacity), m_farFrames(farFrames)
{
}

bool FrameWindow::Push(FramePtr frame)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    const int index = frame->Index();
    m_changed.wait(lock, [&] {
        // Up to the frame asked for, and the first one past it should that one be lost.
        const bool asked = index <= m_wanted || m_highest < m_wanted;
        return m_cancelled ||
               (index < m_base + m_capacity && (index < OldestInUseLocked() + m_decodeAhead || asked));
    });
    if (m_cancelled)
        return false;
    m_frames[index] = frame;
    m_highest = std::max(m_highest, index);
    m_toRender.push_back(std::move(frame));
    m_changed.notify_all();
    return true;
}

void FrameWindow::Finish()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_finished = true;
    m_changed.notify_all();
}

void FrameWindow::Cancel()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_cancelled = true;
    m_changed.notify_all();
}

FramePtr FrameWindow::NextToRender(long* ordinal)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] { return m_cancelled || m_finished || !m_toRender.empty(); });
    if (m_cancelled || m_toRender.empty())
        return nullptr;
    FramePtr frame = std::move(m_toRender.front());
    m_toRender.pop_front();
    m_rendering.insert(frame->Index());
    *ordinal = m_handed++;
    return frame;
}

void FrameWindow::Rendered(int index)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    auto found = m_rendering.find(index);
    if (found != m_rendering.end())
        m_rendering.erase(found);
    AdvanceLocked();
    // The decoder may go further ahead now, even where the window keeps its base.
    m_changed.notify_all();
}

long FrameWindow::Handed() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_handed;
}

int FrameWindow::OldestInUseLocked() const
{
    if (!m_rendering.empty())
        return *m_rendering.begin();
    if (!m_toRender.empty())
        return m_toRender.front()->Index();
    return m_highest + 1;
}

void FrameWindow::AdvanceLocked()
{
    // The oldest frame still in use decides what the effect may yet ask for nearby.
    const int base = OldestInUseLocked() - m_keepBehind;
    if (base <= m_base)
        return;
    m_base = base;
    m_frames.erase(m_frames.begin(), m_frames.lower_bound(m_base));
}

FramePtr FrameWindow::Frame(int index)
{
    if (index < 0)
        return nullptr;
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (index >= m_base && index < m_base + m_capacity) {
            // Within reach: the decoder gets there, let on as far as the request.
            if (index > m_wanted) {
                m_wanted = index;
                m_changed.notify_all();
            }
            m_changed.wait(lock, [&] { return m_cancelled || m_finished || m_highest >= index; });
            auto found = m_frames.find(index);
            if (found != m_frames.end())
                return found->second;
            // Decoded past without it (a frame lost to damage), or past the end of the clip;
            // a frame that left the window while we waited is decoded apart.
            if (index >= m_base)
                return nullptr;
        }
    }
    return m_farFrames != nullptr ? m_farFrames->Frame(index) : nullptr;
}

} // namespace Deglare
