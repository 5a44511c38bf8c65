// Survey points and faces as comma-separated values, in UTF-8.
//
// Points: number, northing, easting, elevation, code. Faces: point1, point2, point3. A first line with these names, in
// any order, is a header; without one the columns stand in the order given here. Elevation may be empty (a point that
// is known in the plan only), code may be empty or, as the last column, missing.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"

#include <string>
#include <string_view>

namespace quonhost
{

/// Reads the points of a file that is known as `name` and holds `text`. The numbers of the points are different.
/// @throws CommandError with "name(line): what is wrong"
std::vector<SurveyPoint> ParsePoints(const std::string& name, std::string text);

/// Reads the faces, whose points must be among `points`, have an elevation and lie apart from each other.
/// @throws CommandError with "name(line): what is wrong"
std::vector<SurveyFace> ParseFaces(const std::string& name, std::string text, const std::vector<SurveyPoint>& points);

/// The header line for FormatPoint's lines.
inline constexpr std::string_view kPointHeader = "number,northing,easting,elevation,code";

/// One line for one point, without line end, that ParsePoints reads back as the same point.
std::string FormatPoint(const SurveyPoint& point);

}  // namespace quonhost
