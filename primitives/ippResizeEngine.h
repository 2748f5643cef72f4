#pragma once
#include <cstddef>
#include <cstdint>

// The separable machinery under the resize members: per-axis tap tables, a pass along each
// needed source row into a rolling row store, then a pass down the stored rows. The members
// differ only in how they map output positions to source positions.
namespace ResizeEngine {

enum class Kernel { Nearest, Linear, Cubic, Lanczos };

// The kernel of an interpolation value; false for a value the members refuse.
bool KernelOf(int interpolation, Kernel& kernel);

// A picture with fewer samples in either direction than a kernel wants takes the next narrower
// one: Lanczos below `lanczosSamples`, cubic below 4.
Kernel NarrowForSmallPicture(Kernel kernel, int width, int height, int lanczosSamples);

// Samples read along one axis for one output position: 1, 2, 4 or kMaxTaps.
int TapCount(Kernel kernel);
const int kMaxTaps = 6;

// Weights of bytes in linear mode carry 14 fractional bits.
const int kFixedOne = 1 << 14;

// One axis of a resize: for each output position, the first source sample read and the weights
// of the samples from there on. Indices are absolute in the source picture.
struct AxisTable {
    int count = 0;               // output positions
    int samples = 0;             // the source picture's size along this axis
    int32_t* first = nullptr;    // first sample read
    float* weights = nullptr;    // cubic, Lanczos: TapCount weights a position; linear floats: the fraction
    int16_t* fixed = nullptr;    // linear bytes: the two samples' weights, 14 fractional bits, a pair a position
    int leftEdge = 0;            // linear, along rows: positions before this take the first sample
    int rightEdge = 0;           // linear, along rows: positions from this on take the last sample
};

// Filling a table, position by position, from the index and fraction that a mapping's rules give.
// `along` is true for the axis along rows: its taps are folded into the picture, so that a row
// pass never tests an index; rows are clamped when they are fetched instead.
void BeginAxis(AxisTable& table);
void SetNearest(AxisTable& table, int position, int64_t index);
void SetLinear(AxisTable& table, int position, int64_t index, double fraction, bool fixedPoint);
void SetCubic(AxisTable& table, int position, int64_t firstTap, double fraction, bool along);
void SetLanczos(AxisTable& table, int position, int64_t firstTap, double fraction, bool along);

// Source positions far outside any picture all read an edge sample; this keeps their indices in
// range. A position that is not a number reads the first sample.
int64_t FloorIndex(double position);
int64_t TruncIndex(double position);

// A resize ready to run: what to read, where to write, the two axes and the work arrays.
struct Job {
    Kernel kernel = Kernel::Nearest;
    bool floats = false;          // samples are 32-bit floats, else bytes
    int channels = 1;             // 1 or 4 interleaved samples a pixel
    const uint8_t* src = nullptr; // the source picture's origin
    ptrdiff_t srcStep = 0;
    uint8_t* dst = nullptr;       // the first output pixel
    ptrdiff_t dstStep = 0;
    AxisTable along;              // output columns
    AxisTable down;               // output rows
    void* stores[kMaxTaps] = {};  // rolling stores of row-pass results, one per tap down
};

// Aligned arrays carved one after another from a block of work space. Over a null block it only
// counts, so that the same carving gives the size to ask for.
class Workspace {
public:
    explicit Workspace(uint8_t* pBlock);
    void* Take(int64_t bytes);
    int64_t Bytes() const;

private:
    uint8_t* m_pStart;
    int64_t m_nPad;
    int64_t m_nUsed;
};

// Takes the tables and row stores of `job` (kernel, sample type, channels and the two counts
// set) from the work space.
void TakeWork(Workspace& work, Job& job);

// Work space that TakeWork needs, in bytes; samples of either type take 4 bytes in a store.
int64_t WorkBytes(Kernel kernel, int channels, int columns, int rows);

// Runs the resize: every output pixel of the two tables is written, nothing else. The plain
// variant, and the same with SSE4.1 instructions, bit for bit, for processors that have them.
void Resample(const Job& job);
void ResampleSse41(const Job& job);

} // namespace ResizeEngine
