// The choice of processor variant: the feature word from CPUID leaf 1 and XCR0, the index rules,
// the status for other makers, and that the plain variant serves until the choice is made.
#include <gtest/gtest.h>

#include "../Common/Optimize.h"
#include "../primitives/ippCpu.h"
#include "../primitives/ippcore.h"
#include "VariantIndex.h"

namespace {

const int kEax = 0, kEcx = 2, kEdx = 3;

IppCpu::Processor Intel(unsigned int ecx, unsigned int edx = 0, unsigned long long xcr0 = 0)
{
    IppCpu::Processor processor = {};
    processor.hasCpuid = true;
    processor.genuineIntel = true;
    processor.leaf1[kEcx] = ecx;
    processor.leaf1[kEdx] = edx;
    processor.xcr0 = xcr0;
    return processor;
}

TEST(PrimitiveCore, FeatureWordTakesEachBitFromItsRegister)
{
    struct Case {
        int reg;
        int bit;
        unsigned long long feature;
    };
    const Case cases[] = {{kEdx, 23, ippCPUID_MMX},   {kEdx, 25, ippCPUID_SSE},   {kEdx, 26, ippCPUID_SSE2},
                          {kEcx, 0, ippCPUID_SSE3},   {kEcx, 9, ippCPUID_SSSE3},  {kEcx, 22, ippCPUID_MOVBE},
                          {kEcx, 19, ippCPUID_SSE41}, {kEcx, 20, ippCPUID_SSE42}, {kEcx, 28, ippCPUID_AVX},
                          {kEcx, 25, ippCPUID_AES},   {kEcx, 1, ippCPUID_CLMUL}};
    for (const Case& c : cases) {
        IppCpu::Processor processor = Intel(0);
        processor.leaf1[c.reg] = 1u << c.bit;
        EXPECT_EQ(c.feature, IppCpu::FeatureWord(processor)) << "register " << c.reg << " bit " << c.bit;
    }
    // eax and ebx carry no feature.
    IppCpu::Processor processor = Intel(0);
    processor.leaf1[kEax] = ~0u;
    processor.leaf1[1] = ~0u;
    EXPECT_EQ(0u, IppCpu::FeatureWord(processor));
}

TEST(PrimitiveCore, AvxIsUsableOnlyWhenTheSystemSavesItsState)
{
    const unsigned int osxsave = 1u << 27, avx = 1u << 28;
    struct Case {
        unsigned int ecx;
        unsigned long long xcr0;
        bool usable;
    };
    const Case cases[] = {{osxsave | avx, 0x7, true},
                          {osxsave | avx, 0x6, true},
                          {osxsave | avx, 0x3, false},
                          {osxsave | avx, 0x5, false},
                          {avx, 0x7, false},
                          {osxsave, 0x7, false}};
    for (const Case& c : cases)
        EXPECT_EQ(c.usable, (IppCpu::FeatureWord(Intel(c.ecx, 0, c.xcr0)) & ippAVX_ENABLEDBYOS) != 0)
            << std::hex << c.ecx << " xcr0 " << c.xcr0;
}

TEST(PrimitiveCore, StaticInitRulesPickTheWidestVariantAndFlagOtherMakers)
{
    const unsigned int sse3 = 1u << 0, ssse3 = 1u << 9, sse41 = 1u << 19;
    IppCpu::Processor other = Intel(sse3 | ssse3 | sse41);
    other.genuineIntel = false;
    IppCpu::Processor noCpuid = Intel(sse41);
    noCpuid.hasCpuid = false;
    struct Case {
        const char* what;
        IppCpu::Processor processor;
        int index;
        IppStatus status;
    };
    const Case cases[] = {
        {"SSE4.1", Intel(sse3 | ssse3 | sse41), 3, ippStsNoErr},
        {"SSE4.1 alone", Intel(sse41), 3, ippStsNoErr},
        {"SSSE3 without SSE4.1", Intel(sse3 | ssse3), 2, ippStsNoErr},
        {"SSE3", Intel(sse3), 1, ippStsNoErr},
        {"nothing more", Intel(0, 1u << 26), 0, ippStsNoErr},
        {"another maker keeps its variant", other, 3, ippStsNonIntelCpu},
        {"no CPUID", noCpuid, 0, ippStsNonIntelCpu},
    };
    for (const Case& c : cases) {
        int index = -1;
        EXPECT_EQ(c.status, IppCpu::ChooseVariant(c.processor, &index)) << c.what;
        EXPECT_EQ(c.index, index) << c.what;
    }
}

TEST(PrimitiveCore, CpuFeaturesAgreeWithTheRegistersReturned)
{
    EXPECT_EQ(ippStsNullPtrErr, ippGetCpuFeatures(nullptr, nullptr));
    unsigned long long features = 0;
    unsigned int registers[4] = {};
    ASSERT_EQ(ippStsNoErr, ippGetCpuFeatures(&features, registers));
    // Every x86-64 processor has SSE2.
    EXPECT_NE(0u, features & ippCPUID_SSE2);
    EXPECT_EQ((registers[kEcx] >> 19) & 1, (features & ippCPUID_SSE41) ? 1u : 0u);
    EXPECT_EQ((registers[kEcx] >> 9) & 1, (features & ippCPUID_SSSE3) ? 1u : 0u);
    unsigned long long again = 0;
    ASSERT_EQ(ippStsNoErr, ippGetCpuFeatures(&again, nullptr));
    EXPECT_EQ(features, again);
}

// Each test runs in a process of its own under ctest, so nothing has chosen a variant yet.
TEST(PrimitiveCore, PlainVariantServesUntilTheChoiceIsMade)
{
    EXPECT_EQ(0, ippJumpIndexForMergedLibs);
    ScopedVariantIndex restore(0);
    unsigned long long features = 0;
    ASSERT_EQ(ippStsNoErr, ippGetCpuFeatures(&features, nullptr));
    const IppStatus status = ippStaticInit();
    EXPECT_TRUE(status == ippStsNoErr || status == ippStsNonIntelCpu) << status;
    EXPECT_EQ(IppCpu::VariantIndexOf(features), ippJumpIndexForMergedLibs);
    // The optimize object makes the same choice.
    ippJumpIndexForMergedLibs = 0;
    const Processors::COptimize optimize;
    EXPECT_EQ(IppCpu::VariantIndexOf(features), ippJumpIndexForMergedLibs);
}

} // namespace
