// The memory of a marker, which the functions that mark one point do not drag along, and whole ranges.
#include "points/PointMarkerInternal.h"

#include "points/PointBitsInternal.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

using QuonPointDetails::kEndOfPoints;
using QuonPointDetails::kGrowthSlack;

namespace
{

constexpr std::uint64_t BytesFor(std::uint64_t bits)
{
    return (bits + 7) / 8;
}

// Whether the first number + `bits` stays within 32 bits; the sum of 64-bit numbers could wrap.
bool CanHold(unsigned long firstNumber, std::uint64_t bits)
{
    return bits <= 0xFFFFFFFFu - firstNumber;
}

bool Reallocate(unsigned char*& bytes, std::uint64_t size)
{
    void* const moved = std::realloc(bytes, static_cast<std::size_t>(size));
    if (moved == nullptr)
    {
        return false;
    }
    bytes = static_cast<unsigned char*>(moved);
    return true;
}

void Zero(unsigned char* bytes, std::uint64_t from, std::uint64_t to)
{
    if (from < to)
    {
        std::memset(bytes + from, 0, static_cast<std::size_t>(to - from));
    }
}

}  // namespace

BOOL QuonPointMarker::Resize(unsigned long long bits)
{
    if (!CanHold(m_firstNumber, bits))
    {
        return FALSE;
    }
    const std::uint64_t size = BytesFor(bits);
    if (size == 0)
    {
        std::free(m_bits);
        m_bits = nullptr;
    }
    else if (!Reallocate(m_bits, size))
    {
        return FALSE;
    }
    // By bytes: the bits of the last old byte that lie past the old count stay what they are.
    Zero(m_bits, BytesFor(m_bitCount), size);
    m_bitCount = bits;
    return TRUE;
}

std::uint64_t QuonPointMarkerAccess::CountBits(const QuonPointMarker& marker)
{
    return std::min<std::uint64_t>(marker.m_bitCount, kEndOfPoints - marker.m_firstNumber);
}

bool QuonPointMarkerAccess::Grow(QuonPointMarker& marker, std::uint64_t from, std::uint64_t to, std::uint64_t last)
{
    const std::uint64_t oldSize = BytesFor(marker.m_bitCount);
    const std::uint64_t size = BytesFor(last + kGrowthSlack);
    if (!CanHold(marker.m_firstNumber, last + kGrowthSlack) || !Reallocate(marker.m_bits, size))
    {
        return false;
    }
    // Writing a fresh page is what costs here: each is written once, zeroed or filled.
    Zero(marker.m_bits, oldSize, std::min(from / 8 + 1, size));
    // The last byte may hold bits past the count: they are clear even where `to` lies beyond it.
    Zero(marker.m_bits, std::max(oldSize, std::min(to / 8, size - 1)), size);
    marker.m_bitCount = last + kGrowthSlack;
    return true;
}

void QuonPointMarkerAccess::MarkRange(QuonPointMarker& marker, unsigned long lowest, unsigned long highest,
                                      unsigned long growTo)
{
    lowest = std::max(lowest, marker.m_firstNumber);
    highest = std::min(highest, kEndOfPoints - 1);
    if (lowest > highest)
    {
        return;
    }
    const std::uint64_t from = lowest - marker.m_firstNumber;
    std::uint64_t to = highest - marker.m_firstNumber + std::uint64_t{1};
    if (to > marker.m_bitCount)
    {
        const std::uint64_t wanted = std::max(highest, std::min(growTo, kEndOfPoints - 1)) - marker.m_firstNumber;
        // Where memory is short, only the numbers that it does not reach are lost.
        for (std::uint64_t last = wanted; last >= from && last >= marker.m_bitCount && !Grow(marker, from, to, last);)
        {
            last = last > to - 1 ? to - 1 : from + (last - from) / 2;
            if (last == from)
            {
                Grow(marker, from, to, last);
                break;
            }
        }
        to = std::min(to, marker.m_bitCount);
    }
    if (from < to)
    {
        QuonPointDetails::SetBits(marker.m_bits, BytesFor(marker.m_bitCount), from, to);
    }
}

void QuonPointMarkerAccess::UnmarkRange(QuonPointMarker& marker, unsigned long lowest, unsigned long highest)
{
    lowest = std::max(lowest, marker.m_firstNumber);
    if (lowest > highest)
    {
        return;
    }
    const std::uint64_t from = lowest - marker.m_firstNumber;
    const std::uint64_t to = std::min(highest - marker.m_firstNumber + std::uint64_t{1}, marker.m_bitCount);
    if (from < to)
    {
        QuonPointDetails::ClearBits(marker.m_bits, BytesFor(marker.m_bitCount), from, to);
    }
}
