#include "host/landxml/NumberText.h"

#include <bit>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>

namespace
{

using quonhost::FormatNumber;
using quonhost::ParseNumber;
using quonhost::ParsePointNumber;

struct Written
{
    double value;
    std::string text;
};

std::string Zeros(size_t count)
{
    return std::string(count, '0');
}

TEST(NumberText, NumbersAreWrittenWithTheFewestDigitsAndWithoutAnExponent)
{
    const Written rows[] = {
        {0.0, "0"},
        {-0.0, "-0"},
        {1, "1"},
        {-1, "-1"},
        {10, "10"},
        {100.5, "100.5"},
        {0.1, "0.1"},
        {-0.001, "-0.001"},
        {1e-5, "0.00001"},
        {123456.789, "123456.789"},
        {0.1 + 0.2, "0.30000000000000004"},
        {1.0 / 3, "0.3333333333333333"},
        {5321400.1199999999, "5321400.12"},
        {9007199254740993.0, "9007199254740992"},
        {1e22, "1" + Zeros(22)},
        {1e23, "1" + Zeros(23)},
        {std::numeric_limits<double>::max(), "17976931348623157" + Zeros(292)},
        {std::numeric_limits<double>::min(), "0." + Zeros(307) + "22250738585072014"},
        {std::numeric_limits<double>::denorm_min(), "0." + Zeros(323) + "5"},
    };
    for (const Written& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(FormatNumber(row.value), row.text);
    }
}

// The same number to the last bit, with at most 17 digits that count.
void ExpectRoundTrip(double value)
{
    const std::string text = FormatNumber(value);
    SCOPED_TRACE(text);
    EXPECT_EQ(text.find_first_not_of("-.0123456789"), std::string::npos);
    std::string digits;
    for (const char ch : text)
    {
        digits += ch >= '0' && ch <= '9' ? std::string(1, ch) : std::string();
    }
    const size_t first = std::min(digits.find_first_not_of('0'), digits.size());
    const size_t last = digits.find_last_not_of('0') + 1;
    EXPECT_LE(last < first ? 0 : last - first, 17U);
    const std::optional<double> back = ParseNumber(text);
    ASSERT_TRUE(back.has_value());
    EXPECT_EQ(std::bit_cast<std::uint64_t>(*back), std::bit_cast<std::uint64_t>(value));
}

TEST(NumberText, AnyNumberReadsBackAsItself)
{
    std::mt19937_64 chance(7);
    for (int i = 0; i < 20000; ++i)
    {
        const double value = std::bit_cast<double>(chance());
        if (std::isfinite(value))
        {
            ExpectRoundTrip(value);
        }
    }
    std::uniform_real_distribution<double> coordinate(-1e7, 1e7);
    for (int i = 0; i < 20000; ++i)
    {
        ExpectRoundTrip(coordinate(chance));
    }
}

TEST(NumberText, TheLocaleDoesNotMatter)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    ASSERT_NE(std::setlocale(LC_ALL, "German"), nullptr);
    EXPECT_EQ(FormatNumber(1234.5), "1234.5");
    EXPECT_EQ(ParseNumber("1234.5"), 1234.5);
    EXPECT_EQ(ParseNumber("1234,5"), std::nullopt);
    std::setlocale(LC_ALL, before.c_str());
}

TEST(NumberText, NumbersOfOthersAreRead)
{
    EXPECT_EQ(ParseNumber("1e3"), 1000);
    EXPECT_EQ(ParseNumber("1.5E-3"), 0.0015);
    EXPECT_EQ(ParseNumber("+2.5"), 2.5);
    EXPECT_EQ(ParseNumber("-.5"), -0.5);
    EXPECT_EQ(ParseNumber("5."), 5);
    EXPECT_EQ(ParseNumber("007"), 7);
    EXPECT_EQ(ParseNumber("0.1000000000000000055511151231257827021181583404541015625"), 0.1);
}

TEST(NumberText, WhatIsNoFiniteNumberIsRefused)
{
    for (const char* const text : {"",   " ",     "x",      "1x",  " 1",  "1 ",   "+",   "-",     "+-1",   "--1",
                                   "1e", "1e999", "-1e999", "inf", "nan", "0x10", "1,5", "1 000", "1_000", "."})
    {
        EXPECT_EQ(ParseNumber(text), std::nullopt) << text;
    }
}

TEST(NumberText, PointNumbersAreThoseThatListsCanName)
{
    EXPECT_EQ(ParsePointNumber("1"), 1U);
    EXPECT_EQ(ParsePointNumber("0042"), 42U);
    EXPECT_EQ(ParsePointNumber("2147483647"), 2147483647U);
    for (const char* const text :
         {"", "0", "2147483648", "4294967297", "99999999999", "-1", "+1", "1.0", "1 ", " 1", "A1", "1A"})
    {
        EXPECT_EQ(ParsePointNumber(text), std::nullopt) << text;
    }
}

}  // namespace
