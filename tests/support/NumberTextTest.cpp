#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <cwchar>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <system_error>

#include "support/RandomText.h"
#include "support/Wide.h"
#include "helpers/Thorough.h"
#include "helpers/ModuleNames.h"

namespace
{

using quon_test::RandomText;
using quon_test::ToCString;
using quon_test::Wide;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

// Equal to the last bit, the sign of zero included; any two that are not numbers are the same.
bool IsSameDouble(double a, double b)
{
    return std::memcmp(&a, &b, sizeof(a)) == 0 || (std::isnan(a) && std::isnan(b));
}

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

class LocaleForTest
{
public:
    explicit LocaleForTest(const char* name) : m_set(std::setlocale(LC_ALL, name) != nullptr) {}
    ~LocaleForTest() { std::setlocale(LC_ALL, "C"); }
    LocaleForTest(const LocaleForTest&) = delete;
    LocaleForTest& operator=(const LocaleForTest&) = delete;
    bool IsSet() const { return m_set; }

private:
    bool m_set;
};

// Plain, with another decimal point, and with code pages that have best fits for digits of other scripts.
const char* const kLocales[] = {"C", "German", ".1252", ".932"};

TEST(ParseDouble, UsesTheDecimalPointOfTheCLocale)
{
    const LocaleForTest german("German");
    ASSERT_TRUE(german.IsSet());
    double value = 0;
    EXPECT_TRUE(ParseDouble(L"1,5", &value));
    EXPECT_EQ(value, 1.5);
    EXPECT_FALSE(ParseDouble(L"1.5", &value));
    EXPECT_EQ(value, 1);
}

// What a text may look like is the run-time's affair: "inf", "nan" and hexadecimal numbers are numbers for some only.
TEST(ParseDouble, ReadsWhatTheRunTimeOfTheLibraryReads)
{
    const HMODULE runtime = ::GetModuleHandleW(quon_test::kRunTimeModule);
    ASSERT_NE(runtime, nullptr);
    const auto wcstodOfRuntime =
        reinterpret_cast<decltype(&std::wcstod)>(reinterpret_cast<void*>(::GetProcAddress(runtime, "wcstod")));
    ASSERT_NE(wcstodOfRuntime, nullptr);
    for (const char* const name : kLocales)
    {
        const LocaleForTest locale(name);
        ASSERT_TRUE(locale.IsSet()) << name;
        for (const wchar_t* const text : {L"0x1p3",        L"0x10",
                                          L"0x",           L"inf",
                                          L"-inf",         L"infinity",
                                          L"nan",          L"-nan",
                                          L"nan(1)",       L"1d5",
                                          L"1D5",          L"12\u2075",
                                          L"\u221e",       L"\uff11\uff12",
                                          L"\u0663",       L"\u00a05",
                                          L"\u30005",      L"1,5",
                                          L"1.5",          L"1'000",
                                          L"-0",           L"1e-400",
                                          L"4.9e-324",     L"0e9999999999",
                                          L"1e2147483648", L"9007199254740993"})
        {
            SCOPED_TRACE(testing::Message() << name << ": " << testing::PrintToString(text));
            wchar_t* end = nullptr;
            const double expected = wcstodOfRuntime(text, &end);
            double value = -77;
            EXPECT_EQ(ParseDouble(text, &value), *end == L'\0' && expected != kInfinity);
            EXPECT_TRUE(IsSameDouble(value, expected)) << value << ", the run-time " << expected;
        }
    }
}

TEST(ParseDouble, TakesNoBestFitOfACodePageForADigit)
{
    for (const char* const name : kLocales)
    {
        const LocaleForTest locale(name);
        ASSERT_TRUE(locale.IsSet()) << name;
        double value = -77;
        EXPECT_FALSE(ParseDouble(L"12\u2075", &value)) << name;
        EXPECT_EQ(value, 12) << name;
        EXPECT_FALSE(ParseDouble(L"\u221e", &value)) << name;
        EXPECT_EQ(value, 0) << name;
    }
}

// A coordinate, a double in its shortest form, or many digits with an exponent.
std::string RandomDecimal(std::mt19937_64& engine)
{
    const auto digits = [&engine](std::uint64_t below) { return std::to_string(engine() % below); };
    switch (engine() % 3)
    {
        case 0:
        {
            const std::string decimals = digits(1000000);
            return digits(10000000) + "." + std::string(6 - decimals.size(), '0') + decimals;
        }
        case 1:
        {
            const std::uint64_t bits = engine() & 0x7FEFFFFFFFFFFFFF;
            double value = 0;
            std::memcpy(&value, &bits, sizeof(value));
            char text[40];
            return std::string(text, std::to_chars(text, text + sizeof(text), value).ptr);
        }
        default:
            return digits(UINT64_MAX) + digits(100000) + "." + digits(UINT64_MAX) + "e" +
                   std::to_string(static_cast<int>(engine() % 600) - 320);
    }
}

TEST(ParseDouble, GivesTheNearestDoubleInEveryLocale)
{
    std::mt19937_64 engine(20);
    for (const char* const name : kLocales)
    {
        const LocaleForTest locale(name);
        ASSERT_TRUE(locale.IsSet()) << name;
        const wchar_t point = static_cast<wchar_t>(*std::localeconv()->decimal_point);
        for (int round = 0; round < quon_test::Cases(20000) / static_cast<int>(std::size(kLocales)); ++round)
        {
            const std::string text = RandomDecimal(engine);
            double expected = 0;
            if (std::from_chars(text.data(), text.data() + text.size(), expected).ec != std::errc())
            {
                continue;  // an exponent beyond the doubles: what is read then is not for from_chars to say
            }
            std::wstring wide(text.begin(), text.end());
            std::replace(wide.begin(), wide.end(), L'.', point);
            double value = 0;
            ASSERT_TRUE(ParseDouble(wide.c_str(), &value)) << text;
            ASSERT_TRUE(IsSameDouble(value, expected)) << text << " in " << name;
        }
    }
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
