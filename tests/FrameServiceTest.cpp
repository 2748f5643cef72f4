// The frame service as a host reaches it: the module is loaded with dlopen, the service is asked
// of the library object, and every operation is called by its slot. These are the operations on
// whole pictures: copy, resize, crop and flip, and the object itself.
#include <cstring>
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

    EXPECT_EQ(service->AddRef(), 2u);
    EXPECT_EQ(service->Release(), 1u);
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
        int rowBytesCopied;   // of a record 6 pixels wide; 0: refused
    };
    const Case cases[] = {
        {pfVideoSample, 24},      {pfVideoSampleSwapped, 24}, {pfVideoSampleFloat, 24},
        {pfVideoSampleSwappedFloat, 24}, {pfMonoFloat, 24},
        {pfMono8, 0},   // rows of 6 bytes can't hold 6 four-byte pixels
    };
    for (const Case& c : cases) {
        for (bool flipped : {false, true}) {
            Picture source = Pattern(6, 5, c.format, 0, 1);
            Picture destination = Sentinel(7, 4, c.format);
            FrameParams src = source.Params(), dst = destination.Params();
            src.bFlipped = flipped;
            EXPECT_EQ(service->Copy(&src, &dst), c.rowBytesCopied > 0 ? 1u : 0u) << c.format;
            for (int y = 0; y < 4; ++y) {
                const uint8_t* out = Row(destination, dst, y);
                EXPECT_EQ(std::memcmp(out, Row(source, src, y), c.rowBytesCopied), 0) << c.format << " row " << y;
                for (int x = c.rowBytesCopied; x < dst.nByteSpan; ++x)
                    ASSERT_EQ(out[x], kSentinel) << c.format << " row " << y << " byte " << x;
            }
        }
    }
}

TEST_F(FrameServiceTest, CopyRefusesMissingFramesAndPixels)
{
    Picture source = Pattern(4, 4, pfVideoSample);
    Picture destination = Sentinel(4, 4, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    EXPECT_EQ(service->Copy(nullptr, &dst), 0u);
    EXPECT_EQ(service->Copy(&src, nullptr), 0u);
    FrameParams noPixels = src;
    noPixels.pBuffer = nullptr;
    EXPECT_EQ(service->Copy(&noPixels, &dst), 0u);
    FrameParams empty = src;
    empty.nWidth = 0;
    EXPECT_EQ(service->Copy(&empty, &dst), 0u);
    EXPECT_TRUE(Untouched(destination));
}

// Resize hands the whole pictures to the corner-to-corner member with the flag of the mode.
TEST_F(FrameServiceTest, ResizeGivesTheMemberBothWholePicturesAndTheFlagOfTheMode)
{
    struct Case {
        int mode;
        int flag;
    };
    const Case cases[] = {{0, IPPI_INTER_NN}, {1, IPPI_INTER_LINEAR}, {2, IPPI_INTER_CUBIC},
                          {3, IPPI_INTER_LINEAR}, {7, IPPI_INTER_LINEAR}, {-1, IPPI_INTER_LINEAR}};
    struct Geometry {
        int srcWidth, srcHeight, srcSpan, dstWidth, dstHeight, dstSpan;
    };
    const Geometry geometries[] = {{10, 10, 40, 20, 5, 80}, {9, 7, 44, 13, 11, 60}, {12, 8, 48, 5, 3, 20}};
    for (const Geometry& g : geometries)
        for (const Case& c : cases) {
            Picture source = Pattern(g.srcWidth, g.srcHeight, pfVideoSampleSwapped, g.srcSpan);
            Picture destination = Sentinel(g.dstWidth, g.dstHeight, pfVideoSampleSwapped, g.dstSpan);
            Picture expected = Sentinel(g.dstWidth, g.dstHeight, pfVideoSampleSwapped, g.dstSpan);
            FrameParams src = source.Params(), dst = destination.Params();
            ASSERT_EQ(service->Resize(&src, &dst, c.mode), 1u) << c.mode;
            ASSERT_EQ(ippiResize_8u_C4R(source.Bytes().data(), {g.srcWidth, g.srcHeight}, g.srcSpan,
                                        {0, 0, g.srcWidth, g.srcHeight}, expected.Data(), g.dstSpan,
                                        {g.dstWidth, g.dstHeight}, static_cast<double>(g.dstWidth) / g.srcWidth,
                                        static_cast<double>(g.dstHeight) / g.srcHeight, c.flag),
                      ippStsNoErr);
            EXPECT_EQ(destination.Bytes(), expected.Bytes()) << "mode " << c.mode << " to " << g.dstWidth;
        }
}

TEST_F(FrameServiceTest, ResizeWorkedCases)
{
    // 10 by 10 to 20 by 5 in nearest neighbour: factors 2.0 and 0.5 take columns x / 2 and rows
    // 2y + 1 (the centres of the source pixel pairs).
    Picture source = Pattern(10, 10, pfVideoSample);
    Picture destination = Sentinel(20, 5, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    ASSERT_EQ(service->Resize(&src, &dst, 0), 1u);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 20; ++x)
            ASSERT_EQ(std::memcmp(Row(destination, dst, y) + x * 4, Row(source, src, 2 * y + 1) + x / 2 * 4, 4), 0)
                << x << ", " << y;

    // A row 0, 100 doubled in linear: the ends fall on the source's ends. Mode 7 and mode 3 are
    // linear too; cubic on a picture this small is linear as well.
    for (int mode : {1, 2, 3, 7}) {
        Picture pair(2, 2, pfVideoSample);
        for (int y = 0; y < 2; ++y)
            std::memset(pair.Data() + y * 8 + 4, 100, 4);
        Picture doubled = Sentinel(4, 2, pfVideoSample);
        FrameParams in = pair.Params(), out = doubled.Params();
        ASSERT_EQ(service->Resize(&in, &out, mode), 1u);
        const uint8_t expected[] = {0, 33, 67, 100};
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 4; ++x)
                for (int channel = 0; channel < 4; ++channel)
                    EXPECT_EQ(doubled.Bytes()[y * 16 + x * 4 + channel], expected[x]) << mode;
    }
}

TEST_F(FrameServiceTest, ResizeRefusesWithoutTouchingTheDestination)
{
    struct Case {
        const char* what;
        bool nullSrc, nullDst, nullSrcPixels, nullDstPixels;
        int srcWidth, srcSpan, dstWidth;
    };
    const Case cases[] = {
        {"no source record", true, false, false, false, 8, 32, 8},
        {"no destination record", false, true, false, false, 8, 32, 8},
        {"no source pixels", false, false, true, false, 8, 32, 8},
        {"no destination pixels", false, false, false, true, 8, 32, 8},
        {"empty source", false, false, false, false, 0, 32, 8},
        {"empty destination", false, false, false, false, 8, 32, 0},
        {"source rows shorter than its width", false, false, false, false, 8, 28, 8},
        {"destination rows shorter than its width", false, false, false, false, 8, 32, 12},
    };
    for (const Case& c : cases) {
        Picture source = Pattern(8, 6, pfVideoSample, 32);
        Picture destination = Sentinel(8, 6, pfVideoSample, 32);
        FrameParams src = source.Params(), dst = destination.Params();
        src.nWidth = c.srcWidth;
        src.nByteSpan = c.srcSpan;
        dst.nWidth = c.dstWidth;
        if (c.nullSrcPixels)
            src.pBuffer = nullptr;
        if (c.nullDstPixels)
            dst.pBuffer = nullptr;
        EXPECT_EQ(service->Resize(c.nullSrc ? nullptr : &src, c.nullDst ? nullptr : &dst, 1), 0u) << c.what;
        EXPECT_TRUE(Untouched(destination)) << c.what;
    }
}

// The crop of the source, compared with what it should be: source pixels (left + x, top + y).
void ExpectCropCopied(const Picture& destination, const FrameParams& dst, const Picture& source,
                      const FrameParams& src, int left, int top, const char* what)
{
    const int pixelBytes = src.nDepth;
    for (int y = 0; y < dst.nHeight; ++y)
        ASSERT_EQ(std::memcmp(Row(destination, dst, y), Row(source, src, top + y) + left * pixelBytes,
                              static_cast<size_t>(dst.nWidth) * pixelBytes),
                  0)
            << what << " row " << y;
}

TEST_F(FrameServiceTest, ResizeCropAtFactorOneTakesTheRectangleFromItsCorner)
{
    struct Case {
        const char* what;
        tagRECT rect;
        int dstWidth, dstHeight;
    };
    const Case cases[] = {
        {"a rectangle larger than the destination is cut, not scaled", {0, 0, 99, 99}, 50, 50},
        {"a rectangle at left 3", {3, 0, 12, 5}, 10, 6},
        {"a wider rectangle keeps its left part", {5, 2, 80, 30}, 10, 10},
        {"a rectangle at the source's far corner", {90, 95, 99, 99}, 10, 5},
    };
    for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        for (const Case& c : cases)
            for (int mode : {0, 1, 2}) {
                Picture source = Pattern(100, 100, format);
                Picture destination = Sentinel(c.dstWidth, c.dstHeight, format);
                FrameParams src = source.Params(), dst = destination.Params();
                tagRECT rect = c.rect;
                ASSERT_EQ(service->ResizeCrop(&src, &rect, &dst, mode), 1u) << c.what;
                ExpectCropCopied(destination, dst, source, src, c.rect.left, c.rect.top, c.what);
            }
}

TEST_F(FrameServiceTest, ResizeCropEnlargesTheRectangleWithTheMemberOfItsSampleType)
{
    const tagRECT rect = {3, 2, 8, 6};   // 6 by 5 pixels, right and bottom inside
    for (PixelFormat format : {pfVideoSample, pfVideoSampleSwapped, pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        for (int mode : {0, 1, 2, 5}) {
            const int flag = mode == 0 ? IPPI_INTER_NN : mode == 2 ? IPPI_INTER_CUBIC : IPPI_INTER_LINEAR;
            Picture source = Pattern(12, 9, format, 0, 3);
            Picture destination = Sentinel(15, 11, format);
            Picture expected = Sentinel(15, 11, format);
            FrameParams src = source.Params(), dst = destination.Params();
            tagRECT given = rect;
            ASSERT_EQ(service->ResizeCrop(&src, &given, &dst, mode), 1u) << format;
            const uint8_t* start = source.Bytes().data() + rect.top * src.nByteSpan + rect.left * src.nDepth;
            const IppiSize crop = {6, 5};
            const double xFactor = 15.0 / 6, yFactor = 11.0 / 5;
            const IppStatus status =
                src.nDepth == 4
                    ? ippiResize_8u_C4R(start, crop, src.nByteSpan, {0, 0, 6, 5}, expected.Data(), dst.nByteSpan,
                                        {15, 11}, xFactor, yFactor, flag)
                    : ippiResize_32f_C4R(reinterpret_cast<const Ipp32f*>(start), crop, src.nByteSpan, {0, 0, 6, 5},
                                         reinterpret_cast<Ipp32f*>(expected.Data()), dst.nByteSpan, {15, 11},
                                         xFactor, yFactor, flag);
            ASSERT_EQ(status, ippStsNoErr);
            EXPECT_EQ(destination.Bytes(), expected.Bytes()) << format << " mode " << mode;
        }
}

TEST_F(FrameServiceTest, ResizeCropOfOnePixelFillsTheDestinationWithIt)
{
    for (PixelFormat format : {pfVideoSample, pfVideoSampleFloat})
        for (int mode : {0, 1, 2}) {
            Picture source = Pattern(30, 30, format);
            Picture destination = Sentinel(7, 4, format);
            FrameParams src = source.Params(), dst = destination.Params();
            tagRECT rect = {10, 20, 10, 20};
            ASSERT_EQ(service->ResizeCrop(&src, &rect, &dst, mode), 1u);
            const uint8_t* pixel = Row(source, src, 20) + 10 * src.nDepth;
            for (int y = 0; y < 4; ++y)
                for (int x = 0; x < 7; ++x)
                    ASSERT_EQ(std::memcmp(Row(destination, dst, y) + x * dst.nDepth, pixel, dst.nDepth), 0)
                        << format << " mode " << mode << " at " << x << ", " << y;
        }
}

TEST_F(FrameServiceTest, ResizeCropRefusesWithoutTouchingTheDestination)
{
    struct Case {
        const char* what;
        PixelFormat format;
        int depth;
        tagRECT rect;
        bool nullSrc, nullRect, nullDst, nullSrcPixels, nullDstPixels;
    };
    const tagRECT inside = {1, 1, 4, 4};
    const Case cases[] = {
        {"one-channel floats", pfMonoFloat, 4, inside, false, false, false, false, false},
        {"one-channel bytes", pfMono8, 1, inside, false, false, false, false, false},
        {"format 2", static_cast<PixelFormat>(2), 4, inside, false, false, false, false, false},
        {"format 5", static_cast<PixelFormat>(5), 16, inside, false, false, false, false, false},
        {"bytes said to be 16 a pixel", pfVideoSample, 16, inside, false, false, false, false, false},
        {"no source record", pfVideoSample, 4, inside, true, false, false, false, false},
        {"no rectangle", pfVideoSample, 4, inside, false, true, false, false, false},
        {"no destination record", pfVideoSample, 4, inside, false, false, true, false, false},
        {"no source pixels", pfVideoSample, 4, inside, false, false, false, true, false},
        {"no destination pixels", pfVideoSample, 4, inside, false, false, false, false, true},
        {"empty rectangle", pfVideoSample, 4, {4, 1, 3, 4}, false, false, false, false, false},
        {"left of the source", pfVideoSample, 4, {-1, 0, 4, 4}, false, false, false, false, false},
        {"above the source", pfVideoSampleFloat, 16, {0, -2, 4, 4}, false, false, false, false, false},
        {"past the source's right edge", pfVideoSample, 4, {6, 0, 12, 4}, false, false, false, false, false},
        {"past the source's bottom", pfVideoSampleFloat, 16, {0, 5, 4, 10}, false, false, false, false, false},
        {"a size beyond 32 bits", pfVideoSample, 4, {INT32_MIN, 0, INT32_MAX, 4}, false, false, false, false,
         false},
    };
    for (const Case& c : cases) {
        Picture source = Pattern(8, 8, c.format == pfVideoSampleFloat ? c.format : pfVideoSample);
        Picture destination = Sentinel(10, 10, pfVideoSampleFloat);
        FrameParams src = source.Params(), dst = destination.Params();
        src.pfFormat = c.format;
        src.nDepth = c.depth;
        dst.pfFormat = c.format;
        if (c.nullSrcPixels)
            src.pBuffer = nullptr;
        if (c.nullDstPixels)
            dst.pBuffer = nullptr;
        tagRECT rect = c.rect;
        EXPECT_EQ(service->ResizeCrop(c.nullSrc ? nullptr : &src, c.nullRect ? nullptr : &rect,
                                      c.nullDst ? nullptr : &dst, 1),
                  0u)
            << c.what;
        EXPECT_TRUE(Untouched(destination)) << c.what;
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
        {"a wider destination", pfVideoSampleFloat, 3, 3, pfVideoSampleFloat, 4, 3, 3, 48},
        {"bytes of the narrower row", pfVideoSample, 6, 3, pfVideoSampleFloat, 2, 3, 3, 24},
        {"one-channel rows", pfMono8, 7, 5, pfMono8, 9, 5, 5, 7},
        {"one-channel floats", pfMonoFloat, 3, 4, pfMonoFloat, 3, 3, 3, 12},
    };
    for (const Case& c : cases) {
        const int dstSpan = c.dstWidth * TestHost::BytesPerPixel(c.dstFormat) + 8;
        Picture source = Pattern(c.srcWidth, c.srcHeight, c.srcFormat, 0, 5);
        Picture destination = Sentinel(c.dstWidth, c.dstHeight, c.dstFormat, dstSpan);
        FrameParams src = source.Params(), dst = destination.Params();
        ASSERT_EQ(service->FlipFrame(&src, &dst), 1u) << c.what;
        for (int y = 0; y < c.dstHeight; ++y) {
            const uint8_t* out = Row(destination, dst, y);
            int written = 0;
            if (y < c.rows) {
                EXPECT_EQ(std::memcmp(out, Row(source, src, c.rows - 1 - y), c.rowBytes), 0) << c.what << " " << y;
                written = c.rowBytes;
            }
            for (int x = written; x < dstSpan; ++x)
                ASSERT_EQ(out[x], kSentinel) << c.what << " row " << y << " byte " << x;
        }
    }
}

TEST_F(FrameServiceTest, FlipFrameIntoAnotherWithoutPixelsSucceedsAndMovesNothing)
{
    Picture source = Pattern(4, 4, pfVideoSample);
    Picture destination = Sentinel(4, 4, pfVideoSample);
    FrameParams src = source.Params(), dst = destination.Params();
    FrameParams noSource = src, noDestination = dst;
    noSource.pBuffer = nullptr;
    noDestination.pBuffer = nullptr;
    EXPECT_EQ(service->FlipFrame(&noSource, &dst), 1u);
    EXPECT_EQ(service->FlipFrame(&src, &noDestination), 1u);
    EXPECT_EQ(service->FlipFrame(nullptr, &dst), 0u);
    EXPECT_EQ(service->FlipFrame(&src, nullptr), 0u);
    EXPECT_TRUE(Untouched(destination));
}

TEST_F(FrameServiceTest, FlipFrameInPlaceExchangesWholeWordsOfMirroredRows)
{
    struct Case {
        PixelFormat format;
        int width, height;
    };
    const Case cases[] = {{pfVideoSample, 3, 3}, {pfVideoSampleSwapped, 4, 4}, {pfVideoSampleFloat, 2, 5},
                          {pfVideoSampleSwappedFloat, 3, 2}, {pfMonoFloat, 5, 6}, {pfMono8, 6, 3}, {pfMono8, 3, 4}};
    for (const Case& c : cases) {
        const int rowBytes = c.width * TestHost::BytesPerPixel(c.format);
        const int span = rowBytes + 5;
        Picture frame = Pattern(c.width, c.height, c.format, span, 2);
        const std::vector<uint8_t> before = frame.Bytes();
        FrameParams params = frame.Params();
        ASSERT_EQ(service->FlipFrame(&params), 1u);
        const int swapped = rowBytes / 4 * 4;   // bytes past the last whole word stay
        for (int y = 0; y < c.height; ++y) {
            const int mirror = c.height - 1 - y;
            for (int x = 0; x < span; ++x) {
                const int from = x < swapped ? mirror : y;
                ASSERT_EQ(frame.Bytes()[y * span + x], before[from * span + x])
                    << c.format << " " << c.width << "x" << c.height << " at " << x << ", " << y;
            }
        }
    }
}

TEST_F(FrameServiceTest, FlipFrameInPlaceLeavesFramesWithNothingToExchange)
{
    Picture frame = Pattern(4, 1, pfVideoSample);
    const std::vector<uint8_t> before = frame.Bytes();
    FrameParams oneRow = frame.Params();
    EXPECT_EQ(service->FlipFrame(&oneRow), 1u);
    FrameParams noPixels = oneRow;
    noPixels.pBuffer = nullptr;
    noPixels.nHeight = 4;
    EXPECT_EQ(service->FlipFrame(&noPixels), 1u);
    EXPECT_EQ(frame.Bytes(), before);
    EXPECT_EQ(service->FlipFrame(nullptr), 0u);
}

} // namespace
