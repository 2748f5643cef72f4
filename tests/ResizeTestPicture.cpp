#include "ResizeTestPicture.h"

#include <algorithm>
#include <cstring>
#include <ostream>

#include "../primitives/ippResize.h"
#include "../primitives/ippResizeVariants.h"

TestPicture::TestPicture(IppiSize pictureSize, int pictureChannels, bool byteSamples, int padBytes)
    : size(pictureSize), channels(pictureChannels), bytes(byteSamples),
      step(pictureSize.width * pictureChannels * (byteSamples ? 1 : 4) + padBytes),
      m_memory(static_cast<size_t>(step) * pictureSize.height, kSentinel), m_pOrigin(m_memory.data())
{
}

TestPicture::TestPicture(IppiSize pictureSize, int pictureChannels, bool byteSamples, GuardedBlock::Guard guard)
    : size(pictureSize), channels(pictureChannels), bytes(byteSamples),
      step(pictureSize.width * pictureChannels * (byteSamples ? 1 : 4)),
      m_pGuarded(std::make_unique<GuardedBlock>(static_cast<size_t>(step) * pictureSize.height, guard)),
      m_pOrigin(m_pGuarded->Data())
{
    std::fill(m_pOrigin, m_pOrigin + static_cast<size_t>(step) * size.height, kSentinel);
}

std::vector<uint8_t> TestPicture::Bytes() const
{
    return std::vector<uint8_t>(m_pOrigin, m_pOrigin + static_cast<size_t>(step) * size.height);
}

size_t TestPicture::Offset(int x, int y, int c) const
{
    return static_cast<size_t>(y) * step + (static_cast<size_t>(x) * channels + c) * (bytes ? 1 : 4);
}

double TestPicture::Get(int x, int y, int c) const
{
    if (bytes)
        return m_pOrigin[Offset(x, y, c)];
    float sample;
    std::memcpy(&sample, m_pOrigin + Offset(x, y, c), sizeof sample);
    return sample;
}

void TestPicture::Set(int x, int y, int c, double value)
{
    if (bytes) {
        m_pOrigin[Offset(x, y, c)] = static_cast<uint8_t>(value);
        return;
    }
    const float sample = static_cast<float>(value);
    std::memcpy(m_pOrigin + Offset(x, y, c), &sample, sizeof sample);
}

void TestPicture::Fill(const std::function<double(int x, int y, int c)>& value)
{
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < channels; ++c)
                Set(x, y, c, value(x, y, c));
}

void TestPicture::FillRandom(std::mt19937& rng)
{
    std::uniform_int_distribution<int> byte(0, 255);
    Fill([&](int, int, int) { return bytes ? byte(rng) : byte(rng) / 255.0; });
}

void FillRandom(uint8_t* block, size_t length, bool bytes, std::mt19937& rng)
{
    for (size_t i = 0; i + (bytes ? 1 : 4) <= length; i += bytes ? 1 : 4) {
        const float sample = static_cast<float>(rng() % 1000) / 999.0f;
        if (bytes)
            block[i] = static_cast<uint8_t>(rng());
        else
            std::memcpy(block + i, &sample, sizeof sample);
    }
}

ResizeReference::Source TestPicture::AsSource() const
{
    return {[this](int x, int y, int c) { return Get(x, y, c); }, size, channels, bytes};
}

std::ostream& operator<<(std::ostream& out, const Member& member)
{
    return out << (member.areas ? "pixel-area " : "corners ") << (member.bytes ? "8u C" : "32f C") << member.channels;
}

namespace {

// The six members of one variant, in the order of kMembers.
struct Entries {
    decltype(&ippiResize_8u_C4R) corners8u;
    decltype(&ippiResize_32f_C4R) corners32f;
    decltype(&ippiResizeSqrPixel_8u_C1R) areas8u[2];
    decltype(&ippiResizeSqrPixel_32f_C1R) areas32f[2];
};
const Entries kVariants[] = {
    {ippiResize_8u_C4R, ippiResize_32f_C4R, {ippiResizeSqrPixel_8u_C1R, ippiResizeSqrPixel_8u_C4R},
     {ippiResizeSqrPixel_32f_C1R, ippiResizeSqrPixel_32f_C4R}},
    {mx_ippiResize_8u_C4R, mx_ippiResize_32f_C4R, {mx_ippiResizeSqrPixel_8u_C1R, mx_ippiResizeSqrPixel_8u_C4R},
     {mx_ippiResizeSqrPixel_32f_C1R, mx_ippiResizeSqrPixel_32f_C4R}},
    {y8_ippiResize_8u_C4R, y8_ippiResize_32f_C4R, {y8_ippiResizeSqrPixel_8u_C1R, y8_ippiResizeSqrPixel_8u_C4R},
     {y8_ippiResizeSqrPixel_32f_C1R, y8_ippiResizeSqrPixel_32f_C4R}},
};

} // namespace

IppStatus RunMember(const Member& m, const Call& c, const uint8_t* src, uint8_t* dst, uint8_t* work, Variant variant)
{
    const Entries& entries = kVariants[static_cast<int>(variant)];
    const auto* fSrc = reinterpret_cast<const Ipp32f*>(src);
    auto* fDst = reinterpret_cast<Ipp32f*>(dst);
    const IppiSize dstSize = {c.dstRoi.width, c.dstRoi.height};
    if (!m.areas && m.bytes)
        return entries.corners8u(src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, dstSize, c.xFactor, c.yFactor,
                                 c.interpolation);
    if (!m.areas)
        return entries.corners32f(fSrc, c.srcSize, c.srcStep, c.srcRoi, fDst, c.dstStep, dstSize, c.xFactor,
                                  c.yFactor, c.interpolation);
    if (m.bytes)
        return entries.areas8u[m.channels == 4](src, c.srcSize, c.srcStep, c.srcRoi, dst, c.dstStep, c.dstRoi,
                                                c.xFactor, c.yFactor, c.xShift, c.yShift, c.interpolation, work);
    return entries.areas32f[m.channels == 4](fSrc, c.srcSize, c.srcStep, c.srcRoi, fDst, c.dstStep, c.dstRoi,
                                             c.xFactor, c.yFactor, c.xShift, c.yShift, c.interpolation, work);
}

IppStatus Resize(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiRect dstRoi, double xFactor,
                 double yFactor, double xShift, double yShift, int interpolation, bool areas)
{
    int bufferBytes = 1;
    if (areas && ippiResizeGetBufSize(srcRoi, dstRoi, src.channels, interpolation, &bufferBytes) != ippStsNoErr)
        bufferBytes = 1;   // the member answers for the arguments itself
    std::vector<uint8_t> buffer(bufferBytes);
    const Call call = {src.size, src.step, srcRoi, dst.step, dstRoi, xFactor, yFactor, xShift, yShift, interpolation};
    return RunMember({areas, src.bytes, src.channels}, call, src.Origin(), dst.Origin(), buffer.data());
}

ResizeReference::Expected Reference(const TestPicture& src, IppiRect srcRoi, IppiRect dstRoi, double xFactor,
                                    double yFactor, double xShift, double yShift, int interpolation, bool areas)
{
    if (areas)
        return ResizeReference::Areas(src.AsSource(), srcRoi, dstRoi, xFactor, yFactor, xShift, yShift,
                                      interpolation);
    return ResizeReference::Corners(src.AsSource(), srcRoi, {dstRoi.width, dstRoi.height}, xFactor, yFactor,
                                    interpolation);
}
