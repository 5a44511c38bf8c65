#include "host/plot/PlotFrame.h"

#include <algorithm>
#include <cmath>

namespace quonhost
{
namespace
{

// The margin around the site, of its longer side.
constexpr double kMargin = 0.03;

// A map is at most so many times as long as wide: the rest of a narrow site's map stays empty.
constexpr double kMostSlender = 5;

// The least length that two coordinates of this size can be told apart at in a picture.
double LeastSpan(const PlotExtents& site)
{
    const double size = std::max({std::abs(site.minX), std::abs(site.maxX), std::abs(site.minY), std::abs(site.maxY)});
    return std::max(1e-3, size * 1e-9);
}

void Widen(double& low, double& high, double span)
{
    const double missing = span - (high - low);
    if (missing > 0)
    {
        low -= missing / 2;
        high += missing / 2;
    }
}

PlotExtents WithMargin(PlotExtents site)
{
    const double longest = site.Longest() > LeastSpan(site) ? site.Longest() : 1;
    Widen(site.minX, site.maxX, longest / kMostSlender);
    Widen(site.minY, site.maxY, longest / kMostSlender);
    const double margin = kMargin * longest;
    return {site.minX - margin, site.minY - margin, site.maxX + margin, site.maxY + margin};
}

}  // namespace

double PlotExtents::Longest() const
{
    return std::max(maxX - minX, maxY - minY);
}

std::optional<PlotExtents> ExtentsOf(const PlotModel& model)
{
    std::optional<PlotExtents> extents;
    const auto add = [&extents](double x, double y) {
        if (!extents)
        {
            extents = {x, y, x, y};
        }
        extents = {std::min(extents->minX, x), std::min(extents->minY, y), std::max(extents->maxX, x),
                   std::max(extents->maxY, y)};
    };
    for (const PlotPoint& point : model.points)
    {
        add(point.x, point.y);
    }
    for (const PlotTriangle& triangle : model.surface.triangles)
    {
        for (const size_t corner : triangle)
        {
            add(model.surface.vertices[corner].x, model.surface.vertices[corner].y);
        }
    }
    return extents;
}

PlotFrame::PlotFrame(const PlotExtents& site, double size, double left, double top)
    : m_extents(WithMargin(site)), m_scale(size / m_extents.Longest()), m_left(left), m_top(top)
{
}

}  // namespace quonhost
