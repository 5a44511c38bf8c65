#include "host/plot/PlotLayers.h"

#include "host/plot/Contours.h"
#include "host/plot/NiceSteps.h"
#include "host/plot/Relief.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace quonhost
{
namespace
{

// Light is told apart in so many steps from none to that on flat ground.
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

void AddPolygon(SvgPath& path, const PlotFrame& frame, const std::vector<PlotVertex>& polygon)
{
    path.Begin(frame.ToX(polygon[0].x), frame.ToY(polygon[0].y));
    for (size_t index = 1; index < polygon.size(); ++index)
    {
        path.LineTo(frame.ToX(polygon[index].x), frame.ToY(polygon[index].y));
    }
    path.End(true);
}

void AddTriangle(Relief& relief, const PlotFrame& frame, const std::vector<double>& limits,
                 const std::array<PlotVertex, 3>& corners, double light)
{
    const auto [low, high] =
        std::minmax_element(corners.begin(), corners.end(), [](const auto& a, const auto& b) { return a.z < b.z; });
    const auto first = std::upper_bound(limits.begin(), limits.end(), low->z);
    for (auto limit = first; limit != limits.end() && *std::prev(limit) <= high->z; ++limit)
    {
        const std::vector<PlotVertex> polygon = ClipToBand(corners, *std::prev(limit), *limit);
        if (!polygon.empty())
        {
            const auto band = static_cast<size_t>(limit - limits.begin()) - 1;
            AddPolygon(relief[{band, static_cast<int>(std::lround(light * kLightSteps))}], frame, polygon);
        }
    }
}

// A place on a line and the direction of the line there.
struct LinePlace
{
    double x, y, angle;
};

// The line in pixels, and the lengths up to its places.
struct PixelLine
{
    std::vector<PlanPoint> places;
    std::vector<double> lengths;

    PixelLine(const PlotFrame& frame, const ContourLine& line)
    {
        for (const PlanPoint& point : line)
        {
            const PlanPoint place = {frame.ToX(point.x), frame.ToY(point.y)};
            const double step = places.empty() ? 0 : std::hypot(place.x - places.back().x, place.y - places.back().y);
            lengths.push_back(lengths.empty() ? 0 : lengths.back() + step);
            places.push_back(place);
        }
    }

    PlanPoint At(double length) const
    {
        const auto after = std::lower_bound(lengths.begin() + 1, lengths.end() - 1, length) - lengths.begin();
        const auto index = static_cast<size_t>(after);
        const double step = lengths[index] - lengths[index - 1];
        const double part = step > 0 ? std::clamp((length - lengths[index - 1]) / step, 0.0, 1.0) : 0;
        const PlanPoint &a = places[index - 1], &b = places[index];
        return {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y)};
    }

    // The direction over the width of a label, upright for who reads it.
    LinePlace PlaceAt(double length, double width) const
    {
        const PlanPoint from = At(length - width / 2), to = At(length + width / 2), middle = At(length);
        double angle = std::atan2(to.y - from.y, to.x - from.x) * 180 / 3.14159265358979323846;
        if (angle > 90 || angle <= -90)
        {
            angle += angle > 0 ? -180 : 180;
        }
        return {middle.x, middle.y, angle};
    }
};

void LabelContour(SvgWriter& svg, const PixelLine& line, const std::string& text, LabelLayout& layout)
{
    const double whole = line.lengths.back();
    const double width = 6.2 * static_cast<double>(text.size()) + 4;
    for (double length = std::min(whole / 2, kLabelDistance / 2); length < whole - width / 2 && whole > kLabelledLength;
         length += kLabelDistance)
    {
        const LinePlace place = line.PlaceAt(length, width);
        const double slant = place.angle * 3.14159265358979323846 / 180;
        const double x = (std::abs(std::cos(slant)) * width + std::abs(std::sin(slant)) * 10) / 2;
        const double y = (std::abs(std::sin(slant)) * width + std::abs(std::cos(slant)) * 10) / 2;
        if (layout.Take({place.x - x, place.y - y, place.x + x, place.y + y}))
        {
            svg.Text(
                place.x, place.y + 3.5, text,
                "transform=\"rotate(" + Pixels(place.angle) + ' ' + Pixels(place.x) + ' ' + Pixels(place.y) + ")\"");
        }
    }
}

void AddLine(SvgPath& path, const PlotFrame& frame, const ContourLine& line)
{
    path.Begin(frame.ToX(line[0].x), frame.ToY(line[0].y));
    for (size_t index = 1; index < line.size(); ++index)
    {
        path.LineTo(frame.ToX(line[index].x), frame.ToY(line[index].y));
    }
    path.End(line.front() == line.back());
}

}  // namespace

void DrawRelief(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface, const PlotLevels& levels)
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

void DrawEdges(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface)
{
    SvgPath path;
    for (const PlotTriangle& triangle : surface.triangles)
    {
        const std::array<PlotVertex, 3> corners = CornersOf(surface, triangle);
        AddPolygon(path, frame, {corners.begin(), corners.end()});
    }
    svg.Path(path, "fill=\"none\" stroke=\"#000\" stroke-opacity=\".18\" stroke-width=\"5\"");
}

void DrawContours(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface, const PlotLevels& levels,
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
