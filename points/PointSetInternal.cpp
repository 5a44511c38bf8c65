#include "points/PointSetInternal.h"

#include "points/PointBitsInternal.h"
#include "points/PointFormatInternal.h"
#include "points/PointMarkerInternal.h"

#include <algorithm>
#include <cstdint>

namespace QuonPointDetails
{
namespace
{

using Access = QuonPointMarkerAccess;

void Mark(QuonPointMarker& marker, PointRange range, unsigned long growTo)
{
    Access::MarkRange(marker, std::min(range.first, range.last), std::max(range.first, range.last), growTo);
}

void MarkAll(QuonPointMarker& marker, const ParsedPoints& points)
{
    for (const PointRange& range : points.ranges)
    {
        Mark(marker, range, points.highest);
    }
}

// Adds the unmarked points of first, ..., last, which ascend and are none of 0.
void AddUnmarkedUpwards(const QuonPointMarker& marker, PointRange range, UnsortedPointLayout& layout)
{
    const unsigned char* const bits = Access::Bytes(marker);
    const unsigned long base = marker.GetFirstNumber();
    const std::uint64_t end = range.last - base + std::uint64_t{1};
    const std::uint64_t held = std::min(end, Access::CountBits(marker));
    for (std::uint64_t from = range.first - base; from < end;)
    {
        from = from < held ? FindClearBit(bits, from, held) : from;
        if (from == end)
        {
            return;
        }
        // Bits that are not held count as clear.
        std::uint64_t to = from < held ? FindSetBit(bits, from, held) : held;
        to = to == held ? end : to;
        layout.AddRange({base + static_cast<unsigned long>(from), base + static_cast<unsigned long>(to - 1)});
        from = to;
    }
}

// The same where first, ..., last descend.
void AddUnmarkedDownwards(const QuonPointMarker& marker, PointRange range, UnsortedPointLayout& layout)
{
    const unsigned char* const bits = Access::Bytes(marker);
    const unsigned long base = marker.GetFirstNumber();
    const std::uint64_t begin = range.last - base;
    const std::uint64_t held = std::max(begin, Access::CountBits(marker));
    for (std::uint64_t to = range.first - base + std::uint64_t{1}; to > begin;)
    {
        to = to <= held ? FindClearBitEnd(bits, begin, to) : to;
        if (to == begin)
        {
            return;
        }
        const std::uint64_t from = FindSetBitEnd(bits, begin, std::min(to, held));
        layout.AddRange({base + static_cast<unsigned long>(to - 1), base + static_cast<unsigned long>(from)});
        to = from;
    }
}

void AddUnmarked(const QuonPointMarker& marker, PointRange range, UnsortedPointLayout& layout)
{
    // The point 0 of a comparison cannot be marked: it is kept as often as it is named.
    if (range.first == 0)
    {
        layout.AddRange(range);
    }
    else if (range.first <= range.last)
    {
        AddUnmarkedUpwards(marker, range, layout);
    }
    else
    {
        AddUnmarkedDownwards(marker, range, layout);
    }
}

CString FormatSorted(const QuonPointMarker& marker)
{
    CString text;
    PointTextWriter writer(text);
    WriteSortedPoints(marker, writer);
    return text;
}

CString FormatSortedDifference(const ParsedPoints& points, const ParsedPoints& removed)
{
    QuonPointMarker result;
    MarkAll(result, points);
    for (const PointRange& range : removed.ranges)
    {
        Access::UnmarkRange(result, std::min(range.first, range.last), std::max(range.first, range.last));
    }
    return FormatSorted(result);
}

CString FormatUnsortedDifference(const ParsedPoints& points, const ParsedPoints& removed)
{
    QuonPointMarker marker;
    MarkAll(marker, removed);
    CString text;
    {
        PointTextWriter writer(text);
        UnsortedPointLayout layout(writer);
        for (const PointRange& range : points.ranges)
        {
            AddUnmarked(marker, range, layout);
        }
        layout.Finish();
    }
    return text;
}

CString FormatUnsortedUnique(const ParsedPoints& points)
{
    QuonPointMarker seen;
    CString text;
    {
        PointTextWriter writer(text);
        UnsortedPointLayout layout(writer);
        for (const PointRange& range : points.ranges)
        {
            AddUnmarked(seen, range, layout);
            if (&range != &points.ranges.back())
            {
                Mark(seen, range, points.highest);
            }
        }
        layout.Finish();
    }
    return text;
}

}  // namespace

ParsedPoints ParsePoints(const CString& text)
{
    ParsedPoints points;
    PointTextReader reader = PointTextReader::Start(text, static_cast<std::size_t>(text.GetLength()));
    while (!reader.AtEnd())
    {
        const PointItem item = reader.Next();
        if (item.kind == ItemKind::Valid)
        {
            points.ranges.push_back(item.range);
            points.highest = std::max({points.highest, item.range.first, item.range.last});
        }
        else if (item.kind != ItemKind::None)
        {
            points.isValid = false;
            break;
        }
    }
    return points;
}

CString FormatDifference(const ParsedPoints& points, const ParsedPoints& removed, bool sorted)
{
    return sorted ? FormatSortedDifference(points, removed) : FormatUnsortedDifference(points, removed);
}

CString FormatUnique(const ParsedPoints& points, bool sorted)
{
    return sorted ? FormatSortedDifference(points, {}) : FormatUnsortedUnique(points);
}

}  // namespace QuonPointDetails
