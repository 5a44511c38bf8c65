#include "points/QuonPointMarker.h"

#include "helpers/ImportPatch.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <type_traits>
#include <vector>

namespace
{

using quon_test::ImportPatch;

TEST(QuonPointMarker, BeginsEmptyWithTheFirstNumberOne)
{
    const QuonPointMarker marker;
    EXPECT_EQ(marker.GetFirstNumber(), 1u);
    EXPECT_EQ(marker.GetEndNumber(), 1u);
    EXPECT_FALSE(marker.IsPointMarked(1));
    static_assert(!std::is_copy_constructible_v<QuonPointMarker> && !std::is_copy_assignable_v<QuonPointMarker>);
}

TEST(QuonPointMarker, GrowsTo1024BitsPastTheNeededIndex)
{
    struct Row
    {
        unsigned long point;
        unsigned long end;
    };
    QuonPointMarker marker;
    for (const Row& row : {Row{1, 1025}, Row{1024, 1025}, Row{1025, 2049}, Row{2, 2049}, Row{10000, 11024},
                           Row{11023, 11024}, Row{11024, 12048}})
    {
        SCOPED_TRACE(row.point);
        marker.MarkPoint(row.point);
        EXPECT_EQ(marker.GetEndNumber(), row.end);
        EXPECT_EQ(marker.IsPointMarked(row.point), TRUE);
        EXPECT_EQ(marker.GetFirstNumber(), 1u);
    }
}

TEST(QuonPointMarker, UnmarkingGrowsAsMarkingDoes)
{
    QuonPointMarker marker;
    marker.UnmarkPoint(5000);
    EXPECT_EQ(marker.GetEndNumber(), 6024u);
    EXPECT_FALSE(marker.IsPointMarked(5000));
    marker.MarkPoint(5000);
    EXPECT_TRUE(marker.IsPointMarked(5000));
    marker.UnmarkPoint(5000);
    EXPECT_FALSE(marker.IsPointMarked(5000));
    EXPECT_EQ(marker.GetEndNumber(), 6024u);
}

TEST(QuonPointMarker, IgnoresWhatItCannotRepresent)
{
    for (const unsigned long point : {0ul, 4294966272ul, 4294966273ul, 4294967294ul, 4294967295ul})
    {
        SCOPED_TRACE(point);
        QuonPointMarker marker;
        marker.MarkPoint(point);
        EXPECT_FALSE(marker.IsPointMarked(point));
        EXPECT_EQ(marker.GetEndNumber(), 1u);
        marker.UnmarkPoint(point);
        EXPECT_EQ(marker.GetEndNumber(), 1u);
        marker.MarkPoint(7);
        marker.MarkPoint(point);
        marker.UnmarkPoint(point);
        EXPECT_FALSE(marker.IsPointMarked(point));
        EXPECT_EQ(marker.GetEndNumber(), 1031u);
        EXPECT_TRUE(marker.IsPointMarked(7));
    }
}

TEST(QuonPointMarker, HoldsTheHighestRepresentableNumber)
{
    QuonPointMarker marker;
    marker.MarkPoint(4294966271);
    EXPECT_TRUE(marker.IsPointMarked(4294966271));
    EXPECT_FALSE(marker.IsPointMarked(4294966270));
    EXPECT_EQ(marker.GetEndNumber(), 4294967295u);
    // Held by now, and ignored all the same.
    marker.MarkPoint(4294966272);
    EXPECT_FALSE(marker.IsPointMarked(4294966272));
    EXPECT_FALSE(marker.TestBit(4294966271));
}

TEST(QuonPointMarker, RawBitsAreNotShiftedByTheFirstNumber)
{
    QuonPointMarker marker;
    ASSERT_TRUE(marker.Resize(20));
    marker.SetBit(9);
    EXPECT_EQ(marker.TestBit(9), TRUE);
    EXPECT_EQ(marker.TestBit(8), FALSE);
    EXPECT_TRUE(marker.IsPointMarked(10));
    EXPECT_FALSE(marker.IsPointMarked(9));
    marker.ClearBit(9);
    EXPECT_FALSE(marker.IsPointMarked(10));
    marker.MarkPoint(20);
    EXPECT_TRUE(marker.TestBit(19));
    EXPECT_EQ(marker.GetEndNumber(), 21u) << "raw bits and points that are held do not grow the set";
}

TEST(QuonPointMarker, ResizeIsBoundedByThirtyTwoBits)
{
    QuonPointMarker marker;
    ASSERT_TRUE(marker.Resize(100));
    marker.MarkPoint(3);
    for (const unsigned long long bits :
         {0xFFFFFFFFull, 0x100000000ull, 0x1000003FFull, 0xFFFFFFFFFFFFFFFEull, 0xFFFFFFFFFFFFFFFFull})
    {
        SCOPED_TRACE(bits);
        EXPECT_EQ(marker.Resize(bits), FALSE);
        EXPECT_EQ(marker.GetEndNumber(), 101u);
        EXPECT_TRUE(marker.IsPointMarked(3));
    }
    EXPECT_EQ(marker.Resize(0xFFFFFFFEull), TRUE);
    EXPECT_EQ(marker.GetEndNumber(), 0xFFFFFFFFul);
    EXPECT_TRUE(marker.IsPointMarked(3));
    EXPECT_FALSE(marker.IsPointMarked(4294966271));
}

TEST(QuonPointMarker, ShrinkingKeepsTheBitsOfTheLastByte)
{
    QuonPointMarker marker;
    ASSERT_TRUE(marker.Resize(64));
    marker.MarkPoint(12);
    marker.MarkPoint(20);
    ASSERT_TRUE(marker.Resize(10));
    EXPECT_FALSE(marker.IsPointMarked(12));
    EXPECT_EQ(marker.GetEndNumber(), 11u);
    ASSERT_TRUE(marker.Resize(64));
    EXPECT_TRUE(marker.IsPointMarked(12)) << "the second byte stayed as it was";
    EXPECT_FALSE(marker.IsPointMarked(20)) << "the third byte is a new one";
}

TEST(QuonPointMarker, ClearGivesTheMemoryBack)
{
    QuonPointMarker marker;
    marker.MarkPoint(5);
    marker.Clear();
    EXPECT_EQ(marker.GetEndNumber(), 1u);
    EXPECT_FALSE(marker.IsPointMarked(5));
    marker.MarkPoint(6);
    EXPECT_FALSE(marker.IsPointMarked(5)) << "new memory is zero";
    EXPECT_TRUE(marker.IsPointMarked(6));
    marker.Clear();
    marker.Clear();
    EXPECT_EQ(marker.GetEndNumber(), 1u);
}

std::vector<void*> g_allocated;
std::vector<std::size_t> g_sizes;
std::vector<void*> g_freed;

void* RecordingRealloc(void* memory, std::size_t size)
{
    void* const allocated = std::realloc(memory, size);
    g_allocated.push_back(allocated);
    g_sizes.push_back(size);
    return allocated;
}

void RecordingFree(void* memory)
{
    g_freed.push_back(memory);
    std::free(memory);
}

void* FailingRealloc(void*, std::size_t)
{
    return nullptr;
}

class MarkerMemory : public testing::Test
{
protected:
    void SetUp() override
    {
        g_allocated.clear();
        g_sizes.clear();
        g_freed.clear();
    }
};

TEST_F(MarkerMemory, IsOneReallocationPer1024NumbersAndIsFreed)
{
    const ImportPatch<void* (*)(void*, std::size_t)> reallocPatch(L"QuonWin32Utils.dll", "realloc", &RecordingRealloc);
    const ImportPatch<void (*)(void*)> freePatch(L"QuonWin32Utils.dll", "free", &RecordingFree);
    auto* marker = new QuonPointMarker;
    for (unsigned long point = 1; point <= 3000; ++point)
    {
        marker->MarkPoint(point);
    }
    EXPECT_EQ(g_sizes, (std::vector<std::size_t>{128, 256, 384}));
    void* const first = g_allocated.back();
    marker->Clear();
    EXPECT_EQ(g_freed, std::vector<void*>{first});
    marker->MarkPoint(1);
    void* const second = g_allocated.back();
    g_freed.clear();
    delete marker;
    ASSERT_FALSE(g_freed.empty());
    EXPECT_EQ(g_freed.front(), second);
}

TEST_F(MarkerMemory, AFailedGrowthIsNoMarkAndNoChange)
{
    QuonPointMarker marker;
    marker.MarkPoint(5);
    const ImportPatch<void* (*)(void*, std::size_t)> patch(L"QuonWin32Utils.dll", "realloc", &FailingRealloc);
    marker.MarkPoint(5000);
    marker.UnmarkPoint(6000);
    EXPECT_FALSE(marker.Resize(7000));
    EXPECT_EQ(marker.GetEndNumber(), 1029u);
    EXPECT_FALSE(marker.IsPointMarked(5000));
    EXPECT_TRUE(marker.IsPointMarked(5));
    marker.MarkPoint(6);
    EXPECT_TRUE(marker.IsPointMarked(6)) << "no growth needed, no failure";
    EXPECT_TRUE(marker.Resize(0)) << "giving back cannot fail";
}

// The buffer as bytes, grown and filled step by step.
struct PlainMarker
{
    std::vector<unsigned char> bytes;
    unsigned long long bits = 0;

    void Resize(unsigned long long wanted)
    {
        bytes.resize(static_cast<std::size_t>((wanted + 7) / 8), 0);
        bits = wanted;
    }
    void Put(unsigned long point, bool marked)
    {
        const unsigned long long index = point - 1;
        if (index >= bits)
        {
            Resize(index + 1024);
        }
        const auto mask = static_cast<unsigned char>(1u << index % 8);
        unsigned char& byte = bytes[static_cast<std::size_t>(index / 8)];
        byte = static_cast<unsigned char>(marked ? byte | mask : byte & ~mask);
    }
    bool Has(unsigned long point) const
    {
        const unsigned long long index = point - 1;
        return index < bits && (bytes[static_cast<std::size_t>(index / 8)] >> index % 8 & 1) != 0;
    }
};

TEST(QuonPointMarker, AgreesWithAPlainBufferOnRandomOperations)
{
    std::mt19937 random(20240611);
    for (int round = 0; round < quon_test::Cases(200); ++round)
    {
        QuonPointMarker marker;
        PlainMarker plain;
        const unsigned long span = round % 4 == 0 ? 40 : round % 4 == 1 ? 3000 : round % 4 == 2 ? 30000 : 200000;
        for (int step = 0; step < 300; ++step)
        {
            const unsigned long point = 1 + random() % span;
            switch (random() % 16)
            {
                case 0:
                    plain.Resize(point);
                    ASSERT_TRUE(marker.Resize(point));
                    break;
                case 1:
                case 2:
                case 3:
                    plain.Put(point, false);
                    marker.UnmarkPoint(point);
                    break;
                default:
                    plain.Put(point, true);
                    marker.MarkPoint(point);
            }
            ASSERT_EQ(marker.GetEndNumber(), 1 + plain.bits) << "round " << round << " step " << step;
        }
        for (unsigned long point = 1; point <= std::min(span, 3000ul) + 1100; ++point)
        {
            // So often that a comparison which could tell the two values would take most of the time.
            if ((marker.IsPointMarked(point) != FALSE) != plain.Has(point))
            {
                FAIL() << "round " << round << " point " << point << (plain.Has(point) ? " is lost" : " is not gone");
            }
        }
    }
}

}  // namespace
