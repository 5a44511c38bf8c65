// Which point numbers a list of points names.
#pragma once

#include <afx.h>

#include <string>
#include <utility>
#include <vector>

namespace quonhost
{

/// The numbers that a list such as "1-5, 9, 20-12" names, as a set: a list may name all numbers there are, so it is
/// never walked point by point.
class PointFilter
{
public:
    /// Names every number.
    PointFilter() = default;
    /// @throws CommandError when the list is not valid
    explicit PointFilter(const std::string& list);

    bool Contains(unsigned long number) const;

private:
    bool m_isAll = true;
    std::vector<std::pair<unsigned long, unsigned long>> m_ranges;  // ascending, apart from each other
};

}  // namespace quonhost
