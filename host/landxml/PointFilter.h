// Which points are chosen: by a list of numbers, by patterns of names, or all.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quonhost
{

/// Returns whether a text matches a pattern, in which "*" stands for any characters and "?" for one. Upper and lower
/// case are the same.
bool MatchesPattern(std::wstring_view text, std::wstring_view pattern);

/// A choice of points. A list may name all numbers that exist, so it is never walked point by point.
class PointFilter
{
public:
    /// Chooses every point.
    PointFilter() = default;

    /// Adds the numbers of a list such as "1-5, 9, 20-12". @throws CommandError when the list is not valid
    void AddList(const std::wstring& list);
    /// Adds the points whose identifiers match a pattern.
    void AddPattern(const std::wstring& pattern);

    bool IsAll() const { return m_isAll; }
    bool Contains(unsigned long number) const;
    bool Contains(const SurveyPoint& point) const;

private:
    bool ContainsName(std::wstring_view identifier) const;

    bool m_isAll = true;
    std::vector<std::pair<unsigned long, unsigned long>> m_ranges;  // ascending, apart from each other
    std::vector<std::wstring> m_patterns;
};

}  // namespace quonhost
