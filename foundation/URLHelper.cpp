#include "URLHelper.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "../platform/NetworkReachability.h"

namespace URLHelper {

namespace {

const uint32_t kReachable = 2;
const uint32_t kConnectionRequired = 4;
const uint32_t kConnectionOnTraffic = 8;
const uint32_t kInterventionRequired = 16;
const uint32_t kConnectionOnDemand = 32;

bool IsUnreserved(unsigned char byte)
{
    return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '_' || byte == '.' || byte == '~';
}

// Characters with a meaning in a URL, and "%" of escapes already made.
bool IsLegalInUrl(unsigned char byte)
{
    return IsUnreserved(byte) || (byte != 0 && std::strchr(":/?#[]@!$&'()*+,;=%", byte) != nullptr);
}

void AppendEscaped(std::string& out, unsigned char byte)
{
    char escaped[4];
    std::snprintf(escaped, sizeof escaped, "%%%02X", byte);
    out += escaped;
}

} // namespace

TSString EscapeStringForUrl(const TSString& text)
{
    std::string out;
    for (uint64_t index = 0; index < text.Size(); ++index) {
        const unsigned char byte = static_cast<unsigned char>(text.Data()[index]);
        if (IsLegalInUrl(byte))
            out += static_cast<char>(byte);
        else
            AppendEscaped(out, byte);
    }
    return TSString(out.data(), out.size());
}

TSString EscapeStringForUrlForced(const TSString& text)
{
    std::string out;
    for (uint64_t index = 0; index < text.Size(); ++index) {
        const unsigned char byte = static_cast<unsigned char>(text.Data()[index]);
        if (IsUnreserved(byte) || byte == '@')
            out += static_cast<char>(byte);
        else if (byte == ' ')
            out += "%20";
        else
            AppendEscaped(out, byte);
    }
    return TSString(out.data(), out.size());
}

bool CheckInternetConnection(const char*)
{
    uint32_t flags = 0;
    return Platform::ReadReachabilityFlags(&flags) && IsReachableByFlags(flags);
}

bool IsReachableByFlags(uint32_t flags)
{
    if (!(flags & kReachable))
        return false;
    if (!(flags & kConnectionRequired))
        return true;
    if (!(flags & (kConnectionOnTraffic | kConnectionOnDemand)))
        return false;
    return !(flags & kInterventionRequired);
}

} // namespace URLHelper
