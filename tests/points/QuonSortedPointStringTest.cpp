#include "points/QuonSortedPointString.h"

#include "points/PointTestSupport.h"

#include "helpers/ImportPatch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <type_traits>

namespace
{

using quon_test::ImportPatch;
using quon_test::Points;
using quon_test::Probe;
using quon_test::Shown;
using quon_test::TextOf;
using quon_test::WalkPoints;

struct FormatRow
{
    Points added;
    const wchar_t* text;
};

TEST(QuonSortedPointString, WritesTheSetInAscendingOrder)
{
    for (const FormatRow& row : {
             FormatRow{{}, L""},
             FormatRow{{5, 3, 4, 3}, L"3-5"},
             FormatRow{{1, 2}, L"1-2"},
             FormatRow{{1, 2, 3, 5, 7, 8}, L"1-3,5,7-8"},
             FormatRow{{1}, L"1"},
             FormatRow{{9, 7, 5}, L"5,7,9"},
             FormatRow{{0}, L""},
             FormatRow{{0, 1, 0}, L"1"},
             FormatRow{{4294966272, 4294967295, 4294966273}, L""},
             FormatRow{{1023, 1024, 1025, 1026}, L"1023-1026"},
             FormatRow{{1024, 2048}, L"1024,2048"},
             FormatRow{{63, 64, 65, 128, 129}, L"63-65,128-129"},
             FormatRow{{100, 1000, 10000, 100000, 1000000}, L"100,1000,10000,100000,1000000"},
             FormatRow{{9, 10, 99, 101, 999, 9999, 10001}, L"9-10,99,101,999,9999,10001"},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        QuonSortedPointString string;
        for (const unsigned long point : row.added)
        {
            string.AddPoint(point);
        }
        EXPECT_EQ(TextOf(string), L"") << "the text follows with UpdateText";
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text);
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text) << "the text is rewritten, not appended to";
        Points sorted;
        for (const unsigned long point : row.added)
        {
            if (point != 0 && point < 4294966272)
            {
                sorted.push_back(point);
            }
        }
        std::sort(sorted.begin(), sorted.end());
        sorted.erase(std::unique(sorted.begin(), sorted.end()), sorted.end());
        EXPECT_EQ(WalkPoints(string), sorted);
    }
}

TEST(QuonSortedPointString, AddsTheNumberThatATextBeginsWith)
{
    struct Row
    {
        const wchar_t* added;
        const wchar_t* text;
    };
    for (const Row& row : {
             Row{L"5", L"5"}, Row{L"5-7", L"5"}, Row{L" 12 34", L"12"}, Row{L"\t+6x", L"6"}, Row{L"7,8", L"7"},
             Row{L"", L""}, Row{L"x5", L""}, Row{L"0", L""}, Row{L"<5", L""}, Row{nullptr, L""},
             Row{L"-5", L""},     // 4294967291 is not representable
             Row{L"-1024", L""},  // 4294966272, the first one that is not
         })
    {
        SCOPED_TRACE(row.added == nullptr ? "null" : Shown(row.added));
        QuonSortedPointString string;
        string.AddPoint(row.added);
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text);
    }
}

TEST(QuonSortedPointString, LiteralNumbersPickTheNumberOverload)
{
    QuonSortedPointString string;
    string.AddPoint(5ul);
    string.AddPoint(L"6");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"5-6");
}

TEST(QuonSortedPointString, RemovesPointsFromTheSet)
{
    Probe<QuonSortedPointString> string;
    for (const unsigned long point : {3ul, 4ul, 5ul})
    {
        string.AddPoint(point);
    }
    string.RemovePoint(4);
    string.RemovePoint(0);
    string.RemovePoint(4294967295);
    string.RemovePoint(1000);
    EXPECT_EQ(TextOf(string), L"");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"3,5");
    string.RemovePoint(3);
    string.RemovePoint(5);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"");
}

TEST(QuonSortedPointString, TheSetStaysUntilClear)
{
    QuonSortedPointString string;
    string.AddPoint(1);
    string.UpdateText();
    string.AddPoint(3);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1,3");
    string.Assign(QuonPointString(L"7-9"));
    EXPECT_EQ(TextOf(string), L"7-9");
    string.AddPoint(2);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1-3") << "Assign does not touch the set";
    string.Clear();
    EXPECT_EQ(TextOf(string), L"");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"");
    string.AddPoint(2);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"2");
}

// The text is rewritten in place, but never under a copy or a walk.
TEST(QuonSortedPointString, RewritingLeavesCopiesAndWalksAlone)
{
    QuonSortedPointString string;
    string.AddPoint(1);
    string.AddPoint(3);
    string.UpdateText();
    const CString kept = string.GetText();
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.RemovePoint(1);
    string.AddPoint(8);
    string.UpdateText();
    EXPECT_STREQ(kept, L"1,3");
    EXPECT_EQ(TextOf(string), L"3,8");
    string.GetNextPoint(&point);
    EXPECT_EQ(point, 3u);
    string.GetNextPoint(&point);
    EXPECT_TRUE(string.IsDone());
}

TEST(QuonSortedPointString, EveryOperationSetsChanged)
{
    Probe<QuonSortedPointString> string;
    EXPECT_EQ(string.m_changed, 1);
    const auto expectChange = [&](const char* name, auto operation) {
        SCOPED_TRACE(name);
        string.m_changed = 0;
        operation();
        EXPECT_EQ(string.m_changed, 1);
    };
    expectChange("AddPoint text", [&] { string.AddPoint(L"5"); });
    expectChange("AddPoint number", [&] { string.AddPoint(7ul); });
    expectChange("AddPoint ignored", [&] { string.AddPoint(0ul); });
    expectChange("UpdateText", [&] { string.UpdateText(); });
    expectChange("RemovePoint", [&] { string.RemovePoint(7); });
    expectChange("Clear", [&] { string.Clear(); });
    expectChange("UpdateText of nothing", [&] { string.UpdateText(); });
}

TEST(QuonSortedPointString, TheBufferHoldsTheNumberPrintedLast)
{
    Probe<QuonSortedPointString> string;
    string.m_format[0] = L'x';
    string.UpdateText();
    EXPECT_EQ(string.m_format[0], L'x') << "nothing was printed";
    string.AddPoint(123456);
    string.UpdateText();
    EXPECT_STREQ(string.m_format, L"123456");
    string.AddPoint(123457);
    string.AddPoint(123458);
    string.UpdateText();
    EXPECT_STREQ(string.m_format, L"123458");
    string.Assign(QuonPointString(L"1"));
    EXPECT_STREQ(string.m_format, L"");
    EXPECT_EQ(string.m_format[1], L'2');
}

TEST(QuonSortedPointString, APointWithoutMemoryIsDropped)
{
    QuonSortedPointString string;
    string.AddPoint(5);
    {
        const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc",
                                                               [](void*, std::size_t) -> void* { return nullptr; });
        string.AddPoint(5000);
        string.RemovePoint(6000);
        string.AddPoint(6);
    }
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"5-6");
}

static_assert(!std::is_copy_constructible_v<QuonSortedPointString>);
static_assert(!std::is_copy_assignable_v<QuonSortedPointString>);

}  // namespace
