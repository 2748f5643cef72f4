#include "PicturePool.h"

#include <new>

extern "C" {
#include <libavutil/mem.h>
}

namespace Deglare {

PicturePool::~PicturePool()
{
    for (auto& kept : m_kept)
        av_free(kept.second);
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
    auto* pixels = static_cast<uint8_t*>(av_malloc(bytes));
    if (pixels == nullptr)
        throw std::bad_alloc();
    return pixels;
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
    av_free(pixels);
}

} // namespace Deglare
