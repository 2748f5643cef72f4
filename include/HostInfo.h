#pragma once
#include <cstddef>
#include <cstdint>

#pragma pack(push, 4)
struct TSProductVersion {
    int32_t nVersion;
    int32_t nRevision;
    int32_t nBuild;
    char* pCopyRight;
};
#pragma pack(pop)
static_assert(sizeof(TSProductVersion) == 20, "TSProductVersion size");
static_assert(offsetof(TSProductVersion, nVersion) == 0, "TSProductVersion.nVersion");
static_assert(offsetof(TSProductVersion, nRevision) == 4, "TSProductVersion.nRevision");
static_assert(offsetof(TSProductVersion, nBuild) == 8, "TSProductVersion.nBuild");
static_assert(offsetof(TSProductVersion, pCopyRight) == 12, "TSProductVersion.pCopyRight");

const uint32_t kHostCapsTimeAccess = 0x1;

// What the host says about itself; returned by value.
struct HostInfo {
    char* m_HostName;
    char* m_HelpFile;
    uint32_t m_dwCaps;
    uint32_t m_InstanceID;
};
static_assert(sizeof(HostInfo) == 24, "HostInfo size");
static_assert(offsetof(HostInfo, m_HostName) == 0, "HostInfo.m_HostName");
static_assert(offsetof(HostInfo, m_HelpFile) == 8, "HostInfo.m_HelpFile");
static_assert(offsetof(HostInfo, m_dwCaps) == 16, "HostInfo.m_dwCaps");
static_assert(offsetof(HostInfo, m_InstanceID) == 20, "HostInfo.m_InstanceID");

#pragma pack(push, 4)
struct HostInfoEx {
    uint32_t nSize;          // records below 56 bytes are refused
    char* pHostName;
    char* pHelpFile;
    uint32_t dwCaps;
    uint32_t dwInstanceID;
    TSProductVersion nleVersion;
    uint8_t reserved[8];
};
#pragma pack(pop)
static_assert(sizeof(HostInfoEx) == 56, "HostInfoEx size");
static_assert(offsetof(HostInfoEx, nSize) == 0, "HostInfoEx.nSize");
static_assert(offsetof(HostInfoEx, pHostName) == 4, "HostInfoEx.pHostName");
static_assert(offsetof(HostInfoEx, pHelpFile) == 12, "HostInfoEx.pHelpFile");
static_assert(offsetof(HostInfoEx, dwCaps) == 20, "HostInfoEx.dwCaps");
static_assert(offsetof(HostInfoEx, dwInstanceID) == 24, "HostInfoEx.dwInstanceID");
static_assert(offsetof(HostInfoEx, nleVersion) == 28, "HostInfoEx.nleVersion");
static_assert(offsetof(HostInfoEx, reserved) == 48, "HostInfoEx.reserved");
