#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include <cwctype>

#include "support/RandomText.h"
#include "support/Wide.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::RandomText;
using quon_test::ToCString;
using quon_test::Wide;

struct CaseRow
{
    std::wstring text;
    std::wstring upper;
    std::wstring lower;
};

TEST(LetterCase, ChangesTheWholeTextByTheUsersLocale)
{
    const CaseRow rows[] = {
        {L"", L"", L""},
        {L"a", L"A", L"a"},
        {L"Surface 12", L"SURFACE 12", L"surface 12"},
        {L"\u00e4\u00d6\u00fc", L"\u00c4\u00d6\u00dc", L"\u00e4\u00f6\u00fc"},
        {L"\u0416\u0436", L"\u0416\u0416", L"\u0436\u0436"},
        {L"\u00df", L"\u00df", L"\u00df"},
        {std::wstring(L"a\0bC\0d", 6), std::wstring(L"A\0BC\0D", 6), std::wstring(L"a\0bc\0d", 6)},
        {std::wstring(L"\0a", 2), std::wstring(L"\0A", 2), std::wstring(L"\0a", 2)},
        {std::wstring(100000, L'x'), std::wstring(100000, L'X'), std::wstring(100000, L'x')},
    };
    for (const CaseRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text.substr(0, 40)));
        EXPECT_EQ(Wide(ToUpperCopy(ToCString(row.text))), row.upper);
        EXPECT_EQ(Wide(ToLowerCopy(ToCString(row.text))), row.lower);
    }
}

TEST(LetterCase, LeavesTheArgumentAndItsOtherCopiesAlone)
{
    const CString text(L"Mixed Case");
    const CString other(text);
    EXPECT_EQ(ToUpperCopy(text), L"MIXED CASE");
    EXPECT_EQ(ToLowerCopy(text), L"mixed case");
    EXPECT_EQ(CapitalizeWords(L"mixed case"), L"Mixed Case");
    EXPECT_EQ(text, L"Mixed Case");
    EXPECT_EQ(other, L"Mixed Case");
}

struct WordRow
{
    const wchar_t* text;
    const wchar_t* expected;
};

TEST(CapitalizeWords, ChangesAllButTheLastCharacter)
{
    const WordRow rows[] = {
        {L"", L""},
        {L"a", L"A"},
        {L"A", L"A"},
        {L"1", L"1"},
        {L"ab", L"Ab"},
        {L"aB", L"AB"},
        {L"AB", L"AB"},
        {L"abc", L"Abc"},
        {L"aBC", L"AbC"},
        {L"hELLO wORLD", L"Hello WorlD"},
        {L"x1y", L"X1y"},
        {L"x1yz", L"X1Yz"},
        {L"a b", L"A b"},
        {L"a bc", L"A Bc"},
        {L"a\tbC\nde", L"A\tBc\nDe"},
        {L"a-bC-d", L"A-bc-d"},
        {L"a\u00a0bc", L"A\u00a0Bc"},
        {L"\u00e4\u00d6\u00c4 \u00fcX", L"\u00c4\u00f6\u00e4 \u00dcX"},
        {L"x\u0663\u00e4x", L"X\u0663\u00c4x"},
        {L"  ab ", L"  Ab "},
    };
    for (const WordRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        EXPECT_EQ(Wide(CapitalizeWords(row.text)), row.expected);
    }
}

std::wstring PlainCapitalize(std::wstring text)
{
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        if (i != 0 && i + 1 == text.size())
        {
            break;
        }
        const bool upper = i == 0 || std::iswdigit(text[i - 1]) || std::iswspace(text[i - 1]);
        (upper ? ::CharUpperBuffW : ::CharLowerBuffW)(&text[i], 1);
    }
    return text;
}

TEST(CapitalizeWords, EqualsAPlainLoopOnRandomTexts)
{
    RandomText random(411);
    for (int round = 0; round < quon_test::Cases(20000); ++round)
    {
        const std::wstring text = random.Text(L"aBcD 1\t-\u00e4\u00c4\u0663", 12);
        ASSERT_EQ(Wide(CapitalizeWords(ToCString(text))), PlainCapitalize(text)) << testing::PrintToString(text);
    }
}

}  // namespace
