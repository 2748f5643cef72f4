#pragma once
#include <atomic>
#include <cstddef>
#include <string>
#include <vector>

#include "../../include/VideoEffect.h"
#include "Console.h"
#include "EffectSettings.h"
#include "EncoderSettings.h"
#include "FrameRecord.h"

namespace Deglare {

struct RunSettings {
    std::string input;
    std::string output;                 // not used by an analysis
    EffectSettings effect;
    EncoderSettings encoder;
    bool sequential = false;            // play a host without time access
    bool analyze = false;               // decisions only, no output
    bool measure = false;               // band figures for a report or plot
    int threads = 0;                    // render threads; 0: one for every two processors
    size_t memoryBudget = size_t(1024) << 20;
    const std::atomic<bool>* interrupted = nullptr;   // set from outside to stop the run
};

struct RunResult {
    std::vector<FrameRecord> frames;    // every frame decoded, in order
    int indexedFrames = 0;              // frames the stream holds by its packets
    double seconds = 0.0;
    long farDecodedFrames = 0;          // frames decoded apart from the main pass
    int windowFrames = 0;
};

// One run over a file: decoding on one thread, rendering through the effect on several, and
// encoding and writing in order on the calling thread, with the other streams copied as they
// are read. The output appears only when all went well. Throws Failure.
class Pipeline {
public:
    Pipeline(IVideoEffect* effect, Console& console);
    RunResult Run(const RunSettings& settings);

private:
    IVideoEffect* m_effect;
    Console& m_console;
};

} // namespace Deglare
