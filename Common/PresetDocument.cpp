#include "PresetDocument.h"

#include <tinyxml.h>

#include <algorithm>
#include <string>
#include <sys/stat.h>

#include "../platform/ScopedCLocale.h"
#include "../platform/WholeFile.h"

namespace {

// TinyXML steps over a multi-byte character by the width its lead byte announces, even when the
// text ends inside it; these NULs behind the text keep such a step within the buffer and stop
// the parser there.
const size_t kParserSlack = 8;

// Each element, comment or declaration begins with '<', so their count bounds both the number
// of nodes and the depth of nesting.
bool WithinTagLimit(const std::string& text)
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '<')) <= kPresetMaxTags;
}

bool IsLargerRegularFile(const char* path)
{
    struct stat info;
    return stat(path, &info) == 0 && S_ISREG(info.st_mode) &&
           static_cast<unsigned long long>(info.st_size) > kPresetMaxFileBytes;
}

} // namespace

PresetDocumentStatus ReadPresetDocument(const char* path, TiXmlDocument* document)
{
    if (path == nullptr || document == nullptr)
        return PresetDocumentStatus::kUnreadable;
    std::string text;
    if (!Platform::ReadWholeFile(path, kPresetMaxFileBytes, &text))
        return IsLargerRegularFile(path) ? PresetDocumentStatus::kTooLarge : PresetDocumentStatus::kUnreadable;
    if (!WithinTagLimit(text))
        return PresetDocumentStatus::kTooLarge;
    text.append(kParserSlack, '\0');
    Platform::ScopedCLocale classic;
    document->Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
    // A file cut short still yields the elements read so far; it is refused all the same.
    return document->Error() ? PresetDocumentStatus::kMalformed : PresetDocumentStatus::kParsed;
}
