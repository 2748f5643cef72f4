#include "TranslationHelper.h"

#include <cstring>

#include "../include/InterfaceIds.h"

TranslationHelper::TranslationHelper(IUnknown* library, const char* language) : m_pLibrary(library)
{
    std::memset(m_szLanguage, 0, sizeof m_szLanguage);
    std::memset(m_szResult, 0, sizeof m_szResult);
    if (language != nullptr)
        std::strncpy(m_szLanguage, language, sizeof m_szLanguage - 1);
}

char* TranslationHelper::TranslateCommon(EffectLangItemType type, const char* key, const char* defaultText,
                                         bool* found)
{
    const char* fallBack = defaultText != nullptr ? defaultText : key;
    m_szResult[0] = '\0';
    int result = 0;
    IMultiLingual* translator = nullptr;
    if (m_pLibrary != nullptr &&
        m_pLibrary->QueryInterface(IID_IMultiLingual, reinterpret_cast<void**>(&translator)) == S_OK &&
        translator != nullptr) {
        result = translator->TranslateCommon(m_szLanguage, type, key, m_szResult, kResultSize);
        translator->Release();
    }
    if (result < 1) {
        if (fallBack != nullptr)
            std::strncpy(m_szResult, fallBack, kResultSize);
        else
            m_szResult[0] = '\0';
    }
    if (found != nullptr)
        *found = result >= 1;
    return m_szResult;
}
