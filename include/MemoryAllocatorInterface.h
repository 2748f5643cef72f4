#pragma once
#include "Unknown.h"

// Picture memory offered by the host, asked for with IID_MemoryAllocator.
class IMemoryAllocator : public IUnknown {
public:
    virtual void Reserved1() = 0;
    virtual void Reserved2() = 0;
    // Success is judged only by a non-null *ppBuffer; the result is not read.
    virtual int AllocatePicture(unsigned char** ppBuffer, int width, int height, int depth, int* pSpan) = 0;
    virtual void FreePicture(void* buffer) = 0;
};
