// The same over and over, on several threads, for a second or, in a thorough run, for as long as QUON_SOAK_SECONDS
// says. What went in must have come out, and nothing may stay on the heap.
#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <memory>
#include <thread>
#include <vector>

#include "messaging/QuonMessageQueue.h"
#include "messaging/ServerThreadTestSupport.h"
#include "reliability/NthFailure.h"
#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"
#include "support/QuonPoolAllocator.h"
#include "helpers/Thorough.h"

namespace
{

using namespace quon_test;

class Soak : public testing::Test
{
protected:
    bool IsOver() const { return ::GetTickCount64() >= m_end; }

    ULONGLONG m_end = ::GetTickCount64() + SoakMilliseconds();
    HardLimit m_limit{SoakMilliseconds() + kHangLimit};
};

std::atomic<long long> liveMessages = 0;

class CountedMessage final : public QuonMessage
{
public:
    CountedMessage(unsigned from, unsigned place) : producer(from), number(place) { ++liveMessages; }
    CountedMessage(const CountedMessage&) = delete;
    CountedMessage& operator=(const CountedMessage&) = delete;
    ~CountedMessage() override { --liveMessages; }

    const unsigned producer;
    const unsigned number;
};

// Posts at most this many ahead of the consumer.
constexpr long long kMostOnTheWay = 2000;

// What the first thread that throws, locks or grows something keeps is taken once.
constexpr std::size_t kBlocksKept = 32;

TEST_F(Soak, MessagesOfSeveralProducersArriveWholeAndInOrder)
{
    constexpr unsigned kProducers = 3;
    const std::size_t blocks = BlocksInUse();
    // All that the soak itself takes is gone at the end of this block.
    {
        liveMessages = 0;
        QuonMessageQueue queue(nullptr, nullptr);
        std::atomic<unsigned long long> posted = 0;
        std::atomic<bool> isEnding = false;
        std::vector<std::thread> producers;
        for (unsigned producer = 0; producer < kProducers; ++producer)
        {
            producers.emplace_back([&, producer] {
                for (unsigned number = 0; !isEnding; ++number)
                {
                    while (liveMessages > kMostOnTheWay && !isEnding)
                    {
                        ::SwitchToThread();
                    }
                    auto message = std::make_unique<CountedMessage>(producer, number);
                    if (queue.Post(message.get()) != kQuonServerOk)
                    {
                        ADD_FAILURE() << "a message was refused";
                        return;
                    }
                    message.release();
                    ++posted;
                }
            });
        }
        std::vector<unsigned> next(kProducers, 0);
        unsigned long long taken = 0;
        const auto takeOne = [&] {
            QuonMessage* message = nullptr;
            if (queue.GetNext(&message) != kQuonServerOk)
            {
                return false;
            }
            const std::unique_ptr<CountedMessage> owned(static_cast<CountedMessage*>(message));
            EXPECT_EQ(owned->number, next[owned->producer]);
            ++next[owned->producer];
            ++taken;
            return true;
        };
        // On a machine that is busy with other things the time may be over before anything has arrived.
        while ((taken <= 100 || !IsOver()) && !HasFailure())
        {
            takeOne();
        }
        isEnding = true;
        for (std::thread& producer : producers)
        {
            producer.join();
        }
        while (takeOne())
        {
        }
        EXPECT_EQ(taken, posted);
        EXPECT_EQ(liveMessages, 0);
    }
    EXPECT_LE(BlocksInUse(), blocks + kBlocksKept);
}

class CountingHandler final : public QuonServerEventHandler
{
public:
    explicit CountingHandler(HANDLE handle) : QuonServerEventHandler(0), m_handle(handle) {}
    HANDLE GetHandle() override { return m_handle; }
    void OnSignaled() override { ++signals; }

    std::atomic<unsigned long long> signals = 0;

private:
    HANDLE m_handle;
};

TEST_F(Soak, ServerThreadsStartServeAndEnd)
{
    unsigned long long rounds = 0;
    std::size_t blocks = 0;
    // The blocks are counted after the warm-up, and some rounds come after that however long they take.
    constexpr unsigned long long kWarmUp = 5;
    for (; (rounds < 2 * kWarmUp || !IsOver()) && !HasFailure(); ++rounds)
    {
        {
            TestServer server;
            ASSERT_EQ(server.Start(), kQuonServerOk);
            std::vector<std::unique_ptr<Event>> events;
            std::vector<std::unique_ptr<CountingHandler>> handlers;
            for (int i = 0; i < 8; ++i)
            {
                events.push_back(std::make_unique<Event>(false));
                handlers.push_back(std::make_unique<CountingHandler>(events.back()->Handle()));
                ASSERT_EQ(server.AddHandler(handlers.back().get()), kQuonServerOk);
            }
            for (unsigned long long signal = 1; signal <= 5; ++signal)
            {
                for (std::size_t i = 0; i < events.size(); ++i)
                {
                    events[i]->Set();
                    while (handlers[i]->signals < signal)
                    {
                        ::SwitchToThread();
                    }
                }
            }
            for (const auto& handler : handlers)
            {
                ASSERT_EQ(server.RemoveHandler(handler.get()), kQuonServerOk);
            }
            ASSERT_TRUE(server.Settle());
            for (const auto& handler : handlers)
            {
                ASSERT_EQ(handler->signals, 5u);
            }
            const HANDLE thread = server.GetThreadHandle();
            server.End();
            ::CloseHandle(thread);
        }
        if (rounds + 1 == kWarmUp)
        {
            blocks = BlocksInUse();
        }
    }
    EXPECT_GE(rounds, 2 * kWarmUp);
    EXPECT_LE(BlocksInUse(), blocks + 8) << "over " << rounds << " rounds";
}

std::atomic<long long> regionsHeld = 0;
std::atomic<unsigned long long> regionsTaken = 0;

LPVOID WINAPI CountingAlloc(LPVOID address, SIZE_T size, DWORD type, DWORD protection)
{
    void* const region = ::VirtualAlloc(address, size, type, protection);
    if (region != nullptr)
    {
        ++regionsHeld;
        ++regionsTaken;
    }
    return region;
}

BOOL WINAPI CountingFree(LPVOID address, SIZE_T size, DWORD type)
{
    const BOOL isFreed = ::VirtualFree(address, size, type);
    if (isFreed != FALSE)
    {
        --regionsHeld;
    }
    return isFreed;
}

// Its pages come from the system and not from the heap: regions taken are counted against regions given back. The pool
// keeps one for the next request.
TEST_F(Soak, ThePoolGivesBackWhatItTook)
{
    const ImportPatch<decltype(&::VirtualAlloc)> taking(L"QuonWin32Utils.dll", "VirtualAlloc", &CountingAlloc);
    const ImportPatch<decltype(&::VirtualFree)> giving(L"QuonWin32Utils.dll", "VirtualFree", &CountingFree);
    unsigned long long rounds = 0;
    for (; rounds == 0 || !IsOver(); ++rounds)
    {
        QuonPoolAllocator<long long> pool;
        std::deque<long long*> numbers;
        for (long long i = 0; i < 20000; ++i)
        {
            numbers.push_back(pool.Construct(i));
            if (i % 3 == 0)
            {
                pool.Destroy(numbers.front());
                numbers.pop_front();
            }
        }
        long long expected = *numbers.front();
        for (long long* const number : numbers)
        {
            ASSERT_EQ(*number, expected);
            ++expected;
            pool.Destroy(number);
        }
        ASSERT_GT(regionsHeld, 0);
    }
    // Each round needs two thirds of 20,000 elements of 16 bytes at once: more than three regions of 64 KB.
    EXPECT_GT(regionsTaken, 3 * rounds);
    EXPECT_LE(regionsHeld, 1);
}

}  // namespace
