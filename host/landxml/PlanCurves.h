// Curves in the plan as chords.
#pragma once

#include <afx.h>

#include "geometry/VxGe.h"

#include <vector>

namespace quonhost
{

/// A part of a circle.
struct PlanArc
{
    VxGePoint3d start, center, end;
    bool isClockwise = false;
};

/// Returns the places of an arc, `start` and `end` included, at most two degrees apart. An arc that ends where it
/// begins is a circle.
std::vector<VxGePoint3d> ArcPlaces(const PlanArc& arc);

/// A curve whose curvature changes evenly with its length. Radii are positive, infinite where the curve is straight.
struct PlanSpiral
{
    VxGePoint3d start, end;
    VxGePoint3d intersection;  ///< of the tangents at both ends
    double length = 0;
    double startRadius = 0;
    double endRadius = 0;
    bool isClockwise = false;
};

/// Returns the places of a spiral, `start` and `end` included. It leaves `start` towards the intersection; what its
/// numbers miss `end` by is spread over its length.
std::vector<VxGePoint3d> SpiralPlaces(const PlanSpiral& spiral);

}  // namespace quonhost
