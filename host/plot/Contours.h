// Lines of one elevation on a surface of triangles.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

namespace quonhost
{

struct PlanPoint
{
    double x = 0;
    double y = 0;

    bool operator==(const PlanPoint& other) const = default;
};

/// A line through the surface, higher ground to its right. A closed one ends where it begins.
using ContourLine = std::vector<PlanPoint>;

/// Where a triangle's edge crosses the level: from the corner below the level to the one that is not.
struct ContourCrossing
{
    size_t below = 0;  ///< 0 to 2
    size_t above = 0;
    PlanPoint place;
};

/// Where the level crosses a triangle: into it and out of it, two crossings or none. A corner at the level counts as
/// above it, so a triangle that lies at the level, or only touches it from above, is not crossed.
std::vector<ContourCrossing> ContourOfTriangle(const std::array<PlotVertex, 3>& corners, double level);

/// The contour lines of one level, each as long as it can be.
std::vector<ContourLine> TraceContours(const PlotSurface& surface, double level);

/// The part of a triangle from `low` on to below `high`: a convex polygon, empty when nothing of the triangle is there.
std::vector<PlotVertex> ClipToBand(const std::array<PlotVertex, 3>& corners, double low, double high);

/// The corners of a triangle of the surface.
std::array<PlotVertex, 3> CornersOf(const PlotSurface& surface, const PlotTriangle& triangle);

}  // namespace quonhost
