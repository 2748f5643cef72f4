#include "DamageWatch.h"

#include <cstring>

extern "C" {
#include <libavcodec/avcodec.h>
}

#include "Console.h"

namespace Deglare {

void DamageWatch::Note(const std::string& text)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_last = text;
    }
    ++m_count;
}

std::string DamageWatch::Last() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_last;
}

void RouteLibraryMessage(void* object, int level, const std::string& text, Console& console)
{
    if (level > AV_LOG_ERROR)
        return;
    const AVClass* kind = object != nullptr ? *static_cast<const AVClass* const*>(object) : nullptr;
    if (kind != nullptr && std::strcmp(kind->class_name, "AVCodecContext") == 0) {
        const auto* context = static_cast<const AVCodecContext*>(object);
        // Frame threads work on copies of the context, which carry its opaque pointer along.
        if (context->codec != nullptr && av_codec_is_decoder(context->codec) && context->opaque != nullptr) {
            static_cast<DamageWatch*>(context->opaque)->Note(text);
            return;
        }
    }
    console.NoteLibraryMessage(text);
}

} // namespace Deglare
