#pragma once
#include "Unknown.h"

typedef int EffectLangItemType;
struct _tagUIExtraControlSet;

// Translation offered by the library object. No base class and no destructor slot.
class IMultiLingual {
public:
    virtual HRESULT QueryInterface(const _GUID& iid, void** ppv) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;
    virtual int TranslateEffect(const char* effect, EffectLangItemType type, const char* a, const char* b,
                                const char* c, char* out, int size) = 0;
    virtual int TranslateCommon(const char* language, EffectLangItemType type, const char* key, char* out,
                                int size) = 0;
    virtual const char* GetLang() = 0;
    virtual bool InitControlSetFromXml(_tagUIExtraControlSet* controls) = 0;

protected:
    ~IMultiLingual() {}
};
