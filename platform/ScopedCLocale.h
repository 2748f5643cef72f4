#pragma once

namespace Platform {

// Pins the "C" locale for the calling thread while it lives, so that numbers are written with a
// point and read back the same whatever locale the host runs in. Only this thread is affected:
// the host's other threads keep theirs.
class ScopedCLocale {
public:
    ScopedCLocale();
    ~ScopedCLocale();
    ScopedCLocale(const ScopedCLocale&) = delete;
    ScopedCLocale& operator=(const ScopedCLocale&) = delete;

    // False when no C locale object could be had; numbers then follow the thread's locale.
    bool Pinned() const { return m_previous != nullptr; }

private:
    void* m_previous;   // the thread's locale before, restored on destruction
};

} // namespace Platform
