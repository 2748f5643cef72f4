#pragma once
#include <cstdint>
#include <memory>
#include <random>
#include <vector>

#include "../primitives/ippdefs.h"
#include "GuardedBlock.h"
#include "ResizeReference.h"

// A picture of byte or float samples, as the resize tests hand it to a member, filled with the
// sentinel: with padded rows in ordinary memory, or with packed rows in guarded memory whose last
// (or first) byte touches an inaccessible page.
struct TestPicture {
    static constexpr uint8_t kSentinel = 0xCD;

    TestPicture(IppiSize size, int channels, bool bytes, int padBytes = 12);
    TestPicture(IppiSize size, int channels, bool bytes, GuardedBlock::Guard guard);

    double Get(int x, int y, int c) const;
    void Set(int x, int y, int c, double value);
    void FillRandom(std::mt19937& rng);
    ResizeReference::Source AsSource() const;
    uint8_t* Origin() { return m_pOrigin; }
    const uint8_t* Origin() const { return m_pOrigin; }
    std::vector<uint8_t> Bytes() const;
    size_t Offset(int x, int y, int c) const;

    IppiSize size;
    int channels;
    bool bytes;
    int step;

private:
    std::vector<uint8_t> m_memory;
    std::unique_ptr<GuardedBlock> m_pGuarded;
    uint8_t* m_pOrigin;
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
