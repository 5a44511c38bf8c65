// What all face readers have in common.
#include "geometry/QuonFaceReader.h"

#include "geometry/Faces.h"
#include "helpers/AllocationCounter.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <new>
#include <random>
#include <utility>
#include <vector>

using namespace quon_test;

namespace
{

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

#if !defined(_MSC_VER)
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
    for (int step = 0; step < quon_test::Cases(50000); ++step)
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
