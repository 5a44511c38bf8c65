// The block pool beside a model of it.
#include "support/BlockPool.h"

#include "support/PoolInspection.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <list>
#include <map>
#include <random>
#include <utility>
#include <vector>

using namespace quon_test;

namespace
{

/// The pool as it is told, with containers: the free list in its order, the elements in use of each page.
class PoolModel
{
public:
    void AddPage(void* page)
    {
        const std::vector<void*> elements = ElementsOf(page);
        m_free.insert(m_free.begin(), elements.begin(), elements.end());
        m_inUse[PageOf(page)] = 0;
    }

    void* Allocate()
    {
        void* const element = m_free.front();
        m_free.pop_front();
        m_inUse[PageOf(element)] += 1;
        return element;
    }

    void Free(void* element)
    {
        m_free.push_front(element);
        char* const page = PageOf(element);
        m_inUse[page] -= 1;
        if (m_inUse[page] == 0)
        {
            m_inUse.erase(page);
            m_free.remove_if([page](void* other) { return PageOf(other) == page; });
        }
    }

    void ExpectSame(void* head, std::size_t elementSize) const
    {
        ASSERT_EQ(Walk(head), std::vector<void*>(m_free.begin(), m_free.end()));
        for (const auto& [page, inUse] : m_inUse)
        {
            const PageHeader header = HeaderOf(page);
            ASSERT_EQ(header.inUse, inUse);
            ASSERT_EQ(header.elementSize, (std::max)(elementSize, std::size_t{16}));
            ASSERT_EQ(header.capacity, (PageSize() - kElementsOffset) / header.elementSize);
        }
    }

    bool IsEmpty() const { return m_free.empty() && m_inUse.empty(); }

private:
    std::list<void*> m_free;
    std::map<char*, std::uint32_t> m_inUse;
};

/// A user of the pool: one list, its model, and elements in use that hold a pattern of their own.
struct User
{
    std::size_t elementSize;
    void* head = nullptr;
    PoolModel model;
    std::vector<std::pair<void*, unsigned char>> live;

    void Allocate(unsigned char pattern)
    {
        if (head == nullptr)
        {
            model.AddPage(AddPage(&head, elementSize));
        }
        void* const element = PoolAllocate(&head);
        ASSERT_EQ(element, model.Allocate());
        std::memset(element, pattern, elementSize);
        live.emplace_back(element, pattern);
    }

    void Free(std::size_t index)
    {
        const auto [element, pattern] = live[index];
        const auto* const bytes = static_cast<const unsigned char*>(element);
        const auto held = pattern;
        ASSERT_TRUE(std::all_of(bytes, bytes + elementSize, [held](unsigned char byte) { return byte == held; }))
            << "an element in use was written to";
        live[index] = live.back();
        live.pop_back();
        PoolFree(&head, element);
        model.Free(element);
    }
};

TEST(BlockPool, AgreesWithAModelOnRandomUseOfSeveralSizes)
{
    const RegionJournal journal;
    std::mt19937 random(90210);
    std::vector<User> users;
    for (const std::size_t size : {5, 16, 16, 17, 48, 128, 1000, 4072})
    {
        users.push_back({size, nullptr, {}, {}});
    }
    std::size_t most = 0;
    for (int step = 0; step < quon_test::Cases(60000); ++step)
    {
        // Waves of growth and decline, so that pages and regions come and go.
        const bool growing = step / 6000 % 2 == 0;
        User& user = users[random() % users.size()];
        if (user.live.empty() || random() % 10 < (growing ? 7u : 3u))
        {
            ASSERT_NO_FATAL_FAILURE(user.Allocate(static_cast<unsigned char>(random())));
        }
        else
        {
            ASSERT_NO_FATAL_FAILURE(user.Free(random() % user.live.size()));
        }
        if (step % 500 == 0)
        {
            for (const User& each : users)
            {
                ASSERT_NO_FATAL_FAILURE(each.model.ExpectSame(each.head, each.elementSize));
            }
        }
        most = (std::max)(most, user.live.size());
    }
    EXPECT_GT(most, 300u);
    for (User& user : users)
    {
        while (!user.live.empty())
        {
            ASSERT_NO_FATAL_FAILURE(user.Free(random() % user.live.size()));
        }
        EXPECT_EQ(user.head, nullptr);
        EXPECT_TRUE(user.model.IsEmpty());
    }
    EXPECT_GT(journal.GetReleases().size(), 3u) << "the test did not get as far as giving regions back";
}

}  // namespace
