#pragma once
#include <atomic>
#include <cstdint>

// Counts the live objects that keep the module loaded.
class DLLDependentObject {
public:
    DLLDependentObject();
    virtual ~DLLDependentObject();

    static std::atomic<int32_t> m_nInstanceCount;
};
