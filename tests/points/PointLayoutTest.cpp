// Clients rely on where the fields and the virtual functions are.

#include "points/PointTestSupport.h"
#include "points/QuonPointMarker.h"
#include "points/QuonSortedPointString.h"
#include "points/QuonUnsortedPointString.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

namespace
{

using quon_test::Probe;

template <typename Field>
Field FieldAt(const void* object, std::size_t offset)
{
    Field field;
    std::memcpy(&field, static_cast<const char*>(object) + offset, sizeof(field));
    return field;
}

#if defined(_WIN64)

TEST(PointLayout, MarkerFields)
{
    static_assert(sizeof(QuonPointMarker) == 32);
    QuonPointMarker marker;
    EXPECT_EQ(FieldAt<const unsigned char*>(&marker, 8), nullptr);
    EXPECT_EQ(FieldAt<std::uint64_t>(&marker, 16), 0u);
    EXPECT_EQ(FieldAt<std::uint32_t>(&marker, 24), 1u);
    marker.MarkPoint(11);
    const auto* const bits = FieldAt<const unsigned char*>(&marker, 8);
    ASSERT_NE(bits, nullptr);
    EXPECT_EQ(bits[0], 0u);
    EXPECT_EQ(bits[1], 4u) << "index 10 is bit 2 of byte 1";
    EXPECT_EQ(FieldAt<std::uint64_t>(&marker, 16), 1034u) << "bits, not bytes";
    EXPECT_EQ(FieldAt<std::uint32_t>(&marker, 24), 1u);
    marker.Clear();
    EXPECT_EQ(FieldAt<const unsigned char*>(&marker, 8), nullptr);
}

// The characters of a string are one pointer, so a field of that type is told by its text.
std::wstring StringAt(const void* object, std::size_t offset)
{
    return FieldAt<const wchar_t*>(object, offset);
}

TEST(PointLayout, StringFieldsAsTheyAreBuilt)
{
    static_assert(sizeof(QuonPointString) == 336);
    static_assert(sizeof(QuonSortedPointString) == 344);
    static_assert(sizeof(QuonUnsortedPointString) == 336 + sizeof(CList<unsigned long, unsigned long&>));
    const QuonPointString string(L"1-5");
    EXPECT_EQ(StringAt(&string, 8), L"1-5");
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 16), 1);
    for (const std::size_t text : {24, 32, 40})
    {
        EXPECT_EQ(StringAt(&string, text), L"") << text;
    }
    for (std::size_t field = 48; field < 76; field += 4)
    {
        EXPECT_EQ(FieldAt<std::uint32_t>(&string, field), 0u) << field;
    }
    for (std::size_t character = 76; character < 332; character += sizeof(wchar_t))
    {
        EXPECT_EQ(FieldAt<wchar_t>(&string, character), L'\0') << character;
    }
}

TEST(PointLayout, StringFieldsInAWalk)
{
    QuonPointString string(L" 7, 20 - 12 , 3x ");
    string.SetLabel(L"label");
    unsigned long point = 0;
    string.GetFirstPoint(&point);
    string.GetNextPoint(&point);
    string.GetNextPoint(&point);
    EXPECT_EQ(StringAt(&string, 32), L"label");
    EXPECT_EQ(FieldAt<std::uint32_t>(&string, 48), 20u);
    EXPECT_EQ(FieldAt<std::uint32_t>(&string, 52), 12u);
    EXPECT_EQ(FieldAt<std::uint32_t>(&string, 56), 19u);
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 60), 0);
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 64), 1) << "descending";
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 68), 0);
    EXPECT_EQ(string.GetPointCount(), 4294967290u);
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 60), 1) << "done";
    EXPECT_EQ(FieldAt<std::int32_t>(&string, 68), 1) << "error";
    EXPECT_EQ(FieldAt<std::uint32_t>(&string, 72), 4294967290u) << "count";
    EXPECT_EQ(StringAt(&string, 40), L"3x") << "the item at which the walk stopped, trimmed";
    EXPECT_EQ(StringAt(&string, 24), L"") << "nothing is left of the work text";
}

TEST(PointLayout, AssignAndSetTextResetTheFieldsOfTheWalk)
{
    for (const bool assign : {true, false})
    {
        QuonPointString string(L"4, 20-12, 7, 3x");
        EXPECT_EQ(string.GetPointCount(), 4294967291u);
        unsigned long point = 0;
        string.GetFirstPoint(&point);
        assign ? string.Assign(QuonPointString(L"9")) : string.SetText(L"9");
        EXPECT_EQ(StringAt(&string, 8), L"9");
        EXPECT_EQ(StringAt(&string, 24), L"");
        EXPECT_EQ(StringAt(&string, 40), L"");
        for (std::size_t field = 48; field < 76; field += 4)
        {
            EXPECT_EQ(FieldAt<std::uint32_t>(&string, field), 0u) << field;
        }
    }
}

TEST(PointLayout, FormatBufferAndDerivedFields)
{
    Probe<QuonSortedPointString> sorted;
    EXPECT_EQ(sizeof(sorted.m_format), 256u);
    EXPECT_EQ(reinterpret_cast<char*>(sorted.m_format) - reinterpret_cast<char*>(&sorted), 76);
    EXPECT_EQ(reinterpret_cast<char*>(&sorted.m_text) - reinterpret_cast<char*>(&sorted), 8);
    EXPECT_EQ(reinterpret_cast<char*>(&sorted.m_changed) - reinterpret_cast<char*>(&sorted), 16);
    sorted.AddPoint(5ul);
    auto* const marker = FieldAt<QuonPointMarker*>(&sorted, 336);
    ASSERT_NE(marker, nullptr);
    EXPECT_TRUE(marker->IsPointMarked(5));
    EXPECT_EQ(marker->GetEndNumber(), 1029u);
    sorted.RemovePoint(3000);
    EXPECT_EQ(marker->GetEndNumber(), 4024u) << "removing grows the set";
}

#endif  // _WIN64

#if !defined(_MSC_VER)

// A pointer to a virtual member holds 1 + the offset into the table; the table begins with the two destructors, which
// are one with Microsoft's compiler.
template <typename Member>
int SlotOf(Member member)
{
    std::uintptr_t value = 0;
    std::memcpy(&value, &member, sizeof(value));
    return static_cast<int>((value - 1) / sizeof(void*)) - 1;
}

TEST(PointLayout, SlotsOfThePointString)
{
    using String = QuonPointString;
    EXPECT_EQ(SlotOf(&String::Assign), 1);
    EXPECT_EQ(SlotOf(&String::RemovePoints), 2);
    EXPECT_EQ(SlotOf(&String::RemoveDuplicates), 3);
    EXPECT_EQ(SlotOf(&String::GetFirstPoint), 4);
    EXPECT_EQ(SlotOf(&String::GetNextPoint), 5);
    EXPECT_EQ(SlotOf(&String::GetFirstRange), 6);
    EXPECT_EQ(SlotOf(&String::GetNextRange), 7);
    EXPECT_EQ(SlotOf(&String::IsDone), 8);
    EXPECT_EQ(SlotOf(&String::SetLabel), 9);
    EXPECT_EQ(SlotOf(&String::HasLabel), 10);
    EXPECT_EQ(SlotOf(&String::GetLabel), 11);
    EXPECT_EQ(SlotOf(&String::IsValid), 12);
    EXPECT_EQ(SlotOf(&String::GetPointCount), 13);
}

template <typename Derived>
void ExpectDerivedSlots()
{
    EXPECT_EQ(SlotOf(static_cast<void (Derived::*)(const wchar_t*)>(&Derived::AddPoint)), 14);
    EXPECT_EQ(SlotOf(static_cast<void (Derived::*)(unsigned long)>(&Derived::AddPoint)), 15);
    EXPECT_EQ(SlotOf(&Derived::UpdateText), 16);
    EXPECT_EQ(SlotOf(&Derived::Clear), 17);
}

TEST(PointLayout, SlotsOfTheDerivedStrings)
{
    ExpectDerivedSlots<QuonSortedPointString>();
    ExpectDerivedSlots<QuonUnsortedPointString>();
    EXPECT_EQ(SlotOf(&QuonSortedPointString::RemovePoint), 18);
}

#endif  // !_MSC_VER

}  // namespace
