#include "FrameServiceFixture.h"

#include <cstring>

using TestHost::CallSlot;
using TestHost::ModuleLoader;
using TestHost::Picture;

void FrameServiceTest::SetUp()
{
    module.reset(new ModuleLoader(ModuleLoader::ModuleInBundle(DEGLARER_BUNDLE_PATH)));
    ASSERT_TRUE(module->Loaded()) << module->Error();
    library = module->GetEffectsLibrary();
    ASSERT_NE(library, nullptr);
    void* object = CallSlot<void*>(library, 9);   // GetFrameProcessor
    ASSERT_NE(object, nullptr);
    service.reset(new FrameService(object));
}

void FrameServiceTest::TearDown()
{
    if (service) {
        EXPECT_EQ(service->Release(), 0u);
    }
    if (library != nullptr) {
        EXPECT_EQ(library->Release(), 0u);
    }
}

bool IsFloat(PixelFormat format)
{
    return format == pfVideoSampleFloat || format == pfVideoSampleSwappedFloat || format == pfMonoFloat;
}

Picture Pattern(int width, int height, PixelFormat format, int byteSpan, int seed)
{
    Picture picture(width, height, format, byteSpan);
    uint8_t* bytes = picture.Data();
    const size_t size = picture.Bytes().size();
    if (IsFloat(format)) {
        for (size_t i = 0; i + 4 <= size; i += 4) {
            const float value = static_cast<float>((i / 4 * 37 + seed * 11) % 101) / 100.0f;
            std::memcpy(bytes + i, &value, 4);
        }
    } else {
        for (size_t i = 0; i < size; ++i)
            bytes[i] = static_cast<uint8_t>(i * 29 + seed * 7 + i / 7);
    }
    return picture;
}

Picture Sentinel(int width, int height, PixelFormat format, int byteSpan)
{
    Picture picture(width, height, format, byteSpan);
    std::memset(picture.Data(), kSentinel, picture.Bytes().size());
    return picture;
}

bool Untouched(const Picture& picture)
{
    for (uint8_t byte : picture.Bytes())
        if (byte != kSentinel)
            return false;
    return true;
}

const uint8_t* Row(const Picture& picture, const FrameParams& params, int y)
{
    return picture.Bytes().data() + static_cast<size_t>(y) * params.nByteSpan;
}

::testing::AssertionResult RowsHold(const Picture& picture, const FrameParams& params, const Picture& source,
                                    const FrameParams& src, int bytes, const std::function<int(int)>& sourceRow)
{
    for (int y = 0; y < params.nHeight; ++y) {
        const int from = sourceRow(y), written = from < 0 ? 0 : bytes;
        const uint8_t* out = Row(picture, params, y);
        if (written > 0 && std::memcmp(out, Row(source, src, from), written) != 0)
            return ::testing::AssertionFailure() << "row " << y << " doesn't hold source row " << from;
        for (int x = written; x < params.nByteSpan; ++x)
            if (out[x] != kSentinel)
                return ::testing::AssertionFailure() << "row " << y << " byte " << x << " was written";
    }
    return ::testing::AssertionSuccess();
}
