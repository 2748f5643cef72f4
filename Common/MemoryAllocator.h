#pragma once
#include <cstdint>
#include <vector>

class IMemoryAllocator;
class IVideoHost;

// Picture memory from the host's allocator when it offers one, else from the primitive library.
// Keeps no pool and no record of what it handed out.
class MemoryAllocator {
public:
    struct MemoryAllocInfo {
        void* pBuffer;
        int64_t nSize;
    };

    explicit MemoryAllocator(IVideoHost* pHost);
    virtual ~MemoryAllocator();
    MemoryAllocator(const MemoryAllocator&) = delete;
    MemoryAllocator& operator=(const MemoryAllocator&) = delete;

    void setVideoHost(IVideoHost* pHost);
    bool AllocatePicture(unsigned char** ppBuffer, int width, int height, int depth, int* pSpan);

    // The host's allocator, or null when pictures come from the primitive library.
    IMemoryAllocator* HostAllocator() const { return m_pHostAllocator; }

private:
    IMemoryAllocator* m_pHostAllocator;
    [[maybe_unused]] uintptr_t m_reserved1[3];   // keep the record's layout
    [[maybe_unused]] uintptr_t m_reserved2[3];
    std::vector<MemoryAllocInfo> m_allocations;
};
