#include "host/Console.h"
#include "host/plot/LabelLayout.h"
#include "host/plot/NiceSteps.h"
#include "host/plot/PlotFrame.h"
#include "host/plot/PlotLayers.h"
#include "host/plot/PlotLevels.h"
#include "host/plot/Relief.h"
#include "host/plot/SurveyPlot.h"
#include "host/plot/Svg.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <set>

namespace
{

using namespace quonhost;

SurveySurface Triangle(double a, double b, double c)
{
    return {L"S", {{0, 0, a}, {10, 0, b}, {0, 10, c}}, {{0, 1, 2}}};
}

SurveyPoint At(const std::wstring& name, double x, double y, const std::wstring& code = L"")
{
    return {name, {x, y, kNoElevation}, code, L""};
}

TEST(NiceSteps, StepsAreOneTwoOrFiveTimesAPowerOfTen)
{
    struct Row
    {
        double span;
        int most;
        double step;
    };
    const Row rows[] = {{10, 10, 1},  {10.5, 10, 2},    {10, 25, 0.5}, {0.3, 3, 0.1}, {100, 3, 50},
                        {51, 1, 100}, {1e-7, 10, 1e-8}, {3e9, 6, 5e8}, {7, 7, 1},     {1e12, 1, 1e12}};
    for (const Row& row : rows)
    {
        EXPECT_DOUBLE_EQ(NiceStep(row.span, row.most), row.step) << row.span << " in " << row.most;
    }
}

TEST(NiceSteps, AScaleBarTakesBetweenAFifthAndNineTwentiethsOfTheWidth)
{
    for (double width = 0.013; width < 1e7; width *= 1.07)
    {
        const double length = ScaleBarLength(width);
        EXPECT_LE(length, 0.45 * width * (1 + 1e-9)) << width;
        EXPECT_GE(length, 0.45 / 2.5 * width * (1 - 1e-9)) << width;
    }
    EXPECT_DOUBLE_EQ(ScaleBarLength(132), 50);
}

TEST(NiceSteps, MultiplesTakeInBothEnds)
{
    EXPECT_EQ(MultiplesWithin(0.1, 0.5, 0.1, 100), (std::vector<double>{0.1, 0.2, 0.3, 0.4, 0.5}));
    EXPECT_EQ(MultiplesWithin(-3, 3, 2, 100), (std::vector<double>{-2, 0, 2}));
    EXPECT_TRUE(MultiplesWithin(1.1, 1.9, 1, 100).empty());
    EXPECT_TRUE(MultiplesWithin(0, 100, 1, 100).empty()) << "101 are too many";
    EXPECT_EQ(MultiplesWithin(0, 99, 1, 100).size(), 100u);
    EXPECT_TRUE(MultiplesWithin(0, 1e300, 1, 100).empty());
}

TEST(NiceSteps, NumbersHaveTheDecimalsOfTheirStep)
{
    EXPECT_EQ(DecimalsOf(5), 0);
    EXPECT_EQ(DecimalsOf(0.5), 1);
    EXPECT_EQ(DecimalsOf(0.25), 2);
    EXPECT_EQ(DecimalsOf(1e-9), 6);
    EXPECT_EQ(FormatFixed(-0.001, 2), L"0.00");
    EXPECT_EQ(FormatFixed(-0.5, 0), L"0");
    EXPECT_EQ(FormatFixed(-1.5, 1), L"-1.5");
    EXPECT_EQ(FormatFixed(5321400, 0), L"5321400");
}

SurveyExtents Box(double left, double bottom, double right, double top)
{
    return {{left, bottom, 0}, {right, top, 0}};
}

TEST(PlotFrame, TheBoxHoldsPointsAndCornersOfTriangles)
{
    PlotModel model;
    EXPECT_FALSE(ExtentsOf(model));
    model.points = {At(L"1", 5, -7)};
    model.surface = Triangle(1, 2, 3);
    model.surface.points.push_back({1000, 1000, 0});  // of no triangle
    const std::optional<SurveyExtents> extents = ExtentsOf(model);
    ASSERT_TRUE(extents);
    EXPECT_EQ(extents->lowest.x, 0);
    EXPECT_EQ(extents->highest.x, 10);
    EXPECT_EQ(extents->lowest.y, -7);
    EXPECT_EQ(extents->highest.y, 10);
}

TEST(PlotFrame, NorthIsUpAndTheLongerSideHasTheSize)
{
    const PlotFrame frame(Box(0, 0, 100, 50), 1000, 30, 60);
    EXPECT_NEAR(frame.Width(), 1000, 1e-9);
    EXPECT_LT(frame.Height(), frame.Width());
    EXPECT_LT(frame.ToY(50), frame.ToY(0));
    EXPECT_LT(frame.ToX(0), frame.ToX(100));
    EXPECT_NEAR(frame.ToX(100) - frame.ToX(0), frame.ToY(0) - frame.ToY(100), 1e-9);
    EXPECT_GT(frame.ToX(0), frame.Left());
    EXPECT_LT(frame.ToY(0), frame.Bottom());
}

TEST(PlotFrame, ASiteWithoutExtentHasAMapAllTheSame)
{
    for (const SurveyExtents& site : {Box(7, 7, 7, 7), Box(0, 3, 10, 3), Box(5e6, 0, 5e6, 10)})
    {
        const PlotFrame frame(site, 1000, 0, 0);
        EXPECT_GE(frame.Width(), 199);
        EXPECT_GE(frame.Height(), 199);
        EXPECT_LE(frame.Width(), 1001);
        EXPECT_LE(frame.Height(), 1001);
    }
}

TEST(PlotLevels, ContoursAreRoundAndAboutTwentyFive)
{
    const std::optional<PlotLevels> levels = LevelsOf(Triangle(100.2, 110.1, 104), std::nullopt);
    ASSERT_TRUE(levels);
    EXPECT_DOUBLE_EQ(levels->step, 0.5);
    ASSERT_EQ(levels->contours.size(), 20u);
    EXPECT_EQ(levels->contours.front(), 100.5);
    EXPECT_EQ(levels->contours.back(), 110);
    EXPECT_TRUE(levels->IsIndex(102.5));
    EXPECT_FALSE(levels->IsIndex(103));
    EXPECT_EQ(levels->tints.front(), 100.2);
    EXPECT_GT(levels->tints.back(), 110.1);
}

TEST(PlotLevels, TheStepCanBeGivenOrLeftOut)
{
    EXPECT_EQ(LevelsOf(Triangle(0, 10, 5), 2.0)->contours.size(), 6u);
    const std::optional<PlotLevels> none = LevelsOf(Triangle(0, 10, 5), 0.0);
    EXPECT_FALSE(none->hasContours);
    EXPECT_TRUE(none->contours.empty());
    EXPECT_GT(none->CountBands(), 10u);
    EXPECT_THROW(LevelsOf(Triangle(0, 10, 5), 0.001), CommandError);
    EXPECT_TRUE(LevelsOf(Triangle(0, 10, 5), 50.0)->contours.size() == 1u) << "0 is a multiple of 50";
}

TEST(PlotLevels, FlatGroundHasOneBandAndNoContours)
{
    const std::optional<PlotLevels> levels = LevelsOf(Triangle(7, 7, 7), std::nullopt);
    ASSERT_TRUE(levels);
    EXPECT_FALSE(levels->hasContours);
    EXPECT_EQ(levels->CountBands(), 1u);
    EXPECT_FALSE(LevelsOf(SurveySurface(), std::nullopt));
}

TEST(Relief, LightComesFromTheNorthWest)
{
    const auto lightOn = [](double a, double b, double c) { return LightOn(Triangle(a, b, c))[0]; };
    EXPECT_DOUBLE_EQ(lightOn(5, 5, 5), 1);
    EXPECT_GT(lightOn(0, 5, 0), 1) << "rises to the east, looks to the west";
    EXPECT_LT(lightOn(5, 0, 5), 1) << "looks to the east";
    EXPECT_LT(lightOn(0, 0, 5), 1) << "looks to the south";
    SurveySurface turned = Triangle(0, 5, 0);
    turned.triangles[0] = {0, 2, 1};
    EXPECT_DOUBLE_EQ(LightOn(turned)[0], lightOn(0, 5, 0)) << "the sense of rotation does not matter";
}

TEST(Relief, ColoursAreWrittenInHexadecimal)
{
    EXPECT_EQ(HexOf({0, 1, 0.5}), "#00ff80");
    EXPECT_EQ(HexOf({-1, 2, 0}), "#00ff00");
    EXPECT_EQ(HexOf(TintOf(-1)), HexOf(TintOf(0)));
    EXPECT_EQ(HexOf(TintOf(2)), HexOf(TintOf(1)));
}

TEST(LabelLayout, NoTwoBoxesOverlap)
{
    LabelLayout layout({0, 0, 1000, 1000});
    EXPECT_FALSE(layout.Take({-1, 0, 10, 10})) << "outside";
    layout.Block({-50, -50, 10, 10});
    EXPECT_FALSE(layout.Take({5, 5, 20, 20}));
    EXPECT_TRUE(layout.Take({10, 10, 20, 20})) << "sides may touch";
    std::vector<LabelBox> taken;
    std::mt19937 chance(3);
    std::uniform_real_distribution<double> places(0, 960);
    for (int round = 0; round < 3000; ++round)
    {
        const double left = places(chance), top = places(chance);
        const LabelBox box = {left, top, left + 40, top + 10};
        bool isFree = !(left < 20 && top < 20);
        for (const LabelBox& other : taken)
        {
            isFree = isFree && (box.left >= other.right || other.left >= box.right || box.top >= other.bottom ||
                                other.top >= box.bottom);
        }
        ASSERT_EQ(layout.Take(box), isFree) << round;
        if (isFree)
        {
            taken.push_back(box);
        }
    }
    EXPECT_GT(taken.size(), 200u);
}

TEST(Svg, PathsAreWrittenInTenthsAndWithoutShapesOfNoExtent)
{
    SvgPath path;
    path.Begin(1, 2);
    path.LineTo(1.5, 1);
    path.LineTo(1.52, 1.01);
    path.LineTo(0, 3);
    path.End(true);
    EXPECT_EQ(path.GetText(), "M10 20l5-10-15 20z");
    SvgPath dot;
    dot.Begin(1, 2);
    dot.LineTo(1.01, 2.02);
    dot.End(true);
    EXPECT_TRUE(dot.IsEmpty());
}

TEST(Svg, TextsAndNumbersAreSafe)
{
    EXPECT_EQ(EscapeXml(L"<a & \"b\">\tЖ山e\u0301"), "&lt;a &amp; &quot;b&quot;&gt; Ж山e\xCC\x81");
    EXPECT_EQ(Pixels(-0.04), "0");
    EXPECT_EQ(Pixels(-0.26), "-0.3");
    EXPECT_EQ(Pixels(12.25), "12.3");
    EXPECT_EQ(Pixels(7), "7");
}

TEST(DrawSurvey, WhatCannotBeDrawnIsTold)
{
    EXPECT_THROW(DrawSurvey({}, {}), CommandError);
    PlotModel wide;
    wide.points = {At(L"1", 0, 0), At(L"2", 1e300, 0)};
    EXPECT_THROW(DrawSurvey(wide, {}), CommandError);
}

TEST(DrawSurvey, OnePointIsAPicture)
{
    PlotModel model;
    model.points = {At(L"7", 412250, 5321400, L"A&B")};
    const std::string text = DrawSurvey(model, {});
    EXPECT_NE(text.find(">7</text>"), std::string::npos);
    EXPECT_NE(text.find("A&amp;B (1)"), std::string::npos);
    EXPECT_EQ(text.find("Elevation"), std::string::npos);
    EXPECT_EQ(text.find("nan"), std::string::npos);
}

TEST(DrawSurvey, ManyPointsAreNotLabelledUnlessThatIsAskedFor)
{
    PlotModel model;
    for (int number = 0; number < 1600; ++number)
    {
        model.points.push_back(At(L"p" + std::to_wstring(number), 1.0 * (number % 40), 1.0 * (number / 40)));
    }
    EXPECT_EQ(DrawSurvey(model, {}).find(">p"), std::string::npos);
    PlotOptions options;
    options.labels = PlotLabels::kNumber;
    EXPECT_NE(DrawSurvey(model, options).find(">p0<"), std::string::npos);
}

TEST(DrawSurvey, LinesAreDrawnNamedAndExplained)
{
    PlotModel model;
    model.lines = {
        {LineKind::kAlignment, L"Main & side", L"", {{0, 0, 0}, {100, 0, 0}, {200, 50, 0}}},
        {LineKind::kAlignment, L"Main & side", L"", {{300, 0, 0}, {310, 0, 0}}},
        {LineKind::kParcel, L"LOT 1", L"", {{0, 100, 0}, {100, 100, 0}, {100, 200, 0}, {0, 200, 0}, {0, 100, 0}}},
        {LineKind::kBreakline, L"", L"S", {{0, 20, 0}, {200, 80, 0}}},
        {LineKind::kBreakline, L"", L"S", {{0, 30, 0}, {200, 90, 0}}},
        {LineKind::kPlanFeature, L"dot", L"", {{5, 5, 0}}}};
    const std::string text = DrawSurvey(model, {});
    for (const char* const part : {">alignments (1)<", ">parcels (1)<", ">breaklines (2)<", ">plan features (1)<",
                                   ">Main &amp; side<", ">LOT 1<", "1 alignment", "2 breaklines", "stroke-dasharray"})
    {
        EXPECT_NE(text.find(part), std::string::npos) << part;
    }
    EXPECT_EQ(text.find("boundaries"), std::string::npos) << "what is not there needs no explanation";
    EXPECT_EQ(text.find("nan"), std::string::npos);
}

// The number of closed shapes in the paths that are filled with a colour.
size_t CountShapes(const std::string& svg, const std::string& colour)
{
    size_t count = 0;
    for (size_t at = svg.find("fill=\"" + colour); at != std::string::npos; at = svg.find("fill=\"" + colour, at + 1))
    {
        const std::string element = svg.substr(at, svg.find("/>", at) - at);
        count += static_cast<size_t>(std::count(element.begin(), element.end(), 'z'));
    }
    return count;
}

TEST(DrawSurvey, AmongManyPointsEveryCodeHasASymbolAndEveryPixelADot)
{
    PlotModel model;
    for (int number = 0; number < 20000; ++number)
    {
        model.points.push_back(At(std::to_wstring(number), number % 150, number / 150, L"GROUND"));
    }
    model.points.push_back(At(L"a", 70, 70, L"RARE"));
    model.points.push_back(At(L"b", 70, 70, L"RARER"));
    const std::string text = DrawSurvey(model, {});
    const std::vector<PointKind> kinds = KindsOf(model.points);
    ASSERT_EQ(kinds.size(), 3U);
    EXPECT_EQ(CountShapes(text, kinds[1].colour), 3U) << "a dot, a symbol and the one of the legend";
    EXPECT_EQ(CountShapes(text, kinds[2].colour), 3U) << "at the same place as the other";
    EXPECT_GT(CountShapes(text, kinds[0].colour), 20000U + 500U);
    EXPECT_LT(text.size(), 1500000U);
}

TEST(KindsOf, ManyCodesHaveLooksOfTheirOwn)
{
    std::vector<SurveyPoint> points;
    for (int code = 0; code < 40; ++code)
    {
        points.insert(points.end(), static_cast<size_t>(50 - code), At(L"1", 0, 0, L"C" + std::to_wstring(code)));
    }
    const std::vector<PointKind> kinds = KindsOf(points);
    ASSERT_EQ(kinds.size(), 32U);
    EXPECT_EQ(kinds[0].code, L"C0");
    EXPECT_EQ(kinds.back().code, L"others");
    std::set<std::pair<std::string, size_t>> looks;
    for (const PointKind& kind : kinds)
    {
        EXPECT_TRUE(looks.emplace(kind.colour, kind.shape).second) << ToUtf8(kind.code);
    }
}

}  // namespace
