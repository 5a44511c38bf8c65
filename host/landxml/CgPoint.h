// The coordinate geometry points of a LandXML document.
#pragma once

#include <afx.h>

#include "host/landxml/PointFilter.h"
#include "host/landxml/Survey.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// A point as the document gives it.
struct CgPoint
{
    std::wstring name;
    std::wstring code;
    std::wstring text;       ///< northing, easting and, if known, elevation
    std::wstring reference;  ///< the name of the point whose place this one shares, when it has no text
};

/// A place in a document: northing, easting and, if known, elevation.
struct CgPlace
{
    double northing = 0;
    double easting = 0;
    std::optional<double> elevation;
};

/// Reads two or three numbers parted by white space. @return nothing for any other text
std::optional<CgPlace> ParsePlace(std::wstring_view text);

/// A point and where it is.
struct PlacedPoint
{
    std::wstring name;
    std::wstring code;
    CgPlace place;
};

/// All points, whatever their names, with the places that their texts, or the texts of the points that they refer to,
/// give. @throws CommandError when one of them has no place
std::vector<PlacedPoint> PlacePoints(const std::vector<CgPoint>& points);

/// The points whose names are numbers that `filter` names, with the places that their texts, or the texts of the points
/// that they refer to, give. @throws CommandError when one of them has no place
std::vector<SurveyPoint> ChoosePoints(const std::vector<CgPoint>& points, const PointFilter& filter);

}  // namespace quonhost
