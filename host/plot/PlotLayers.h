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
    std::wstring code;
    std::vector<const SurveyPoint*> points;
    std::string colour;
    size_t shape = 0;
};

/// Returns the points by their codes, the most frequent code first; the rarest share one kind.
std::vector<PointKind> KindsOf(const std::vector<SurveyPoint>& points);

/// Adds the outline of a kind's symbol around a place.
void AddSymbol(SvgPath& path, size_t shape, double x, double y, double radius);

/// Returns how a kind's symbols are painted.
std::string PaintOf(const PointKind& kind);

/// How lines of one kind look.
struct LineStyle
{
    LineKind kind;
    const wchar_t* name;      ///< of several, in the legend
    const wchar_t* singular;  ///< of one
    const char* colour;
    int width;           ///< in tenths of a pixel
    const char* dashes;  ///< in tenths of a pixel; "" for a line without gaps
    bool isNamed;        ///< whether the names of the lines are written beside them
};

/// Returns the styles in the order in which lines are drawn.
const std::vector<LineStyle>& LineStyles();

/// Returns how lines of a style are painted.
std::string PaintOf(const LineStyle& style);

/// Returns how many different things of a kind the lines show. Pieces of one name belong together.
size_t CountLines(const std::vector<SurveyLine>& lines, LineKind kind);

/// Draws the triangles, tinted by elevation and shaded.
void DrawRelief(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface, const PlotLevels& levels);
/// Draws the edges of the triangles.
void DrawEdges(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface);
/// Draws the contours, with their elevations where there is room.
void DrawContours(SvgWriter& svg, const PlotFrame& frame, const SurveySurface& surface, const PlotLevels& levels,
                  LabelLayout& layout);
/// Draws lines, with their names where there is room.
void DrawLines(SvgWriter& svg, const PlotFrame& frame, const std::vector<SurveyLine>& lines, LabelLayout& layout);
/// Draws the points' symbols. Of many points all are dots, and as many have symbols as find room; points of rare codes
/// come first.
void DrawPoints(SvgWriter& svg, const PlotFrame& frame, const std::vector<PointKind>& kinds, LabelLayout& layout);
/// Returns the radius of the symbols of so many points, in pixels.
double SymbolRadius(size_t points);
/// Draws the points' names and elevations where there is room.
void DrawLabels(SvgWriter& svg, const PlotFrame& frame, const std::vector<SurveyPoint>& points, PlotLabels labels,
                LabelLayout& layout);
/// Draws the map's border with coordinates and the crosses of its grid.
void DrawGrid(SvgWriter& svg, const PlotFrame& frame);
/// Draws a bar of a round length below the map.
void DrawScaleBar(SvgWriter& svg, const PlotFrame& frame, const std::wstring& unit);

/// What the legend explains.
struct LegendContents
{
    const PlotLevels* levels;  ///< null without a surface
    const std::vector<PointKind>& kinds;
    const std::vector<SurveyLine>& lines;
    const std::wstring& unit;
};

/// Draws north arrow, elevations, lines and symbols in a column right of the map. Returns where the column ends.
double DrawLegend(SvgWriter& svg, double left, double top, const LegendContents& contents);

}  // namespace quonhost
