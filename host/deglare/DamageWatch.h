#pragma once
#include <atomic>
#include <mutex>
#include <string>

extern "C" {
#include <libavutil/log.h>
}

namespace Deglare {

class Console;

// What a decoder says about damaged data while it works. Decoders that run frames on threads
// of their own flag a damaged picture only now and then, but they always complain in FFmpeg's
// log: a decoder whose context's opaque pointer is a DamageWatch has its complaints counted
// there, so the reader can tell which frames were in the decoder at the time.
class DamageWatch {
public:
    void Note(const std::string& text);
    long Count() const { return m_count.load(); }
    std::string Last() const;

private:
    std::atomic<long> m_count{0};
    mutable std::mutex m_mutex;
    std::string m_last;
};

// Where one line of FFmpeg's log goes: a watched decoder's complaint to its DamageWatch, any
// other complaint aside to the console, to explain a failure if one follows.
void RouteLibraryMessage(void* object, int level, const std::string& text, Console& console);

} // namespace Deglare
