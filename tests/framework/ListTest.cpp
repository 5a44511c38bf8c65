#include <afx.h>
#include <afxtempl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <iterator>
#include <list>
#include <random>
#include <vector>

#include "framework/CollectionProbes.h"
#include "framework/ThrowsPointer.h"

namespace
{
using quon_test::CountBlocks;
using quon_test::Counted;
using quon_test::ThrowsPointer;
using testing::ElementsAre;
using testing::ElementsAreArray;

template <class TYPE, class ARG_TYPE = const TYPE&>
class OpenList : public CList<TYPE, ARG_TYPE>
{
public:
    using CList<TYPE, ARG_TYPE>::CList;
    int Blocks() const { return CountBlocks(this->m_pBlocks); }
};

template <class TYPE, class ARG_TYPE>
std::vector<TYPE> Forward(const CList<TYPE, ARG_TYPE>& list)
{
    std::vector<TYPE> elements;
    for (POSITION position = list.GetHeadPosition(); position != nullptr;)
    {
        elements.push_back(list.GetNext(position));
    }
    return elements;
}

template <class TYPE, class ARG_TYPE>
std::vector<TYPE> Backward(const CList<TYPE, ARG_TYPE>& list)
{
    std::vector<TYPE> elements;
    for (POSITION position = list.GetTailPosition(); position != nullptr;)
    {
        elements.push_back(list.GetPrev(position));
    }
    return elements;
}

TEST(CListTest, StartsEmptyWithoutStorage)
{
    const OpenList<int> list;
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetCount(), 0);
    EXPECT_EQ(list.GetSize(), 0);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    EXPECT_EQ(list.Find(1), nullptr);
    EXPECT_EQ(list.FindIndex(0), nullptr);
    EXPECT_EQ(list.Blocks(), 0);
}

TEST(CListTest, KeepsTheOrderOfInsertionAtBothEnds)
{
    CList<int> list;
    list.AddTail(3);
    list.AddHead(2);
    list.AddTail(4);
    list.AddHead(1);
    EXPECT_THAT(Forward(list), ElementsAre(1, 2, 3, 4));
    EXPECT_THAT(Backward(list), ElementsAre(4, 3, 2, 1));
    EXPECT_EQ(list.GetHead(), 1);
    EXPECT_EQ(list.GetTail(), 4);
    EXPECT_EQ(list.RemoveHead(), 1);
    EXPECT_EQ(list.RemoveTail(), 4);
    EXPECT_THAT(Forward(list), ElementsAre(2, 3));
}

TEST(CListTest, AddsAnotherListInItsOrder)
{
    CList<int> list;
    CList<int> front;
    CList<int> back;
    list.AddTail(5);
    for (int i = 1; i <= 3; ++i)
    {
        front.AddTail(i);
        back.AddTail(i * 10);
    }
    list.AddHead(&front);
    list.AddTail(&back);
    EXPECT_THAT(Forward(list), ElementsAre(1, 2, 3, 5, 10, 20, 30));
    EXPECT_EQ(front.GetCount(), 3);
}

TEST(CListTest, InsertsBesideAPosition)
{
    CList<int> list;
    const POSITION five = list.AddTail(5);
    list.InsertBefore(five, 4);
    list.InsertAfter(five, 6);
    list.InsertBefore(nullptr, 1);  // no position: at the head
    list.InsertAfter(nullptr, 9);   // no position: at the tail
    EXPECT_THAT(Forward(list), ElementsAre(1, 4, 5, 6, 9));
    EXPECT_THAT(Backward(list), ElementsAre(9, 6, 5, 4, 1));
}

TEST(CListTest, FindsByValueAndByNumber)
{
    CList<int> list;
    for (const int value : {7, 8, 7, 9})
    {
        list.AddTail(value);
    }
    const POSITION first = list.Find(7);
    EXPECT_EQ(first, list.GetHeadPosition());
    const POSITION second = list.Find(7, first);
    EXPECT_EQ(second, list.FindIndex(2));
    EXPECT_EQ(list.Find(7, second), nullptr);
    EXPECT_EQ(list.Find(6), nullptr);
    EXPECT_EQ(list.FindIndex(3), list.GetTailPosition());
    EXPECT_EQ(list.FindIndex(4), nullptr);
    EXPECT_EQ(list.FindIndex(-1), nullptr);
}

TEST(CListTest, SetsAndRemovesAtAPosition)
{
    CList<int> list;
    for (int i = 0; i < 5; ++i)
    {
        list.AddTail(i);
    }
    list.SetAt(list.FindIndex(1), 10);
    list.GetAt(list.FindIndex(3)) = 30;
    list.RemoveAt(list.FindIndex(2));
    EXPECT_THAT(Forward(list), ElementsAre(0, 10, 30, 4));
    list.RemoveAt(list.GetHeadPosition());
    list.RemoveAt(list.GetTailPosition());
    EXPECT_THAT(Forward(list), ElementsAre(10, 30));
    EXPECT_THAT(Backward(list), ElementsAre(30, 10));
}

TEST(CListTest, PositionsSurviveChangesElsewhere)
{
    CList<int> list;
    const POSITION kept = list.AddTail(1);
    for (int i = 0; i < 100; ++i)
    {
        list.AddHead(i);
        list.AddTail(i);
    }
    for (int i = 0; i < 60; ++i)
    {
        list.RemoveHead();
    }
    EXPECT_EQ(list.GetAt(kept), 1);
}

TEST(CListTest, TakesItsNodesFromBlocksOfTen)
{
    OpenList<int> list;
    for (int count = 1; count <= 31; ++count)
    {
        SCOPED_TRACE(count);
        list.AddTail(count);
        EXPECT_EQ(list.Blocks(), (count + 9) / 10);
    }
    // What is free is used again before a new block is made.
    list.RemoveHead();
    list.RemoveHead();
    for (int i = 0; i < 11; ++i)
    {
        list.AddTail(i);
    }
    EXPECT_EQ(list.GetCount(), 40);
    EXPECT_EQ(list.Blocks(), 4);
}

TEST(CListTest, FreesItsBlocksWhenItBecomesEmpty)
{
    OpenList<int> list;
    for (int i = 0; i < 25; ++i)
    {
        list.AddTail(i);
    }
    while (list.GetCount() > 1)
    {
        list.RemoveTail();
        EXPECT_EQ(list.Blocks(), 3);
    }
    list.RemoveAt(list.GetHeadPosition());
    EXPECT_EQ(list.Blocks(), 0);
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
    EXPECT_EQ(list.GetTailPosition(), nullptr);
    list.AddTail(7);
    EXPECT_THAT(Forward(list), ElementsAre(7));
    EXPECT_EQ(list.Blocks(), 1);
    list.RemoveAll();
    EXPECT_EQ(list.Blocks(), 0);
}

TEST(CListTest, DestroysEveryElementOnce)
{
    {
        CList<Counted, const Counted&> list;
        for (int i = 0; i < 33; ++i)
        {
            list.AddTail(Counted(i));
        }
        EXPECT_EQ(Counted::s_alive, 33);
        EXPECT_EQ(list.RemoveHead().value, 0);
        list.RemoveAt(list.FindIndex(5));
        EXPECT_EQ(Counted::s_alive, 31);
        list.RemoveAll();
        EXPECT_EQ(Counted::s_alive, 0);
        list.AddHead(Counted(1));
    }
    EXPECT_EQ(Counted::s_alive, 0);
}

TEST(CListTest, TakesTheArgumentTypesOfItsUsers)
{
    CList<unsigned long, unsigned long&> numbers;
    unsigned long number = 4000000000UL;
    numbers.AddTail(number);
    EXPECT_EQ(numbers.Find(number), numbers.GetHeadPosition());

    CList<const char*, const char*> pointers;
    const char* const text = "text";
    pointers.AddTail(text);
    EXPECT_EQ(pointers.GetHead(), text);

    CList<CString, LPCTSTR> strings;
    strings.AddTail(L"Äußeres");
    EXPECT_TRUE(strings.GetTail() == L"Äußeres");
}

// The framework asserts these in a debug build, where they would stop the test.
#ifndef _DEBUG
TEST(CListTest, AnswersWhatIsNotThereWithTheInvalidArgumentException)
{
    CList<int> list;
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.GetHead(); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.GetTail(); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.RemoveHead(); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.RemoveTail(); }));
}

TEST(CListTest, AnswersAnInsertionWithoutANodeWithTheInvalidArgumentException)
{
    CList<int> list(0);
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.AddTail(1); }));
    EXPECT_TRUE(ThrowsPointer<CInvalidArgException>([&] { list.AddHead(1); }));
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.GetHeadPosition(), nullptr);
}
#endif

TEST(CListTest, DoesAsAStandardListDoes)
{
    std::mt19937 random(20240501);
    CList<int> list;
    std::list<int> model;
    for (int step = 0; step < 30000; ++step)
    {
        SCOPED_TRACE(step);
        const auto at = model.empty() ? 0 : std::uniform_int_distribution<std::size_t>(0, model.size() - 1)(random);
        const auto place = std::next(model.begin(), static_cast<std::ptrdiff_t>(at));
        const POSITION position = list.FindIndex(static_cast<INT_PTR>(at));
        ASSERT_EQ(position == nullptr, model.empty());
        // Growing and shrinking phases, so that the list becomes empty now and then.
        const bool grow = std::uniform_int_distribution<int>(0, 99)(random) < (step / 500 % 2 == 0 ? 65 : 35);
        const int kind = std::uniform_int_distribution<int>(0, 3)(random);
        if (grow || model.empty())
        {
            switch (kind)
            {
                case 0:
                    list.AddHead(step);
                    model.push_front(step);
                    break;
                case 1:
                    list.AddTail(step);
                    model.push_back(step);
                    break;
                case 2:
                    list.InsertBefore(position, step);
                    model.insert(place, step);
                    break;
                default:
                    list.InsertAfter(position, step);
                    model.insert(place == model.end() ? place : std::next(place), step);
                    break;
            }
        }
        else if (kind == 0)
        {
            ASSERT_EQ(list.RemoveHead(), model.front());
            model.pop_front();
        }
        else if (kind == 1)
        {
            ASSERT_EQ(list.RemoveTail(), model.back());
            model.pop_back();
        }
        else
        {
            ASSERT_EQ(list.GetAt(position), *place);
            list.RemoveAt(position);
            model.erase(place);
        }
        ASSERT_EQ(list.GetCount(), static_cast<INT_PTR>(model.size()));
        if (step % 50 == 0)
        {
            ASSERT_THAT(Forward(list), ElementsAreArray(model));
            ASSERT_THAT(Backward(list), ElementsAreArray(model.rbegin(), model.rend()));
        }
    }
}
}  // namespace
