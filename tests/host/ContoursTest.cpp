#include "host/plot/Contours.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>
#include <map>
#include <random>

namespace
{

using namespace quonhost;

using Corners = std::array<VxGePoint3d, 3>;

constexpr Corners kRamp = {{{0, 0, 0}, {10, 0, 10}, {0, 10, 20}}};

// A square of size x size cells, each cut into two triangles, the elevations given by a function.
template <typename Height>
SurveySurface Grid(size_t size, const Height& height)
{
    SurveySurface surface;
    for (size_t y = 0; y <= size; ++y)
    {
        for (size_t x = 0; x <= size; ++x)
        {
            const double east = static_cast<double>(x), north = static_cast<double>(y);
            surface.points.push_back({east, north, height(east, north)});
        }
    }
    for (size_t y = 0; y < size; ++y)
    {
        for (size_t x = 0; x < size; ++x)
        {
            const auto corner = static_cast<std::uint32_t>(y * (size + 1) + x);
            const auto above = static_cast<std::uint32_t>(corner + size + 1);
            surface.triangles.push_back({corner, corner + 1, above + 1});
            // The other way round: the sense of rotation must not matter.
            surface.triangles.push_back({corner, above, above + 1});
        }
    }
    return surface;
}

double AreaOf(const std::vector<VxGePoint3d>& polygon)
{
    double twice = 0;
    for (size_t index = 0; index < polygon.size(); ++index)
    {
        const VxGePoint3d& a = polygon[index];
        const VxGePoint3d& b = polygon[(index + 1) % polygon.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return std::abs(twice) / 2;
}

TEST(ContourOfTriangle, CrossesTwoEdgesWhereTheElevationIsTheLevel)
{
    const std::vector<ContourCrossing> crossings = ContourOfTriangle(kRamp, 5);
    ASSERT_EQ(crossings.size(), 2u);
    EXPECT_TRUE(IsSameInPlan(crossings[0].place, {5, 0, 0}));
    EXPECT_TRUE(IsSameInPlan(crossings[1].place, {0, 2.5, 0}));
    EXPECT_EQ(crossings[0].below, 0u);
    EXPECT_EQ(crossings[0].above, 1u);
    EXPECT_EQ(crossings[1].above, 2u);
}

TEST(ContourOfTriangle, ACornerAtTheLevelCountsAsAbove)
{
    struct Row
    {
        Corners corners;
        double level;
        size_t crossings;
    };
    const Row rows[] = {
        {kRamp, -1, 0},                               // all above
        {kRamp, 0, 0},                                // the lowest corner touches it
        {kRamp, 20, 2},                               // only the highest corner is not below it
        {kRamp, 20.5, 0},                             // all below
        {{{{0, 0, 7}, {1, 0, 7}, {0, 1, 7}}}, 7, 0},  // flat at the level
        {{{{0, 0, 7}, {1, 0, 7}, {0, 1, 6}}}, 7, 2},  // an edge at the level, the rest below
        {{{{0, 0, 7}, {1, 0, 7}, {0, 1, 8}}}, 7, 0},  // an edge at the level, the rest above
        {{{{0, 0, 1}, {0, 0, 3}, {0, 0, 5}}}, 2, 2},  // no extent in the plan
        {{{{0, 0, -1e300}, {1, 0, 1e300}, {0, 1, 0}}}, 0, 2},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "level " << row.level << ", corners at " << row.corners[0].z << ' '
                                        << row.corners[1].z << ' ' << row.corners[2].z);
        EXPECT_EQ(ContourOfTriangle(row.corners, row.level).size(), row.crossings);
    }
}

TEST(TraceContours, AHillHasOneClosedLine)
{
    const SurveySurface hill = Grid(20, [](double x, double y) { return 10 - std::hypot(x - 10, y - 10); });
    const std::vector<ContourLine> lines = TraceContours(hill, 4.1);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_GT(lines[0].size(), 20u);
    EXPECT_TRUE(IsSameInPlan(lines[0].front(), lines[0].back()));
    for (const VxGePoint3d& point : lines[0])
    {
        EXPECT_NEAR(std::hypot(point.x - 10, point.y - 10), 5.9, 0.3);
    }
}

TEST(TraceContours, ASlopeHasOneOpenLineWithHigherGroundToItsRight)
{
    const SurveySurface slope = Grid(8, [](double x, double) { return x; });
    const std::vector<ContourLine> lines = TraceContours(slope, 3.5);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(IsSameInPlan(lines[0].front(), {3.5, 0, 0}));
    EXPECT_TRUE(IsSameInPlan(lines[0].back(), {3.5, 8, 0}));
}

TEST(TraceContours, ALineThroughCornersIsWhole)
{
    const SurveySurface slope = Grid(8, [](double x, double) { return x; });
    const std::vector<ContourLine> lines = TraceContours(slope, 3);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(IsSameInPlan(lines[0].front(), {3, 0, 0}));
    EXPECT_TRUE(IsSameInPlan(lines[0].back(), {3, 8, 0}));
}

TEST(TraceContours, NothingIsCrossedOutsideOfTheElevations)
{
    const SurveySurface slope = Grid(3, [](double x, double) { return x; });
    EXPECT_TRUE(TraceContours(slope, 0).empty());
    EXPECT_TRUE(TraceContours(slope, 3.01).empty());
    EXPECT_TRUE(TraceContours(SurveySurface(), 1).empty());
}

// On any ground: as many pieces as triangles are crossed, each in one line, and no line ends but at the border.
TEST(TraceContours, OnRoughGroundEveryPieceIsInALineThatEndsAtTheBorder)
{
    std::mt19937 chance(7);
    std::uniform_real_distribution<double> heights(0, 10);
    for (int round = 0; round < 20; ++round)
    {
        SCOPED_TRACE(round);
        constexpr size_t kSize = 12;
        const SurveySurface surface = Grid(kSize, [&](double, double) { return heights(chance); });
        size_t crossed = 0;
        for (const SurveyTriangle& triangle : surface.triangles)
        {
            crossed += ContourOfTriangle(CornersOf(surface, triangle), 5).empty() ? 0 : 1;
        }
        size_t pieces = 0;
        const auto isAtBorder = [](const VxGePoint3d& p) {
            return p.x == 0 || p.y == 0 || p.x == kSize || p.y == kSize;
        };
        for (const ContourLine& line : TraceContours(surface, 5))
        {
            pieces += line.size() - 1;
            EXPECT_TRUE(IsSameInPlan(line.front(), line.back()) ||
                        (isAtBorder(line.front()) && isAtBorder(line.back())));
        }
        EXPECT_EQ(pieces, crossed);
    }
}

TEST(ClipToBand, KeepsWhatLiesInTheBand)
{
    EXPECT_TRUE(ClipToBand(kRamp, 20.5, 30).empty());
    EXPECT_TRUE(ClipToBand(kRamp, -5, 0).empty()) << "a corner at the upper limit is outside";
    EXPECT_DOUBLE_EQ(AreaOf(ClipToBand(kRamp, -5, 30)), 50);
    EXPECT_DOUBLE_EQ(AreaOf(ClipToBand(kRamp, -5, 5)), 6.25);
    EXPECT_EQ(ClipToBand(kRamp, 5, 12).size(), 5u);
    const Corners flat = {{{0, 0, 7}, {1, 0, 7}, {0, 1, 7}}};
    EXPECT_DOUBLE_EQ(AreaOf(ClipToBand(flat, 7, 8)), 0.5);
    EXPECT_TRUE(ClipToBand(flat, 6, 7).empty());
}

TEST(ClipToBand, BandsPartATriangle)
{
    std::mt19937 chance(11);
    std::uniform_real_distribution<double> places(-100, 100);
    for (int round = 0; round < 500; ++round)
    {
        Corners corners;
        for (VxGePoint3d& corner : corners)
        {
            corner = {places(chance), places(chance), places(chance)};
        }
        double sum = 0;
        for (double low = -100; low < 101; low += 12.5)
        {
            sum += AreaOf(ClipToBand(corners, low, low + 12.5));
        }
        EXPECT_NEAR(sum, AreaOf({corners.begin(), corners.end()}), 1e-8) << round;
    }
}

}  // namespace
