#include "host/plot/PlotLayers.h"

#include "host/plot/NiceSteps.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace quonhost
{
namespace
{

struct Look
{
    const char* colour;
    size_t shape;
};

enum Shape : size_t
{
    kCircle,
    kTriangle,
    kSquare,
    kDiamond,
    kPlus,
    kCross,
};

constexpr const char* kColours[] = {"#222222", "#1f4fa3", "#c62828", "#6a1b9a",
                                    "#00695c", "#d81b9c", "#0288d1", "#9a5200"};
constexpr size_t kColourCount = sizeof(kColours) / sizeof(kColours[0]);
constexpr size_t kShapeOfRound[] = {kCircle, kSquare, kTriangle, kDiamond, kPlus, kCross};
constexpr size_t kShapeCount = sizeof(kShapeOfRound) / sizeof(kShapeOfRound[0]);

// Codes beyond so many share a look: a longer legend would be longer than the map.
constexpr size_t kMostKinds = 32;

// Neighbours in the legend differ in both, and no two kinds share both.
Look LookOf(size_t index)
{
    return {kColours[index % kColourCount], kShapeOfRound[(index % kColourCount + index / kColourCount) % kShapeCount]};
}

// More points than these have no room for a symbol each.
constexpr size_t kMostWithSymbols = 5000;

// The width of a character of a label, at most, in pixels.
constexpr double kCharacterWidth = 5.2;
constexpr double kLineHeight = 9;

void AddPolygon(SvgPath& path, std::initializer_list<std::pair<double, double>> corners)
{
    path.Begin(corners.begin()->first, corners.begin()->second);
    for (const auto& [x, y] : corners)
    {
        path.LineTo(x, y);
    }
    path.End(true);
}

void AddStroke(SvgPath& path, double x1, double y1, double x2, double y2)
{
    path.Begin(x1, y1);
    path.LineTo(x2, y2);
    path.End(false);
}

std::wstring LabelOf(const SurveyPoint& point, PlotLabels labels)
{
    const std::wstring elevation = HasElevation(point.place) ? FormatFixed(point.place.z, 2) : L"";
    switch (labels)
    {
        case PlotLabels::kNumber:
            return point.identifier;
        case PlotLabels::kElevation:
            return elevation;
        case PlotLabels::kBoth:
            return elevation.empty() ? point.identifier : point.identifier + L" \u00B7 " + elevation;
        default:
            return L"";
    }
}

struct LabelPlace
{
    double right, down;
    const char* anchor;
};

// Right above is where a reader looks first.
constexpr LabelPlace kPlaces[] = {
    {1, -1, "start"},
    {1, 1, "start"},
    {-1, -1, "end"},
    {-1, 1, "end"},
};

void DrawLabel(SvgWriter& svg, double x, double y, const std::wstring& text, double gap, LabelLayout& layout)
{
    const double width = kCharacterWidth * static_cast<double>(text.size());
    for (const LabelPlace& place : kPlaces)
    {
        const double at = x + place.right * gap;
        const double base = place.down < 0 ? y - gap + 1 : y + gap + kLineHeight - 3;
        const double left = place.right > 0 ? at : at - width;
        if (layout.Take({left, base - kLineHeight + 2, left + width, base + 1}))
        {
            svg.Text(at, base, text, place.right > 0 ? "" : std::string("text-anchor=\"") + place.anchor + '"');
            return;
        }
    }
}

}  // namespace

std::vector<PointKind> KindsOf(const std::vector<SurveyPoint>& points)
{
    std::map<std::wstring, std::vector<const SurveyPoint*>> byCode;
    for (const SurveyPoint& point : points)
    {
        byCode[point.code].push_back(&point);
    }
    std::vector<PointKind> kinds;
    for (auto& [code, members] : byCode)
    {
        kinds.push_back({code, std::move(members), "", 0});
    }
    std::stable_sort(kinds.begin(), kinds.end(),
                     [](const PointKind& a, const PointKind& b) { return a.points.size() > b.points.size(); });
    for (size_t index = kMostKinds; index < kinds.size(); ++index)
    {
        PointKind& rest = kinds[kMostKinds - 1];
        rest.code = L"others";
        rest.points.insert(rest.points.end(), kinds[index].points.begin(), kinds[index].points.end());
    }
    kinds.resize(std::min(kinds.size(), kMostKinds));
    for (size_t index = 0; index < kinds.size(); ++index)
    {
        const Look look = LookOf(index);
        kinds[index].colour = look.colour;
        kinds[index].shape = look.shape;
    }
    return kinds;
}

void AddSymbol(SvgPath& path, size_t shape, double x, double y, double r)
{
    switch (shape)
    {
        case kCircle:
        {
            const double d = 0.7 * r;
            AddPolygon(path, {{x - r, y},
                              {x - d, y - d},
                              {x, y - r},
                              {x + d, y - d},
                              {x + r, y},
                              {x + d, y + d},
                              {x, y + r},
                              {x - d, y + d}});
            break;
        }
        case kTriangle:
            AddPolygon(path, {{x, y - 1.3 * r}, {x + 1.2 * r, y + 0.8 * r}, {x - 1.2 * r, y + 0.8 * r}});
            break;
        case kSquare:
            AddPolygon(path, {{x - r, y - r}, {x + r, y - r}, {x + r, y + r}, {x - r, y + r}});
            break;
        case kDiamond:
            AddPolygon(path, {{x - 1.3 * r, y}, {x, y - 1.3 * r}, {x + 1.3 * r, y}, {x, y + 1.3 * r}});
            break;
        case kPlus:
            AddStroke(path, x - 1.3 * r, y, x + 1.3 * r, y);
            AddStroke(path, x, y - 1.3 * r, x, y + 1.3 * r);
            break;
        default:
            AddStroke(path, x - r, y - r, x + r, y + r);
            AddStroke(path, x - r, y + r, x + r, y - r);
            break;
    }
}

std::string PaintOf(const PointKind& kind)
{
    const bool isStroke = kind.shape == kPlus || kind.shape == kCross;
    // The outline is painted first: it must not cover neighbours.
    return isStroke ? "fill=\"none\" stroke=\"" + kind.colour + "\" stroke-width=\"12\""
                    : "fill=\"" + kind.colour + "\" stroke=\"#fff\" stroke-width=\"8\" paint-order=\"stroke\"";
}

double SymbolRadius(size_t points)
{
    return points <= 600 ? 2.6 : points <= kMostWithSymbols ? 1.8 : 2.2;
}

namespace
{

size_t CountPoints(const std::vector<PointKind>& kinds)
{
    size_t count = 0;
    for (const PointKind& kind : kinds)
    {
        count += kind.points.size();
    }
    return count;
}

// A dot of a pixel for every point; one dot where several points of a kind share a pixel.
void DrawDots(SvgWriter& svg, const PlotFrame& frame, const PointKind& kind)
{
    const auto width = static_cast<size_t>(frame.Width()) + 2, height = static_cast<size_t>(frame.Height()) + 2;
    std::vector<bool> isDrawn(width * height);
    SvgPath path;
    for (const SurveyPoint* const point : kind.points)
    {
        const double x = std::floor(frame.ToX(point->place.x) - frame.Left());
        const double y = std::floor(frame.ToY(point->place.y) - frame.Top());
        const size_t pixel = static_cast<size_t>(y) * width + static_cast<size_t>(x);
        if (isDrawn[pixel])
        {
            continue;
        }
        isDrawn[pixel] = true;
        const double left = frame.Left() + x, top = frame.Top() + y;
        AddPolygon(path, {{left, top}, {left + 1, top}, {left + 1, top + 1}, {left, top + 1}});
    }
    svg.Path(path, "fill=\"" + kind.colour + '"');
}

// Symbols that do not touch each other: the rarest kinds choose first, and none goes without.
std::vector<std::vector<const SurveyPoint*>> ThinnedOut(const PlotFrame& frame, const std::vector<PointKind>& kinds,
                                                        double radius)
{
    constexpr double kGap = 2.4;
    LabelLayout symbols({frame.Left(), frame.Top(), frame.Right(), frame.Bottom()});
    std::vector<std::vector<const SurveyPoint*>> chosen(kinds.size());
    const double reach = radius + kGap;
    for (size_t index = kinds.size(); index-- > 0;)
    {
        for (const SurveyPoint* const point : kinds[index].points)
        {
            const double x = frame.ToX(point->place.x), y = frame.ToY(point->place.y);
            const LabelBox box = {x - reach, y - reach, x + reach, y + reach};
            if (symbols.Take(box))
            {
                chosen[index].push_back(point);
            }
        }
        if (chosen[index].empty())
        {
            chosen[index].push_back(kinds[index].points[0]);
        }
    }
    return chosen;
}

void DrawSymbols(SvgWriter& svg, const PlotFrame& frame, const PointKind& kind,
                 const std::vector<const SurveyPoint*>& points, double radius)
{
    SvgPath path;
    for (const SurveyPoint* const point : points)
    {
        AddSymbol(path, kind.shape, frame.ToX(point->place.x), frame.ToY(point->place.y), radius);
    }
    const bool isStroke = kind.shape == kPlus || kind.shape == kCross;
    if (isStroke)
    {
        svg.Path(path, "fill=\"none\" stroke=\"#fff\" stroke-width=\"26\"");
    }
    svg.Path(path, PaintOf(kind));
}

}  // namespace

void DrawPoints(SvgWriter& svg, const PlotFrame& frame, const std::vector<PointKind>& kinds, LabelLayout& layout)
{
    const size_t count = CountPoints(kinds);
    const double radius = SymbolRadius(count);
    if (count > kMostWithSymbols)
    {
        const std::vector<std::vector<const SurveyPoint*>> chosen = ThinnedOut(frame, kinds, radius);
        for (const PointKind& kind : kinds)
        {
            DrawDots(svg, frame, kind);
        }
        for (size_t index = 0; index < kinds.size(); ++index)
        {
            DrawSymbols(svg, frame, kinds[index], chosen[index], radius);
        }
        return;
    }
    for (const PointKind& kind : kinds)
    {
        DrawSymbols(svg, frame, kind, kind.points, radius);
        for (const SurveyPoint* const point : kind.points)
        {
            const double x = frame.ToX(point->place.x), y = frame.ToY(point->place.y);
            layout.Block({x - radius, y - radius, x + radius, y + radius});
        }
    }
}

void DrawLabels(SvgWriter& svg, const PlotFrame& frame, const std::vector<SurveyPoint>& points, PlotLabels labels,
                LabelLayout& layout)
{
    const double gap = SymbolRadius(points.size()) + 0.6;
    svg.BeginGroup(
        "font-size=\"8.5\" stroke=\"#fff\" stroke-opacity=\".7\" stroke-width=\"2\" stroke-linejoin=\"round\" "
        "paint-order=\"stroke\"");
    for (const SurveyPoint& point : points)
    {
        const std::wstring text = LabelOf(point, labels);
        if (!text.empty())
        {
            DrawLabel(svg, frame.ToX(point.place.x), frame.ToY(point.place.y), text, gap, layout);
        }
    }
    svg.EndGroup();
}

}  // namespace quonhost
