#pragma once
#include <string>

#include "../include/EffectPreset.h"

// The three names of a preset are UTF-8 texts of at most 259 bytes, each in a 260-byte field
// with its terminator. Hosts read them as UTF-8, and the preset file is read back as UTF-8, so
// a byte that begins no valid character is kept out of both.

// Zeroes `field` and writes `text` into it: each byte that is not part of a valid UTF-8
// character becomes '?', and the text is cut before the character that would not fit. A null
// `text` leaves the field empty.
void SetPresetName(char (&field)[kPresetNameLength], const char* text);

// The text in `field`, made valid and cut the same way; a host may have filled the field to its
// last byte without a terminator, and nothing beyond the field is read.
std::string GetPresetName(const char (&field)[kPresetNameLength]);
