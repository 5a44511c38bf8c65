#include "host/landxml/PointSummary.h"

#include <algorithm>

namespace quonhost
{
namespace
{

std::vector<std::pair<unsigned long, unsigned long>> RangesOf(std::vector<unsigned long> numbers)
{
    std::sort(numbers.begin(), numbers.end());
    std::vector<std::pair<unsigned long, unsigned long>> ranges;
    for (const unsigned long number : numbers)
    {
        if (ranges.empty() || number > ranges.back().second + 1)
        {
            ranges.emplace_back(number, number);
        }
        ranges.back().second = number;
    }
    return ranges;
}

}  // namespace

PointSummary Summarize(const std::vector<SurveyPoint>& points)
{
    PointSummary summary;
    summary.count = points.size();
    std::vector<unsigned long> numbers;
    ExtentsCollector extents;
    for (const SurveyPoint& point : points)
    {
        if (const std::optional<unsigned long> number = NumberOf(point))
        {
            numbers.push_back(*number);
        }
        else
        {
            summary.names.push_back(point.identifier);
        }
        ++summary.codes[point.code];
        summary.descriptions += point.description.empty() ? 0 : 1;
        summary.withoutElevation += HasElevation(point.place) ? 0 : 1;
        extents.Add(point.place);
    }
    summary.numbers = RangesOf(std::move(numbers));
    summary.extents = extents.Get();
    return summary;
}

std::wstring RangesText(const std::vector<std::pair<unsigned long, unsigned long>>& ranges, size_t most)
{
    std::wstring text;
    for (size_t index = 0; index < std::min(ranges.size(), most); ++index)
    {
        const auto& [first, last] = ranges[index];
        text += (index == 0 ? L"" : L",") + std::to_wstring(first);
        text += first == last ? L"" : L"-" + std::to_wstring(last);
    }
    return ranges.size() <= most ? text : text + L" and " + std::to_wstring(ranges.size() - most) + L" more ranges";
}

}  // namespace quonhost
