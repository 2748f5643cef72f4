#include "PresetName.h"

#include <boost/locale/utf.hpp>
#include <cstring>

namespace {

const size_t kNameLimit = kPresetNameLength - 1;
const char kReplacement = '?';

// At most `limit` bytes of text[0, length), whole characters only, invalid bytes replaced.
std::string ValidName(const char* text, size_t length, size_t limit)
{
    typedef boost::locale::utf::utf_traits<char> Utf8;
    std::string name;
    const char* position = text;
    const char* const end = text + length;
    while (position < end) {
        const char* const start = position;
        const boost::locale::utf::code_point character = Utf8::decode(position, end);
        if (character == boost::locale::utf::illegal || character == boost::locale::utf::incomplete) {
            position = start + 1;
            if (name.size() + 1 > limit)
                break;
            name.push_back(kReplacement);
            continue;
        }
        const size_t width = static_cast<size_t>(position - start);
        if (name.size() + width > limit)
            break;
        name.append(start, width);
    }
    return name;
}

} // namespace

void SetPresetName(char (&field)[kPresetNameLength], const char* text)
{
    std::memset(field, 0, sizeof field);
    if (text == nullptr)
        return;
    // Looking further than the field could hold changes nothing but the time spent.
    const std::string name = ValidName(text, strnlen(text, kNameLimit + 4), kNameLimit);
    std::memcpy(field, name.data(), name.size());
}

std::string GetPresetName(const char (&field)[kPresetNameLength])
{
    return ValidName(field, strnlen(field, kPresetNameLength), kNameLimit);
}
