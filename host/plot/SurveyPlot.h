// A site drawn to scale: relief, contours, points and what a reader needs to read them.
#pragma once

#include <afx.h>

#include "host/plot/PlotModel.h"

namespace quonhost
{

/// The picture as the text of an SVG file, UTF-8. The same model and options give the same text.
/// @throws CommandError when there is nothing to draw, or the contours would be too many to be distinguished
std::string DrawSurvey(const PlotModel& model, const PlotOptions& options);

}  // namespace quonhost
