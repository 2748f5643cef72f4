#pragma once
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

namespace Deglare {

// Picture memory handed back and out again: a run converts every frame into a new picture of
// one size, and fresh memory from the system costs a page fault per page on first touch.
// Pictures hold the pool by a shared pointer, so it lives as long as the last of them.
class PicturePool {
public:
    explicit PicturePool(size_t mostKept) : m_mostKept(mostKept) {}
    ~PicturePool();
    PicturePool(const PicturePool&) = delete;
    PicturePool& operator=(const PicturePool&) = delete;

    // Memory of `bytes`, at least 64-byte aligned; throws std::bad_alloc.
    uint8_t* Take(size_t bytes);
    // Back into the pool, or freed when the pool holds enough.
    void Give(uint8_t* pixels, size_t bytes);
    // Puts up to `count` pictures of `bytes` into the pool with every page already touched, as far
    // as memory allows, so that their first use doesn't fault them in a page at a time.
    void Warm(size_t bytes, size_t count);

private:
    const size_t m_mostKept;
    std::mutex m_mutex;
    std::vector<std::pair<size_t, uint8_t*>> m_kept;
};

} // namespace Deglare
