#pragma once
#include "../include/MultiLingual.h"

// The translator that a library object may be given: the four operations of IMultiLingual
// behind the IUnknown slots.
class ITranslator : public IUnknown {
public:
    virtual int TranslateEffect(const char* effect, EffectLangItemType type, const char* a, const char* b,
                                const char* c, char* out, int size) = 0;
    virtual int TranslateCommon(const char* language, EffectLangItemType type, const char* key, char* out,
                                int size) = 0;
    virtual const char* GetLang() = 0;
    virtual bool InitControlSetFromXml(_tagUIExtraControlSet* controls) = 0;
};

// Forwards IMultiLingual to a translator. Without one, or while unavailable, every operation
// answers 0 and callers keep their English defaults.
class CMultiLingualBase : public IMultiLingual {
public:
    CMultiLingualBase() : m_pTranslator(nullptr), m_bAvailable(false) {}
    virtual ~CMultiLingualBase();
    CMultiLingualBase(const CMultiLingualBase&) = delete;
    CMultiLingualBase& operator=(const CMultiLingualBase&) = delete;

    int TranslateEffect(const char* effect, EffectLangItemType type, const char* a, const char* b, const char* c,
                        char* out, int size) override;
    int TranslateCommon(const char* language, EffectLangItemType type, const char* key, char* out,
                        int size) override;
    const char* GetLang() override;
    bool InitControlSetFromXml(_tagUIExtraControlSet* controls) override;

    bool IsTranslationAvailable() const { return m_bAvailable; }

protected:
    ITranslator* m_pTranslator;
    bool m_bAvailable;
};
