// RemovePoints and RemoveDuplicates by table.

#include "points/PointTestSupport.h"
#include "points/QuonPointString.h"
#include "points/QuonSortedPointString.h"

#include "helpers/ImportPatch.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace
{

using quon_test::ImportPatch;
using quon_test::Points;
using quon_test::Probe;
using quon_test::Shown;
using quon_test::TextOf;
using quon_test::WalkPoints;

struct RemoveRow
{
    const wchar_t* text;
    const wchar_t* points;
    const wchar_t* sorted;
    const wchar_t* unsorted;
};

TEST(RemovePoints, GivesSortedOrOriginalOrder)
{
    for (const RemoveRow& row : {
             RemoveRow{L"5,1-4,1", L"2-3", L"1,4-5", L"5,1,4,1"},
             RemoveRow{L"3,1,2,2", L"", L"1-3", L"3,1-2,2"},
             RemoveRow{L"3,1,2,2", L" , ,", L"1-3", L"3,1-2,2"},
             RemoveRow{L"3,1,2,2", nullptr, L"1-3", L"3,1-2,2"},
             RemoveRow{L"", L"1", L"", L""},
             RemoveRow{L"  ", L"1", L"", L""},
             RemoveRow{L"1-5", L"1-5", L"", L""},
             RemoveRow{L"1-5", L"5-1", L"", L""},
             RemoveRow{L"1-5", L"9", L"1-5", L"1-5"},
             RemoveRow{L"5-1", L"3", L"1-2,4-5", L"5-4,2-1"},
             RemoveRow{L"20-12", L"12,20", L"13-19", L"19-13"},
             RemoveRow{L" 1 , 2 , 3 ", L"9", L"1-3", L"1-3"},
             RemoveRow{L"1-3,2-4", L"3", L"1-2,4", L"1-2,2,4"},
             RemoveRow{L"1-3,3-5", L"3", L"1-2,4-5", L"1-2,4-5"},
             RemoveRow{L"1-2,4-5", L"9", L"1-2,4-5", L"1-2,4-5"},
             RemoveRow{L"1-2,3-5", L"9", L"1-5", L"1-5"},
             RemoveRow{L"1-3,2-1", L"9", L"1-3", L"1-3,2-1"},
             RemoveRow{L"1,2,1", L"9", L"1-2", L"1-2,1"},
             RemoveRow{L"7,8", L"8-7,7-8", L"", L""},
             // An invalid item of the text: everything from there on is lost.
             RemoveRow{L"1-3,x,7", L"2", L"1,3", L"1,3"},
             RemoveRow{L"x,7", L"2", L"", L""},
             RemoveRow{L"4,0,7", L"", L"4", L"4"},
             // The point 0 of a comparison: it cannot be marked, so it is not removed, and a set does not hold it.
             RemoveRow{L"<5,7", L"7", L"", L"0"},
             RemoveRow{L"7,<5,<6,9", L"<1", L"7,9", L"7,0,0,9"},
             RemoveRow{L"<5,1", L"9", L"1", L"0-1"},
             RemoveRow{L"3,<5", L"3", L"", L"0"},
             // The greatest number that a text can name.
             RemoveRow{L"1,4000000000", L"1", L"2147483647", L"2147483647"},
             RemoveRow{L"1,4000000000", L"5000000000", L"1", L"1"},
         })
    {
        SCOPED_TRACE(Shown(row.text) + " without " + (row.points == nullptr ? "null" : Shown(row.points)));
        for (const BOOL sorted : {TRUE, FALSE, 2})
        {
            Probe<QuonPointString> string(row.text);
            string.SetLabel(L"label");
            string.m_changed = 0;
            WalkPoints(string);
            string.RemovePoints(row.points, sorted);
            EXPECT_EQ(TextOf(string), sorted != FALSE ? row.sorted : row.unsorted);
            EXPECT_FALSE(string.HasLabel()) << "emptied as by Assign";
            EXPECT_EQ(string.m_changed, 1);
            EXPECT_FALSE(string.IsDone());
            const bool names0 = TextOf(string).find(L'0') != std::wstring::npos;
            EXPECT_EQ(string.IsValid() != FALSE, !names0) << "a 0 that was written makes the text invalid";
        }
    }
}

TEST(RemovePoints, InvalidPointsLeaveTheObjectAsItIs)
{
    for (const wchar_t* const points : {L"x", L"1,x", L"0", L"1-", L"2,=3"})
    {
        SCOPED_TRACE(Shown(points));
        Probe<QuonPointString> string(L" 3,1,2,2 ");
        string.SetLabel(L"label");
        unsigned long point = 0;
        string.GetFirstPoint(&point);
        string.m_changed = 0;
        string.RemovePoints(points, TRUE);
        string.RemovePoints(points, FALSE);
        EXPECT_EQ(TextOf(string), L" 3,1,2,2 ");
        EXPECT_STREQ(string.GetLabel(), L"label");
        EXPECT_EQ(string.m_changed, 0);
        string.GetNextPoint(&point);
        EXPECT_EQ(point, 1u) << "the walk goes on";
    }
}

TEST(RemovePoints, TheTextItselfMayBeRemoved)
{
    QuonPointString string(L"3,1,2,2");
    string.RemovePoints(string.GetText(), FALSE);
    EXPECT_EQ(TextOf(string), L"");
}

struct UniqueRow
{
    const wchar_t* text;
    const wchar_t* sorted;
    const wchar_t* unsorted;
};

TEST(RemoveDuplicates, GivesSortedOrFirstOccurrenceOrder)
{
    for (const UniqueRow& row : {
             UniqueRow{L"", L"", L""},
             UniqueRow{L" , ", L"", L""},
             UniqueRow{L"3,1,2,2,3", L"1-3", L"3,1-2"},
             UniqueRow{L"1,1,1", L"1", L"1"},
             UniqueRow{L"5-1,3-7", L"1-7", L"5-1,6-7"},
             UniqueRow{L"1-9,9-1", L"1-9", L"1-9"},
             UniqueRow{L"4-6,1-9", L"1-9", L"4-6,1-3,7-9"},
             UniqueRow{L"4-6,9-1", L"1-9", L"4-6,9-7,3-1"},
             UniqueRow{L"2,4,6,7-1", L"1-7", L"2,4,6-7,5,3,1"},
             UniqueRow{L"10,1-10", L"1-10", L"10,1-9"},
             UniqueRow{L"1,10-1", L"1-10", L"1,10-2"},
             UniqueRow{L"5, 5 ,6,x,9", L"5-6", L"5-6"},
             // The point 0 of a comparison is never seen before.
             UniqueRow{L"<5,<5,7", L"7", L"0,0,7"},
             UniqueRow{L"1,<5,1", L"1", L"1-0"},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        for (const BOOL sorted : {TRUE, FALSE})
        {
            Probe<QuonPointString> string(row.text);
            string.SetLabel(L"label");
            string.m_changed = 0;
            string.RemoveDuplicates(sorted);
            EXPECT_EQ(TextOf(string), sorted != FALSE ? row.sorted : row.unsorted);
            EXPECT_FALSE(string.HasLabel());
            EXPECT_EQ(string.m_changed, 1);
            EXPECT_FALSE(string.IsDone());
        }
    }
}

TEST(PointSets, ASortedStringKeepsItsSet)
{
    QuonSortedPointString string;
    for (unsigned long point = 1; point <= 5; ++point)
    {
        string.AddPoint(point);
    }
    string.UpdateText();
    string.RemovePoints(L"2-3", TRUE);
    EXPECT_EQ(TextOf(string), L"1,4-5");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1-5");
    string.RemoveDuplicates(FALSE);
    string.SetText(L"7");
    string.UpdateText();
    EXPECT_EQ(TextOf(string), L"1-5");
}

// The result is taken over by Assign, so a class that replaces it sees the new text.
TEST(PointSets, TheResultIsAssigned)
{
    class Watching : public QuonPointString
    {
    public:
        using QuonPointString::QuonPointString;
        void Assign(const QuonPointString& other) override
        {
            seen = other.GetText().GetString();
            QuonPointString::Assign(other);
        }
        std::wstring seen;
    };
    Watching string(L"2,1");
    string.RemovePoints(L"", TRUE);
    EXPECT_EQ(string.seen, L"1-2");
    string.SetText(L"5,5");
    string.RemoveDuplicates(FALSE);
    EXPECT_EQ(string.seen, L"5");
    EXPECT_EQ(TextOf(string), L"5");
}

void* FailingRealloc(void*, std::size_t)
{
    return nullptr;
}

// Without memory for the bits a mark is not made, and that is all.
TEST(PointSets, WithoutMemoryMarksAreDropped)
{
    const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc", &FailingRealloc);
    QuonPointString removed(L"1-5,3");
    removed.RemovePoints(L"2-3", FALSE);
    EXPECT_EQ(TextOf(removed), L"1-5,3") << "nothing is known to be removed";
    QuonPointString unique(L"5-4,5,4");
    unique.RemoveDuplicates(FALSE);
    EXPECT_EQ(TextOf(unique), L"5-4,5-4") << "nothing is known to be a duplicate";
    QuonPointString sorted(L"1-5,3");
    sorted.RemovePoints(L"2-3", TRUE);
    EXPECT_EQ(TextOf(sorted), L"") << "the set stays empty";
}

void* ReallocBelowAMegabyte(void* block, std::size_t size)
{
    return size < 1'000'000 ? std::realloc(block, size) : nullptr;
}

// What memory does not reach is dropped; the numbers below it are not.
TEST(PointSets, WithLittleMemoryOnlyTheMarksBeyondItAreDropped)
{
    const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc", &ReallocBelowAMegabyte);
    QuonPointString removed(L"1-6");
    removed.RemovePoints(L"1-5,2147483647", FALSE);
    EXPECT_EQ(TextOf(removed), L"6");
    QuonPointString range(L"1-6,100,2000000000");
    range.RemovePoints(L"2-2000000000", FALSE);
    EXPECT_EQ(TextOf(range), L"1,2000000000") << "as much of a range as there is memory for";
}

std::size_t g_mostMemory = 0;

void* MeasuredRealloc(void* block, std::size_t size)
{
    g_mostMemory = (std::max)(g_mostMemory, size);
    return std::realloc(block, size);
}

// Room is made ahead for the text's last number, but not where that may never be marked or is marked by nobody.
TEST(PointSets, TheMemoryIsThatOfTheNumbersThatAreMarked)
{
    struct Row
    {
        const wchar_t* text;
        bool sorted;
        std::size_t atMost;
    };
    for (const Row& row : {
             Row{L"1,x,2000000000", true, 1'200},
             Row{L"1,x,2000000000", false, 1'200},
             Row{L"1,x,900000000", true, 1'200},
             Row{L"1,x,900000000", false, 1'200},
             Row{L"5,2000000000", false, 1'200},
             Row{L"2000000000", false, 0},
             Row{L"2000000000", true, 250'001'000},
             Row{L"7,1-1000000", true, 126'000},
         })
    {
        SCOPED_TRACE(Shown(row.text));
        g_mostMemory = 0;
        const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc", &MeasuredRealloc);
        QuonPointString string(row.text);
        string.RemoveDuplicates(row.sorted);
        EXPECT_LE(g_mostMemory, row.atMost);
    }
}

int g_refusals = 0;

// Refuses two large requests, and hands out memory that is not zero.
void* DirtyRealloc(void* block, std::size_t size)
{
    if (size > 2000 && g_refusals > 0)
    {
        --g_refusals;
        return nullptr;
    }
    const std::size_t oldSize = block != nullptr ? _msize(block) : 0;
    void* const moved = std::realloc(block, size);
    if (moved != nullptr && size > oldSize)
    {
        std::memset(static_cast<char*>(moved) + oldSize, 0xFF, size - oldSize);
    }
    return moved;
}

// Bits past the count of a set that could not grow further are clear when it grows over them after all.
TEST(PointSets, WhatWasDroppedStaysDroppedWhenMemoryComesBack)
{
    g_refusals = 2;
    const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc", &DirtyRealloc);
    QuonPointString string(L"9023-9026");
    string.RemovePoints(L"1-16000,20001", FALSE);
    EXPECT_EQ(g_refusals, 0);
    EXPECT_EQ(TextOf(string), L"9024-9026");
}

}  // namespace
