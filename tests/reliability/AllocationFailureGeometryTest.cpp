// Memory that runs out while faces and points are collected and read.
#include "base/MemoryInternal.h"
#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"
#include "reliability/Survival.h"

using namespace quon_test;

namespace
{

VxGePoint3dArray Corners(int count)
{
    VxGePoint3dArray corners;
    for (int i = 0; i < count; ++i)
    {
        corners.Append({1.0 * i, 2.0 * i, 3.0 * i});
    }
    return corners;
}

void ReadAll(QuonFaceReader& reader)
{
    VxGePoint3dArray face;
    reader.Reset();
    while (reader.GetNextFace(face))
    {
    }
    double minX, minY, maxX, maxY;
    reader.GetExtents(&minX, &minY, &maxX, &maxY);
}

// Adds a face again when there was no memory for it, and counts what was added: a failed call adds nothing.
template <typename Reader>
void AddInSpiteOfFailures(Reader& reader, const VxGePoint3dArray& face)
{
    const int before = reader.GetFaceCount();
    if (!RunsInMemory([&] { reader.AddFace(face); }))
    {
        EXPECT_EQ(reader.GetFaceCount(), before);
        reader.AddFace(face);
    }
    EXPECT_EQ(reader.GetFaceCount(), before + 1);
}

template <typename Reader>
void CollectFaces()
{
    Reader reader;
    for (int corners = 3; corners < 40; ++corners)
    {
        AddInSpiteOfFailures(reader, Corners(corners));
    }
    ReadAll(reader);
}

TEST(AllocationFailureGeometry, Triangles)
{
    EXPECT_GT(ExpectSurvives(&CollectFaces<QuonMultiTriFaceReader>, kPlain), 10);
}
TEST(AllocationFailureGeometry, Polygons)
{
    EXPECT_GT(ExpectSurvives(&CollectFaces<QuonMultiPolyFaceReader>, kPlain), 40);
}

TEST(AllocationFailureGeometry, ASingleFace)
{
    const VxGePoint3dArray face = Corners(20);
    const int places = ExpectSurvives(
        [&face] {
            QuonSingleFaceReader reader(&face);
            ReadAll(reader);
        },
        kReturned | kStandardMemory);
    EXPECT_GT(places, 0);
}

TEST(AllocationFailureGeometry, PointReadersTakeNoMemory)
{
    const VxGePoint3dArray points = Corners(20);
    const int places = ExpectSurvives(
        [&points] {
            double x, y, z;
            QuonArrayPointReader array(&points);
            while (array.GetNextPoint(&x, &y, &z, nullptr))
            {
            }
            QuonSinglePointReader single(1, 2, 3);
            single.GetNextPoint(&x, &y, &z, nullptr);
        },
        kReturned);
    EXPECT_EQ(places, 0);
}

TEST(AllocationFailureGeometry, AnArrayKeepsItsPointsWhenItCannotGrow)
{
    const int places = ExpectSurvives(
        [] {
            VxGePoint3dArray points = Corners(8);
            try
            {
                points.SetPhysicalLength(1000);
                points.Append({1, 2, 3});
                points = Corners(5);
            }
            catch (const std::bad_alloc&)
            {
                EXPECT_GE(points.GetLogicalLength(), 5);
                EXPECT_EQ(points[4].y, 8.0);
                throw;
            }
        },
        kReturned | kStandardMemory);
    EXPECT_GT(places, 2);
}

}  // namespace
