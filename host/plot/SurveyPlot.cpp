#include "host/plot/SurveyPlot.h"

#include "host/Console.h"
#include "host/plot/NiceSteps.h"
#include "host/plot/PlotLayers.h"

#include <algorithm>
#include <cmath>

namespace quonhost
{
namespace
{

constexpr double kLeft = 34;
constexpr double kTop = 62;
constexpr double kBelow = 66;
constexpr double kLegendGap = 24;
constexpr double kLegendWidth = 150;

// More labels than these are not drawn unless they are asked for.
constexpr size_t kMostLabelledPoints = 1500;

// Coordinates beyond these are mistakes, and their differences no numbers.
constexpr double kFarthest = 1e12;

constexpr const char* kDot = " \xC2\xB7 ";

PlotExtents DrawableExtents(const PlotModel& model)
{
    const std::optional<PlotExtents> extents = ExtentsOf(model);
    if (!extents)
    {
        throw CommandError(std::string("there is nothing to draw"));
    }
    for (const double side : {extents->minX, extents->minY, extents->maxX, extents->maxY})
    {
        if (std::abs(side) > kFarthest)
        {
            throw CommandError(std::string("there are coordinates beyond a million million"));
        }
    }
    return *extents;
}

double RadiusFor(size_t points)
{
    return points <= 600 ? 2.6 : points <= 5000 ? 1.8 : points <= 30000 ? 1.1 : 0.6;
}

std::string Counted(size_t count, const char* one, const char* many)
{
    return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

std::string SubtitleOf(const PlotModel& model, const PlotLevels* levels)
{
    std::vector<std::string> facts;
    if (!model.points.empty() || levels == nullptr)
    {
        facts.push_back(Counted(model.points.size(), "point", "points"));
    }
    if (levels != nullptr)
    {
        const PlotSurface& surface = model.surface;
        facts.push_back((surface.name.empty() ? "" : "surface \"" + surface.name + "\": ") +
                        Counted(surface.triangles.size(), "triangle", "triangles"));
        facts.push_back("elevation " + FormatFixed(levels->low, 2) + " to " + FormatFixed(levels->high, 2) +
                        (model.unit.empty() ? "" : ' ' + model.unit));
    }
    std::string text;
    for (const std::string& fact : facts)
    {
        text += (text.empty() ? "" : kDot) + fact;
    }
    return text;
}

// A title that is too long for the picture loses its end.
std::string Shortened(const std::string& text, size_t most)
{
    size_t characters = 0;
    for (size_t index = 0; index < text.size(); ++index)
    {
        const bool isStart = (static_cast<unsigned char>(text[index]) & 0xC0) != 0x80;
        if (isStart && ++characters > most)
        {
            return text.substr(0, index) + "\xE2\x80\xA6";
        }
    }
    return text;
}

void DrawMap(SvgWriter& svg, const PlotFrame& frame, const PlotModel& model, const PlotLevels* levels,
             const std::vector<PointKind>& kinds, const PlotOptions& options)
{
    LabelLayout layout({frame.Left() + 2, frame.Top() + 2, frame.Right() - 2, frame.Bottom() - 2});
    const double radius = RadiusFor(model.points.size());
    svg.Rectangle(frame.Left(), frame.Top(), frame.Width(), frame.Height(), "fill=\"#f7f6f1\"");
    SvgWriter points;
    DrawPoints(points, frame, kinds, radius, layout);
    if (levels != nullptr)
    {
        DrawRelief(svg, frame, model.surface, *levels);
        if (options.edges)
        {
            DrawEdges(svg, frame, model.surface);
        }
        DrawContours(svg, frame, model.surface, *levels, layout);
    }
    DrawGrid(svg, frame);
    svg.Append(points);
    const bool isCrowded = model.points.size() > kMostLabelledPoints;
    DrawLabels(svg, frame, model.points, options.labels.value_or(isCrowded ? PlotLabels::kNone : PlotLabels::kNumber),
               radius, layout);
}

}  // namespace

std::string DrawSurvey(const PlotModel& model, const PlotOptions& options)
{
    const PlotFrame frame(DrawableExtents(model), options.size, kLeft, kTop);
    const std::optional<PlotLevels> found = LevelsOf(model.surface, options.contourStep);
    const PlotLevels* const levels = found ? &*found : nullptr;
    const std::vector<PointKind> kinds = KindsOf(model.points);

    // The height of the legend is known when it is drawn.
    SvgWriter legend;
    const double legendLeft = frame.Right() + kLegendGap;
    const double legendBottom = DrawLegend(legend, legendLeft, kTop, levels, kinds, model.unit);
    const double width = legendLeft + kLegendWidth;
    const double height = std::max(frame.Bottom() + kBelow, legendBottom);

    SvgWriter svg(width, height, model.title);
    svg.Rectangle(0, 0, width, height, "fill=\"#fff\"");
    const auto titleLength = static_cast<size_t>((width - kLeft) / 12.5);
    svg.Text(kLeft, 26, Shortened(model.title, titleLength), "font-size=\"19\" font-weight=\"bold\"");
    svg.Text(kLeft, 46, Shortened(SubtitleOf(model, levels), static_cast<size_t>((width - kLeft) / 6.3)),
             "fill=\"#555\"");
    DrawMap(svg, frame, model, levels, kinds, options);
    DrawScaleBar(svg, frame, model.unit);
    svg.Append(legend);
    return svg.Finish();
}

}  // namespace quonhost
