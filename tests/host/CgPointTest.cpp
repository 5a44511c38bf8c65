#include "host/Console.h"
#include "host/landxml/CgPoint.h"
#include "host/landxml/SurveyCsv.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::CgPoint;
using quonhost::ChoosePoints;
using quonhost::ParsePlace;
using quonhost::PointFilter;

TEST(CgPoint, APlaceIsTwoOrThreeNumbers)
{
    for (const wchar_t* const text : {L"1 2.5 -3", L" 1\t2.5\r\n-3 ", L"1.0 +2.5 -3e0"})
    {
        const auto place = ParsePlace(text);
        ASSERT_TRUE(place.has_value());
        EXPECT_EQ(place->northing, 1);
        EXPECT_EQ(place->easting, 2.5);
        EXPECT_EQ(place->elevation, -3);
    }
    const auto flat = ParsePlace(L"1 2");
    ASSERT_TRUE(flat.has_value());
    EXPECT_EQ(flat->elevation, std::nullopt);
    for (const wchar_t* const text :
         {L"", L" ", L"1", L"1 2 3 4", L"1 2 x", L"1,2,3", L"1 2 nan", L"١ ٢ ٣", L"1 2 1e999"})
    {
        EXPECT_FALSE(ParsePlace(text).has_value());
    }
}

std::string Choose(const std::vector<CgPoint>& points, const std::string& list)
{
    std::string text;
    for (const quonhost::SurveyPoint& point : ChoosePoints(points, PointFilter(list)))
    {
        text += quonhost::FormatPoint(point) + ";";
    }
    return text;
}

TEST(CgPoint, PointsAreChosenByTheNumbersThatAreTheirNames)
{
    const std::vector<CgPoint> points = {
        {L"7", L"A", L"1 2 3", L""}, {L"P7", L"", L"1 2 3", L""},  {L"", L"", L"1 2 3", L""},
        {L"0005", L"", L"4 5", L""}, {L"٧", L"", L"1 2 3", L""},   {L"7", L"again", L"6 7 8", L""},
        {L"9", L"", L"bad", L""},    {L"7.0", L"", L"1 2 3", L""},
    };
    EXPECT_EQ(Choose(points, "1-8"), "7,1,2,3,A;5,4,5,,;7,6,7,8,again;");
    EXPECT_EQ(Choose(points, "6"), "");
    EXPECT_THROW(Choose(points, "9"), quonhost::CommandError);
}

TEST(CgPoint, APointWithoutTextHasThePlaceOfTheOneThatItRefersTo)
{
    const std::vector<CgPoint> points = {
        {L"1", L"A", L"", L"2"}, {L"2", L"", L"", L"base"}, {L"base", L"B", L"1 2 3", L""}, {L"4", L"", L"", L"gone"},
        {L"5", L"", L"", L"6"},  {L"6", L"", L"", L"5"},    {L"7", L"", L"", L""},          {L"8", L"", L"9 9 9", L"2"},
    };
    EXPECT_EQ(Choose(points, "1-3,8"), "1,1,2,3,A;2,1,2,3,;8,9,9,9,;");
    for (const char* const list : {"4", "5", "6", "7"})
    {
        SCOPED_TRACE(list);
        EXPECT_THROW(Choose(points, list), quonhost::CommandError);
    }
}

}  // namespace
