// Texts and sets as large as they get. What is slow here by more than a constant does not end in the time that a test
// program has.

#include "points/PointTestSupport.h"
#include "points/QuonPointString.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>

namespace
{

using quon_test::TextOf;

constexpr unsigned long kMany = 1000000;

// 2, 4, 6, ...: items that do not merge.
std::wstring EvenNumbers(unsigned long count)
{
    std::wstring text;
    for (unsigned long number = 1; number <= count; ++number)
    {
        text += std::to_wstring(2 * number) + L",";
    }
    text.pop_back();
    return text;
}

TEST(PointLimits, AMillionItemsAreWalked)
{
    const std::wstring text = EvenNumbers(kMany);
    QuonPointString string(text.c_str());
    EXPECT_TRUE(string.IsValid());
    EXPECT_EQ(string.GetPointCount(), kMany);
    unsigned long point = 0;
    unsigned long walked = 0;
    for (string.GetFirstPoint(&point); !string.IsDone(); string.GetNextPoint(&point))
    {
        ++walked;
        ASSERT_EQ(point, 2 * walked);
    }
    EXPECT_EQ(walked, kMany);
}

TEST(PointLimits, TenMillionCharactersOfEmptyItemsAreWalked)
{
    const std::wstring text = std::wstring(10000000, L',') + L"5";
    QuonPointString string(text.c_str());
    EXPECT_EQ(quon_test::WalkPoints(string), quon_test::Points{5});
    const std::wstring blanks(10000000, L' ');
    string.SetText((L"4" + blanks + L"," + blanks + L"5" + blanks).c_str());
    EXPECT_EQ(quon_test::WalkPoints(string), (quon_test::Points{4, 5}));
}

TEST(PointLimits, SetOperationsOnAMillionItems)
{
    const std::wstring text = EvenNumbers(kMany);
    QuonPointString string(text.c_str());
    string.RemovePoints(L"1000000-2", FALSE);
    EXPECT_EQ(string.GetPointCount(), kMany / 2);
    EXPECT_EQ(TextOf(string).substr(0, 16), L"1000002,1000004,");
    string.SetText(text.c_str());
    string.RemovePoints(text.c_str(), TRUE);
    EXPECT_EQ(TextOf(string), L"");
    string.SetText(text.c_str());
    string.RemoveDuplicates(TRUE);
    EXPECT_TRUE(TextOf(string) == text);
    string.RemoveDuplicates(FALSE);
    EXPECT_TRUE(TextOf(string) == text);
}

TEST(PointLimits, AMillionShuffledPointsAreBuilt)
{
    std::vector<unsigned long> points(kMany);
    std::iota(points.begin(), points.end(), 1ul);
    std::shuffle(points.begin(), points.end(), std::mt19937(7));
    QuonSortedPointString sorted;
    QuonUnsortedPointString unsorted;
    for (const unsigned long point : points)
    {
        sorted.AddPoint(point);
        unsorted.AddPoint(point);
    }
    sorted.UpdateText();
    unsorted.UpdateText();
    EXPECT_EQ(TextOf(sorted), L"1-1000000");
    unsigned long point = 0;
    std::size_t walked = 0;
    for (unsorted.GetFirstPoint(&point); !unsorted.IsDone(); unsorted.GetNextPoint(&point), ++walked)
    {
        ASSERT_EQ(point, points[walked]);
    }
    EXPECT_EQ(walked, points.size());
}

// Each formatting appends to a text that grows.
TEST(PointLimits, ManySmallAdditionsAreBuilt)
{
    QuonUnsortedPointString string;
    for (unsigned long point = 1; point <= 200000; ++point)
    {
        string.AddPoint(2 * point);
        string.UpdateText();
    }
    EXPECT_TRUE(TextOf(string) == EvenNumbers(200000));
}

TEST(PointLimits, TwoThousandMillionPointsInOneRange)
{
    QuonPointString string(L"1-2000000000");
    EXPECT_EQ(string.GetPointCount(), 2000000000u);
    for (const BOOL sorted : {TRUE, FALSE})
    {
        string.SetText(L"1-2000000000");
        string.RemoveDuplicates(sorted);
        EXPECT_EQ(TextOf(string), L"1-2000000000");
        string.RemovePoints(L"3-1999999998", sorted);
        EXPECT_EQ(TextOf(string), L"1-2,1999999999-2000000000");
        string.SetText(L"7");
        string.RemovePoints(L"1-2000000000", sorted);
        EXPECT_EQ(TextOf(string), L"");
    }
    string.SetText(L"2000000000-1");
    string.RemovePoints(L"5,1999999999", FALSE);
    EXPECT_EQ(TextOf(string), L"2000000000,1999999998-6,4-1");
    string.SetText(L"5,2000000000-1,1-2000000000");
    string.RemoveDuplicates(FALSE);
    EXPECT_EQ(TextOf(string), L"5,2000000000-6,4-1");
}

TEST(PointLimits, TheGreatestNumbersOfATextInSets)
{
    QuonPointString string(L"2147483640-99999999999");
    string.RemovePoints(L"2147483645-2147483643", FALSE);
    EXPECT_EQ(TextOf(string), L"2147483640-2147483642,2147483646-2147483647");
    string.SetText(L"99999999999-2147483640,3");
    string.RemovePoints(L"2147483645-2147483643", TRUE);
    EXPECT_EQ(TextOf(string), L"3,2147483640-2147483642,2147483646-2147483647");
}

// The end of the set is then 4294967295: walking "up to and including" it must still end.
TEST(PointLimits, TheHighestPointOfASet)
{
    QuonSortedPointString string;
    string.AddPoint(4294966271ul);
    string.AddPoint(4294966270ul);
    string.AddPoint(2147483648ul);
    string.AddPoint(2147483647ul);
    string.AddPoint(4294966272ul);
    string.AddPoint(1ul);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1,2147483647--2147483648,-1026--1025");
    string.Clear();
    string.AddPoint(L"-2000");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"-2000");
}

}  // namespace
