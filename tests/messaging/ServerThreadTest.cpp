// What a server thread does with its handlers.
#include "messaging/ServerThreadTestSupport.h"
#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <thread>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

class ServerThreadHandlers : public testing::Test
{
protected:
    HardLimit m_limit;
    Journal m_journal;
};

TEST_F(ServerThreadHandlers, CallsTheHandlerWhoseHandleIsSignalled)
{
    const Event quiet;
    const Event event(false);
    const Event called;
    TestHandler quietHandler(quiet.Handle(), m_journal, "quiet");
    TestHandler handler(event.Handle(), m_journal, "handler", [&] { called.Set(); });
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(&quietHandler), 0u);
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    for (int i = 0; i < 3; ++i)
    {
        called.Reset();
        event.Set();
        ASSERT_TRUE(called.Wait());
    }
    server.End();
    EXPECT_THAT(m_journal.Lines(), ElementsAre("handler signalled", "handler signalled", "handler signalled"));
}

TEST_F(ServerThreadHandlers, CallsTheLowestHandleOfTheTableFirstAndAgainWhileItIsSignalled)
{
    const Event events[3];
    const Event done;
    // The order of the table, from a table of the same handles.
    QuonSynchronizedSelector table;
    for (const Event& event : events)
    {
        table.Add(event.Handle(), nullptr);
    }
    HANDLE order[MAXIMUM_WAIT_OBJECTS] = {};
    ASSERT_EQ(table.GetHandles(order), 3u);

    int callsOfFirst = 0;
    TestHandler first(order[0], m_journal, "first", [&] {
        if (++callsOfFirst == 3)
        {
            ::ResetEvent(order[0]);
        }
    });
    TestHandler second(order[1], m_journal, "second", [&] { ::ResetEvent(order[1]); });
    TestHandler third(order[2], m_journal, "third", [&] {
        ::ResetEvent(order[2]);
        done.Set();
    });
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    for (const Event& event : events)
    {
        for (TestHandler* handler : {&first, &second, &third})
        {
            if (handler->GetHandle() == event.Handle())
            {
                EXPECT_EQ(server.AddHandler(handler), 0u);
            }
        }
    }
    // All at once: nothing is dispatched within a procedure call.
    ASSERT_TRUE(server.Do(
        [&] { std::for_each(std::begin(events), std::end(events), [](const Event& event) { event.Set(); }); }));
    ASSERT_TRUE(done.Wait());
    server.End();
    EXPECT_THAT(m_journal.Lines(), ElementsAre("first signalled", "first signalled", "first signalled",
                                               "second signalled", "third signalled"));
}

TEST_F(ServerThreadHandlers, KeepsTheFirstHandlerOfAHandle)
{
    const Event event(false);
    const Event called;
    TestHandler first(event.Handle(), m_journal, "first", [&] { called.Set(); });
    TestHandler second(event.Handle(), m_journal, "second", [&] { called.Set(); });
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(&first), 0u);
    EXPECT_EQ(server.AddHandler(&second), 0u);
    ASSERT_TRUE(server.Settle());
    ASSERT_EQ(server.Changes().size(), 2u);
    EXPECT_EQ(server.Changes()[0].handler, &first);
    EXPECT_EQ(server.Changes()[0].result, 0u);
    EXPECT_EQ(server.Changes()[1].handler, &second);
    EXPECT_EQ(server.Changes()[1].result, 1000001u);
    event.Set();
    ASSERT_TRUE(called.Wait());
    server.End();
    EXPECT_THAT(m_journal.Lines(), ElementsAre("first signalled"));
}

TEST_F(ServerThreadHandlers, RemovesByTheHandleOfTheMomentOfTheCall)
{
    const Event event;
    const Event other;
    TestHandler handler(event.Handle(), m_journal, "handler");
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    ASSERT_TRUE(server.Settle());
    const Event gate;
    server.Queue([&] { gate.Wait(); });
    EXPECT_EQ(server.RemoveHandler(&handler), 0u);
    handler.SetHandle(other.Handle());
    gate.Set();
    EXPECT_EQ(server.RemoveHandler(&handler), 0u);
    ASSERT_TRUE(server.Settle());
    ASSERT_EQ(server.Changes().size(), 3u);
    EXPECT_EQ(server.Changes()[1].handle, event.Handle());
    EXPECT_EQ(server.Changes()[1].result, 0u);
    EXPECT_EQ(server.Changes()[2].handle, other.Handle());
    EXPECT_EQ(server.Changes()[2].result, 1000001u);
    event.Set();
    other.Set();
    server.End();
    // Removed: neither called nor deleted, not even at the end.
    EXPECT_THAT(m_journal.Lines(), IsEmpty());
}

TEST_F(ServerThreadHandlers, RegistersByTheHandleOfTheMomentOfTheChange)
{
    const Event before;
    const Event after(false);
    const Event called;
    TestHandler handler(before.Handle(), m_journal, "handler", [&] { called.Set(); });
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    const Event gate;
    server.Queue([&] { gate.Wait(); });
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    handler.SetHandle(after.Handle());
    gate.Set();
    ASSERT_TRUE(server.Settle());
    after.Set();
    EXPECT_TRUE(called.Wait());
}

TEST_F(ServerThreadHandlers, IgnoresNull)
{
    TestHandler noHandle(nullptr, m_journal, "no handle");
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(nullptr), 0u);
    EXPECT_EQ(server.RemoveHandler(nullptr), 0u);
    EXPECT_EQ(server.RemoveHandler(&noHandle), 0u);
    ASSERT_TRUE(server.Settle());
    EXPECT_TRUE(server.Changes().empty());
}

TEST_F(ServerThreadHandlers, AreAddedAndRemovedFromManyThreads)
{
    constexpr int kThreads = 4;
    constexpr int kPerThread = 15;
    const Event events[kThreads * kPerThread];
    std::vector<std::unique_ptr<TestHandler>> handlers;
    for (const Event& event : events)
    {
        handlers.push_back(std::make_unique<TestHandler>(event.Handle(), m_journal, "handler"));
    }
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread)
    {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < kPerThread; ++i)
            {
                TestHandler* const handler = handlers[static_cast<std::size_t>(thread * kPerThread + i)].get();
                EXPECT_EQ(server.AddHandler(handler), 0u);
                EXPECT_EQ(server.RemoveHandler(handler), 0u);
                EXPECT_EQ(server.AddHandler(handler), 0u);
            }
        });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    ASSERT_TRUE(server.Settle());
    ASSERT_EQ(server.Changes().size(), 3u * kThreads * kPerThread);
    for (const TestServer::Change& change : server.Changes())
    {
        EXPECT_EQ(change.result, 0u);
    }
}

TEST_F(ServerThreadHandlers, AreAddedAndRemovedFromTheServerThreadAtItsNextWait)
{
    const Event event(false);
    const Event addedEvent(false);
    const Event called;
    std::size_t changesWithin = 99;
    TestServer server;
    TestHandler added(addedEvent.Handle(), m_journal, "added", [&] { called.Set(); });
    std::unique_ptr<TestHandler> handler;
    handler = std::make_unique<TestHandler>(event.Handle(), m_journal, "handler", [&] {
        EXPECT_EQ(server.AddHandler(&added), 0u);
        EXPECT_EQ(server.RemoveHandler(handler.get()), 0u);
        changesWithin = server.Changes().size();
    });
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(handler.get()), 0u);
    event.Set();
    addedEvent.Set();
    ASSERT_TRUE(called.Wait());
    server.End();
    EXPECT_EQ(changesWithin, 1u);
    EXPECT_EQ(server.Changes().size(), 3u);
    EXPECT_THAT(m_journal.Lines(), ElementsAre("handler signalled", "added signalled"));
}

DWORD WINAPI AbandonMutex(void* mutex)
{
    return ::WaitForSingleObject(mutex, kPatience);
}

void Abandon(HANDLE mutex)
{
    const HANDLE thread = ::CreateThread(nullptr, 0, &AbandonMutex, mutex, 0, nullptr);
    EXPECT_EQ(::WaitForSingleObject(thread, kPatience), WAIT_OBJECT_0);
    ::CloseHandle(thread);
}

// A handle that is signalled ends the thread's wait before a procedure call does. So what is queued from OnSignaled, a
// removal included, has no effect until the handle is not signalled any more, or is taken out directly.
TEST_F(ServerThreadHandlers, KeepProcedureCallsWaitingWhileTheirHandleStaysSignalled)
{
    constexpr int kRounds = 1000;
    const Event event;
    const Event called;
    int rounds = 0;
    int roundsBeforeTheCall = 0;
    TestServer server;
    TestHandler* handler = nullptr;
    const auto act = [&] {
        ++rounds;
        if (rounds == 1)
        {
            EXPECT_EQ(server.RemoveHandler(handler), 0u);
            server.Queue([&] {
                roundsBeforeTheCall = rounds;
                called.Set();
            });
        }
        if (rounds == kRounds)
        {
            EXPECT_EQ(server.DoRemoveHandler(event.Handle()), 0u);
        }
    };
    TestHandler staying(event.Handle(), m_journal, "staying", act);
    handler = &staying;
    ASSERT_EQ(server.Start(), 0u);
    event.Set();
    EXPECT_EQ(server.AddHandler(handler), 0u);
    ASSERT_TRUE(called.Wait());
    server.End();
    EXPECT_EQ(rounds, kRounds);
    EXPECT_EQ(roundsBeforeTheCall, kRounds);
    ASSERT_EQ(server.Changes().size(), 3u);
    EXPECT_TRUE(server.Changes()[0].added);
    EXPECT_EQ(server.Changes()[1].result, 0u);        // the direct removal
    EXPECT_EQ(server.Changes()[2].result, 1000001u);  // the one that was queued, too late
}

// The other way out: the flag is cleared where it takes effect, not by a procedure call.
TEST_F(ServerThreadHandlers, MayEndTheThreadThoughTheirHandleStaysSignalled)
{
    const Event event;
    TestServer server;
    auto* const handler = new TestHandler(event.Handle(), m_journal, "staying", [&server] { server.StopRunning(); });
    ASSERT_EQ(server.Start(), 0u);
    event.Set();
    EXPECT_EQ(server.AddHandler(handler), 0u);
    server.Stop(nullptr);
    EXPECT_THAT(m_journal.Lines(),
                ElementsAre("staying signalled", "staying signalled", "staying closed", "staying deleted"));
}

class ServerThreadHandlersBeyondTheLimit : public ServerThreadHandlers
{
protected:
    static constexpr size_t kTooMany = kQuonMaxServerHandles + 1;

    ServerThreadHandlersBeyondTheLimit()
    {
        for (size_t index = 0; index < kTooMany; ++index)
        {
            events.push_back(std::make_unique<Event>());
            const Event& event = *events.back();
            handlers.push_back(
                std::make_unique<TestHandler>(event.Handle(), m_journal, std::to_string(index), [this, &event] {
                    event.Reset();
                    called.Set();
                }));
        }
        EXPECT_EQ(server.Start(), 0u);
    }

    void AddAll()
    {
        for (const auto& handler : handlers)
        {
            EXPECT_EQ(server.AddHandler(handler.get()), 0u);
        }
        ASSERT_TRUE(server.Settle());
        ASSERT_EQ(server.Changes().size(), kTooMany);
        EXPECT_EQ(server.Changes().back().result, 0u);
    }

    std::vector<std::unique_ptr<Event>> events;
    std::vector<std::unique_ptr<TestHandler>> handlers;
    Event called;
    TestServer server;
};

TEST_F(ServerThreadHandlersBeyondTheLimit, AreNotServedUntilOneIsRemoved)
{
    AddAll();
    events[3]->Set();
    // A wait for the handles would report the event before it runs the call.
    ASSERT_TRUE(server.Settle());
    EXPECT_THAT(m_journal.Lines(), IsEmpty());
    EXPECT_EQ(server.RemoveHandler(handlers.back().get()), 0u);
    ASSERT_TRUE(called.Wait());
    EXPECT_THAT(m_journal.Lines(), ElementsAre("3 signalled"));
    server.End();
}

TEST_F(ServerThreadHandlersBeyondTheLimit, AreLeftAloneAtTheEnd)
{
    AddAll();
    for (const auto& event : events)
    {
        event->Set();
    }
    server.End();
    EXPECT_THAT(m_journal.Lines(), IsEmpty());
}

TEST_F(ServerThreadHandlers, AreCalledForAnAbandonedMutexAsForASignalledOne)
{
    const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, nullptr);
    const Event called;
    TestServer server;
    // The wait takes the mutex for the thread, and would take it again and again.
    TestHandler handler(mutex, m_journal, "mutex", [&] {
        EXPECT_EQ(server.DoRemoveHandler(mutex), 0u);
        called.Set();
    });
    Abandon(mutex);
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    EXPECT_TRUE(called.Wait());
    server.End();
    EXPECT_THAT(m_journal.Lines(), ElementsAre("mutex signalled"));
    ::CloseHandle(mutex);
}

TEST_F(ServerThreadHandlers, AreToldAndDeletedAtTheEndOnlyWhenSignalled)
{
    const Event manual;
    const Event automatic(false);
    const Event quiet;
    const auto quietHandler = std::make_unique<TestHandler>(quiet.Handle(), m_journal, "quiet");
    {
        TestServer server;
        ASSERT_EQ(server.Start(), 0u);
        server.End([&] {
            for (QuonServerEventHandler* handler :
                 {static_cast<QuonServerEventHandler*>(quietHandler.get()),
                  static_cast<QuonServerEventHandler*>(new TestHandler(manual.Handle(), m_journal, "manual")),
                  static_cast<QuonServerEventHandler*>(new TestHandler(automatic.Handle(), m_journal, "automatic"))})
            {
                server.DoAddHandler(handler);
            }
            manual.Set();
            automatic.Set();
        });
        std::vector<std::string> lines = m_journal.Lines();
        ASSERT_EQ(lines.size(), 6u);
        for (const std::string name : {"manual", "automatic"})
        {
            SCOPED_TRACE(name);
            const auto found = std::find(lines.begin(), lines.end(), name + " signalled");
            ASSERT_LT(found - lines.begin(), 4);
            EXPECT_EQ(*(found + 1), name + " closed");
            EXPECT_EQ(*(found + 2), name + " deleted");
        }
        // The test of the handle consumed the signal of the one that resets itself.
        EXPECT_FALSE(automatic.IsSet());
        EXPECT_TRUE(manual.IsSet());
    }
    EXPECT_EQ(m_journal.Lines().size(), 6u);
}

TEST_F(ServerThreadHandlers, AreToldAndDeletedAtTheEndWhenAbandoned)
{
    const HANDLE mutex = ::CreateMutexW(nullptr, FALSE, nullptr);
    Abandon(mutex);
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    server.End([&] { server.DoAddHandler(new TestHandler(mutex, m_journal, "mutex")); });
    EXPECT_THAT(m_journal.Lines(), ElementsAre("mutex signalled", "mutex closed", "mutex deleted"));
    ::CloseHandle(mutex);
}

TEST(ServerEventHandler, StoresItsOwnerOnly)
{
    Journal journal;
    TestHandler handler(nullptr, journal, "handler");
    EXPECT_EQ(handler.Owner(), 0u);
    handler.SetOwner(~std::uintptr_t{0});
    EXPECT_EQ(handler.Owner(), ~std::uintptr_t{0});
}

class Socket : public QuonSocket
{
public:
    using QuonSocket::QuonSocket;
    HANDLE GetHandle() override { return nullptr; }
    void OnSignaled() override {}
    std::uintptr_t GetSocket() override { return 5; }
    std::uintptr_t Owner() const { return m_owner; }
};

TEST(ServerEventHandler, OfASocketHasOneMoreFunction)
{
    Socket socket(3);
    EXPECT_EQ(socket.Owner(), 3u);
    EXPECT_EQ(static_cast<QuonSocket&>(socket).GetSocket(), 5u);
    socket.OnClose();
}

// Results of the wait as the thread reads them, and whether the handler is called.
struct WaitRow
{
    DWORD result;
    bool calls;
};

const WaitRow kWaitRows[] = {
    {0, true},           // signalled, the first
    {1, true},           // signalled, the second
    {2, false},          // beyond the count
    {63, false},         //
    {64, false},         //
    {127, false},        //
    {128, true},         // abandoned, the first
    {129, true},         // abandoned, the second
    {130, false},        // beyond the count
    {191, false},        //
    {192, false},        // a procedure call ran
    {258, false},        // time-out
    {0xffffffff, false}  // failure
};

struct WaitCall
{
    DWORD count;
    std::vector<HANDLE> handles;
    BOOL all;
    DWORD timeout;
    BOOL alertable;
};

std::vector<WaitCall> waitCalls;
DWORD scriptedResult;
bool scriptIsDone;
const Event* scriptRan;

// The first wait for two handles gets the scripted result, all others are real.
DWORD WINAPI ScriptedWait(DWORD count, const HANDLE* handles, BOOL all, DWORD timeout, BOOL alertable)
{
    waitCalls.push_back({count, std::vector<HANDLE>(handles, handles + count), all, timeout, alertable});
    if (count == 2 && !scriptIsDone)
    {
        scriptIsDone = true;
        scriptRan->Set();
        return scriptedResult;
    }
    return ::WaitForMultipleObjectsEx(count, handles, all, timeout, alertable);
}

TEST(ServerThreadWait, ReadsTheResultsOfTheWait)
{
    const HardLimit limit;
    const ImportPatch<decltype(&::WaitForMultipleObjectsEx)> wait(kLibrary, "WaitForMultipleObjectsEx", &ScriptedWait);
    for (const WaitRow& row : kWaitRows)
    {
        SCOPED_TRACE(row.result);
        Journal journal;
        waitCalls.clear();
        scriptedResult = row.result;
        scriptIsDone = false;
        const Event ran;
        scriptRan = &ran;
        const Event events[2];
        std::vector<HANDLE> order;
        TestHandler first(events[0].Handle(), journal, "first", [&] { order.push_back(events[0].Handle()); });
        TestHandler second(events[1].Handle(), journal, "second", [&] { order.push_back(events[1].Handle()); });
        {
            TestServer server;
            ASSERT_EQ(server.Start(), 0u);
            ASSERT_TRUE(server.Do([&] {
                server.DoAddHandler(&first);
                server.DoAddHandler(&second);
            }));
            // Not Settle: its call may run together with the one before, without a wait between them.
            ASSERT_TRUE(ran.Wait());
        }
        ASSERT_FALSE(waitCalls.empty());
        const WaitCall& call = waitCalls.front();
        EXPECT_EQ(call.count, 2u);
        EXPECT_FALSE(call.all);
        EXPECT_EQ(call.timeout, INFINITE);
        EXPECT_TRUE(call.alertable);
        EXPECT_EQ(order, row.calls ? std::vector<HANDLE>{call.handles[row.result % 128]} : std::vector<HANDLE>{});
    }
}

}  // namespace
