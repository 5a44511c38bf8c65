// From places of the ground to places of the picture.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

#include <optional>

namespace quonhost
{

/// Returns the box around all points, lines and corners of triangles; nothing when there is none of them.
std::optional<SurveyExtents> ExtentsOf(const PlotModel& model);

/// The map in the picture, north up. Pixels are counted from the picture's upper left corner.
class PlotFrame
{
public:
    /// @param size the longer side of the map, in pixels. The site fills the map but for a margin; a site without
    ///        width or height gets one.
    PlotFrame(const SurveyExtents& site, double size, double left, double top);

    /// What the map shows: the site and its margin.
    const SurveyExtents& GetExtents() const { return m_extents; }
    double GetPixelsPerUnit() const { return m_scale; }

    double ToX(double easting) const { return m_left + (easting - m_extents.lowest.x) * m_scale; }
    double ToY(double northing) const { return m_top + (m_extents.highest.y - northing) * m_scale; }

    double Left() const { return m_left; }
    double Top() const { return m_top; }
    double Right() const { return m_left + Width(); }
    double Bottom() const { return m_top + Height(); }
    double Width() const { return (m_extents.highest.x - m_extents.lowest.x) * m_scale; }
    double Height() const { return (m_extents.highest.y - m_extents.lowest.y) * m_scale; }

private:
    SurveyExtents m_extents;
    double m_scale;
    double m_left;
    double m_top;
};

}  // namespace quonhost
