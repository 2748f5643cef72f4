#pragma once
#include <cstddef>
#include <cstdio>
#include <functional>
#include <string>

namespace Platform {

// Reads the regular file at `path` whole into `contents`. Refuses, with false and `contents`
// left as it was, a missing or unreadable file, anything that isn't a regular file (a
// directory, a pipe, a device) and a file of more than `limit` bytes. Never blocks on a pipe.
bool ReadWholeFile(const char* path, size_t limit, std::string* contents);

// Replaces the file at `path` by what `write` puts into a new file beside it, which then takes
// the old one's place in one rename: a reader sees the old file or the whole new one. When
// anything fails, `write` included, the old file is left as it was and nothing stays behind.
// A symbolic link is kept and the file it points to is replaced; an existing file's permission
// bits carry over to its replacement.
bool ReplaceWholeFile(const char* path, const std::function<bool(FILE*)>& write);

} // namespace Platform
