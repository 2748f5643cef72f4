// Texts by key: the translator where the library offers one, else the caller's English default.
#include <gtest/gtest.h>

#include <cstring>

#include "../DeglarerPro/DeglarerPro.h"
#include "../foundation/TranslationHelper.h"
#include "../include/InterfaceIds.h"

namespace {

// A translator that knows one key.
class GermanTranslator : public ITranslator {
public:
    HRESULT QueryInterface(const _GUID&, void**) override { return E_NOINTERFACE; }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }
    int TranslateEffect(const char*, EffectLangItemType, const char*, const char*, const char*, char*, int) override
    {
        return 0;
    }
    int TranslateCommon(const char* language, EffectLangItemType type, const char* key, char* out, int size) override
    {
        if (std::strcmp(language, "de") != 0 || type != 10 || std::strcmp(key, "Cancel") != 0 || size != 2048)
            return 0;
        std::strcpy(out, "Abbrechen");
        return 1;
    }
    const char* GetLang() override { return "de"; }
    bool InitControlSetFromXml(_tagUIExtraControlSet*) override { return false; }
};

// A library object whose translation can be switched on.
class TranslatedLibrary : public IUnknown, public CMultiLingualBase {
public:
    explicit TranslatedLibrary(bool available)
    {
        m_pTranslator = &m_translator;
        m_bAvailable = available;
    }
    ~TranslatedLibrary() override { m_pTranslator = nullptr; }
    HRESULT QueryInterface(const _GUID& iid, void** ppv) override
    {
        *ppv = IsEqualGUID(iid, IID_IMultiLingual) && IsTranslationAvailable() ? static_cast<IMultiLingual*>(this)
                                                                                : nullptr;
        return *ppv != nullptr ? S_OK : E_NOINTERFACE;
    }
    ULONG AddRef() override { return 1; }
    ULONG Release() override { return 1; }

private:
    GermanTranslator m_translator;
};

TEST(TranslationHelper, TranslatesWhereOfferedElseFallsBackToTheDefaultOrTheKey)
{
    TranslatedLibrary on(true), off(false);
    CDeglarerPro* product = new CDeglarerPro;
    struct Case {
        IUnknown* library;
        const char* defaultText;
        const char* expected;
        bool found;
    };
    const Case cases[] = {
        {nullptr, "Cancel!", "Cancel!", false}, {nullptr, nullptr, "Cancel", false},
        {&off, "Cancel!", "Cancel!", false},     {&on, "Cancel!", "Abbrechen", true},
        {static_cast<IEffectLibrary*>(product), nullptr, "Cancel", false},   // no translator in this product
    };
    for (const Case& c : cases) {
        TranslationHelper helper(c.library, "de");
        bool found = !c.found;
        EXPECT_STREQ(helper.TranslateCommon(10, "Cancel", c.defaultText, &found), c.expected);
        EXPECT_EQ(found, c.found);
    }
    EXPECT_EQ(off.TranslateCommon("de", 10, "Cancel", nullptr, 0), 0);   // the flag closes the forwarder
    product->Release();
}

} // namespace
