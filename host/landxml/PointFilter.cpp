#include "host/landxml/PointFilter.h"

#include "host/Console.h"
#include "points/QuonPointString.h"

#include <algorithm>

namespace quonhost
{

PointFilter::PointFilter(const std::string& list) : m_isAll(false)
{
    QuonPointString points(ToWide(list).c_str());
    if (!points.IsValid())
    {
        throw CommandError("\"" + list + "\" is no list of points");
    }
    std::vector<std::pair<unsigned long, unsigned long>> ranges;
    unsigned long first = 0;
    unsigned long last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        ranges.emplace_back(std::min(first, last), std::max(first, last));
    }
    std::sort(ranges.begin(), ranges.end());
    for (const auto& range : ranges)
    {
        if (m_ranges.empty() || range.first > m_ranges.back().second)
        {
            m_ranges.push_back(range);
        }
        m_ranges.back().second = std::max(m_ranges.back().second, range.second);
    }
}

bool PointFilter::Contains(unsigned long number) const
{
    const auto after = std::upper_bound(m_ranges.begin(), m_ranges.end(), number,
                                        [](unsigned long value, const auto& range) { return value < range.first; });
    return m_isAll || (after != m_ranges.begin() && number <= std::prev(after)->second);
}

}  // namespace quonhost
