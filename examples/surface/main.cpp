// A function that draws any set of faces, and the extents of a surface.
#include "geometry/QuonFaceReader.h"

#include <cstdio>

namespace
{

VxGePoint3dArray Triangle(const VxGePoint3d& a, const VxGePoint3d& b, const VxGePoint3d& c)
{
    VxGePoint3dArray face(3);
    face.Append(a);
    face.Append(b);
    face.Append(c);
    return face;
}

// Takes the faces from wherever they are held. One array for all of them: reading allocates nothing.
double HighestPoint(QuonFaceReader& reader)
{
    double highest = -1e300;
    VxGePoint3dArray face;
    for (reader.Reset(); reader.GetNextFace(face);)
    {
        for (const VxGePoint3d& point : face)
        {
            highest = point.z > highest ? point.z : highest;
        }
    }
    return highest;
}

}  // namespace

int main()
{
    const VxGePoint3d corners[] = {{0, 0, 10}, {50, 0, 12}, {50, 40, 15.5}, {0, 40, 11}};
    QuonMultiTriFaceReader surface;
    surface.AddFace(Triangle(corners[0], corners[1], corners[2]));
    surface.AddFace(Triangle(corners[0], corners[2], corners[3]));
    std::printf("faces    %d\n", surface.GetFaceCount());

    double minX = 0, minY = 0, maxX = 0, maxY = 0;
    surface.GetExtents(&minX, &minY, &maxX, &maxY);
    std::printf("extents  %g %g to %g %g\n", minX, minY, maxX, maxY);
    std::printf("highest  %g\n", HighestPoint(surface));
    return 0;
}
