#pragma once
// Forcing the primitive layer's variant index in tests.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "../primitives/ippCpu.h"
#include "../primitives/ippcore.h"

// Runs every member at one variant index for the life of the object, then restores the index.
class ScopedVariantIndex {
public:
    explicit ScopedVariantIndex(int index) : m_nSaved(ippJumpIndexForMergedLibs) { ippJumpIndexForMergedLibs = index; }
    ~ScopedVariantIndex() { ippJumpIndexForMergedLibs = m_nSaved; }
    ScopedVariantIndex(const ScopedVariantIndex&) = delete;
    ScopedVariantIndex& operator=(const ScopedVariantIndex&) = delete;

private:
    int m_nSaved;
};

// The indices this processor can run: 0 always, the others as far as its features allow.
inline std::vector<int> RunnableVariantIndices()
{
    unsigned long long features = 0;
    const int highest = ippGetCpuFeatures(&features, nullptr) == ippStsNoErr ? IppCpu::VariantIndexOf(features) : 0;
    std::vector<int> indices;
    for (int index = 0; index <= highest; ++index)
        indices.push_back(index);
    return indices;
}

// Runs check() once at each variant index this processor can run.
template <typename Check>
void AtEveryIndex(Check check)
{
    for (int index : RunnableVariantIndices()) {
        SCOPED_TRACE("variant index " + std::to_string(index));
        ScopedVariantIndex variant(index);
        check();
    }
}
