#include "ResizeReference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

#include "../primitives/ippResize.h"

namespace ResizeReference {

namespace {

const double kPi = 3.14159265358979323846;

// Where one output position reads along one axis: samples and their weights. Linear on bytes
// also keeps t in 14 fractional bits, as the members' fixed point does.
struct Point {
    std::vector<std::pair<int64_t, double>> taps;
    int64_t fixedT = -1;
};

int64_t Clamp(int64_t index, int64_t samples)
{
    return std::min<int64_t>(std::max<int64_t>(index, 0), samples - 1);
}

Point Nearest(int64_t index)
{
    return Point{{{index, 1.0}}};
}

Point Lerp(int64_t index, int64_t next, double t)
{
    return Point{{{index, 1 - t}, {next, t}}, static_cast<int64_t>(t * 16384 + 1e-7)};
}

// The cubic through the samples at base - 1 .. base + 2, read at base + t (Lagrange's weights).
Point Polynomial(int64_t base, double t)
{
    return Point{{{base - 1, -t * (t - 1) * (t - 2) / 6},
                  {base, (t + 1) * (t - 1) * (t - 2) / 2},
                  {base + 1, -(t + 1) * t * (t - 2) / 2},
                  {base + 2, (t + 1) * t * (t - 1) / 6}}};
}

// The members' table: L at steps of a hundredth, in single precision, then a zero.
double LanczosTable(int entry)
{
    return entry % 100 == 0 && entry != 0 ? 0.0 : entry > 300 ? 0.0 : static_cast<float>(Lanczos3(entry / 100.0));
}

// Six taps at i - 2 .. i + 3, weights interpolated in the table and normalised.
Point Lanczos(int64_t i, double t, int64_t samples)
{
    Point point;
    double sum = 0;
    for (int k = -2; k <= 3; ++k) {
        const double at = std::fabs(k - t) * 100;
        const int entry = static_cast<int>(at);
        const double weight = at < 300 ? LanczosTable(entry) + (LanczosTable(entry + 1) - LanczosTable(entry)) *
                                                                   (at - entry)
                                       : 0.0;
        point.taps.push_back({Clamp(i + k, samples), weight});
        sum += weight;
    }
    for (auto& tap : point.taps)
        tap.second /= sum;
    return point;
}

// The kernel of pixel-area cubic, at distance x.
double CubicKernel(double x)
{
    const double a = std::fabs(x);
    if (a < 1)
        return (a * a * a - a) / 2 + 1 - x * x;
    if (a < 2)
        return -a * a * a / 6 + x * x - 11 * a / 6 + 1;
    return 0;
}

// The mode used for a small source picture: Lanczos needs 8 samples each way (pixel-area: 6),
// cubic 4, and corner-to-corner anything but nearest neighbour 2.
int Reduced(int interpolation, IppiSize size, bool areas)
{
    const int smaller = std::min(size.width, size.height);
    if (interpolation == IPPI_INTER_LANCZOS && smaller < (areas ? 6 : 8))
        interpolation = IPPI_INTER_CUBIC;
    if (interpolation == IPPI_INTER_CUBIC && smaller < 4)
        interpolation = IPPI_INTER_LINEAR;
    return !areas && smaller < 2 ? IPPI_INTER_NN : interpolation;
}

// Corner-to-corner: apart from nearest neighbour the first and last outputs fall on the region's
// first and last samples; cubic near an edge takes the nearest four samples inside the picture.
std::vector<Point> CornerAxis(int interpolation, double factor, int length, int offset, int samples, int count)
{
    const bool nearest = interpolation == IPPI_INTER_NN;
    const double step = nearest ? 1 / factor : length * factor > 1 ? (length - 1) / (length * factor - 1) : 0;
    double position = nearest ? step / 2 : 0;
    const int64_t last = samples - 1;
    std::vector<Point> points;
    for (int j = 0; j < count; ++j, position += step) {
        const int64_t i = static_cast<int64_t>(position + 1e-7);
        const int64_t at = offset + i;
        const double t = position - i;
        if (nearest)
            points.push_back(Nearest(std::min(at, last)));
        else if (interpolation == IPPI_INTER_LINEAR)
            points.push_back(at >= last ? Lerp(last - 1, last, 1.0) : Lerp(at, at + 1, t));
        else if (interpolation == IPPI_INTER_CUBIC)
            points.push_back(at >= last ? Polynomial(last - 2, 2.0) : at == last - 1 ? Polynomial(at - 1, t + 1)
                                                                    : at == 0 ? Polynomial(1, t - 1)
                                                                              : Polynomial(at, t));
        else
            points.push_back(Lanczos(at, t, samples));
    }
    return points;
}

// Pixel-area: pixel centres map to pixel centres; every tap outside the picture reads its edge.
std::vector<Point> AreaAxis(int interpolation, double factor, double shift, int64_t first, int count, int samples)
{
    const double dx = 1 / factor, off = -shift / factor;
    std::vector<Point> points;
    for (int64_t d = first; d < first + count; ++d) {
        if (interpolation == IPPI_INTER_NN) {
            points.push_back(Nearest(Clamp(static_cast<int64_t>((d + 0.5) * dx - 1e-10 + off), samples)));
            continue;
        }
        const double p = (d + 0.5) * dx - 0.5 + off;
        const int64_t i = static_cast<int64_t>(std::floor(p));
        const double t = p - i;
        Point point;
        if (interpolation == IPPI_INTER_LINEAR) {
            point = Lerp(Clamp(i, samples), Clamp(i + 1, samples), t);
        } else if (interpolation == IPPI_INTER_CUBIC) {
            for (int k = -1; k <= 2; ++k)
                point.taps.push_back({Clamp(i + k, samples), CubicKernel(k - t)});
        } else {
            point = Lanczos(i, t, samples);
        }
        points.push_back(point);
    }
    return points;
}

// Linear on bytes: a row sum with 6 fractional bits, then the column to the byte.
double FixedLinear(const Source& src, const Point& column, const Point& row, int c)
{
    auto rowSum = [&](int64_t y) {
        auto at = [&](int tap) {
            return static_cast<int64_t>(src.sample(static_cast<int>(column.taps[tap].first), static_cast<int>(y), c));
        };
        return ((16384 - column.fixedT) * at(0) + column.fixedT * at(1) + 128) >> 8;
    };
    return static_cast<double>(
        ((16384 - row.fixedT) * rowSum(row.taps[0].first) + row.fixedT * rowSum(row.taps[1].first) + 0x80000) >> 20);
}

void Evaluate(const Source& src, const std::vector<Point>& columns, const std::vector<Point>& rows, Expected& out)
{
    out.columns = static_cast<int>(columns.size());
    out.rows = static_cast<int>(rows.size());
    out.channels = src.channels;
    out.bytes = src.bytes;
    for (const Point& row : rows)
        for (const Point& column : columns)
            for (int c = 0; c < src.channels; ++c) {
                if (src.bytes && column.fixedT >= 0) {
                    out.values.push_back(FixedLinear(src, column, row, c));
                    continue;
                }
                double sum = 0;
                for (const auto& down : row.taps)
                    for (const auto& along : column.taps)
                        sum += down.second * along.second *
                               src.sample(static_cast<int>(along.first), static_cast<int>(down.first), c);
                out.values.push_back(sum);
            }
}

int OutputLength(int length, double factor, int limit)
{
    const double scaled = length * factor + 1e-7;
    const int count = scaled >= limit ? limit : static_cast<int>(scaled);
    return count >= 1 ? count : scaled < 0.5 ? 0 : 1;
}

bool Span(int start, int length, double factor, double shift, int roiStart, int roiLength, int64_t& first, int& count)
{
    const double low = std::max(start * factor + shift, double(roiStart));
    const double high = std::min((start + length) * factor + shift, double(roiStart) + roiLength);
    if (!(low < high))
        return false;
    first = static_cast<int64_t>(std::floor(low + 0.4999999999));
    count = static_cast<int>(std::max<int64_t>(static_cast<int64_t>(std::floor(high + 0.5000000001)) - first, 0));
    return count > 0;
}

// Bytes of cubic and Lanczos are stored as v + 0.5000001, truncated and limited, and may round
// the other way when the exact value lies on a half, as the members sum in single precision;
// bytes of the other modes are exact integers already; floats agree to single precision.
bool Close(double actual, double value, const Expected& expected)
{
    const bool exact = expected.interpolation == IPPI_INTER_NN || expected.interpolation == IPPI_INTER_LINEAR;
    if (!expected.bytes)
        return exact && expected.interpolation == IPPI_INTER_NN
                   ? actual == value
                   : std::fabs(actual - value) <= 2e-6 * std::max(1.0, std::fabs(value));
    if (exact)
        return actual == value;
    const double lifted = value + 0.5000001;
    const double stored = std::min(255.0, std::max(0.0, std::trunc(lifted)));
    const bool nearHalf = std::fabs(lifted - std::round(lifted)) < 1e-3;
    return actual == stored || (nearHalf && std::fabs(actual - stored) <= 1);
}

} // namespace

double Lanczos3(double x)
{
    if (x == 0)
        return 1;
    const double px = kPi * x;
    return 3 * std::sin(px) * std::sin(px / 3) / (px * px);
}

Expected Corners(const Source& src, IppiRect srcRoi, IppiSize dstRoiSize, double xFactor, double yFactor,
                 int interpolation)
{
    Expected out;
    out.interpolation = Reduced(interpolation, src.size, false);
    const int w = std::min(srcRoi.width, src.size.width - srcRoi.x);
    const int h = std::min(srcRoi.height, src.size.height - srcRoi.y);
    const int columns = OutputLength(w, xFactor, dstRoiSize.width);
    const int rows = OutputLength(h, yFactor, dstRoiSize.height);
    if (columns == 0 || rows == 0)
        return out;
    Evaluate(src, CornerAxis(out.interpolation, xFactor, w, srcRoi.x, src.size.width, columns),
             CornerAxis(out.interpolation, yFactor, h, srcRoi.y, src.size.height, rows), out);
    return out;
}

Expected Areas(const Source& src, IppiRect srcRoi, IppiRect dstRoi, double xFactor, double yFactor, double xShift,
               double yShift, int interpolation)
{
    Expected out;
    out.interpolation = Reduced(interpolation, src.size, true);
    const int w = std::min(srcRoi.width, src.size.width - srcRoi.x);
    const int h = std::min(srcRoi.height, src.size.height - srcRoi.y);
    int columns = 0, rows = 0;
    if (!Span(srcRoi.x, w, xFactor, xShift, dstRoi.x, dstRoi.width, out.firstColumn, columns) ||
        !Span(srcRoi.y, h, yFactor, yShift, dstRoi.y, dstRoi.height, out.firstRow, rows))
        return out;
    Evaluate(src, AreaAxis(out.interpolation, xFactor, xShift, out.firstColumn, columns, src.size.width),
             AreaAxis(out.interpolation, yFactor, yShift, out.firstRow, rows, src.size.height), out);
    return out;
}

testing::AssertionResult Matches(const Expected& expected, const uint8_t* dstOrigin, int dstStep, IppiSize dstSize,
                                 const std::vector<uint8_t>& sentinel)
{
    const size_t sampleBytes = expected.bytes ? 1 : 4;
    for (int y = 0; y < dstSize.height; ++y)
        for (int x = 0; x < dstSize.width; ++x)
            for (int c = 0; c < expected.channels; ++c) {
                const size_t offset =
                    static_cast<size_t>(y) * dstStep + (static_cast<size_t>(x) * expected.channels + c) * sampleBytes;
                const int bx = static_cast<int>(x - expected.firstColumn), by = static_cast<int>(y - expected.firstRow);
                if (bx < 0 || bx >= expected.columns || by < 0 || by >= expected.rows) {
                    if (std::memcmp(dstOrigin + offset, sentinel.data() + offset, sampleBytes) != 0)
                        return testing::AssertionFailure() << "written outside the block at " << x << "," << y;
                    continue;
                }
                float sample = 0;
                std::memcpy(&sample, dstOrigin + offset, sizeof sample * !expected.bytes);
                const double actual = expected.bytes ? dstOrigin[offset] : sample;
                if (!Close(actual, expected.At(bx, by, c), expected))
                    return testing::AssertionFailure() << "pixel " << x << "," << y << " channel " << c << ": got "
                                                       << actual << ", exact value " << expected.At(bx, by, c);
            }
    return testing::AssertionSuccess();
}

} // namespace ResizeReference
