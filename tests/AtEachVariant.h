#pragma once
#include <gtest/gtest.h>

#include <memory>

#include "VariantIndex.h"

// Runs a test once at each processor variant this machine can run, so that a processor is checked
// over the faster primitives as well as over the plain ones.
class AtEachVariant : public ::testing::TestWithParam<int> {
protected:
    void SetUp() override { m_pIndex = std::make_unique<ScopedVariantIndex>(GetParam()); }
    void TearDown() override { m_pIndex.reset(); }

private:
    std::unique_ptr<ScopedVariantIndex> m_pIndex;
};

// Declares a suite of TEST_P cases that runs at every variant index.
#define TEST_SUITE_AT_EACH_VARIANT(Suite)                                                                              \
    class Suite : public AtEachVariant {};                                                                             \
    INSTANTIATE_TEST_SUITE_P(Variants, Suite, ::testing::ValuesIn(RunnableVariantIndices()))
