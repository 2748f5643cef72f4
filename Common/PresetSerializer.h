#pragma once
#include <cstddef>

#include "../include/EffectPreset.h"
#include "PresetDocument.h"

class TiXmlElement;
class IEffectData;   // reserved by the calling convention; always passed null and never used

// Moves a CEffectPreset to and from its XML file. Numbers are written and read in the "C"
// locale whatever the thread's locale is, so a file made in one locale loads in every other.
class CPresetSerializer {
public:
    // True when the file was written. An existing file is replaced whole or not at all.
    bool Save(const char* path, CEffectPreset* preset);
    // True when a "Preset" element with at least one parameter was read. A file that can't be
    // read, isn't well-formed XML, has no "Preset" root or passes the limits below leaves
    // `preset` untouched; a "Preset" without parameters sets the names and a count of 0.
    bool Load(const char* path, CEffectPreset* preset);

    // Appends a "parameter" child to `element` for each used record. Returns 0.
    static int Add(TiXmlElement* element, CEffectPreset* preset, IEffectData* data);
    // Reads the "parameter" children of `element` into the records after the used ones; true
    // when the count is not 0 afterwards.
    static bool Get(TiXmlElement* element, CEffectPreset* preset, IEffectData* data);

    // The limits of ReadPresetDocument, which Load reads through.
    static const size_t kMaxFileBytes = kPresetMaxFileBytes;
    static const size_t kMaxTags = kPresetMaxTags;
};
