/// @file
/// What the peers of the point strings are made of: a loop that reads groups of points, one that writes them, and the
/// sets that a user would pick, each with the same operations.
#pragma once

#include <afx.h>

#include "points/QuonPointMarker.h"

#include <roaring/roaring.h>

#include <boost/icl/interval_set.hpp>
#include <charconv>
#include <cstdint>
#include <cwchar>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quon_benchmark
{

/// Points first, ..., last.
struct PointGroup
{
    unsigned long first;
    unsigned long last;
};

/// Reads the group at `position` and moves behind it and its comma. Nothing is checked.
inline PointGroup ReadGroup(const wchar_t*& position)
{
    const auto readNumber = [&position] {
        unsigned long number = 0;
        for (; *position >= L'0' && *position <= L'9'; ++position)
        {
            number = 10 * number + static_cast<unsigned long>(*position - L'0');
        }
        return number;
    };
    PointGroup group{};
    group.first = group.last = readNumber();
    if (*position == L'-')
    {
        ++position;
        group.last = readNumber();
    }
    if (*position == L',')
    {
        ++position;
    }
    return group;
}

/// The same by the C run-time's conversion.
inline PointGroup ReadGroupByRunTime(const wchar_t*& position)
{
    wchar_t* end = nullptr;
    PointGroup group{};
    group.first = group.last = std::wcstoul(position, &end, 10);
    if (*end == L'-')
    {
        group.last = std::wcstoul(end + 1, &end, 10);
    }
    position = *end == L',' ? end + 1 : end;
    return group;
}

/// Writes groups, with commas between them.
class GroupWriter
{
public:
    void Write(PointGroup group)
    {
        constexpr int kDigits = 10;
        char item[2 * (1 + kDigits)];
        char* end = item;
        if (!m_text.empty())
        {
            *end++ = ',';
        }
        end = std::to_chars(end, end + kDigits, group.first).ptr;
        if (group.first != group.last)
        {
            *end++ = '-';
            end = std::to_chars(end, end + kDigits, group.last).ptr;
        }
        m_text.append(item, end);
    }

    std::wstring Take() { return std::move(m_text); }

private:
    std::wstring m_text;
};

/// The library's set. It has no operation on ranges of its own: the point strings have.
class MarkerSet
{
public:
    void AddPoint(unsigned long point) { m_marker.MarkPoint(point); }
    bool HasPoint(unsigned long point) const { return m_marker.IsPointMarked(point) != FALSE; }

private:
    QuonPointMarker m_marker;
};

/// Compressed bitmaps.
class RoaringSet
{
public:
    RoaringSet() : m_bitmap(roaring_bitmap_create()) {}
    ~RoaringSet() { roaring_bitmap_free(m_bitmap); }
    RoaringSet(const RoaringSet&) = delete;
    RoaringSet& operator=(const RoaringSet&) = delete;

    void AddPoint(unsigned long point) { roaring_bitmap_add(m_bitmap, point); }
    bool HasPoint(unsigned long point) const { return roaring_bitmap_contains(m_bitmap, point); }
    void Add(PointGroup group) { roaring_bitmap_add_range_closed(m_bitmap, group.first, group.last); }
    void Remove(PointGroup group) { roaring_bitmap_remove_range_closed(m_bitmap, group.first, group.last); }

    template <typename Visit>
    void ForEachRun(const Visit& visit) const
    {
        roaring_uint32_iterator_t iterator{};
        roaring_init_iterator(m_bitmap, &iterator);
        std::uint32_t points[256];
        PointGroup run{};
        for (;;)
        {
            const std::uint32_t count = roaring_read_uint32_iterator(&iterator, points, 256);
            for (std::uint32_t index = 0; index < count; ++index)
            {
                if (points[index] == run.last + 1 && run.first != 0)
                {
                    run.last = points[index];
                    continue;
                }
                if (run.first != 0)
                {
                    visit(run);
                }
                run = {points[index], points[index]};
            }
            if (count == 0)
            {
                break;
            }
        }
        if (run.first != 0)
        {
            visit(run);
        }
    }

private:
    roaring_bitmap_t* m_bitmap;
};

/// One bit a point, by the standard library.
class VectorBoolSet
{
public:
    void AddPoint(unsigned long point)
    {
        Grow(point);
        m_bits[point] = true;
    }
    bool HasPoint(unsigned long point) const { return point < m_bits.size() && m_bits[point]; }
    void Add(PointGroup group)
    {
        Grow(group.last);
        std::fill(At(group.first), At(group.last + 1), true);
    }
    void Remove(PointGroup group)
    {
        const unsigned long end = static_cast<unsigned long>(m_bits.size());
        std::fill(At((std::min)(group.first, end)), At((std::min)(group.last + 1, end)), false);
    }

    template <typename Visit>
    void ForEachRun(const Visit& visit) const
    {
        for (auto from = std::find(m_bits.begin(), m_bits.end(), true); from != m_bits.end();)
        {
            const auto to = std::find(from, m_bits.end(), false);
            visit(PointGroup{static_cast<unsigned long>(from - m_bits.begin()),
                             static_cast<unsigned long>(to - m_bits.begin() - 1)});
            from = std::find(to, m_bits.end(), true);
        }
    }

private:
    void Grow(unsigned long point)
    {
        if (point >= m_bits.size())
        {
            m_bits.resize(point + 1024);
        }
    }
    std::vector<bool>::iterator At(unsigned long point) { return m_bits.begin() + static_cast<std::ptrdiff_t>(point); }

    std::vector<bool> m_bits;
};

/// Intervals in a tree.
class IntervalSet
{
public:
    void Add(PointGroup group) { m_intervals.add(ToInterval(group)); }
    void Remove(PointGroup group) { m_intervals.subtract(ToInterval(group)); }

    template <typename Visit>
    void ForEachRun(const Visit& visit) const
    {
        for (const auto& interval : m_intervals)
        {
            visit(PointGroup{interval.lower(), interval.upper() - 1});
        }
    }

private:
    using Intervals = boost::icl::interval_set<unsigned long>;

    static Intervals::interval_type ToInterval(PointGroup group)
    {
        return Intervals::interval_type::right_open(group.first, group.last + 1);
    }

    Intervals m_intervals;
};

/// Points in a tree, one node each.
class StdSet
{
public:
    void AddPoint(unsigned long point) { m_points.insert(m_points.end(), point); }
    bool HasPoint(unsigned long point) const { return m_points.count(point) != 0; }
    void Add(PointGroup group)
    {
        for (unsigned long point = group.first; point <= group.last; ++point)
        {
            AddPoint(point);
        }
    }
    void Remove(PointGroup group)
    {
        m_points.erase(m_points.lower_bound(group.first), m_points.upper_bound(group.last));
    }

    template <typename Visit>
    void ForEachRun(const Visit& visit) const
    {
        for (auto position = m_points.begin(); position != m_points.end();)
        {
            PointGroup run{*position, *position};
            while (++position != m_points.end() && *position == run.last + 1)
            {
                ++run.last;
            }
            visit(run);
        }
    }

private:
    std::set<unsigned long> m_points;
};

}  // namespace quon_benchmark
