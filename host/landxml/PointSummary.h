// What many points have in common.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"

#include <string>
#include <vector>

namespace quonhost
{

/// Counts, numbers and codes of points.
struct PointSummary
{
    size_t count = 0;
    std::vector<std::pair<unsigned long, unsigned long>> numbers;  ///< ranges, ascending
    std::vector<std::wstring> names;                               ///< identifiers that are not numbers, in their order
    CountsByName codes;                                            ///< "" for points without one
    size_t descriptions = 0;
    size_t withoutElevation = 0;
    std::optional<SurveyExtents> extents;
};

PointSummary Summarize(const std::vector<SurveyPoint>& points);

/// Returns ranges as a point list, such as "1-5,9"; after `most` of them, "..." and how many more there are.
std::wstring RangesText(const std::vector<std::pair<unsigned long, unsigned long>>& ranges, size_t most);

}  // namespace quonhost
