#include "geometry/QuonFaceReader.h"

#include "geometry/Points.h"
#include "support/AllocationCounter.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <random>

using namespace quon_test;

namespace
{

/// A reader's fields as other modules know them: the dispatch table's pointer, a pointer, 32 bits.
struct ReaderFields
{
    void* const* table;
    void* held;
    std::uint32_t position;
};

template <typename Reader>
ReaderFields& FieldsOf(Reader& reader)
{
    static_assert(sizeof(Reader) == sizeof(ReaderFields));
    return *reinterpret_cast<ReaderFields*>(&reader);
}

VxGePoint3dArray Triangle(int first)
{
    return MakeRun(first, 3);
}

/// An output array whose old contents show whether a reader touched it.
VxGePoint3dArray Stale()
{
    return MakeArray({{-1, -1, -1}, {-2, -2, -2}, {-3, -3, -3}, {-4, -4, -4}, {-5, -5, -5}});
}

void ExpectNoFaceLeft(QuonFaceReader& reader)
{
    VxGePoint3dArray face = Stale();
    const VxGePoint3d* const points = face.GetPoints();
    for (int i = 0; i < 2; ++i)
    {
        EXPECT_FALSE(reader.GetNextFace(face));
        EXPECT_EQ(face.GetPoints(), points);
        ExpectPoints(face, ToVector(Stale()));
    }
}

void ExpectFaces(QuonFaceReader& reader, const std::vector<std::vector<VxGePoint3d>>& faces)
{
    VxGePoint3dArray face = Stale();
    for (std::size_t i = 0; i < faces.size(); ++i)
    {
        SCOPED_TRACE(testing::Message() << "face " << i);
        ASSERT_TRUE(reader.GetNextFace(face));
        ExpectPoints(face, faces[i]);
    }
    ExpectNoFaceLeft(reader);
}

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

TEST(FaceReaders, AllocateNothingOnceTheCallersArrayHasTheRoom)
{
    const VxGePoint3dArray corners = MakeRun(0, 12);
    QuonSingleFaceReader single(&corners);
    QuonMultiTriFaceReader triangles;
    QuonMultiPolyFaceReader polygons;
    for (int i = 0; i < 100; ++i)
    {
        triangles.AddFace(Triangle(i));
        polygons.AddFace(MakeRun(i, i % 13));
    }
    VxGePoint3dArray face;
    QuonFaceReader* const readers[] = {&single, &triangles, &polygons};
    for (QuonFaceReader* reader : readers)
    {
        while (reader->GetNextFace(face))
        {
        }
    }
    const AllocationCounter counter;
    for (QuonFaceReader* reader : readers)
    {
        reader->Reset();
        while (reader->GetNextFace(face))
        {
        }
    }
    EXPECT_EQ(counter.GetTaken(), 0);
}

TEST(FaceReaders, DoNotMoveOnWhenMemoryIsExhausted)
{
    AllocationCounter counter;
    QuonMultiTriFaceReader triangles;
    QuonMultiPolyFaceReader polygons;
    triangles.AddFace(Triangle(0));
    polygons.AddFace(MakeRun(0, 9));
    const VxGePoint3dArray corners = MakeRun(0, 9);
    QuonSingleFaceReader single(&corners);
    QuonFaceReader* const readers[] = {&single, &triangles, &polygons};
    for (QuonFaceReader* reader : readers)
    {
        VxGePoint3dArray face;
        counter.SetExhausted(true);
        EXPECT_THROW(reader->GetNextFace(face), std::bad_alloc);
        counter.SetExhausted(false);
        EXPECT_TRUE(reader->GetNextFace(face));
    }
    const VxGePoint3dArray more = MakeRun(0, 9);
    counter.SetExhausted(true);
    EXPECT_THROW(polygons.AddFace(more), std::bad_alloc);
    counter.SetExhausted(false);
    EXPECT_EQ(polygons.GetFaceCount(), 1);

    // Two triangles leave room for two corners of the eight that the array grows by.
    EXPECT_EQ(triangles.AddFace(more), 2);
    counter.SetExhausted(true);
    EXPECT_THROW(triangles.AddFace(more), std::bad_alloc);
    counter.SetExhausted(false);
    EXPECT_EQ(triangles.GetFaceCount(), 2);
    EXPECT_EQ(triangles.AddFace(MakeRun(5, 3)), 3);
    triangles.Reset();
    ExpectFaces(triangles, {ToVector(Triangle(0)), ToVector(MakeRun(0, 3)), ToVector(MakeRun(5, 3))});
}

TEST(FaceReaders, AreDeletedThroughTheirInterface)
{
    const VxGePoint3dArray corners = MakeRun(0, 3);
    const AllocationCounter counter;
    {
        auto triangles = std::make_unique<QuonMultiTriFaceReader>();
        auto polygons = std::make_unique<QuonMultiPolyFaceReader>();
        triangles->AddFace(corners);
        polygons->AddFace(corners);
        const std::unique_ptr<QuonFaceReader> readers[] = {std::make_unique<QuonSingleFaceReader>(&corners),
                                                           std::move(triangles), std::move(polygons)};
        for (const auto& reader : readers)
        {
            EXPECT_EQ(reader->GetFaceCount(), 1);
        }
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
    ExpectPoints(corners, ToVector(MakeRun(0, 3)));
}

/// Calls the slot `index` of the reader's dispatch table. On this platform a member function is called as a plain
/// function with the object first.
template <typename Result, typename... Arguments>
Result CallSlot(QuonFaceReader& reader, std::size_t index, Arguments... arguments)
{
    void* const* const table = *reinterpret_cast<void* const* const*>(&reader);
    return reinterpret_cast<Result (*)(QuonFaceReader*, Arguments...)>(table[index])(&reader, arguments...);
}

#if defined(__GNUC__)
constexpr std::size_t kDestructorSlots = 2;
#else
constexpr std::size_t kDestructorSlots = 1;
#endif

template <typename Reader>
void ExpectSlotOrder()
{
    Reader reader;
    const VxGePoint3dArray triangle = Triangle(4);
    EXPECT_EQ((CallSlot<int, const VxGePoint3dArray*>(reader, 4 + kDestructorSlots, &triangle)), 1);
    VxGePoint3dArray face;
    EXPECT_TRUE((CallSlot<bool, VxGePoint3dArray*>(reader, 0, &face)));
    ExpectPoints(face, ToVector(triangle));
    EXPECT_FALSE((CallSlot<bool, VxGePoint3dArray*>(reader, 0, &face)));
    CallSlot<void>(reader, 1);
    EXPECT_TRUE((CallSlot<bool, VxGePoint3dArray*>(reader, 0, &face)));
    EXPECT_EQ((CallSlot<int>(reader, 2)), 1);
    double minX = 0;
    double minY = 0;
    double maxX = 0;
    double maxY = 0;
    CallSlot<void, double*, double*, double*, double*>(reader, 3, &minX, &minY, &maxX, &maxY);
    EXPECT_EQ(minX, 4.25);
    EXPECT_EQ(minY, -6.5);
    EXPECT_EQ(maxX, 6.25);
    EXPECT_EQ(maxY, -4.5);
}

TEST(FaceReaders, KeepTheOrderOfTheirSlots)
{
    ExpectSlotOrder<QuonMultiTriFaceReader>();
    ExpectSlotOrder<QuonMultiPolyFaceReader>();
}

TEST(FaceReaders, AgreeWithAModelOnRandomUse)
{
    std::mt19937 random(77);
    QuonMultiTriFaceReader triangles;
    QuonMultiPolyFaceReader polygons;
    std::vector<std::vector<VxGePoint3d>> triangleModel;
    std::vector<std::vector<VxGePoint3d>> polygonModel;
    std::size_t nextTriangle = 0;
    std::size_t nextPolygon = 0;
    VxGePoint3dArray face;
    for (int step = 0; step < 50000; ++step)
    {
        SCOPED_TRACE(step);
        switch (random() % 8)
        {
            case 0:
            case 1:
            {
                const VxGePoint3dArray added = MakeRun(step, 3 + static_cast<int>(random() % 5));
                triangleModel.push_back(ToVector(added));
                triangleModel.back().resize(3);
                ASSERT_EQ(triangles.AddFace(added), static_cast<int>(triangleModel.size()));
                break;
            }
            case 2:
            {
                const VxGePoint3dArray added = MakeRun(step, static_cast<int>(random() % 20));
                polygonModel.push_back(ToVector(added));
                ASSERT_EQ(polygons.AddFace(added), static_cast<int>(polygonModel.size()));
                break;
            }
            case 3:
                if (random() % 100 == 0)
                {
                    triangles.Reset();
                    polygons.Reset();
                    nextTriangle = 0;
                    nextPolygon = 0;
                }
                break;
            case 4:
            case 5:
                ASSERT_EQ(triangles.GetNextFace(face), nextTriangle < triangleModel.size());
                if (nextTriangle < triangleModel.size())
                {
                    ExpectPoints(face, triangleModel[nextTriangle++]);
                }
                break;
            default:
                ASSERT_EQ(polygons.GetNextFace(face), nextPolygon < polygonModel.size());
                if (nextPolygon < polygonModel.size())
                {
                    ExpectPoints(face, polygonModel[nextPolygon++]);
                }
        }
        ASSERT_EQ(triangles.GetFaceCount(), static_cast<int>(triangleModel.size()));
        ASSERT_EQ(polygons.GetFaceCount(), static_cast<int>(polygonModel.size()));
    }
    EXPECT_GT(triangleModel.size(), 5000u);
}

}  // namespace
