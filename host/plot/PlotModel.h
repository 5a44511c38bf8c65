// What a plot shows.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"

#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

struct PlotModel
{
    std::wstring title;
    std::wstring unit;  ///< of lengths, such as "m"; may be empty
    std::vector<SurveyPoint> points;
    SurveySurface surface;
    std::vector<SurveyLine> lines;
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
