#include "host/PointRanges.h"

#include <gtest/gtest.h>

#include <random>
#include <set>

namespace
{

using namespace quonhost;

PointSet SetOf(const wchar_t* list)
{
    QuonPointString points(list);
    return PointsOf(points);
}

TEST(PointRanges, AreTheSetThatAListNames)
{
    struct Row
    {
        const wchar_t* list;
        PointSet set;
    };
    for (const Row& row :
         {Row{L"", {}}, Row{L"5", {{5, 5}}}, Row{L"3-1,9", {{1, 3}, {9, 9}}}, Row{L"5,1-4,1,20-18", {{1, 5}, {18, 20}}},
          Row{L"1-9,3-4,9-12", {{1, 12}}}, Row{L"2147483647,2147483646", {{2147483646, 2147483647}}},
          Row{L"3,<5,7", {{0, 0}, {3, 3}, {7, 7}}}})
    {
        EXPECT_EQ(SetOf(row.list), row.set) << row.list;
    }
}

std::set<unsigned long> Expanded(const PointSet& set)
{
    std::set<unsigned long> points;
    for (const PointRange& range : set)
    {
        for (unsigned long point = range.first; point <= range.last; ++point)
        {
            points.insert(point);
        }
    }
    return points;
}

std::wstring RandomList(std::mt19937& random)
{
    std::wstring list;
    for (unsigned int count = random() % 6; count > 0; --count)
    {
        const unsigned long first = random() % 30 + 1;
        list += std::to_wstring(first) + L'-' + std::to_wstring(first + random() % 8) + L',';
    }
    return list;
}

TEST(PointRanges, SubtractAsSetsDo)
{
    std::mt19937 random(17);
    for (int round = 0; round < 2000; ++round)
    {
        const std::wstring list = RandomList(random);
        const std::wstring removed = RandomList(random);
        const PointSet rest = Without(SetOf(list.c_str()), SetOf(removed.c_str()));
        std::set<unsigned long> expected = Expanded(SetOf(list.c_str()));
        for (const unsigned long point : Expanded(SetOf(removed.c_str())))
        {
            expected.erase(point);
        }
        ASSERT_EQ(Expanded(rest), expected) << ::testing::PrintToString(list) << ::testing::PrintToString(removed);
        for (size_t index = 1; index < rest.size(); ++index)
        {
            ASSERT_GT(rest[index].first, rest[index - 1].last + 1) << ::testing::PrintToString(list);
        }
    }
}

TEST(PointRanges, SubtractUpToTheHighestNumber)
{
    EXPECT_EQ(Without({{1, ULONG_MAX}}, {{5, 5}, {9, ULONG_MAX}}), (PointSet{{1, 4}, {6, 8}}));
    EXPECT_EQ(Without({{1, ULONG_MAX}}, {}), (PointSet{{1, ULONG_MAX}}));
    EXPECT_EQ(Without({}, {{1, 5}}), PointSet());
}

TEST(PointLists, NameTheItemThatIsNotValidOrAComparison)
{
    struct Row
    {
        const wchar_t* list;
        size_t invalid;  // the item's number; 0: none
        const wchar_t* invalidText;
        size_t comparison;
        const wchar_t* comparisonText;
    };
    for (const Row& row :
         {Row{L"1-5, 9, 20-12", 0, L"", 0, L""}, Row{L"", 0, L"", 0, L""}, Row{L"abc", 1, L"abc", 0, L""},
          Row{L"1, 2,5-", 3, L"5-", 0, L""}, Row{L",,1,, 0 ,x", 2, L"0", 0, L""}, Row{L"3,<5,7", 0, L"", 2, L"<5"},
          Row{L"1;2, >=7", 1, L"1;2", 2, L">=7"}})
    {
        const auto invalid = FindInvalidItem(row.list).value_or(ListItem{});
        const auto comparison = FindComparison(row.list).value_or(ListItem{});
        EXPECT_EQ(invalid.number, row.invalid) << row.list;
        EXPECT_EQ(invalid.text, row.invalidText) << row.list;
        EXPECT_EQ(comparison.number, row.comparison) << row.list;
        EXPECT_EQ(comparison.text, row.comparisonText) << row.list;
    }
}

}  // namespace
