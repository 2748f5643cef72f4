#pragma once
#include "../include/HostInfo.h"

// The library's version; nBuild is set from the compile date while the module loads.
extern TSProductVersion g_VersionInf;

// yymmdd from a compile date of the form "Nov  5 2014"; 0 for a text shorter than 11 characters.
int g_TSGetCurrentBuildNumber(const char* date = __DATE__);
