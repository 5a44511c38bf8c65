// Point arrays for the tests of the readers.
#pragma once

#include "geometry/VxGe.h"

#include <gtest/gtest.h>

#include <cstring>
#include <initializer_list>
#include <vector>

namespace quon_test
{

inline VxGePoint3dArray MakeArray(std::initializer_list<VxGePoint3d> points)
{
    VxGePoint3dArray array;
    for (const VxGePoint3d& point : points)
    {
        array.Append(point);
    }
    return array;
}

/// An array of `count` points that tell their index and `first`.
inline VxGePoint3dArray MakeRun(int first, int count)
{
    VxGePoint3dArray array;
    for (int i = first; i < first + count; ++i)
    {
        array.Append({i + 0.25, -i - 0.5, i * 1000.0});
    }
    return array;
}

inline std::vector<VxGePoint3d> ToVector(const VxGePoint3dArray& array)
{
    return {array.GetPoints(), array.GetPoints() + array.GetLogicalLength()};
}

/// Equal to the bit, NaN and signed zeros included.
inline bool SameBits(const VxGePoint3d& one, const VxGePoint3d& other)
{
    return std::memcmp(&one, &other, sizeof(one)) == 0;
}

inline void ExpectPoints(const VxGePoint3dArray& array, const std::vector<VxGePoint3d>& expected)
{
    ASSERT_EQ(array.GetLogicalLength(), static_cast<int>(expected.size()));
    for (int i = 0; i < array.GetLogicalLength(); ++i)
    {
        const VxGePoint3d& point = array.GetPoints()[i];
        EXPECT_TRUE(SameBits(point, expected[static_cast<std::size_t>(i)]))
            << "point " << i << ": " << point.x << ", " << point.y << ", " << point.z;
    }
}

}  // namespace quon_test
