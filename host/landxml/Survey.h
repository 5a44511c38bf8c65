// What a survey consists of.
#pragma once

#include <afx.h>

#include "geometry/VxGe.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

/// The elevation of a place that is known in the plan only.
inline constexpr double kNoElevation = std::numeric_limits<double>::quiet_NaN();

/// Returns whether the elevation of a place is known.
inline bool HasElevation(const VxGePoint3d& place)
{
    return !std::isnan(place.z);
}

/// Returns whether two places are the same in the plan.
inline bool IsSameInPlan(const VxGePoint3d& a, const VxGePoint3d& b)
{
    return a.x == b.x && a.y == b.y;
}

/// A point that was measured.
struct SurveyPoint
{
    std::wstring identifier;                   ///< a point number, or a name
    VxGePoint3d place = {0, 0, kNoElevation};  ///< x is the easting, y the northing, z the elevation
    std::wstring code;
    std::wstring description;
};

/// Returns the number of a point; nothing for one that has a name.
std::optional<unsigned long> NumberOf(const SurveyPoint& point);

/// A triangle of the ground: the numbers of its three points.
using SurveyFace = std::array<unsigned long, 3>;

/// A triangle of a surface: the indices of its corners among the surface's points.
using SurveyTriangle = std::array<std::uint32_t, 3>;

/// A surface of triangles.
struct SurveySurface
{
    std::wstring name;
    std::vector<VxGePoint3d> points;
    std::vector<SurveyTriangle> triangles;
};

/// What export writes.
struct Survey
{
    std::vector<SurveyPoint> points;
    std::vector<SurveyFace> faces;
};

/// The box around places. Without a place that has an elevation, lowest is above highest.
struct SurveyExtents
{
    VxGePoint3d lowest;
    VxGePoint3d highest;

    bool HasElevations() const { return lowest.z <= highest.z; }
    double LongestSide() const { return std::max(highest.x - lowest.x, highest.y - lowest.y); }
};

/// Grows box by box.
class ExtentsCollector
{
public:
    void Add(const VxGePoint3d& place)
    {
        constexpr double kInfinity = std::numeric_limits<double>::infinity();
        if (!m_extents)
        {
            m_extents = {{place.x, place.y, kInfinity}, {place.x, place.y, -kInfinity}};
        }
        VxGePoint3d &low = m_extents->lowest, &high = m_extents->highest;
        // Comparisons with an unknown elevation are false.
        low = {std::min(low.x, place.x), std::min(low.y, place.y), place.z < low.z ? place.z : low.z};
        high = {std::max(high.x, place.x), std::max(high.y, place.y), place.z > high.z ? place.z : high.z};
    }

    /// Returns nothing when no place was added.
    const std::optional<SurveyExtents>& Get() const { return m_extents; }

private:
    std::optional<SurveyExtents> m_extents;
};

}  // namespace quonhost
