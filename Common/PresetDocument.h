#pragma once
#include <cstddef>

class TiXmlDocument;

// The one way a preset file is read into an XML document, by the library and by its hosts: the
// file is refused before any parsing when it is larger or holds more tags than any preset
// (the largest preset this system writes is under 18 KiB with about a hundred tags); the limits
// keep a hostile file from making the parser take long, much memory or a deep stack, which it
// takes once per level of nesting.
enum class PresetDocumentStatus { kParsed, kUnreadable, kTooLarge, kMalformed };

const size_t kPresetMaxFileBytes = 32 * 1024;
const size_t kPresetMaxTags = 1024;

PresetDocumentStatus ReadPresetDocument(const char* path, TiXmlDocument* document);
