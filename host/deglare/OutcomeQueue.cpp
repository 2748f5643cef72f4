#include "OutcomeQueue.h"

#include <algorithm>

namespace Deglare {

OutcomeQueue::OutcomeQueue(long depth) : m_depth(std::max(depth, 1L)) {}

bool OutcomeQueue::WaitForRoom(long ordinal)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] { return m_cancelled || ordinal < m_taken + m_depth; });
    return !m_cancelled;
}

void OutcomeQueue::Put(long ordinal, FrameOutcome outcome)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_waiting.emplace(ordinal, std::move(outcome));
    m_changed.notify_all();
}

bool OutcomeQueue::Take(FrameOutcome* outcome)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] {
        return m_cancelled || m_waiting.count(m_taken) != 0 || (m_total >= 0 && m_taken >= m_total);
    });
    auto found = m_waiting.find(m_taken);
    if (m_cancelled || found == m_waiting.end())
        return false;
    *outcome = std::move(found->second);
    m_waiting.erase(found);
    ++m_taken;
    m_changed.notify_all();
    return true;
}

void OutcomeQueue::Finish(long total)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_total = total;
    m_changed.notify_all();
}

void OutcomeQueue::Cancel()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_cancelled = true;
    m_changed.notify_all();
}

} // namespace Deglare
