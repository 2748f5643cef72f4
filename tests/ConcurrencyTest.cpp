// Hosts create, share and release objects from many threads at once.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "../DeglarerPro/Deglarer.h"
#include "../DeglarerPro/DeglarerPro.h"
#include "../include/InterfaceIds.h"

namespace {

const int kThreads = 8;

TEST(Concurrency, ReferenceCountsSurviveManyThreads)
{
    IVideoEffect* effect = new CDeglarer();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([effect] {
            for (int i = 0; i < 2000; ++i) {
                IParamToolTip* toolTips = nullptr;
                effect->QueryInterface(IID_ParamToolTip, reinterpret_cast<void**>(&toolTips));
                effect->AddRef();
                toolTips->Release();
                effect->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(effect->Release(), 0u);
}

TEST(Concurrency, LibraryObjectsCountedAcrossThreads)
{
    const int32_t before = DLLDependentObject::m_nInstanceCount.load();
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([] {
            for (int i = 0; i < 500; ++i) {
                IEffectLibrary* library = new CDeglarerPro();
                IVideoEffect* effect = library->CreateEffect(0);
                effect->Release();
                library->Release();
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(DLLDependentObject::m_nInstanceCount.load(), before);
}

} // namespace
