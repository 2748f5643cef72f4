// Rendering with time access: each frame is decided afresh from the brightness history of its
// neighbourhood, so frames may be rendered in any order, on any thread, with the same result.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cmath>
#include <deque>
#include <vector>

#include "../Common/Copy.h"
#include "../Common/Frame.h"
#include "../include/VideoHost.h"
#include "Deglarer.h"
#include "FramePosition.h"
#include "EffectParameters.h"
#include "HostFrame.h"
#include "MarkFlashedFrame.h"

namespace {

// A frame whose four bands add up to no more than this is never examined. A fixed number that
// happens to equal the factor of the threshold formula.
// All four bands level at once for this many frames ends a scan.
const int kQuietRun = 5;
// A raised stretch may go on for this many frames behind its start.
const int kLongestRaisedStretch = 6;
// With figures of 0 or more a step count stays below 1 / threshold <= 100; this bound only
// keeps negative float figures from overflowing the levels.
const int kMostStepsAtOnce = 1000;

int StepCount(float quotient)
{
    if (!(quotient > 0.0f))   // negative, or not a number when both figures are 0
        return 0;
    if (quotient >= static_cast<float>(kMostStepsAtOnce))
        return kMostStepsAtOnce;
    return static_cast<int>(quotient);
}

struct Step {
    int rise;
    int fall;
};

// Whole threshold steps between an earlier and a later figure of one band, each difference
// measured against the brighter of the two.
Step StepBetween(float earlier, float later, float threshold)
{
    return Step{StepCount((later - earlier) / (threshold * later)),
                StepCount((earlier - later) / (threshold * earlier))};
}

// The brightness and level series of the four bands over the contiguous frames first..Last().
// A level is a whole number of threshold steps relative to the current frame.
struct Window {
    int first = 0;
    std::deque<float> brightness[kIntensityBands];
    std::deque<int> level[kIntensityBands];

    int Size() const { return static_cast<int>(level[0].size()); }
    int Last() const { return first + Size() - 1; }
    // The frame's four bands added from 0.0, band 0 first.
    float Sum(int frame) const
    {
        float sum = 0.0f;
        for (int band = 0; band < kIntensityBands; ++band)
            sum += brightness[band][frame - first];
        return sum;
    }
};

// Grows the window from the current frame in both directions until all four bands have been
// level at once for kQuietRun frames, or the clip ends. A frame the host can't give counts as
// unchanged, band for band.
class CNeighbourhoodScan {
public:
    CNeighbourhoodScan(CDeglarer& effect, IVideoHost* host, RenderInfo* info, PixelFormat format, float threshold)
        : m_effect(effect), m_pHost(host), m_pInfo(info), m_format(format), m_threshold(threshold)
    {
    }

    void Scan(int current, int total, const Intensities& measured, Window& window)
    {
        window.first = current;
        for (int band = 0; band < kIntensityBands; ++band) {
            window.brightness[band].push_back(measured.fBand[band]);
            window.level[band].push_back(0);
        }
        ScanBackward(current, measured, window);
        ScanForward(current, total, measured, window);
    }

private:
    struct Stillness {
        int frames[kIntensityBands] = {0, 0, 0, 0};
        bool Quiet() const
        {
            for (int count : frames)
                if (count < kQuietRun)
                    return false;
            return true;
        }
    };

    void ScanBackward(int current, const Intensities& measured, Window& window)
    {
        Intensities later = measured;
        Stillness still;
        for (int frame = current - 1; frame >= 0 && !still.Quiet(); --frame) {
            const Intensities figures = m_effect.GetAverageIntensity(frame, m_pHost, m_pInfo, m_format);
            const bool delivered = figures.AllAtLeastZero();
            for (int band = 0; band < kIntensityBands; ++band) {
                std::deque<float>& brightness = window.brightness[band];
                std::deque<int>& level = window.level[band];
                if (delivered) {
                    const Step step = StepBetween(figures.fBand[band], later.fBand[band], m_threshold);
                    brightness.push_front(figures.fBand[band]);
                    level.push_front(level.front() - step.rise + step.fall);
                    still.frames[band] = step.rise == step.fall ? still.frames[band] + 1 : 0;
                } else {
                    brightness.push_front(brightness.front());
                    level.push_front(level.front());
                    ++still.frames[band];
                }
            }
            if (delivered)
                later = figures;
            window.first = frame;
        }
    }

    void ScanForward(int current, int total, const Intensities& measured, Window& window)
    {
        Intensities earlier = measured;
        Stillness still;
        for (int frame = current + 1; frame < total && !still.Quiet(); ++frame) {
            const Intensities figures = m_effect.GetAverageIntensity(frame, m_pHost, m_pInfo, m_format);
            const bool delivered = figures.AllAtLeastZero();
            for (int band = 0; band < kIntensityBands; ++band) {
                std::deque<float>& brightness = window.brightness[band];
                std::deque<int>& level = window.level[band];
                if (delivered) {
                    const Step step = StepBetween(earlier.fBand[band], figures.fBand[band], m_threshold);
                    brightness.push_back(figures.fBand[band]);
                    level.push_back(level.back() + step.rise - step.fall);
                    still.frames[band] = step.rise == step.fall ? still.frames[band] + 1 : 0;
                } else {
                    brightness.push_back(brightness.back());
                    level.push_back(level.back());
                    ++still.frames[band];
                }
            }
            if (delivered)
                earlier = figures;
        }
    }

    CDeglarer& m_effect;
    IVideoHost* m_pHost;
    RenderInfo* m_pInfo;
    PixelFormat m_format;
    float m_threshold;
};

// Marks in `flagged` the window positions that one band calls flashed: a climb above the level
// at which the window began, or a frame that stayed raised just behind a climb seen from both
// directions of time.
void FlagBand(const std::deque<float>& brightness, const std::deque<int>& level, float threshold,
              std::vector<char>& flagged)
{
    const int size = static_cast<int>(level.size());
    std::vector<char> flag(size, 0);
    std::vector<char> seen(size, 0);
    // True when frame `at` is still raised above frame `open` by more than the threshold, within
    // the longest raised stretch.
    auto staysRaised = [&](int at, int open) {
        const float raise = (brightness[at] - brightness[open]) / brightness[at];
        return raise > threshold && std::abs(at - open) <= kLongestRaisedStretch;
    };

    int open = -1;
    for (int p = 1; p < size; ++p) {
        if (level[p] > level[p - 1]) {
            if (level[p] > level[0]) {
                flag[p] = seen[p] = 1;
                if (open < 0)
                    open = p - 1;
            }
        } else if (open >= 0) {
            if (staysRaised(p, open))
                flag[p] = 1;
            else
                open = -1;
        }
    }

    open = -1;
    for (int k = size - 2; k >= 0; --k) {
        bool raised = false;
        if (level[k] > level[k + 1]) {
            if (level[k] > level[size - 1]) {
                raised = true;
                if (open < 0)
                    open = k + 1;
            }
        } else if (open >= 0) {
            if (staysRaised(k, open))
                raised = true;
            else
                open = -1;
        }
        // A climb of the forward pass stays flagged whatever this pass says.
        if (!seen[k]) {
            flag[k] = flag[k] && raised;
            seen[k] = 1;
        }
    }

    for (int p = 0; p < size; ++p)
        if (flag[p] && seen[p])
            flagged[p] = 1;
}

// A frame is flagged if any band flags it.
std::vector<char> FlaggedPositions(const Window& window, float threshold)
{
    std::vector<char> flagged(window.Size(), 0);
    for (int band = 0; band < kIntensityBands; ++band)
        FlagBand(window.brightness[band], window.level[band], threshold, flagged);
    return flagged;
}

struct Run {
    int start;
    int end;
};

// The flagged frames around the current one, if a clean frame stands behind them.
bool FindRun(const Window& window, const std::vector<char>& flagged, int current, int total, Run* run)
{
    auto isFlagged = [&](int frame) { return flagged[frame - window.first] != 0; };
    int below = current - 1;
    while (below >= window.first && below >= 0 && isFlagged(below))
        --below;
    run->start = below + 1;
    for (int above = current + 1; above <= window.Last() && above < total; ++above)
        if (!isFlagged(above)) {
            run->end = above - 1;
            return true;
        }
    return false;
}

// Marks the run's "Max Frames" brightest frames for replacement; among equal sums the earliest.
std::vector<char> FramesToReplace(std::vector<float> sums, int limit)
{
    const int length = static_cast<int>(sums.size());
    std::vector<char> replace(length, 0);
    for (int picked = 0; picked < std::min(limit, length); ++picked) {
        float best = -1.0f;
        int brightest = -1;
        for (int j = 0; j < length; ++j)
            if (sums[j] > best) {
                best = sums[j];
                brightest = j;
            }
        if (brightest < 0)
            break;
        replace[brightest] = 1;
        sums[brightest] = -1.0f;
    }
    return replace;
}

// The nearest frame that isn't replaced: the run's ends come first, then the dimmer of two free
// neighbours at one distance, the earlier on a tie.
int ChooseSubstitute(int frame, const Run& run, int total, const std::vector<float>& sums,
                     const std::vector<char>& replace)
{
    for (int distance = 1;; ++distance) {
        const int down = frame - distance;
        const int up = frame + distance;
        if (down < run.start)
            return std::max(run.start - 1, 0);
        if (up > run.end)
            return std::min(run.end + 1, total - 1);
        const bool downFree = !replace[down - run.start];
        const bool upFree = !replace[up - run.start];
        if (downFree && upFree)
            return sums[up - run.start] < sums[down - run.start] ? up : down;
        if (downFree)
            return down;
        if (upFree)
            return up;
    }
}

void CopyFrame(CFrame& from, CFrame& to)
{
    Processors::CCopy().Process(&from, &to);
}

} // namespace

bool CDeglarer::RenderUsingTimeAccess(IVideoHost* host, FrameParams* source, FrameParams*, FrameParams* destination,
                                      RenderInfo* info)
{
    try {
        const DecodedParameters parameters = DecodeParameters(host);
        CFrame sourceFrame;
        CFrame destinationFrame;
        sourceFrame.Init(source);
        destinationFrame.Init(destination);

        const int current = CurrentFrameIndex(*info);
        const int total = FrameIndexOf(info->dClipLength * info->dFrameRate);

        const Intensities measured = GetAverageIntensity(current, sourceFrame);
        // A dark frame is never examined. The first frame has no clean frame before it and the
        // last none behind it, so neither is ever replaced.
        if (!(measured.Sum() > kDarknessLimit) || current <= 0 || current >= total - 1) {
            CopyFrame(sourceFrame, destinationFrame);
            return true;
        }

        Window window;
        CNeighbourhoodScan(*this, host, info, sourceFrame.m_pfPixelFormat, parameters.threshold)
            .Scan(current, total, measured, window);
        const std::vector<char> flagged = FlaggedPositions(window, parameters.threshold);

        Run run;
        if (!flagged[current - window.first] || !FindRun(window, flagged, current, total, &run)) {
            CopyFrame(sourceFrame, destinationFrame);
            return true;
        }

        std::vector<float> sums;
        for (int frame = run.start; frame <= run.end; ++frame)
            sums.push_back(window.Sum(frame));
        const std::vector<char> replace = FramesToReplace(sums, parameters.limit);

        if (!replace[current - run.start]) {
            // Flagged, but "Max Frames" spares it.
            CopyFrame(sourceFrame, destinationFrame);
            if (parameters.test)
                MarkFlashedFrame(destinationFrame, kSparedFrameColour);
            return true;
        }

        const int substitute =
            std::min(std::max(ChooseSubstitute(current, run, total, sums, replace), 0), total - 1);
        CHostFrame fetched(host, sourceFrame.m_pfPixelFormat);
        if (!fetched.Fetch(substitute, info)) {
            CopyFrame(sourceFrame, destinationFrame);
        } else if (!parameters.test) {
            CopyFrame(fetched.Frame(), destinationFrame);
        } else {
            CopyFrame(sourceFrame, destinationFrame);
            MarkFlashedFrame(destinationFrame, kReplacedFrameColour);
        }
        return true;
    } catch (...) {
        // Whatever failed, the frame passes unchanged.
        return CopySourceToDestination(source, destination);
    }
}
