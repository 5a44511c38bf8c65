#include "points/QuonPointMarker.h"

#include "points/PointMarkerInternal.h"

#include <cstdlib>

using QuonPointDetails::kEndOfPoints;
using QuonPointDetails::kGrowthSlack;

QuonPointMarker::QuonPointMarker() : m_bits(nullptr), m_bitCount(0), m_firstNumber(1) {}

QuonPointMarker::~QuonPointMarker()
{
    std::free(m_bits);
}

void QuonPointMarker::MarkPoint(unsigned long point)
{
    if (point >= kEndOfPoints)
    {
        return;
    }
    // The index of a number below the first one wraps at 32 bits, the slack is added to 64: so the growth fails.
    const unsigned long index = point - m_firstNumber;
    if (index < m_bitCount || Resize(index + kGrowthSlack))
    {
        SetBit(index);
    }
}

void QuonPointMarker::UnmarkPoint(unsigned long point)
{
    if (point >= kEndOfPoints)
    {
        return;
    }
    const unsigned long index = point - m_firstNumber;
    if (index < m_bitCount || Resize(index + kGrowthSlack))
    {
        ClearBit(index);
    }
}

BOOL QuonPointMarker::IsPointMarked(unsigned long point) const
{
    const unsigned long index = point - m_firstNumber;
    return point < kEndOfPoints && index < m_bitCount ? TestBit(index) : FALSE;
}

void QuonPointMarker::SetBit(unsigned long long index)
{
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): below the bit count there are bits
    m_bits[index / 8] = static_cast<unsigned char>(m_bits[index / 8] | 1u << index % 8);
}

void QuonPointMarker::ClearBit(unsigned long long index)
{
    // NOLINTNEXTLINE(clang-analyzer-core.NullDereference): below the bit count there are bits
    m_bits[index / 8] = static_cast<unsigned char>(m_bits[index / 8] & ~(1u << index % 8));
}

BOOL QuonPointMarker::TestBit(unsigned long long index) const
{
    return (m_bits[index / 8] >> index % 8 & 1) != 0 ? TRUE : FALSE;
}

void QuonPointMarker::Clear()
{
    Resize(0);
}

unsigned long QuonPointMarker::GetFirstNumber() const
{
    return m_firstNumber;
}

unsigned long QuonPointMarker::GetEndNumber() const
{
    return m_firstNumber + static_cast<unsigned long>(m_bitCount);
}
