#include <afx.h>
#include <afxtempl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <list>
#include <random>
#include <string>
#include <vector>

#include "framework/ThrowsPointer.h"

namespace
{
using quon_test::ThrowsPointer;
using testing::ElementsAre;
using testing::ElementsAreArray;

/// Counts the elements that are alive.
struct Counted
{
    Counted() { ++s_alive; }
    Counted(int initial) : value(initial) { ++s_alive; }
    Counted(const Counted& other) : value(other.value) { ++s_alive; }
    Counted& operator=(const Counted&) = default;
    ~Counted() { --s_alive; }
    bool operator==(const Counted& other) const { return value == other.value; }

    int value = 0;
    static inline int s_alive = 0;
};

int CountBlocks(const CPlex* block)
{
    int count = 0;
    for (; block != nullptr; block = block->pNext)
    {
        ++count;
    }
    return count;
}

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

/// A key that hashes to itself, so that its bucket is known.
struct Key
{
    unsigned number;
    bool operator==(const Key& other) const { return number == other.number; }
};
}  // namespace

template <>
inline UINT AFXAPI HashKey<const Key&>(const Key& key)
{
    return key.number;
}

namespace
{
template <class KEY, class ARG_KEY, class VALUE, class ARG_VALUE>
class OpenMap : public CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>
{
public:
    using CMap<KEY, ARG_KEY, VALUE, ARG_VALUE>::CMap;
    int Blocks() const { return CountBlocks(this->m_pBlocks); }
    bool HasTable() const { return this->m_pHashTable != nullptr; }
};

using KeyMap = OpenMap<Key, const Key&, int, int>;

template <class Map>
std::vector<unsigned> KeysOf(const Map& map)
{
    std::vector<unsigned> keys;
    for (POSITION position = map.GetStartPosition(); position != nullptr;)
    {
        Key key = {};
        int value = 0;
        map.GetNextAssoc(position, key, value);
        EXPECT_EQ(value, static_cast<int>(key.number) * 2);
        keys.push_back(key.number);
    }
    return keys;
}

TEST(CMapTest, StartsEmptyWithoutTable)
{
    const KeyMap map;
    int value = 42;
    EXPECT_TRUE(map.IsEmpty());
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map.GetSize(), 0);
    EXPECT_EQ(map.GetHashTableSize(), 17U);
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    EXPECT_FALSE(map.Lookup(Key{1}, value));
    EXPECT_EQ(value, 42);
    EXPECT_FALSE(map.HasTable());
    EXPECT_EQ(map.Blocks(), 0);
}

TEST(CMapTest, AllocatesItsTableAtTheFirstInsertion)
{
    KeyMap map;
    EXPECT_FALSE(map.RemoveKey(Key{1}));
    EXPECT_FALSE(map.HasTable());
    map[Key{1}] = 2;
    EXPECT_TRUE(map.HasTable());
    EXPECT_EQ(map.Blocks(), 1);
}

TEST(CMapTest, IteratesByBucketAndTheYoungestFirst)
{
    KeyMap map;
    for (const unsigned number : {16U, 0U, 3U, 17U, 34U, 20U, 33U})
    {
        map.SetAt(Key{number}, static_cast<int>(number) * 2);
    }
    EXPECT_THAT(KeysOf(map), ElementsAre(34, 17, 0, 20, 3, 33, 16));
    // An association in the middle of its bucket goes, and comes back as the youngest.
    EXPECT_TRUE(map.RemoveKey(Key{17}));
    EXPECT_THAT(KeysOf(map), ElementsAre(34, 0, 20, 3, 33, 16));
    map[Key{17}] = 34;
    EXPECT_THAT(KeysOf(map), ElementsAre(17, 34, 0, 20, 3, 33, 16));
    // A new value leaves the place alone.
    map.SetAt(Key{0}, 0);
    EXPECT_THAT(KeysOf(map), ElementsAre(17, 34, 0, 20, 3, 33, 16));
}

TEST(CMapTest, HashesPointersByAllButTheirLowestFourBits)
{
#ifdef _MSC_VER
    GTEST_SKIP() << "newer versions of the framework spread pointers in another way";
#else
    EXPECT_EQ(HashKey<void*>(reinterpret_cast<void*>(0x120)), 0x12U);
    EXPECT_EQ(HashKey<void*>(reinterpret_cast<void*>(0xF)), 0U);
    EXPECT_EQ(HashKey<void*>(reinterpret_cast<void*>(0x1234567890)), 0x23456789U);

    CMap<void*, void*, int, int> map;
    std::vector<INT_PTR> order;
    for (const INT_PTR key : {0x10, 0x20, 0x120})
    {
        map[reinterpret_cast<void*>(key)] = 1;
    }
    for (POSITION position = map.GetStartPosition(); position != nullptr;)
    {
        void* key = nullptr;
        int value = 0;
        map.GetNextAssoc(position, key, value);
        order.push_back(reinterpret_cast<INT_PTR>(key));
    }
    EXPECT_THAT(order, ElementsAre(0x120, 0x10, 0x20));
#endif
}

TEST(CMapTest, LooksUpSetsAndRemoves)
{
    CMap<int, int, CString, LPCTSTR> map;
    CString value(L"untouched");
    map.SetAt(1, L"one");
    map[2] = L"two";
    EXPECT_TRUE(map.Lookup(1, value));
    EXPECT_TRUE(value == L"one");
    EXPECT_FALSE(map.Lookup(3, value));
    EXPECT_TRUE(value == L"one");
    EXPECT_TRUE(map[4].IsEmpty());  // made by asking
    EXPECT_EQ(map.GetCount(), 3);
    map.SetAt(1, L"uno");
    EXPECT_EQ(map.GetCount(), 3);
    EXPECT_TRUE(map[1] == L"uno");
    EXPECT_FALSE(map.RemoveKey(3));
    EXPECT_TRUE(map.RemoveKey(1));
    EXPECT_FALSE(map.RemoveKey(1));
    EXPECT_EQ(map.GetCount(), 2);
}

TEST(CMapTest, StartsPlainValuesAsZero)
{
    OpenMap<Key, const Key&, int, int> map;
    map[Key{1}] = 77;
    map[Key{2}] = 78;
    map.RemoveKey(Key{1});
    EXPECT_EQ(map[Key{3}], 0);  // in the storage of the one removed
}

TEST(CMapTest, FreesTableAndBlocksWhenItBecomesEmpty)
{
    KeyMap map;
    for (unsigned number = 0; number < 25; ++number)
    {
        map[Key{number}] = 0;
    }
    EXPECT_EQ(map.Blocks(), 3);
    for (unsigned number = 0; number < 24; ++number)
    {
        EXPECT_TRUE(map.RemoveKey(Key{number}));
    }
    EXPECT_EQ(map.Blocks(), 3);
    EXPECT_TRUE(map.HasTable());
    EXPECT_TRUE(map.RemoveKey(Key{24}));
    EXPECT_EQ(map.Blocks(), 0);
    EXPECT_FALSE(map.HasTable());
    EXPECT_EQ(map.GetStartPosition(), nullptr);
    EXPECT_FALSE(map.RemoveKey(Key{24}));
    map[Key{5}] = 10;
    EXPECT_THAT(KeysOf(map), ElementsAre(5));
}

TEST(CMapTest, DestroysEveryValueOnce)
{
    {
        CMap<int, int, Counted, const Counted&> map;
        for (int i = 0; i < 40; ++i)
        {
            map.SetAt(i, Counted(i));
        }
        EXPECT_EQ(Counted::s_alive, 40);
        map.RemoveKey(7);
        map.RemoveKey(8);
        EXPECT_EQ(Counted::s_alive, 38);
        map.RemoveAll();
        EXPECT_EQ(Counted::s_alive, 0);
        map.SetAt(1, Counted(1));
    }
    EXPECT_EQ(Counted::s_alive, 0);
}

TEST(CMapTest, TakesAnotherNumberOfBuckets)
{
    KeyMap map;
    map.InitHashTable(3, FALSE);
    EXPECT_FALSE(map.HasTable());
    EXPECT_EQ(map.GetHashTableSize(), 3U);
    map.InitHashTable(2);
    EXPECT_TRUE(map.HasTable());
    for (const unsigned number : {1U, 2U, 3U, 4U})
    {
        map[Key{number}] = static_cast<int>(number) * 2;
    }
    EXPECT_THAT(KeysOf(map), ElementsAre(4, 2, 3, 1));
    map.RemoveAll();
    EXPECT_EQ(map.GetHashTableSize(), 2U);
}

TEST(CMapTest, LetsTheAssociationJustReadBeRemoved)
{
    KeyMap map;
    for (unsigned number = 0; number < 50; ++number)
    {
        map[Key{number}] = static_cast<int>(number) * 2;
    }
    int visited = 0;
    for (POSITION position = map.GetStartPosition(); position != nullptr; ++visited)
    {
        Key key = {};
        int value = 0;
        map.GetNextAssoc(position, key, value);
        if (key.number % 2 == 0)
        {
            EXPECT_TRUE(map.RemoveKey(key));
        }
    }
    EXPECT_EQ(visited, 50);
    EXPECT_EQ(map.GetCount(), 25);
}

/// What the map does, told as simply as possible.
class MapModel
{
public:
    void Set(unsigned key)
    {
        auto& bucket = m_buckets[key % 17];
        if (std::find(bucket.begin(), bucket.end(), key) == bucket.end())
        {
            bucket.push_front(key);
            ++m_count;
        }
    }

    bool Remove(unsigned key)
    {
        auto& bucket = m_buckets[key % 17];
        const auto found = std::find(bucket.begin(), bucket.end(), key);
        if (found == bucket.end())
        {
            return false;
        }
        bucket.erase(found);
        --m_count;
        return true;
    }

    std::vector<unsigned> Keys() const
    {
        std::vector<unsigned> keys;
        for (const auto& bucket : m_buckets)
        {
            keys.insert(keys.end(), bucket.begin(), bucket.end());
        }
        return keys;
    }

    INT_PTR Count() const { return m_count; }

private:
    std::list<unsigned> m_buckets[17];
    INT_PTR m_count = 0;
};

TEST(CMapTest, DoesAsItsModelDoes)
{
    std::mt19937 random(20240502);
    KeyMap map;
    MapModel model;
    for (int step = 0; step < 30000; ++step)
    {
        SCOPED_TRACE(step);
        const unsigned number = std::uniform_int_distribution<unsigned>(0, 150)(random);
        const int chance = step / 1000 % 2 == 0 ? 60 : 25;
        if (std::uniform_int_distribution<int>(0, 99)(random) < chance)
        {
            map.SetAt(Key{number}, static_cast<int>(number) * 2);
            model.Set(number);
        }
        else
        {
            ASSERT_EQ(map.RemoveKey(Key{number}) != FALSE, model.Remove(number));
        }
        ASSERT_EQ(map.GetCount(), model.Count());
        ASSERT_EQ(map.HasTable(), model.Count() != 0);
        if (step % 50 == 0)
        {
            ASSERT_EQ(KeysOf(map), model.Keys());
        }
    }
}
}  // namespace
