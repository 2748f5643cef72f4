// The frame service as a host reaches it: the module is loaded with dlopen, the service is asked
// of the library object, and every operation is called by its slot. These are the operations on
// whole pictures: copy, resize, crop and flip, and the object itself. The pixel arithmetic is the
// primitives' and is tested with them; here, that each slot drives them with the right arguments.
#include <cstring>
#include <utility>
#include <vector>

#include "../include/InterfaceIds.h"
#include "../primitives/ippResize.h"
#include "FrameServiceFixture.h"

namespace {

using TestHost::CallSlot;
using TestHost::Picture;

TEST_F(FrameServiceTest, EachCallGivesANewCountedObjectAnsweringItsTwoIdentifiers)
{
    void* second = CallSlot<void*>(library, 9);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, service->Object());
    EXPECT_EQ(CallSlot<uint32_t>(second, 2), 0u);

    for (const _GUID* iid : {&IID_IUnknown, &IID_FrameProcessor, &IID_EffectLibrary, &IID_VideoEffect,
                             &IID_PresetSaver, &IID_IMultiLingual}) {
        const bool known = iid == &IID_IUnknown || iid == &IID_FrameProcessor;
        void* answer = service.get();
        EXPECT_EQ(service->QueryInterface(iid, &answer), known ? 0 : static_cast<int32_t>(0x80004002u));
        EXPECT_EQ(answer, known ? service->Object() : nullptr);
        EXPECT_EQ(service->AddRef(), known ? 3u : 2u);   // an answer carries a reference, a refusal none
        EXPECT_EQ(service->Release(), known ? 2u : 1u);
        EXPECT_EQ(known ? service->Release() : 1u, 1u);
    }
    EXPECT_EQ(service->QueryInterface(&IID_FrameProcessor, nullptr), static_cast<int32_t>(0x80004005u));
    EXPECT_EQ(service->AddRef(), 2u);
    EXPECT_EQ(service->Release(), 1u);
}

TEST_F(FrameServiceTest, OutlivesTheLibraryAndDoesNotHoldTheModule)
{
    EXPECT_EQ(library->Release(), 0u);
    library = nullptr;
    EXPECT_TRUE(module->CanUnload());
    Picture source = Pattern(3, 2, pfVideoSample), destination = Sentinel(3, 2, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    EXPECT_EQ(service->Copy(&src, &dst), 1u);
    EXPECT_EQ(destination.Bytes(), source.Bytes());
}

// Copy takes every record as four-byte pixels of its width, whatever its format and flipping say.
TEST_F(FrameServiceTest, CopyMovesFourBytesAPixelOverTheCommonAreaWhateverTheFormat)
{
    // Bytes copied of each row of a record 6 pixels wide; 0: refused, as rows of 6 bytes can't
    // hold 6 four-byte pixels.
    const std::pair<PixelFormat, int> cases[] = {
        {pfVideoSample, 24}, {pfVideoSampleFloat, 24}, {pfMonoFloat, 24}, {pfMono8, 0}};
    for (const auto& [format, rowBytes] : cases) {
        SCOPED_TRACE(format);
        Picture source = Pattern(6, 5, format, 0, 1), destination = Sentinel(7, 4, format);
        FrameParams src = source.Params(), dst = destination.Params();
        src.bFlipped = format == pfVideoSample;
        EXPECT_EQ(service->Copy(&src, &dst), rowBytes > 0 ? 1u : 0u);
        EXPECT_TRUE(RowsHold(destination, dst, source, src, rowBytes, [](int y) { return y; }));
    }
}

// Resize hands the whole pictures, and ResizeCrop the rectangle from its corner, to the member
// of the sample type with the flag of the mode; a crop's size is capped at the destination's.
TEST_F(FrameServiceTest, ResizeAndResizeCropDriveTheMemberOfTheSampleTypeWithTheFlagOfTheMode)
{
    const int flags[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LINEAR, IPPI_INTER_LINEAR,
                         IPPI_INTER_LINEAR};
    // What the member gives for the rectangle (right and bottom inside) onto 15 by 11 pixels.
    auto expected = [&](const Picture& source, const FrameParams& src, const tagRECT& r, int mode, int dstSpan) {
        Picture out = Sentinel(15, 11, src.pfFormat, dstSpan);
        const uint8_t* start = source.Bytes().data() + r.top * src.nByteSpan + r.left * src.nDepth;
        const IppiSize size = {r.right - r.left + 1, r.bottom - r.top + 1};
        const double x = 15.0 / size.width, y = 11.0 / size.height;
        const IppStatus status =
            src.nDepth == 4
                ? ippiResize_8u_C4R(start, size, src.nByteSpan, {0, 0, size.width, size.height}, out.Data(), dstSpan,
                                    {15, 11}, x, y, flags[mode])
                : ippiResize_32f_C4R(reinterpret_cast<const Ipp32f*>(start), size, src.nByteSpan,
                                     {0, 0, size.width, size.height}, reinterpret_cast<Ipp32f*>(out.Data()), dstSpan,
                                     {15, 11}, x, y, flags[mode]);
        EXPECT_EQ(status, ippStsNoErr);
        return out.Bytes();
    };
    for (int mode : {0, 2, 3})
        for (PixelFormat format : {pfVideoSampleSwapped, pfVideoSample, pfVideoSampleSwappedFloat}) {
            SCOPED_TRACE(::testing::Message() << format << " mode " << mode);
            const bool bytes = format != pfVideoSampleSwappedFloat;
            Picture source = Pattern(12, 9, format, bytes ? 52 : 0, 3);
            Picture destination = Sentinel(15, 11, format, bytes ? 64 : 0);
            FrameParams src = source.Params(), dst = destination.Params();
            if (format == pfVideoSampleSwapped) {
                ASSERT_EQ(service->Resize(&src, &dst, mode), 1u);
                EXPECT_EQ(destination.Bytes(), expected(source, src, {0, 0, 11, 8}, mode, 64));
                continue;
            }
            tagRECT rect = {3, 2, 8, 6};   // 6 by 5 pixels
            ASSERT_EQ(service->ResizeCrop(&src, &rect, &dst, mode), 1u);
            EXPECT_EQ(destination.Bytes(), expected(source, src, rect, mode, dst.nByteSpan));
        }

    // A larger rectangle keeps its top left part, not scaled; one at the source's far corner.
    for (const tagRECT& corner : {tagRECT{5, 2, 80, 30}, tagRECT{90, 95, 99, 99}}) {
        Picture source = Pattern(100, 100, pfVideoSampleFloat), destination = Sentinel(10, 5, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        tagRECT rect = corner;
        ASSERT_EQ(service->ResizeCrop(&src, &rect, &dst, 2), 1u);
        for (int y = 0; y < dst.nHeight; ++y)
            ASSERT_EQ(std::memcmp(Row(destination, dst, y), Row(source, src, corner.top + y) + corner.left * 16, 160),
                      0) << corner.left << ", row " << y;
    }
}

// Null records and pixels are refused with the other operations'.
TEST_F(FrameServiceTest, ResizeAndResizeCropRefuseWhatTheyCannotReadWithoutTouchingTheDestination)
{
    // Source width and span, destination width: empty pictures, and rows shorter than the width.
    const int sizes[][3] = {{0, 32, 8}, {8, 32, 0}, {8, 28, 8}, {8, 32, 12}};
    for (const auto& c : sizes) {
        SCOPED_TRACE(::testing::Message() << c[0] << " " << c[1] << " " << c[2]);
        Picture source = Pattern(8, 6, pfVideoSample, 32), destination = Sentinel(8, 6, pfVideoSample, 32);
        FrameParams src = source.Params(), dst = destination.Params();
        src.nWidth = c[0];
        src.nByteSpan = c[1];
        dst.nWidth = c[2];
        EXPECT_EQ(service->Resize(&src, &dst, 1), 0u);
        EXPECT_TRUE(Untouched(destination));
    }

    struct Case {
        const char* what;
        PixelFormat format;
        int depth;
        tagRECT rect;
    };
    const tagRECT inside = {1, 1, 4, 4};
    const Case cases[] = {
        {"one-channel floats", pfMonoFloat, 4, inside},
        {"format 2", static_cast<PixelFormat>(2), 4, inside},
        {"bytes said to be 16 a pixel", pfVideoSample, 16, inside},
        {"empty rectangle", pfVideoSample, 4, {4, 1, 3, 4}},
        {"above the source", pfVideoSampleFloat, 16, {0, -2, 4, 4}},
        {"one past the source's right edge", pfVideoSample, 4, {2, 0, 8, 4}},
        {"a size beyond 32 bits", pfVideoSample, 4, {INT32_MIN, 0, INT32_MAX, 4}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture source = Pattern(8, 8, c.format == pfVideoSampleFloat ? c.format : pfVideoSample);
        Picture destination = Sentinel(10, 10, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = dst.pfFormat = c.format;
        src.nDepth = c.depth;
        tagRECT rect = c.rect;
        EXPECT_EQ(service->ResizeCrop(&src, &rect, &dst, 1), 0u);
        EXPECT_TRUE(Untouched(destination));
    }
}

TEST_F(FrameServiceTest, FlipFrameIntoAnotherReversesTheCommonRows)
{
    struct Case {
        const char* what;
        PixelFormat srcFormat, dstFormat;
        int srcWidth, srcHeight, dstWidth, dstHeight, rows, rowBytes;
    };
    const Case cases[] = {
        {"heights 4 and 2", pfVideoSample, pfVideoSample, 5, 4, 5, 2, 2, 20},
        {"heights 2 and 4", pfVideoSampleSwapped, pfVideoSampleSwapped, 5, 2, 5, 4, 2, 20},
        {"bytes of the narrower row", pfVideoSample, pfVideoSampleFloat, 6, 3, 2, 3, 3, 24},
        {"one-channel rows", pfMono8, pfMono8, 7, 5, 9, 5, 5, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture source = Pattern(c.srcWidth, c.srcHeight, c.srcFormat, 0, 5);
        Picture destination = Sentinel(c.dstWidth, c.dstHeight, c.dstFormat,
                                       c.dstWidth * TestHost::BytesPerPixel(c.dstFormat) + 8);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->FlipFrame(&src, &dst), 1u);
        EXPECT_TRUE(RowsHold(destination, dst, source, src, c.rowBytes,
                             [&](int y) { return y < c.rows ? c.rows - 1 - y : -1; }));
    }
}

// In place, whole words of mirrored rows change places. Both flips succeed on a record without
// pixels or with one row, moving nothing.
TEST_F(FrameServiceTest, FlipFrameInPlaceExchangesWholeWordsOfMirroredRows)
{
    Picture one = Sentinel(4, 1, pfVideoSample), four = Pattern(4, 4, pfVideoSample);
    FrameParams row = one.Params(), noPixels = one.Params(), src = four.Params();
    noPixels.pBuffer = nullptr;
    EXPECT_EQ(service->FlipFrame(&noPixels, &row) + service->FlipFrame(&src, &noPixels), 2u);
    EXPECT_EQ(service->FlipFrame(&noPixels) + service->FlipFrame(&row), 2u);
    EXPECT_TRUE(Untouched(one));

    const std::pair<PixelFormat, int> cases[] = {{pfVideoSample, 3}, {pfVideoSampleFloat, 2}, {pfMono8, 6}};
    for (const auto& [format, width] : cases) {
        SCOPED_TRACE(format);
        const int rowBytes = width * TestHost::BytesPerPixel(format), span = rowBytes + 5, height = 3 + width % 2;
        Picture frame = Pattern(width, height, format, span, 2);
        const std::vector<uint8_t> before = frame.Bytes();
        FrameParams params = frame.Params();
        ASSERT_EQ(service->FlipFrame(&params), 1u);
        const int swapped = rowBytes / 4 * 4;   // bytes past the last whole word stay
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < span; ++x)
                ASSERT_EQ(frame.Bytes()[y * span + x], before[(x < swapped ? height - 1 - y : y) * span + x])
                    << x << ", " << y;
    }
}

} // namespace
