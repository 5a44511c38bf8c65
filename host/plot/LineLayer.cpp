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

// Each name once, along the longest of its pieces: in the middle, or else nearer to an end.
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
        if (piece->places.size() < 2)
        {
            continue;
        }
        const PixelLine pixels(frame, piece->places);
        for (const double part : {0.5, 0.3, 0.7, 0.15, 0.85})
        {
            if (DrawAlong(svg, pixels, part * pixels.Length(), line.name, layout))
            {
                break;
            }
        }
    }
}

}  // namespace

const std::vector<LineStyle>& LineStyles()
{
    static const std::vector<LineStyle> styles = {
        {LineKind::kBoundary, L"boundaries", "#333333", 10, "80 30 20 30", false},
        {LineKind::kBreakline, L"breaklines", "#7a3e12", 10, "40 25", false},
        {LineKind::kPlanFeature, L"plan features", "#00838f", 12, "", true},
        {LineKind::kParcel, L"parcels", "#8e24aa", 12, "", true},
        {LineKind::kPipe, L"pipes", "#1e66d0", 18, "", false},
        {LineKind::kAlignment, L"alignments", "#d50000", 20, "", true},
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
