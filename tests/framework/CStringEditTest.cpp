// The string's editing, searching, comparing and formatting against the framework's documented behaviour, by tables.
#include <gtest/gtest.h>
#include <afx.h>
#include <afxdisp.h>
#include <climits>
#include <cwctype>
#include <string>
#include <vector>

#include "helpers/RunTimeLocale.h"

namespace
{
std::wstring Text(const CString& text)
{
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

int Sign(int value)
{
    return (value > 0) - (value < 0);
}

TEST(CStringEditTest, TakesPartsWithinTheText)
{
    const CString text(L"abcdef");
    struct Row
    {
        const char* name;
        CString part;
        const wchar_t* expected;
    };
    const Row rows[] = {
        {"left none", text.Left(0), L""},
        {"left", text.Left(2), L"ab"},
        {"left all", text.Left(6), L"abcdef"},
        {"left more", text.Left(7), L"abcdef"},
        {"left most", text.Left(INT_MAX), L"abcdef"},
        {"left negative", text.Left(-3), L""},
        {"right none", text.Right(0), L""},
        {"right", text.Right(2), L"ef"},
        {"right more", text.Right(7), L"abcdef"},
        {"right negative", text.Right(-1), L""},
        {"mid from", text.Mid(2), L"cdef"},
        {"mid from start", text.Mid(0), L"abcdef"},
        {"mid from end", text.Mid(6), L""},
        {"mid from beyond", text.Mid(9), L""},
        {"mid", text.Mid(2, 2), L"cd"},
        {"mid more", text.Mid(4, 10), L"ef"},
        {"mid negative start", text.Mid(-4, 2), L"ab"},
        {"mid negative count", text.Mid(2, -1), L""},
        {"mid beyond", text.Mid(10, 2), L""},
        {"of nothing", CString().Left(3), L""},
        {"span including", CString(L"aabbcc").SpanIncluding(L"ba"), L"aabb"},
        {"span including none", text.SpanIncluding(L"x"), L""},
        {"span excluding", text.SpanExcluding(L"xed"), L"abc"},
        {"span excluding all", text.SpanExcluding(L"xyz"), L"abcdef"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Text(row.part), row.expected);
    }
    EXPECT_EQ(text.Left(6).GetString(), text.GetString());
    EXPECT_EQ(text.Right(9).GetString(), text.GetString());
    EXPECT_EQ(text.Mid(0).GetString(), text.GetString());
}

TEST(CStringEditTest, FindsCharacters)
{
    struct Row
    {
        const wchar_t* text;
        wchar_t sought;
        int start;
        int expected;
    };
    const Row rows[] = {
        {L"abcabc", L'a', 0, 0},   {L"abcabc", L'a', 1, 3},  {L"abcabc", L'c', 5, 5},
        {L"abcabc", L'x', 0, -1},  {L"abcabc", L'a', 6, -1}, {L"abcabc", L'a', 7, -1},
        {L"abcabc", L'a', -1, -1}, {L"", L'a', 0, -1},       {L"abcabc", L'A', 0, -1},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << Text(row.text).c_str() << ' ' << row.start);
        EXPECT_EQ(CString(row.text).Find(row.sought, row.start), row.expected);
    }
    EXPECT_EQ(CString(L"abcabc").Find(L'b'), 1);
    EXPECT_EQ(CString(L"abc").Find(L'\0'), 3);
    EXPECT_EQ(CString(L"abc").Find(L'\0', 3), -1);
    EXPECT_EQ(CString(L"abcabc").ReverseFind(L'b'), 4);
    EXPECT_EQ(CString(L"abcabc").ReverseFind(L'x'), -1);
    EXPECT_EQ(CString(L"").ReverseFind(L'x'), -1);
    EXPECT_EQ(CString(L"abcabc").FindOneOf(L"cb"), 1);
    EXPECT_EQ(CString(L"abcabc").FindOneOf(L"xyz"), -1);
    EXPECT_EQ(CString(L"abcabc").FindOneOf(L""), -1);
}

TEST(CStringEditTest, FindsTexts)
{
    struct Row
    {
        const wchar_t* text;
        const wchar_t* sought;
        int start;
        int expected;
    };
    const Row rows[] = {
        {L"abcabc", L"ca", 0, 2},
        {L"abcabc", L"abc", 1, 3},
        {L"abcabc", L"abcabc", 0, 0},
        {L"abcabc", L"abcabcd", 0, -1},
        {L"abcabc", L"", 0, 0},
        {L"abcabc", L"", 6, 6},
        {L"abcabc", L"", 7, -1},
        {L"abcabc", L"a", -1, -1},
        {L"", L"", 0, 0},
        {L"", L"a", 0, -1},
        {L"aaab", L"aab", 0, 1},
        {L"abcabc", nullptr, 0, -1},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << (row.sought == nullptr ? L"(null)" : row.sought) << ' ' << row.start);
        EXPECT_EQ(CString(row.text).Find(row.sought, row.start), row.expected);
    }
    EXPECT_EQ(CString(L"ab\0cd", 5).Find(L"cd"), -1);
    EXPECT_EQ(CString(L"ab\0cd", 5).Find(L"cd", 3), 3);
}

TEST(CStringEditTest, Inserts)
{
    struct Row
    {
        int index;
        const wchar_t* inserted;
        const wchar_t* expected;
    };
    const Row rows[] = {
        {0, L"XY", L"XYabc"},  {1, L"XY", L"aXYbc"}, {3, L"XY", L"abcXY"}, {9, L"XY", L"abcXY"},
        {-2, L"XY", L"XYabc"}, {1, L"", L"abc"},     {1, nullptr, L"abc"}, {1, L"a longer text", L"aa longer textbc"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.index);
        CString text(L"abc");
        EXPECT_EQ(text.Insert(row.index, row.inserted), static_cast<int>(wcslen(row.expected)));
        EXPECT_EQ(Text(text), row.expected);
    }
    CString text;
    EXPECT_EQ(text.Insert(5, L'b'), 1);
    EXPECT_EQ(text.Insert(-5, L'a'), 2);
    EXPECT_EQ(text.Insert(2, L'c'), 3);
    EXPECT_EQ(text.Insert(1, L'-'), 4);
    EXPECT_EQ(Text(text), L"a-bc");
}

TEST(CStringEditTest, Deletes)
{
    struct Row
    {
        int index;
        int count;
        const wchar_t* expected;
    };
    const Row rows[] = {
        {0, 1, L"bcdef"},  {2, 2, L"abef"},   {4, 2, L"abcd"},  {4, 99, L"abcd"},  {0, 6, L""},
        {6, 1, L"abcdef"}, {9, 1, L"abcdef"}, {-3, 2, L"cdef"}, {2, 0, L"abcdef"}, {2, -1, L"abcdef"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.index << ' ' << row.count);
        CString text(L"abcdef");
        EXPECT_EQ(text.Delete(row.index, row.count), static_cast<int>(wcslen(row.expected)));
        EXPECT_EQ(Text(text), row.expected);
    }
    CString text(L"abc");
    EXPECT_EQ(text.Delete(1), 2);
    EXPECT_EQ(Text(text), L"ac");
}

TEST(CStringEditTest, ReplacesTexts)
{
    struct Row
    {
        const wchar_t* text;
        const wchar_t* from;
        const wchar_t* to;
        int count;
        const wchar_t* expected;
    };
    const Row rows[] = {
        {L"abcabc", L"b", L"x", 2, L"axcaxc"},
        {L"abcabc", L"bc", L"", 2, L"aa"},
        {L"abcabc", L"bc", nullptr, 2, L"aa"},
        {L"abcabc", L"b", L"long", 2, L"alongcalongc"},
        {L"abcabc", L"x", L"y", 0, L"abcabc"},
        {L"abcabc", L"", L"y", 0, L"abcabc"},
        {L"abcabc", nullptr, L"y", 0, L"abcabc"},
        {L"aaaaa", L"aa", L"b", 2, L"bba"},
        {L"aaa", L"a", L"aa", 3, L"aaaaaa"},
        {L"", L"a", L"b", 0, L""},
        {L"abc", L"abc", L"", 1, L""},
        {L"ABC", L"b", L"x", 0, L"ABC"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.text << ' ' << (row.from == nullptr ? L"(null)" : row.from));
        CString text(row.text);
        EXPECT_EQ(text.Replace(row.from, row.to), row.count);
        EXPECT_EQ(Text(text), row.expected);
    }
    CString zeros(L"a\0a", 3);
    EXPECT_EQ(zeros.Replace(L"a", L"bc"), 2);
    EXPECT_EQ(Text(zeros), std::wstring(L"bc\0bc", 5));
}

TEST(CStringEditTest, ReplacesAndRemovesCharacters)
{
    CString text(L"abcabc");
    EXPECT_EQ(text.Replace(L'b', L'x'), 2);
    EXPECT_EQ(text.Replace(L'x', L'x'), 0);
    EXPECT_EQ(text.Replace(L'y', L'z'), 0);
    EXPECT_EQ(Text(text), L"axcaxc");
    EXPECT_EQ(text.Remove(L'x'), 2);
    EXPECT_EQ(text.Remove(L'x'), 0);
    EXPECT_EQ(Text(text), L"acac");
    CString all(L"aaaa");
    EXPECT_EQ(all.Remove(L'a'), 4);
    EXPECT_TRUE(all.IsEmpty());
}

TEST(CStringEditTest, TrimsBothSidesOrOne)
{
    struct Row
    {
        const wchar_t* text;
        const wchar_t* left;
        const wchar_t* right;
        const wchar_t* both;
    };
    const Row rows[] = {
        {L"", L"", L"", L""},
        {L"   ", L"", L"", L""},
        {L"abc", L"abc", L"abc", L"abc"},
        {L" \t\r\n\v\f abc \t\r\n\v\f ", L"abc \t\r\n\v\f ", L" \t\r\n\v\f abc", L"abc"},
        {L" a b ", L"a b ", L" a b", L"a b"},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(Text(CString(row.text).TrimLeft()), row.left);
        EXPECT_EQ(Text(CString(row.text).TrimRight()), row.right);
        EXPECT_EQ(Text(CString(row.text).Trim()), row.both);
    }
    EXPECT_EQ(Text(CString(L"--a-b--").Trim(L'-')), L"a-b");
    EXPECT_EQ(Text(CString(L"--a-b--").TrimLeft(L'-')), L"a-b--");
    EXPECT_EQ(Text(CString(L"--a-b--").TrimRight(L'-')), L"--a-b");
    EXPECT_EQ(Text(CString(L"----").Trim(L'-')), L"");
    EXPECT_EQ(Text(CString(L"-+a-b+-").Trim(L"+-")), L"a-b");
    EXPECT_EQ(Text(CString(L"-+a-b+-").TrimLeft(L"+-")), L"a-b+-");
    EXPECT_EQ(Text(CString(L"-+a-b+-").TrimRight(L"+-")), L"-+a-b");
    EXPECT_EQ(Text(CString(L" a ").Trim(L"")), L" a ");
}

TEST(CStringEditTest, WhiteSpaceIsWhatTheRuntimeCallsSo)
{
    for (unsigned code = 1; code <= 0xFFFF; ++code)
    {
        const auto ch = static_cast<wchar_t>(code);
        const bool isSpace = iswspace(ch) != 0;
        ASSERT_EQ(CString(ch).TrimLeft().IsEmpty(), isSpace) << code;
        ASSERT_EQ(CString(ch).TrimRight().IsEmpty(), isSpace) << code;
    }
}

TEST(CStringEditTest, ComparesOrdinallyAndWithoutCase)
{
    struct Row
    {
        const wchar_t* left;
        const wchar_t* right;
        int compare;
        int noCase;
    };
    const Row rows[] = {
        {L"", L"", 0, 0},
        {L"", L"a", -1, -1},
        {L"a", L"", 1, 1},
        {L"abc", L"abc", 0, 0},
        {L"a", L"B", 1, -1},
        {L"abc", L"ABC", 1, 0},
        {L"a_", L"aB", 1, -1},
        {L"ab", L"abc", -1, -1},
        {L"\xFFFF", L"\x0001", 1, 1},
        {L"\xE000", L"\xD83D\xDE00", 1, 1},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << row.left << ' ' << row.right);
        const CString left(row.left);
        const CString right(row.right);
        EXPECT_EQ(Sign(left.Compare(row.right)), row.compare);
        EXPECT_EQ(Sign(left.CompareNoCase(row.right)), row.noCase);
        EXPECT_EQ(left == right, row.compare == 0);
        EXPECT_EQ(left == row.right, row.compare == 0);
        EXPECT_EQ(row.left == right, row.compare == 0);
        EXPECT_EQ(left != right, row.compare != 0);
        EXPECT_EQ(left != row.right, row.compare != 0);
        EXPECT_EQ(row.left != right, row.compare != 0);
        EXPECT_EQ(left < right, row.compare < 0);
        EXPECT_EQ(left < row.right, row.compare < 0);
        EXPECT_EQ(row.left < right, row.compare < 0);
        EXPECT_EQ(left > right, row.compare > 0);
        EXPECT_EQ(left > row.right, row.compare > 0);
        EXPECT_EQ(row.left > right, row.compare > 0);
        EXPECT_EQ(left <= right, row.compare <= 0);
        EXPECT_EQ(left <= row.right, row.compare <= 0);
        EXPECT_EQ(row.left <= right, row.compare <= 0);
        EXPECT_EQ(left >= right, row.compare >= 0);
        EXPECT_EQ(left >= row.right, row.compare >= 0);
        EXPECT_EQ(row.left >= right, row.compare >= 0);
    }
}

TEST(CStringEditTest, ComparesWithNarrowTextAndCharacters)
{
    const CString text(L"a");
    EXPECT_TRUE(text == "a");
    EXPECT_TRUE("a" == text);
    EXPECT_TRUE(text != "b");
    EXPECT_TRUE("b" != text);
    EXPECT_TRUE(text == L'a');
    EXPECT_TRUE(L'a' == text);
    EXPECT_TRUE(text != L'b');
    EXPECT_TRUE(L'b' != text);
    EXPECT_FALSE(CString(L"aa") == L'a');
}

TEST(CStringEditTest, ComparisonEndsAtAZero)
{
    EXPECT_TRUE(CString(L"a\0b", 3) == CString(L"a\0c", 3));
    EXPECT_TRUE(CString(L"a\0b", 3) == L"a");
}

TEST(CStringEditTest, ChangesCaseFromAToZAloneInTheLocaleC)
{
    CString text(L"aZ\u00C4\u00E4\u0416\u0436 1_");
    EXPECT_EQ(Text(text.MakeLower()), L"az\u00C4\u00E4\u0416\u0436 1_");
    EXPECT_EQ(Text(text.MakeUpper()), L"AZ\u00C4\u00E4\u0416\u0436 1_");
    EXPECT_EQ(Text(CString().MakeUpper()), L"");
    EXPECT_NE(CString(L"\u00C4").CompareNoCase(L"\u00E4"), 0);
}

TEST(CStringEditTest, ChangesCaseByTheRunTimesLocale)
{
    const quon_test::RunTimeLocale german("German");
    CString text(L"aZ\u00C4\u00E4 1_");
    EXPECT_EQ(Text(text.MakeLower()), L"az\u00E4\u00E4 1_");
    EXPECT_EQ(Text(text.MakeUpper()), L"AZ\u00C4\u00C4 1_");
    EXPECT_EQ(CString(L"\u00C4").CompareNoCase(L"\u00E4"), 0);
}

TEST(CStringEditTest, ChangesCaseUpToAZero)
{
    EXPECT_EQ(Text(CString(L"a\0b", 3).MakeUpper()), std::wstring(L"A\0b", 3));
    EXPECT_EQ(Text(CString(L"A\0B", 3).MakeLower()), std::wstring(L"a\0B", 3));
}

TEST(CStringEditTest, Reverses)
{
    EXPECT_EQ(Text(CString(L"abc").MakeReverse()), L"cba");
    EXPECT_EQ(Text(CString().MakeReverse()), L"");
}

TEST(CStringEditTest, InsertsAnEmptyStringIntoAnEmptyOne)
{
    CString text;
    const CString other;
    EXPECT_EQ(text.Insert(0, other), 0);
    EXPECT_EQ(text.Insert(0, L""), 0);
    EXPECT_TRUE(text.IsEmpty());
}

TEST(CStringEditTest, InsertsAnotherStringOfTheSameText)
{
    CString text(L"abc");
    const CString other(text);
    EXPECT_EQ(text.Insert(1, other), 6);
    EXPECT_EQ(Text(text), L"aabcbc");
    EXPECT_EQ(Text(other), L"abc");
}

TEST(CStringEditTest, Tokenizes)
{
    struct Row
    {
        const wchar_t* text;
        std::vector<std::wstring> expected;
    };
    const Row rows[] = {
        {L"", {}}, {L",;,", {}}, {L"a", {L"a"}}, {L"a,b;c", {L"a", L"b", L"c"}}, {L",,a,;b,,", {L"a", L"b"}},
    };
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.text);
        const CString text(row.text);
        std::vector<std::wstring> tokens;
        int position = 0;
        for (CString token = text.Tokenize(L",;", position); position != -1; token = text.Tokenize(L",;", position))
        {
            tokens.push_back(Text(token));
        }
        EXPECT_EQ(tokens, row.expected);
    }
}

TEST(CStringEditTest, TokenizingWithoutDelimitersStaysWhereItIs)
{
    const CString text(L"a,b");
    int position = 1;
    EXPECT_EQ(Text(text.Tokenize(L"", position)), L",b");
    EXPECT_EQ(position, 1);
    position = 3;
    EXPECT_EQ(Text(text.Tokenize(L"", position)), L"");
    EXPECT_EQ(position, -1);
}

TEST(CStringEditTest, Formats)
{
    CString text(L"before");
    text.Format(L"%s|%S|%d|%05u|%x|%c|%.3f|%%|%I64d", L"wide", "narrow", -5, 42U, 255, L'c', 2.5, 1234567890123LL);
    EXPECT_EQ(Text(text), L"wide|narrow|-5|00042|ff|c|2.500|%|1234567890123");
    text.Format(L"");
    EXPECT_TRUE(text.IsEmpty());
    text.Format(L"%s", L"");
    EXPECT_TRUE(text.IsEmpty());
    text.AppendFormat(L"%d", 1);
    text.AppendFormat(L",%d", 2);
    text.AppendFormat(L"");
    EXPECT_EQ(Text(text), L"1,2");
    text.Format(L"%s", CString(L"from a string").GetString());
    EXPECT_EQ(Text(text), L"from a string");
}

TEST(CStringEditTest, FormatsEveryLength)
{
    for (const int length : {1, 7, 8, 127, 128, 254, 255, 256, 257, 1023, 1024, 1025, 100000})
    {
        SCOPED_TRACE(length);
        const CString source(L'x', length);
        CString text(L"old");
        text.Format(L"%s", source.GetString());
        EXPECT_TRUE(text == source);
        EXPECT_EQ(text.GetLength(), length);
        CString appended(L"old");
        appended.AppendFormat(L"<%s>", source.GetString());
        EXPECT_EQ(Text(appended), L"old<" + Text(source) + L">");
    }
}

TEST(CStringEditTest, RejectsANullFormat)
{
    CString text(L"abc");
    const wchar_t* format = nullptr;
    try
    {
        text.Format(format);
        FAIL();
    }
    catch (COleException* error)
    {
        EXPECT_EQ(error->m_sc, E_INVALIDARG);
        error->Delete();
    }
    EXPECT_EQ(Text(text), L"abc");
}
}  // namespace
