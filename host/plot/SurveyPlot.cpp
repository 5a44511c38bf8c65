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

constexpr const wchar_t* kDot = L" \u00B7 ";

SurveyExtents DrawableExtents(const PlotModel& model)
{
    const std::optional<SurveyExtents> extents = ExtentsOf(model);
    if (!extents)
    {
        throw CommandError(std::wstring_view(L"there is nothing to draw"));
    }
    for (const double side : {extents->lowest.x, extents->lowest.y, extents->highest.x, extents->highest.y})
    {
        if (std::abs(side) > kFarthest)
        {
            throw CommandError(std::wstring_view(L"there are coordinates beyond a million million"));
        }
    }
    return *extents;
}

std::wstring SubtitleOf(const PlotModel& model, const PlotLevels* levels)
{
    std::vector<std::wstring> facts;
    if (!model.points.empty())
    {
        facts.push_back(Counted(model.points.size(), L"point", L"points"));
    }
    if (levels != nullptr)
    {
        const SurveySurface& surface = model.surface;
        facts.push_back((surface.name.empty() ? L"" : L"surface \"" + surface.name + L"\": ") +
                        Counted(surface.triangles.size(), L"triangle", L"triangles"));
        facts.push_back(L"elevation " + FormatFixed(levels->low, 2) + L" to " + FormatFixed(levels->high, 2) +
                        (model.unit.empty() ? L"" : L' ' + model.unit));
    }
    for (const LineStyle& style : LineStyles())
    {
        if (const size_t count = CountLines(model.lines, style.kind); count > 0)
        {
            facts.push_back(Counted(count, style.singular, style.name));
        }
    }
    std::wstring text;
    for (const std::wstring& fact : facts)
    {
        text += (text.empty() ? L"" : kDot) + fact;
    }
    return text;
}

// A title that is too long for the picture loses its end, but not half of a character.
std::wstring Shortened(const std::wstring& text, size_t most)
{
    if (text.size() <= most)
    {
        return text;
    }
    const bool isWithinPair = most > 0 && text[most] >= 0xDC00 && text[most] <= 0xDFFF;
    return text.substr(0, isWithinPair ? most - 1 : most) + L"\u2026";
}

void DrawMap(SvgWriter& svg, const PlotFrame& frame, const PlotModel& model, const PlotLevels* levels,
             const std::vector<PointKind>& kinds, const PlotOptions& options)
{
    LabelLayout layout({frame.Left() + 2, frame.Top() + 2, frame.Right() - 2, frame.Bottom() - 2});
    svg.Rectangle(frame.Left(), frame.Top(), frame.Width(), frame.Height(), "fill=\"#f7f6f1\"");
    SvgWriter points;
    DrawPoints(points, frame, kinds, layout);
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
    DrawLines(svg, frame, model.lines, layout);
    svg.Append(points);
    const bool isCrowded = model.points.size() > kMostLabelledPoints;
    DrawLabels(svg, frame, model.points, options.labels.value_or(isCrowded ? PlotLabels::kNone : PlotLabels::kNumber),
               layout);
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
    const double legendBottom = DrawLegend(legend, legendLeft, kTop, {levels, kinds, model.lines, model.unit});
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
