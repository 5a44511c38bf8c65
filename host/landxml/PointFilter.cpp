#include "host/landxml/PointFilter.h"

#include "host/Console.h"
#include "points/QuonPointString.h"

#include <algorithm>

namespace quonhost
{
namespace
{

using Range = std::pair<unsigned long, unsigned long>;

// A comparison such as "<5" is valid in a list, but names no point that a survey can have.
void RequireValid(const std::wstring& list, QuonPointString& points)
{
    if (!points.IsValid())
    {
        throw CommandError(std::wstring_view(L"not a point list: \"" + list + L"\""));
    }
    if (list.find_first_of(L"<>") != std::wstring::npos)
    {
        throw CommandError(std::wstring_view(L"a comparison does not name points: \"" + list + L"\""));
    }
}

wchar_t LowerCase(wchar_t ch)
{
    ::CharLowerBuffW(&ch, 1);
    return ch;
}

bool IsSameCharacter(wchar_t a, wchar_t b)
{
    return a == b || LowerCase(a) == LowerCase(b);
}

std::vector<Range> Joined(std::vector<Range> ranges)
{
    std::sort(ranges.begin(), ranges.end());
    std::vector<Range> joined;
    for (const Range& range : ranges)
    {
        if (joined.empty() || range.first > joined.back().second)
        {
            joined.push_back(range);
        }
        joined.back().second = std::max(joined.back().second, range.second);
    }
    return joined;
}

}  // namespace

bool MatchesPattern(std::wstring_view text, std::wstring_view pattern)
{
    // After a mismatch the last "*" takes one more character: earlier ones need not be tried again.
    size_t at = 0, from = 0, star = std::wstring_view::npos, retry = 0;
    while (at < text.size())
    {
        if (from < pattern.size() && pattern[from] == L'*')
        {
            star = from++;
            retry = at;
        }
        else if (from < pattern.size() && (pattern[from] == L'?' || IsSameCharacter(pattern[from], text[at])))
        {
            ++from;
            ++at;
        }
        else if (star != std::wstring_view::npos)
        {
            from = star + 1;
            at = ++retry;
        }
        else
        {
            return false;
        }
    }
    return pattern.find_first_not_of(L'*', from) == std::wstring_view::npos;
}

void PointFilter::AddList(const std::wstring& list)
{
    QuonPointString points(list.c_str());
    RequireValid(list, points);
    m_isAll = false;
    unsigned long first = 0;
    unsigned long last = 0;
    for (points.GetFirstRange(&first, &last); !points.IsDone(); points.GetNextRange(&first, &last))
    {
        m_ranges.emplace_back(std::min(first, last), std::max(first, last));
    }
    m_ranges = Joined(std::move(m_ranges));
}

void PointFilter::AddPattern(const std::wstring& pattern)
{
    m_isAll = false;
    m_patterns.push_back(pattern);
}

bool PointFilter::Contains(unsigned long number) const
{
    const auto after = std::upper_bound(m_ranges.begin(), m_ranges.end(), number,
                                        [](unsigned long value, const Range& range) { return value < range.first; });
    const bool isListed = after != m_ranges.begin() && number <= std::prev(after)->second;
    return m_isAll || isListed || (!m_patterns.empty() && ContainsName(std::to_wstring(number)));
}

bool PointFilter::Contains(const SurveyPoint& point) const
{
    if (m_isAll)
    {
        return true;
    }
    const std::optional<unsigned long> number = m_ranges.empty() ? std::nullopt : NumberOf(point);
    return (number && Contains(*number)) || ContainsName(point.identifier);
}

bool PointFilter::ContainsName(std::wstring_view identifier) const
{
    return std::any_of(m_patterns.begin(), m_patterns.end(),
                       [identifier](const std::wstring& pattern) { return MatchesPattern(identifier, pattern); });
}

}  // namespace quonhost
