// A line of the map and the texts along it.
#pragma once

#include <afx.h>

#include "host/plot/LabelLayout.h"
#include "host/plot/PlotFrame.h"
#include "host/plot/Svg.h"

#include <string>
#include <vector>

namespace quonhost
{

/// A line in pixels, and the lengths up to its places.
class PixelLine
{
public:
    PixelLine(const PlotFrame& frame, const std::vector<VxGePoint3d>& line);

    double Length() const { return m_lengths.back(); }

    /// A place on the line and the direction there, in degrees, so that a text is upright.
    struct Place
    {
        double x, y, angle;
    };

    /// Returns the place so far along the line. The direction is the one over the width of a text.
    Place PlaceAt(double length, double width) const;

private:
    VxGePoint3d At(double length) const;

    std::vector<VxGePoint3d> m_places;
    std::vector<double> m_lengths;
};

/// Adds a line to a path.
void AddLine(SvgPath& path, const PlotFrame& frame, const std::vector<VxGePoint3d>& line);

/// Writes a text along a line if there is room. Returns whether there was.
bool DrawAlong(SvgWriter& svg, const PixelLine& line, double length, const std::wstring& text, LabelLayout& layout);

/// Returns about the width of a text of the size that DrawAlong writes, in pixels.
double WidthOf(const std::wstring& text);

}  // namespace quonhost
