#include "Pipeline.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <future>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>

#include "ColourConverter.h"
#include "ExitStatus.h"
#include "FrameReader.h"
#include "FrameRenderer.h"
#include "FrameWindow.h"
#include "MediaInput.h"
#include "MemoryPlan.h"
#include "OutcomeQueue.h"
#include "OutputMuxer.h"
#include "Progress.h"
#include "RandomAccessReader.h"
#include "SliderPositions.h"
#include "StreamHost.h"
#include "TemporaryOutput.h"
#include "VideoEncoder.h"

namespace Deglare {

namespace {
const uint32_t kNormalInstance = 1;
const uint32_t kTestInstance = 2;
const auto kInterruptPoll = std::chrono::milliseconds(50);

int RenderThreads(const RunSettings& settings)
{
    if (settings.sequential)
        return 1;
    if (settings.threads > 0)
        return settings.threads;
    // Decoding a frame takes many times the work of rendering it, and the decoder and encoder
    // run threads of their own: renderers on every processor only crowd them out.
    return std::max(1, static_cast<int>(std::thread::hardware_concurrency()) / 2);
}

// One run's shared state: what the threads pass between them, and the first failure.
class Run {
public:
    Run(IVideoEffect* effect, Console& console, const RunSettings& settings)
        : m_effect(effect), m_console(console), m_settings(settings)
    {
    }

    RunResult Execute();

private:
    void Prepare();
    void StartOutput();
    void Decode();
    void Render();
    void Consume();
    void Encode(FrameOutcome& outcome);
    void Record(const FrameOutcome& outcome);
    void WatchForInterruption();

    DecodedFrame::Keep OriginalsKept() const;
    void Fail(std::exception_ptr failure);
    void CancelAll();
    void JoinAll();

    IVideoEffect* m_effect;
    Console& m_console;
    const RunSettings& m_settings;
    RunResult m_result;

    std::unique_ptr<MediaInput> m_input;
    FrameIndex m_index;
    ClipShape m_shape;
    int64_t m_origin = 0;
    AVRational m_timeBase = {1, 1};
    AVRational m_frameRate = {25, 1};
    int m_renderThreads = 1;
    MemoryPlan m_plan;

    ColourConverter m_converter;
    std::unique_ptr<RandomAccessReader> m_farFrames;
    std::unique_ptr<FrameWindow> m_window;
    std::unique_ptr<OutcomeQueue> m_queue;
    std::unique_ptr<StreamHost> m_normalHost;
    std::unique_ptr<StreamHost> m_testHost;

    std::unique_ptr<TemporaryOutput> m_temporary;
    std::unique_ptr<OutputMuxer> m_muxer;
    std::unique_ptr<VideoEncoder> m_encoder;
    std::unique_ptr<Progress> m_progress;

    std::vector<std::thread> m_threads;
    std::atomic<int> m_liveRenderers{0};
    std::mutex m_failureMutex;
    std::exception_ptr m_failure;
    std::atomic<bool> m_cancelled{false};
    std::atomic<bool> m_interrupted{false};
    std::mutex m_doneMutex;
    std::condition_variable m_doneChanged;
    bool m_done = false;
};

void Run::Prepare()
{
    m_input = std::make_unique<MediaInput>(m_settings.input);
    const AVStream* video = m_input->Video();
    m_shape.width = video->codecpar->width;
    m_shape.height = video->codecpar->height;
    m_renderThreads = RenderThreads(m_settings);
    const AVPixelFormat format = static_cast<AVPixelFormat>(video->codecpar->format);
    const size_t frameBytes = DecodedFrame::BytesFor(m_shape.width, m_shape.height, format);
    const size_t pictureBytes = Picture::BytesFor(m_shape.width, m_shape.height);
    const size_t outcomeBytes = m_settings.effect.testMode ? frameBytes : frameBytes - pictureBytes;
    m_plan = PlanMemory(m_settings.memoryBudget, frameBytes, pictureBytes, outcomeBytes, m_renderThreads,
                        DecodedMaxFrames(m_settings.effect.maxFramesPosition));

    // Fresh memory faults in a page at a time on first touch, and once decoding and rendering
    // have started that competes with them for the processors. Reading the packets for the index
    // keeps one processor busy, so the other readies the pictures that the filled window holds.
    std::future<void> warming;
    try {
        warming = std::async(std::launch::async,
                             [this] { m_converter.WarmPictures(m_shape.width, m_shape.height, m_plan.startPictures); });
    } catch (const std::system_error&) {
        // No thread to spare: the pictures fault in as they are first used.
    }
    m_index = MediaInput::IndexVideoFrames(m_settings.input, m_input->VideoIndex());
    if (warming.valid())
        warming.wait();
    if (m_index.Count() == 0)
        throw Failure(ExitStatus::NoVideoFrames, m_settings.input + ": its video stream holds no frames");
    m_shape.frameCount = m_index.Count();
    m_frameRate = NominalFrameRate(video);
    m_shape.frameRate = av_q2d(m_frameRate);
    m_timeBase = video->time_base;
    // Times count from the file's start, as a player's clock does: video that starts after its
    // audio (an MP4 edit list, a camera that begins recording sound first) starts past 0.
    const int64_t fileStart = m_input->Format()->start_time;
    m_origin = fileStart != AV_NOPTS_VALUE ? av_rescale_q(fileStart, AV_TIME_BASE_Q, video->time_base)
               : video->start_time != AV_NOPTS_VALUE ? video->start_time
                                                      : (m_index.Timed() ? m_index.PtsOf(0) : 0);
    m_result.indexedFrames = m_index.Count();

    if (m_plan.raised)
        m_console.Warn("--memory is too small for " + std::to_string(m_shape.width) + "x" +
                       std::to_string(m_shape.height) + " video; using " +
                       std::to_string((m_plan.plannedBytes >> 20) + 1) + " MB");
    m_result.windowFrames = m_plan.windowFrames;
}

void Run::StartOutput()
{
    m_temporary = std::make_unique<TemporaryOutput>(m_settings.output, m_settings.input);
    m_muxer = std::make_unique<OutputMuxer>(m_settings.output, m_temporary->Path());
    m_encoder = std::make_unique<VideoEncoder>(m_settings.encoder, m_input->Video(), m_muxer->WantsGlobalHeader(),
                                               m_console);
    const AVFormatContext* format = m_input->Format();
    for (unsigned int index = 0; index < format->nb_streams; ++index) {
        const AVStream* stream = format->streams[index];
        if (static_cast<int>(index) == m_input->VideoIndex())
            m_muxer->AddVideo(m_encoder->Context(), stream);
        else
            m_muxer->AddCopy(stream, m_console);
    }
    m_muxer->Start(format);
    m_encoder->KeepTimesIncreasing(m_muxer->VideoTimeBase());
}

// Only an encoding run needs the decoded pictures once the effect's pictures are made.
DecodedFrame::Keep Run::OriginalsKept() const
{
    return m_settings.analyze ? DecodedFrame::Keep::UntilConverted : DecodedFrame::Keep::ForEncoding;
}

void Run::Fail(std::exception_ptr failure)
{
    {
        std::lock_guard<std::mutex> lock(m_failureMutex);
        if (!m_failure)
            m_failure = failure;
    }
    CancelAll();
}

void Run::CancelAll()
{
    m_cancelled = true;
    if (m_window)
        m_window->Cancel();
    if (m_queue)
        m_queue->Cancel();
}

void Run::Decode()
{
    try {
        FrameReader reader(std::move(m_input), m_index, m_settings.encoder.threads);
        if (m_muxer) {
            const AVFormatContext* format = reader.Input().Format();
            reader.SetOtherPackets([this, format](AVPacket* packet) {
                m_muxer->WriteCopy(packet, format->streams[packet->stream_index]);
            });
        }
        reader.SetDamageReport([this](const std::string& text) { m_console.Warn(text); });
        reader.SetKeep(OriginalsKept());
        while (FramePtr frame = reader.Next())
            if (!m_window->Push(std::move(frame)))
                break;
        m_window->Finish();
    } catch (...) {
        Fail(std::current_exception());
    }
}

void Run::Render()
{
    try {
        RenderPlan plan;
        plan.sequential = m_settings.sequential;
        plan.testOutput = m_settings.effect.testMode;
        plan.encode = !m_settings.analyze;
        plan.measure = m_settings.measure;
        FrameRenderer renderer(m_effect, *m_normalHost, *m_testHost, *m_window, m_converter, m_shape, plan);
        long ordinal = 0;
        while (FramePtr frame = m_window->NextToRender(&ordinal)) {
            if (!m_queue->WaitForRoom(ordinal))
                break;
            FrameOutcome outcome = renderer.Render(frame);
            m_queue->Put(ordinal, std::move(outcome));
            m_window->Rendered(frame->Index());
        }
    } catch (...) {
        Fail(std::current_exception());
    }
    // The last renderer out knows how many frames there were.
    if (--m_liveRenderers == 0)
        m_queue->Finish(m_window->Handed());
}

void Run::Record(const FrameOutcome& outcome)
{
    FrameRecord record;
    record.index = outcome.index;
    record.time = outcome.pts != AV_NOPTS_VALUE ? (outcome.pts - m_origin) * av_q2d(m_timeBase)
                                                : outcome.index / m_shape.frameRate;
    record.measured = outcome.measured;
    record.bands = outcome.bands;
    record.decision = outcome.decision;
    record.substitute = outcome.substitute;
    m_result.frames.push_back(record);
}

void Run::Encode(FrameOutcome& outcome)
{
    FrameRef frame;
    if (outcome.picture && m_encoder->Accepts(outcome.picture.get())) {
        frame = std::move(outcome.picture);
    } else {
        // A marked picture, or a frame the encoder can't take as it is.
        frame = m_encoder->NewFrame();
        if (outcome.picture)
            m_converter.Convert(outcome.picture.get(), frame.get());
        else
            m_converter.FromBgra(*outcome.rendered, frame.get());
    }
    // A substitute shows at the time of the frame it stands in for.
    frame->pts = outcome.pts != AV_NOPTS_VALUE ? outcome.pts
                                               : av_rescale_q(outcome.index, av_inv_q(m_frameRate), m_timeBase);
    m_encoder->Encode(frame.get(), outcome.index,
                      [this](AVPacket* packet) { m_muxer->WriteVideo(packet, m_encoder->TimeBase()); });
}

void Run::Consume()
{
    FrameOutcome outcome;
    while (m_queue->Take(&outcome)) {
        Record(outcome);
        if (m_encoder)
            Encode(outcome);
        outcome = FrameOutcome();
        m_progress->Update(static_cast<int>(m_result.frames.size()));
    }
}

void Run::WatchForInterruption()
{
    std::unique_lock<std::mutex> lock(m_doneMutex);
    while (!m_done) {
        if (m_settings.interrupted != nullptr && m_settings.interrupted->load()) {
            m_interrupted = true;
            CancelAll();
            return;
        }
        m_doneChanged.wait_for(lock, kInterruptPoll);
    }
}

void Run::JoinAll()
{
    {
        std::lock_guard<std::mutex> lock(m_doneMutex);
        m_done = true;
    }
    m_doneChanged.notify_all();
    for (std::thread& thread : m_threads)
        if (thread.joinable())
            thread.join();
    m_threads.clear();
}

RunResult Run::Execute()
{
    const auto start = std::chrono::steady_clock::now();
    Prepare();
    if (!m_settings.analyze)
        StartOutput();

    if (!m_settings.sequential)
        m_farFrames = std::make_unique<RandomAccessReader>(m_settings.input, m_index, m_settings.encoder.threads,
                                                           m_plan.farFrames, OriginalsKept());
    m_window = std::make_unique<FrameWindow>(m_plan.windowFrames, m_plan.keepBehind, m_farFrames.get(),
                                             m_plan.decodeAhead);
    m_queue = std::make_unique<OutcomeQueue>(m_plan.pendingFrames);
    EffectSettings normal = m_settings.effect;
    normal.testMode = false;
    EffectSettings test = m_settings.effect;
    test.testMode = true;
    const bool timeAccess = !m_settings.sequential;
    m_normalHost = std::make_unique<StreamHost>(*m_window, m_converter, m_shape, normal, timeAccess, kNormalInstance);
    m_testHost = std::make_unique<StreamHost>(*m_window, m_converter, m_shape, test, timeAccess, kTestInstance);
    m_progress = std::make_unique<Progress>(m_console, m_index.Count());

    try {
        m_threads.emplace_back(&Run::WatchForInterruption, this);
        m_threads.emplace_back(&Run::Decode, this);
        m_liveRenderers = m_renderThreads;
        for (int thread = 0; thread < m_renderThreads; ++thread)
            m_threads.emplace_back(&Run::Render, this);
        Consume();
        if (m_encoder && !m_cancelled)
            m_encoder->Encode(nullptr, -1,
                              [this](AVPacket* packet) { m_muxer->WriteVideo(packet, m_encoder->TimeBase()); });
    } catch (...) {
        Fail(std::current_exception());
    }
    JoinAll();
    m_progress->Finish();

    if (m_interrupted)
        throw Failure(ExitStatus::Interrupted, m_settings.input + ": interrupted; nothing was written");
    if (m_failure)
        std::rethrow_exception(m_failure);
    if (m_result.frames.empty())
        throw Failure(ExitStatus::NoVideoFrames, m_settings.input + ": no frame of its video could be decoded");
    if (m_muxer) {
        m_muxer->Finish();
        m_temporary->Commit();
        const std::string repaired = m_encoder->RepairedFrames();
        if (!repaired.empty())
            m_console.Warn(m_settings.input + ": " + repaired +
                           ": the decoder gave times that didn't follow the frame before; moved just past it");
    }
    m_result.farDecodedFrames = m_farFrames ? m_farFrames->DecodedFrames() : 0;
    m_result.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return std::move(m_result);
}
} // namespace

Pipeline::Pipeline(IVideoEffect* effect, Console& console) : m_effect(effect), m_console(console) {}

RunResult Pipeline::Run(const RunSettings& settings)
{
    class Run run(m_effect, m_console, settings);
    return run.Execute();
}

} // namespace Deglare
