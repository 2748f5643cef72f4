#include "TSUnicodeString.h"

#include <cstdlib>
#include <cwchar>
#include <new>

TSUnicodeString::TSUnicodeString(const wchar_t* source, unsigned long length) : m_nLength(0), m_pBuffer(nullptr)
{
    if (source != nullptr)
        init(source, length == maxLen ? std::wcslen(source) : length);
}

TSUnicodeString::TSUnicodeString(const TSUnicodeString& other) : m_nLength(0), m_pBuffer(nullptr)
{
    init(other.m_pBuffer, other.m_nLength);
}

TSUnicodeString& TSUnicodeString::operator=(const TSUnicodeString& other)
{
    if (this != &other)
        init(other.m_pBuffer, other.m_nLength);
    return *this;
}

TSUnicodeString::~TSUnicodeString()
{
    delete[] m_pBuffer;
    m_pBuffer = nullptr;
    m_nLength = 0;
}

void TSUnicodeString::init(const wchar_t* source, unsigned long length)
{
    delete[] m_pBuffer;
    m_pBuffer = nullptr;
    m_nLength = 0;
    if (length == 0 || source == nullptr)
        return;
    wchar_t* buffer = new (std::nothrow) wchar_t[length + 1];
    if (buffer == nullptr)
        return;
    std::wmemcpy(buffer, source, length);
    buffer[length] = 0;
    m_pBuffer = buffer;
    m_nLength = length;
}

TSString TSUnicodeString::ToUTF8() const
{
    if (m_nLength == 0)
        return TSString();
    const size_t limit = 2 * m_nLength;
    char* bytes = new (std::nothrow) char[limit + 1]();
    if (bytes == nullptr)
        return TSString();
    const size_t written = std::wcstombs(bytes, m_pBuffer, limit);
    TSString result;
    if (written != static_cast<size_t>(-1) && written != 0)
        result = TSString(bytes, written);
    delete[] bytes;
    return result;
}
