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

// Hands out the ranges of the text. Returns false when an invalid item has ended the walk.
template <typename Visit>
bool ForEachRange(const wchar_t* text, std::size_t length, const Visit& visit)
{
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
            visit(item.range);
        }
        else if (item.kind != ItemKind::None)
        {
            return false;
        }
    }
    return true;
}

unsigned long Lowest(PointRange range)
{
    return std::min(range.first, range.last);
}

unsigned long Highest(PointRange range)
{
    return std::max(range.first, range.last);
}

// The highest point of the last item, which is that of most texts; 0 when it is not read in one step, or would be far
// above what a text of that length holds.
unsigned long LikelyHighest(const wchar_t* text, std::size_t length)
{
    constexpr std::uint64_t kPointsPerCharacter = 64;
    constexpr std::uint64_t kSmall = 8 * 1024 * 1024;

    const wchar_t* const end = text + length;
    const wchar_t* start = end;
    while (start != text && start[-1] != L',')
    {
        --start;
    }
    PointTextReader reader = PointTextReader::Start(start, static_cast<std::size_t>(end - start));
    PointItem item;
    const unsigned long highest = reader.ReadPlainItem(item) ? Highest(item.range) : 0;
    return highest <= kPointsPerCharacter * length + kSmall ? highest : 0;
}

// Marks ranges. Room for them is made up to the likely highest point at once, and an eighth more than needed where they
// go on beyond it; the first range gets what it needs.
class RangeMarker
{
public:
    RangeMarker(QuonPointMarker& marker, unsigned long likelyHighest) : m_marker(marker), m_highest(likelyHighest) {}

    void operator()(PointRange range) const
    {
        const unsigned long highest = Highest(range);
        const unsigned long more = Access::CountBits(m_marker) != 0 ? std::min(highest / 8, ULONG_MAX - highest) : 0;
        Access::MarkRange(m_marker, Lowest(range), highest, highest <= m_highest ? m_highest : highest + more);
    }

private:
    QuonPointMarker& m_marker;
    unsigned long m_highest;
};

void MarkText(QuonPointMarker& marker, const CString& text)
{
    const auto length = static_cast<std::size_t>(text.GetLength());
    ForEachRange(text, length, RangeMarker(marker, LikelyHighest(text, length)));
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

// Room for a text as long as the old one is made at once; what is not needed of it is given back.
void FreeExtra(CString& text)
{
    if (text.GetAllocLength() / 2 > text.GetLength())
    {
        text.FreeExtra();
    }
}

void WriteSortedDifference(const CString& text, const ParsedPoints& removed, PointTextWriter& writer)
{
    QuonPointMarker result;
    MarkText(result, text);
    for (const PointRange& range : removed.ranges)
    {
        Access::UnmarkRange(result, Lowest(range), Highest(range));
    }
    WriteSortedPoints(result, writer);
}

void WriteUnsortedDifference(const CString& text, const ParsedPoints& removed, PointTextWriter& writer)
{
    QuonPointMarker marker;
    unsigned long highest = 0;
    for (const PointRange& range : removed.ranges)
    {
        highest = std::max(highest, Highest(range));
    }
    const RangeMarker mark(marker, highest);
    for (const PointRange& range : removed.ranges)
    {
        mark(range);
    }
    UnsortedPointLayout layout(writer);
    ForEachRange(text, static_cast<std::size_t>(text.GetLength()),
                 [&](PointRange range) { AddUnmarked(marker, range, layout); });
    layout.Finish();
}

void WriteUnsortedUnique(const CString& text, PointTextWriter& writer)
{
    QuonPointMarker seen;
    const RangeMarker mark(seen, 0);
    UnsortedPointLayout layout(writer);
    // A range is marked when another one follows: the last one needs no room.
    PointRange previous{0, 0};
    ForEachRange(text, static_cast<std::size_t>(text.GetLength()), [&](PointRange range) {
        mark(previous);
        AddUnmarked(seen, range, layout);
        previous = range;
    });
    layout.Finish();
}

}  // namespace

ParsedPoints ParsePoints(const wchar_t* text, std::size_t length)
{
    // Most items are longer than this; room that is not used is never touched.
    constexpr std::size_t kLengthPerItem = 8;

    ParsedPoints points;
    points.ranges.reserve(length / kLengthPerItem);
    points.isValid = ForEachRange(text, length, [&points](PointRange range) { points.ranges.push_back(range); });
    return points;
}

CString FormatDifference(const CString& text, const ParsedPoints& removed, bool sorted)
{
    CString result;
    {
        PointTextWriter writer(result, text.GetLength());
        sorted ? WriteSortedDifference(text, removed, writer) : WriteUnsortedDifference(text, removed, writer);
    }
    FreeExtra(result);
    return result;
}

CString FormatUnique(const CString& text, bool sorted)
{
    CString result;
    {
        PointTextWriter writer(result, text.GetLength());
        sorted ? WriteSortedDifference(text, {}, writer) : WriteUnsortedUnique(text, writer);
    }
    FreeExtra(result);
    return result;
}

}  // namespace QuonPointDetails
