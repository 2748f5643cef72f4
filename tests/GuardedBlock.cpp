#include "GuardedBlock.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

GuardedBlock::GuardedBlock(size_t bytes, Guard guard)
{
    const size_t page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    const size_t dataPages = (bytes + page - 1) / page;
    m_nMappingBytes = (dataPages + 2) * page;
    void* mapping = mmap(nullptr, m_nMappingBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        std::abort();
    m_pMapping = static_cast<uint8_t*>(mapping);
    // One inaccessible page on each side of the readable pages.
    if (mprotect(m_pMapping, page, PROT_NONE) != 0 ||
        mprotect(m_pMapping + (dataPages + 1) * page, page, PROT_NONE) != 0)
        std::abort();
    m_pData = guard == Guard::AfterEnd ? m_pMapping + (dataPages + 1) * page - bytes : m_pMapping + page;
}

GuardedBlock::~GuardedBlock()
{
    munmap(m_pMapping, m_nMappingBytes);
}
