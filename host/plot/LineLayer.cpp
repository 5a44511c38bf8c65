#include "host/plot/PixelLine.h"
#include "host/plot/PlotLayers.h"

#include <set>

namespace quonhost
{
namespace
{

// Beside these many of a kind, names would be all that there is to see.
constexpr size_t kMostNamed = 300;

const SurveyLine* Longest(const std::vector<SurveyLine>& lines, const SurveyLine& piece)
{
    const SurveyLine* longest = &piece;
    for (const SurveyLine& line : lines)
    {
        const bool isSame = line.kind == piece.kind && line.name == piece.name;
        longest = isSame && line.places.size() > longest->places.size() ? &line : longest;
    }
    return longest;
}

// The middle of an area: its centre of gravity. Reckoned from the first corner, for coordinates are large.
VxGePoint3d MiddleOf(const std::vector<VxGePoint3d>& ring)
{
    const VxGePoint3d& origin = ring[0];
    double area = 0, x = 0, y = 0;
    for (size_t index = 0; index + 1 < ring.size(); ++index)
    {
        const double ax = ring[index].x - origin.x, ay = ring[index].y - origin.y;
        const double bx = ring[index + 1].x - origin.x, by = ring[index + 1].y - origin.y;
        const double part = ax * by - bx * ay;
        area += part;
        x += part * (ax + bx);
        y += part * (ay + by);
    }
    return area == 0 ? origin : VxGePoint3d{origin.x + x / (3 * area), origin.y + y / (3 * area), 0};
}

bool IsRing(const SurveyLine& line)
{
    return line.places.size() > 3 && IsSameInPlan(line.places.front(), line.places.back());
}

void NameArea(SvgWriter& svg, const PlotFrame& frame, const SurveyLine& ring, LabelLayout& layout)
{
    constexpr double kHalfHeight = 5;
    const VxGePoint3d middle = MiddleOf(ring.places);
    const double x = frame.ToX(middle.x), y = frame.ToY(middle.y), half = WidthOf(ring.name) / 2;
    if (layout.Take({x - half, y - kHalfHeight, x + half, y + kHalfHeight}))
    {
        svg.Text(x, y + 3.5, ring.name);
    }
}

void NameLine(SvgWriter& svg, const PlotFrame& frame, const SurveyLine& line, LabelLayout& layout)
{
    const PixelLine pixels(frame, line.places);
    for (const double part : {0.5, 0.3, 0.7, 0.15, 0.85})
    {
        if (DrawAlong(svg, pixels, part * pixels.Length(), line.name, layout))
        {
            return;
        }
    }
}

// Each name once: in the middle of an area, or along the longest of its pieces.
void NameLines(SvgWriter& svg, const PlotFrame& frame, const std::vector<SurveyLine>& lines, const LineStyle& style,
               LabelLayout& layout)
{
    std::set<std::wstring> named;
    for (const SurveyLine& line : lines)
    {
        if (line.kind != style.kind || line.name.empty() || !named.insert(line.name).second)
        {
            continue;
        }
        const SurveyLine* const piece = Longest(lines, line);
        if (IsRing(*piece))
        {
            NameArea(svg, frame, *piece, layout);
        }
        else if (piece->places.size() >= 2)
        {
            NameLine(svg, frame, *piece, layout);
        }
    }
}

}  // namespace

const std::vector<LineStyle>& LineStyles()
{
    static const std::vector<LineStyle> styles = {
        {LineKind::kBoundary, L"boundaries", L"boundary", "#333333", 10, "80 30 20 30", false},
        {LineKind::kBreakline, L"breaklines", L"breakline", "#7a3e12", 10, "40 25", false},
        {LineKind::kPlanFeature, L"plan features", L"plan feature", "#00838f", 12, "", true},
        {LineKind::kParcel, L"parcels", L"parcel", "#8e24aa", 12, "", true},
        {LineKind::kPipe, L"pipes", L"pipe", "#1e66d0", 18, "", false},
        {LineKind::kAlignment, L"alignments", L"alignment", "#d50000", 20, "", true},
    };
    return styles;
}

std::string PaintOf(const LineStyle& style)
{
    const std::string dashes(style.dashes);
    return "fill=\"none\" stroke=\"" + std::string(style.colour) + "\" stroke-width=\"" + std::to_string(style.width) +
           "\" stroke-linejoin=\"round\"" + (dashes.empty() ? "" : " stroke-dasharray=\"" + dashes + '"');
}

size_t CountLines(const std::vector<SurveyLine>& lines, LineKind kind)
{
    std::set<std::wstring> names;
    size_t unnamed = 0;
    for (const SurveyLine& line : lines)
    {
        if (line.kind == kind)
        {
            unnamed += line.name.empty() ? 1 : 0;
            names.insert(line.name);
        }
    }
    return names.size() - names.count(L"") + unnamed;
}

void DrawLines(SvgWriter& svg, const PlotFrame& frame, const std::vector<SurveyLine>& lines, LabelLayout& layout)
{
    for (const LineStyle& style : LineStyles())
    {
        SvgPath path;
        for (const SurveyLine& line : lines)
        {
            if (line.kind == style.kind && !line.places.empty())
            {
                AddLine(path, frame, line.places);
            }
        }
        svg.Path(path, PaintOf(style));
    }
    for (const LineStyle& style : LineStyles())
    {
        if (style.isNamed && CountLines(lines, style.kind) <= kMostNamed)
        {
            svg.BeginGroup("fill=\"" + std::string(style.colour) +
                           "\" font-size=\"10\" text-anchor=\"middle\" stroke=\"#fff\" stroke-opacity=\".85\" "
                           "stroke-width=\"2.5\" stroke-linejoin=\"round\" paint-order=\"stroke\"");
            NameLines(svg, frame, lines, style, layout);
            svg.EndGroup();
        }
    }
}

}  // namespace quonhost
