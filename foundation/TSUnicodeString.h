#pragma once
#include <cstdint>

#include "TSString.h"

// The wide companion of TSString: m_nLength wide characters and a zero one behind them.
class TSUnicodeString {
public:
    static const uint64_t maxLen = 0xFFFFFFFFFFFFFFFFull;

    TSUnicodeString() : m_nLength(0), m_pBuffer(nullptr) {}
    TSUnicodeString(const wchar_t* source, unsigned long length = maxLen);
    TSUnicodeString(const TSUnicodeString& other);
    TSUnicodeString& operator=(const TSUnicodeString& other);
    virtual ~TSUnicodeString();

    uint64_t Size() const { return m_nLength; }
    const wchar_t* Data() const { return m_pBuffer; }
    // Converts with wcstombs in the current locale; empty when that writes nothing or fails.
    TSString ToUTF8() const;

protected:
    void init(const wchar_t* source, unsigned long length);

    uint64_t m_nLength;
    wchar_t* m_pBuffer;
};
