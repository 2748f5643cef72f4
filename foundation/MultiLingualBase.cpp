#include "MultiLingualBase.h"

CMultiLingualBase::~CMultiLingualBase()
{
    if (m_pTranslator != nullptr)
        m_pTranslator->Release();
    m_pTranslator = nullptr;
}

int CMultiLingualBase::TranslateEffect(const char* effect, EffectLangItemType type, const char* a, const char* b,
                                       const char* c, char* out, int size)
{
    if (!m_bAvailable || m_pTranslator == nullptr)
        return 0;
    return m_pTranslator->TranslateEffect(effect, type, a, b, c, out, size);
}

int CMultiLingualBase::TranslateCommon(const char* language, EffectLangItemType type, const char* key, char* out,
                                       int size)
{
    if (!m_bAvailable || m_pTranslator == nullptr)
        return 0;
    return m_pTranslator->TranslateCommon(language, type, key, out, size);
}

const char* CMultiLingualBase::GetLang()
{
    if (!m_bAvailable || m_pTranslator == nullptr)
        return nullptr;
    return m_pTranslator->GetLang();
}

bool CMultiLingualBase::InitControlSetFromXml(_tagUIExtraControlSet* controls)
{
    if (!m_bAvailable || m_pTranslator == nullptr)
        return false;
    return m_pTranslator->InitControlSetFromXml(controls);
}
