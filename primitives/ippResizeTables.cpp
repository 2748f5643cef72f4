#include <algorithm>
#include <cmath>

#include "ippResize.h"
#include "ippResizeEngine.h"

// Entry j is L(j / 100) rounded to single precision; the zeros of L at 1, 2 and 3 are exact, so a
// whole-pixel distance weighs exactly nothing and a factor of 1 copies.
const float _tblLanczos3[304] = {
    0x1.0p+0f, 0x1.ffe80cp-1f, 0x1.ffa032p-1f, 0x1.ff2884p-1f, 0x1.fe8114p-1f,
    0x1.fdaa04p-1f, 0x1.fca37cp-1f, 0x1.fb6daep-1f, 0x1.fa08d2p-1f, 0x1.f8753p-1f,
    0x1.f6b30ep-1f, 0x1.f4c2c6p-1f, 0x1.f2a4bp-1f, 0x1.f05936p-1f, 0x1.ede0c6p-1f,
    0x1.eb3bd4p-1f, 0x1.e86aep-1f, 0x1.e56e72p-1f, 0x1.e24716p-1f, 0x1.def566p-1f,
    0x1.db79fep-1f, 0x1.d7d584p-1f, 0x1.d408a4p-1f, 0x1.d01416p-1f, 0x1.cbf894p-1f,
    0x1.c7b6dep-1f, 0x1.c34fcp-1f, 0x1.bec408p-1f, 0x1.ba148cp-1f, 0x1.b5422ap-1f,
    0x1.b04dcp-1f, 0x1.ab3838p-1f, 0x1.a6028p-1f, 0x1.a0ad88p-1f, 0x1.9b3a48p-1f,
    0x1.95a9bcp-1f, 0x1.8ffce6p-1f, 0x1.8a34c8p-1f, 0x1.84527p-1f, 0x1.7e56e6p-1f,
    0x1.78433ep-1f, 0x1.721888p-1f, 0x1.6bd7ep-1f, 0x1.65825cp-1f, 0x1.5f191cp-1f,
    0x1.589d3ap-1f, 0x1.520fdcp-1f, 0x1.4b722p-1f, 0x1.44c52ep-1f, 0x1.3e0a28p-1f,
    0x1.374238p-1f, 0x1.306e84p-1f, 0x1.299034p-1f, 0x1.22a87p-1f, 0x1.1bb86p-1f,
    0x1.14c12ap-1f, 0x1.0dc3fap-1f, 0x1.06c1f2p-1f, 0x1.ff7872p-2f, 0x1.f167e8p-2f,
    0x1.e3548cp-2f, 0x1.d5409cp-2f, 0x1.c72e58p-2f, 0x1.b91ffap-2f, 0x1.ab17b4p-2f,
    0x1.9d17b6p-2f, 0x1.8f222ap-2f, 0x1.81393p-2f, 0x1.735ee6p-2f, 0x1.65955ep-2f,
    0x1.57dea6p-2f, 0x1.4a3cc2p-2f, 0x1.3cb1aep-2f, 0x1.2f3f5ep-2f, 0x1.21e7bap-2f,
    0x1.14aca4p-2f, 0x1.078ff2p-2f, 0x1.f526dap-3f, 0x1.db71b4p-3f, 0x1.c203d8p-3f,
    0x1.a8e09ep-3f, 0x1.900b42p-3f, 0x1.7786ecp-3f, 0x1.5f56aap-3f, 0x1.477d7p-3f,
    0x1.2ffe1ap-3f, 0x1.18db68p-3f, 0x1.021802p-3f, 0x1.d76ce8p-4f, 0x1.ab7262p-4f,
    0x1.80451cp-4f, 0x1.55e98cp-4f, 0x1.2c63fp-4f, 0x1.03b848p-4f, 0x1.b7d4c4p-5f,
    0x1.69fba2p-5f, 0x1.1debd4p-5f, 0x1.a7573ap-6f, 0x1.168186p-6f, 0x1.12c266p-7f,
    0.0f, -0x1.0b327ap-7f, -0x1.07629ap-6f, -0x1.855514p-6f, -0x1.ff6a8ep-6f,
    -0x1.3aceeep-5f, -0x1.73f554p-5f, -0x1.ab26cap-5f, -0x1.e0620ep-5f, -0x1.09d326p-4f,
    -0x1.227994p-4f, -0x1.3a2456p-4f, -0x1.50d3aap-4f, -0x1.668806p-4f, -0x1.7b4212p-4f,
    -0x1.8f02aep-4f, -0x1.a1caeap-4f, -0x1.b39c0ep-4f, -0x1.c47792p-4f, -0x1.d45f1ep-4f,
    -0x1.e3548cp-4f, -0x1.f159e4p-4f, -0x1.fe715ep-4f, -0x1.054eaep-3f, -0x1.0af03ap-3f,
    -0x1.101eaep-3f, -0x1.14db7ep-3f, -0x1.19283p-3f, -0x1.1d066p-3f, -0x1.2077b8p-3f,
    -0x1.237dfap-3f, -0x1.261af8p-3f, -0x1.285092p-3f, -0x1.2a20bep-3f, -0x1.2b8d7ap-3f,
    -0x1.2c98dap-3f, -0x1.2d44fap-3f, -0x1.2d940ap-3f, -0x1.2d884p-3f, -0x1.2d23e2p-3f,
    -0x1.2c6942p-3f, -0x1.2b5ab8p-3f, -0x1.29faaap-3f, -0x1.284b84p-3f, -0x1.264fbcp-3f,
    -0x1.2409cep-3f, -0x1.217c3cp-3f, -0x1.1ea994p-3f, -0x1.1b945ep-3f, -0x1.183f32p-3f,
    -0x1.14aca4p-3f, -0x1.10df4ep-3f, -0x1.0cd9c8p-3f, -0x1.089eb4p-3f, -0x1.0430acp-3f,
    -0x1.ff249ap-4f, -0x1.f58c6ap-4f, -0x1.eb9ep-4f, -0x1.e15e8ap-4f, -0x1.d6d338p-4f,
    -0x1.cc012cp-4f, -0x1.c0ed88p-4f, -0x1.b59d5ap-4f, -0x1.aa15bp-4f, -0x1.9e5b84p-4f,
    -0x1.9273c8p-4f, -0x1.86635ap-4f, -0x1.7a2f0ep-4f, -0x1.6ddba6p-4f, -0x1.616dcep-4f,
    -0x1.54ea26p-4f, -0x1.485534p-4f, -0x1.3bb36ep-4f, -0x1.2f0932p-4f, -0x1.225ac8p-4f,
    -0x1.15ac5ep-4f, -0x1.09021p-4f, -0x1.f8bfb2p-5f, -0x1.df9344p-5f, -0x1.c68666p-5f,
    -0x1.ada07cp-5f, -0x1.94e8aap-5f, -0x1.7c65e2p-5f, -0x1.641edap-5f, -0x1.4c1a0ap-5f,
    -0x1.345db2p-5f, -0x1.1cefd8p-5f, -0x1.05d63cp-5f, -0x1.de2cd6p-6f, -0x1.b16b56p-6f,
    -0x1.857212p-6f, -0x1.5a4a9cp-6f, -0x1.2ffe0cp-6f, -0x1.0694fcp-6f, -0x1.bc2f02p-7f,
    -0x1.6d1a66p-7f, -0x1.1ffa52p-7f, -0x1.a9b7eap-8f, -0x1.1796fap-8f, -0x1.13506ap-9f,
    0.0f, 0x1.0a9e6ap-9f, 0x1.0634eep-8f, 0x1.82a2ap-8f, 0x1.fa8baap-8f,
    0x1.36f2a6p-7f, 0x1.6e5358p-7f, 0x1.a36466p-7f, 0x1.d6233ap-7f, 0x1.03470ep-6f,
    0x1.1a522p-6f, 0x1.3032d6p-6f, 0x1.44e9a2p-6f, 0x1.587762p-6f, 0x1.6add5ap-6f,
    0x1.7c1d3p-6f, 0x1.8c38f4p-6f, 0x1.9b330ep-6f, 0x1.a90e48p-6f, 0x1.b5cdc6p-6f,
    0x1.c17504p-6f, 0x1.cc07cep-6f, 0x1.d58a48p-6f, 0x1.de00dep-6f, 0x1.e5704ep-6f,
    0x1.ebdd96p-6f, 0x1.f14dfep-6f, 0x1.f5c71p-6f, 0x1.f94e8ep-6f, 0x1.fbea7ep-6f,
    0x1.fda114p-6f, 0x1.fe78bep-6f, 0x1.fe7816p-6f, 0x1.fda5e8p-6f, 0x1.fc0926p-6f,
    0x1.f9a8e8p-6f, 0x1.f68c68p-6f, 0x1.f2bb04p-6f, 0x1.ee3c3p-6f, 0x1.e9177cp-6f,
    0x1.e3548cp-6f, 0x1.dcfb12p-6f, 0x1.d612d6p-6f, 0x1.cea3a2p-6f, 0x1.c6b55p-6f,
    0x1.be4fb8p-6f, 0x1.b57ab6p-6f, 0x1.ac3e26p-6f, 0x1.a2a1dap-6f, 0x1.98ada2p-6f,
    0x1.8e693ep-6f, 0x1.83dc64p-6f, 0x1.790eb8p-6f, 0x1.6e07cap-6f, 0x1.62cf12p-6f,
    0x1.576bf6p-6f, 0x1.4be5bcp-6f, 0x1.40438ap-6f, 0x1.348c6cp-6f, 0x1.28c748p-6f,
    0x1.1cfae2p-6f, 0x1.112dd2p-6f, 0x1.05668ep-6f, 0x1.f356cp-7f, 0x1.dc04c6p-7f,
    0x1.c4e30ap-7f, 0x1.adfd0ep-7f, 0x1.975deep-7f, 0x1.81105ep-7f, 0x1.6b1eaep-7f,
    0x1.5592c4p-7f, 0x1.407618p-7f, 0x1.2bd1b4p-7f, 0x1.17ae3p-7f, 0x1.0413b8p-7f,
    0x1.e213f6p-8f, 0x1.bd3078p-8f, 0x1.998a88p-8f, 0x1.772eccp-8f, 0x1.5628fep-8f,
    0x1.3683eap-8f, 0x1.184966p-8f, 0x1.f704bap-9f, 0x1.c06d98p-9f, 0x1.8cdb7cp-9f,
    0x1.5c5aa6p-9f, 0x1.2ef578p-9f, 0x1.04b484p-9f, 0x1.bb3d0ep-10f, 0x1.7370eep-10f,
    0x1.320afep-10f, 0x1.ee1c34p-11f, 0x1.84f354p-11f, 0x1.289362p-11f, 0x1.b1db86p-12f,
    0x1.2bdaa6p-12f, 0x1.7dda4ap-13f, 0x1.ab3e34p-14f, 0x1.79927p-15f, 0x1.7741a6p-17f,
    0.0f, 0.0f, 0.0f, 0.0f,
};

namespace ResizeEngine {

namespace {

const int kLanczosTaps = kMaxTaps;
const int kCubicTaps = 4;
const double kFixedRounding = 1e-7;   // lifts fractions that fall a hair short of a 14-bit step

int64_t Clamp(int64_t value, int64_t low, int64_t high)
{
    return std::min(std::max(value, low), high);
}

// Taps that fall outside the picture read its edge sample; along a row their weights move onto
// that sample, and the window slides inside the picture. Needs at least `taps` samples.
void FoldIntoPicture(int64_t& firstTap, float* weights, int taps, int samples)
{
    if (firstTap >= 0 && firstTap + taps <= samples)
        return;
    const int64_t windowStart = Clamp(firstTap, 0, samples - taps);
    float folded[kLanczosTaps] = {};
    for (int k = 0; k < taps; ++k)
        folded[Clamp(firstTap + k, 0, samples - 1) - windowStart] += weights[k];
    std::copy(folded, folded + taps, weights);
    firstTap = windowStart;
}

void StoreTaps(AxisTable& table, int position, int64_t firstTap, const float* weights, int taps, bool along)
{
    // Every tap of a first tap beyond these bounds reads the same edge sample as at the bound.
    firstTap = Clamp(firstTap, -(taps - 1), table.samples - 1);
    float* stored = table.weights + static_cast<ptrdiff_t>(position) * taps;
    std::copy(weights, weights + taps, stored);
    if (along)
        FoldIntoPicture(firstTap, stored, taps, table.samples);
    table.first[position] = static_cast<int32_t>(firstTap);
}

// The third-order polynomial through samples at -1, 0, 1 and 2, evaluated at t, as weights.
void CubicWeights(double t, float* weights)
{
    weights[0] = static_cast<float>(-t * (t - 1) * (t - 2) / 6);
    weights[1] = static_cast<float>((t + 1) * (t - 1) * (t - 2) / 2);
    weights[2] = static_cast<float>(-(t + 1) * t * (t - 2) / 2);
    weights[3] = static_cast<float>((t + 1) * t * (t - 1) / 6);
}

// Weights of the samples at -2 to 3 for a position t past the third, from the table, divided by
// their sum so that a flat picture stays flat.
void LanczosWeights(double t, float* weights)
{
    double raw[kLanczosTaps];
    double sum = 0;
    for (int k = 0; k < kLanczosTaps; ++k) {
        const double distance = (k - 2) - t;
        raw[k] = 0;
        if (distance > -3 && distance < 3) {
            const double scaled = std::fabs(distance) * 100;
            const int entry = static_cast<int>(scaled);
            const double between = scaled - entry;
            raw[k] = _tblLanczos3[entry] + (_tblLanczos3[entry + 1] - _tblLanczos3[entry]) * between;
        }
        sum += raw[k];
    }
    for (int k = 0; k < kLanczosTaps; ++k)
        weights[k] = static_cast<float>(raw[k] / sum);
}

// The limits both index rules share; `round` turns a position within them into a whole number.
template <typename Round>
int64_t LimitedIndex(double position, Round round)
{
    const double limit = 1e12;
    if (!(position > -limit))
        return position < 0 ? static_cast<int64_t>(-limit) : 0;
    return static_cast<int64_t>(round(std::min(position, limit)));
}

} // namespace

bool KernelOf(int interpolation, Kernel& kernel)
{
    switch (interpolation) {
    case IPPI_INTER_NN: kernel = Kernel::Nearest; return true;
    case IPPI_INTER_LINEAR: kernel = Kernel::Linear; return true;
    case IPPI_INTER_CUBIC: kernel = Kernel::Cubic; return true;
    case IPPI_INTER_LANCZOS: kernel = Kernel::Lanczos; return true;
    default: return false;
    }
}

Kernel NarrowForSmallPicture(Kernel kernel, int width, int height, int lanczosSamples)
{
    const int smaller = std::min(width, height);
    if (kernel == Kernel::Lanczos && smaller < lanczosSamples)
        kernel = Kernel::Cubic;
    if (kernel == Kernel::Cubic && smaller < kCubicTaps)
        kernel = Kernel::Linear;
    return kernel;
}

int TapCount(Kernel kernel)
{
    switch (kernel) {
    case Kernel::Nearest: return 1;
    case Kernel::Linear: return 2;
    case Kernel::Cubic: return kCubicTaps;
    case Kernel::Lanczos: return kLanczosTaps;
    }
    return 1;
}

int64_t FloorIndex(double position)
{
    return LimitedIndex(position, [](double inRange) { return std::floor(inRange); });
}

int64_t TruncIndex(double position)
{
    return LimitedIndex(position, [](double inRange) { return inRange; });
}

void BeginAxis(AxisTable& table)
{
    table.leftEdge = 0;
    table.rightEdge = table.count;
}

void SetNearest(AxisTable& table, int position, int64_t index)
{
    table.first[position] = static_cast<int32_t>(Clamp(index, 0, table.samples - 1));
}

// A position left of the first sample or at or beyond the last takes that sample whole. Positions
// grow with the output index, so these form the ends of the table.
void SetLinear(AxisTable& table, int position, int64_t index, double fraction, bool fixedPoint)
{
    const bool left = index < 0;
    const bool right = !left && index >= table.samples - 1;
    if (left)
        table.leftEdge = position + 1;
    if (right)
        table.rightEdge = std::min(table.rightEdge, position);
    if (left || right)
        fraction = 0;
    table.first[position] = static_cast<int32_t>(left ? 0 : right ? table.samples - 1 : index);
    if (fixedPoint) {
        const auto second =
            static_cast<int16_t>(std::min(1.0 * kFixedOne, std::max(0.0, fraction * kFixedOne + kFixedRounding)));
        table.fixed[2 * position] = static_cast<int16_t>(kFixedOne - second);
        table.fixed[2 * position + 1] = second;
    } else
        table.weights[position] = static_cast<float>(fraction);
}

void SetCubic(AxisTable& table, int position, int64_t firstTap, double fraction, bool along)
{
    float weights[kCubicTaps];
    CubicWeights(fraction, weights);
    StoreTaps(table, position, firstTap, weights, kCubicTaps, along);
}

void SetLanczos(AxisTable& table, int position, int64_t firstTap, double fraction, bool along)
{
    float weights[kLanczosTaps];
    LanczosWeights(fraction, weights);
    StoreTaps(table, position, firstTap, weights, kLanczosTaps, along);
}

} // namespace ResizeEngine
