#include "geometry/QuonFaceReader.h"

#include "geometry/Faces.h"
#include "helpers/AllocationCounter.h"

#include <gtest/gtest.h>

#include <vector>

using namespace quon_test;

namespace
{

TEST(QuonSingleFaceReader, HandsItsFaceOutOnceUntilReset)
{
    const VxGePoint3dArray corners = MakeRun(0, 4);
    QuonSingleFaceReader reader(&corners);
    EXPECT_EQ(reader.GetFaceCount(), 1);
    for (int pass = 0; pass < 3; ++pass)
    {
        SCOPED_TRACE(pass);
        ExpectFaces(reader, {ToVector(corners)});
        EXPECT_EQ(reader.GetFaceCount(), 1);
        reader.Reset();
    }
    reader.Reset();
    reader.Reset();
    ExpectFaces(reader, {ToVector(corners)});
}

TEST(QuonSingleFaceReader, CountsAnEmptyFace)
{
    const VxGePoint3dArray corners;
    QuonSingleFaceReader reader(&corners);
    EXPECT_EQ(reader.GetFaceCount(), 1);
    ExpectFaces(reader, {{}});
    EXPECT_EQ(reader.GetFaceCount(), 1);
}

TEST(QuonSingleFaceReader, CopiesTheFaceAsItIsWhenRead)
{
    VxGePoint3dArray corners = MakeRun(0, 3);
    VxGePoint3dArray face;
    {
        QuonSingleFaceReader reader(&corners);
        corners.Append({7, 8, 9});
        ASSERT_TRUE(reader.GetNextFace(face));
    }
    EXPECT_NE(face.GetPoints(), corners.GetPoints());
    ExpectPoints(face, ToVector(corners));
    corners[0].x = 5;
    EXPECT_EQ(face[0].x, 0.25);
}

TEST(QuonSingleFaceReader, ReadsIntoItsOwnFace)
{
    VxGePoint3dArray corners = MakeRun(0, 3);
    QuonSingleFaceReader reader(&corners);
    EXPECT_TRUE(reader.GetNextFace(corners));
    ExpectPoints(corners, ToVector(MakeRun(0, 3)));
    EXPECT_FALSE(reader.GetNextFace(corners));
}

TEST(QuonSingleFaceReader, KeepsItsFieldsInOrder)
{
    const VxGePoint3dArray corners = MakeRun(0, 3);
    QuonSingleFaceReader reader(&corners);
    EXPECT_EQ(FieldsOf(reader).held, &corners);
    EXPECT_EQ(FieldsOf(reader).position, 0u);
    VxGePoint3dArray face;
    reader.GetNextFace(face);
    EXPECT_EQ(FieldsOf(reader).position, 1u);
    // Only 1 means read.
    FieldsOf(reader).position = 2;
    EXPECT_TRUE(reader.GetNextFace(face));
    EXPECT_EQ(FieldsOf(reader).position, 1u);
    reader.Reset();
    EXPECT_EQ(FieldsOf(reader).position, 0u);
}

TEST(QuonMultiTriFaceReader, StartsWithoutFaces)
{
    QuonMultiTriFaceReader reader;
    EXPECT_EQ(reader.GetFaceCount(), 0);
    ExpectFaces(reader, {});
    reader.Reset();
    ExpectFaces(reader, {});
}

TEST(QuonMultiTriFaceReader, HandsTrianglesOutInTheOrderAdded)
{
    QuonMultiTriFaceReader reader;
    EXPECT_EQ(reader.AddFace(Triangle(10)), 1);
    EXPECT_EQ(reader.AddFace(Triangle(0)), 2);
    EXPECT_EQ(reader.GetFaceCount(), 2);
    for (int pass = 0; pass < 2; ++pass)
    {
        SCOPED_TRACE(pass);
        ExpectFaces(reader, {ToVector(Triangle(10)), ToVector(Triangle(0))});
        EXPECT_EQ(reader.GetFaceCount(), 2);
        reader.Reset();
    }
}

TEST(QuonMultiTriFaceReader, ResetsInTheMiddleAndSeesFacesAddedWhileReading)
{
    QuonMultiTriFaceReader reader;
    reader.AddFace(Triangle(0));
    reader.AddFace(Triangle(3));
    VxGePoint3dArray face;
    ASSERT_TRUE(reader.GetNextFace(face));
    reader.Reset();
    ExpectFaces(reader, {ToVector(Triangle(0)), ToVector(Triangle(3))});
    EXPECT_EQ(reader.AddFace(Triangle(6)), 3);
    ExpectFaces(reader, {ToVector(Triangle(6))});
}

TEST(QuonMultiTriFaceReader, TakesJustTheFirstThreePointsOfAFace)
{
    QuonMultiTriFaceReader reader;
    EXPECT_EQ(reader.AddFace(MakeRun(0, 7)), 1);
    ExpectFaces(reader, {ToVector(MakeRun(0, 3))});
}

TEST(QuonMultiTriFaceReader, TakesWhatStandsPastTheEndOfAShortFace)
{
    struct Row
    {
        const char* name;
        int physical;
        int used;     // points once in the array
        int logical;  // points left in it
        int taken;    // of the three corners, those that were once in the array
    };
    for (const Row& row : {Row{"none, no storage", 0, 0, 0, 0}, Row{"none, storage", 8, 0, 0, 0},
                           Row{"one, storage for one", 1, 1, 1, 1}, Row{"one, storage for two", 2, 1, 1, 1},
                           Row{"two, storage for two", 2, 2, 2, 2}, Row{"two, storage for more", 8, 2, 2, 2},
                           Row{"removed, left in the storage", 8, 5, 0, 3}, Row{"three, no more", 3, 3, 3, 3}})
    {
        SCOPED_TRACE(row.name);
        VxGePoint3dArray shortFace(row.physical, 1);
        shortFace.Append(MakeRun(1, row.used).GetPoints(), row.used);
        if (row.logical == 0)
        {
            shortFace.RemoveAll();
        }
        ASSERT_EQ(shortFace.GetPhysicalLength(), row.physical);
        ASSERT_EQ(shortFace.GetLogicalLength(), row.logical);

        QuonMultiTriFaceReader reader;
        EXPECT_EQ(reader.AddFace(shortFace), 1);
        std::vector<VxGePoint3d> expected = ToVector(MakeRun(1, row.taken));
        expected.resize(3);
        ExpectFaces(reader, {expected});
    }
}

TEST(QuonMultiTriFaceReader, ReadsPastTheEndWhenTheCornersAreNoMultipleOfThree)
{
    for (const int extra : {1, 2})
    {
        SCOPED_TRACE(extra);
        QuonMultiTriFaceReader reader;
        reader.AddFace(Triangle(0));
        auto* const corners = static_cast<VxGePoint3dArray*>(FieldsOf(reader).held);
        corners->Append(MakeRun(3, extra).GetPoints(), extra);
        EXPECT_EQ(reader.GetFaceCount(), 1);

        std::vector<VxGePoint3d> last = ToVector(MakeRun(3, extra));
        last.resize(3);  // the storage's unused room
        ExpectFaces(reader, {ToVector(Triangle(0)), last});

        // Corners that were there before are what the storage still holds.
        corners->Append(MakeRun(3 + extra, 3 - extra).GetPoints(), 3 - extra);
        const int physical = corners->GetPhysicalLength();
        corners->RemoveAll();
        corners->Append(MakeRun(20, 1)[0]);
        ASSERT_EQ(corners->GetPhysicalLength(), physical);
        reader.Reset();
        ExpectFaces(reader, {{MakeRun(20, 1)[0], MakeRun(1, 1)[0], MakeRun(2, 1)[0]}});
        EXPECT_EQ(reader.GetFaceCount(), 0);

        // No storage past the end: the origin stands in.
        corners->SetPhysicalLength(1);
        reader.Reset();
        ExpectFaces(reader, {{MakeRun(20, 1)[0], {0, 0, 0}, {0, 0, 0}}});
    }
}

TEST(QuonMultiTriFaceReader, OwnsItsCornersAndKeepsItsFieldsInOrder)
{
    const AllocationCounter counter;
    {
        QuonMultiTriFaceReader reader;
        auto* const corners = static_cast<VxGePoint3dArray*>(FieldsOf(reader).held);
        EXPECT_EQ(corners->GetLogicalLength(), 0);
        EXPECT_EQ(corners->GetPhysicalLength(), 0);
        EXPECT_EQ(corners->GetGrowLength(), 8);
        EXPECT_EQ(FieldsOf(reader).position, 0u);
        reader.AddFace(Triangle(0));
        EXPECT_EQ(corners->GetLogicalLength(), 3);
        EXPECT_EQ(corners->GetPhysicalLength(), 8);
        VxGePoint3dArray face;
        reader.GetNextFace(face);
        EXPECT_EQ(FieldsOf(reader).position, 3u);
        reader.Reset();
        EXPECT_EQ(FieldsOf(reader).position, 0u);
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST(QuonMultiPolyFaceReader, StartsWithoutFaces)
{
    QuonMultiPolyFaceReader reader;
    EXPECT_EQ(reader.GetFaceCount(), 0);
    ExpectFaces(reader, {});
}

TEST(QuonMultiPolyFaceReader, HandsPolygonsOutInTheOrderAdded)
{
    QuonMultiPolyFaceReader reader;
    EXPECT_EQ(reader.AddFace(MakeRun(0, 6)), 1);
    EXPECT_EQ(reader.AddFace(VxGePoint3dArray()), 2);
    EXPECT_EQ(reader.AddFace(MakeRun(20, 1)), 3);
    EXPECT_EQ(reader.AddFace(MakeRun(30, 100)), 4);
    EXPECT_EQ(reader.GetFaceCount(), 4);
    for (int pass = 0; pass < 2; ++pass)
    {
        SCOPED_TRACE(pass);
        ExpectFaces(reader, {ToVector(MakeRun(0, 6)), {}, ToVector(MakeRun(20, 1)), ToVector(MakeRun(30, 100))});
        EXPECT_EQ(reader.GetFaceCount(), 4);
        reader.Reset();
    }
}

TEST(QuonMultiPolyFaceReader, CopiesWhatIsAdded)
{
    QuonMultiPolyFaceReader reader;
    VxGePoint3dArray polygon = MakeRun(0, 4);
    reader.AddFace(polygon);
    polygon[0].x = 77;
    polygon.RemoveAll();
    ExpectFaces(reader, {ToVector(MakeRun(0, 4))});
    EXPECT_EQ(reader.AddFace(MakeRun(9, 3)), 2);
    ExpectFaces(reader, {ToVector(MakeRun(9, 3))});
}

TEST(QuonMultiPolyFaceReader, OwnsItsPolygonsAndKeepsItsFieldsInOrder)
{
    const AllocationCounter counter;
    {
        QuonMultiPolyFaceReader reader;
        ASSERT_NE(FieldsOf(reader).held, nullptr);
        EXPECT_EQ(FieldsOf(reader).position, 0u);
        for (int i = 0; i < 20; ++i)
        {
            reader.AddFace(MakeRun(i, i));
        }
        const auto& polygons = *static_cast<const std::vector<VxGePoint3dArray>*>(FieldsOf(reader).held);
        EXPECT_EQ(polygons.size(), 20u);
        VxGePoint3dArray face;
        reader.GetNextFace(face);
        reader.GetNextFace(face);
        EXPECT_EQ(FieldsOf(reader).position, 2u);
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

}  // namespace
