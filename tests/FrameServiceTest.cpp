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

const int32_t kNoInterface = static_cast<int32_t>(0x80004002u);
const int32_t kNullResult = static_cast<int32_t>(0x80004005u);

TEST_F(FrameServiceTest, EachCallGivesANewCountedObjectAnsweringItsTwoIdentifiers)
{
    void* second = CallSlot<void*>(library, 9);
    ASSERT_NE(second, nullptr);
    EXPECT_NE(second, service->Object());
    EXPECT_EQ(CallSlot<uint32_t>(second, 2), 0u);

    for (const _GUID* iid : {&IID_IUnknown, &IID_FrameProcessor}) {
        void* answer = nullptr;
        EXPECT_EQ(service->QueryInterface(iid, &answer), 0);
        EXPECT_EQ(answer, service->Object());
        EXPECT_EQ(service->AddRef(), 3u);   // the answer carried a reference
        EXPECT_EQ(service->Release(), 2u);
        EXPECT_EQ(service->Release(), 1u);
    }
    for (const _GUID* iid : {&IID_EffectLibrary, &IID_VideoEffect, &IID_PresetSaver, &IID_IMultiLingual}) {
        void* answer = service.get();
        EXPECT_EQ(service->QueryInterface(iid, &answer), kNoInterface);
        EXPECT_EQ(answer, nullptr);
    }
    EXPECT_EQ(service->QueryInterface(&IID_FrameProcessor, nullptr), kNullResult);
    EXPECT_EQ(service->AddRef(), 2u);   // a refused query added nothing
    EXPECT_EQ(service->Release(), 1u);
}

TEST_F(FrameServiceTest, OutlivesTheLibraryAndDoesNotHoldTheModule)
{
    EXPECT_EQ(library->Release(), 0u);
    library = nullptr;
    EXPECT_TRUE(module->CanUnload());
    Picture source = Pattern(3, 2, pfVideoSample);
    Picture destination = Sentinel(3, 2, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    EXPECT_EQ(service->Copy(&src, &dst), 1u);
    EXPECT_EQ(destination.Bytes(), source.Bytes());
}

// Copy takes every record as four-byte pixels of its width, whatever its format and flipping say.
TEST_F(FrameServiceTest, CopyMovesFourBytesAPixelOverTheCommonAreaWhateverTheFormat)
{
    struct Case {
        PixelFormat format;
        bool flipped;
        int rowBytesCopied;   // of a record 6 pixels wide; 0: refused
    };
    const Case cases[] = {{pfVideoSample, true, 24}, {pfVideoSampleFloat, false, 24}, {pfMonoFloat, false, 24},
                          {pfMono8, false, 0}};   // rows of 6 bytes can't hold 6 four-byte pixels
    for (const Case& c : cases) {
        SCOPED_TRACE(c.format);
        Picture source = Pattern(6, 5, c.format, 0, 1);
        Picture destination = Sentinel(7, 4, c.format);
        FrameParams src = source.Params(), dst = destination.Params();
        src.bFlipped = c.flipped;
        EXPECT_EQ(service->Copy(&src, &dst), c.rowBytesCopied > 0 ? 1u : 0u);
        for (int y = 0; y < 4; ++y) {
            const uint8_t* out = Row(destination, dst, y);
            EXPECT_EQ(std::memcmp(out, Row(source, src, y), c.rowBytesCopied), 0) << "row " << y;
            for (int x = c.rowBytesCopied; x < dst.nByteSpan; ++x)
                ASSERT_EQ(out[x], kSentinel) << "row " << y << " byte " << x;
        }
    }
}

// Resize hands the whole pictures to the corner-to-corner member with the flag of the mode.
TEST_F(FrameServiceTest, ResizeGivesTheMemberBothWholePicturesAndTheFlagOfTheMode)
{
    const std::pair<int, int> modes[] = {{0, IPPI_INTER_NN}, {2, IPPI_INTER_CUBIC}, {3, IPPI_INTER_LINEAR}};
    for (const auto& [mode, flag] : modes) {
        SCOPED_TRACE(mode);
        Picture source = Pattern(9, 7, pfVideoSampleSwapped, 44);
        Picture destination = Sentinel(13, 11, pfVideoSampleSwapped, 60);
        Picture expected = Sentinel(13, 11, pfVideoSampleSwapped, 60);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->Resize(&src, &dst, mode), 1u);
        ASSERT_EQ(ippiResize_8u_C4R(source.Bytes().data(), {9, 7}, 44, {0, 0, 9, 7}, expected.Data(), 60, {13, 11},
                                    13.0 / 9, 11.0 / 7, flag),
                  ippStsNoErr);
        EXPECT_EQ(destination.Bytes(), expected.Bytes());
    }
}

// Null records and pixels are refused with the other operations'.
TEST_F(FrameServiceTest, ResizeRefusesRecordsItCannotReadWithoutTouchingTheDestination)
{
    // Source width and span, destination width: empty pictures, and rows shorter than the width.
    const int cases[][3] = {{0, 32, 8}, {8, 32, 0}, {8, 28, 8}, {8, 32, 12}};
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << c[0] << " " << c[1] << " " << c[2]);
        Picture source = Pattern(8, 6, pfVideoSample, 32);
        Picture destination = Sentinel(8, 6, pfVideoSample, 32);
        FrameParams src = source.Params(), dst = destination.Params();
        src.nWidth = c[0];
        src.nByteSpan = c[1];
        dst.nWidth = c[2];
        EXPECT_EQ(service->Resize(&src, &dst, 1), 0u);
        EXPECT_TRUE(Untouched(destination));
    }
}

// The rectangle's corner, its size capped at the destination's, and the member of the sample type.
TEST_F(FrameServiceTest, ResizeCropTakesTheRectangleFromItsCornerWithTheMemberOfItsSampleType)
{
    // A larger rectangle keeps its top left part, not scaled; one at the source's far corner.
    for (const tagRECT& corner : {tagRECT{5, 2, 80, 30}, tagRECT{90, 95, 99, 99}}) {
        Picture source = Pattern(100, 100, pfVideoSampleFloat);
        Picture destination = Sentinel(10, 5, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        tagRECT rect = corner;
        ASSERT_EQ(service->ResizeCrop(&src, &rect, &dst, 2), 1u);
        for (int y = 0; y < dst.nHeight; ++y) {
            const uint8_t* from = Row(source, src, corner.top + y) + corner.left * 16;
            ASSERT_EQ(std::memcmp(Row(destination, dst, y), from, 160), 0) << corner.left << ", row " << y;
        }
    }

    // Enlarged: the member of the sample type on the crop, with the flag of the mode.
    const tagRECT rect = {3, 2, 8, 6};   // 6 by 5 pixels, right and bottom inside
    for (PixelFormat format : {pfVideoSample, pfVideoSampleSwappedFloat})
        for (int mode : {0, 1, 2, 5}) {
            SCOPED_TRACE(::testing::Message() << format << " mode " << mode);
            const int flag = mode == 0 ? IPPI_INTER_NN : mode == 2 ? IPPI_INTER_CUBIC : IPPI_INTER_LINEAR;
            Picture source = Pattern(12, 9, format, 0, 3);
            Picture destination = Sentinel(15, 11, format);
            Picture expected = Sentinel(15, 11, format);
            FrameParams src = source.Params(), dst = destination.Params();
            tagRECT given = rect;
            ASSERT_EQ(service->ResizeCrop(&src, &given, &dst, mode), 1u);
            const uint8_t* start = source.Bytes().data() + rect.top * src.nByteSpan + rect.left * src.nDepth;
            const IppStatus status =
                src.nDepth == 4
                    ? ippiResize_8u_C4R(start, {6, 5}, src.nByteSpan, {0, 0, 6, 5}, expected.Data(), dst.nByteSpan,
                                        {15, 11}, 15.0 / 6, 11.0 / 5, flag)
                    : ippiResize_32f_C4R(reinterpret_cast<const Ipp32f*>(start), {6, 5}, src.nByteSpan, {0, 0, 6, 5},
                                         reinterpret_cast<Ipp32f*>(expected.Data()), dst.nByteSpan, {15, 11},
                                         15.0 / 6, 11.0 / 5, flag);
            ASSERT_EQ(status, ippStsNoErr);
            EXPECT_EQ(destination.Bytes(), expected.Bytes());
        }
}

TEST_F(FrameServiceTest, ResizeCropRefusesFormatsAndRectanglesWithoutTouchingTheDestination)
{
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
        {"past the source's right edge", pfVideoSample, 4, {6, 0, 12, 4}},
        {"a size beyond 32 bits", pfVideoSample, 4, {INT32_MIN, 0, INT32_MAX, 4}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Picture source = Pattern(8, 8, c.format == pfVideoSampleFloat ? c.format : pfVideoSample);
        Picture destination = Sentinel(10, 10, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = c.format;
        src.nDepth = c.depth;
        dst.pfFormat = c.format;
        tagRECT rect = c.rect;
        EXPECT_EQ(service->ResizeCrop(&src, &rect, &dst, 1), 0u);
        EXPECT_TRUE(Untouched(destination));
    }
}

TEST_F(FrameServiceTest, FlipFrameIntoAnotherReversesTheCommonRows)
{
    struct Case {
        const char* what;
        PixelFormat srcFormat;
        int srcWidth, srcHeight;
        PixelFormat dstFormat;
        int dstWidth, dstHeight;
        int rows, rowBytes;
    };
    const Case cases[] = {
        {"heights 4 and 2", pfVideoSample, 5, 4, pfVideoSample, 5, 2, 2, 20},
        {"heights 2 and 4", pfVideoSampleSwapped, 5, 2, pfVideoSampleSwapped, 5, 4, 2, 20},
        {"bytes of the narrower row", pfVideoSample, 6, 3, pfVideoSampleFloat, 2, 3, 3, 24},
        {"one-channel rows", pfMono8, 7, 5, pfMono8, 9, 5, 5, 7},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        const int dstSpan = c.dstWidth * TestHost::BytesPerPixel(c.dstFormat) + 8;
        Picture source = Pattern(c.srcWidth, c.srcHeight, c.srcFormat, 0, 5);
        Picture destination = Sentinel(c.dstWidth, c.dstHeight, c.dstFormat, dstSpan);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->FlipFrame(&src, &dst), 1u);
        for (int y = 0; y < c.dstHeight; ++y) {
            const uint8_t* out = Row(destination, dst, y);
            const int written = y < c.rows ? c.rowBytes : 0;
            EXPECT_EQ(std::memcmp(out, Row(source, src, c.rows - 1 - y), written), 0) << "row " << y;
            for (int x = written; x < dstSpan; ++x)
                ASSERT_EQ(out[x], kSentinel) << "row " << y << " byte " << x;
        }
    }
}

// In place, whole words of mirrored rows change places. Both flips succeed on a record without
// pixels or with one row, moving nothing.
TEST_F(FrameServiceTest, FlipFrameInPlaceExchangesWholeWordsOfMirroredRows)
{
    Picture one = Sentinel(4, 1, pfVideoSample), four = Pattern(4, 4, pfVideoSample);
    FrameParams row = one.Params(), noPixels = one.Params(), src = four.Params();
    noPixels.pBuffer = nullptr;
    EXPECT_EQ(service->FlipFrame(&noPixels, &row), 1u);
    EXPECT_EQ(service->FlipFrame(&src, &noPixels), 1u);
    EXPECT_EQ(service->FlipFrame(&noPixels), 1u);
    EXPECT_EQ(service->FlipFrame(&row), 1u);
    EXPECT_TRUE(Untouched(one));

    struct Case {
        PixelFormat format;
        int width, height;
    };
    const Case cases[] = {{pfVideoSample, 3, 3}, {pfVideoSampleFloat, 2, 4}, {pfMono8, 6, 3}};
    for (const Case& c : cases) {
        SCOPED_TRACE(::testing::Message() << c.format << " " << c.width << "x" << c.height);
        const int rowBytes = c.width * TestHost::BytesPerPixel(c.format);
        const int span = rowBytes + 5;
        Picture frame = Pattern(c.width, c.height, c.format, span, 2);
        const std::vector<uint8_t> before = frame.Bytes();
        FrameParams params = frame.Params();
        ASSERT_EQ(service->FlipFrame(&params), 1u);
        const int swapped = rowBytes / 4 * 4;   // bytes past the last whole word stay
        for (int y = 0; y < c.height; ++y)
            for (int x = 0; x < span; ++x)
                ASSERT_EQ(frame.Bytes()[y * span + x], before[(x < swapped ? c.height - 1 - y : y) * span + x])
                    << x << ", " << y;
    }
}

} // namespace
