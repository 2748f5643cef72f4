#include "ippMemory.h"

#include <cstdlib>
#include <cstring>

namespace {
const uintptr_t kAlignment = 32;
const int kOverhead = 40;   // room for the alignment and the stored raw address

unsigned char* AllocatePicture(int width, int height, int bytesPerPixel, int* pStep)
{
    if (pStep == nullptr)
        return nullptr;
    if (width < 1 || height < 1) {
        *pStep = 0;
        return nullptr;
    }
    // Worked in 32 bits: pictures of 2 GiB or more are not served.
    const int64_t rowBytes = static_cast<int64_t>(width) * bytesPerPixel;
    const int64_t step = (rowBytes + kAlignment - 1) / kAlignment * kAlignment;
    const int64_t total = step * height;
    if (step > INT32_MAX || total > INT32_MAX - kOverhead) {
        *pStep = 0;
        return nullptr;
    }
    *pStep = static_cast<int>(step);
    return static_cast<unsigned char*>(ippMalloc(static_cast<int>(total)));
}
} // namespace

void* ippMalloc(int length)
{
    if (length < 1 || length > INT32_MAX - kOverhead)
        return nullptr;
    void* raw = std::malloc(static_cast<size_t>(length) + kOverhead);
    if (raw == nullptr)
        return nullptr;
    const uintptr_t block = (reinterpret_cast<uintptr_t>(raw) + kOverhead - 1) & ~(kAlignment - 1);
    std::memcpy(reinterpret_cast<void*>(block - sizeof(void*)), &raw, sizeof(void*));
    return reinterpret_cast<void*>(block);
}

void ippFree(void* p)
{
    if (p == nullptr)
        return;
    void* raw;
    std::memcpy(&raw, static_cast<unsigned char*>(p) - sizeof(void*), sizeof(void*));
    std::free(raw);
}

unsigned char* ippsMalloc_8u(int length)
{
    return length < 1 ? nullptr : static_cast<unsigned char*>(ippMalloc(length));
}

void ippsFree(void* p) { ippFree(p); }
void ippiFree(void* p) { ippFree(p); }

unsigned char* ippiMalloc_8u_C1(int width, int height, int* pStep) { return AllocatePicture(width, height, 1, pStep); }
unsigned char* ippiMalloc_8u_C2(int width, int height, int* pStep) { return AllocatePicture(width, height, 2, pStep); }
unsigned char* ippiMalloc_8u_C3(int width, int height, int* pStep) { return AllocatePicture(width, height, 3, pStep); }
unsigned char* ippiMalloc_8u_C4(int width, int height, int* pStep) { return AllocatePicture(width, height, 4, pStep); }

float* ippiMalloc_32f_C4(int width, int height, int* pStep)
{
    return reinterpret_cast<float*>(AllocatePicture(width, height, 16, pStep));
}
