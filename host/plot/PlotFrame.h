// From places of the ground to places of the picture.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

#include <optional>

namespace quonhost
{

/// The box around a site in the plan.
struct PlotExtents
{
    double minX, minY, maxX, maxY;

    /// The longer side.
    double Longest() const;
};

/// The box around all points and all corners of triangles. @return nothing when there is none of either
std::optional<PlotExtents> ExtentsOf(const PlotModel& model);

/// The map in the picture, north up. Pixels are counted from the picture's upper left corner.
class PlotFrame
{
public:
    /// @param size the longer side of the map, in pixels. The site fills the map but for a margin; a site without
    ///        width or height gets one.
    PlotFrame(const PlotExtents& site, double size, double left, double top);

    /// What the map shows: the site and its margin.
    const PlotExtents& GetExtents() const { return m_extents; }
    double GetPixelsPerUnit() const { return m_scale; }

    double ToX(double easting) const { return m_left + (easting - m_extents.minX) * m_scale; }
    double ToY(double northing) const { return m_top + (m_extents.maxY - northing) * m_scale; }

    double Left() const { return m_left; }
    double Top() const { return m_top; }
    double Right() const { return m_left + Width(); }
    double Bottom() const { return m_top + Height(); }
    double Width() const { return (m_extents.maxX - m_extents.minX) * m_scale; }
    double Height() const { return (m_extents.maxY - m_extents.minY) * m_scale; }

private:
    PlotExtents m_extents;
    double m_scale;
    double m_left;
    double m_top;
};

}  // namespace quonhost
