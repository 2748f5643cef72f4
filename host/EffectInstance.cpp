#include "EffectInstance.h"

#include <atomic>

#include "../include/InterfaceIds.h"

namespace TestHost {

namespace {
// Every effect object of the process gets an id of its own: the effect keeps what it measured
// and remembered under the id for as long as the module is loaded.
std::atomic<unsigned int> s_nextEffectId{1};
} // namespace

EffectInstance::EffectInstance(const ModuleLoader& module)
{
    m_library = module.GetEffectsLibrary();
    if (m_library == nullptr)
        return;
    m_effect = m_library->CreateEffect(0);
    if (m_effect == nullptr)
        return;
    m_id = s_nextEffectId++;
    IEffectUniqueId* uniqueId = nullptr;
    if (m_effect->QueryInterface(IID_EffectUniqueId, reinterpret_cast<void**>(&uniqueId)) == S_OK && uniqueId) {
        uniqueId->SetId(m_id);
        uniqueId->Release();
    }
}

EffectInstance::~EffectInstance()
{
    if (m_effect != nullptr)
        m_effect->Release();
    if (m_library != nullptr)
        m_library->Release();
}

} // namespace TestHost
