#include "NetworkReachability.h"

#include <ifaddrs.h>
#include <net/if.h>
#include <sys/socket.h>

#include <fstream>
#include <string>

namespace Platform {

namespace {

const uint32_t kReachable = 2;

bool HasRunningOuterInterface(bool* known)
{
    ifaddrs* interfaces = nullptr;
    *known = getifaddrs(&interfaces) == 0;
    if (!*known)
        return false;
    bool found = false;
    for (const ifaddrs* entry = interfaces; entry != nullptr && !found; entry = entry->ifa_next) {
        const unsigned flags = entry->ifa_flags;
        found = entry->ifa_addr != nullptr &&
                (entry->ifa_addr->sa_family == AF_INET || entry->ifa_addr->sa_family == AF_INET6) &&
                (flags & IFF_UP) && (flags & IFF_RUNNING) && !(flags & IFF_LOOPBACK);
    }
    freeifaddrs(interfaces);
    return found;
}

// A route to everywhere in the kernel's IPv4 or IPv6 table.
bool HasDefaultRoute()
{
    std::ifstream ipv4("/proc/net/route");
    std::string interface, destination, line;
    std::getline(ipv4, line);   // the column names
    while (ipv4 >> interface >> destination) {
        if (destination == "00000000")
            return true;
        std::getline(ipv4, line);
    }
    std::ifstream ipv6("/proc/net/ipv6_route");
    std::string prefixLength;
    while (ipv6 >> destination >> prefixLength) {
        if (destination == std::string(32, '0') && prefixLength == "00")
            return true;
        std::getline(ipv6, line);
    }
    return false;
}

} // namespace

bool ReadReachabilityFlags(uint32_t* flags)
{
    bool known = false;
    const bool outer = HasRunningOuterInterface(&known);
    if (flags == nullptr || !known)
        return false;
    *flags = outer && HasDefaultRoute() ? kReachable : 0;
    return true;
}

} // namespace Platform
