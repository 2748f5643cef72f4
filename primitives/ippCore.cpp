// Processor facts and the choice of variant.
#include <cpuid.h>

#include <cstring>

#include "ippCpu.h"
#include "ippcore.h"

int ippJumpIndexForMergedLibs = 0;

namespace IppCpu {

namespace {

enum Register { kEax, kEbx, kEcx, kEdx };

// The feature word is ANDed with this mask; nothing narrows it.
const unsigned long long kFeatureMask = ~0ull;

const unsigned int kOsXsave = 1u << 27;
const unsigned int kAvx = 1u << 28;
const unsigned long long kXmmAndYmmState = 0x6;

unsigned long long ReadXcr0()
{
    unsigned int low = 0;
    unsigned int high = 0;
    asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
    return (static_cast<unsigned long long>(high) << 32) | low;
}

Processor ReadProcessor()
{
    Processor processor = {};
    unsigned int vendor[4] = {};
    if (__get_cpuid_max(0, nullptr) < 1 ||
        !__get_cpuid(0, &vendor[kEax], &vendor[kEbx], &vendor[kEcx], &vendor[kEdx]))
        return processor;
    processor.hasCpuid = true;
    // The vendor string runs through ebx, edx, ecx.
    char name[12];
    std::memcpy(name, &vendor[kEbx], 4);
    std::memcpy(name + 4, &vendor[kEdx], 4);
    std::memcpy(name + 8, &vendor[kEcx], 4);
    processor.genuineIntel = std::memcmp(name, "GenuineIntel", 12) == 0;
    unsigned int* leaf1 = processor.leaf1;
    __get_cpuid(1, &leaf1[kEax], &leaf1[kEbx], &leaf1[kEcx], &leaf1[kEdx]);
    if (leaf1[kEcx] & kOsXsave)
        processor.xcr0 = ReadXcr0();
    return processor;
}

} // namespace

const Processor& ThisProcessor()
{
    static const Processor processor = ReadProcessor();
    return processor;
}

unsigned long long FeatureWord(const Processor& processor)
{
    struct Bit {
        unsigned long long feature;
        Register reg;
        int bit;
    };
    static const Bit kBits[] = {
        {ippCPUID_MMX, kEdx, 23},   {ippCPUID_SSE, kEdx, 25},   {ippCPUID_SSE2, kEdx, 26},
        {ippCPUID_SSE3, kEcx, 0},   {ippCPUID_SSSE3, kEcx, 9},  {ippCPUID_MOVBE, kEcx, 22},
        {ippCPUID_SSE41, kEcx, 19}, {ippCPUID_SSE42, kEcx, 20}, {ippCPUID_AVX, kEcx, 28},
        {ippCPUID_AES, kEcx, 25},   {ippCPUID_CLMUL, kEcx, 1},
    };
    unsigned long long features = 0;
    for (const Bit& bit : kBits)
        if (processor.leaf1[bit.reg] & (1u << bit.bit))
            features |= bit.feature;
    // AVX is usable only when the operating system saves the XMM and YMM state.
    const unsigned int ecx = processor.leaf1[kEcx];
    if ((ecx & kOsXsave) && (ecx & kAvx) && (processor.xcr0 & kXmmAndYmmState) == kXmmAndYmmState)
        features |= ippAVX_ENABLEDBYOS;
    return features & kFeatureMask;
}

int VariantIndexOf(unsigned long long features)
{
    if (features & ippCPUID_SSE41)
        return 3;
    if (features & ippCPUID_SSSE3)
        return 2;
    if (features & ippCPUID_SSE3)
        return 1;
    return 0;
}

IppStatus ChooseVariant(const Processor& processor, int* pIndex)
{
    *pIndex = processor.hasCpuid ? VariantIndexOf(FeatureWord(processor)) : 0;
    // A processor of another maker still gets the variant its features allow.
    return processor.hasCpuid && processor.genuineIntel ? ippStsNoErr : ippStsNonIntelCpu;
}

} // namespace IppCpu

IppStatus ippGetCpuFeatures(unsigned long long* pFeatures, unsigned int* pRegisters)
{
    if (pFeatures == nullptr)
        return ippStsNullPtrErr;
    const IppCpu::Processor& processor = IppCpu::ThisProcessor();
    if (!processor.hasCpuid)
        return ippStsNotSupportedCpu;
    *pFeatures = IppCpu::FeatureWord(processor);
    if (pRegisters != nullptr)
        std::memcpy(pRegisters, processor.leaf1, sizeof processor.leaf1);
    return ippStsNoErr;
}

IppStatus ippStaticInit()
{
    return IppCpu::ChooseVariant(IppCpu::ThisProcessor(), &ippJumpIndexForMergedLibs);
}
