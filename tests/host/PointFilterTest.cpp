#include "host/Console.h"
#include "host/landxml/PointFilter.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::MatchesPattern;
using quonhost::PointFilter;
using quonhost::SurveyPoint;

PointFilter ListFilter(const std::wstring& list)
{
    PointFilter filter;
    filter.AddList(list);
    return filter;
}

SurveyPoint Named(const std::wstring& identifier)
{
    SurveyPoint point;
    point.identifier = identifier;
    return point;
}

TEST(PointFilter, AListNamesItsNumbersInWhateverOrder)
{
    const struct
    {
        std::wstring list;
        std::string names;  // of the numbers from 1 to 12
    } rows[] = {
        {L"", ""},
        {L" , ,", ""},
        {L"3", "3 "},
        {L"2-4,9", "2 3 4 9 "},
        {L"9,4-2", "2 3 4 9 "},
        {L"5,5,4-6,6", "4 5 6 "},
        {L"1-9,3-4,8-10", "1 2 3 4 5 6 7 8 9 10 "},
        {L"1-2,3-4", "1 2 3 4 "},
        {L"12,1", "1 12 "},
        {L"1-2000000000", "1 2 3 4 5 6 7 8 9 10 11 12 "},
        {L"13-2147483647", ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(quonhost::ToUtf8(row.list));
        const PointFilter filter = ListFilter(row.list);
        std::string names;
        for (unsigned long number = 1; number <= 12; ++number)
        {
            names += filter.Contains(number) ? std::to_string(number) + " " : "";
        }
        EXPECT_EQ(names, row.names);
    }
}

TEST(PointFilter, WithoutAListEveryPointIsChosen)
{
    EXPECT_TRUE(PointFilter().Contains(1));
    EXPECT_TRUE(PointFilter().Contains(2147483647));
    EXPECT_TRUE(PointFilter().Contains(Named(L"STAZLIB3")));
}

TEST(PointFilter, WhatIsNotAListIsRefused)
{
    for (const wchar_t* const list : {L"x", L"1;2", L"0", L"1-", L"1,2,x", L"<5", L"3,<5,7", L">="})
    {
        SCOPED_TRACE(quonhost::ToUtf8(list));
        EXPECT_THROW(ListFilter(list), quonhost::CommandError);
    }
}

TEST(PointFilter, PatternsAddToAList)
{
    PointFilter filter = ListFilter(L"1-3");
    filter.AddPattern(L"BM*");
    filter.AddPattern(L"10?");
    for (const wchar_t* const name : {L"1", L"3", L"BM", L"bm-7", L"100", L"10x", L"002"})
    {
        EXPECT_TRUE(filter.Contains(Named(name))) << quonhost::ToUtf8(name);
    }
    for (const wchar_t* const name : {L"4", L"ABM", L"10", L"1000", L"", L"1.0"})
    {
        EXPECT_FALSE(filter.Contains(Named(name))) << quonhost::ToUtf8(name);
    }
    EXPECT_TRUE(filter.Contains(105));
    EXPECT_FALSE(filter.Contains(11));
}

TEST(MatchesPattern, StarsAndQuestionMarks)
{
    const struct
    {
        const wchar_t *text, *pattern;
        bool matches;
    } rows[] = {
        {L"", L"", true},
        {L"", L"*", true},
        {L"", L"?", false},
        {L"a", L"", false},
        {L"abc", L"ABC", true},
        {L"abc", L"a*", true},
        {L"abc", L"*c", true},
        {L"abc", L"*b*", true},
        {L"abc", L"a?c", true},
        {L"abc", L"a?", false},
        {L"abc", L"****", true},
        {L"abab", L"*ab", true},
        {L"aXbXc", L"a*X*c", true},
        {L"ac", L"a*b*c", false},
        {L"\u00C4", L"\u00E4", true},
        {L"a.b", L"a?b", true},
        {L"BP (NO.-4-10)", L"BP (NO.-4-*", true},
        {L"BP (NO.-4-10)", L"*(NO.-?-10)", true},
    };
    for (const auto& row : rows)
    {
        EXPECT_EQ(MatchesPattern(row.text, row.pattern), row.matches)
            << quonhost::ToUtf8(row.text) << " " << quonhost::ToUtf8(row.pattern);
    }
    // Many stars must not take time that grows with every one of them.
    EXPECT_FALSE(MatchesPattern(std::wstring(5000, L'a'), L"*a*a*a*a*a*a*a*a*a*a*b"));
}

}  // namespace
