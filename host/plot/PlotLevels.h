// The elevations at which a surface gets contours and changes its tint.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"
#include "host/plot/Relief.h"

namespace quonhost
{

struct PlotLevels
{
    double low = 0, high = 0;  ///< of the triangles' corners
    double step = 1;           ///< of the contours
    bool hasContours = false;
    std::vector<double> contours;  ///< ascending
    std::vector<double> tints;     ///< the limits of the bands, ascending: each band ends below the next limit

    /// Whether a contour is one of every five, drawn heavier and with its elevation.
    bool IsIndex(double contour) const;

    size_t CountBands() const { return tints.size() - 1; }
    /// The colour of the band from tints[band] on.
    PlotColour TintOfBand(size_t band) const;
};

/// @param step as in PlotOptions
/// @return nothing for a surface without triangles
/// @throws CommandError when the contours would be too many to be distinguished
std::optional<PlotLevels> LevelsOf(const SurveySurface& surface, std::optional<double> step);

}  // namespace quonhost
