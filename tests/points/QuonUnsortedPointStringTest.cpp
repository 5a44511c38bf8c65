#include "points/QuonUnsortedPointString.h"

#include "points/PointTestSupport.h"

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <string>
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

TEST(QuonUnsortedPointString, WritesThePointsInTheirOrder)
{
    for (const FormatRow& row : {
             FormatRow{{3, 1, 2}, L"3,1-2"},
             FormatRow{{5, 5}, L"5,5"},
             FormatRow{{7, 6, 5, 9}, L"7-5,9"},
             FormatRow{{1, 2, 3, 10, 9, 8, 8, 4}, L"1-3,10-8,8,4"},
             FormatRow{{5, 4}, L"5-4"},
             FormatRow{{1}, L"1"},
             FormatRow{{1, 2}, L"1-2"},
             FormatRow{{1, 2, 1, 2}, L"1-2,1-2"},
             FormatRow{{1, 2, 3, 2, 1}, L"1-3,2-1"},
             FormatRow{{3, 2, 1, 2, 3}, L"3-1,2-3"},
             FormatRow{{1, 2, 2, 3}, L"1-2,2-3"},
             FormatRow{{1, 3, 5}, L"1,3,5"},
             FormatRow{{1, 2, 4, 5}, L"1-2,4-5"},
             FormatRow{{1, 2, 5, 4}, L"1-2,5-4"},
             FormatRow{{1, 2, 3, 3, 3, 4}, L"1-3,3,3-4"},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        QuonUnsortedPointString string;
        for (const unsigned long point : row.added)
        {
            string.AddPoint(point);
        }
        EXPECT_EQ(TextOf(string), L"") << "the text follows with UpdateText";
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text);
        EXPECT_EQ(WalkPoints(string), row.added) << "and reads back";
    }
}

// "%ld" prints a signed number, and differences wrap at 32 bits.
TEST(QuonUnsortedPointString, NumbersWrapAndPrintSigned)
{
    for (const FormatRow& row : {
             FormatRow{{0}, L"0"},
             FormatRow{{0, 1, 2}, L"0-2"},
             FormatRow{{2147483647}, L"2147483647"},
             FormatRow{{2147483648}, L"-2147483648"},
             FormatRow{{2147483647, 2147483648}, L"2147483647--2147483648"},
             FormatRow{{4294967295}, L"-1"},
             FormatRow{{4294967294, 4294967295, 0, 1}, L"-2-1"},
             FormatRow{{1, 0, 4294967295}, L"1--1"},
             FormatRow{{0, 4294967295}, L"0--1"},
             FormatRow{{4294967295, 0}, L"-1-0"},
             FormatRow{{4294967295, 1}, L"-1,1"},
             FormatRow{{4294966272}, L"-1024"},
             FormatRow{{3000000000, 7}, L"-1294967296,7"},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        QuonUnsortedPointString string;
        for (const unsigned long point : row.added)
        {
            string.AddPoint(point);
        }
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text);
    }
}

// The leading digits of a number are kept for the next one: every number after every other, at all lengths.
TEST(QuonUnsortedPointString, WritesANumberTheSameWhateverStoodBeforeIt)
{
    Points numbers;
    for (const unsigned long base : {1ul, 10ul, 100ul, 1000ul, 9990ul, 10000ul, 19990ul, 20000ul, 99990ul, 100000ul,
                                     123400ul, 1000000ul, 12340000ul, 99999990ul, 1234560000ul, 2147483640ul})
    {
        numbers.insert(numbers.end(), {base, base + 3, base + 7});
    }
    Points added;
    std::wstring expected;
    for (const unsigned long first : numbers)
    {
        for (const unsigned long second : numbers)
        {
            added.insert(added.end(), {first, second});
            expected += (expected.empty() ? L"" : L",") + std::to_wstring(first) + L"," + std::to_wstring(second);
        }
    }
    QuonUnsortedPointString string;
    for (const unsigned long point : added)
    {
        string.AddPoint(point);
    }
    string.UpdateText();
    EXPECT_EQ(TextOf(string), expected);
}

TEST(QuonUnsortedPointString, AddsTheNumberThatATextBeginsWith)
{
    struct Row
    {
        const wchar_t* added;
        const wchar_t* text;
    };
    for (const Row& row : {
             Row{L"5", L"5"},
             Row{L"5-7", L"5"},
             Row{L" 12 34", L"12"},
             Row{L"\t+6x", L"6"},
             Row{L"-6", L"-6"},
             Row{L"", L"0"},
             Row{L"x5", L"0"},
             Row{nullptr, L"0"},
             Row{L"2147483648", L"2147483647"},
             Row{L"99999999999", L"2147483647"},
             Row{L"-99999999999", L"-2147483648"},
         })
    {
        SCOPED_TRACE(row.added == nullptr ? "null" : Shown(row.added));
        QuonUnsortedPointString string;
        string.AddPoint(row.added);
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.text);
    }
}

TEST(QuonUnsortedPointString, AppendsToTheTextThatIsThere)
{
    struct Row
    {
        const wchar_t* before;
        const wchar_t* after;
    };
    for (const Row& row : {
             Row{L"1-2", L"1-2,3"},
             Row{L"1,2", L"1,2,3"},
             Row{L"1,2 \t\r\n", L"1,2,3"},
             Row{L"", L"3"},
             Row{L"   ", L"3"},
             Row{L" 1", L" 1,3"},
             Row{L"1,", L"1,,3"},
             Row{L"x", L"x,3"},
         })
    {
        SCOPED_TRACE(Shown(row.before));
        QuonUnsortedPointString string;
        string.SetText(row.before);
        string.AddPoint(3);
        string.UpdateText();
        EXPECT_EQ(TextOf(string), row.after);
    }
}

TEST(QuonUnsortedPointString, NewPointsAreNotMergedIntoEarlierRanges)
{
    QuonUnsortedPointString string;
    string.AddPoint(1);
    string.AddPoint(2);
    string.UpdateText();
    string.AddPoint(3);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1-2,3");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1-2,3") << "the list was emptied";
}

TEST(QuonUnsortedPointString, AnEmptyListTrimsTheTextAtTheRight)
{
    QuonUnsortedPointString string;
    string.SetText(L" 1, 2 \t ");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L" 1, 2");
    string.SetText(L" \t ");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"");
}

TEST(QuonUnsortedPointString, AssignLeavesTheListAndClearEmptiesIt)
{
    QuonUnsortedPointString string;
    string.AddPoint(4);
    string.Assign(QuonPointString(L"7-9"));
    EXPECT_EQ(TextOf(string), L"7-9");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"7-9,4");
    string.AddPoint(5);
    string.Clear();
    EXPECT_EQ(TextOf(string), L"");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"");
}

TEST(QuonUnsortedPointString, OnlyUpdatingAnEmptyListLeavesChangedAlone)
{
    Probe<QuonUnsortedPointString> string;
    EXPECT_EQ(string.m_changed, 1);
    const auto expectChange = [&](const char* name, int changed, auto operation) {
        SCOPED_TRACE(name);
        string.m_changed = 0;
        operation();
        EXPECT_EQ(string.m_changed, changed);
    };
    expectChange("AddPoint text", 1, [&] { string.AddPoint(L"5"); });
    expectChange("AddPoint number", 1, [&] { string.AddPoint(7ul); });
    expectChange("UpdateText", 1, [&] { string.UpdateText(); });
    expectChange("UpdateText of nothing", 0, [&] { string.UpdateText(); });
    string.SetText(L"1 ");
    expectChange("UpdateText that trims", 0, [&] { string.UpdateText(); });
    EXPECT_EQ(TextOf(string), L"1");
    expectChange("Clear", 1, [&] { string.Clear(); });
    expectChange("Clear of nothing", 1, [&] { string.Clear(); });
}

TEST(QuonUnsortedPointString, TheBufferHoldsTheNumberPrintedLast)
{
    Probe<QuonUnsortedPointString> string;
    string.AddPoint(7);
    string.AddPoint(4294966296);
    string.UpdateText();
    EXPECT_STREQ(string.m_format, L"-1000");
    string.UpdateText();
    EXPECT_STREQ(string.m_format, L"-1000") << "nothing was printed";
    string.AddPoint(7);
    string.AddPoint(8);
    string.AddPoint(9);
    string.UpdateText();
    EXPECT_STREQ(string.m_format, L"9");
}

// Around each power of ten the number of digits changes; a number is written in full, by its leading digits, and as the
// one that was printed last.
TEST(QuonUnsortedPointString, WritesEveryNumberOfDigits)
{
    for (unsigned long long power = 1; power <= 1000000000; power *= 10)
    {
        for (const unsigned long long number : {power - 1, power, power + 1, 10000 * power, 10000 * power + 9999})
        {
            for (const unsigned long point :
                 {static_cast<unsigned long>(number), static_cast<unsigned long>(0 - number)})
            {
                const std::wstring expected = std::to_wstring(static_cast<std::int32_t>(point));
                Probe<QuonUnsortedPointString> string;
                string.AddPoint(point);
                string.UpdateText();
                EXPECT_EQ(TextOf(string), expected);
                EXPECT_EQ(std::wstring(string.m_format), expected);
            }
        }
    }
}

#if !defined(_MSC_VER)

// The list's memory comes from the stand-in's allocations here; the real framework has its own.
constexpr std::size_t kNodeBlock = 16 + 10 * 3 * sizeof(void*);

int g_blocks = 0;
bool g_nextBlockFails = false;

void* CountingMalloc(std::size_t size)
{
    if (size == kNodeBlock)
    {
        ++g_blocks;
        if (g_nextBlockFails)
        {
            // Once: throwing needs memory of its own.
            g_nextBlockFails = false;
            return nullptr;
        }
    }
    return std::malloc(size);
}

TEST(QuonUnsortedPointString, TheListTakesItsNodesInBlocksOfTen)
{
    g_blocks = 0;
    const ImportPatch<void* (*)(std::size_t)> patch(quon_test::kFrameworkModule, "malloc", &CountingMalloc);
    QuonUnsortedPointString string;
    for (unsigned long point = 1; point <= 31; ++point)
    {
        string.AddPoint(point);
        EXPECT_EQ(g_blocks, static_cast<int>(point + 9) / 10) << point;
    }
}

TEST(QuonUnsortedPointString, WithoutMemoryForANodeTheListThrows)
{
    QuonUnsortedPointString string;
    string.AddPoint(1);
    string.UpdateText();
    {
        const ImportPatch<void* (*)(std::size_t)> patch(quon_test::kFrameworkModule, "malloc", &CountingMalloc);
        g_nextBlockFails = true;
        bool thrown = false;
        try
        {
            string.AddPoint(2);
        }
        catch (CException* exception)
        {
            thrown = true;
            exception->Delete();
        }
        EXPECT_TRUE(thrown);
    }
    EXPECT_EQ(TextOf(string), L"1");
    string.AddPoint(3);
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1,3");
}

#endif  // !_MSC_VER

static_assert(!std::is_copy_constructible_v<QuonUnsortedPointString>);
static_assert(!std::is_copy_assignable_v<QuonUnsortedPointString>);

}  // namespace
