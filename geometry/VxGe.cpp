#include "geometry/VxGe.h"

#if !defined(QUON_USE_HOST_VXGE)

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

namespace
{

constexpr unsigned int kLargestExactLength = 64;

/// The points that the block for `physicalLength` points really holds. An array grows by a fixed, small number of
/// points; if its block grew as often, appending n points would copy n * n of them. Blocks of more than a few points
/// are therefore rounded up by at most a quarter, and most growths find room in the block that is there.
std::size_t BlockLength(int physicalLength)
{
    const auto length = static_cast<unsigned int>(physicalLength);
    if (length <= kLargestExactLength)
    {
        return length;
    }
    // A quarter of the largest power of two within the length.
    const int shift = std::bit_width(length) - 3;
    const std::size_t mask = (std::size_t{1} << shift) - 1;
    return (length + mask) & ~mask;
}

/// Gives the block `points` of an array of `physicalLength` points (null for 0) room for `newPhysicalLength` points.
/// @return the block, null for 0 points. Throws std::bad_alloc when memory is exhausted; the old block then stays.
VxGePoint3d* ResizeBlock(VxGePoint3d* points, int physicalLength, int newPhysicalLength)
{
    const std::size_t oldBlock = BlockLength(physicalLength);
    const std::size_t newBlock = BlockLength(newPhysicalLength);
    if (newBlock == oldBlock)
    {
        return points;
    }
    if (newBlock == 0)
    {
        std::free(points);
        return nullptr;
    }
    auto* const resized = static_cast<VxGePoint3d*>(std::realloc(points, newBlock * sizeof(VxGePoint3d)));
    if (resized == nullptr)
    {
        throw std::bad_alloc();
    }
    if (newBlock > oldBlock)
    {
        // Corners past an array's logical end can be read: they must be the same in every run.
        std::memset(resized + oldBlock, 0, (newBlock - oldBlock) * sizeof(VxGePoint3d));
    }
    return resized;
}

}  // namespace

VxGePoint3dArray::VxGePoint3dArray(int physicalLength, int growLength)
    : m_points(nullptr), m_physicalLength(0), m_logicalLength(0), m_growLength(growLength)
{
    SetPhysicalLength(physicalLength);
}

VxGePoint3dArray::VxGePoint3dArray(const VxGePoint3dArray& other) : VxGePoint3dArray(0, other.m_growLength)
{
    *this = other;
}

VxGePoint3dArray::VxGePoint3dArray(VxGePoint3dArray&& other) noexcept
    : m_points(std::exchange(other.m_points, nullptr)),
      m_physicalLength(std::exchange(other.m_physicalLength, 0)),
      m_logicalLength(std::exchange(other.m_logicalLength, 0)),
      m_growLength(other.m_growLength)
{
}

VxGePoint3dArray::~VxGePoint3dArray()
{
    std::free(m_points);
}

VxGePoint3dArray& VxGePoint3dArray::operator=(const VxGePoint3dArray& other)
{
    if (this != &other)
    {
        if (other.m_logicalLength > m_physicalLength)
        {
            SetPhysicalLength(other.m_logicalLength);
        }
        if (other.m_logicalLength > 0)
        {
            std::memcpy(m_points, other.m_points,
                        static_cast<std::size_t>(other.m_logicalLength) * sizeof(VxGePoint3d));
        }
        m_logicalLength = other.m_logicalLength;
    }
    return *this;
}

VxGePoint3dArray& VxGePoint3dArray::operator=(VxGePoint3dArray&& other) noexcept
{
    std::swap(m_points, other.m_points);
    std::swap(m_physicalLength, other.m_physicalLength);
    std::swap(m_logicalLength, other.m_logicalLength);
    std::swap(m_growLength, other.m_growLength);
    return *this;
}

void VxGePoint3dArray::SetPhysicalLength(int physicalLength)
{
    const int length = (std::max)(physicalLength, 0);
    m_points = ResizeBlock(m_points, m_physicalLength, length);
    m_physicalLength = length;
    m_logicalLength = (std::min)(m_logicalLength, length);
}

#endif
