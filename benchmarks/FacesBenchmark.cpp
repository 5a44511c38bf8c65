// A terrain of 1,000,000 triangles: read face by face, and its extents.
#include <afx.h>

#include "BenchmarkSupport.h"

#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <vector>

using namespace quon_benchmark;

namespace
{

struct Triangle
{
    VxGePoint3d corners[3];
};

// The same triangles in all of the readers and in a plain array.
struct Terrain
{
    std::vector<Triangle> triangles;
    std::vector<std::vector<VxGePoint3d>> vectors;
    QuonMultiTriFaceReader triangleReader;
    QuonMultiPolyFaceReader polygonReader;
    VxGePoint3dArray corners;
    QuonArrayPointReader pointReader{&corners};

    explicit Terrain(int size)
    {
        std::mt19937 random(5);
        std::uniform_real_distribution<double> coordinate(0.0, 5000.0);
        VxGePoint3dArray face;
        for (int index = 0; index < size; ++index)
        {
            Triangle triangle;
            face.RemoveAll();
            for (VxGePoint3d& corner : triangle.corners)
            {
                corner = {coordinate(random), coordinate(random), coordinate(random) / 50};
                face.Append(corner);
                corners.Append(corner);
            }
            triangles.push_back(triangle);
            vectors.emplace_back(triangle.corners, triangle.corners + 3);
            triangleReader.AddFace(face);
            polygonReader.AddFace(face);
        }
    }
};

using SharedTerrain = std::shared_ptr<Terrain>;

// What is done with each face costs little, so that the reading is what is measured. No loop: a vectorised one would
// wait for the copy of the face to arrive in memory, in whichever way that was made.
double SumOf(const VxGePoint3d* corners)
{
    return corners[0].x + corners[1].y - corners[2].z;
}

double ReadAll(QuonFaceReader& reader)
{
    double sum = 0.0;
    VxGePoint3dArray face;
    reader.Reset();
    while (reader.GetNextFace(face))
    {
        sum += SumOf(face.GetPoints());
    }
    return sum;
}

// The limit: each face is copied to a place of its own, as the reader does, but by no call.
double ReadBare(const std::vector<Triangle>& triangles)
{
    double sum = 0.0;
    for (const Triangle& triangle : triangles)
    {
        Triangle face = triangle;
        benchmark::DoNotOptimize(face);
        sum += SumOf(face.corners);
    }
    return sum;
}

double ReadVectors(const std::vector<std::vector<VxGePoint3d>>& vectors)
{
    double sum = 0.0;
    std::vector<VxGePoint3d> face;
    for (const std::vector<VxGePoint3d>& vector : vectors)
    {
        face = vector;
        benchmark::DoNotOptimize(face.data());
        sum += SumOf(face.data());
    }
    return sum;
}

double ReadInPlace(const std::vector<Triangle>& triangles)
{
    double sum = 0.0;
    for (const Triangle& triangle : triangles)
    {
        sum += SumOf(triangle.corners);
    }
    return sum;
}

double ReadPoints(QuonPointReader& reader)
{
    double sum = 0.0, x = 0.0, y = 0.0, z = 0.0;
    reader.Reset();
    while (reader.GetNextPoint(&x, &y, &z, nullptr))
    {
        sum += x - z;
    }
    return sum;
}

double SumOfCorners(const VxGePoint3dArray& corners)
{
    double sum = 0.0;
    for (const VxGePoint3d& corner : corners)
    {
        sum += corner.x - corner.z;
    }
    return sum;
}

struct Extents
{
    double minX = (std::numeric_limits<double>::max)();
    double minY = minX;
    double maxX = -minX;
    double maxY = -minX;

    bool operator==(const Extents& other) const
    {
        return minX == other.minX && minY == other.minY && maxX == other.maxX && maxY == other.maxY;
    }
};

Extents ExtentsOf(QuonFaceReader& reader)
{
    Extents extents;
    reader.GetExtents(&extents.minX, &extents.minY, &extents.maxX, &extents.maxY);
    return extents;
}

Extents ExtentsOf(const std::vector<Triangle>& triangles)
{
    Extents extents;
    for (const Triangle& triangle : triangles)
    {
        for (const VxGePoint3d& corner : triangle.corners)
        {
            extents.minX = corner.x < extents.minX ? corner.x : extents.minX;
            extents.minY = corner.y < extents.minY ? corner.y : extents.minY;
            extents.maxX = corner.x > extents.maxX ? corner.x : extents.maxX;
            extents.maxY = corner.y > extents.maxY ? corner.y : extents.maxY;
        }
    }
    return extents;
}

bool IsNear(double a, double b)
{
    return std::abs(a - b) <= 1e-9 * std::abs(b);
}

void AddReading(const SharedTerrain& terrain, int size)
{
    Add("read faces", size, "quon", [terrain] { benchmark::DoNotOptimize(ReadAll(terrain->triangleReader)); });
    Add("read faces", size, "limit: bare loop, each face copied",
        [terrain] { benchmark::DoNotOptimize(ReadBare(terrain->triangles)); });
    Add("read faces", size, "loop over the array in place",
        [terrain] { benchmark::DoNotOptimize(ReadInPlace(terrain->triangles)); });

    Add("read polygons", size, "quon", [terrain] { benchmark::DoNotOptimize(ReadAll(terrain->polygonReader)); });
    Add("read polygons", size, "std::vector<std::vector>, each face copied",
        [terrain] { benchmark::DoNotOptimize(ReadVectors(terrain->vectors)); });

    Add("read points of the faces", size, "quon",
        [terrain] { benchmark::DoNotOptimize(ReadPoints(terrain->pointReader)); });
    Add("read points of the faces", size, "limit: bare loop",
        [terrain] { benchmark::DoNotOptimize(SumOfCorners(terrain->corners)); });
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(1000000))
    {
        const SharedTerrain terrain = std::make_shared<Terrain>(size);
        const double sum = ReadInPlace(terrain->triangles);
        Require(IsNear(ReadAll(terrain->triangleReader), sum) && IsNear(ReadAll(terrain->polygonReader), sum) &&
                    IsNear(ReadBare(terrain->triangles), sum) && IsNear(ReadVectors(terrain->vectors), sum),
                "the faces read");
        Require(IsNear(ReadPoints(terrain->pointReader), SumOfCorners(terrain->corners)), "the points read");
        Require(ExtentsOf(terrain->triangleReader) == ExtentsOf(terrain->triangles) &&
                    ExtentsOf(terrain->polygonReader) == ExtentsOf(terrain->triangles),
                "the extents");
        AddReading(terrain, size);
        Add("extents", size, "quon", [terrain] { benchmark::DoNotOptimize(ExtentsOf(terrain->triangleReader)); });
        Add("extents", size, "limit: bare loop",
            [terrain] { benchmark::DoNotOptimize(ExtentsOf(terrain->triangles)); });
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
