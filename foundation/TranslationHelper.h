#pragma once
#include "../include/MultiLingual.h"
#include "../include/Unknown.h"

// Turns a key into a text: the library's translator where it offers one, else the English
// default that every caller brings along.
struct TranslationHelper {
    static const int kResultSize = 2048;

    explicit TranslationHelper(IUnknown* library = nullptr, const char* language = "en");

    // The translation of `key`, or `defaultText` (the key when that is null). Valid until the
    // next call on this helper. `found` tells whether a translation was given.
    char* TranslateCommon(EffectLangItemType type, const char* key, const char* defaultText, bool* found);

    char m_szLanguage[3];
    char m_szResult[kResultSize + 1];
    IUnknown* m_pLibrary;
};
