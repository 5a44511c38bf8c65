#include "geometry/VxGe.h"

#include "geometry/Points.h"
#include "helpers/AllocationCounter.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <new>
#include <random>
#include <type_traits>
#include <utility>

using namespace quon_test;

namespace
{

/// What other modules that know the array by its fields see.
struct ArrayFields
{
    VxGePoint3d* points;
    std::int32_t physicalLength;
    std::int32_t logicalLength;
    std::int32_t growLength;
};

ArrayFields FieldsOf(const VxGePoint3dArray& array)
{
    ArrayFields fields;
    std::memcpy(&fields, &array, sizeof(fields));
    return fields;
}

TEST(VxGePoint3d, HoldsThreeDoublesInOrder)
{
    static_assert(std::is_trivially_copyable_v<VxGePoint3d> && std::is_standard_layout_v<VxGePoint3d>);
    static_assert(sizeof(VxGePoint3d) == 3 * sizeof(double));
    const VxGePoint3d point{1.0, 2.0, 3.0};
    const double* const values = &point.x;
    EXPECT_EQ(values[0], 1.0);
    EXPECT_EQ(&point.y, values + 1);
    EXPECT_EQ(&point.z, values + 2);
}

TEST(VxGePoint3dArray, KeepsItsFieldsInOrder)
{
    static_assert(sizeof(VxGePoint3dArray) == sizeof(ArrayFields));
    VxGePoint3dArray array(5, 3);
    array.Append({1, 2, 3});
    const ArrayFields fields = FieldsOf(array);
    EXPECT_EQ(fields.points, array.GetPoints());
    EXPECT_NE(fields.points, nullptr);
    EXPECT_EQ(fields.physicalLength, 5);
    EXPECT_EQ(fields.logicalLength, 1);
    EXPECT_EQ(fields.growLength, 3);
}

TEST(VxGePoint3dArray, StartsEmptyWithGrowLengthEight)
{
    const AllocationCounter counter;
    const VxGePoint3dArray array;
    EXPECT_EQ(FieldsOf(array).points, nullptr);
    EXPECT_EQ(array.GetPhysicalLength(), 0);
    EXPECT_EQ(array.GetLogicalLength(), 0);
    EXPECT_EQ(array.GetGrowLength(), 8);
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.begin(), array.end());
    EXPECT_EQ(counter.GetTaken(), 0);
}

TEST(VxGePoint3dArray, GrowsByItsGrowLength)
{
    for (const int growLength : {-5, 0, 1, 3, 8, 1000})
    {
        SCOPED_TRACE(growLength);
        const int step = growLength < 1 ? 1 : growLength;
        VxGePoint3dArray array(2, growLength);
        int physical = 2;
        for (int i = 0; i < 300; ++i)
        {
            if (i == physical)
            {
                physical += step;
            }
            array.Append({i * 1.0, 0, 0});
            ASSERT_EQ(array.GetPhysicalLength(), physical);
            ASSERT_EQ(array.GetLogicalLength(), i + 1);
        }
        for (int i = 0; i < 300; ++i)
        {
            ASSERT_EQ(array[i].x, i);
        }
    }
}

TEST(VxGePoint3dArray, AppendingManyPointsMovesTheBlockRarely)
{
    const AllocationCounter counter;
    VxGePoint3dArray array;
    for (int i = 0; i < 1000000; ++i)
    {
        array.Append({i * 1.0, 0, 0});
    }
    EXPECT_LT(counter.GetTaken(), 100);
    EXPECT_EQ(array.GetPhysicalLength(), 1000000);
    for (int i = 0; i < 1000000; ++i)
    {
        ASSERT_EQ(array[i].x, i);
    }
}

TEST(VxGePoint3dArray, RemovingAllKeepsTheStorage)
{
    VxGePoint3dArray array = MakeRun(0, 20);
    const VxGePoint3d* const points = array.GetPoints();
    const int physical = array.GetPhysicalLength();
    const AllocationCounter counter;
    array.RemoveAll();
    EXPECT_EQ(array.GetLogicalLength(), 0);
    EXPECT_EQ(array.GetPhysicalLength(), physical);
    array.Append({1, 2, 3});
    EXPECT_EQ(array.GetPoints(), points);
    EXPECT_EQ(counter.GetTaken(), 0);
    ExpectPoints(array, {{1, 2, 3}});
}

TEST(VxGePoint3dArray, AssigningCopiesDeeply)
{
    VxGePoint3dArray from = MakeRun(0, 5);
    VxGePoint3dArray to(0, 3);
    to = from;
    EXPECT_EQ(to.GetPhysicalLength(), 5);
    EXPECT_EQ(to.GetGrowLength(), 3);
    from[0].x = 99;
    from.RemoveAll();
    ExpectPoints(to, ToVector(MakeRun(0, 5)));
    const VxGePoint3d* const points = to.GetPoints();
    const AllocationCounter counter;
    const VxGePoint3dArray one = MakeArray({{7, 8, 9}});
    to = one;
    EXPECT_EQ(to.GetPoints(), points);
    EXPECT_EQ(to.GetPhysicalLength(), 5);
    ExpectPoints(to, {{7, 8, 9}});
    to = from;
    EXPECT_TRUE(to.IsEmpty());
    EXPECT_EQ(to.GetPhysicalLength(), 5);
    EXPECT_EQ(counter.GetTaken(), 1);  // the array of one point itself
}

TEST(VxGePoint3dArray, AssigningToItselfChangesNothing)
{
    VxGePoint3dArray array = MakeRun(3, 4);
    VxGePoint3dArray& same = array;
    array = same;
    ExpectPoints(array, ToVector(MakeRun(3, 4)));
}

TEST(VxGePoint3dArray, CopiesAndMoves)
{
    VxGePoint3dArray from(20, 5);
    from.Append({1, 2, 3});
    VxGePoint3dArray copy(from);
    EXPECT_EQ(copy.GetPhysicalLength(), 1);
    EXPECT_EQ(copy.GetGrowLength(), 5);
    EXPECT_NE(copy.GetPoints(), from.GetPoints());
    ExpectPoints(copy, {{1, 2, 3}});

    const VxGePoint3d* const points = from.GetPoints();
    VxGePoint3dArray moved(std::move(from));
    EXPECT_EQ(moved.GetPoints(), points);
    EXPECT_EQ(moved.GetPhysicalLength(), 20);
    EXPECT_EQ(FieldsOf(from).points, nullptr);
    EXPECT_EQ(FieldsOf(from).physicalLength, 0);
    EXPECT_EQ(FieldsOf(from).logicalLength, 0);
    from.Append({4, 5, 6});
    ExpectPoints(from, {{4, 5, 6}});

    copy = std::move(moved);
    EXPECT_EQ(copy.GetPoints(), points);
    EXPECT_EQ(copy.GetPhysicalLength(), 20);
    static_assert(std::is_nothrow_move_constructible_v<VxGePoint3dArray>);
    static_assert(std::is_nothrow_move_assignable_v<VxGePoint3dArray>);
}

TEST(VxGePoint3dArray, CopyOfAnEmptyArrayHasNoStorage)
{
    const AllocationCounter counter;
    const VxGePoint3dArray empty;
    const VxGePoint3dArray copy(empty);
    EXPECT_EQ(FieldsOf(copy).points, nullptr);
    EXPECT_EQ(counter.GetTaken(), 0);
}

TEST(VxGePoint3dArray, AppendsItsOwnPointsWhileItsBlockMoves)
{
    VxGePoint3dArray array(2, 1);
    array.Append({1, 2, 3});
    array.Append({4, 5, 6});
    array.Append(array[0]);
    array.Append(array.GetPoints() + 1, 2);
    ExpectPoints(array, {{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}, {1, 2, 3}});
    array.SetPhysicalLength(40);
    array.Append(array.GetPoints(), 5);
    EXPECT_EQ(array.GetPhysicalLength(), 40);
    ExpectPoints(
        array,
        {{1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {1, 2, 3}, {4, 5, 6}, {1, 2, 3}, {4, 5, 6}, {1, 2, 3}});
}

TEST(VxGePoint3dArray, AppendingARunGrowsByWholeGrowLengths)
{
    struct Row
    {
        int physical;
        int grow;
        int count;
        int expected;
    };
    for (const Row& row : {Row{0, 8, 0, 0}, Row{0, 8, 1, 8}, Row{0, 8, 8, 8}, Row{0, 8, 9, 16}, Row{3, 8, 4, 11},
                           Row{5, 8, 5, 5}, Row{5, 0, 7, 7}, Row{100, 8, 109, 116}})
    {
        SCOPED_TRACE(testing::Message() << row.physical << " + " << row.count << " by " << row.grow);
        const VxGePoint3dArray points = MakeRun(0, row.count);
        VxGePoint3dArray array(row.physical, row.grow);
        array.Append(points.GetPoints(), row.count);
        EXPECT_EQ(array.GetPhysicalLength(), row.expected);
        ExpectPoints(array, ToVector(points));
    }
}

TEST(VxGePoint3dArray, SetPhysicalLengthMakesAndCutsRoom)
{
    VxGePoint3dArray array = MakeRun(0, 10);
    array.SetPhysicalLength(1000);
    EXPECT_EQ(array.GetPhysicalLength(), 1000);
    ExpectPoints(array, ToVector(MakeRun(0, 10)));
    for (int i = 16; i < 1000; ++i)
    {
        ASSERT_TRUE(SameBits(array.GetPoints()[i], {0, 0, 0})) << i;
    }
    array.SetPhysicalLength(4);
    EXPECT_EQ(array.GetPhysicalLength(), 4);
    ExpectPoints(array, ToVector(MakeRun(0, 4)));
    array.SetPhysicalLength(0);
    EXPECT_EQ(FieldsOf(array).points, nullptr);
    array.SetPhysicalLength(-7);
    EXPECT_EQ(array.GetPhysicalLength(), 0);
    const VxGePoint3dArray negative(-3);
    EXPECT_EQ(negative.GetPhysicalLength(), 0);
}

TEST(VxGePoint3dArray, StaysAsItWasWhenMemoryIsExhausted)
{
    VxGePoint3dArray array(3, 8);
    array.Append(MakeRun(0, 3).GetPoints(), 3);
    const VxGePoint3dArray larger = MakeRun(0, 30);
    AllocationCounter counter;
    counter.SetExhausted(true);
    EXPECT_THROW(array.Append({1, 2, 3}), std::bad_alloc);
    EXPECT_THROW(array.Append(larger.GetPoints(), 30), std::bad_alloc);
    EXPECT_THROW(array.SetPhysicalLength(100), std::bad_alloc);
    EXPECT_THROW(array = larger, std::bad_alloc);
    EXPECT_THROW(VxGePoint3dArray{larger}, std::bad_alloc);
    EXPECT_THROW(VxGePoint3dArray{1}, std::bad_alloc);
    counter.SetExhausted(false);
    EXPECT_EQ(array.GetPhysicalLength(), 3);
    ExpectPoints(array, ToVector(MakeRun(0, 3)));
}

TEST(VxGePoint3dArray, RefusesToGrowPastItsLargestLength)
{
    VxGePoint3dArray array(1, 2147483647);
    array.Append({1, 2, 3});
    EXPECT_THROW(array.Append({4, 5, 6}), std::bad_alloc);
    ExpectPoints(array, {{1, 2, 3}});
}

TEST(VxGePoint3dArray, BehavesAsAVectorOfPoints)
{
    std::mt19937 random(20240611);
    AllocationCounter counter;
    {
        VxGePoint3dArray arrays[3] = {VxGePoint3dArray(0, 8), VxGePoint3dArray(5, 1), VxGePoint3dArray(70, 100)};
        std::vector<VxGePoint3d> models[3];
        for (int step = 0; step < quon_test::Cases(50000); ++step)
        {
            const auto target = random() % 3;
            const auto other = random() % 3;
            const VxGePoint3d point{step * 1.0, step * 2.0, step * 3.0};
            switch (random() % 16)
            {
                case 0:
                    arrays[target] = arrays[other];
                    models[target] = models[other];
                    break;
                case 1:
                    arrays[target].RemoveAll();
                    models[target].clear();
                    break;
                case 2:
                {
                    const int length = static_cast<int>(random() % 200);
                    arrays[target].SetPhysicalLength(length);
                    models[target].resize((std::min)(models[target].size(), static_cast<std::size_t>(length)));
                    break;
                }
                default:
                    arrays[target].Append(point);
                    models[target].push_back(point);
            }
            ASSERT_LE(arrays[target].GetLogicalLength(), arrays[target].GetPhysicalLength());
            ASSERT_EQ(arrays[target].GetLogicalLength(), static_cast<int>(models[target].size()));
            if (step % 50 == 0)
            {
                ExpectPoints(arrays[target], models[target]);
            }
        }
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

}  // namespace
