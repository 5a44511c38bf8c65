#include "host/plot/PlotLayers.h"

#include "host/plot/NiceSteps.h"

#include <algorithm>
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

// One for each kind; the last is for the rest.
constexpr Look kLooks[] = {
    {"#222222", kCircle}, {"#1f4fa3", kSquare},   {"#b3261e", kTriangle}, {"#6a1b9a", kDiamond}, {"#00695c", kPlus},
    {"#ad1457", kCross},  {"#0277bd", kTriangle}, {"#8d4e00", kSquare},   {"#555555", kCircle},
};
constexpr size_t kLookCount = sizeof(kLooks) / sizeof(kLooks[0]);

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

// The number of characters, not bytes.
size_t LengthOf(const std::string& text)
{
    return static_cast<size_t>(std::count_if(text.begin(), text.end(),
                                             [](char ch) { return (static_cast<unsigned char>(ch) & 0xC0) != 0x80; }));
}

std::string LabelOf(const PlotPoint& point, PlotLabels labels)
{
    const std::string elevation = point.z ? FormatFixed(*point.z, 2) : "";
    switch (labels)
    {
        case PlotLabels::kNumber:
            return point.name;
        case PlotLabels::kElevation:
            return elevation;
        case PlotLabels::kBoth:
            return elevation.empty() ? point.name : point.name + " \xC2\xB7 " + elevation;
        default:
            return "";
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

bool DrawLabel(SvgWriter& svg, double x, double y, const std::string& text, double gap, LabelLayout& layout)
{
    const double width = kCharacterWidth * static_cast<double>(LengthOf(text));
    for (const LabelPlace& place : kPlaces)
    {
        const double at = x + place.right * gap;
        const double base = place.down < 0 ? y - gap + 1 : y + gap + kLineHeight - 3;
        const double left = place.right > 0 ? at : at - width;
        if (layout.Take({left, base - kLineHeight + 2, left + width, base + 1}))
        {
            svg.Text(at, base, text, place.right > 0 ? "" : std::string("text-anchor=\"") + place.anchor + '"');
            return true;
        }
    }
    return false;
}

}  // namespace

std::vector<PointKind> KindsOf(const std::vector<PlotPoint>& points)
{
    std::map<std::string, std::vector<const PlotPoint*>> byCode;
    for (const PlotPoint& point : points)
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
    for (size_t index = 0; index < kinds.size(); ++index)
    {
        const Look& look = kLooks[std::min(index, kLookCount - 1)];
        kinds[index].colour = look.colour;
        kinds[index].shape = look.shape;
    }
    for (size_t index = kLookCount; index < kinds.size(); ++index)
    {
        PointKind& rest = kinds[kLookCount - 1];
        rest.code = "others";
        rest.points.insert(rest.points.end(), kinds[index].points.begin(), kinds[index].points.end());
    }
    kinds.resize(std::min(kinds.size(), kLookCount));
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
    return isStroke ? "fill=\"none\" stroke=\"" + kind.colour + "\" stroke-width=\"12\""
                    : "fill=\"" + kind.colour + "\" stroke=\"#fff\" stroke-width=\"5\"";
}

void DrawPoints(SvgWriter& svg, const PlotFrame& frame, const std::vector<PointKind>& kinds, double radius,
                LabelLayout& layout)
{
    // Among more points than these no text has a place of its own.
    constexpr size_t kMostKeptFree = 5000;
    size_t count = 0;
    for (const PointKind& kind : kinds)
    {
        count += kind.points.size();
    }
    for (const PointKind& kind : kinds)
    {
        SvgPath path;
        for (const PlotPoint* const point : kind.points)
        {
            const double x = frame.ToX(point->x), y = frame.ToY(point->y);
            AddSymbol(path, kind.shape, x, y, radius);
            if (count <= kMostKeptFree)
            {
                layout.Block({x - radius, y - radius, x + radius, y + radius});
            }
        }
        svg.Path(path, PaintOf(kind));
    }
}

size_t DrawLabels(SvgWriter& svg, const PlotFrame& frame, const std::vector<PlotPoint>& points, PlotLabels labels,
                  double radius, LabelLayout& layout)
{
    size_t left = 0;
    svg.BeginGroup(
        "font-size=\"8.5\" stroke=\"#fff\" stroke-opacity=\".7\" stroke-width=\"2\" stroke-linejoin=\"round\" "
        "paint-order=\"stroke\"");
    for (const PlotPoint& point : points)
    {
        const std::string text = LabelOf(point, labels);
        if (!text.empty() && !DrawLabel(svg, frame.ToX(point.x), frame.ToY(point.y), text, radius + 0.6, layout))
        {
            ++left;
        }
    }
    svg.EndGroup();
    return left;
}

}  // namespace quonhost
