#include <afx.h>
#include <afxcoll.h>
#include <afxtempl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "framework/ThrowsPointer.h"

namespace
{
using quon_test::ThrowsPointer;
using testing::ElementsAre;

int g_objects[8];

/// An address to be told from others.
void* At(INT_PTR number)
{
    return reinterpret_cast<void*>(number * 16);
}

class OpenPtrArray : public CPtrArray
{
public:
    INT_PTR Capacity() const { return m_nMaxSize; }
    INT_PTR GrowBy() const { return m_nGrowBy; }
};

class OpenStringArray : public CStringArray
{
public:
    INT_PTR Capacity() const { return m_nMaxSize; }
};

std::vector<void*> ElementsOf(const CPtrArray& array)
{
    std::vector<void*> elements;
    for (INT_PTR i = 0; i < array.GetSize(); ++i)
    {
        elements.push_back(array.GetAt(i));
    }
    return elements;
}

std::vector<std::wstring> ElementsOf(const CStringArray& array)
{
    std::vector<std::wstring> elements;
    for (INT_PTR i = 0; i < array.GetSize(); ++i)
    {
        elements.emplace_back(array.GetAt(i));
    }
    return elements;
}

TEST(CPtrArrayTest, IsLaidOutAsTheFrameworkDoes)
{
    EXPECT_EQ(sizeof(CPtrArray), 5 * sizeof(void*));
    EXPECT_EQ(sizeof(CStringArray), 5 * sizeof(void*));
    EXPECT_EQ(sizeof(CTypedPtrArray<CPtrArray, int*>), sizeof(CPtrArray));
    // After the table of virtual functions: data, size, capacity, growth step.
    OpenPtrArray array;
    array.SetSize(3, 7);
    array.SetSize(2);
    const auto* const fields = reinterpret_cast<const INT_PTR*>(&array);
    EXPECT_EQ(fields[1], reinterpret_cast<INT_PTR>(array.GetData()));
    EXPECT_EQ(fields[2], 2);
    EXPECT_EQ(fields[3], 3);
    EXPECT_EQ(fields[4], 7);
}

TEST(CPtrArrayTest, StartsEmpty)
{
    const OpenPtrArray array;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetSize(), 0);
    EXPECT_EQ(array.GetCount(), 0);
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(CPtrArrayTest, AddsSetsAndReads)
{
    CPtrArray array;
    EXPECT_EQ(array.Add(At(1)), 0);
    EXPECT_EQ(array.Add(At(2)), 1);
    array.SetAtGrow(4, At(5));
    array.SetAt(0, At(9));
    array[1] = At(8);
    array.ElementAt(2) = At(7);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(9), At(8), At(7), nullptr, At(5)));
    EXPECT_EQ(array.GetUpperBound(), 4);
    EXPECT_EQ(array.GetData()[4], At(5));
}

TEST(CPtrArrayTest, SetSizeCutsAndExtends)
{
    OpenPtrArray array;
    array.SetSize(3);
    EXPECT_EQ(array.Capacity(), 3);  // the first storage is exact
    for (INT_PTR i = 0; i < 3; ++i)
    {
        array[i] = At(i + 1);
    }
    array.SetSize(1);
    EXPECT_EQ(array.Capacity(), 3);
    array.SetSize(3);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1), nullptr, nullptr));
    array.SetSize(0);
    EXPECT_EQ(array.GetData(), nullptr);
    EXPECT_EQ(array.Capacity(), 0);
}

TEST(CPtrArrayTest, MinusOneKeepsTheGrowthStep)
{
    OpenPtrArray array;
    array.SetSize(5, 20);
    EXPECT_EQ(array.GrowBy(), 20);
    array.SetSize(6, -1);
    EXPECT_EQ(array.GrowBy(), 20);
    EXPECT_EQ(array.Capacity(), 25);
    array.SetSize(0, -1);
    EXPECT_EQ(array.GrowBy(), 20);
    EXPECT_EQ(array.GetData(), nullptr);
    array.SetSize(1, 0);
    EXPECT_EQ(array.GrowBy(), 0);
}

TEST(CPtrArrayTest, GrowsByAnEighthWithinBounds)
{
    struct Row
    {
        INT_PTR size;
        INT_PTR grownCapacity;
    };
    for (const Row& row : {Row{1, 5}, Row{10, 14}, Row{39, 43}, Row{40, 45}, Row{80, 90}, Row{8000, 9000},
                           Row{8192, 9216}, Row{16000, 17024}})
    {
        SCOPED_TRACE(row.size);
        OpenPtrArray array;
        array.SetSize(row.size);
        array.Add(nullptr);
        EXPECT_EQ(array.Capacity(), row.grownCapacity);
    }
    // Beyond the step the size asked for is exact.
    OpenPtrArray array;
    array.SetSize(10);
    array.SetSize(100);
    EXPECT_EQ(array.Capacity(), 100);
}

TEST(CPtrArrayTest, FreeExtraKeepsTheElements)
{
    OpenPtrArray array;
    array.SetSize(2, 100);
    array.Add(At(3));
    EXPECT_EQ(array.Capacity(), 102);
    array.FreeExtra();
    EXPECT_EQ(array.Capacity(), 3);
    EXPECT_THAT(ElementsOf(array), ElementsAre(nullptr, nullptr, At(3)));
    array.RemoveAt(0, 3);
    EXPECT_EQ(array.Capacity(), 3);  // removal does not free
    array.FreeExtra();
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(CPtrArrayTest, InsertsAndRemoves)
{
    CPtrArray array;
    array.InsertAt(2, At(3));  // beyond the end
    array.InsertAt(0, At(1), 2);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1), At(1), nullptr, nullptr, At(3)));
    array.RemoveAt(1);
    array.RemoveAt(1, 2);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1), At(3)));
    array.RemoveAt(2, 0);
    CPtrArray more;
    more.Add(At(6));
    more.Add(At(7));
    array.InsertAt(1, &more);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1), At(6), At(7), At(3)));
    CPtrArray none;
    array.InsertAt(1, &none);
    EXPECT_EQ(array.GetSize(), 4);
}

TEST(CPtrArrayTest, CopiesAndAppends)
{
    CPtrArray source;
    source.Add(At(1));
    source.Add(At(2));
    CPtrArray array;
    array.Add(At(9));
    EXPECT_EQ(array.Append(source), 1);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(9), At(1), At(2)));
    array.Copy(source);
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1), At(2)));
    array.Copy(CPtrArray());
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.Append(CPtrArray()), 0);
}

// The framework asserts these in a debug build, where they would stop the test.
#ifndef _DEBUG
TEST(CPtrArrayTest, AnswersWhatIsOutOfRangeWithTheInvalidArgumentException)
{
    CPtrArray array;
    array.SetSize(3);
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.GetAt(3); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.GetAt(-1); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.SetAt(3, nullptr); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array[3] = nullptr; }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.SetAtGrow(-1, nullptr); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.InsertAt(-1, At(1)); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.InsertAt(0, At(1), 0); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.RemoveAt(2, 2); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.RemoveAt(0, -1); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { array.SetSize(-1); }));
    EXPECT_EQ(array.GetSize(), 3);
}
#endif

TEST(CPtrArrayTest, AnswersALackOfMemoryWithTheMemoryException)
{
    CPtrArray array;
    array.Add(At(1));
    EXPECT_TRUE(ThrowsPointer<CMemoryException>([&] { array.SetSize(INT_PTR{1} << 58); }));
    EXPECT_THAT(ElementsOf(array), ElementsAre(At(1)));
}

TEST(CPtrArrayTest, DoesAsAStandardVectorDoes)
{
    std::mt19937 random(20240503);
    const auto upTo = [&random](INT_PTR bound) { return std::uniform_int_distribution<INT_PTR>(0, bound)(random); };
    OpenPtrArray array;
    std::vector<void*> model;
    for (int step = 0; step < 20000; ++step)
    {
        SCOPED_TRACE(step);
        const auto size = static_cast<INT_PTR>(model.size());
        const INT_PTR index = upTo(size);
        const INT_PTR count = 1 + upTo(3);
        switch (upTo(5))
        {
            case 0:
                EXPECT_EQ(array.Add(At(step)), size);
                model.push_back(At(step));
                break;
            case 1:
                array.InsertAt(index, At(step), count);
                model.insert(model.begin() + index, static_cast<std::size_t>(count), At(step));
                break;
            case 2:
            case 3:
                array.RemoveAt(index, std::min(count, size - index));
                model.erase(model.begin() + index, model.begin() + std::min(index + count, size));
                break;
            case 4:
                array.SetAtGrow(index + count, At(step));
                model.resize(std::max(model.size(), static_cast<std::size_t>(index + count + 1)));
                model[static_cast<std::size_t>(index + count)] = At(step);
                break;
            default:
                array.SetSize(index, upTo(9) == 0 ? count : -1);
                model.resize(static_cast<std::size_t>(index));
                break;
        }
        ASSERT_GE(array.Capacity(), array.GetSize());
        ASSERT_EQ(ElementsOf(array), model);
    }
}

TEST(CTypedPtrArrayTest, GivesItsElementsTheirType)
{
    CTypedPtrArray<CPtrArray, int*> array;
    EXPECT_EQ(array.Add(&g_objects[0]), 0);
    array.SetAtGrow(1, &g_objects[1]);
    array.InsertAt(0, &g_objects[2]);
    array.SetAt(1, &g_objects[3]);
    int* const first = array[0];
    EXPECT_EQ(first, &g_objects[2]);
    array[0] = &g_objects[4];
    array.ElementAt(1) = &g_objects[5];
    EXPECT_EQ(array.GetAt(0), &g_objects[4]);
    EXPECT_EQ(array.GetAt(1), &g_objects[5]);

    CTypedPtrArray<CPtrArray, int*> copy;
    copy.Copy(array);
    EXPECT_EQ(copy.Append(array), 3);
    EXPECT_EQ(copy.GetSize(), 6);
    copy.InsertAt(0, &array);
    const CTypedPtrArray<CPtrArray, int*>& constant = copy;
    EXPECT_EQ(constant[8], &g_objects[1]);
    copy.SetSize(0, -1);
    EXPECT_EQ(copy.GetData(), nullptr);
}

TEST(CStringArrayTest, HoldsStrings)
{
    CStringArray array;
    EXPECT_TRUE(array.IsEmpty());
    EXPECT_EQ(array.GetUpperBound(), -1);
    EXPECT_EQ(array.Add(L"b"), 0);
    EXPECT_EQ(array.Add(CString(L"c")), 1);
    array.InsertAt(0, L"a");
    array.InsertAt(0, CString(L"x"), 2);
    array.SetAtGrow(6, L"g");
    array.SetAt(0, L"A");
    array[1] = L"B";
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"A", L"B", L"a", L"b", L"c", L"", L"g"));
    array.RemoveAt(0, 2);
    array.RemoveAt(1);
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"a", L"c", L"", L"g"));
    array.ElementAt(2) += L"more";
    EXPECT_TRUE(array.GetData()[2] == L"more");
    array.SetSize(1);
    array.SetSize(2);
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"a", L""));
    array.RemoveAll();
    EXPECT_EQ(array.GetData(), nullptr);
}

TEST(CStringArrayTest, CopiesAppendsAndInsertsAnother)
{
    CStringArray source;
    source.Add(L"1");
    source.Add(L"2");
    OpenStringArray array;
    array.Add(L"0");
    EXPECT_EQ(array.Append(source), 1);
    array.InsertAt(1, &source);
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"0", L"1", L"2", L"1", L"2"));
    array.Copy(source);
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"1", L"2"));
    array.FreeExtra();
    EXPECT_EQ(array.Capacity(), 2);
    EXPECT_THAT(ElementsOf(array), ElementsAre(L"1", L"2"));
}

TEST(CStringArrayTest, DoesAsAStandardVectorDoes)
{
    std::mt19937 random(20240504);
    const auto upTo = [&random](INT_PTR bound) { return std::uniform_int_distribution<INT_PTR>(0, bound)(random); };
    CStringArray array;
    std::vector<std::wstring> model;
    for (int step = 0; step < 5000; ++step)
    {
        SCOPED_TRACE(step);
        const std::wstring text = std::to_wstring(step);
        const auto size = static_cast<INT_PTR>(model.size());
        const INT_PTR index = upTo(size);
        const INT_PTR count = 1 + upTo(3);
        switch (upTo(4))
        {
            case 0:
                array.Add(text.c_str());
                model.push_back(text);
                break;
            case 1:
                array.InsertAt(index, text.c_str(), count);
                model.insert(model.begin() + index, static_cast<std::size_t>(count), text);
                break;
            case 2:
                array.RemoveAt(index, std::min(count, size - index));
                model.erase(model.begin() + index, model.begin() + std::min(index + count, size));
                break;
            case 3:
                array.SetAtGrow(index, text.c_str());
                model.resize(std::max(model.size(), static_cast<std::size_t>(index + 1)));
                model[static_cast<std::size_t>(index)] = text;
                break;
            default:
                array.SetSize(index);
                model.resize(static_cast<std::size_t>(index));
                break;
        }
        ASSERT_EQ(ElementsOf(array), model);
    }
}
}  // namespace
