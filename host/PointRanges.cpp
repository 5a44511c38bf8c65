#include "host/PointRanges.h"

#include <algorithm>
#include <functional>

namespace quonhost
{
namespace
{

constexpr const wchar_t* kBlanks = L" \t\r\n\v\f";

std::wstring_view Trimmed(std::wstring_view text)
{
    const size_t begin = text.find_first_not_of(kBlanks);
    return begin == std::wstring_view::npos ? std::wstring_view()
                                            : text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

std::optional<ListItem> FindItem(std::wstring_view list, const std::function<bool(const std::wstring&)>& isWanted)
{
    size_t number = 0;
    for (size_t begin = 0; begin <= list.size();)
    {
        const size_t end = std::min(list.find(L',', begin), list.size());
        const std::wstring item(Trimmed(list.substr(begin, end - begin)));
        if (!item.empty() && isWanted((++number, item)))
        {
            return ListItem{number, item};
        }
        begin = end + 1;
    }
    return std::nullopt;
}

// Sorts the ranges, and joins those that overlap or follow each other without a gap.
PointSet Joined(std::vector<PointRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const PointRange& a, const PointRange& b) { return a.first < b.first; });
    PointSet joined;
    for (const PointRange& range : ranges)
    {
        if (joined.empty() || range.first > joined.back().last + 1ULL)
        {
            joined.push_back(range);
        }
        else
        {
            joined.back().last = std::max(joined.back().last, range.last);
        }
    }
    return joined;
}

}  // namespace

PointSet PointsOf(QuonPointString& list)
{
    std::vector<PointRange> ranges;
    unsigned long first = 0;
    unsigned long last = 0;
    for (list.GetFirstRange(&first, &last); !list.IsDone(); list.GetNextRange(&first, &last))
    {
        ranges.push_back({std::min(first, last), std::max(first, last)});
    }
    return Joined(std::move(ranges));
}

PointSet Without(const PointSet& set, const PointSet& removed)
{
    PointSet rest;
    auto gap = removed.begin();
    for (PointRange range : set)
    {
        while (gap != removed.end() && gap->last < range.first)
        {
            ++gap;
        }
        bool isLeft = true;
        for (auto next = gap; isLeft && next != removed.end() && next->first <= range.last; ++next)
        {
            if (next->first > range.first)
            {
                rest.push_back({range.first, next->first - 1});
            }
            isLeft = next->last < range.last;
            range.first = next->last + 1;
        }
        if (isLeft)
        {
            rest.push_back(range);
        }
    }
    return rest;
}

std::optional<ListItem> FindInvalidItem(std::wstring_view list)
{
    return FindItem(list, [](const std::wstring& item) { return !QuonPointString(item.c_str()).IsValid(); });
}

std::optional<ListItem> FindComparison(std::wstring_view list)
{
    return FindItem(list, [](const std::wstring& item) { return item.front() == L'<' || item.front() == L'>'; });
}

}  // namespace quonhost
