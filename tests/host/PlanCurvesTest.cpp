#include "host/landxml/PlanCurves.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace
{

using quonhost::ArcPlaces;
using quonhost::SpiralPlaces;

constexpr double kPi = 3.14159265358979323846;
constexpr double kStraight = std::numeric_limits<double>::infinity();

double LengthOf(const std::vector<VxGePoint3d>& places)
{
    double length = 0;
    for (size_t index = 1; index < places.size(); ++index)
    {
        length += std::hypot(places[index].x - places[index - 1].x, places[index].y - places[index - 1].y);
    }
    return length;
}

TEST(ArcPlaces, AnArcRunsInItsSenseOfRotation)
{
    const VxGePoint3d east = {10, 0, 1}, north = {0, 10, 2}, center = {0, 0, 0};
    const struct
    {
        VxGePoint3d start, end;
        bool isClockwise;
        double quarters;
    } rows[] = {{east, north, false, 1}, {east, north, true, 3}, {north, east, true, 1},
                {north, east, false, 3}, {east, east, false, 4}, {east, {-10, 0, 0}, true, 2}};
    for (const auto& row : rows)
    {
        const std::vector<VxGePoint3d> places = ArcPlaces({row.start, center, row.end, row.isClockwise});
        EXPECT_NEAR(LengthOf(places), row.quarters * kPi * 5, 0.01) << row.quarters;
        EXPECT_EQ(places.front().x, row.start.x);
        EXPECT_EQ(places.back().y, row.end.y);
        for (const VxGePoint3d& place : places)
        {
            EXPECT_NEAR(std::hypot(place.x, place.y), 10, 1e-9);
        }
    }
}

TEST(ArcPlaces, ElevationsRiseEvenlyAndABadCenterGivesAChord)
{
    const std::vector<VxGePoint3d> places = ArcPlaces({{10, 0, 1}, {0, 0, 0}, {-10, 0, 3}, false});
    EXPECT_NEAR(places[places.size() / 2].z, 2, 1e-9);
    EXPECT_EQ(ArcPlaces({{1, 1, 0}, {1, 1, 0}, {5, 5, 0}, false}).size(), 2U);
}

TEST(SpiralPlaces, ASpiralEndsWhereItShouldWithTheRightDirection)
{
    // A clothoid of the parameter 100 over 100 m: the series gives its end and, with the angle there, the tangents.
    const double length = 100, radius = 100, angle = length / (2 * radius);
    const double x = length * (1 - angle * angle / 10 + std::pow(angle, 4) / 216);
    const double y = length * (angle / 3 - std::pow(angle, 3) / 42 + std::pow(angle, 5) / 1320);
    for (const bool isClockwise : {false, true})
    {
        const double side = isClockwise ? -1 : 1;
        const VxGePoint3d start = {1000, 500, 0}, end = {1000 + x, 500 + side * y, 0};
        const VxGePoint3d intersection = {1000 + x - y / std::tan(angle), 500, 0};
        const std::vector<VxGePoint3d> in =
            SpiralPlaces({start, end, intersection, length, kStraight, radius, isClockwise});
        EXPECT_NEAR(LengthOf(in), length, 0.01);
        EXPECT_EQ(in.back().x, end.x);
        EXPECT_EQ(in.back().y, end.y);
        // A quarter of the way it has left the tangent by s^3 / (6 A^2).
        const VxGePoint3d& quarter = in[in.size() / 4];
        EXPECT_NEAR(side * (quarter.y - 500), std::pow(length / 4, 3) / (6 * radius * length), 0.01);

        const std::vector<VxGePoint3d> out =
            SpiralPlaces({end, start, intersection, length, radius, kStraight, !isClockwise});
        EXPECT_NEAR(LengthOf(out), length, 0.01);
        const VxGePoint3d& last = out[out.size() - 1 - out.size() / 4];
        EXPECT_NEAR(last.x, quarter.x, 0.05);
        EXPECT_NEAR(last.y, quarter.y, 0.05);
    }
}

TEST(SpiralPlaces, NumbersThatMissTheEndAreSpread)
{
    const std::vector<VxGePoint3d> places =
        SpiralPlaces({{0, 0, 0}, {100, 20, 0}, {60, 0, 0}, 90, kStraight, 150, false});
    EXPECT_EQ(places.back().x, 100);
    EXPECT_EQ(places.back().y, 20);
    for (size_t index = 1; index < places.size(); ++index)
    {
        EXPECT_LT(std::hypot(places[index].x - places[index - 1].x, places[index].y - places[index - 1].y), 4);
    }
    EXPECT_EQ(SpiralPlaces({{0, 0, 0}, {5, 5, 0}, {0, 0, 0}, 0, kStraight, kStraight, false}).size(), 2U);
}

}  // namespace
