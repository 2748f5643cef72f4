#include "TSString.h"

#include <cctype>
#include <cstdio>
#include <cstring>
#include <new>
#include <strings.h>

#include "TSUnicodeString.h"

TSString::TSString(const char* source, unsigned long length) : m_nLength(0), m_pBuffer(nullptr)
{
    if (source != nullptr)
        init(source, length == maxLen ? std::strlen(source) : length);
}

TSString::TSString(char* source, unsigned long length) : TSString(static_cast<const char*>(source), length) {}

TSString::TSString(const wchar_t* source, unsigned long length) : m_nLength(0), m_pBuffer(nullptr)
{
    if (source != nullptr)
        *this = TSUnicodeString(source, length).ToUTF8();
}

TSString::TSString(const TSString& other) : m_nLength(0), m_pBuffer(nullptr)
{
    init(other.m_pBuffer, other.m_nLength);
}

TSString& TSString::operator=(const TSString& other)
{
    if (this != &other)
        init(other.m_pBuffer, other.m_nLength);
    return *this;
}

TSString::~TSString()
{
    Clear();
}

void TSString::init(const char* source, unsigned long length)
{
    Clear();
    if (length == 0 || source == nullptr)
        return;
    char* buffer = new (std::nothrow) char[length + 1];
    if (buffer == nullptr)
        return;
    std::memcpy(buffer, source, length);
    buffer[length] = 0;
    m_pBuffer = buffer;
    m_nLength = length;
}

void TSString::Clear()
{
    delete[] m_pBuffer;
    m_pBuffer = nullptr;
    m_nLength = 0;
}

int TSString::operator[](uint64_t index) const
{
    return HasOf(index) ? static_cast<int>(static_cast<signed char>(m_pBuffer[index])) : 0;
}

bool TSString::Equals(const TSString& other) const
{
    return m_nLength == other.m_nLength &&
           (m_nLength == 0 || std::strncmp(m_pBuffer, other.m_pBuffer, m_nLength) == 0);
}

bool TSString::EqualsIgnoreCase(const TSString& other) const
{
    return m_nLength == other.m_nLength &&
           (m_nLength == 0 || strncasecmp(m_pBuffer, other.m_pBuffer, m_nLength) == 0);
}

bool TSString::operator<(const TSString& other) const
{
    if (m_nLength != other.m_nLength || other.m_nLength == 0)
        return other.m_nLength < m_nLength;
    return std::strncmp(m_pBuffer, other.m_pBuffer, m_nLength) < 0;
}

bool TSString::MatchesAt(uint64_t index, const TSString& needle, bool ignoreCase) const
{
    if (needle.m_nLength == 0)
        return true;
    return ignoreCase ? strncasecmp(m_pBuffer + index, needle.m_pBuffer, needle.m_nLength) == 0
                      : std::strncmp(m_pBuffer + index, needle.m_pBuffer, needle.m_nLength) == 0;
}

uint64_t TSString::Find(const TSString& needle, uint64_t start, bool ignoreCase) const
{
    if (needle.m_nLength > m_nLength || start >= m_nLength)
        return maxLen;
    for (uint64_t index = start; index + needle.m_nLength <= m_nLength; ++index)
        if (MatchesAt(index, needle, ignoreCase))
            return index;
    return maxLen;
}

uint64_t TSString::IndexOf(const TSString& needle, uint64_t start) const
{
    return Find(needle, start, false);
}

uint64_t TSString::IndexOfIgnoreCase(const TSString& needle, uint64_t start) const
{
    return Find(needle, start, true);
}

uint64_t TSString::IndexLastOf(const TSString& needle) const
{
    if (needle.m_nLength > m_nLength)
        return maxLen;
    for (uint64_t index = m_nLength - needle.m_nLength + 1; index-- > 0;)
        if (MatchesAt(index, needle, false))
            return index;
    return maxLen;
}

TSString TSString::Substr(uint64_t start, uint64_t count) const
{
    if (start >= m_nLength)
        return TSString();
    const uint64_t available = m_nLength - start;
    return TSString(m_pBuffer + start, count < available ? count : available);
}

TSString& TSString::Append(const TSString& other)
{
    if (other.m_nLength == 0)
        return *this;
    const uint64_t length = m_nLength + other.m_nLength;
    char* buffer = new (std::nothrow) char[length + 1];
    if (buffer == nullptr)
        return *this;
    if (m_nLength != 0)
        std::memcpy(buffer, m_pBuffer, m_nLength);
    std::memcpy(buffer + m_nLength, other.m_pBuffer, other.m_nLength);
    buffer[length] = 0;
    delete[] m_pBuffer;
    m_pBuffer = buffer;
    m_nLength = length;
    return *this;
}

TSString& TSString::operator+=(const char* other)
{
    return Append(TSString(other));
}

TSString TSString::operator+(const TSString& other) const
{
    TSString sum(*this);
    return sum.Append(other);
}

TSString TSString::operator+(const char* other) const
{
    return *this + TSString(other);
}

TSString TSString::Replace(const TSString& from, const TSString& to) const
{
    TSString result(*this);
    // The search goes on behind the inserted text, so what `to` brings is never replaced again.
    for (uint64_t found = result.IndexOf(from); found < result.m_nLength;
         found = result.IndexOf(from, found + to.m_nLength))
        result = result.Substr(0, found) + to + result.Substr(found + from.m_nLength);
    return result;
}

TSString TSString::ToUpper() const
{
    TSString upper(*this);
    for (uint64_t index = 0; index < upper.m_nLength; ++index) {
        const unsigned char byte = static_cast<unsigned char>(upper.m_pBuffer[index]);
        if (byte < 0x80)
            upper.m_pBuffer[index] = static_cast<char>(std::toupper(byte));
    }
    return upper;
}

TSString& TSString::FromInt(int32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%d", value);
    return *this = TSString(text);
}

TSString& TSString::FromDword(uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%u", value);
    return *this = TSString(text);
}

TSString& TSString::FromGUID(const _GUID& guid)
{
    char text[40];
    std::snprintf(text, sizeof text, "%08x-%04x-%04x-%02x%02x-%02x%02x%02x%02x%02x%02x",
                  static_cast<uint32_t>(guid.Data1), guid.Data2, guid.Data3, guid.Data4[0], guid.Data4[1],
                  guid.Data4[2], guid.Data4[3], guid.Data4[4], guid.Data4[5], guid.Data4[6], guid.Data4[7]);
    return *this = TSString(text);
}

int32_t TSString::GetLong(int32_t defaultValue) const
{
    long value = 0;
    if (IsEmpty() || std::sscanf(m_pBuffer, "%ld", &value) < 1)
        return defaultValue;
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

uint32_t TSString::GetULong(uint32_t defaultValue) const
{
    unsigned long value = 0;
    if (IsEmpty() || std::sscanf(m_pBuffer, "%lu", &value) < 1)
        return defaultValue;
    return static_cast<uint32_t>(value);
}

std::string TSString::GetCFString() const
{
    return std::string(ConstData(), m_nLength);
}

TSString& TSString::FromCFString(const std::string* platformString)
{
    if (platformString == nullptr || platformString->empty()) {
        Clear();
        return *this;
    }
    init(platformString->data(), platformString->size());
    return *this;
}
