#include "host/plot/PlotLayers.h"

#include "host/plot/NiceSteps.h"

#include <algorithm>

namespace quonhost
{
namespace
{

constexpr const char* kInk = "stroke=\"#222\"";

// Coordinates along the sides: so many at most, and so many more than that before a step counts as wrong.
constexpr int kGridSteps = 6;
constexpr size_t kMostGridLines = 50;

constexpr double kLegendTitle = 18;
constexpr double kLegendRow = 16;
constexpr double kRampHeight = 220;
constexpr double kRampWidth = 22;

void DrawCrosses(SvgWriter& svg, const PlotFrame& frame, const std::vector<double>& eastings,
                 const std::vector<double>& northings)
{
    constexpr double kArm = 5;
    SvgPath path;
    for (const double easting : eastings)
    {
        for (const double northing : northings)
        {
            const double x = frame.ToX(easting), y = frame.ToY(northing);
            path.Begin(x - kArm, y);
            path.LineTo(x + kArm, y);
            path.End(false);
            path.Begin(x, y - kArm);
            path.LineTo(x, y + kArm);
            path.End(false);
        }
    }
    svg.Path(path, "fill=\"none\" stroke=\"#222\" stroke-opacity=\".45\" stroke-width=\"6\"");
}

void DrawNorthArrow(SvgWriter& svg, double x, double top)
{
    SvgPath left, right;
    left.Begin(x, top);
    left.LineTo(x - 9, top + 34);
    left.LineTo(x, top + 27);
    left.End(true);
    right.Begin(x, top);
    right.LineTo(x + 9, top + 34);
    right.LineTo(x, top + 27);
    right.End(true);
    svg.Path(left, "fill=\"#222\" stroke=\"#222\" stroke-width=\"8\" stroke-linejoin=\"round\"");
    svg.Path(right, "fill=\"#fff\" stroke=\"#222\" stroke-width=\"8\" stroke-linejoin=\"round\"");
    svg.Text(x, top + 50, L"N", "text-anchor=\"middle\" font-size=\"14\" font-weight=\"bold\"");
}

std::wstring WithUnit(const std::wstring& text, const std::wstring& unit)
{
    return unit.empty() ? text : text + L' ' + unit;
}

// The bands from the highest down, and the elevations beside them, as many as there is room for.
double DrawRamp(SvgWriter& svg, double left, double top, const PlotLevels& levels, const std::wstring& unit)
{
    svg.Text(left, top, unit.empty() ? L"Elevation" : L"Elevation (" + unit + L")", "font-weight=\"bold\"");
    const double rampTop = top + kLegendTitle - 6;
    const double scale = levels.high > levels.low ? kRampHeight / (levels.high - levels.low) : 0;
    const auto toY = [&](double level) { return rampTop + (levels.high - level) * scale; };
    for (size_t band = 0; band < levels.CountBands(); ++band)
    {
        const double upper = scale > 0 ? toY(std::min(levels.tints[band + 1], levels.high)) : rampTop;
        const double lower = scale > 0 ? toY(levels.tints[band]) : rampTop + kLegendRow;
        svg.Rectangle(left, upper, kRampWidth, lower - upper, "fill=\"" + HexOf(levels.TintOfBand(band)) + '"');
    }
    const double height = scale > 0 ? kRampHeight : kLegendRow;
    svg.Rectangle(left, rampTop, kRampWidth, height, std::string("fill=\"none\" stroke-width=\".7\" ") + kInk);
    if (scale <= 0)
    {
        svg.Text(left + kRampWidth + 8, rampTop + 12, FormatFixed(levels.low, 2));
        return rampTop + height + kLegendTitle;
    }
    const double step = NiceStep(levels.high - levels.low, 8);
    for (const double level : MultiplesWithin(levels.low, levels.high, step, kMostGridLines))
    {
        svg.Line(left + kRampWidth, toY(level), left + kRampWidth + 4, toY(level), kInk);
        svg.Text(left + kRampWidth + 8, toY(level) + 4, FormatFixed(level, DecimalsOf(step)));
    }
    return rampTop + height + kLegendTitle;
}

double DrawContourKey(SvgWriter& svg, double left, double top, const PlotLevels& levels, const std::wstring& unit)
{
    svg.Text(left, top + 4, L"Contours", "font-weight=\"bold\"");
    const int decimals = DecimalsOf(levels.step);
    const double y = top + kLegendTitle;
    svg.Line(left, y, left + kRampWidth, y, "stroke=\"#6b4524\" stroke-width=\".7\"");
    svg.Text(left + kRampWidth + 8, y + 4, L"every " + WithUnit(FormatFixed(levels.step, decimals), unit));
    svg.Line(left, y + kLegendRow, left + kRampWidth, y + kLegendRow, "stroke=\"#4a2c12\" stroke-width=\"1.5\"");
    svg.Text(left + kRampWidth + 8, y + kLegendRow + 4,
             L"every " + WithUnit(FormatFixed(5 * levels.step, decimals), unit));
    return y + kLegendRow + 2 * kLegendTitle;
}

double DrawSymbolKey(SvgWriter& svg, double left, double top, const std::vector<PointKind>& kinds)
{
    svg.Text(left, top, L"Points", "font-weight=\"bold\"");
    double y = top + kLegendTitle;
    for (const PointKind& kind : kinds)
    {
        SvgPath path;
        AddSymbol(path, kind.shape, left + kRampWidth / 2, y - 4, 3.5);
        svg.Path(path, PaintOf(kind));
        const std::wstring name = kind.code.empty() ? L"no code" : kind.code;
        svg.Text(left + kRampWidth + 8, y, name + L" (" + std::to_wstring(kind.points.size()) + L")");
        y += kLegendRow;
    }
    return y;
}

double DrawLineKey(SvgWriter& svg, double left, double top, const std::vector<SurveyLine>& lines)
{
    svg.Text(left, top, L"Lines", "font-weight=\"bold\"");
    double y = top + kLegendTitle;
    for (const LineStyle& style : LineStyles())
    {
        const size_t count = CountLines(lines, style.kind);
        if (count == 0)
        {
            continue;
        }
        SvgPath path;
        path.Begin(left, y - 4);
        path.LineTo(left + kRampWidth, y - 4);
        path.End(false);
        svg.Path(path, PaintOf(style));
        svg.Text(left + kRampWidth + 8, y, std::wstring(style.name) + L" (" + std::to_wstring(count) + L")");
        y += kLegendRow;
    }
    return y;
}

}  // namespace

void DrawGrid(SvgWriter& svg, const PlotFrame& frame)
{
    const SurveyExtents& extents = frame.GetExtents();
    const double step = NiceStep(extents.LongestSide(), kGridSteps);
    const int decimals = DecimalsOf(step);
    const std::vector<double> eastings = MultiplesWithin(extents.lowest.x, extents.highest.x, step, kMostGridLines);
    const std::vector<double> northings = MultiplesWithin(extents.lowest.y, extents.highest.y, step, kMostGridLines);
    DrawCrosses(svg, frame, eastings, northings);
    svg.Rectangle(frame.Left(), frame.Top(), frame.Width(), frame.Height(), std::string("fill=\"none\" ") + kInk);
    svg.BeginGroup("font-size=\"10\" text-anchor=\"middle\"");
    for (const double easting : eastings)
    {
        const double x = frame.ToX(easting);
        svg.Line(x, frame.Bottom(), x, frame.Bottom() + 5, kInk);
        svg.Text(x, frame.Bottom() + 16, FormatFixed(easting, decimals) + L" E");
    }
    for (const double northing : northings)
    {
        const double y = frame.ToY(northing), x = frame.Left() - 8;
        svg.Line(frame.Left() - 5, y, frame.Left(), y, kInk);
        svg.Text(x, y, FormatFixed(northing, decimals) + L" N",
                 "transform=\"rotate(-90 " + Pixels(x) + ' ' + Pixels(y) + ")\"");
    }
    svg.EndGroup();
}

void DrawScaleBar(SvgWriter& svg, const PlotFrame& frame, const std::wstring& unit)
{
    constexpr int kParts = 4;
    const double whole = ScaleBarLength(frame.Width() / frame.GetPixelsPerUnit());
    const double part = whole / kParts * frame.GetPixelsPerUnit();
    const double top = frame.Bottom() + 34;
    for (int index = 0; index < kParts; ++index)
    {
        svg.Rectangle(frame.Left() + index * part, top, part, 6,
                      std::string(index % 2 == 0 ? "fill=\"#222\" " : "fill=\"#fff\" ") + kInk);
    }
    svg.BeginGroup("font-size=\"10\" text-anchor=\"middle\"");
    for (const double share : {0.0, 0.5, 1.0})
    {
        const std::wstring text = FormatFixed(share * whole, DecimalsOf(whole / 2));
        svg.Text(frame.Left() + share * kParts * part, top + 18, share < 1 ? text : WithUnit(text, unit));
    }
    svg.EndGroup();
}

double DrawLegend(SvgWriter& svg, double left, double top, const LegendContents& contents)
{
    DrawNorthArrow(svg, left + kRampWidth / 2, top);
    double y = top + 80;
    if (contents.levels != nullptr)
    {
        y = DrawRamp(svg, left, y, *contents.levels, contents.unit);
        if (contents.levels->hasContours)
        {
            y = DrawContourKey(svg, left, y, *contents.levels, contents.unit);
        }
    }
    if (!contents.lines.empty())
    {
        y = DrawLineKey(svg, left, y, contents.lines) + kLegendTitle / 2;
    }
    return contents.kinds.empty() ? y : DrawSymbolKey(svg, left, y, contents.kinds);
}

}  // namespace quonhost
