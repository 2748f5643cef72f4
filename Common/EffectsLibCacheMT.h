#pragma once
#include <cstdint>
#include <vector>

#include "../platform/CritSect.h"
#include "../platform/MonotonicClock.h"
#include "EffectsLibCache.h"

// One entry of a CEffectsLibCacheMT: a cache, the key it serves, and when it was last used.
template <typename T>
struct CacheInfo {
    CEffectsLibCache<T>* m_pCache;
    uint32_t m_nKey;
    uint32_t m_nLastAccess;
};

// One cache per key (a host's render instance), each dropped once nobody touched it for more
// than kCacheLifetimeMs. Everything here runs under m_Lock, which the caller holds from
// Lock() to Unlock() around its whole use.
template <typename T>
class CEffectsLibCacheMT {
public:
    static const uint32_t kCacheLifetimeMs = 10000;

    explicit CEffectsLibCacheMT(unsigned int slots) : m_nCacheKey(0), m_nSlotCount(slots) {}
    virtual ~CEffectsLibCacheMT() { Release(); }
    CEffectsLibCacheMT(const CEffectsLibCacheMT&) = delete;
    CEffectsLibCacheMT& operator=(const CEffectsLibCacheMT&) = delete;

    CacheInfo<T> CreateNewCache(unsigned int key);
    CacheInfo<T> GetCacheForCurrentThread(bool create);
    void FreeExpiredCaches();
    bool GetFrame(unsigned int index, CFrame& dst);
    void Release();

    void Lock() { m_Lock.Enter(); }
    void Unlock() { m_Lock.Leave(); }

    uint32_t m_nCacheKey;
    uint32_t m_nSlotCount;
    CCritSect m_Lock;
    std::vector<CacheInfo<T>> m_Caches;
};

template <typename T>
CacheInfo<T> CEffectsLibCacheMT<T>::CreateNewCache(unsigned int key)
{
    CacheInfo<T> info;
    info.m_pCache = new CEffectsLibCache<T>(m_nSlotCount);
    info.m_nKey = key;
    info.m_nLastAccess = Platform::MonotonicMilliseconds();
    return info;
}

template <typename T>
CacheInfo<T> CEffectsLibCacheMT<T>::GetCacheForCurrentThread(bool create)
{
    FreeExpiredCaches();
    for (CacheInfo<T>& entry : m_Caches)
        if (entry.m_nKey == m_nCacheKey) {
            entry.m_nLastAccess = Platform::MonotonicMilliseconds();
            return entry;
        }
    if (!create)
        return CacheInfo<T>{nullptr, m_nCacheKey, 0};
    CacheInfo<T> created = CreateNewCache(m_nCacheKey);
    try {
        m_Caches.push_back(created);
    } catch (...) {
        delete created.m_pCache;
        throw;
    }
    return created;
}

template <typename T>
void CEffectsLibCacheMT<T>::FreeExpiredCaches()
{
    for (size_t i = m_Caches.size(); i-- > 0;) {
        const uint32_t age = Platform::MonotonicMilliseconds() - m_Caches[i].m_nLastAccess;   // modulo 2^32
        if (age > kCacheLifetimeMs) {
            delete m_Caches[i].m_pCache;
            m_Caches.erase(m_Caches.begin() + static_cast<std::ptrdiff_t>(i));
        }
    }
}

template <typename T>
bool CEffectsLibCacheMT<T>::GetFrame(unsigned int index, CFrame& dst)
{
    if (dst.m_pBuffer == nullptr)
        return false;
    CEffectsLibCache<T>* cache = GetCacheForCurrentThread(true).m_pCache;
    if (cache == nullptr)
        return false;
    CFrame& slot = cache->GetFrame(index);
    if (slot.m_pBuffer == nullptr || slot.m_nWidth != dst.m_nWidth || slot.m_nHeight != dst.m_nHeight)
        return false;
    Processors::CCopy().Process(&slot, &dst);
    return true;
}

template <typename T>
void CEffectsLibCacheMT<T>::Release()
{
    // Every cache goes, whatever state the current key's is in: a cache left in the vector here
    // would outlive the wrapper.
    CCritSectLock lock(m_Lock);
    for (CacheInfo<T>& entry : m_Caches)
        delete entry.m_pCache;
    m_Caches.clear();
    m_nSlotCount = 0;
}
