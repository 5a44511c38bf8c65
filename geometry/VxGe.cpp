#include "geometry/VxGe.h"

#if !defined(QUON_USE_HOST_VXGE)

#include <bit>
#include <cstddef>
#include <cstdlib>

namespace
{

constexpr unsigned int kLargestExactLength = 64;

/// The points that the block for `physicalLength` points really holds. An array grows by a fixed, small number of points;
/// if its block grew as often, appending n points would copy n * n of them. Blocks of more than a few points are
/// therefore rounded up by at most a quarter, and most growths find room in the block that is there.
std::size_t BlockLength(int physicalLength)
{
    const auto length = static_cast<unsigned int>(physicalLength);
    if (length <= kLargestExactLength)
    {
        return length;
    }
    const unsigned int step = std::bit_floor(length) / 4;
    return (std::size_t{length} + step - 1) / step * step;
}

}  // namespace

VxGePoint3d* VxGeResizeStorage(VxGePoint3d* points, int physicalLength, int newPhysicalLength)
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
    if (resized != nullptr && newBlock > oldBlock)
    {
        // Corners past an array's logical end can be read: they must be the same in every run.
        std::memset(resized + oldBlock, 0, (newBlock - oldBlock) * sizeof(VxGePoint3d));
    }
    return resized;
}

#endif
