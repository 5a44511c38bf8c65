#include "geometry/QuonPointReader.h"

#include "geometry/Points.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <random>

using namespace quon_test;

namespace
{

struct SingleFields
{
    void* const* table;
    double x;
    double y;
    double z;
    std::int32_t read;
};

struct ArrayFields
{
    void* const* table;
    std::uint32_t cursor;
    const VxGePoint3dArray* points;
};

void ExpectPoint(QuonPointReader& reader, const VxGePoint3d& expected)
{
    VxGePoint3d point{-1, -2, -3};
    bool end = true;
    EXPECT_TRUE(reader.GetNextPoint(&point.x, &point.y, &point.z, &end));
    EXPECT_FALSE(end);
    EXPECT_TRUE(SameBits(point, expected)) << point.x << ", " << point.y << ", " << point.z;
}

void ExpectNoPointLeft(QuonPointReader& reader)
{
    for (int i = 0; i < 2; ++i)
    {
        VxGePoint3d point{-1, -2, -3};
        bool end = false;
        EXPECT_FALSE(reader.GetNextPoint(&point.x, &point.y, &point.z, &end));
        EXPECT_TRUE(end);
        EXPECT_FALSE(reader.GetNextPoint(&point.x, &point.y, &point.z, nullptr));
        EXPECT_TRUE(SameBits(point, {-1, -2, -3})) << "the outputs were touched";
    }
}

TEST(QuonSinglePointReader, YieldsItsPointOnceUntilReset)
{
    QuonSinglePointReader reader(1.5, -2.5, 3.5);
    EXPECT_EQ(reader.GetPointCount(), 1);
    for (int pass = 0; pass < 3; ++pass)
    {
        SCOPED_TRACE(pass);
        ExpectPoint(reader, {1.5, -2.5, 3.5});
        EXPECT_EQ(reader.GetPointCount(), 1);
        ExpectNoPointLeft(reader);
        EXPECT_EQ(reader.GetPointCount(), 1);
        reader.Reset();
    }
}

TEST(QuonSinglePointReader, YieldsAnyDoubles)
{
    const VxGePoint3d odd{std::nan(""), -0.0, HUGE_VAL};
    QuonSinglePointReader reader(odd.x, odd.y, odd.z);
    ExpectPoint(reader, odd);
}

TEST(QuonSinglePointReader, KeepsItsFieldsInOrder)
{
    static_assert(sizeof(QuonSinglePointReader) == sizeof(SingleFields));
    QuonSinglePointReader reader(1, 2, 3);
    auto& fields = *reinterpret_cast<SingleFields*>(&reader);
    EXPECT_EQ(fields.x, 1);
    EXPECT_EQ(fields.y, 2);
    EXPECT_EQ(fields.z, 3);
    EXPECT_EQ(fields.read, 0);
    ExpectPoint(reader, {1, 2, 3});
    EXPECT_EQ(fields.read, 1);
    // Only 1 means read.
    fields.read = 2;
    ExpectPoint(reader, {1, 2, 3});
    EXPECT_EQ(fields.read, 1);
    reader.Reset();
    EXPECT_EQ(fields.read, 0);
}

TEST(QuonArrayPointReader, YieldsThePointsInTheOrderOfTheirIndex)
{
    for (const int count : {0, 1, 2, 50})
    {
        SCOPED_TRACE(count);
        const VxGePoint3dArray points = MakeRun(7, count);
        QuonArrayPointReader reader(&points);
        for (int pass = 0; pass < 2; ++pass)
        {
            EXPECT_EQ(reader.GetPointCount(), count);
            for (int i = 0; i < count; ++i)
            {
                SCOPED_TRACE(i);
                ExpectPoint(reader, points[i]);
            }
            ExpectNoPointLeft(reader);
            EXPECT_EQ(reader.GetPointCount(), count);
            reader.Reset();
        }
    }
}

TEST(QuonArrayPointReader, SeesPointsAppendedWhileReading)
{
    VxGePoint3dArray points = MakeRun(0, 1);
    QuonArrayPointReader reader(&points);
    ExpectPoint(reader, points[0]);
    ExpectNoPointLeft(reader);
    for (int i = 1; i < 100; ++i)
    {
        SCOPED_TRACE(i);
        points.Append(MakeRun(i, 1)[0]);
        EXPECT_EQ(reader.GetPointCount(), i + 1);
        ExpectPoint(reader, points[i]);
        ExpectNoPointLeft(reader);
    }
}

TEST(QuonArrayPointReader, EndsWhenPointsAreRemovedBehindItsCursor)
{
    VxGePoint3dArray points = MakeRun(0, 5);
    QuonArrayPointReader reader(&points);
    ExpectPoint(reader, points[0]);
    ExpectPoint(reader, points[1]);
    points.RemoveAll();
    EXPECT_EQ(reader.GetPointCount(), 0);
    ExpectNoPointLeft(reader);
    points = MakeRun(10, 3);
    ExpectPoint(reader, points[2]);
    ExpectNoPointLeft(reader);
}

TEST(QuonArrayPointReader, KeepsItsFieldsInOrder)
{
    static_assert(sizeof(QuonArrayPointReader) == sizeof(ArrayFields));
    const VxGePoint3dArray points = MakeRun(0, 3);
    QuonArrayPointReader reader(&points);
    const auto& fields = *reinterpret_cast<const ArrayFields*>(&reader);
    EXPECT_EQ(fields.cursor, 0u);
    EXPECT_EQ(fields.points, &points);
    ExpectPoint(reader, points[0]);
    ExpectPoint(reader, points[1]);
    EXPECT_EQ(fields.cursor, 2u);
    reader.Reset();
    EXPECT_EQ(fields.cursor, 0u);
}

TEST(PointReaders, WorkWithoutAnEndFlag)
{
    const VxGePoint3dArray points = MakeRun(0, 1);
    QuonSinglePointReader single(1, 2, 3);
    QuonArrayPointReader array(&points);
    for (QuonPointReader* reader : {static_cast<QuonPointReader*>(&single), static_cast<QuonPointReader*>(&array)})
    {
        VxGePoint3d point{};
        EXPECT_TRUE(reader->GetNextPoint(&point.x, &point.y, &point.z, nullptr));
        EXPECT_FALSE(reader->GetNextPoint(&point.x, &point.y, &point.z, nullptr));
    }
}

TEST(PointReaders, AreDeletedThroughTheirInterface)
{
    const VxGePoint3dArray points = MakeRun(0, 4);
    const std::unique_ptr<QuonPointReader> readers[] = {std::make_unique<QuonSinglePointReader>(1, 2, 3),
                                                        std::make_unique<QuonArrayPointReader>(&points)};
    EXPECT_EQ(readers[0]->GetPointCount(), 1);
    EXPECT_EQ(readers[1]->GetPointCount(), 4);
}

template <typename Result, typename... Arguments>
Result CallSlot(QuonPointReader& reader, std::size_t index, Arguments... arguments)
{
    void* const* const table = *reinterpret_cast<void* const* const*>(&reader);
    return reinterpret_cast<Result (*)(QuonPointReader*, Arguments...)>(table[index])(&reader, arguments...);
}

TEST(PointReaders, KeepTheOrderOfTheirSlots)
{
    const VxGePoint3dArray points = MakeRun(5, 1);
    QuonSinglePointReader single(points[0].x, points[0].y, points[0].z);
    QuonArrayPointReader array(&points);
    for (QuonPointReader* reader : {static_cast<QuonPointReader*>(&single), static_cast<QuonPointReader*>(&array)})
    {
        VxGePoint3d point{};
        for (int pass = 0; pass < 2; ++pass)
        {
            EXPECT_TRUE(
                (CallSlot<bool, double*, double*, double*, bool*>(*reader, 0, &point.x, &point.y, &point.z, nullptr)));
            EXPECT_TRUE(SameBits(point, points[0]));
            EXPECT_FALSE(
                (CallSlot<bool, double*, double*, double*, bool*>(*reader, 0, &point.x, &point.y, &point.z, nullptr)));
            CallSlot<void>(*reader, 1);
        }
        EXPECT_EQ((CallSlot<int>(*reader, 2)), 1);
    }
}

TEST(PointReaders, AgreeWithAModelOnRandomUse)
{
    std::mt19937 random(4711);
    VxGePoint3dArray points;
    std::vector<VxGePoint3d> model;
    std::size_t next = 0;
    QuonArrayPointReader reader(&points);
    for (int step = 0; step < quon_test::Cases(50000); ++step)
    {
        SCOPED_TRACE(step);
        switch (random() % 64)
        {
            case 0:
                reader.Reset();
                next = 0;
                break;
            case 1:
                points.RemoveAll();
                model.clear();
                break;
            default:
                if (random() % 2 == 0)
                {
                    model.push_back({step * 1.0, step * 2.0, step * 3.0});
                    points.Append(model.back());
                }
                else if (next < model.size())
                {
                    ExpectPoint(reader, model[next++]);
                }
                else
                {
                    ExpectNoPointLeft(reader);
                }
        }
        ASSERT_EQ(reader.GetPointCount(), static_cast<int>(model.size()));
    }
}

}  // namespace
