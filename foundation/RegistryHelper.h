#pragma once
#include "TSString.h"

// The family's settings: a section names a property-list file, a key a text in its dictionary.
// Reads look in the user's folder, then the machine's, then the machine's "Network/" folder,
// and the first file that holds the key wins; writes go to one domain's file whole. Nothing
// here shows a message: a failure is a false or an empty string.
namespace RegistryHelper {

const short kUserDomain = -32763;
const short kLocalDomain = -32765;

// Copies the letters of `in` in lower case, and digits, ".", "_" and "-" as they are, into
// `out`, terminating it behind each; all other bytes are dropped.
void Normalize(char* out, const char* in);
// "com.tessarel." + the normalised section + ".plist", cut to 258 characters.
TSString FileNameOfSection(const char* section);

// The value of `key` in `fileName` of one domain ("Network/" + name reaches the machine's
// network folder); false when the folder, the file, a dictionary root or a text value is
// missing.
bool GetRegistryKeyAtDomain(short domain, const TSString& fileName, const TSString& key, TSString* value);

// The read with fall-backs into `buffer` of `size` bytes; false when no domain has the key
// or the value doesn't fit with its terminator (the buffer is then left alone).
bool GetRegistryKey(const char* section, const char* key, char* buffer, int size);
// The same through a buffer of 512 zeroed bytes, 511 of them offered; empty when absent.
TSString GetRegistryKey(const TSString& section, const TSString& key);

// Sets `key` to `value` in the section's file of `domain`, creating the folder and the file as
// needed and keeping the file's other keys; the file then takes its folder's owner and mode.
bool SetRegistryKey(const char* section, const char* key, const char* value, short domain);
bool SetRegistryKey(const TSString& section, const TSString& key, const TSString& value);

// Gives the file the owner, group and mode of the folder that holds it; errors are ignored.
void FixPermissions(const char* file);

} // namespace RegistryHelper
