#pragma once
#include <cstddef>
#include <cstdint>
#include <string>

#include "../include/Guid.h"

class TSUnicodeString;

// The system's 8-bit text: an owning buffer of m_nLength bytes and a terminator, no sharing and
// no small-string storage. Bytes inside are carried as they are; the text meets the platform
// as UTF-8.
class TSString {
public:
    // As a length: take it from the terminator. As a search result: nothing found.
    static const uint64_t maxLen = 0xFFFFFFFFFFFFFFFFull;

    TSString() : m_nLength(0), m_pBuffer(nullptr) {}
    TSString(std::nullptr_t) : TSString() {}
    TSString(const char* source, unsigned long length = maxLen);
    TSString(char* source, unsigned long length = maxLen);
    TSString(const wchar_t* source, unsigned long length = maxLen);
    TSString(const TSString& other);
    TSString& operator=(const TSString& other);
    virtual ~TSString();

    void Clear();

    uint64_t Size() const { return m_nLength; }
    const char* Data() const { return m_pBuffer; }
    char* Data() { return m_pBuffer; }
    // Never null: every call into a C interface takes this form.
    const char* ConstData() const { return m_pBuffer != nullptr ? m_pBuffer : ""; }
    bool IsEmpty() const { return m_nLength == 0; }
    bool IsSet() const { return m_nLength != 0; }
    bool HasOf(uint64_t index) const { return index < m_nLength; }
    int operator[](uint64_t index) const;

    bool Equals(const TSString& other) const;
    bool EqualsIgnoreCase(const TSString& other) const;
    bool operator==(const TSString& other) const { return Equals(other); }
    bool operator!=(const TSString& other) const { return !Equals(other); }
    // Longer strings sort first; equal lengths compare by bytes. Maps keyed by TSString, and
    // whatever is persisted from them, follow this order.
    bool operator<(const TSString& other) const;

    uint64_t IndexOf(const TSString& needle, uint64_t start = 0) const;
    uint64_t IndexOfIgnoreCase(const TSString& needle, uint64_t start = 0) const;
    uint64_t IndexLastOf(const TSString& needle) const;

    TSString Substr(uint64_t start, uint64_t count = maxLen) const;
    TSString& Append(const TSString& other);
    TSString& operator+=(const TSString& other) { return Append(other); }
    TSString& operator+=(const char* other);
    TSString operator+(const TSString& other) const;
    TSString operator+(const char* other) const;
    TSString Replace(const TSString& from, const TSString& to) const;
    TSString ToUpper() const;

    TSString& FromInt(int32_t value);
    TSString& FromDword(uint32_t value);
    TSString& FromGUID(const _GUID& guid);
    int32_t GetLong(int32_t defaultValue) const;
    uint32_t GetULong(uint32_t defaultValue) const;

    // The platform's string: on this platform the UTF-8 text itself. A null or empty source
    // gives an empty string.
    std::string GetCFString() const;
    TSString& FromCFString(const std::string* platformString);

protected:
    void init(const char* source, unsigned long length);

    uint64_t m_nLength;
    char* m_pBuffer;

private:
    // Compares `needle.Size()` bytes at `index`, which must fit.
    bool MatchesAt(uint64_t index, const TSString& needle, bool ignoreCase) const;
    uint64_t Find(const TSString& needle, uint64_t start, bool ignoreCase) const;
};
