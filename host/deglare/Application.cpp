#include "Application.h"

#include <new>

#include "Demo.h"
#include "EffectModule.h"
#include "MediaInput.h"
#include "FlashRuns.h"
#include "OutputMuxer.h"
#include "Pipeline.h"
#include "PlotWriter.h"
#include "PresetFile.h"
#include "ReportWriter.h"
#include "SliderPositions.h"
#include "Summary.h"
#include "TemporaryOutput.h"
#include "VideoEncoder.h"

namespace Deglare {

namespace {
// The effect's parameters: its defaults, then a stock or saved preset, then the sliders given one
// by one.
EffectSettings ChooseSettings(const Options& options, const EffectModule& module)
{
    EffectSettings settings = module.Defaults();
    if (!options.preset.empty())
        settings = module.Preset(options.preset);
    if (!options.presetFile.empty())
        settings = ReadPresetFile(options.presetFile, module.Library(), module.Effect());
    if (options.sensitivity)
        settings.sensitivityPosition = SensitivityPosition(*options.sensitivity);
    if (options.maxFrames)
        settings.maxFramesPosition = MaxFramesPosition(*options.maxFrames);
    if (options.testMode)
        settings.testMode = true;
    return settings;
}

std::string PlotTitle(const std::string& input, const std::vector<FrameRecord>& records)
{
    const size_t slash = input.find_last_of('/');
    const std::string name = slash == std::string::npos ? input : input.substr(slash + 1);
    const size_t flashes = FindFlashRuns(records).size();
    const int replaced = CountReplaced(records);
    return name + ": " + std::to_string(flashes) + (flashes == 1 ? " flash, " : " flashes, ") +
           std::to_string(replaced) + (replaced == 1 ? " frame replaced" : " frames replaced");
}

} // namespace

RunResult CleanFile(const Options& options, Console& console, const std::atomic<bool>* interrupted)
{
    // What can be refused without reading anything is refused first.
    if (!options.analyze)
        VideoEncoder::FindEncoder(options.encoder.codec);
    MediaInput::CheckReadable(options.input);
    if (!options.analyze) {
        TemporaryOutput::Check(options.output, options.input);
        OutputMuxer::FormatFor(options.output);
    }
    for (const std::string* path : {&options.report, &options.plot})
        if (!path->empty())
            TemporaryOutput::Check(*path, options.input);

    EffectModule module(options.bundle.empty() ? EffectModule::BundleBesideProgram() : options.bundle);
    RunSettings run;
    run.input = options.input;
    run.output = options.output;
    run.effect = ChooseSettings(options, module);
    run.encoder = options.encoder;
    run.encoder.threads = options.threads;
    run.sequential = options.sequential;
    run.analyze = options.analyze;
    // The effect measures for its decisions; the host measures only for a report or a plot.
    run.measure = !options.report.empty() || !options.plot.empty();
    run.threads = options.threads;
    run.memoryBudget = static_cast<size_t>(options.memoryMegabytes) << 20;
    run.interrupted = interrupted;

    RunResult result = Pipeline(module.Effect(), console).Run(run);

    if (!options.report.empty()) {
        ReportContext context;
        context.input = options.input;
        context.settings = run.effect;
        context.sequential = options.sequential;
        context.seconds = result.seconds;
        WriteReport(options.report, context, result.frames);
    }
    if (!options.plot.empty())
        WritePlot(options.plot, PlotTitle(options.input, result.frames), result.frames, options.input);
    return result;
}

ExitStatus RunApplication(const Options& options, Console& console, std::ostream& out,
                          const std::atomic<bool>* interrupted)
{
    try {
        if (options.demo) {
            RunDemo(options, console, out, interrupted);
            return ExitStatus::Success;
        }
        const RunResult result = CleanFile(options, console, interrupted);
        if (options.analyze)
            for (const std::string& line : RunLines(result.frames))
                out << line << '\n';
        if (!options.quiet)
            out << SummaryLine(result.frames, result.seconds) << std::endl;
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
