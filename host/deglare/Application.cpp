#include "Application.h"

#include <new>

#include "EffectModule.h"
#include "MediaInput.h"
#include "OutputMuxer.h"
#include "Pipeline.h"
#include "SliderPositions.h"
#include "Summary.h"
#include "TemporaryOutput.h"
#include "VideoEncoder.h"

namespace Deglare {

namespace {
// The effect's parameters: its defaults, then a preset, then the sliders given one by one.
EffectSettings ChooseSettings(const Options& options, const EffectModule& module)
{
    EffectSettings settings = module.Defaults();
    if (!options.preset.empty())
        settings = module.Preset(options.preset);
    if (options.sensitivity)
        settings.sensitivityPosition = SensitivityPosition(*options.sensitivity);
    if (options.maxFrames)
        settings.maxFramesPosition = MaxFramesPosition(*options.maxFrames);
    if (options.testMode)
        settings.testMode = true;
    return settings;
}

void CleanOrAnalyze(const Options& options, Console& console, std::ostream& out, const std::atomic<bool>* interrupted)
{
    // What can be refused without reading anything is refused first.
    if (!options.analyze) {
        VideoEncoder::FindEncoder(options.encoder.codec);
        OutputMuxer::FormatFor(options.output);
    }
    MediaInput::CheckReadable(options.input);
    if (!options.analyze)
        TemporaryOutput::Check(options.output, options.input);

    EffectModule module(options.bundle.empty() ? EffectModule::BundleBesideProgram() : options.bundle);
    RunSettings run;
    run.input = options.input;
    run.output = options.output;
    run.effect = ChooseSettings(options, module);
    run.encoder = options.encoder;
    run.encoder.threads = options.threads;
    run.sequential = options.sequential;
    run.analyze = options.analyze;
    run.measure = options.analyze || !options.report.empty() || !options.plot.empty();
    run.threads = options.threads;
    run.memoryBudget = static_cast<size_t>(options.memoryMegabytes) << 20;
    run.interrupted = interrupted;

    const RunResult result = Pipeline(module.Effect(), console).Run(run);

    if (options.analyze)
        for (const std::string& line : RunLines(result.frames))
            out << line << '\n';
    if (!options.quiet)
        out << SummaryLine(result.frames, result.seconds) << std::endl;
}
} // namespace

ExitStatus RunApplication(const Options& options, Console& console, std::ostream& out,
                          const std::atomic<bool>* interrupted)
{
    try {
        CleanOrAnalyze(options, console, out, interrupted);
        return ExitStatus::Success;
    } catch (const Failure& failure) {
        console.Error(failure.what());
        return failure.Status();
    } catch (const std::bad_alloc&) {
        console.Error(options.input + ": out of memory");
        return ExitStatus::Failure;
    } catch (const std::exception& error) {
        console.Error(options.input + ": " + error.what());
        return ExitStatus::Failure;
    }
}

} // namespace Deglare
