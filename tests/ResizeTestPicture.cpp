#include "ResizeTestPicture.h"

#include <algorithm>
#include <cstring>

#include "../primitives/ippResize.h"

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

void TestPicture::FillRandom(std::mt19937& rng)
{
    std::uniform_int_distribution<int> byte(0, 255);
    for (int y = 0; y < size.height; ++y)
        for (int x = 0; x < size.width; ++x)
            for (int c = 0; c < channels; ++c)
                Set(x, y, c, bytes ? byte(rng) : byte(rng) / 255.0);
}

ResizeReference::Source TestPicture::AsSource() const
{
    return {[this](int x, int y, int c) { return Get(x, y, c); }, size, channels, bytes};
}

IppStatus ResizeCornersAt(bool bytes, const uint8_t* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                          uint8_t* pDst, int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor,
                          int interpolation)
{
    if (bytes)
        return ippiResize_8u_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoiSize, xFactor, yFactor,
                                 interpolation);
    return ippiResize_32f_C4R(reinterpret_cast<const Ipp32f*>(pSrc), srcSize, srcStep, srcRoi,
                              reinterpret_cast<Ipp32f*>(pDst), dstStep, dstRoiSize, xFactor, yFactor, interpolation);
}

IppStatus ResizeAreasAt(bool bytes, int channels, const uint8_t* pSrc, IppiSize srcSize, int srcStep,
                        IppiRect srcRoi, uint8_t* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                        double xShift, double yShift, int interpolation, uint8_t* pBuffer)
{
    const auto* fSrc = reinterpret_cast<const Ipp32f*>(pSrc);
    auto* fDst = reinterpret_cast<Ipp32f*>(pDst);
    if (bytes && channels == 1)
        return ippiResizeSqrPixel_8u_C1R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                         xShift, yShift, interpolation, pBuffer);
    if (bytes)
        return ippiResizeSqrPixel_8u_C4R(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor,
                                         xShift, yShift, interpolation, pBuffer);
    if (channels == 1)
        return ippiResizeSqrPixel_32f_C1R(fSrc, srcSize, srcStep, srcRoi, fDst, dstStep, dstRoi, xFactor, yFactor,
                                          xShift, yShift, interpolation, pBuffer);
    return ippiResizeSqrPixel_32f_C4R(fSrc, srcSize, srcStep, srcRoi, fDst, dstStep, dstRoi, xFactor, yFactor,
                                      xShift, yShift, interpolation, pBuffer);
}

IppStatus ResizeCorners(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiSize dstRoiSize,
                        double xFactor, double yFactor, int interpolation)
{
    return ResizeCornersAt(src.bytes, src.Origin(), src.size, src.step, srcRoi, dst.Origin(), dst.step, dstRoiSize,
                           xFactor, yFactor, interpolation);
}

IppStatus ResizeAreas(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiRect dstRoi, double xFactor,
                      double yFactor, double xShift, double yShift, int interpolation)
{
    int bufferBytes = 0;
    if (ippiResizeGetBufSize(srcRoi, dstRoi, src.channels, interpolation, &bufferBytes) != ippStsNoErr)
        bufferBytes = 1;   // the member answers for the arguments itself
    std::vector<uint8_t> buffer(bufferBytes);
    return ResizeAreasAt(src.bytes, src.channels, src.Origin(), src.size, src.step, srcRoi, dst.Origin(), dst.step,
                         dstRoi, xFactor, yFactor, xShift, yShift, interpolation, buffer.data());
}
