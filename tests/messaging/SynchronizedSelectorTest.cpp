#include "messaging/QuonSynchronizedSelector.h"

#include "messaging/MessagingTestSupport.h"
#include "helpers/AllocationCounter.h"
#include "helpers/Thorough.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

HANDLE AsHandle(std::uintptr_t value)
{
    return reinterpret_cast<HANDLE>(value);
}

// The table never looks at a handler: any address serves, and nothing may be read from it.
QuonServerEventHandler* AsHandler(std::uintptr_t value)
{
    return reinterpret_cast<QuonServerEventHandler*>(value);
}

std::vector<std::uintptr_t> HandlesOf(const QuonSynchronizedSelector& selector)
{
    HANDLE handles[MAXIMUM_WAIT_OBJECTS] = {};
    std::vector<std::uintptr_t> values;
    const DWORD count = selector.GetHandles(handles);
    std::transform(handles, handles + count, std::back_inserter(values),
                   [](HANDLE handle) { return reinterpret_cast<std::uintptr_t>(handle); });
    return values;
}

struct OrderRow
{
    const char* name;
    std::vector<std::uintptr_t> added;
    std::vector<std::uintptr_t> expected;
};

const OrderRow kOrders[] = {
    {"nothing", {}, {}},
    {"one", {0x44}, {0x44}},
    {"the youngest of a bucket first", {0x10, 0x20, 0x120}, {0x120, 0x10, 0x20}},
    {"by bucket, not by addition", {0x30, 0x20, 0x10}, {0x10, 0x20, 0x30}},
    {"the low four bits do not count", {0x10, 0x14, 0x18, 0x1c}, {0x1c, 0x18, 0x14, 0x10}},
    {"the last bucket and the first", {0x100, 0x110, 0x0}, {0x0, 0x110, 0x100}},
    {"only 32 bits of the quotient", {0x1000000000, 0x10, 0x1000000020}, {0x1000000000, 0x10, 0x1000000020}},
    {"the largest handle", {0x10, ~std::uintptr_t{0}, 0x0}, {0x0, ~std::uintptr_t{0}, 0x10}},
};

TEST(SynchronizedSelector, HandsOutTheHandlesInTheOrderOfItsBuckets)
{
    for (const OrderRow& row : kOrders)
    {
        SCOPED_TRACE(row.name);
        QuonSynchronizedSelector selector;
        for (const std::uintptr_t handle : row.added)
        {
            EXPECT_EQ(selector.Add(AsHandle(handle), AsHandler(handle + 1)), kQuonServerOk);
        }
        EXPECT_EQ(HandlesOf(selector), row.expected);
    }
}

TEST(SynchronizedSelector, KeepsTheFirstHandlerOfAHandle)
{
    QuonSynchronizedSelector selector;
    EXPECT_EQ(selector.Add(AsHandle(0x10), AsHandler(1)), 0u);
    EXPECT_EQ(selector.Add(AsHandle(0x10), AsHandler(2)), 1000001u);
    EXPECT_THAT(HandlesOf(selector), ElementsAre(0x10u));
    QuonServerEventHandler* handler = nullptr;
    EXPECT_EQ(selector.Remove(AsHandle(0x10), handler), 0u);
    EXPECT_EQ(handler, AsHandler(1));
}

TEST(SynchronizedSelector, LeavesTheOutValueAloneForAnUnknownHandle)
{
    QuonSynchronizedSelector selector;
    QuonServerEventHandler* handler = AsHandler(77);
    EXPECT_EQ(selector.Remove(AsHandle(0x10), handler), 1000001u);
    EXPECT_EQ(handler, AsHandler(77));
    EXPECT_EQ(selector.Add(AsHandle(0x10), AsHandler(1)), 0u);
    // The same bucket, another handle.
    EXPECT_EQ(selector.Remove(AsHandle(0x120), handler), 1000001u);
    EXPECT_EQ(handler, AsHandler(77));
    EXPECT_THAT(HandlesOf(selector), ElementsAre(0x10u));
}

TEST(SynchronizedSelector, FindsARecordWithItsHandler)
{
    QuonSynchronizedSelector selector;
    QuonSynchronizedSelector::HandleRecord record = {false, AsHandler(77)};
    EXPECT_FALSE(selector.Find(AsHandle(0x10), record));
    EXPECT_FALSE(record.active);
    EXPECT_EQ(record.handler, AsHandler(77));
    EXPECT_EQ(selector.Add(AsHandle(0x10), AsHandler(1)), 0u);
    EXPECT_TRUE(selector.Find(AsHandle(0x10), record));
    EXPECT_TRUE(record.active);
    EXPECT_EQ(record.handler, AsHandler(1));
}

TEST(SynchronizedSelector, WorksAgainAfterTheLastHandleWasRemoved)
{
    QuonSynchronizedSelector selector;
    for (std::uintptr_t round = 1; round <= 3; ++round)
    {
        SCOPED_TRACE(round);
        QuonServerEventHandler* handler = nullptr;
        EXPECT_EQ(selector.Add(AsHandle(0x10), AsHandler(round)), 0u);
        EXPECT_EQ(selector.Add(AsHandle(0x20), AsHandler(round)), 0u);
        EXPECT_EQ(selector.Remove(AsHandle(0x10), handler), 0u);
        EXPECT_EQ(handler, AsHandler(round));
        EXPECT_EQ(selector.Remove(AsHandle(0x20), handler), 0u);
        EXPECT_THAT(HandlesOf(selector), IsEmpty());
    }
}

TEST(SynchronizedSelector, TakesMemoryWithTheFirstHandleAndReturnsItWithTheLast)
{
    const AllocationCounter counter;
    QuonSynchronizedSelector selector;
    EXPECT_EQ(counter.GetTaken(), 0);
    selector.Add(AsHandle(0x10), AsHandler(1));
    selector.Add(AsHandle(0x20), AsHandler(1));
    EXPECT_GT(counter.GetTaken(), 0);
    EXPECT_GT(counter.GetLiveCount(), 0u);
    QuonServerEventHandler* handler = nullptr;
    selector.Remove(AsHandle(0x10), handler);
    EXPECT_GT(counter.GetLiveCount(), 0u);
    selector.Remove(AsHandle(0x20), handler);
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST(SynchronizedSelector, ReturnsItsMemoryAtItsEnd)
{
    const AllocationCounter counter;
    {
        QuonSynchronizedSelector selector;
        for (std::uintptr_t i = 1; i <= 64; ++i)
        {
            selector.Add(AsHandle(i * 4), AsHandler(i));
        }
        EXPECT_GT(counter.GetLiveCount(), 0u);
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST(SynchronizedSelector, HoldsAsManyAsAWaitCanTake)
{
    QuonSynchronizedSelector selector;
    for (std::uintptr_t i = 1; i <= 64; ++i)
    {
        EXPECT_EQ(selector.Add(AsHandle(i * 4), AsHandler(i)), 0u) << i;
    }
    std::vector<std::uintptr_t> handles = HandlesOf(selector);
    ASSERT_EQ(handles.size(), 64u);
    EXPECT_EQ(selector.GetCount(), 64u);
    std::sort(handles.begin(), handles.end());
    for (std::uintptr_t i = 1; i <= 64; ++i)
    {
        EXPECT_EQ(handles[i - 1], i * 4);
    }
}

// The table as it is meant: 17 buckets, each with its youngest handle first.
class Model
{
public:
    bool Add(std::uintptr_t handle, std::uintptr_t handler)
    {
        if (!m_handlers.emplace(handle, handler).second)
        {
            return false;
        }
        std::vector<std::uintptr_t>& bucket = m_buckets[handle / 16 % 17];
        bucket.insert(bucket.begin(), handle);
        return true;
    }

    bool Remove(std::uintptr_t handle, std::uintptr_t& handler)
    {
        const auto found = m_handlers.find(handle);
        if (found == m_handlers.end())
        {
            return false;
        }
        handler = found->second;
        m_handlers.erase(found);
        std::vector<std::uintptr_t>& bucket = m_buckets[handle / 16 % 17];
        bucket.erase(std::find(bucket.begin(), bucket.end(), handle));
        return true;
    }

    std::vector<std::uintptr_t> Handles() const
    {
        std::vector<std::uintptr_t> handles;
        for (const std::vector<std::uintptr_t>& bucket : m_buckets)
        {
            handles.insert(handles.end(), bucket.begin(), bucket.end());
        }
        return handles;
    }

private:
    std::map<std::uintptr_t, std::uintptr_t> m_handlers;
    std::vector<std::uintptr_t> m_buckets[17];
};

TEST(SynchronizedSelector, AgreesWithAModelOverRandomChanges)
{
    std::mt19937 random(20240817);
    QuonSynchronizedSelector selector;
    Model model;
    for (std::uintptr_t step = 1; step <= static_cast<std::uintptr_t>(quon_test::Cases(20000)); ++step)
    {
        SCOPED_TRACE(step);
        // 60 different handles: never more than a wait can take.
        const std::uintptr_t handle = random() % 60 * 4;
        if (random() % 2 == 0)
        {
            ASSERT_EQ(selector.Add(AsHandle(handle), AsHandler(step)),
                      model.Add(handle, step) ? kQuonServerOk : kQuonServerRefused);
        }
        else
        {
            QuonServerEventHandler* handler = AsHandler(7);
            std::uintptr_t expected = 7;
            ASSERT_EQ(model.Remove(handle, expected) ? kQuonServerOk : kQuonServerRefused,
                      selector.Remove(AsHandle(handle), handler));
            ASSERT_EQ(handler, AsHandler(expected));
        }
        ASSERT_EQ(HandlesOf(selector), model.Handles());
    }
}

}  // namespace
