#include "MemoryAllocator.h"

#include "../include/InterfaceIds.h"
#include "../include/MemoryAllocatorInterface.h"
#include "../include/VideoHost.h"
#include "../primitives/ippMemory.h"

MemoryAllocator::MemoryAllocator(IVideoHost* pHost)
    : m_pHostAllocator(nullptr), m_reserved1(), m_reserved2()
{
    setVideoHost(pHost);
}

MemoryAllocator::~MemoryAllocator()
{
    if (m_pHostAllocator != nullptr)
        m_pHostAllocator->Release();
}

void MemoryAllocator::setVideoHost(IVideoHost* pHost)
{
    if (m_pHostAllocator != nullptr)
        m_pHostAllocator->Release();
    m_pHostAllocator = nullptr;
    if (pHost == nullptr)
        return;
    void* answer = nullptr;
    pHost->QueryInterface(IID_MemoryAllocator, &answer);
    m_pHostAllocator = static_cast<IMemoryAllocator*>(answer);
}

bool MemoryAllocator::AllocatePicture(unsigned char** ppBuffer, int width, int height, int depth, int* pSpan)
{
    if (ppBuffer == nullptr || pSpan == nullptr || width < 1 || height < 1 || depth < 1)
        return false;
    *ppBuffer = nullptr;
    if (m_pHostAllocator != nullptr) {
        m_pHostAllocator->AllocatePicture(ppBuffer, width, height, depth, pSpan);
        return *ppBuffer != nullptr;
    }
    switch (depth) {
    case 1: *ppBuffer = ippiMalloc_8u_C1(width, height, pSpan); break;
    case 2: *ppBuffer = ippiMalloc_8u_C2(width, height, pSpan); break;
    case 3: *ppBuffer = ippiMalloc_8u_C3(width, height, pSpan); break;
    case 4: *ppBuffer = ippiMalloc_8u_C4(width, height, pSpan); break;
    case 16: *ppBuffer = reinterpret_cast<unsigned char*>(ippiMalloc_32f_C4(width, height, pSpan)); break;
    default: break;
    }
    return *ppBuffer != nullptr;
}
