#pragma once
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "../primitives/ippResize.h"
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
    void Fill(const std::function<double(int x, int y, int c)>& value);
    void FillRandom(std::mt19937& rng);
    ResizeReference::Source AsSource() const;
    uint8_t* Origin() { return m_pOrigin; }
    const uint8_t* Origin() const { return m_pOrigin; }
    std::vector<uint8_t> Bytes() const;
    IppiRect Whole() const { return {0, 0, size.width, size.height}; }

    IppiSize size;
    int channels;
    bool bytes;
    int step;

private:
    size_t Offset(int x, int y, int c) const;

    std::vector<uint8_t> m_memory;
    std::unique_ptr<GuardedBlock> m_pGuarded;
    uint8_t* m_pOrigin;
};

// Random samples over a whole block, padding included: bytes, or floats of 0 to 1.
void FillRandom(uint8_t* block, size_t length, bool bytes, std::mt19937& rng);

const int kModes[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC, IPPI_INTER_LANCZOS};

// The six resize members: corner-to-corner (ippiResize_*) or pixel-area (ippiResizeSqrPixel_*),
// by sample type and channels.
struct Member {
    bool areas;
    bool bytes;
    int channels;
};
const Member kMembers[] = {{false, true, 4}, {false, false, 4}, {true, true, 1},
                           {true, true, 4},  {true, false, 1},  {true, false, 4}};
std::ostream& operator<<(std::ostream& out, const Member& member);

// One call of a member. Corner-to-corner members take the destination region's size and no
// shifts.
struct Call {
    IppiSize srcSize;
    int srcStep;
    IppiRect srcRoi;
    int dstStep;
    IppiRect dstRoi;
    double xFactor, yFactor, xShift, yShift;
    int interpolation;
};

// A variant of the members: the exported entries, or the plain or SSE4.1 one behind them.
enum class Variant { Exported, Plain, Sse41 };

IppStatus RunMember(const Member& member, const Call& call, const uint8_t* src, uint8_t* dst, uint8_t* work,
              Variant variant = Variant::Exported);

// The member of the pictures' form on whole pictures; pixel-area members get the work space that
// ippiResizeGetBufSize gives.
IppStatus Resize(const TestPicture& src, IppiRect srcRoi, TestPicture& dst, IppiRect dstRoi, double xFactor,
                 double yFactor, double xShift, double yShift, int interpolation, bool areas);

// What the reference evaluation expects of the same call.
ResizeReference::Expected Reference(const TestPicture& src, IppiRect srcRoi, IppiRect dstRoi, double xFactor,
                                    double yFactor, double xShift, double yShift, int interpolation, bool areas);
