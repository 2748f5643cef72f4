#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <utility>
#include <vector>

#include "../Common/EffectsLibCacheMT.h"
#include "../platform/MonotonicClock.h"

namespace {

// A record with a neutral default, like the effect's own.
struct Tag {
    int index = -1;
    float value = 0.0f;
};

// A picture of `width` x `height` BGRA bytes whose every byte is `fill`.
struct Pixels {
    Pixels(int width, int height, uint8_t fill) : bytes(width * height * 4, fill)
    {
        frame.Init(bytes.data(), width, height, width * 4, 4, pfVideoSample, false);
    }
    std::vector<uint8_t> bytes;
    CFrame frame;
};

std::atomic<uint64_t> g_now{5000};
uint64_t ManualClock() { return g_now.load(); }

// A wrapper of 2-slot caches on a clock the test moves, held locked as the effect holds it.
struct LockedWrapper {
    LockedWrapper() { Platform::SetMillisecondSourceForTesting(&ManualClock); }
    ~LockedWrapper() { Platform::SetMillisecondSourceForTesting(nullptr); }

    CEffectsLibCache<Tag>* CacheOf(uint32_t key, bool create = true)
    {
        wrapper.m_nCacheKey = key;
        return wrapper.GetCacheForCurrentThread(create).m_pCache;
    }

    CEffectsLibCacheMT<Tag> wrapper{2};
    CCritSectLock lock{wrapper.m_Lock};
};

// Slot `slot`'s record index and whether it holds a picture.
std::pair<int, bool> Slot(CEffectsLibCache<Tag>& cache, unsigned int slot)
{
    return {cache.UserData(slot).index, cache.GetFrame(slot).m_pBuffer != nullptr};
}

TEST(FrameCache, NewCacheIsEmptyAndOutOfRangeSlotsAnswerWithSharedNeutrals)
{
    CEffectsLibCache<Tag> cache(2);
    EXPECT_EQ(Slot(cache, 0), std::make_pair(-1, false));
    EXPECT_EQ(cache.UserData(1).value, 0.0f);
    EXPECT_EQ(Slot(cache, 2), std::make_pair(-1, false));
    EXPECT_EQ(&cache.UserData(2), &cache.UserData(7));
    EXPECT_EQ(&cache.GetFrame(2), &cache.GetFrame(99));
    EXPECT_EQ(cache.m_nPresetCount, 0xFFFFFFFFu);
    for (const EffectParam& entry : cache.m_Preset) {
        EXPECT_EQ(entry.dwType, 5u);
        for (uint8_t byte : entry.value.bytes)
            ASSERT_EQ(byte, 0xFF);
    }

    CEffectsLibCache<Tag> none(0);   // no storage: every operation does nothing
    Pixels picture(3, 3, 7);
    Tag tag{4, 1.0f};
    none.SetFrame(picture.frame, 0, &tag);
    EXPECT_EQ(none.GetFrame(0).m_pBuffer, nullptr);
    none.Reset(0xFFFFFFFF);
}

TEST(FrameCache, SetFrameCopiesReusesAndEmptiesAndResetClearsAllButThePresetCount)
{
    CEffectsLibCache<Tag> cache(2);
    Pixels first(5, 4, 0x11);
    Tag tag{10, 0.5f};
    cache.SetFrame(first.frame, 1, &tag);
    CFrame& slot = cache.GetFrame(1);
    ASSERT_NE(slot.m_pBuffer, nullptr);
    EXPECT_NE(slot.m_pBuffer, first.frame.m_pBuffer);   // a copy, not a wrapper
    EXPECT_TRUE(slot.m_bLocalAlloc);
    EXPECT_EQ(std::make_pair(slot.m_pBuffer[5 * 4 - 1], cache.UserData(1).index), std::make_pair(uint8_t{0x11}, 10));

    // Same size: the slot's memory is reused; a null record keeps the old one.
    unsigned char* memory = slot.m_pBuffer;
    Pixels second(5, 4, 0x22);
    cache.SetFrame(second.frame, 1, nullptr);
    EXPECT_EQ(std::make_tuple(slot.m_pBuffer, slot.m_pBuffer[0], cache.UserData(1).index),
              std::make_tuple(memory, uint8_t{0x22}, 10));

    // Another size: new memory of the new size.
    Pixels bigger(9, 2, 0x33);
    Tag biggerTag{11, 0.25f};
    cache.SetFrame(bigger.frame, 1, &biggerTag);
    EXPECT_EQ(std::make_tuple(slot.m_nWidth, slot.m_pBuffer[9 * 4 - 1], cache.UserData(1).index),
              std::make_tuple(9, uint8_t{0x33}, 11));
    Pixels taller(9, 5, 0x44);   // the same width
    cache.SetFrame(taller.frame, 1, nullptr);
    EXPECT_EQ(std::make_pair(slot.m_nHeight, slot.m_pBuffer[4 * slot.m_nByteSpan]), std::make_pair(5, uint8_t{0x44}));
    cache.SetFrame(first.frame, 2, &tag);   // out of range: nothing
    EXPECT_EQ(cache.UserData(2).index, -1);

    // Reset: out of range nothing, one slot only that slot, all slots the preset values too.
    cache.SetFrame(first.frame, 0, &tag);
    cache.m_nPresetCount = 3;
    cache.m_Preset[0].dwType = 2;
    cache.Reset(2);
    EXPECT_EQ(Slot(cache, 0), std::make_pair(10, true));
    cache.Reset(0);
    EXPECT_EQ(Slot(cache, 0), std::make_pair(-1, false));
    EXPECT_EQ(Slot(cache, 1), std::make_pair(11, true));
    EXPECT_EQ(cache.m_Preset[0].dwType, 2u);
    cache.Reset(0xFFFFFFFF);
    EXPECT_EQ(Slot(cache, 1), std::make_pair(-1, false));
    EXPECT_EQ(std::make_pair(cache.m_Preset[0].dwType, cache.m_nPresetCount), std::make_pair(5u, 3u));

    // An empty frame empties the slot even with a record given.
    cache.SetFrame(first.frame, 1, &tag);
    CFrame empty;
    cache.SetFrame(empty, 1, &tag);
    EXPECT_EQ(Slot(cache, 1), std::make_pair(-1, false));
    cache.Release();
    cache.Release();
    EXPECT_EQ(cache.m_nSlotCount, 0u);
}

TEST(FrameCacheMT, KeysKeepApartAndCreateOnlyWhenAsked)
{
    LockedWrapper locked;
    EXPECT_EQ(locked.CacheOf(7, false), nullptr);
    EXPECT_TRUE(locked.wrapper.m_Caches.empty());
    CEffectsLibCache<Tag>* seven = locked.CacheOf(7);
    ASSERT_NE(seven, nullptr);
    EXPECT_EQ(seven->m_nSlotCount, 2u);
    EXPECT_NE(locked.CacheOf(8), seven);
    EXPECT_EQ(locked.CacheOf(7, false), seven);
    EXPECT_EQ(locked.wrapper.m_Caches.size(), 2u);

    CacheInfo<Tag> loose = locked.wrapper.CreateNewCache(3);   // not added to the wrapper
    EXPECT_EQ(loose.m_nKey, 3u);
    EXPECT_EQ(locked.wrapper.m_Caches.size(), 2u);
    delete loose.m_pCache;
}

// Each key's age counts from its last look-up; looking up one key keeps only that one alive.
TEST(FrameCacheMT, CachesExpireStrictlyAfterTenSecondsAcrossClockWrap)
{
    for (uint64_t pause : {10000u, 10001u, 9999u, 60000u}) {
        g_now = 0xFFFFFFFFull - 3000;   // just below the 32-bit wrap of the millisecond count
        LockedWrapper locked;
        Pixels picture(2, 2, 1);
        Tag tag{5, 1.0f};
        locked.CacheOf(1)->SetFrame(picture.frame, 1, &tag);
        locked.CacheOf(2)->SetFrame(picture.frame, 1, &tag);
        g_now += pause / 2;
        locked.CacheOf(2);
        g_now += pause - pause / 2;
        EXPECT_EQ(locked.CacheOf(1)->UserData(1).index, pause <= 10000 ? 5 : -1) << "pause " << pause;
        EXPECT_EQ(locked.CacheOf(2)->UserData(1).index, pause - pause / 2 <= 10000 ? 5 : -1) << "pause " << pause;
    }
}

TEST(FrameCacheMT, GetFrameCopiesOnlyIntoAFrameOfTheSlotsSize)
{
    LockedWrapper locked;
    Pixels stored(4, 3, 0x5A);
    Tag tag{1, 1.0f};
    locked.CacheOf(4)->SetFrame(stored.frame, 1, &tag);

    // A frame of another size, an empty slot, a frame without pixels: nothing copied.
    Pixels narrower(3, 3, 0x00), shorter(4, 2, 0x00), emptySlot(4, 3, 0x00), target(4, 3, 0x00);
    CFrame noBuffer;
    EXPECT_FALSE(locked.wrapper.GetFrame(1, narrower.frame) || locked.wrapper.GetFrame(1, shorter.frame) ||
                 locked.wrapper.GetFrame(0, emptySlot.frame) || locked.wrapper.GetFrame(1, noBuffer));
    EXPECT_EQ(narrower.bytes, std::vector<uint8_t>(3 * 3 * 4, 0x00));
    EXPECT_TRUE(locked.wrapper.GetFrame(1, target.frame));
    EXPECT_EQ(target.bytes, stored.bytes);
}

} // namespace
