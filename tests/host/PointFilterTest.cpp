#include "host/Console.h"
#include "host/landxml/PointFilter.h"

#include <gtest/gtest.h>
#include <string>

namespace
{

using quonhost::PointFilter;

TEST(PointFilter, AListNamesItsNumbersInWhateverOrder)
{
    const struct
    {
        std::string list, names;  // of the numbers from 1 to 12
    } rows[] = {
        {"", ""},
        {" , ,", ""},
        {"3", "3 "},
        {"2-4,9", "2 3 4 9 "},
        {"9,4-2", "2 3 4 9 "},
        {"5,5,4-6,6", "4 5 6 "},
        {"1-9,3-4,8-10", "1 2 3 4 5 6 7 8 9 10 "},
        {"1-2,3-4", "1 2 3 4 "},
        {"12,1", "1 12 "},
        {"1-2000000000", "1 2 3 4 5 6 7 8 9 10 11 12 "},
        {"<5", ""},
        {"13-2147483647", ""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.list);
        const PointFilter filter(row.list);
        std::string names;
        for (unsigned long number = 1; number <= 12; ++number)
        {
            names += filter.Contains(number) ? std::to_string(number) + " " : "";
        }
        EXPECT_EQ(names, row.names);
    }
}

TEST(PointFilter, WithoutAListEveryNumberIsNamed)
{
    EXPECT_TRUE(PointFilter().Contains(1));
    EXPECT_TRUE(PointFilter().Contains(2147483647));
}

TEST(PointFilter, WhatIsNoListIsRefused)
{
    for (const char* const list : {"x", "1;2", "0", "1-", "1,2,x"})
    {
        SCOPED_TRACE(list);
        EXPECT_THROW(PointFilter{list}, quonhost::CommandError);
    }
}

}  // namespace
