#pragma once
#include <cstddef>
#include <string>

namespace Platform {

// A GET of `url` (http or https only): redirects followed, the server asked for a fresh answer,
// `timeoutSeconds` for the whole exchange. On success `body` holds the exact bytes of the body,
// whatever the status; false when nothing came back in time, the connection failed, or the
// body grew past `largestBody`. Never throws and never prints; this is the one road by which
// the library talks to a server.
bool HttpGet(const std::string& url, double timeoutSeconds, size_t largestBody, std::string* body);

} // namespace Platform
