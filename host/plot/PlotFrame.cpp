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

// The smallest length at which two coordinates of this size differ in a picture.
double LeastSpan(const SurveyExtents& site)
{
    const double size = std::max(
        {std::abs(site.lowest.x), std::abs(site.highest.x), std::abs(site.lowest.y), std::abs(site.highest.y)});
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

SurveyExtents WithMargin(SurveyExtents site)
{
    const double longest = site.LongestSide() > LeastSpan(site) ? site.LongestSide() : 1;
    Widen(site.lowest.x, site.highest.x, longest / kMostSlender);
    Widen(site.lowest.y, site.highest.y, longest / kMostSlender);
    const double margin = kMargin * longest;
    site.lowest = {site.lowest.x - margin, site.lowest.y - margin, site.lowest.z};
    site.highest = {site.highest.x + margin, site.highest.y + margin, site.highest.z};
    return site;
}

}  // namespace

std::optional<SurveyExtents> ExtentsOf(const PlotModel& model)
{
    ExtentsCollector extents;
    for (const SurveyPoint& point : model.points)
    {
        extents.Add(point.place);
    }
    for (const SurveyTriangle& triangle : model.surface.triangles)
    {
        for (const std::uint32_t corner : triangle)
        {
            extents.Add(model.surface.points[corner]);
        }
    }
    for (const SurveyLine& line : model.lines)
    {
        for (const VxGePoint3d& place : line.places)
        {
            extents.Add(place);
        }
    }
    return extents.Get();
}

PlotFrame::PlotFrame(const SurveyExtents& site, double size, double left, double top)
    : m_extents(WithMargin(site)), m_scale(size / m_extents.LongestSide()), m_left(left), m_top(top)
{
}

}  // namespace quonhost
