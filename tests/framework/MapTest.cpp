#include <afx.h>
#include <afxtempl.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <random>
#include <vector>

#include "framework/CollectionProbes.h"

namespace
{
using quon_test::CountBlocks;
using quon_test::Counted;
using testing::ElementsAre;

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

template <class Key>
UINT HashOf(Key key)
{
    return HashKey<Key>(key);
}

void* Address(UINT_PTR number)
{
    return reinterpret_cast<void*>(number);
}

TEST(CMapTest, HashesIntegersAndPointersByMultiplication)
{
    EXPECT_EQ(HashOf(0), 0U);
    EXPECT_EQ(HashOf(1), 16807U);
    EXPECT_EQ(HashOf(0x10), 268912U);
    EXPECT_EQ(HashOf(127773), 2147480811U);
    // 127774 * 16807 exceeds the modulus.
    EXPECT_EQ(HashOf(127774), 13971U);
    EXPECT_EQ(HashOf(0x7FFFFFFFU), 0U);
    EXPECT_EQ(HashOf(-1), 2147466840U);
    EXPECT_EQ(HashOf(Address(0x10)), 268912U);
    // Of a pointer, the lowest 32 bits.
    EXPECT_EQ(HashOf(Address(0x500000010)), 268912U);
    EXPECT_EQ(HashOf<__int64>(0x500000010), 268912U ^ 84035U);
}

TEST(CMapTest, HashesTextsByTheirCharacters)
{
    const std::wstring wide = L"key";
    const std::string narrow = "key";
    EXPECT_EQ(HashOf(wide.c_str()), HashOf(std::wstring(wide).c_str()));
    EXPECT_NE(HashOf(wide.c_str()), HashOf(L"kez"));
    EXPECT_NE(HashOf(wide.c_str()), HashOf(L"ke"));
    EXPECT_EQ(HashOf(narrow.c_str()), HashOf(std::string(narrow).c_str()));
    EXPECT_NE(HashOf(narrow.c_str()), HashOf("kez"));

    CMap<CString, LPCWSTR, int, int> map;
    map[wide.c_str()] = 7;
    int value = 0;
    EXPECT_TRUE(map.Lookup(std::wstring(wide).c_str(), value));
    EXPECT_EQ(value, 7);
    EXPECT_FALSE(map.Lookup(L"other", value));
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
    int timesEmptied = 0;
    for (int step = 0; step < 30000; ++step)
    {
        SCOPED_TRACE(step);
        const unsigned number = std::uniform_int_distribution<unsigned>(0, 60)(random);
        const int chance = step / 1000 % 2 == 0 ? 60 : 2;
        if (std::uniform_int_distribution<int>(0, 99)(random) < chance)
        {
            map.SetAt(Key{number}, static_cast<int>(number) * 2);
            model.Set(number);
        }
        else
        {
            const bool removed = model.Remove(number);
            ASSERT_EQ(map.RemoveKey(Key{number}) != FALSE, removed);
            timesEmptied += removed && model.Count() == 0 ? 1 : 0;
        }
        ASSERT_EQ(map.GetCount(), model.Count());
        ASSERT_EQ(map.HasTable(), model.Count() != 0);
        if (step % 50 == 0)
        {
            ASSERT_EQ(KeysOf(map), model.Keys());
        }
    }
    EXPECT_GT(timesEmptied, 10);
}
}  // namespace
