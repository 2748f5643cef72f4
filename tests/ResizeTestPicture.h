#pragma once
#include <cstdint>
#include <random>
#include <vector>

#include "../primitives/ippdefs.h"
#include "ResizeReference.h"

// A picture of byte or float samples with padded rows, as the resize tests hand it to a member.
struct TestPicture {
    static constexpr uint8_t kSentinel = 0xCD;

    TestPicture(IppiSize size, int channels, bool bytes, int padBytes = 12);

    double Get(int x, int y, int c) const;
    void Set(int x, int y, int c, double value);
    void FillRandom(std::mt19937& rng);
    ResizeReference::Source AsSource() const;
    uint8_t* Origin() { return data.data(); }
    const uint8_t* Origin() const { return data.data(); }
    size_t Offset(int x, int y, int c) const;

    IppiSize size;
    int channels;
    bool bytes;
    int step;
    std::vector<uint8_t> data;
};

// The member of the picture's sample type and channels, with pictures in place of pointers; the
// pixel-area members get work space of the size that ippiResizeGetBufSize gives.
IppStatus ResizeCorners(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiSize dstRoiSize,
                        double xFactor, double yFactor, int interpolation);
IppStatus ResizeAreas(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiRect dstRoi, double xFactor,
                      double yFactor, double xShift, double yShift, int interpolation);

// The same with raw pointers, for pictures that live elsewhere.
IppStatus ResizeCornersAt(bool bytes, const uint8_t* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi,
                          uint8_t* pDst, int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor,
                          int interpolation);
IppStatus ResizeAreasAt(bool bytes, int channels, const uint8_t* pSrc, IppiSize srcSize, int srcStep,
                        IppiRect srcRoi, uint8_t* pDst, int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                        double xShift, double yShift, int interpolation, uint8_t* pBuffer);
