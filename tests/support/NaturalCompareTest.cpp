#include <afx.h>

#include "support/NaturalCompare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <cstdint>
#include <cwchar>
#include <cwctype>
#include <string>
#include <cstdlib>
#include <vector>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "support/RandomText.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::RandomText;

int Sign(int value)
{
    return (value > 0) - (value < 0);
}

// The rule, step by step, with the collation functions as arguments.
template <typename Whole, typename Stretch>
int PlainCompare(const wchar_t* s1, const wchar_t* s2, Whole whole, Stretch stretch)
{
    for (;;)
    {
        std::size_t n1 = 0;
        std::size_t n2 = 0;
        while (s1[n1] != 0 && !std::iswdigit(s1[n1]))
        {
            ++n1;
        }
        while (s2[n2] != 0 && !std::iswdigit(s2[n2]))
        {
            ++n2;
        }
        if (s1[n1] == 0 || s2[n2] == 0 || n1 != n2)
        {
            return whole(s1, s2);
        }
        if (const int order = stretch(s1, s2, n1); order != 0)
        {
            return order;
        }
        s1 += n1;
        s2 += n2;
        const int v1 = ::_wtoi(s1);
        const int v2 = ::_wtoi(s2);
        if (v1 != v2)
        {
            return static_cast<int>(static_cast<std::uint32_t>(v1) - static_cast<std::uint32_t>(v2));
        }
        while (std::iswdigit(*s1))
        {
            ++s1;
        }
        while (std::iswdigit(*s2))
        {
            ++s2;
        }
        if (*s1 == 0)
        {
            return *s2 != 0 ? -1 : 0;
        }
        if (*s2 == 0)
        {
            return 1;
        }
    }
}

int PlainCase(const wchar_t* a, const wchar_t* b)
{
    return PlainCompare(a, b, &std::wcscoll, &::_wcsncoll);
}

int PlainNoCase(const wchar_t* a, const wchar_t* b)
{
    return PlainCompare(a, b, &::_wcsicoll, &::_wcsnicoll);
}

struct CompareRow
{
    const wchar_t* a;
    const wchar_t* b;
    int expected;
};

TEST(CompareNatural, GivesTheDifferenceOfTheDecidingNumbers)
{
    const CompareRow rows[] = {
        {L"", L"", 0},
        {L"file2", L"file10", -8},
        {L"file10", L"file2", 8},
        {L"a2b", L"a10b", -8},
        {L"a01", L"a1", 0},
        {L"a001b", L"a1b", 0},
        {L"a10", L"a10b", -1},
        {L"a10b", L"a10", 1},
        {L"a10b", L"a10b", 0},
        {L"1", L"1", 0},
        {L"0", L"00", 0},
        {L"0", L"9", -9},
        {L"1a2", L"1a3", -1},
        {L"1a2b7", L"1a2b3", 4},
        {L"v1.2.10", L"v1.2.9", 1},
        {L"v1.2.10", L"v1.10.2", -8},
        {L"5", L"999999999", -999999994},
        {L"5", L"2147483647", -2147483642},
        // What does not fit counts as the largest number.
        {L"2147483647", L"2147483648", 0},
        {L"5", L"99999999999999999999", -2147483642},
        {L"99999999999x", L"88888888888y", -1},
        {L"000000000000000000000005", L"4", 1},
        {L"0000000000000000000000000", L"0", 0},
        // Digits of other scripts are digits.
        {L"\u0663", L"\u0661", 2},
        {L"a\uff12", L"a\uff11\uff10", -8},
        {L"1\u0663", L"13", 0},
        {L"0\u0663", L"4", -1},
    };
    for (const CompareRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        EXPECT_EQ(CompareNatural(row.a, row.b), row.expected);
        EXPECT_EQ(CompareNaturalNoCase(row.a, row.b), row.expected);
    }
}

TEST(CompareNatural, CollatesTheRemaindersWhereNumbersDoNotDecide)
{
    const CompareRow rows[] = {
        {L"", L"a", std::wcscoll(L"", L"a")},           {L"a", L"", std::wcscoll(L"a", L"")},
        {L"", L"1", std::wcscoll(L"", L"1")},           {L"b", L"a", std::wcscoll(L"b", L"a")},
        {L"x1y", L"xy1", std::wcscoll(L"x1y", L"xy1")}, {L"xy1", L"x1y", std::wcscoll(L"xy1", L"x1y")},
        {L"a1", L"a", std::wcscoll(L"a1", L"a")},       {L"7b", L"7c", std::wcscoll(L"b", L"c")},
        {L"7b2", L"7bb2", std::wcscoll(L"b2", L"bb2")}, {L"a1", L"b1", ::_wcsncoll(L"a", L"b", 1)},
        {L"z1", L"a2", ::_wcsncoll(L"z", L"a", 1)},     {L"3z1", L"3a2", ::_wcsncoll(L"z", L"a", 1)},
        {L"A1", L"a1", ::_wcsncoll(L"A", L"a", 1)},     {L"A", L"a", std::wcscoll(L"A", L"a")},
    };
    for (const CompareRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        EXPECT_EQ(CompareNatural(row.a, row.b), row.expected);
    }
}

TEST(CompareNaturalNoCase, TakesUpperAndLowerCaseAsEqual)
{
    EXPECT_EQ(CompareNaturalNoCase(L"FILE2", L"file10"), -8);
    EXPECT_EQ(CompareNaturalNoCase(L"File", L"fILE"), 0);
    EXPECT_EQ(CompareNaturalNoCase(L"a1B2c", L"A01b2C"), 0);
    EXPECT_EQ(CompareNaturalNoCase(L"Z1", L"a1"), ::_wcsnicoll(L"Z", L"a", 1));
    EXPECT_EQ(CompareNaturalNoCase(L"Z", L"a"), ::_wcsicoll(L"Z", L"a"));
    EXPECT_NE(CompareNatural(L"FILE2", L"file2"), 0);
}

TEST(CompareNatural, TakesNullForAnEmptyText)
{
    EXPECT_EQ(CompareNatural(nullptr, nullptr), 0);
    EXPECT_EQ(CompareNatural(nullptr, L"a"), std::wcscoll(L"", L"a"));
    EXPECT_EQ(CompareNatural(L"a", nullptr), std::wcscoll(L"a", L""));
    EXPECT_EQ(CompareNaturalNoCase(nullptr, L""), 0);
}

TEST(CompareNatural, SortsNamesOfOneShapeByTheirNumbers)
{
    std::vector<std::wstring> names;
    for (int i = 200; i > 0; --i)
    {
        names.push_back(L"Alignment " + std::to_wstring(i) + L" profile " + std::to_wstring(i % 7) + L".txt");
    }
    std::sort(names.begin(), names.end(),
              [](const std::wstring& a, const std::wstring& b) { return CompareNatural(a.c_str(), b.c_str()) < 0; });
    for (int i = 1; i <= 200; ++i)
    {
        EXPECT_EQ(names[static_cast<std::size_t>(i - 1)].rfind(L"Alignment " + std::to_wstring(i) + L" ", 0), 0U) << i;
    }
}

void CompareWithTheRule(unsigned int seed)
{
    RandomText random(seed);
    constexpr wchar_t kAlphabet[] = L"aAbB-. 0001239\u00e4\u00c4\u00df\u0663\u00b2\uff12";
    for (int round = 0; round < quon_test::Cases(40000); ++round)
    {
        const std::wstring start = random.Text(kAlphabet, 4);
        const std::wstring a = start + random.Text(kAlphabet, 12);
        const std::wstring b = start + random.Text(kAlphabet, 12);
        const std::string shown = testing::PrintToString(a) + " and " + testing::PrintToString(b);
        ASSERT_EQ(CompareNatural(a.c_str(), b.c_str()), PlainCase(a.c_str(), b.c_str())) << shown;
        ASSERT_EQ(CompareNaturalNoCase(a.c_str(), b.c_str()), PlainNoCase(a.c_str(), b.c_str())) << shown;
        ASSERT_EQ(CompareNatural(a.c_str(), a.c_str()), 0) << shown;
        ASSERT_EQ(Sign(CompareNatural(a.c_str(), b.c_str())), -Sign(CompareNatural(b.c_str(), a.c_str()))) << shown;
    }
}

TEST(CompareNatural, EqualsTheRuleOnRandomTexts)
{
    CompareWithTheRule(51);
}

class GermanCollation
{
public:
    GermanCollation() : m_set(std::setlocale(LC_ALL, "German") != nullptr) {}
    ~GermanCollation() { std::setlocale(LC_ALL, "C"); }
    bool IsSet() const { return m_set; }

private:
    bool m_set;
};

TEST(CompareNatural, FollowsTheLocaleInForce)
{
    EXPECT_GT(CompareNatural(L"a1", L"B1"), 0);
    EXPECT_GT(CompareNatural(L"\u00e41", L"b1"), 0);
    const GermanCollation german;
    ASSERT_TRUE(german.IsSet());
    EXPECT_LT(CompareNatural(L"a1", L"B1"), 0);
    EXPECT_LT(CompareNatural(L"\u00e41", L"b1"), 0);
    EXPECT_LT(CompareNatural(L"a", L"B"), 0);
}

TEST(CompareNatural, EqualsTheRuleInALinguisticLocale)
{
    const GermanCollation german;
    ASSERT_TRUE(german.IsSet());
    CompareWithTheRule(52);
}

// Kept: where a hyphen counts little, each of these names comes before the next, and the last before the first.
TEST(CompareNatural, ContradictsItselfBetweenShapesWhereCollationIsLinguistic)
{
    ASSERT_NE(std::setlocale(LC_ALL, "English_United States"), nullptr);
    const std::vector<std::wstring> circle = {L"a-9", L"a-10", L"a9"};
    for (std::size_t i = 0; i < circle.size(); ++i)
    {
        const std::wstring& next = circle[(i + 1) % circle.size()];
        EXPECT_LT(CompareNatural(circle[i].c_str(), next.c_str()), 0) << i;
        EXPECT_LT(CompareNaturalNoCase(circle[i].c_str(), next.c_str()), 0) << i;
    }
    std::setlocale(LC_ALL, "C");
}

int g_allocations;

void* __cdecl CountingMalloc(std::size_t size)
{
    ++g_allocations;
    return std::malloc(size);
}

TEST(CompareNatural, AllocatesNothing)
{
    const ImportPatch<void*(__cdecl*)(std::size_t)> patch(quon_test::kLibraryModule, "malloc", &CountingMalloc);
    const ImportPatch<void*(__cdecl*)(std::size_t)> strings(quon_test::kFrameworkModule, "malloc", &CountingMalloc);
    g_allocations = 0;
    const std::wstring a = std::wstring(5000, L'x') + L"12" + std::wstring(5000, L'y') + L"7";
    const std::wstring b = std::wstring(5000, L'x') + L"12" + std::wstring(5000, L'z') + L"7";
    EXPECT_LT(CompareNatural(a.c_str(), b.c_str()), 0);
    EXPECT_LT(CompareNaturalNoCase(a.c_str(), b.c_str()), 0);
    EXPECT_EQ(g_allocations, 0);
}

}  // namespace
