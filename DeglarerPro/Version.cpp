#include "Version.h"

#include <cstdlib>
#include <cstring>

namespace {
char g_szCopyRight[] = "Copyright (c) Tessarel. All rights reserved.";

const int kDateLength = 11;
const char* const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
} // namespace

int g_TSGetCurrentBuildNumber(const char* date)
{
    if (date == nullptr || std::strlen(date) < static_cast<size_t>(kDateLength))
        return 0;
    int month = 0;
    for (int i = 0; i < 12; ++i)
        if (std::strncmp(date, kMonths[i], 3) == 0) {
            month = i + 1;
            break;
        }
    const char dayText[3] = {date[4], date[5], '\0'};
    const int day = std::atoi(dayText);
    const int year = std::atoi(date + 9);   // two digits: "2014" read from its third character
    return year * 10000 + month * 100 + day;
}

TSProductVersion g_VersionInf = {3, 0, g_TSGetCurrentBuildNumber(), g_szCopyRight};
