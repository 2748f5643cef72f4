#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "../Common/AlphaBlend.h"
#include "../Common/AlphaFade.h"
#include "../Common/AlphaPremul.h"
#include "../Common/ChannelReverse.h"
#include "../Common/ColorSpaceConverter.h"
#include "../Common/CopyPlane.h"
#include "../Common/FillBorder.h"
#include "../Common/Frame.h"
#include "../Common/InvertChannel.h"
#include "../Common/SetChannelColor.h"
#include "../Common/SetColor.h"
#include "../Common/SqrInPlace.h"
#include "../Common/SqrtInPlace.h"
#include "../Common/ThresholdLTInPlace.h"
#include "AtEachVariant.h"
#include "GuardedBlock.h"
#include "ProcessorTestFrame.h"

namespace {

TEST_SUITE_AT_EACH_VARIANT(ProcessorsInGuardedMemory);

// A frame with packed rows whose first or last byte touches an inaccessible page, so that a
// processor (or a primitive under it) that reads or writes one byte outside the picture faults.
class GuardedFrame {
public:
    GuardedFrame(PixelFormat format, int width, int height, GuardedBlock::Guard guard)
        : m_block(static_cast<size_t>(width) * TestFrame::DepthOf(format) * height, guard)
    {
        // Floats of 0.125 to 0.875 in every whole word; byte operations take their bytes as they come.
        const int depth = TestFrame::DepthOf(format);
        for (size_t i = 0; i < static_cast<size_t>(width) * depth * height / sizeof(float); ++i) {
            const float sample = static_cast<float>(i % 7) / 8.0f + 0.125f;
            std::memcpy(m_block.Data() + i * sizeof(float), &sample, sizeof sample);
        }
        m_frame.Init(m_block.Data(), width, height, width * depth, depth, format, false);
    }
    CFrame* Get() { return &m_frame; }

private:
    GuardedBlock m_block;
    CFrame m_frame;
};

// One operation on a source and a destination of the given formats, of one size; the operation
// answers whether it did its work.
struct GuardedCase {
    std::string name;
    PixelFormat srcFormat, dstFormat;
    int dstExtra;   // the destination is this much wider and taller than the source
    std::function<bool(CFrame* pSrc, CFrame* pDst)> operation;
};

std::vector<GuardedCase> Cases()
{
    using namespace Processors;
    std::vector<GuardedCase> cases;
    auto add = [&cases](const std::string& name, PixelFormat from, PixelFormat to, int extra,
                        std::function<bool(CFrame*, CFrame*)> operation) {
        cases.push_back({name + " " + std::to_string(from) + " to " + std::to_string(to), from, to, extra, operation});
    };
    for (PixelFormat format : kFourSampleFormats) {
        add("blend", format, format, 0, [](CFrame* s, CFrame* d) { return CAlphaBlend().Process(s, s, d, true); });
        add("blend straight", format, format, 0,
            [](CFrame* s, CFrame* d) { return CAlphaBlend().Process(s, d, d, false); });
        add("premultiply", format, format, 0, [](CFrame* s, CFrame* d) { return CAlphaPremul().Process(*s, *d); });
        add("fade", format, format, 0, [](CFrame* s, CFrame* d) { return CAlphaFade().Process(s, d, 200); });
        add("invert", format, format, 0, [](CFrame*, CFrame* d) { return CInvertChannel().Process(d, 3); });
        add("reverse", format, format, 0, [](CFrame* s, CFrame* d) { return CChannelReverse().Process(s, d); });
        add("reverse in place", format, format, 0, [](CFrame*, CFrame* d) { return CChannelReverse().Process(d, d); });
        add("permute", format, format, 0, [](CFrame*, CFrame* d) {
            unsigned int order[4] = {1, 3, 0, 2};
            return CChannelReverse().Process(d, order);
        });
        add("set colour", format, format, 0, [](CFrame*, CFrame* d) { return CSetColor().Process(d, 0x80402010u); });
        add("set channel", format, format, 0, [](CFrame*, CFrame* d) { return CSetChannelColor().Process(d, 3, 7); });
        add("copy plane", format, format, 0, [](CFrame* s, CFrame* d) { return CCopyPlane().Process(s, d, 3, 0); });
        add("fill border", format, format, 2, [](CFrame* s, CFrame* d) { return CFillBorder().Process(s, d, 1, 1); });
        add("fill border in place", format, format, 0, [](CFrame*, CFrame* d) {
            return CFillBorder().Process(d, d, (d->m_nWidth - 1) / 2, (d->m_nHeight - 1) / 2);   // widest margins
        });
    }
    for (PixelFormat format : {pfMono8, pfMonoFloat}) {
        add("invert", format, format, 0, [](CFrame*, CFrame* d) { return CInvertChannel().Process(d, 0); });
        add("set colour", format, format, 0, [](CFrame*, CFrame* d) { return CSetColor().Process(d, 0x80402010u); });
        add("fill border", format, format, 2, [](CFrame* s, CFrame* d) { return CFillBorder().Process(s, d, 2, 1); });
    }
    const PixelFormat planes[][2] = {{pfVideoSample, pfMono8}, {pfVideoSampleSwappedFloat, pfMonoFloat}};
    for (const auto& pair : planes) {
        add("copy plane out", pair[0], pair[1], 0,
            [](CFrame* s, CFrame* d) { return CCopyPlane().Process(s, d, 3, 0); });
        add("copy plane in", pair[1], pair[0], 0,
            [](CFrame* s, CFrame* d) { return CCopyPlane().Process(s, d, 0, 3); });
    }
    const PixelFormat conversions[][2] = {
        {pfVideoSample, pfVideoSampleFloat},   {pfVideoSampleSwapped, pfVideoSampleSwappedFloat},
        {pfVideoSample, pfVideoSampleSwappedFloat}, {pfVideoSampleFloat, pfVideoSample},
        {pfVideoSampleSwappedFloat, pfVideoSampleSwapped}, {pfVideoSampleSwappedFloat, pfVideoSample}};
    for (const auto& pair : conversions)
        add("convert", pair[0], pair[1], 0,
            [](CFrame* s, CFrame* d) { return CColorSpaceConverter().Process(s, d); });
    const PixelFormat argb = pfVideoSampleSwappedFloat;
    add("colour matrix", argb, argb, 0, [](CFrame* s, CFrame* d) {
        float matrix[3][4] = {{1, 2, 3, 4}, {0, 1, 0, 0}, {1, 0, 0, 1}};
        return CColorSpaceConverter().ProcessColorMatrix32f(*s, *d, matrix) &&
               CColorSpaceConverter().ProcessColorMatrix32f(*d, *d, matrix);
    });
    add("constants", argb, argb, 0, [](CFrame* s, CFrame* d) {
        float constants[3] = {0.5f, 2.0f, -1.0f};
        CColorSpaceConverter converter;
        return converter.ProcessMulC32f(*s, *d, constants) && converter.ProcessMulC32f(*d, *d, constants) &&
               converter.ProcessAddC32f(*s, *d, constants) && converter.ProcessAddC32f(*d, *d, constants);
    });
    for (PixelFormat format : {pfVideoSampleFloat, pfVideoSampleSwappedFloat})
        add("square, root and floor", format, format, 0, [](CFrame*, CFrame* d) {
            const float floor[4] = {0.2f, 0.3f, 0.4f, 0.5f};
            return CSqrInPlace().Process(d) && CSqrtInPlace().Process(d) && CThresholdLTInPlace().Process(d, floor);
        });
    return cases;
}

TEST_P(ProcessorsInGuardedMemory, NoProcessorReachesPastItsFrames)
{
    const IppiSize sizes[] = {{1, 1}, {2, 1}, {3, 2}, {17, 3}, {64, 2}};
    for (const GuardedCase& c : Cases())
        for (const IppiSize& size : sizes)
            for (GuardedBlock::Guard guard : {GuardedBlock::Guard::AfterEnd, GuardedBlock::Guard::BeforeStart}) {
                GuardedFrame src(c.srcFormat, size.width, size.height, guard);
                GuardedFrame dst(c.dstFormat, size.width + c.dstExtra, size.height + c.dstExtra, guard);
                EXPECT_TRUE(c.operation(src.Get(), dst.Get()))
                    << c.name << " at " << size.width << "x" << size.height;
            }
}

} // namespace
