#pragma once
#include <cstdint>

namespace Platform {

// Whether the machine could reach the outside at all, in the flag bits of the family's
// reachability test: 2 reachable, 4 a connection is required first, 8 and 32 it is made on
// traffic or on demand, 16 the user must step in. Here: reachable, needing nothing, when some
// interface other than loopback is up and running with an address and a default route exists;
// 0 otherwise. False when the interfaces can't be read. Reads only the kernel's tables, so it
// answers at once.
bool ReadReachabilityFlags(uint32_t* flags);

} // namespace Platform
