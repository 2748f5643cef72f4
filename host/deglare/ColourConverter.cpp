#include "ColourConverter.h"

#include <stdexcept>

extern "C" {
#include <libavutil/pixdesc.h>
}

namespace Deglare {

namespace {
// Same-size conversions take swscale's direct paths; bilinear only matters for a stray frame
// of another size.
const int kScaleFlags = SWS_BILINEAR;
const size_t kMostIdleScalers = 16;
const int kHighDefinitionRows = 720;
// Enough to recycle the pictures of a full window.
const size_t kMostKeptPictures = 96;

bool IsRgb(int format)
{
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(format));
    return descriptor != nullptr && (descriptor->flags & AV_PIX_FMT_FLAG_RGB) != 0;
}

// The matrix that turns the frame's YUV into RGB; pictures that don't say are taken as
// editors take them, by their size.
int MatrixOf(const AVFrame* frame)
{
    switch (frame->colorspace) {
    case AVCOL_SPC_UNSPECIFIED:
    case AVCOL_SPC_RESERVED:
        return frame->height >= kHighDefinitionRows ? SWS_CS_ITU709 : SWS_CS_ITU601;
    case AVCOL_SPC_BT2020_CL:
        return SWS_CS_BT2020;
    default:
        return frame->colorspace;
    }
}

int FullRange(const AVFrame* frame)
{
    switch (frame->format) {
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ444P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ411P:
        return 1;
    default:
        return IsRgb(frame->format) || frame->color_range == AVCOL_RANGE_JPEG ? 1 : 0;
    }
}
} // namespace

bool ColourConverter::Setup::operator==(const Setup& other) const
{
    return sourceWidth == other.sourceWidth && sourceHeight == other.sourceHeight &&
           sourceFormat == other.sourceFormat && destinationWidth == other.destinationWidth &&
           destinationHeight == other.destinationHeight && destinationFormat == other.destinationFormat &&
           sourceMatrix == other.sourceMatrix && sourceFullRange == other.sourceFullRange &&
           destinationMatrix == other.destinationMatrix && destinationFullRange == other.destinationFullRange;
}

ColourConverter::ColourConverter() : m_pictures(std::make_shared<PicturePool>(kMostKeptPictures)) {}

std::unique_ptr<Picture> ColourConverter::NewPicture(int width, int height)
{
    return std::make_unique<Picture>(width, height, m_pictures);
}

void ColourConverter::WarmPictures(int width, int height, int count)
{
    if (width > 0 && height > 0 && count > 0)
        m_pictures->Warm(Picture::BytesFor(width, height), static_cast<size_t>(count));
}

ColourConverter::~ColourConverter()
{
    for (Scaler& scaler : m_idle)
        sws_freeContext(scaler.context);
}

SwsContext* ColourConverter::Borrow(const Setup& setup)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        for (auto scaler = m_idle.begin(); scaler != m_idle.end(); ++scaler)
            if (scaler->setup == setup) {
                SwsContext* context = scaler->context;
                m_idle.erase(scaler);
                return context;
            }
    }
    SwsContext* context = sws_getContext(setup.sourceWidth, setup.sourceHeight,
                                         static_cast<AVPixelFormat>(setup.sourceFormat), setup.destinationWidth,
                                         setup.destinationHeight, static_cast<AVPixelFormat>(setup.destinationFormat),
                                         kScaleFlags, nullptr, nullptr, nullptr);
    if (context == nullptr)
        throw std::runtime_error(std::string("can't convert pictures from ") +
                                 av_get_pix_fmt_name(static_cast<AVPixelFormat>(setup.sourceFormat)) + " to " +
                                 av_get_pix_fmt_name(static_cast<AVPixelFormat>(setup.destinationFormat)));
    const int unity = 1 << 16;
    sws_setColorspaceDetails(context, sws_getCoefficients(setup.sourceMatrix), setup.sourceFullRange,
                             sws_getCoefficients(setup.destinationMatrix), setup.destinationFullRange, 0, unity,
                             unity);
    return context;
}

void ColourConverter::Return(const Setup& setup, SwsContext* context)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_idle.size() >= kMostIdleScalers) {
        sws_freeContext(m_idle.front().context);
        m_idle.erase(m_idle.begin());
    }
    m_idle.push_back(Scaler{setup, context});
}

void ColourConverter::Scale(const Setup& setup, const uint8_t* const* sourcePlanes, const int* sourceSpans,
                            uint8_t* const* destinationPlanes, const int* destinationSpans)
{
    SwsContext* context = Borrow(setup);
    sws_scale(context, sourcePlanes, sourceSpans, 0, setup.sourceHeight, destinationPlanes, destinationSpans);
    Return(setup, context);
}

void ColourConverter::ToBgra(const AVFrame* frame, Picture& picture)
{
    const Setup setup = {frame->width,     frame->height,     frame->format,    picture.Width(), picture.Height(),
                         AV_PIX_FMT_BGRA,  MatrixOf(frame),   FullRange(frame), SWS_CS_DEFAULT,  1};
    uint8_t* planes[4] = {picture.Data(), nullptr, nullptr, nullptr};
    int spans[4] = {picture.Span(), 0, 0, 0};
    Scale(setup, frame->data, frame->linesize, planes, spans);
}

void ColourConverter::FromBgra(const Picture& picture, AVFrame* frame)
{
    const Setup setup = {picture.Width(), picture.Height(), AV_PIX_FMT_BGRA, frame->width,     frame->height,
                         frame->format,   SWS_CS_DEFAULT,   1,               MatrixOf(frame), FullRange(frame)};
    const uint8_t* planes[4] = {picture.Data(), nullptr, nullptr, nullptr};
    const int spans[4] = {picture.Span(), 0, 0, 0};
    Scale(setup, planes, spans, frame->data, frame->linesize);
}

void ColourConverter::Convert(const AVFrame* source, AVFrame* destination)
{
    const Setup setup = {source->width,        source->height,       source->format,
                         destination->width,   destination->height,  destination->format,
                         MatrixOf(source),     FullRange(source),    MatrixOf(destination),
                         FullRange(destination)};
    Scale(setup, source->data, source->linesize, destination->data, destination->linesize);
}

} // namespace Deglare
