#include "DLLDependentObject.h"

#include "../platform/Atomic.h"

std::atomic<int32_t> DLLDependentObject::m_nInstanceCount{0};

DLLDependentObject::DLLDependentObject()
{
    IncrementAtomic(&m_nInstanceCount);
}

DLLDependentObject::~DLLDependentObject()
{
    DecrementAtomic(&m_nInstanceCount);
}
