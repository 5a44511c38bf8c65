#include "host/plot/PlotLayers.h"

#include "host/plot/Contours.h"
#include "host/plot/NiceSteps.h"
#include "host/plot/PixelLine.h"
#include "host/plot/Relief.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace quonhost
{
namespace
{

// Light is distinguished in so many steps from none to that on flat ground.
constexpr int kLightSteps = 16;

// A label of a contour is put on lines at least this long, in pixels, and again after so long.
constexpr double kLabelledLength = 90;
constexpr double kLabelDistance = 420;

struct BandAndLight
{
    size_t band;
    int light;

    auto operator<=>(const BandAndLight&) const = default;
};

using Relief = std::map<BandAndLight, SvgPath>;

void AddPolygon(SvgPath& path, const PlotFrame& frame, const std::vector<VxGePoint3d>& polygon)
{
    path.Begin(frame.ToX(polygon[0].x), frame.ToY(polygon[0].y));
    for (size_t index = 1; index < polygon.size(); ++index)
    {
        path.LineTo(frame.ToX(polygon[index].x), frame.ToY(polygon[index].y));
    }
    path.End(true);
}

void AddTriangle(Relief& relief, const PlotFrame& frame, const std::vector<double>& limits,
                 const std::array<VxGePoint3d, 3>& corners, double light)
{
    const auto [low, high] =
        std::minmax_element(corners.begin(), corners.end(), [](const auto& a, const auto& b) { return a.z < b.z; });
    const auto first = std::upper_bound(limits.begin(), limits.end(), low->z);
    for (auto limit = first; limit != limits.end() && *std::prev(limit) <= high->z; ++limit)
    {
        const std::vector<VxGePoint3d> polygon = ClipToBand(corners, *std::prev(limit), *limit);
        if (!polygon.empty())
        {
            const auto band = static_cast<size_t>(limit - limits.begin()) - 1;
            AddPolygon(relief[{band, static_cast<int>(std::lround(light * kLightSteps))}], frame, polygon);
        }
    }
}

void LabelContour(SvgWriter& svg, const PixelLine& line, const std::wstring& text, LabelLayout& layout)
{
    const double whole = line.Length();
    const double width = WidthOf(text);
    for (double length = std::min(whole / 2, kLabelDistance / 2); length < whole - width / 2 && whole > kLabelledLength;
         length += kLabelDistance)
    {
        DrawAlong(svg, line, length, text, layout);
    }
}

}  // namespace

void DrawRelief(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface, const PlotLevels& levels)
{
    const std::vector<double> lights = LightOn(surface);
    Relief relief;
    for (size_t index = 0; index < surface.triangles.size(); ++index)
    {
        AddTriangle(relief, frame, levels.tints, CornersOf(surface, surface.triangles[index]), lights[index]);
    }
    // The thin outline closes the seams that a renderer leaves between neighbours.
    svg.BeginGroup("stroke-width=\"6\" stroke-linejoin=\"round\"");
    for (const auto& [look, path] : relief)
    {
        const std::string colour =
            HexOf(Lit(levels.TintOfBand(look.band), static_cast<double>(look.light) / kLightSteps));
        svg.Path(path, "fill=\"" + colour + "\" stroke=\"" + colour + '"');
    }
    svg.EndGroup();
}

void DrawEdges(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface)
{
    SvgPath path;
    for (const SurveyTriangle& triangle : surface.triangles)
    {
        const std::array<VxGePoint3d, 3> corners = CornersOf(surface, triangle);
        AddPolygon(path, frame, {corners.begin(), corners.end()});
    }
    svg.Path(path, "fill=\"none\" stroke=\"#000\" stroke-opacity=\".18\" stroke-width=\"5\"");
}

void DrawContours(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface, const PlotLevels& levels,
                  LabelLayout& layout)
{
    SvgPath thin, heavy;
    SvgWriter labels;
    for (const double level : levels.contours)
    {
        const bool isIndex = levels.IsIndex(level);
        for (const ContourLine& line : TraceContours(surface, level))
        {
            AddLine(isIndex ? heavy : thin, frame, line);
            if (isIndex)
            {
                LabelContour(labels, PixelLine(frame, line), FormatFixed(level, DecimalsOf(levels.step * 5)), layout);
            }
        }
    }
    svg.Path(thin, "fill=\"none\" stroke=\"#6b4524\" stroke-opacity=\".75\" stroke-width=\"7\"");
    svg.Path(heavy, "fill=\"none\" stroke=\"#4a2c12\" stroke-width=\"15\"");
    svg.BeginGroup(
        "fill=\"#4a2c12\" font-size=\"10\" text-anchor=\"middle\" stroke=\"#fff\" stroke-opacity=\".75\" "
        "stroke-width=\"2.5\" stroke-linejoin=\"round\" paint-order=\"stroke\"");
    svg.Append(labels);
    svg.EndGroup();
}

}  // namespace quonhost
