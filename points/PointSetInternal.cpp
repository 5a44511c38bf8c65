#include "points/PointSetInternal.h"

#include "points/PointBitsInternal.h"
#include "points/PointFormatInternal.h"
#include "points/PointMarkerInternal.h"

#include <algorithm>
#include <climits>
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

int ExpectedLength(const ParsedPoints& points)
{
    return static_cast<int>(std::min<std::size_t>(points.textLength, INT_MAX));
}

// Room for a text as long as the old one is made at once; what is not needed of it is given back.
void FreeExtra(CString& text)
{
    if (text.GetAllocLength() / 2 > text.GetLength())
    {
        text.FreeExtra();
    }
}

void WriteSortedDifference(const ParsedPoints& points, const ParsedPoints& removed, PointTextWriter& writer)
{
    QuonPointMarker result;
    MarkAll(result, points);
    for (const PointRange& range : removed.ranges)
    {
        Access::UnmarkRange(result, std::min(range.first, range.last), std::max(range.first, range.last));
    }
    WriteSortedPoints(result, writer);
}

void WriteUnsortedDifference(const ParsedPoints& points, const ParsedPoints& removed, PointTextWriter& writer)
{
    QuonPointMarker marker;
    MarkAll(marker, removed);
    UnsortedPointLayout layout(writer);
    for (const PointRange& range : points.ranges)
    {
        AddUnmarked(marker, range, layout);
    }
    layout.Finish();
}

void WriteUnsortedUnique(const ParsedPoints& points, PointTextWriter& writer)
{
    QuonPointMarker seen;
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

}  // namespace

ParsedPoints ParsePoints(const wchar_t* text, std::size_t length)
{
    // Most items are longer than this; room that is not used is never touched.
    constexpr std::size_t kLengthPerItem = 8;

    ParsedPoints points;
    points.textLength = length;
    points.ranges.reserve(length / kLengthPerItem);
    PointTextReader reader = PointTextReader::Start(text, length);
    while (!reader.AtEnd())
    {
        PointItem item;
        if (!reader.ReadPlainItem(item))
        {
            item = reader.Next();
        }
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
    CString text;
    {
        PointTextWriter writer(text, ExpectedLength(points));
        sorted ? WriteSortedDifference(points, removed, writer) : WriteUnsortedDifference(points, removed, writer);
    }
    FreeExtra(text);
    return text;
}

CString FormatUnique(const ParsedPoints& points, bool sorted)
{
    CString text;
    {
        PointTextWriter writer(text, ExpectedLength(points));
        sorted ? WriteSortedDifference(points, {}, writer) : WriteUnsortedUnique(points, writer);
    }
    FreeExtra(text);
    return text;
}

}  // namespace QuonPointDetails
