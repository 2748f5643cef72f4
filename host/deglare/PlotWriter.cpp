#include "PlotWriter.h"

#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <memory>

#include "ExitStatus.h"
#include "FlashRuns.h"
#include "TemporaryOutput.h"

namespace Deglare {

namespace {
const double kWidth = 1200.0;
const double kHeight = 520.0;
const double kLeft = 70.0;
const double kRight = 24.0;
const double kTop = 64.0;
const double kBottom = 56.0;

struct Colour {
    double red, green, blue;
};
// The bands from top to bottom of the picture, in colours that stay apart.
const Colour kBandColours[4] = {{0.90, 0.55, 0.00}, {0.20, 0.60, 0.20}, {0.00, 0.55, 0.70}, {0.50, 0.25, 0.65}};
const Colour kReplacedColour = {0.90, 0.10, 0.10};
const Colour kSparedColour = {0.15, 0.30, 0.95};
const Colour kInk = {0.15, 0.15, 0.15};
const Colour kGrid = {0.88, 0.88, 0.88};

struct SurfaceDeleter {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
};
struct ContextDeleter {
    void operator()(cairo_t* context) const { cairo_destroy(context); }
};

void SetColour(cairo_t* cairo, const Colour& colour, double alpha = 1.0)
{
    cairo_set_source_rgba(cairo, colour.red, colour.green, colour.blue, alpha);
}

// Shows `text` and returns its width.
double Text(cairo_t* cairo, double x, double y, const std::string& text, double size, bool centred = false)
{
    cairo_set_font_size(cairo, size);
    cairo_text_extents_t extents;
    cairo_text_extents(cairo, text.c_str(), &extents);
    cairo_move_to(cairo, centred ? x - extents.width / 2 - extents.x_bearing : x, y);
    cairo_show_text(cairo, text.c_str());
    return extents.x_advance;
}

// A step for axis labels of about a tenth of `span`: 1, 2 or 5 times a power of ten.
double NiceStep(double span)
{
    const double rough = span / 10.0;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (double factor : {1.0, 2.0, 5.0})
        if (factor * power >= rough)
            return factor * power;
    return 10.0 * power;
}

std::string Number(double value, double step)
{
    char text[32];
    std::snprintf(text, sizeof(text), step < 1.0 ? (step < 0.1 ? "%.2f" : "%.1f") : "%.0f", value);
    return text;
}

class Plot {
public:
    Plot(cairo_t* cairo, const std::vector<FrameRecord>& records) : m_cairo(cairo), m_records(records)
    {
        for (const FrameRecord& record : records) {
            m_lastTime = std::max(m_lastTime, record.time);
            for (float band : record.bands.band)
                m_top = std::max(m_top, static_cast<double>(band));
        }
        m_top = std::ceil(m_top * 10.0 + 1e-9) / 10.0;
        if (m_lastTime <= 0.0)
            m_lastTime = 1.0;
        m_frameWidth = records.size() > 1 ? (kWidth - kLeft - kRight) / records.size() : 4.0;
    }

    void Draw(const std::string& title)
    {
        cairo_set_source_rgb(m_cairo, 1, 1, 1);
        cairo_paint(m_cairo);
        DrawGrid();
        DrawDecisions();
        for (int band = 0; band < 4; ++band)
            DrawBand(band);
        DrawFrameAndLegend(title);
    }

private:
    double X(double time) const { return kLeft + time / m_lastTime * (kWidth - kLeft - kRight); }
    double Y(double value) const { return kHeight - kBottom - value / m_top * (kHeight - kTop - kBottom); }

    void DrawGrid()
    {
        cairo_set_line_width(m_cairo, 1.0);
        SetColour(m_cairo, kGrid);
        const double valueStep = NiceStep(m_top);
        for (double value = 0.0; value <= m_top + 1e-9; value += valueStep) {
            cairo_move_to(m_cairo, kLeft, Y(value));
            cairo_line_to(m_cairo, kWidth - kRight, Y(value));
        }
        const double timeStep = NiceStep(m_lastTime);
        for (double time = 0.0; time <= m_lastTime + 1e-9; time += timeStep) {
            cairo_move_to(m_cairo, X(time), kTop);
            cairo_line_to(m_cairo, X(time), kHeight - kBottom);
        }
        cairo_stroke(m_cairo);
        SetColour(m_cairo, kInk);
        for (double value = 0.0; value <= m_top + 1e-9; value += valueStep)
            Text(m_cairo, kLeft - 40, Y(value) + 4, Number(value, valueStep), 12);
        for (double time = 0.0; time <= m_lastTime + 1e-9; time += timeStep)
            Text(m_cairo, X(time), kHeight - kBottom + 18, Number(time, timeStep), 12, true);
        Text(m_cairo, (kLeft + kWidth - kRight) / 2, kHeight - 14, "time (s)", 13, true);
        cairo_save(m_cairo);
        cairo_move_to(m_cairo, 18, (kTop + kHeight - kBottom) / 2 + 40);
        cairo_rotate(m_cairo, -M_PI / 2);
        cairo_set_font_size(m_cairo, 13);
        cairo_show_text(m_cairo, "brightness");
        cairo_restore(m_cairo);
    }

    // A bar behind each replaced or spared frame, wide enough to see on a long clip.
    void DrawDecisions()
    {
        const double width = std::max(m_frameWidth, 3.0);
        for (const FrameRecord& record : m_records) {
            if (record.decision == Decision::Kept)
                continue;
            SetColour(m_cairo, record.decision == Decision::Replaced ? kReplacedColour : kSparedColour, 0.35);
            cairo_rectangle(m_cairo, X(record.time) - width / 2, kTop, width, kHeight - kTop - kBottom);
            cairo_fill(m_cairo);
        }
    }

    void DrawBand(int band)
    {
        SetColour(m_cairo, kBandColours[band]);
        cairo_set_line_width(m_cairo, 1.6);
        cairo_set_line_join(m_cairo, CAIRO_LINE_JOIN_ROUND);
        bool first = true;
        for (const FrameRecord& record : m_records) {
            if (!record.measured)
                continue;
            const double x = X(record.time);
            const double y = Y(record.bands.band[band]);
            if (first)
                cairo_move_to(m_cairo, x, y);
            else
                cairo_line_to(m_cairo, x, y);
            first = false;
        }
        cairo_stroke(m_cairo);
    }

    void DrawFrameAndLegend(const std::string& title)
    {
        SetColour(m_cairo, kInk);
        cairo_set_line_width(m_cairo, 1.0);
        cairo_rectangle(m_cairo, kLeft, kTop, kWidth - kLeft - kRight, kHeight - kTop - kBottom);
        cairo_stroke(m_cairo);
        cairo_select_font_face(m_cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_BOLD);
        Text(m_cairo, kLeft, 24, title, 15);
        cairo_select_font_face(m_cairo, "sans-serif", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);

        const char* const names[] = {"band 0 (top)", "band 1", "band 2", "band 3 (bottom)"};
        double x = kLeft;
        const double y = 48;
        for (int band = 0; band < 4; ++band) {
            SetColour(m_cairo, kBandColours[band]);
            cairo_rectangle(m_cairo, x, y - 9, 18, 4);
            cairo_fill(m_cairo);
            SetColour(m_cairo, kInk);
            x += 24 + Text(m_cairo, x + 24, y - 3, names[band], 12) + 24;
        }
        for (const auto& entry : {std::make_pair(kReplacedColour, "replaced"), std::make_pair(kSparedColour, "spared")}) {
            SetColour(m_cairo, entry.first, 0.35);
            cairo_rectangle(m_cairo, x, y - 13, 12, 12);
            cairo_fill(m_cairo);
            SetColour(m_cairo, kInk);
            x += 18 + Text(m_cairo, x + 18, y - 3, entry.second, 12) + 24;
        }
    }

    cairo_t* m_cairo;
    const std::vector<FrameRecord>& m_records;
    double m_lastTime = 0.0;
    double m_top = 0.1;
    double m_frameWidth = 4.0;
};

bool IsSvg(const std::string& path)
{
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos)
        return false;
    std::string extension = path.substr(dot + 1);
    for (char& c : extension)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return extension == "svg";
}
} // namespace

void WritePlot(const std::string& path, const std::string& title, const std::vector<FrameRecord>& records,
               const std::string& input)
{
    TemporaryOutput file(path, input);
    const bool svg = IsSvg(path);
    std::unique_ptr<cairo_surface_t, SurfaceDeleter> surface(
        svg ? cairo_svg_surface_create(file.Path().c_str(), kWidth, kHeight)
            : cairo_image_surface_create(CAIRO_FORMAT_ARGB32, static_cast<int>(kWidth), static_cast<int>(kHeight)));
    {
        std::unique_ptr<cairo_t, ContextDeleter> cairo(cairo_create(surface.get()));
        Plot(cairo.get(), records).Draw(title);
    }
    cairo_status_t status;
    if (svg) {
        cairo_surface_finish(surface.get());
        status = cairo_surface_status(surface.get());
    } else {
        status = cairo_surface_write_to_png(surface.get(), file.Path().c_str());
    }
    if (status != CAIRO_STATUS_SUCCESS)
        throw Failure(ExitStatus::WriteFailed,
                      path + ": the plot couldn't be written (" + cairo_status_to_string(status) + ")");
    surface.reset();
    file.Commit();
}

} // namespace Deglare
