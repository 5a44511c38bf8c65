// Survey points and faces as text with separators, in UTF-8 or UTF-16.
//
// Points: number, northing, easting, elevation, code, desc. Faces: point1, point2, point3. A first line with these
// names, in any order, is a header; without one the columns are in the order given here. Elevation may be empty (a
// point that is known in the plan only); code and desc may be empty or missing. A point number may be a name instead.
#pragma once

#include <afx.h>

#include "host/landxml/CsvText.h"
#include "host/landxml/Survey.h"

#include <string>

namespace quonhost
{

/// Reads the points of a file that error texts call `name` and that holds `bytes`. No two have the same identifier.
/// @throws CommandError with the line and what is wrong
std::vector<SurveyPoint> ParsePoints(const std::wstring& name, std::string bytes, const CsvFormat& format);

/// Reads the faces. Their points must be among `points`, have an elevation and be apart from each other.
/// @throws CommandError with the line and what is wrong
std::vector<SurveyFace> ParseFaces(const std::wstring& name, std::string bytes, const CsvFormat& format,
                                   const std::vector<SurveyPoint>& points);

/// The header line for FormatPoint's lines.
inline constexpr const wchar_t* kPointHeader = L"number,northing,easting,elevation,code,desc";

/// Returns one line for one point, without line end, that ParsePoints reads back as the same point.
std::wstring FormatPoint(const SurveyPoint& point);

}  // namespace quonhost
