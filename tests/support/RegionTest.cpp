// How regions come from and go to the system. The pool's state is the process's: these tests run in a program of their
// own and in this order, and each but the last leaves one region behind, all of whose pages are free.
#include "support/BlockPool.h"

#include "support/PoolInspection.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>

using namespace quon_test;

namespace
{

/// Elements so large that each has a page of its own: taking and freeing one takes and returns a page.
constexpr std::size_t kWholePage = 4000;

class BlockPoolRegions : public testing::Test
{
protected:
    /// @return the only element of a page newly taken; null when none is to be had.
    void* TakePage() { return AddPage(&m_head, kWholePage) != nullptr ? PoolAllocate(&m_head) : nullptr; }

    std::vector<void*> TakePages(std::size_t count)
    {
        std::vector<void*> pages;
        for (std::size_t i = 0; i < count; ++i)
        {
            pages.push_back(TakePage());
        }
        return pages;
    }

    void ReturnPages(const std::vector<void*>& pages) { FreeAll(&m_head, pages); }

    RegionJournal m_journal;
    void* m_head = nullptr;
};

TEST_F(BlockPoolRegions, ComeWithTheFirstPageAndAreHandedOutInAddressOrder)
{
    const SYSTEM_INFO system = System();
    ASSERT_EQ(system.dwPageSize, 4096u);
    ASSERT_EQ(system.dwAllocationGranularity, 65536u);
    ASSERT_TRUE(m_journal.GetRequests().empty());
    const std::vector<void*> pages = TakePages(kRegionPages);
    ASSERT_EQ(m_journal.GetRequests().size(), 1u);
    const RegionJournal::Request& request = m_journal.GetRequests().front();
    EXPECT_EQ(request.address, nullptr);
    EXPECT_EQ(request.size, 16u * 4096u);
    EXPECT_EQ(request.type, static_cast<DWORD>(MEM_COMMIT | MEM_RESERVE));
    EXPECT_EQ(request.protection, static_cast<DWORD>(PAGE_EXECUTE_READWRITE));
    for (std::size_t i = 0; i < pages.size(); ++i)
    {
        EXPECT_EQ(PageOf(pages[i]), static_cast<char*>(request.result) + i * 4096) << i;
        EXPECT_EQ(RegionOf(pages[i]), request.result) << i;
    }
    ReturnPages(pages);
}

TEST_F(BlockPoolRegions, StayWhenTheyAreTheLast)
{
    for (int round = 0; round < 3; ++round)
    {
        const std::vector<void*> pages = TakePages(kRegionPages);
        ReturnPages(pages);
    }
    EXPECT_TRUE(m_journal.GetRequests().empty());
    EXPECT_TRUE(m_journal.GetReleases().empty());
}

TEST_F(BlockPoolRegions, ComeOneByOneWhenAllPagesAreInUse)
{
    std::vector<void*> pages = TakePages(kRegionPages);
    EXPECT_EQ(m_journal.GetRequests().size(), 0u);
    for (std::size_t i = 1; i <= 3; ++i)
    {
        const std::vector<void*> more = TakePages(kRegionPages);
        EXPECT_EQ(m_journal.GetRequests().size(), i);
        EXPECT_EQ(RegionOf(more.front()), m_journal.GetRequests().back().result);
        EXPECT_EQ(RegionOf(more.back()), m_journal.GetRequests().back().result);
        pages.insert(pages.end(), more.begin(), more.end());
    }
    ReturnPages(pages);
    EXPECT_EQ(m_journal.GetReleases().size(), 3u);
}

TEST_F(BlockPoolRegions, GoWhenTheyBecomeEmptyFirst)
{
    for (const bool olderFirst : {true, false})
    {
        SCOPED_TRACE(olderFirst);
        const std::size_t releases = m_journal.GetReleases().size();
        std::vector<void*> first = TakePages(kRegionPages);
        std::vector<void*> second = TakePages(kRegionPages);
        if (!olderFirst)
        {
            first.swap(second);
        }
        void* const last = first.back();
        first.pop_back();
        ReturnPages(first);
        EXPECT_EQ(m_journal.GetReleases().size(), releases);
        PoolFree(&m_head, last);
        ASSERT_EQ(m_journal.GetReleases().size(), releases + 1);
        EXPECT_EQ(m_journal.GetReleases().back().address, RegionOf(last));
        EXPECT_EQ(m_journal.GetReleases().back().size, 0u);
        EXPECT_EQ(m_journal.GetReleases().back().type, static_cast<DWORD>(MEM_RELEASE));
        EXPECT_EQ(m_head, nullptr);

        ReturnPages(second);
        EXPECT_EQ(m_journal.GetReleases().size(), releases + 1) << "the last region stays";

        // No page of the region that went is handed out any more.
        const std::size_t requests = m_journal.GetRequests().size();
        const std::vector<void*> again = TakePages(kRegionPages);
        for (void* page : again)
        {
            EXPECT_EQ(RegionOf(page), RegionOf(second.front()));
        }
        EXPECT_EQ(m_journal.GetRequests().size(), requests);
        ReturnPages(again);
    }
}

TEST_F(BlockPoolRegions, GoFromWhereverTheirPagesAreAmongTheFreeOnes)
{
    // The pages of the region that goes: all behind, all in front, between those of the other one; one page stays out.
    for (int order = 0; order < 4; ++order)
    {
        SCOPED_TRACE(order);
        const std::size_t releases = m_journal.GetReleases().size();
        const std::vector<void*> going = TakePages(kRegionPages);
        const std::vector<void*> staying = TakePages(kRegionPages);
        ASSERT_NE(RegionOf(going.front()), RegionOf(staying.front()));
        std::vector<void*> returned;
        for (std::size_t i = 0; i + 1 < kRegionPages; ++i)
        {
            const bool goingFirst = order == 0 || (order == 3 && i % 2 == 0);
            returned.push_back(goingFirst ? going[i] : staying[i]);
            returned.push_back(goingFirst ? staying[i] : going[i]);
        }
        if (order == 1)
        {
            std::stable_partition(returned.begin(), returned.end(),
                                  [&](void* page) { return RegionOf(page) == RegionOf(staying.front()); });
        }
        if (order == 2)
        {
            std::stable_partition(returned.begin(), returned.end(),
                                  [&](void* page) { return RegionOf(page) == RegionOf(going.front()); });
        }
        ReturnPages(returned);
        EXPECT_EQ(m_journal.GetReleases().size(), releases);
        PoolFree(&m_head, going.back());
        ASSERT_EQ(m_journal.GetReleases().size(), releases + 1);
        EXPECT_EQ(m_journal.GetReleases().back().address, RegionOf(going.back()));

        // What is left are the pages of the other one, last returned first.
        std::vector<void*> expected;
        std::copy_if(returned.rbegin(), returned.rend(), std::back_inserter(expected),
                     [&](void* page) { return RegionOf(page) == RegionOf(staying.front()); });
        const std::vector<void*> again = TakePages(kRegionPages - 1);
        EXPECT_EQ(again, expected);
        EXPECT_EQ(m_journal.GetReleases().size(), releases + 1);
        ReturnPages(again);
        PoolFree(&m_head, staying.back());
    }
}

TEST_F(BlockPoolRegions, AreNotCountedWhenTheSystemHasNone)
{
    const std::vector<void*> pages = TakePages(kRegionPages);
    ASSERT_TRUE(m_journal.GetRequests().empty());
    m_journal.SetFail(true);
    void* list = nullptr;
    std::size_t size = 48;
    for (std::size_t i = 1; i <= 3; ++i)
    {
        EXPECT_EQ(PoolAddPage(&list, &size), nullptr);
        EXPECT_EQ(list, nullptr);
        EXPECT_EQ(size, 48u);
        EXPECT_EQ(m_journal.GetRequests().size(), i) << "each time it is tried again";
    }
    // A list that holds elements stays as it is.
    PoolFree(&m_head, pages[0]);
    AddPage(&list, 48);
    void* const kept = PoolAllocate(&list);
    const std::vector<void*> before = Walk(list);
    EXPECT_EQ(AddPage(&list, 48), nullptr);
    EXPECT_EQ(Walk(list), before);
    PoolFree(&list, kept);
    EXPECT_EQ(list, nullptr);
    ReturnPages({pages.begin() + 1, pages.end()});
    EXPECT_TRUE(m_journal.GetReleases().empty()) << "still the only region, so it stays";

    m_journal.SetFail(false);
    const std::vector<void*> more = TakePages(kRegionPages + 1);
    EXPECT_NE(more.back(), nullptr);
    ReturnPages(more);
    EXPECT_EQ(m_journal.GetReleases().size(), 1u);
}

TEST_F(BlockPoolRegions, BalanceOnRandomUse)
{
    std::mt19937 random(1);
    std::vector<void*> live;
    std::map<void*, std::size_t> inUse;
    std::size_t regions = 1;
    std::size_t most = 0;
    for (int step = 0; step < quon_test::Cases(40000); ++step)
    {
        const bool growing = step / 4000 % 2 == 0;
        if (live.empty() || random() % 10 < (growing ? 6u : 4u))
        {
            const std::size_t requests = m_journal.GetRequests().size();
            void* const page = TakePage();
            ASSERT_NE(page, nullptr);
            regions += m_journal.GetRequests().size() - requests;
            ++inUse[RegionOf(page)];
            live.push_back(page);
        }
        else
        {
            const std::size_t index = random() % live.size();
            void* const page = live[index];
            live[index] = live.back();
            live.pop_back();
            const std::size_t releases = m_journal.GetReleases().size();
            PoolFree(&m_head, page);
            const bool goes = --inUse[RegionOf(page)] == 0 && regions >= 2;
            ASSERT_EQ(m_journal.GetReleases().size(), releases + (goes ? 1u : 0u)) << step;
            if (goes)
            {
                ASSERT_EQ(m_journal.GetReleases().back().address, RegionOf(page));
                regions -= 1;
            }
        }
        most = (std::max)(most, regions);
    }
    EXPECT_GT(most, 20u);
    ReturnPages(live);
    EXPECT_EQ(m_journal.GetRequests().size(), m_journal.GetReleases().size()) << "one before, one after";
}

TEST_F(BlockPoolRegions, ServeElementsOfSeveralSizes)
{
    void* sixteens = nullptr;
    void* large = nullptr;
    std::vector<void*> smalls;
    std::vector<void*> larges;
    for (std::size_t i = 0; i < kRegionPages; ++i)
    {
        AddPage(&sixteens, 16);
        AddPage(&large, 1000);
    }
    ASSERT_EQ(m_journal.GetRequests().size(), 1u);
    smalls = AllocateAll(&sixteens);
    larges = AllocateAll(&large);
    std::shuffle(smalls.begin(), smalls.end(), std::mt19937(1));
    std::shuffle(larges.begin(), larges.end(), std::mt19937(2));
    FreeAll(&sixteens, smalls);
    EXPECT_TRUE(m_journal.GetReleases().empty()) << "both regions hold pages of both sizes";
    FreeAll(&large, larges);
    EXPECT_EQ(m_journal.GetReleases().size(), 1u);
    EXPECT_EQ(sixteens, nullptr);
    EXPECT_EQ(large, nullptr);
}

TEST_F(BlockPoolRegions, StayForGoodWithAPageThatHoldsNoElement)
{
    // Nothing can free such a page.
    void* const lost = AddPage(&m_head, 5000);
    ASSERT_NE(lost, nullptr);
    EXPECT_EQ(m_head, nullptr);
    const std::vector<void*> pages = TakePages(kRegionPages - 1 + kRegionPages);
    ReturnPages(pages);
    ASSERT_EQ(m_journal.GetReleases().size(), 1u);
    EXPECT_NE(m_journal.GetReleases().front().address, RegionOf(lost));
    ReturnPages(TakePages(kRegionPages - 1));
    EXPECT_EQ(m_journal.GetReleases().size(), 1u);
}

}  // namespace
