#pragma once
#include <mutex>

// A re-entrant critical region with an unbounded wait.
class CCritSect {
public:
    void Enter() { m_mutex.lock(); }
    void Leave() { m_mutex.unlock(); }

private:
    std::recursive_mutex m_mutex;
};

// Holds a region for the length of a scope.
class CCritSectLock {
public:
    explicit CCritSectLock(CCritSect& region) : m_region(region) { m_region.Enter(); }
    ~CCritSectLock() { m_region.Leave(); }
    CCritSectLock(const CCritSectLock&) = delete;
    CCritSectLock& operator=(const CCritSectLock&) = delete;

private:
    CCritSect& m_region;
};
