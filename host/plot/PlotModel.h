// What a plot shows.
#pragma once

#include <afx.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

/// A place of the ground: x is the easting, y the northing, z the elevation.
struct PlotVertex
{
    double x = 0;
    double y = 0;
    double z = 0;
};

/// The indices of a triangle's corners among the vertices of its surface.
using PlotTriangle = std::array<size_t, 3>;

struct PlotSurface
{
    std::string name;  ///< UTF-8
    std::vector<PlotVertex> vertices;
    std::vector<PlotTriangle> triangles;
};

struct PlotPoint
{
    std::string name;  ///< UTF-8
    std::string code;  ///< UTF-8; may be empty
    double x = 0;
    double y = 0;
    std::optional<double> z;
};

struct PlotModel
{
    std::string title;  ///< UTF-8
    std::string unit;   ///< of lengths, such as "m"; may be empty
    std::vector<PlotPoint> points;
    PlotSurface surface;
};

/// What is written beside a point.
enum class PlotLabels
{
    kNone,
    kNumber,
    kElevation,
    kBoth,
};

struct PlotOptions
{
    std::optional<double> contourStep;  ///< 0: no contours; none: a step that suits the surface
    std::optional<PlotLabels> labels;   ///< none: numbers, unless there are too many points
    bool edges = false;                 ///< draw the edges of the triangles
    double size = 1000;                 ///< the longer side of the map, in pixels
};

}  // namespace quonhost
