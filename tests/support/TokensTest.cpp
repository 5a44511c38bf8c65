#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/RandomText.h"
#include "support/Wide.h"
#include "helpers/FailingAllocation.h"
#include "helpers/HugeText.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::FailingAllocation;
using quon_test::HugeText;
using quon_test::RandomText;
using quon_test::ToCString;
using quon_test::Wide;
using Texts = std::vector<std::wstring>;

template <typename Work>
bool RunsOutOfMemory(const Work& work)
{
    try
    {
        work();
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return true;
    }
    return false;
}

Texts AllTokens(const wchar_t* text, const wchar_t* delimiters)
{
    Texts tokens;
    CString token;
    const wchar_t* cursor = text;
    while (GetNextToken(&cursor, delimiters, token))
    {
        tokens.push_back(Wide(token));
    }
    EXPECT_TRUE(token.IsEmpty());
    return tokens;
}

struct TokenRow
{
    const wchar_t* text;
    const wchar_t* delimiters;
    Texts tokens;
};

TEST(GetNextToken, WalksTheTokensOfAText)
{
    const TokenRow rows[] = {
        {L"", L",", {}},
        {L"a", L",", {L"a"}},
        {L"a,b", L",", {L"a", L"b"}},
        {L",,a,,b,,", L",", {L"a", L"b"}},
        {L",,,", L",", {}},
        {L"a b,c;d", L" ,;", {L"a", L"b", L"c", L"d"}},
        {L"a b", L"", {L"a b"}},
        {L"", L"", {}},
        {L"a\u2022b", L"\u2022", {L"a", L"b"}},
        {L"\u2022a\u2022,\u00e4", L",\u2022", {L"a", L"\u00e4"}},
        {L"a\x7f\x80z", L"\x7f\x80", {L"a", L"z"}},
    };
    for (const TokenRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.text) << " at "
                                        << testing::PrintToString(row.delimiters));
        EXPECT_EQ(AllTokens(row.text, row.delimiters), row.tokens);
    }
}

TEST(GetNextToken, LeavesTheCursorBehindOneDelimiter)
{
    const wchar_t text[] = L",,ab,,c";
    const wchar_t* cursor = text;
    CString token(L"old");
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    EXPECT_EQ(token, L"ab");
    EXPECT_EQ(cursor - text, 5);
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    EXPECT_EQ(token, L"c");
    EXPECT_EQ(cursor - text, 7);
    EXPECT_FALSE(GetNextToken(&cursor, L",", token));
    EXPECT_TRUE(token.IsEmpty());
    EXPECT_EQ(cursor - text, 7);
}

// A token that the string has no room for is asked for again.
TEST(GetNextToken, LeavesTheCursorWhenMemoryRunsOut)
{
    const std::wstring text = L"," + std::wstring(5000, L'a') + L",b";
    const wchar_t* cursor = text.c_str();
    CString token;
    {
        const FailingAllocation failure(0);
        EXPECT_TRUE(RunsOutOfMemory([&] { GetNextToken(&cursor, L",", token); }));
    }
    EXPECT_EQ(cursor, text.c_str());
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    EXPECT_EQ(token.GetLength(), 5000);
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    EXPECT_EQ(token, L"b");
}

// Cut to 32 bits its length would be 1,024.
TEST(GetNextToken, RefusesATokenLongerThanAString)
{
    if (quon_test::Cases(0) == 0)
    {
        GTEST_SKIP() << "eight gigabytes are read in a thorough run only";
    }
    const HugeText text((std::size_t{1} << 32) + 1024);
    const wchar_t* cursor = text.Get();
    CString token;
    EXPECT_TRUE(RunsOutOfMemory([&] { GetNextToken(&cursor, L",", token); }));
    EXPECT_EQ(cursor, text.Get());
}

TEST(GetNextToken, WithoutATextGivesNoToken)
{
    CString token(L"old");
    const wchar_t* cursor = nullptr;
    EXPECT_FALSE(GetNextToken(&cursor, L",", token));
    EXPECT_TRUE(token.IsEmpty());
    EXPECT_EQ(cursor, nullptr);
    token = L"old";
    EXPECT_FALSE(GetNextToken(nullptr, L",", token));
    EXPECT_TRUE(token.IsEmpty());
}

TEST(GetNextToken, TakesNullDelimitersAsNone)
{
    CString token;
    const wchar_t* cursor = L"a,b";
    EXPECT_TRUE(GetNextToken(&cursor, nullptr, token));
    EXPECT_EQ(token, L"a,b");
}

TEST(GetNextToken, DoesNotWriteIntoTokensThatWereKept)
{
    const wchar_t* cursor = L"first,second";
    CString token;
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    const CString kept(token);
    EXPECT_TRUE(GetNextToken(&cursor, L",", token));
    EXPECT_EQ(kept, L"first");
    EXPECT_EQ(token, L"second");
}

TEST(GetNextToken, EqualsAPlainLoopOnRandomTexts)
{
    RandomText random(414);
    for (int round = 0; round < quon_test::Cases(20000); ++round)
    {
        const std::wstring text = random.Text(L"ab,; \u2022\u00e4", 12);
        const std::wstring delimiters = random.Text(L",; \u2022a", 3);
        Texts expected;
        std::size_t start = 0;
        while ((start = text.find_first_not_of(delimiters, start)) != std::wstring::npos)
        {
            const std::size_t end = std::min(text.find_first_of(delimiters, start), text.size());
            expected.push_back(text.substr(start, end - start));
            start = end;
        }
        ASSERT_EQ(AllTokens(text.c_str(), delimiters.c_str()), expected)
            << testing::PrintToString(text) << " at " << testing::PrintToString(delimiters);
    }
}

struct TakeRow
{
    const wchar_t* list;
    const wchar_t* separator;
    const wchar_t* head;
    const wchar_t* rest;
};

TEST(TakeToken, CutsAtTheFirstSeparator)
{
    const TakeRow rows[] = {
        {L"a,b,", L",", L"a", L"b,"},
        {L"b,", L",", L"b", L""},
        {L"b", L",", L"b", L""},
        {L"", L",", L"", L""},
        {L",a", L",", L"", L"a"},
        {L",", L",", L"", L""},
        {L"a, b", L",", L"a", L" b"},
        {L"a::b::c", L"::", L"a", L"b::c"},
        {L"a:::b", L"::", L"a", L":b"},
        {L"a:b", L"::", L"a:b", L""},
        {L"a b", L" ", L"a", L"b"},
        // An empty separator stands in front of everything.
        {L"a,b", L"", L"", L"a,b"},
        {L"", L"", L"", L""},
    };
    for (const TakeRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.list) << " at "
                                        << testing::PrintToString(row.separator));
        CString rest(row.list);
        EXPECT_EQ(Wide(TakeToken(row.separator, rest)), row.head);
        EXPECT_EQ(Wide(rest), row.rest);
    }
}

TEST(TakeToken, HasFormsForCommaAndBlank)
{
    CString rest(L"a b,c d");
    EXPECT_EQ(TakeCommaToken(rest), L"a b");
    EXPECT_EQ(TakeSpaceToken(rest), L"c");
    EXPECT_EQ(TakeCommaToken(rest), L"d");
    EXPECT_TRUE(rest.IsEmpty());
    rest = L"a,";
    EXPECT_EQ(TakeSpaceToken(rest), L"a,");
    EXPECT_TRUE(rest.IsEmpty());
}

TEST(TakeToken, MayCutATextAtItself)
{
    CString text(L",,");
    EXPECT_TRUE(TakeToken(text, text).IsEmpty());
    EXPECT_TRUE(text.IsEmpty());
}

TEST(TakeToken, LeavesOtherCopiesOfTheListAlone)
{
    CString rest(L"a,b");
    const CString copy(rest);
    TakeCommaToken(rest);
    EXPECT_EQ(copy, L"a,b");
}

}  // namespace
