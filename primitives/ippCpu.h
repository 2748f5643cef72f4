#pragma once
// What the variant choice rests on, read from the processor once; kept apart from the instructions
// that read it so that the choice can be checked for processors other than the one at hand.
#include "ippdefs.h"

namespace IppCpu {

struct Processor {
    bool hasCpuid;
    bool genuineIntel;
    unsigned int leaf1[4];   // eax, ebx, ecx, edx of CPUID leaf 1
    unsigned long long xcr0; // 0 unless the operating system enables XGETBV
};

// This processor, read on first use and kept.
const Processor& ThisProcessor();

// The feature word of a processor with CPUID.
unsigned long long FeatureWord(const Processor& processor);

// The variant index that a feature word allows: 3 with SSE4.1, 2 with SSSE3, 1 with SSE3, else 0.
int VariantIndexOf(unsigned long long features);

// ippStaticInit for a given processor: the index it chooses and the status it returns.
IppStatus ChooseVariant(const Processor& processor, int* pIndex);

} // namespace IppCpu
