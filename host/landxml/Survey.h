// What a survey is made of.
#pragma once

#include <afx.h>

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

struct SurveyPoint
{
    unsigned long number = 0;
    double northing = 0;
    double easting = 0;
    std::optional<double> elevation;  ///< none for a point that is known in the plan only
    std::string code;                 ///< UTF-8; may be empty
};

/// A triangle of the ground: the numbers of its three points.
using SurveyFace = std::array<unsigned long, 3>;

struct Survey
{
    std::vector<SurveyPoint> points;
    std::vector<SurveyFace> faces;
};

}  // namespace quonhost
