#include "PicturePool.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <new>

namespace Deglare {

namespace {
// Pictures of a few megabytes go on huge pages where the system offers them: a page fault
// for every 4 KB of a new picture costs more than converting into it.
const size_t kHugePage = size_t(2) << 20;
const size_t kSmallAlignment = 64;
const size_t kPageBytes = 4096;

uint8_t* Allocate(size_t bytes)
{
    const bool huge = bytes >= kHugePage;
    const size_t alignment = huge ? kHugePage : kSmallAlignment;
    const size_t rounded = (bytes + alignment - 1) / alignment * alignment;
    void* pixels = std::aligned_alloc(alignment, rounded);
    if (pixels == nullptr)
        throw std::bad_alloc();
    if (huge)
        madvise(pixels, rounded, MADV_HUGEPAGE);
    return static_cast<uint8_t*>(pixels);
}
} // namespace

PicturePool::~PicturePool()
{
    for (auto& kept : m_kept)
        std::free(kept.second);
}

uint8_t* PicturePool::Take(size_t bytes)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto kept = m_kept.begin(); kept != m_kept.end(); ++kept)
            if (kept->first == bytes) {
                uint8_t* pixels = kept->second;
                m_kept.erase(kept);
                return pixels;
            }
    }
    return Allocate(bytes);
}

void PicturePool::Give(uint8_t* pixels, size_t bytes)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (m_kept.size() < m_mostKept) {
            m_kept.emplace_back(bytes, pixels);
            return;
        }
    }
    std::free(pixels);
}

void PicturePool::Warm(size_t bytes, size_t count)
{
    // Pictures past what the pool keeps would be touched only to be freed again.
    for (size_t made = 0; made < std::min(count, m_mostKept); ++made) {
        uint8_t* pixels = nullptr;
        try {
            pixels = Allocate(bytes);
        } catch (const std::bad_alloc&) {
            return;
        }
        // One write a page faults it in; the system hands it over zeroed.
        for (size_t offset = 0; offset < bytes; offset += kPageBytes)
            pixels[offset] = 0;
        Give(pixels, bytes);
    }
}

} // namespace Deglare
