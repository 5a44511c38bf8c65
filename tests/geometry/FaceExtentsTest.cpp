#include "geometry/QuonFaceReader.h"

#include "geometry/Points.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <memory>
#include <random>

using namespace quon_test;

namespace
{

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kLargest = 1.7976931348623157e308;
const double kNaN = std::nan("");

struct Extents
{
    double minX;
    double minY;
    double maxX;
    double maxY;
};

Extents ExtentsOf(QuonFaceReader& reader)
{
    Extents extents{kNaN, kNaN, kNaN, kNaN};
    reader.GetExtents(&extents.minX, &extents.minY, &extents.maxX, &extents.maxY);
    return extents;
}

/// The comparisons, one by one and in storage order.
Extents PlainExtents(const std::vector<VxGePoint3d>& points, double start)
{
    Extents extents{start, start, -start, -start};
    for (const VxGePoint3d& point : points)
    {
        if (extents.minX > point.x)
        {
            extents.minX = point.x;
        }
        if (extents.minY > point.y)
        {
            extents.minY = point.y;
        }
        if (point.x > extents.maxX)
        {
            extents.maxX = point.x;
        }
        if (point.y > extents.maxY)
        {
            extents.maxY = point.y;
        }
    }
    return extents;
}

void ExpectSameBits(const Extents& extents, const Extents& expected)
{
    EXPECT_EQ(std::memcmp(&extents, &expected, sizeof(extents)), 0)
        << extents.minX << ", " << extents.minY << ", " << extents.maxX << ", " << extents.maxY << " instead of "
        << expected.minX << ", " << expected.minY << ", " << expected.maxX << ", " << expected.maxY;
}

/// The extents of `points` by each reader, for the multi readers with their start value. The triangle reader sees whole
/// triangles only; the polygons split the points at `splits`.
void ExpectAllReadersAgree(const std::vector<VxGePoint3d>& points, std::mt19937& random)
{
    VxGePoint3dArray corners;
    corners.Append(points.data(), static_cast<int>(points.size()));
    QuonSingleFaceReader single(&corners);
    ExpectSameBits(ExtentsOf(single), PlainExtents(points, kInfinity));

    QuonMultiTriFaceReader triangles;
    const std::size_t whole = points.size() / 3 * 3;
    for (std::size_t i = 0; i < whole; i += 3)
    {
        VxGePoint3dArray triangle;
        triangle.Append(points.data() + i, 3);
        triangles.AddFace(triangle);
    }
    ExpectSameBits(ExtentsOf(triangles),
                   PlainExtents({points.begin(), points.begin() + static_cast<long>(whole)}, kLargest));

    QuonMultiPolyFaceReader polygons;
    for (std::size_t i = 0; i < points.size();)
    {
        const std::size_t length = (std::min)(static_cast<std::size_t>(random() % 90), points.size() - i);
        VxGePoint3dArray polygon;
        polygon.Append(points.data() + i, static_cast<int>(length));
        polygons.AddFace(polygon);
        i += length;
    }
    ExpectSameBits(ExtentsOf(polygons), PlainExtents(points, kLargest));
}

TEST(FaceExtents, OfNothingAreTheStartValues)
{
    const VxGePoint3dArray corners;
    QuonSingleFaceReader single(&corners);
    ExpectSameBits(ExtentsOf(single), {kInfinity, kInfinity, -kInfinity, -kInfinity});
    QuonMultiTriFaceReader triangles;
    ExpectSameBits(ExtentsOf(triangles), {kLargest, kLargest, -kLargest, -kLargest});
    QuonMultiPolyFaceReader polygons;
    ExpectSameBits(ExtentsOf(polygons), {kLargest, kLargest, -kLargest, -kLargest});
    polygons.AddFace(corners);
    ExpectSameBits(ExtentsOf(polygons), {kLargest, kLargest, -kLargest, -kLargest});
}

TEST(FaceExtents, TakeXAndYOfAllCornersAndNoZ)
{
    const VxGePoint3dArray one = MakeArray({{1, 20, -1000}, {3, -4, 1000}, {2, 5, 7}});
    const VxGePoint3dArray two = MakeArray({{-1, 0, 0}, {2, 30, 0}, {2, 2, 9e99}});
    QuonSingleFaceReader single(&one);
    ExpectSameBits(ExtentsOf(single), {1, -4, 3, 20});
    QuonMultiTriFaceReader triangles;
    triangles.AddFace(one);
    triangles.AddFace(two);
    ExpectSameBits(ExtentsOf(triangles), {-1, -4, 3, 30});
    QuonMultiPolyFaceReader polygons;
    polygons.AddFace(one);
    polygons.AddFace(VxGePoint3dArray());
    polygons.AddFace(two);
    ExpectSameBits(ExtentsOf(polygons), {-1, -4, 3, 30});
}

TEST(FaceExtents, NeitherNeedNorMoveTheCursor)
{
    QuonMultiTriFaceReader reader;
    reader.AddFace(MakeRun(0, 3));
    reader.AddFace(MakeRun(3, 3));
    VxGePoint3dArray face;
    const Extents before = ExtentsOf(reader);
    ASSERT_TRUE(reader.GetNextFace(face));
    ExpectSameBits(ExtentsOf(reader), before);
    ASSERT_TRUE(reader.GetNextFace(face));
    ExpectPoints(face, ToVector(MakeRun(3, 3)));
    ASSERT_FALSE(reader.GetNextFace(face));
    ExpectSameBits(ExtentsOf(reader), before);
}

TEST(FaceExtents, FollowTheStrictComparisons)
{
    struct Row
    {
        const char* name;
        std::vector<VxGePoint3d> points;
        Extents single;
        Extents multi;
    };
    const Row rows[] = {
        {"NaN never moves a bound", {{kNaN, 1, 0}, {2, kNaN, 0}, {kNaN, kNaN, 0}}, {2, 1, 2, 1}, {2, 1, 2, 1}},
        {"nothing but NaN leaves the start values",
         {{kNaN, kNaN, 0}, {kNaN, kNaN, 0}, {kNaN, kNaN, 0}},
         {kInfinity, kInfinity, -kInfinity, -kInfinity},
         {kLargest, kLargest, -kLargest, -kLargest}},
        {"the first of equal zeros stays",
         {{-0.0, 0.0, 0}, {0.0, -0.0, 0}, {0.0, 0.0, 0}},
         {-0.0, 0.0, -0.0, 0.0},
         {-0.0, 0.0, -0.0, 0.0}},
        {"infinity does not lower a finite start value",
         {{kInfinity, -kInfinity, 0}, {kInfinity, -kInfinity, 0}, {kInfinity, -kInfinity, 0}},
         {kInfinity, -kInfinity, kInfinity, -kInfinity},
         {kLargest, -kInfinity, kInfinity, -kLargest}},
        {"the largest finite coordinates",
         {{kLargest, -kLargest, 0}, {kLargest, -kLargest, 0}, {kLargest, -kLargest, 0}},
         {kLargest, -kLargest, kLargest, -kLargest},
         {kLargest, -kLargest, kLargest, -kLargest}},
        {"one tiny step",
         {{5e-324, -5e-324, 0}, {0, 0, 0}, {-5e-324, 5e-324, 0}},
         {-5e-324, -5e-324, 5e-324, 5e-324},
         {-5e-324, -5e-324, 5e-324, 5e-324}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        VxGePoint3dArray corners;
        corners.Append(row.points.data(), static_cast<int>(row.points.size()));
        QuonSingleFaceReader single(&corners);
        ExpectSameBits(ExtentsOf(single), row.single);
        QuonMultiTriFaceReader triangles;
        triangles.AddFace(corners);
        ExpectSameBits(ExtentsOf(triangles), row.multi);
        QuonMultiPolyFaceReader polygons;
        polygons.AddFace(corners);
        ExpectSameBits(ExtentsOf(polygons), row.multi);
    }
}

TEST(FaceExtents, AreThoseOfThePlainLoopToTheBit)
{
    std::mt19937 random(1309);
    const double special[] = {0.0,       -0.0,       1.0,     -1.0,
                              kInfinity, -kInfinity, kNaN,    std::copysign(kNaN, -1.0),
                              kLargest,  5e-324,     -5e-324, -kLargest};
    for (int round = 0; round < quon_test::Cases(3000); ++round)
    {
        SCOPED_TRACE(round);
        // Mostly few different values, so that equal ones (both zeros too) meet in every place of a run.
        const auto kind = random() % 4;
        const std::size_t count = random() % (round % 100 == 0 ? 5000 : 200);
        const auto draw = [&]() -> double {
            switch (kind)
            {
                case 0:
                    return special[random() % std::size(special)];
                case 1:
                    return special[random() % 2];
                case 2:
                {
                    const std::uint64_t bits = (std::uint64_t{random()} << 32) | random();
                    double value;
                    std::memcpy(&value, &bits, sizeof(value));
                    return value;
                }
                default:
                    return static_cast<double>(random() % 1000) - 500.0;
            }
        };
        std::vector<VxGePoint3d> points(count);
        for (VxGePoint3d& point : points)
        {
            point = {draw(), draw(), draw()};
        }
        ExpectAllReadersAgree(points, random);
        if (HasFailure())
        {
            return;
        }
    }
}

TEST(FaceExtents, SeeAnExtremeInEveryPlace)
{
    // Longer than two joined runs, so that each place of the joining and of the rest is met. On either side of 0, so
    // that a bound which begins anywhere but at the start value shows.
    for (const double side : {1.0, -1.0})
    {
        const VxGePoint3d usual{7 * side, 7 * side, 0};
        const VxGePoint3d extreme{3 * side, 9 * side, 0};
        for (std::size_t count = 1; count <= 70; ++count)
        {
            for (std::size_t place = 0; place < count; ++place)
            {
                VxGePoint3dArray corners;
                for (std::size_t i = 0; i < count; ++i)
                {
                    corners.Append(i == place ? extreme : usual);
                }
                const auto [minX, maxX] = std::minmax(extreme.x, count == 1 ? extreme.x : usual.x);
                const auto [minY, maxY] = std::minmax(extreme.y, count == 1 ? extreme.y : usual.y);
                SCOPED_TRACE(testing::Message() << place << " of " << count << ", side " << side);
                QuonSingleFaceReader reader(&corners);
                ExpectSameBits(ExtentsOf(reader), {minX, minY, maxX, maxY});
            }
        }
    }
}

}  // namespace
