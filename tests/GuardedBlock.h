#pragma once
#include <cstddef>
#include <cstdint>

// Memory that ends (or starts) exactly at an inaccessible page, so that a read or write one byte
// past its end (or before its start) faults in the test rather than going unnoticed.
class GuardedBlock {
public:
    enum class Guard { AfterEnd, BeforeStart };
    GuardedBlock(size_t bytes, Guard guard);
    ~GuardedBlock();
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;

    uint8_t* Data() { return m_pData; }

private:
    uint8_t* m_pMapping;
    size_t m_nMappingBytes;
    uint8_t* m_pData;
};
