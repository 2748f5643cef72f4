#pragma once
#include <cstdint>

#include "TSString.h"

namespace URLHelper {

// Percent-escapes what may not stand in a URL, byte by byte in upper-case hexadecimal; what is
// legal in a URL ("&", "=", "/", "?" among it) stays, so a whole URL or query passes through.
TSString EscapeStringForUrl(const TSString& text);
// The strict form for a single value: only letters, digits and "-_.~@" stay, a blank becomes
// "%20" and every other byte "%XX".
TSString EscapeStringForUrlForced(const TSString& text);
// Whether the machine is online at all; `host` isn't read.
bool CheckInternetConnection(const char* host);
// The decision over the reachability flags of the zero address.
bool IsReachableByFlags(uint32_t flags);

} // namespace URLHelper
