#pragma once
#include <string>

namespace Platform {

// The user's home directory from the account database; empty when it can't be had.
std::string HomeDirectory();

} // namespace Platform
