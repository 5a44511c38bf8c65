#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "support/RandomText.h"
#include "support/Wide.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::RandomText;
using quon_test::ToCString;
using quon_test::Wide;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(FormatDouble, WritesTheWantedDecimals)
{
    struct Row
    {
        double value;
        int decimals;
        const wchar_t* expected;
    };
    const Row rows[] = {
        {0, 0, L"0"},
        {0, 3, L"0.000"},
        {12.5, 2, L"12.50"},
        {-12.5, 1, L"-12.5"},
        {1.0 / 3, 5, L"0.33333"},
        {2.0 / 3, 0, L"1"},
        {1e15, 1, L"1000000000000000.0"},
        {-0.0, 1, L"-0.0"},
        {1.25, -1, L"1.250000"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.value << " with " << row.decimals);
        EXPECT_EQ(Wide(FormatDouble(row.value, row.decimals)), row.expected);
    }
    EXPECT_EQ(FormatDouble(std::numeric_limits<double>::max(), 2).GetLength(), 309 + 3);
    EXPECT_EQ(FormatDouble(0.5, 400).GetLength(), 2 + 400);
}

struct ParseRow
{
    const wchar_t* text;
    bool result;
    double value;
};

TEST(ParseDouble, SucceedsWhenTheWholeTextIsANumberThatIsNotPositiveInfinity)
{
    const ParseRow rows[] = {
        {L"", true, 0},
        {L"12.5", true, 12.5},
        {L"12.5x", false, 12.5},
        {L"1e999", false, kInfinity},
        {L"-1e999", true, -kInfinity},
        {L"1e-999", true, 0},
        {L"  12", true, 12},
        {L"12 ", false, 12},
        {L" ", false, 0},
        {L"x", false, 0},
        {L"+5", true, 5},
        {L"--5", false, 0},
        {L".", false, 0},
        {L".5", true, 0.5},
        {L"5.", true, 5},
        {L"1e", false, 1},
        {L"1e3", true, 1000},
        {L"1,5", false, 1},
        {L"0x1p3", true, 8},
        {L"inf", false, kInfinity},
        {L"-inf", true, -kInfinity},
        {L"infinity", false, kInfinity},
        {L"12\u00e9", false, 12},
        {L"1.7976931348623157e308", true, 1.7976931348623157e308},
    };
    for (const ParseRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        double value = -77;
        EXPECT_EQ(ParseDouble(row.text, &value), row.result);
        EXPECT_EQ(value, row.value);
    }
}

TEST(ParseDouble, TakesNotANumberForANumber)
{
    double value = 0;
    EXPECT_TRUE(ParseDouble(L"nan", &value));
    EXPECT_TRUE(std::isnan(value));
}

TEST(ParseDouble, NeedsNoRoomForTheValue)
{
    EXPECT_TRUE(ParseDouble(L"1", nullptr));
    EXPECT_FALSE(ParseDouble(L"1x", nullptr));
}

TEST(ParseDouble, ReadsUpToTheFirstZeroCharacter)
{
    double value = 0;
    EXPECT_TRUE(ParseDouble(CString(L"12\0x", 4), &value));
    EXPECT_EQ(value, 12);
}

class GermanNumbers
{
public:
    GermanNumbers() : m_set(std::setlocale(LC_NUMERIC, "German") != nullptr) {}
    ~GermanNumbers() { std::setlocale(LC_NUMERIC, "C"); }
    bool IsSet() const { return m_set; }

private:
    bool m_set;
};

TEST(ParseDouble, UsesTheDecimalPointOfTheCLocale)
{
    const GermanNumbers german;
    ASSERT_TRUE(german.IsSet());
    double value = 0;
    EXPECT_TRUE(ParseDouble(L"1,5", &value));
    EXPECT_EQ(value, 1.5);
    EXPECT_FALSE(ParseDouble(L"1.5", &value));
    EXPECT_EQ(value, 1);
}

TEST(ParseDouble, ReadsBackWhatFormatDoubleWrote)
{
    std::mt19937 engine(42);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    for (int round = 0; round < quon_test::Cases(10000); ++round)
    {
        const double value = values(engine);
        double back = 0;
        ASSERT_TRUE(ParseDouble(FormatDouble(value, 17), &back)) << value;
        ASSERT_EQ(back, value);
    }
}

struct ClassRow
{
    const wchar_t* text;
    bool zero;
    bool numeric;
};

TEST(NumberClasses, LookAtTheCharactersAlone)
{
    const ClassRow rows[] = {
        {L"", false, true},       {L"0", true, true},       {L"0.000", true, true}, {L".", true, true},
        {L"00", true, true},      {L"...", true, true},     {L"0.01", false, true}, {L"-0", false, true},
        {L" 0", false, false},    {L"0 ", false, false},    {L"-.-", false, true},  {L"1-2", false, true},
        {L"12", false, true},     {L"+1", false, false},    {L"1e5", false, false}, {L"1,5", false, false},
        {L"\u0663", false, true}, {L"\uff10", false, true}, {L"a", false, false},   {L"-", false, true},
    };
    for (const ClassRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(IsZeroText(row.text), row.zero);
        EXPECT_EQ(IsNumericText(row.text), row.numeric);
    }
    EXPECT_TRUE(IsNumericText(nullptr));
    EXPECT_FALSE(IsZeroText(CString(L"0\0", 2)));
}

TEST(NumberClasses, EqualAPlainLoopOnRandomTexts)
{
    RandomText random(7);
    for (int round = 0; round < quon_test::Cases(20000); ++round)
    {
        const std::wstring text = random.Text(L"000..-1x", 6);
        const bool zero = !text.empty() && text.find_first_not_of(L"0.") == std::wstring::npos;
        const bool numeric = text.find_first_not_of(L"0123456789-.") == std::wstring::npos;
        ASSERT_EQ(IsZeroText(ToCString(text)), zero) << testing::PrintToString(text);
        ASSERT_EQ(IsNumericText(text.c_str()), numeric) << testing::PrintToString(text);
    }
}

}  // namespace
