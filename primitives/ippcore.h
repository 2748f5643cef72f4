#pragma once
#include "ippdefs.h"

// Bits of the feature word of ippGetCpuFeatures.
enum : unsigned long long {
    ippCPUID_MMX = 0x1,
    ippCPUID_SSE = 0x2,
    ippCPUID_SSE2 = 0x4,
    ippCPUID_SSE3 = 0x8,
    ippCPUID_SSSE3 = 0x10,
    ippCPUID_MOVBE = 0x20,
    ippCPUID_SSE41 = 0x40,
    ippCPUID_SSE42 = 0x80,
    ippCPUID_AVX = 0x100,
    ippAVX_ENABLEDBYOS = 0x200,
    ippCPUID_AES = 0x400,
    ippCPUID_CLMUL = 0x800,
};

// Which variant every member runs: 0 plain (mx), 1 SSE3 (m7), 2 SSSE3 (u8), 3 SSE4.1 (y8). It is 0
// until ippStaticInit has run, and written only there, before any thread of the library exists.
extern int ippJumpIndexForMergedLibs;

// Chooses the variant from the processor's features. Returns ippStsNonIntelCpu, keeping the
// choice, when the processor has no CPUID or isn't a GenuineIntel one.
IppStatus ippStaticInit();

// The feature word and the eax, ebx, ecx, edx of CPUID leaf 1 (pRegisters may be null).
// ippStsNotSupportedCpu without CPUID.
IppStatus ippGetCpuFeatures(unsigned long long* pFeatures, unsigned int* pRegisters);
