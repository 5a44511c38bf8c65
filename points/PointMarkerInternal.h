// Whole ranges of point numbers in a marker: what the set operations of the point strings need, at memory speed.
#pragma once

#include <afx.h>

#include "points/QuonPointMarker.h"

#include <cstdint>

namespace QuonPointDetails
{

/// Point numbers from here up are not representable: with them the growth by 1024 bits would reach past 32 bits.
inline constexpr unsigned long kEndOfPoints = 0xFFFFFC00;

/// The slack of every growth, in bits.
inline constexpr std::uint64_t kGrowthSlack = 1024;

}  // namespace QuonPointDetails

struct QuonPointMarkerAccess
{
    /// Marks lowest, ..., highest. When the set must grow, it grows at once to `growTo` (a number that will be marked
    /// later) if that is higher, and the bytes that are filled anyway are not zeroed before. When memory is short,
    /// the numbers that it does not reach are dropped.
    static void MarkRange(QuonPointMarker& marker, unsigned long lowest, unsigned long highest, unsigned long growTo);

    /// Unmarks lowest, ..., highest as far as the marker holds them; it does not grow.
    static void UnmarkRange(QuonPointMarker& marker, unsigned long lowest, unsigned long highest);

    /// Grows the set to bit `last` and the slack, without zeroing bytes all of whose bits lie in from, ..., to - 1.
    /// @return false, and nothing has changed, when there is no memory.
    static bool Grow(QuonPointMarker& marker, std::uint64_t from, std::uint64_t to, std::uint64_t last);

    /// The buffer, for reading.
    static const unsigned char* Bytes(const QuonPointMarker& marker) { return marker.m_bits; }

    /// The number of bits that stand for representable points.
    static std::uint64_t CountBits(const QuonPointMarker& marker);
};
