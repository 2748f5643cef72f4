#include "ResizeReference.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <sstream>

#include "../primitives/ippResize.h"

namespace ResizeReference {

namespace {

const double kPi = 3.14159265358979323846;

enum class Form { Nearest, Lerp, Newton, Weighted };

// Where one output position reads along one axis.
struct Point {
    Form form = Form::Nearest;
    int64_t index = 0;   // nearest: the sample; lerp: the first of two; Newton: the base
    int64_t next = 0;    // lerp: the second sample
    double t = 0;
    int64_t fixedT = 0;  // lerp on bytes: t in 14 fractional bits
    std::vector<std::pair<int64_t, double>> taps;   // weighted: samples and weights
};

int64_t Clamp(int64_t index, int64_t samples)
{
    return std::min<int64_t>(std::max<int64_t>(index, 0), samples - 1);
}

Point Lerp(int64_t index, int64_t next, double t)
{
    Point point;
    point.form = Form::Lerp;
    point.index = index;
    point.next = next;
    point.t = t;
    point.fixedT = static_cast<int64_t>(t * 16384 + 1e-7);
    return point;
}

// The members' table: L at steps of a hundredth, in single precision, then a zero.
const std::vector<double>& LanczosTable()
{
    static const std::vector<double> table = [] {
        std::vector<double> entries;
        for (int j = 0; j <= 300; ++j)
            entries.push_back(j % 100 == 0 && j != 0 ? 0.0 : static_cast<float>(Lanczos3(j / 100.0)));
        entries.push_back(0.0);
        return entries;
    }();
    return table;
}

Point Lanczos(int64_t i, double t, int64_t samples)
{
    const std::vector<double>& table = LanczosTable();
    Point point;
    point.form = Form::Weighted;
    double sum = 0;
    for (int k = -2; k <= 3; ++k) {
        const double x = k - t;
        double weight = 0;
        if (x > -3 && x < 3) {
            const double at = std::fabs(x) * 100;
            const int entry = static_cast<int>(at);
            weight = table[entry] + (table[entry + 1] - table[entry]) * (at - entry);
        }
        point.taps.push_back({Clamp(i + k, samples), weight});
        sum += weight;
    }
    for (auto& tap : point.taps)
        tap.second /= sum;
    return point;
}

int ReducedForCorners(int interpolation, IppiSize size)
{
    const int smaller = std::min(size.width, size.height);
    if (interpolation == IPPI_INTER_LANCZOS && smaller < 8)
        interpolation = IPPI_INTER_CUBIC;
    if (interpolation == IPPI_INTER_CUBIC && smaller < 4)
        interpolation = IPPI_INTER_LINEAR;
    return smaller < 2 ? IPPI_INTER_NN : interpolation;
}

int ReducedForAreas(int interpolation, IppiSize size)
{
    const int smaller = std::min(size.width, size.height);
    if (interpolation == IPPI_INTER_LANCZOS && smaller < 6)
        interpolation = IPPI_INTER_CUBIC;
    if (interpolation == IPPI_INTER_CUBIC && smaller < 4)
        interpolation = IPPI_INTER_LINEAR;
    return interpolation;
}

std::vector<Point> CornerAxis(int interpolation, double factor, int length, int offset, int samples, int count)
{
    double step = 0;
    double position = 0;
    if (interpolation == IPPI_INTER_NN) {
        step = 1 / factor;
        position = step / 2;
    } else if (length * factor > 1) {
        step = (length - 1) / (length * factor - 1);
    }
    std::vector<Point> points;
    for (int j = 0; j < count; ++j, position += step) {
        const int64_t i = static_cast<int64_t>(position + 1e-7);
        const int64_t at = offset + i;
        const int64_t last = samples - 1;
        Point point;
        if (interpolation == IPPI_INTER_NN) {
            point.index = std::min(at, last);
        } else if (interpolation == IPPI_INTER_LINEAR) {
            point = at >= last ? Lerp(last - 1, last, 1.0) : Lerp(at, at + 1, position - i);
        } else if (interpolation == IPPI_INTER_CUBIC) {
            point.form = Form::Newton;
            if (at >= last) {
                point.index = last - 2;
                point.t = 2.0;
            } else {
                const int64_t shift = at == last - 1 ? -1 : at == 0 ? 1 : 0;
                point.index = at + shift;
                point.t = position - static_cast<double>(i + shift);
            }
        } else {
            point = Lanczos(at, position - i, samples);
        }
        points.push_back(point);
    }
    return points;
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

std::vector<Point> AreaAxis(int interpolation, double factor, double shift, int64_t first, int count, int samples)
{
    const double dx = 1 / factor;
    const double off = -shift / factor;
    std::vector<Point> points;
    for (int64_t d = first; d < first + count; ++d) {
        Point point;
        if (interpolation == IPPI_INTER_NN) {
            point.index = Clamp(static_cast<int64_t>((d + 0.5) * dx - 1e-10 + off), samples);
            points.push_back(point);
            continue;
        }
        const double p = (d + 0.5) * dx - 0.5 + off;
        const int64_t i = static_cast<int64_t>(std::floor(p));
        const double t = p - i;
        if (interpolation == IPPI_INTER_LINEAR) {
            point = Lerp(Clamp(i, samples), Clamp(i + 1, samples), t);
        } else if (interpolation == IPPI_INTER_CUBIC) {
            point.form = Form::Weighted;
            for (int k = -1; k <= 2; ++k)
                point.taps.push_back({Clamp(i + k, samples), CubicKernel(k - t)});
        } else {
            point = Lanczos(i, t, samples);
        }
        points.push_back(point);
    }
    return points;
}

double Along(const Point& point, const std::function<double(int64_t)>& sample)
{
    switch (point.form) {
    case Form::Nearest: return sample(point.index);
    case Form::Lerp: return sample(point.index) + (sample(point.next) - sample(point.index)) * point.t;
    case Form::Newton: {
        const double p = sample(point.index - 1), q = sample(point.index), r = sample(point.index + 1),
                     s = sample(point.index + 2);
        const double d1 = q - p, d2 = r - q - d1, d3 = q - 2 * r + s - d2, t = point.t;
        return p + d1 * (1 + t) + d2 * t * (1 + t) / 2 + d3 * (t - 1) * t * (1 + t) / 6;
    }
    case Form::Weighted: {
        double sum = 0;
        for (const auto& tap : point.taps)
            sum += sample(tap.first) * tap.second;
        return sum;
    }
    }
    return 0;
}

// Linear on bytes: a row sum with 6 fractional bits, then the column to the byte.
double FixedLinear(const Source& src, const Point& column, const Point& row, int c)
{
    auto rowSum = [&](int64_t y) {
        const int64_t s0 = static_cast<int64_t>(src.sample(static_cast<int>(column.index), static_cast<int>(y), c));
        const int64_t s1 = static_cast<int64_t>(src.sample(static_cast<int>(column.next), static_cast<int>(y), c));
        return ((16384 - column.fixedT) * s0 + column.fixedT * s1 + 128) >> 8;
    };
    return static_cast<double>(((16384 - row.fixedT) * rowSum(row.index) + row.fixedT * rowSum(row.next) + 0x80000) >>
                               20);
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
                if (src.bytes && column.form == Form::Lerp) {
                    out.values.push_back(FixedLinear(src, column, row, c));
                    continue;
                }
                out.values.push_back(Along(row, [&](int64_t y) {
                    return Along(column, [&](int64_t x) {
                        return src.sample(static_cast<int>(x), static_cast<int>(y), c);
                    });
                }));
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

// The value a member stores for an exact value: bytes of cubic and Lanczos are v + 0.5000001,
// truncated and limited; linear bytes are exact integers already.
double Stored(double value, const Expected& expected)
{
    if (!expected.bytes || expected.interpolation == IPPI_INTER_NN || expected.interpolation == IPPI_INTER_LINEAR)
        return value;
    return std::min(255.0, std::max(0.0, std::trunc(value + 0.5000001)));
}

bool Close(double actual, double value, const Expected& expected)
{
    const double stored = Stored(value, expected);
    if (actual == stored)
        return true;
    if (expected.bytes) {
        // Single-precision passes may round the other way when the exact value lies on a half.
        const double lifted = value + 0.5000001;
        const bool nearHalf = std::fabs(lifted - std::round(lifted)) < 1e-3;
        return expected.interpolation != IPPI_INTER_NN && expected.interpolation != IPPI_INTER_LINEAR && nearHalf &&
               std::fabs(actual - stored) <= 1;
    }
    if (expected.interpolation == IPPI_INTER_NN)
        return false;
    return std::fabs(actual - value) <= 2e-6 * std::max(1.0, std::fabs(value));
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
    out.interpolation = ReducedForCorners(interpolation, src.size);
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
    out.interpolation = ReducedForAreas(interpolation, src.size);
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
    const int sampleBytes = expected.bytes ? 1 : 4;
    const int pixelBytes = sampleBytes * expected.channels;
    for (int y = 0; y < dstSize.height; ++y)
        for (int x = 0; x < dstSize.width; ++x)
            for (int c = 0; c < expected.channels; ++c) {
                const size_t offset = static_cast<size_t>(y) * dstStep + static_cast<size_t>(x) * pixelBytes +
                                      static_cast<size_t>(c) * sampleBytes;
                const int bx = static_cast<int>(x - expected.firstColumn);
                const int by = static_cast<int>(y - expected.firstRow);
                const bool inside = bx >= 0 && bx < expected.columns && by >= 0 && by < expected.rows;
                if (!inside) {
                    if (std::memcmp(dstOrigin + offset, sentinel.data() + offset, sampleBytes) != 0)
                        return testing::AssertionFailure() << "written outside the block at " << x << "," << y;
                    continue;
                }
                double actual = dstOrigin[offset];
                if (!expected.bytes) {
                    float sample;
                    std::memcpy(&sample, dstOrigin + offset, sizeof sample);
                    actual = sample;
                }
                const double value = expected.At(bx, by, c);
                if (!Close(actual, value, expected))
                    return testing::AssertionFailure() << "pixel " << x << "," << y << " channel " << c << ": got "
                                                       << actual << ", exact value " << value;
            }
    return testing::AssertionSuccess();
}

} // namespace ResizeReference
