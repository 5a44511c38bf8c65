// Lines of one elevation on a surface of triangles.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

namespace quonhost
{

/// A line through the surface, higher ground to its right. A closed one ends where it begins.
using ContourLine = std::vector<VxGePoint3d>;

/// Where a triangle's edge crosses the level: from the corner below the level to the one that is not.
struct ContourCrossing
{
    size_t below = 0;  ///< 0 to 2
    size_t above = 0;
    VxGePoint3d place;
};

/// Where the level crosses a triangle: into it and out of it, two crossings or none. A corner at the level counts as
/// above it, so a triangle that lies at the level, or only touches it from above, is not crossed.
std::vector<ContourCrossing> ContourOfTriangle(const std::array<VxGePoint3d, 3>& corners, double level);

/// The contour lines of one level, each as long as it can be.
std::vector<ContourLine> TraceContours(const SurveySurface& surface, double level);

/// The part of a triangle from `low` on to below `high`: a convex polygon, empty when nothing of the triangle is there.
std::vector<VxGePoint3d> ClipToBand(const std::array<VxGePoint3d, 3>& corners, double low, double high);

/// The corners of a triangle of the surface.
std::array<VxGePoint3d, 3> CornersOf(const SurveySurface& surface, const SurveyTriangle& triangle);

}  // namespace quonhost
