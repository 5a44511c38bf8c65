#include "messaging/QuonMessageQueue.h"

#include "messaging/MessagingTestSupport.h"
#include "messaging/QuonCallback.h"
#include "helpers/AllocationCounter.h"
#include "helpers/FailingAllocation.h"
#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <deque>
#include <memory>
#include <new>
#include <random>
#include <thread>
#include <utility>
#include <vector>

using namespace quon_test;

namespace
{

class Message : public QuonMessage
{
public:
    explicit Message(int producer = 0, int number = 0) : m_producer(producer), m_number(number) { ++s_living; }
    ~Message() override { --s_living; }
    Message(const Message&) = delete;
    Message& operator=(const Message&) = delete;

    int Producer() const { return m_producer; }
    int Number() const { return m_number; }
    static int Living() { return s_living; }

private:
    static inline std::atomic<int> s_living;
    int m_producer;
    int m_number;
};

class CountingCallback : public QuonCallback
{
public:
    BOOL Invoke() override
    {
        ++m_calls;
        m_thread = ::GetCurrentThreadId();
        return TRUE;
    }

    int Calls() const { return m_calls; }
    DWORD Thread() const { return m_thread; }

private:
    int m_calls = 0;
    DWORD m_thread = 0;
};

void RunPendingCalls()
{
    ::SleepEx(0, TRUE);
}

TEST(MessageQueue, TellsThatItIsEmptyAndThatItIsClosed)
{
    QuonMessageQueue queue(nullptr, nullptr);
    Message other;
    for (const unsigned int expected : {2002001u, 2002002u})
    {
        SCOPED_TRACE(expected);
        QuonMessage* message = &other;
        EXPECT_EQ(queue.GetNext(&message), expected);
        EXPECT_EQ(message, nullptr);
        message = &other;
        EXPECT_EQ(queue.PeekNext(&message), expected);
        EXPECT_EQ(message, nullptr);
        EXPECT_EQ(queue.Close(), 1000001u);
    }
}

TEST(MessageQueue, PeeksWithoutTakingAndGivesInTheOrderOfPosting)
{
    CountingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    EXPECT_EQ(queue.GetCallback(), &callback);
    Message first;
    Message second;
    EXPECT_EQ(queue.Post(&first), 0u);
    EXPECT_EQ(queue.Post(&second), 0u);
    for (QuonMessage* expected : {&first, &second})
    {
        QuonMessage* message = nullptr;
        EXPECT_EQ(queue.PeekNext(&message), 0u);
        EXPECT_EQ(message, expected);
        message = nullptr;
        EXPECT_EQ(queue.PeekNext(&message), 0u);
        EXPECT_EQ(message, expected);
        message = nullptr;
        EXPECT_EQ(queue.GetNext(&message), 0u);
        EXPECT_EQ(message, expected);
    }
    QuonMessage* message = &first;
    EXPECT_EQ(queue.GetNext(&message), 2002001u);
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(callback.Calls(), 2);
}

// Looks into its queue when it is called.
class PeekingCallback : public QuonCallback
{
public:
    BOOL Invoke() override
    {
        QuonMessage* message = nullptr;
        queue->PeekNext(&message);
        seen.push_back(message);
        return TRUE;
    }

    QuonMessageQueue* queue = nullptr;
    std::vector<QuonMessage*> seen;
};

TEST(MessageQueue, HoldsTheMessageWhenItCallsTheCallback)
{
    PeekingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    callback.queue = &queue;
    Message message;
    EXPECT_EQ(queue.Post(&message), 0u);
    RunPendingCalls();
    EXPECT_EQ(callback.seen, std::vector<QuonMessage*>{&message});
}

TEST(MessageQueue, DoesWithoutACallback)
{
    QuonMessageQueue queue(nullptr, nullptr);
    EXPECT_EQ(queue.GetCallback(), nullptr);
    Message posted;
    EXPECT_EQ(queue.Post(&posted), 0u);
    RunPendingCalls();
    QuonMessage* message = nullptr;
    EXPECT_EQ(queue.GetNext(&message), 0u);
    EXPECT_EQ(message, &posted);
}

TEST(MessageQueue, DeliversAtTheNextAlertableWaitAndNotBefore)
{
    CountingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    Message posted;
    std::thread producer([&] { EXPECT_EQ(queue.Post(&posted), 0u); });
    producer.join();
    ::SleepEx(1, FALSE);
    EXPECT_EQ(callback.Calls(), 0);
    RunPendingCalls();
    EXPECT_EQ(callback.Calls(), 1);
    EXPECT_EQ(callback.Thread(), ::GetCurrentThreadId());
    QuonMessage* message = nullptr;
    EXPECT_EQ(queue.GetNext(&message), 0u);
    EXPECT_EQ(message, &posted);
    EXPECT_EQ(callback.Calls(), 1);
}

TEST(MessageQueue, EndsAnAlertableWaitOfItsConsumer)
{
    QuonMessageQueue queue(nullptr, nullptr);
    Message posted;
    std::thread producer([&] { EXPECT_EQ(queue.Post(&posted), 0u); });
    EXPECT_EQ(::SleepEx(kPatience, TRUE), static_cast<DWORD>(WAIT_IO_COMPLETION));
    producer.join();
    QuonMessage* message = nullptr;
    EXPECT_EQ(queue.PeekNext(&message), 0u);
}

TEST(MessageQueue, DeliversAfterItWasClosed)
{
    QuonMessageQueue queue(nullptr, nullptr);
    Message before;
    Message after;
    EXPECT_EQ(queue.Post(&before), 0u);
    EXPECT_EQ(queue.Close(), 1000001u);
    EXPECT_EQ(queue.Post(&after), 0u);
    QuonMessage* message = nullptr;
    EXPECT_EQ(queue.GetNext(&message), 0u);
    EXPECT_EQ(message, &before);
    EXPECT_EQ(queue.GetNext(&message), 0u);
    EXPECT_EQ(message, &after);
    EXPECT_EQ(queue.GetNext(&message), 2002002u);
}

TEST(MessageQueue, ClosesAtOnceFromAnyThreadAndTellsNobody)
{
    CountingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    std::thread closer([&] { EXPECT_EQ(queue.Close(), 1000001u); });
    closer.join();
    QuonMessage* message = nullptr;
    EXPECT_EQ(queue.PeekNext(&message), 2002002u);
    EXPECT_EQ(callback.Calls(), 0);
}

std::vector<void*> freedBlocks;

void RecordingFree(void* block)
{
    freedBlocks.push_back(block);
    std::free(block);
}

TEST(MessageQueue, ClosesByAProcedureCallAndTellsTheCallback)
{
    for (const std::size_t size : {sizeof(void*), 2 * sizeof(void*), 100 * sizeof(void*)})
    {
        SCOPED_TRACE(size);
        CountingCallback callback;
        QuonMessageQueue told(&callback, nullptr);
        QuonMessageQueue silent(nullptr, nullptr);
        std::vector<void*> blocks;
        for (QuonMessageQueue* queue : {&told, &silent})
        {
            void* const block = ::operator new(size);
            *static_cast<QuonMessageQueue**>(block) = queue;
            blocks.push_back(block);
            ASSERT_TRUE(
                ::QueueUserAPC(&QuonMessageQueue::CloseApc, ::GetCurrentThread(), reinterpret_cast<ULONG_PTR>(block)));
        }
        EXPECT_EQ(callback.Calls(), 0);
        freedBlocks.clear();
        QuonMessage* message = nullptr;
        {
            const ImportPatch<void (*)(void*)> free(kLibrary, "free", &RecordingFree);
            EXPECT_EQ(told.GetNext(&message), 2002002u);
        }
        EXPECT_EQ(freedBlocks, blocks);
        EXPECT_EQ(silent.GetNext(&message), 2002002u);
        EXPECT_EQ(callback.Calls(), 1);
    }
}

struct Duplication
{
    HANDLE sourceProcess;
    HANDLE source;
    HANDLE targetProcess;
    DWORD access;
    BOOL inherits;
    DWORD options;
};

struct QueuedCall
{
    PAPCFUNC routine;
    HANDLE thread;
    ULONG_PTR data;
};

std::vector<Duplication> duplications;
std::vector<QueuedCall> queuedCalls;
std::vector<HANDLE> closedHandles;
const HANDLE kDuplicate = reinterpret_cast<HANDLE>(0x5A5A);

BOOL WINAPI RecordingDuplicateHandle(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess, HANDLE* target,
                                     DWORD access, BOOL inherits, DWORD options)
{
    duplications.push_back({sourceProcess, source, targetProcess, access, inherits, options});
    *target = kDuplicate;
    return TRUE;
}

DWORD WINAPI RecordingQueueUserApc(PAPCFUNC routine, HANDLE thread, ULONG_PTR data)
{
    queuedCalls.push_back({routine, thread, data});
    return 1;
}

DWORD WINAPI FailingQueueUserApc(PAPCFUNC routine, HANDLE thread, ULONG_PTR data)
{
    queuedCalls.push_back({routine, thread, data});
    return 0;
}

BOOL WINAPI RecordingCloseHandle(HANDLE handle)
{
    closedHandles.push_back(handle);
    return TRUE;
}

class MessageQueueCalls : public testing::Test
{
protected:
    MessageQueueCalls()
    {
        duplications.clear();
        queuedCalls.clear();
        closedHandles.clear();
    }

    // The block is this test's when the call was recorded instead of queued.
    static void Carry(const QueuedCall& call) { call.routine(call.data); }

private:
    ImportPatch<decltype(&::DuplicateHandle)> m_duplicate{kLibrary, "DuplicateHandle", &RecordingDuplicateHandle};
    ImportPatch<decltype(&::CloseHandle)> m_close{kLibrary, "CloseHandle", &RecordingCloseHandle};
};

TEST_F(MessageQueueCalls, DuplicatesTheCallingThreadForANullHandleAndNeverClosesIt)
{
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
    Message message;
    {
        QuonMessageQueue queue(nullptr, nullptr);
        ASSERT_EQ(duplications.size(), 1u);
        EXPECT_EQ(duplications[0].sourceProcess, ::GetCurrentProcess());
        EXPECT_EQ(duplications[0].source, ::GetCurrentThread());
        EXPECT_EQ(duplications[0].targetProcess, ::GetCurrentProcess());
        EXPECT_EQ(duplications[0].access, 16u);
        EXPECT_FALSE(duplications[0].inherits);
        EXPECT_EQ(duplications[0].options, 0u);
        EXPECT_EQ(queue.Post(&message), 0u);
        ASSERT_EQ(queuedCalls.size(), 1u);
        EXPECT_EQ(queuedCalls[0].routine, &QuonMessageQueue::PostApc);
        EXPECT_EQ(queuedCalls[0].thread, kDuplicate);
        Carry(queuedCalls[0]);
    }
    EXPECT_TRUE(closedHandles.empty());
}

TEST_F(MessageQueueCalls, UsesAGivenHandleAsItIs)
{
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
    const HANDLE thread = reinterpret_cast<HANDLE>(0x1234);
    Message message;
    {
        QuonMessageQueue queue(nullptr, thread);
        EXPECT_EQ(queue.Post(&message), 0u);
        ASSERT_EQ(queuedCalls.size(), 1u);
        EXPECT_EQ(queuedCalls[0].thread, thread);
        Carry(queuedCalls[0]);
        QuonMessage* got = nullptr;
        EXPECT_EQ(queue.GetNext(&got), 0u);
        EXPECT_EQ(got, &message);
    }
    EXPECT_TRUE(duplications.empty());
    EXPECT_TRUE(closedHandles.empty());
}

TEST_F(MessageQueueCalls, RefusesANullMessageWithoutQueueing)
{
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
    QuonMessageQueue queue(nullptr, nullptr);
    const AllocationCounter counter;
    EXPECT_EQ(queue.Post(nullptr), 1000002u);
    EXPECT_TRUE(queuedCalls.empty());
    EXPECT_EQ(counter.GetTaken(), 0);
}

TEST_F(MessageQueueCalls, LosesTheBlockOfACallThatCouldNotBeQueued)
{
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &FailingQueueUserApc);
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    const AllocationCounter counter;
    EXPECT_EQ(queue.Post(&message), 1000001u);
    EXPECT_EQ(counter.GetLiveCount(), 1u);
    // It is whole: carried by hand it delivers, and goes.
    ASSERT_EQ(queuedCalls.size(), 1u);
    Carry(queuedCalls[0]);
    QuonMessage* got = nullptr;
    EXPECT_EQ(queue.GetNext(&got), 0u);
    EXPECT_EQ(got, &message);
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST_F(MessageQueueCalls, FailsWithoutMemoryForTheBlock)
{
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    unsigned int result = 0;
    {
        const FailingAllocation failing(0);
        result = queue.Post(&message);
        EXPECT_TRUE(failing.Failed());
    }
    EXPECT_EQ(result, 6u);
    EXPECT_TRUE(queuedCalls.empty());
}

TEST(MessageQueue, DoesNotDeleteTheMessagesThatAreStillInIt)
{
    const auto message = std::make_unique<Message>();
    {
        QuonMessageQueue queue(nullptr, nullptr);
        EXPECT_EQ(queue.Post(message.get()), 0u);
        RunPendingCalls();
    }
    EXPECT_EQ(Message::Living(), 1);
}

TEST(MessageQueue, GivesTheBlocksBack)
{
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    const AllocationCounter counter;
    for (int i = 0; i < 100; ++i)
    {
        EXPECT_EQ(queue.Post(&message), 0u);
    }
    EXPECT_EQ(counter.GetLiveCount(), 100u);
    QuonMessage* got = nullptr;
    while (queue.GetNext(&got) == kQuonServerOk)
    {
    }
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST(MessageQueueSoak, DeliversTenThousandMessagesOfEachOfFourProducersInTheirOrder)
{
    constexpr int kProducers = 4;
    constexpr int kMessages = 10000;
    const HardLimit limit;
    CountingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    std::vector<std::thread> producers;
    for (int producer = 0; producer < kProducers; ++producer)
    {
        producers.emplace_back([&queue, producer] {
            for (int number = 0; number < kMessages; ++number)
            {
                ASSERT_EQ(queue.Post(new Message(producer, number)), 0u);
            }
        });
    }
    int next[kProducers] = {};
    for (int received = 0; received < kProducers * kMessages;)
    {
        QuonMessage* got = nullptr;
        if (queue.GetNext(&got) != kQuonServerOk)
        {
            ::SleepEx(10, TRUE);
            continue;
        }
        const std::unique_ptr<Message> message(static_cast<Message*>(got));
        ASSERT_EQ(message->Number(), next[message->Producer()]) << message->Producer();
        ++next[message->Producer()];
        ++received;
    }
    for (std::thread& producer : producers)
    {
        producer.join();
    }
    QuonMessage* got = nullptr;
    EXPECT_EQ(queue.GetNext(&got), 2002001u);
    EXPECT_EQ(callback.Calls(), kProducers * kMessages);
    EXPECT_EQ(Message::Living(), 0);
}

TEST(MessageQueueLayout, KeepsItsFieldsAndVirtualFunctionsInOrder)
{
    using List = CList<QuonMessage*, QuonMessage*>;
    CountingCallback callback;
    const HANDLE thread = reinterpret_cast<HANDLE>(0x1234);
    QuonMessageQueue queue(&callback, thread);
    const std::size_t handle = sizeof(void*) + sizeof(List);
    EXPECT_EQ(FieldAt<HANDLE>(queue, handle), thread);
    EXPECT_FALSE(FieldAt<bool>(queue, handle + 8));
    EXPECT_EQ(FieldAt<QuonCallback*>(queue, handle + 16), &callback);
    EXPECT_EQ(sizeof(queue), handle + 24);
    queue.Close();
    EXPECT_TRUE(FieldAt<bool>(queue, handle + 8));
    EXPECT_EQ(sizeof(QuonMessage), sizeof(void*));
#if !defined(_MSC_VER)
    EXPECT_EQ(SlotOf(&QuonMessageQueue::PeekNext), 2u);
    EXPECT_EQ(SlotOf(&QuonMessageQueue::GetNext), 3u);
    EXPECT_EQ(SlotOf(&QuonMessageQueue::Post), 4u);
    EXPECT_EQ(SlotOf(&QuonMessageQueue::Close), 5u);
#endif
}

// Posting, looking and taking in any order: what is on its way arrives with the next look, in the order of posting.
TEST(MessageQueue, AgreesWithADequeOnRandomUse)
{
    constexpr int kMessages = 40;
    std::mt19937 random(20240901);
    std::vector<std::unique_ptr<Message>> spare;
    for (int number = 0; number < kMessages; ++number)
    {
        spare.push_back(std::make_unique<Message>(0, number));
    }
    std::deque<std::unique_ptr<Message>> model;
    CountingCallback callback;
    QuonMessageQueue queue(&callback, nullptr);
    unsigned int whenEmpty = kQuonServerQueueEmpty;
    int posted = 0;
    const int steps = quon_test::Cases(20000);
    for (int step = 0; step < steps; ++step)
    {
        // Full and empty phases, and a queue that is closed half of the time.
        const bool filling = step / 100 % 2 == 0;
        if (step == steps / 2)
        {
            ASSERT_EQ(queue.Close(), kQuonServerRefused);
            whenEmpty = kQuonServerQueueClosed;
        }
        if (random() % 8 < (filling ? 5u : 2u))
        {
            if (!spare.empty())
            {
                ASSERT_EQ(queue.Post(spare.back().get()), kQuonServerOk) << step;
                model.push_back(std::move(spare.back()));
                spare.pop_back();
                ++posted;
            }
            continue;
        }
        const bool taking = random() % 3 != 0;
        QuonMessage* message = spare.empty() ? nullptr : spare.back().get();
        const unsigned int result = taking ? queue.GetNext(&message) : queue.PeekNext(&message);
        ASSERT_EQ(result, model.empty() ? whenEmpty : kQuonServerOk) << step;
        ASSERT_EQ(message, model.empty() ? nullptr : model.front().get()) << step;
        ASSERT_EQ(callback.Calls(), posted) << step;
        if (taking && !model.empty())
        {
            spare.push_back(std::move(model.front()));
            model.pop_front();
        }
    }
    RunPendingCalls();
    EXPECT_EQ(callback.Calls(), posted);
    EXPECT_GT(posted, steps / 5);
}

}  // namespace
