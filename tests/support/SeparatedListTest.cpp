#include "support/StringHelpers.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/RandomText.h"
#include "support/Wide.h"
#include "helpers/FailingAllocation.h"
#include "helpers/Thorough.h"

namespace
{

using quon_test::FailingAllocation;
using quon_test::RandomText;
using quon_test::ToCString;
using quon_test::Wide;
using Texts = std::vector<std::wstring>;

Texts Elements(const CStringArray& list)
{
    Texts texts;
    for (INT_PTR i = 0; i < list.GetSize(); ++i)
    {
        texts.push_back(Wide(list.GetAt(i)));
    }
    return texts;
}

struct SplitRow
{
    const wchar_t* text;
    Texts elements;
};

TEST(SplitCommaList, TrimsElementsAndSkipsEmptyOnes)
{
    const SplitRow rows[] = {
        {L"", {}},
        {L",", {}},
        {L",,a", {L"a"}},
        {L"a,,", {L"a"}},
        {L"a,b,c", {L"a", L"b", L"c"}},
        {L" a ,\tb b\r\n, ,c", {L"a", L"b b", L"c"}},
        {L"   ", {}},
        {L"a;b", {L"a;b"}},
        {L"a,a", {L"a", L"a"}},
    };
    for (const SplitRow& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.text));
        CStringArray list;
        EXPECT_TRUE(SplitCommaList(row.text, list));
        EXPECT_EQ(Elements(list), row.elements);
    }
}

TEST(SplitCommaList, AppendsToWhatTheListHolds)
{
    CStringArray list;
    list.Add(L"first");
    const CString text(L"a,b");
    EXPECT_TRUE(SplitCommaList(text, list));
    EXPECT_EQ(Elements(list), (Texts{L"first", L"a", L"b"}));
    EXPECT_EQ(text, L"a,b");
}

TEST(SplitCommaList, HoldsTheElementsBeforeTheOneThatMemoryRanOutFor)
{
    bool failed = true;
    for (int successes = 0; failed; ++successes)
    {
        SCOPED_TRACE(successes);
        CStringArray list;
        list.Add(L"old");
        {
            const FailingAllocation failure(successes);
            try
            {
                SplitCommaList(L"a,b ,,c", list);
            }
            catch (CMemoryException* exception)
            {
                exception->Delete();
            }
            failed = failure.Failed();
        }
        const Texts all = {L"old", L"a", L"b", L"c"};
        Texts elements = Elements(list);
        ASSERT_LE(elements.size(), all.size());
        EXPECT_EQ(elements, Texts(all.begin(), all.begin() + static_cast<std::ptrdiff_t>(elements.size())));
        EXPECT_TRUE(failed || elements.size() == all.size());
    }
}

TEST(SplitCommaList, EqualsALoopOverTakeCommaToken)
{
    RandomText random(415);
    for (int round = 0; round < quon_test::Cases(10000); ++round)
    {
        // The zero character ends the search for commas.
        CString text = ToCString(random.Text(std::wstring_view(L"ab,, \t\u00a0\0", 8), 12));
        const std::wstring shown = Wide(text);
        CStringArray list;
        SplitCommaList(text, list);
        Texts expected;
        while (!text.IsEmpty())
        {
            CString head = TakeCommaToken(text);
            head.TrimLeft();
            head.TrimRight();
            if (!head.IsEmpty())
            {
                expected.push_back(Wide(head));
            }
        }
        ASSERT_EQ(Elements(list), expected) << testing::PrintToString(shown);
    }
}

TEST(SplitCommaList, SplitsALongList)
{
    std::wstring text;
    for (int i = 0; i < 100000; ++i)
    {
        text += std::to_wstring(i) + L", ";
    }
    CStringArray list;
    SplitCommaList(ToCString(text), list);
    ASSERT_EQ(list.GetSize(), 100000);
    EXPECT_EQ(list.GetAt(99999), L"99999");
}

struct PrefixRow
{
    const wchar_t* what;
    const wchar_t* prefix;
    const wchar_t* source;
    const wchar_t* expected;
};

TEST(PrefixEachOccurrence, InsertsWhereThePrefixIsMissing)
{
    const PrefixRow rows[] = {
        {L"\n", L"\r", L"a\nb\r\nc", L"a\r\nb\r\nc"},
        {L"\n", L"\r", L"\n", L"\r\n"},
        {L"\n", L"\r", L"\r\n", L"\r\n"},
        {L"\n", L"\r", L"\n\n", L"\r\n\r\n"},
        {L"\n", L"\r", L"", L""},
        {L"\n", L"\r", L"abc", L"abc"},
        {L"\n", L"\r", L"\r", L"\r"},
        // The first prefix behind the last occurrence decides, not the nearest one.
        {L"\n", L"\r", L"\rx\r\n", L"\rx\r\r\n"},
        {L"\n", L"\r", L"\n\rx\r\n", L"\r\n\rx\r\r\n"},
        {L"\n", L"\r", L"\r\r\n", L"\r\r\r\n"},
        // The prefix must begin behind the start of the last occurrence.
        {L"b", L"bb", L"bbb", L"bbbbbbbbb"},
        {L"aa", L"-", L"aaaa", L"-a-a-aa"},
        {L"b", L"ab", L"abb", L"aabbabb"},
        {L"b", L"b", L"bb", L"bbbb"},
        {L"", L"x", L"abc", L"abc"},
        {L"a", L"", L"aaa", L"aaa"},
        {L"", L"", L"", L""},
        {L"%", L"\\", L"5% of 10%", L"5\\% of 10\\%"},
        {L"long", L"x", L"lon", L"lon"},
    };
    for (const PrefixRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.prefix) << " before "
                                        << testing::PrintToString(row.what) << " in "
                                        << testing::PrintToString(row.source));
        const CString source(row.source);
        EXPECT_EQ(Wide(PrefixEachOccurrence(row.what, row.prefix, source)), row.expected);
        EXPECT_EQ(Wide(source), row.source);
    }
}

// Edits one string in place, as the rule is told; for a `what` that is not empty.
std::wstring PlainPrefix(const std::wstring& what, const std::wstring& prefix, std::wstring text)
{
    std::size_t position = 0;
    std::size_t found = 0;
    while ((found = text.find(what, position)) != std::wstring::npos)
    {
        const std::size_t mark = text.find(prefix, position);
        if (mark != std::wstring::npos && mark + prefix.size() == found)
        {
            position = found + 1;
            continue;
        }
        text.insert(found, prefix);
        position = found + prefix.size() + 1;
    }
    return text;
}

TEST(PrefixEachOccurrence, EqualsPlainEditingOnRandomTexts)
{
    RandomText random(416);
    for (int round = 0; round < quon_test::Cases(30000); ++round)
    {
        const std::wstring what = random.Text(L"ab", 1) + L"ab"[random.Number(1)];
        const std::wstring prefix = random.Text(L"abc", 2);
        const std::wstring source = random.Text(L"aabbc", 14);
        ASSERT_EQ(Wide(PrefixEachOccurrence(ToCString(what), ToCString(prefix), ToCString(source))),
                  PlainPrefix(what, prefix, source))
            << testing::PrintToString(prefix) << " before " << testing::PrintToString(what) << " in "
            << testing::PrintToString(source);
    }
}

TEST(PrefixEachOccurrence, KeepsWhatStandsBehindAZeroCharacter)
{
    const CString source(L"a\n\0\n", 4);
    EXPECT_EQ(Wide(PrefixEachOccurrence(L"\n", L"\r", source)), std::wstring(L"a\r\n\0\n", 5));
    EXPECT_EQ(Wide(PrefixEachOccurrence(L"x", L"\r", source)), std::wstring(L"a\n\0\n", 4));
}

struct ListRow
{
    const wchar_t* list;
    const wchar_t* item;
    int index;
    const wchar_t* expected;
};

TEST(PutListItem, PlacesTheItemAndDropsItsCopies)
{
    const ListRow rows[] = {
        {L"", L"x", 0, L"x"},
        {L"", L"x", 7, L"x"},
        {L"", L"", 0, L""},
        {L"a,b,c", L"x", 0, L"x,a,b,c"},
        {L"a,b,c", L"x", 1, L"a,x,b,c"},
        // The last element has no index: at it and beyond, the item goes to the end.
        {L"a,b,c", L"x", 2, L"a,b,c,x"},
        {L"a,b,c", L"x", 3, L"a,b,c,x"},
        {L"a,b,c", L"x", 99, L"a,b,c,x"},
        {L"a,b,c", L"x", -1, L"a,b,c,x"},
        {L"a,x,c", L"x", 0, L"x,a,c"},
        {L"a,x,c", L"x", 9, L"a,c,x"},
        {L"a,x,x,c", L"x", 1, L"a,x,c"},
        {L"a,b,x", L"x", 0, L"x,a,b,x"},
        {L"a,b,x", L"x", 9, L"a,b,x,x"},
        // A copy dropped from the front leaves its separator.
        {L"x,a,b", L"x", 9, L",a,b,x"},
        {L"x,a,b", L"x", 0, L"x,,a,b"},
        {L"x,a,b", L"x", 1, L",x,a,b"},
        // A list of one element gets the item without a separator.
        {L"a", L"x", 0, L"ax"},
        {L"a", L"x", 1, L"ax"},
        {L"x", L"x", 0, L"xx"},
        // An empty element at the end is not there.
        {L"a,", L"x", 0, L"x,a"},
        {L"a,", L"x", 1, L"a,x"},
        {L"x,", L"x", 1, L",x"},
        {L",", L"x", 0, L"x,"},
        {L",", L"x", 1, L",x"},
        {L",,", L"x", 1, L",x,"},
        {L"a,,b", L"", 0, L",a,b"},
        {L"A,b", L"a", 1, L"A,b,a"},
    };
    for (const ListRow& row : rows)
    {
        SCOPED_TRACE(testing::Message() << testing::PrintToString(row.item) << " at " << row.index << " of "
                                        << testing::PrintToString(row.list));
        CString list(row.list);
        PutListItem(row.item, L",", row.index, list);
        EXPECT_EQ(Wide(list), row.expected);
    }
}

TEST(PutListItem, WithoutASeparatorChangesNothing)
{
    CString list(L"a,b");
    PutListItem(L"x", L"", 0, list);
    EXPECT_EQ(list, L"a,b");
    list.Empty();
    PutListItem(L"x", L"", 0, list);
    EXPECT_EQ(list, L"x");
}

TEST(PutListItem, TakesTheListItselfForAnItemOrSeparator)
{
    CString list(L"a,b");
    PutListItem(list, L",", 0, list);
    EXPECT_EQ(list, L"a,b,a,b");
    list = L",";
    PutListItem(L"x", list, 0, list);
    EXPECT_EQ(list, L"x,");
}

// The rule, step by step, on plain strings.
std::wstring PlainPut(const std::wstring& item, const std::wstring& separator, int index, const std::wstring& list)
{
    if (list.empty())
    {
        return item;
    }
    std::wstring work;
    std::wstring rest = list;
    bool placed = false;
    int i = 0;
    while (!rest.empty())
    {
        const std::size_t found = rest.find(separator);
        if (found == std::wstring::npos)
        {
            work += (i != 0 ? separator : std::wstring()) + rest;
            break;
        }
        if (i == index)
        {
            work += (i != 0 ? separator : std::wstring()) + item + (i == 0 ? separator : std::wstring());
            placed = true;
        }
        const std::wstring element = rest.substr(0, found);
        if (element != item)
        {
            work += (i != 0 ? separator : std::wstring()) + element;
        }
        rest.erase(0, found + separator.size());
        ++i;
    }
    if (!placed)
    {
        work += (i != 0 ? separator : std::wstring()) + item;
    }
    return work;
}

TEST(PutListItem, EqualsTheRuleOnRandomLists)
{
    RandomText random(417);
    for (int round = 0; round < quon_test::Cases(30000); ++round)
    {
        const std::wstring separator = random.Number(3) == 0 ? L",;" : L",";
        const std::wstring item = random.Text(L"ab", 2);
        const std::wstring text = random.Text(L"ab,,;", 12);
        const int index = static_cast<int>(random.Number(7)) - 1;
        CString list = ToCString(text);
        PutListItem(ToCString(item), ToCString(separator), index, list);
        ASSERT_EQ(Wide(list), PlainPut(item, separator, index, text))
            << testing::PrintToString(item) << " at " << index << " of " << testing::PrintToString(text)
            << " separated by " << testing::PrintToString(separator);
    }
}

}  // namespace
