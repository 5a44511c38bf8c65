#include "support/QuonPoolAllocator.h"

#include "support/PoolInspection.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <new>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

using namespace quon_test;

namespace
{

struct Node
{
    Node* left;
    Node* right;
    double value;
    char name[24];
};

TEST(QuonPoolAllocator, RoundsElementsUpToPointers)
{
    EXPECT_EQ(QuonPoolAllocator<char>::kElementSize, 16u);
    EXPECT_EQ(QuonPoolAllocator<void*>::kElementSize, 16u);
    EXPECT_EQ(QuonPoolAllocator<Node>::kElementSize, 48u);
    EXPECT_EQ((QuonPoolAllocator<char[17]>::kElementSize), 24u);
    EXPECT_EQ((QuonPoolAllocator<char[2032]>::kElementSize), 2032u);
}

TEST(QuonPoolAllocator, BelongsToOneOwner)
{
    using Allocator = QuonPoolAllocator<Node>;
    static_assert(!std::is_copy_constructible_v<Allocator> && !std::is_copy_assignable_v<Allocator>);
    static_assert(!std::is_move_constructible_v<Allocator> && !std::is_move_assignable_v<Allocator>);
}

TEST(QuonPoolAllocator, TakesNoMemoryBeforeItsFirstElement)
{
    RegionJournal journal;
    journal.SetFail(true);
    QuonPoolAllocator<Node> nodes;
    EXPECT_EQ(nodes.GetCount(), 0u);
    nodes.Free(nullptr);
    nodes.Destroy(nullptr);
    EXPECT_EQ(nodes.GetCount(), 0u);
    EXPECT_TRUE(journal.GetRequests().empty());
}

TEST(QuonPoolAllocator, HandsOutElementsOfTheirOwn)
{
    std::mt19937 random(3);
    QuonPoolAllocator<Node> nodes;
    std::vector<Node*> live;
    std::set<Node*> different;
    for (int i = 0; i < quon_test::Cases(5000); ++i)
    {
        Node* const node = nodes.Allocate();
        ASSERT_EQ(reinterpret_cast<std::uintptr_t>(node) % alignof(Node), 0u);
        ASSERT_TRUE(different.insert(node).second);
        ASSERT_EQ(HeaderOf(node).elementSize, 48u);
        node->value = i;
        live.push_back(node);
        if (random() % 3 == 0)
        {
            const std::size_t index = random() % live.size();
            different.erase(live[index]);
            nodes.Free(live[index]);
            live[index] = live.back();
            live.pop_back();
        }
        ASSERT_EQ(nodes.GetCount(), live.size());
    }
    std::set<double> values;
    for (Node* node : live)
    {
        EXPECT_TRUE(values.insert(node->value).second);
        nodes.Free(node);
    }
    EXPECT_EQ(nodes.GetCount(), 0u);
}

TEST(QuonPoolAllocator, TwoOfThemNeverShareAPage)
{
    QuonPoolAllocator<Node> one;
    QuonPoolAllocator<Node> other;
    std::vector<Node*> ones;
    std::vector<Node*> others;
    std::set<void*> onePages;
    for (int i = 0; i < 500; ++i)
    {
        ones.push_back(one.Allocate());
        others.push_back(other.Allocate());
        onePages.insert(PageOf(ones.back()));
    }
    for (Node* node : others)
    {
        EXPECT_EQ(onePages.count(PageOf(node)), 0u);
    }
    for (int i = 0; i < 500; ++i)
    {
        one.Free(ones[static_cast<std::size_t>(i)]);
        other.Free(others[static_cast<std::size_t>(i)]);
    }
}

TEST(QuonPoolAllocator, KeepsItsNewestPageWhileItLives)
{
    char* newPage = nullptr;
    {
        QuonPoolAllocator<Node> nodes;
        std::vector<Node*> first;
        for (int i = 0; i < 83; ++i)
        {
            first.push_back(nodes.Allocate());
        }
        char* const oldPage = PageOf(first.front());
        EXPECT_EQ(HeaderOf(oldPage).inUse, 84u) << "one element is held back";
        // The next page's element is held back instead, and the old page's last one can be had.
        first.push_back(nodes.Allocate());
        EXPECT_EQ(PageOf(first.back()), oldPage);

        // At the border the new page stays, however often its element comes and goes.
        for (int i = 0; i < 3; ++i)
        {
            Node* const node = nodes.Allocate();
            newPage = PageOf(node);
            EXPECT_NE(newPage, oldPage);
            EXPECT_EQ(HeaderOf(newPage).inUse, 2u);
            nodes.Free(node);
            EXPECT_EQ(HeaderOf(newPage).capacity, 84u);
            EXPECT_EQ(HeaderOf(newPage).inUse, 2u) << "the element that came back is kept for the next request";
        }
        for (Node* node : first)
        {
            EXPECT_EQ(HeaderOf(oldPage).capacity, 84u);
            nodes.Free(node);
        }
        EXPECT_EQ(HeaderOf(oldPage).capacity, 0u) << "older pages return at once";
        EXPECT_EQ(HeaderOf(newPage).inUse, 2u);
    }
    EXPECT_EQ(HeaderOf(newPage).capacity, 0u) << "the newest page returns with its allocator";
}

TEST(QuonPoolAllocator, KeepsTheElementThatCameBackLast)
{
    QuonPoolAllocator<Node> nodes;
    Node* const one = nodes.Allocate();
    Node* const other = nodes.Allocate();
    const std::uint32_t inUse = HeaderOf(PageOf(one)).inUse;
    nodes.Free(one);
    EXPECT_EQ(HeaderOf(PageOf(one)).inUse, inUse) << "kept";
    EXPECT_EQ(nodes.GetCount(), 1u);
    nodes.Free(other);
    EXPECT_EQ(HeaderOf(PageOf(one)).inUse, inUse - 1) << "only one is kept";
    EXPECT_EQ(nodes.GetCount(), 0u);
    EXPECT_EQ(nodes.Allocate(), one);
    EXPECT_EQ(nodes.Allocate(), other);
    EXPECT_EQ(HeaderOf(PageOf(one)).inUse, inUse);
    nodes.Free(one);
    nodes.Free(other);
}

struct Counted
{
    explicit Counted(int& count, bool fail = false) : m_count(count)
    {
        if (fail)
        {
            throw std::runtime_error("no");
        }
        ++m_count;
    }
    ~Counted() { --m_count; }
    int& m_count;
};

TEST(QuonPoolAllocator, ConstructsAndDestroys)
{
    QuonPoolAllocator<Counted> pool;
    int count = 0;
    Counted* const one = pool.Construct(count);
    Counted* const two = pool.Construct(count, false);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(pool.GetCount(), 2u);
    pool.Destroy(one);
    EXPECT_EQ(count, 1);
    EXPECT_THROW(pool.Construct(count, true), std::runtime_error);
    EXPECT_EQ(pool.GetCount(), 1u);
    EXPECT_EQ(pool.Construct(count), one) << "the element of the failed construction was lost";
    pool.Destroy(two);
    pool.Destroy(one);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(pool.GetCount(), 0u);

    QuonPoolAllocator<std::string> texts;
    std::string* const text = texts.Construct(std::size_t{40}, 'x');
    EXPECT_EQ(*text, std::string(40, 'x'));
    texts.Destroy(text);
}

TEST(QuonPoolAllocator, ThrowsWhenTheSystemHasNoMemory)
{
    RegionJournal journal;
    QuonPoolAllocator<Node> nodes;
    std::vector<Node*> live;
    journal.SetFail(true);
    // The pages of the regions that are there are used up first.
    try
    {
        for (int i = 0; i < 1000000; ++i)
        {
            live.push_back(nodes.Allocate());
        }
        FAIL() << "nothing was thrown";
    }
    catch (const std::bad_alloc&)
    {
    }
    EXPECT_EQ(nodes.GetCount(), live.size());
    EXPECT_THROW(nodes.Allocate(), std::bad_alloc);
    journal.SetFail(false);
    live.push_back(nodes.Allocate());
    for (Node* node : live)
    {
        nodes.Free(node);
    }
    EXPECT_EQ(nodes.GetCount(), 0u);
}

#if !defined(NDEBUG)
TEST(QuonPoolAllocatorDeathTest, AssertsThatAllElementsCameBack)
{
    EXPECT_DEATH(
        {
            QuonPoolAllocator<Node> nodes;
            nodes.Allocate();
        },
        "elements are still in use");
}
#endif

}  // namespace
