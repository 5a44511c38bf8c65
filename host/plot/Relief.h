// The colours of a surface: by elevation, and lighter or darker as the light falls on it.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

namespace quonhost
{

struct PlotColour
{
    double red, green, blue;  ///< 0 to 1
};

/// The colour of an elevation between the lowest (0) and the highest (1).
PlotColour TintOf(double part);

/// A colour in light, where `light` is 1 on flat ground, 0 where none falls.
PlotColour Lit(const PlotColour& colour, double light);

/// "#rrggbb"
std::string HexOf(const PlotColour& colour);

/// How much light falls on each triangle from the north-west: 1 on flat ground, less on slopes that turn away, more on
/// those that face it. Slopes are steepened on gentle ground, and smoothed from triangle to triangle.
std::vector<double> LightOn(const SurveySurface& surface);

}  // namespace quonhost
