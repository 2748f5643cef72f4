#include "ScopedCLocale.h"

#include <locale.h>

namespace Platform {

namespace {
// One immutable locale object for the whole process; it is never freed, as threads may still
// hold it while the module unloads.
locale_t ClassicLocale()
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(0));
    return classic;
}
} // namespace

ScopedCLocale::ScopedCLocale() : m_previous(nullptr)
{
    const locale_t classic = ClassicLocale();
    if (classic != static_cast<locale_t>(0))
        m_previous = uselocale(classic);
}

ScopedCLocale::~ScopedCLocale()
{
    if (m_previous != nullptr)
        uselocale(static_cast<locale_t>(m_previous));
}

} // namespace Platform
