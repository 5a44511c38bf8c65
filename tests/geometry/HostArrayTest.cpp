// The readers, compiled with the point array of a host's geometry library.
#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"

#include <gtest/gtest.h>

namespace
{

static_assert(VxGePoint3dArray::kIsTheHosts);

TEST(HostArray, IsReadByAllReaders)
{
    VxGePoint3dArray corners;
    for (int i = 0; i < 4; ++i)
    {
        corners.Append({i * 1.0, i * -2.0, 9.0});
    }
    QuonSingleFaceReader single(&corners);
    QuonMultiTriFaceReader triangles;
    QuonMultiPolyFaceReader polygons;
    EXPECT_EQ(triangles.AddFace(corners), 1);
    EXPECT_EQ(polygons.AddFace(corners), 1);

    QuonFaceReader* const readers[] = {&single, &triangles, &polygons};
    const int lengths[] = {4, 3, 4};
    for (int i = 0; i < 3; ++i)
    {
        SCOPED_TRACE(i);
        VxGePoint3dArray face;
        ASSERT_TRUE(readers[i]->GetNextFace(face));
        ASSERT_EQ(face.GetLogicalLength(), lengths[i]);
        EXPECT_EQ(face.GetPoints()[2].y, -4.0);
        EXPECT_FALSE(readers[i]->GetNextFace(face));
        double minX = 0;
        double minY = 0;
        double maxX = 0;
        double maxY = 0;
        readers[i]->GetExtents(&minX, &minY, &maxX, &maxY);
        EXPECT_EQ(minX, 0.0);
        EXPECT_EQ(minY, -2.0 * (lengths[i] - 1));
        EXPECT_EQ(maxX, lengths[i] - 1.0);
        EXPECT_EQ(maxY, 0.0);
    }

    QuonArrayPointReader points(&corners);
    EXPECT_EQ(points.GetPointCount(), 4);
    double x = 0;
    double y = 0;
    double z = 0;
    ASSERT_TRUE(points.GetNextPoint(&x, &y, &z, nullptr));
    ASSERT_TRUE(points.GetNextPoint(&x, &y, &z, nullptr));
    EXPECT_EQ(y, -2.0);
}

}  // namespace
