// The layers of a plot, each drawn over those before it.
#pragma once

#include <afx.h>

#include "host/plot/LabelLayout.h"
#include "host/plot/PlotFrame.h"
#include "host/plot/PlotLevels.h"
#include "host/plot/Svg.h"

namespace quonhost
{

/// The points of one code and how they look.
struct PointKind
{
    std::string code;
    std::vector<const PlotPoint*> points;
    std::string colour;
    size_t shape = 0;
};

/// The points by their codes, the most frequent code first; the rarest share one kind.
std::vector<PointKind> KindsOf(const std::vector<PlotPoint>& points);

/// The outline of a kind's symbol around a place.
void AddSymbol(SvgPath& path, size_t shape, double x, double y, double radius);

/// How a kind's symbols are painted.
std::string PaintOf(const PointKind& kind);

/// The triangles, tinted by elevation and shaded.
void DrawRelief(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface, const PlotLevels& levels);
/// The edges of the triangles.
void DrawEdges(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface);
/// The contours, with their elevations where there is room.
void DrawContours(SvgWriter& svg, const PlotFrame& frame, const PlotSurface& surface, const PlotLevels& levels,
                  LabelLayout& layout);
/// The points' symbols.
void DrawPoints(SvgWriter& svg, const PlotFrame& frame, const std::vector<PointKind>& kinds, double radius,
                LabelLayout& layout);
/// The points' names and elevations where there is room. @return how many points found none
size_t DrawLabels(SvgWriter& svg, const PlotFrame& frame, const std::vector<PlotPoint>& points, PlotLabels labels,
                  double radius, LabelLayout& layout);
/// The map's border with coordinates and the crosses of its grid.
void DrawGrid(SvgWriter& svg, const PlotFrame& frame);
/// A bar of a round length below the map.
void DrawScaleBar(SvgWriter& svg, const PlotFrame& frame, const std::string& unit);
/// North arrow, elevations and symbols, in a column right of the map. @return where the column ends
double DrawLegend(SvgWriter& svg, double left, double top, const PlotLevels* levels,
                  const std::vector<PointKind>& kinds, const std::string& unit);

}  // namespace quonhost
