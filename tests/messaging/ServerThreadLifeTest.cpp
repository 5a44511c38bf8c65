// How a server thread starts, ends and fails.
#include "messaging/ServerThreadTestSupport.h"
#include "base/QuonEllipsis.h"
#include "helpers/AllocationCounter.h"
#include "helpers/FailingAllocation.h"
#include "helpers/HardLimit.h"
#include "helpers/ImportPatch.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

using namespace quon_test;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

struct Creation
{
    SECURITY_ATTRIBUTES* security;
    SIZE_T stackSize;
    LPTHREAD_START_ROUTINE routine;
    DWORD flags;
};

struct QueuedCall
{
    PAPCFUNC routine;
    HANDLE thread;
    ULONG_PTR data;
};

struct EventRequest
{
    SECURITY_ATTRIBUTES* security;
    BOOL manualReset;
    BOOL initialState;
    const wchar_t* name;
    HANDLE event;
};

std::vector<Creation> creations;
std::vector<QueuedCall> queuedCalls;
std::vector<EventRequest> eventRequests;
std::vector<HANDLE> closedHandles;
std::vector<HANDLE> waitedHandles;

HANDLE WINAPI RecordingCreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                                    void* argument, DWORD flags, DWORD* id)
{
    creations.push_back({security, stackSize, routine, flags});
    return ::CreateThread(security, stackSize, routine, argument, flags, id);
}

HANDLE WINAPI FailingCreateThread(SECURITY_ATTRIBUTES*, SIZE_T, LPTHREAD_START_ROUTINE, void*, DWORD, DWORD*)
{
    return nullptr;
}

HANDLE WINAPI RecordingCreateEvent(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState,
                                   const wchar_t* name)
{
    const HANDLE event = ::CreateEventW(security, manualReset, initialState, name);
    eventRequests.push_back({security, manualReset, initialState, name, event});
    return event;
}

HANDLE WINAPI FailingCreateEvent(SECURITY_ATTRIBUTES*, BOOL, BOOL, const wchar_t*)
{
    return nullptr;
}

DWORD WINAPI RecordingQueueUserApc(PAPCFUNC routine, HANDLE thread, ULONG_PTR data)
{
    queuedCalls.push_back({routine, thread, data});
    return ::QueueUserAPC(routine, thread, data);
}

DWORD WINAPI FailingQueueUserApc(PAPCFUNC routine, HANDLE thread, ULONG_PTR data)
{
    queuedCalls.push_back({routine, thread, data});
    return 0;
}

BOOL WINAPI RecordingCloseHandle(HANDLE handle)
{
    closedHandles.push_back(handle);
    return ::CloseHandle(handle);
}

DWORD WINAPI RecordingWait(HANDLE handle, DWORD timeout)
{
    waitedHandles.push_back(handle);
    return ::WaitForSingleObject(handle, timeout);
}

DWORD WINAPI RefusingResumeThread(HANDLE)
{
    return 0;
}

const Event* fallsAsleep;
std::atomic<bool> sleepsWithoutLimit;

DWORD WINAPI RecordingSleepEx(DWORD timeout, BOOL alertable)
{
    sleepsWithoutLimit = timeout == INFINITE && alertable != FALSE;
    fallsAsleep->Set();
    return ::SleepEx(timeout, alertable);
}

DWORD ExitCodeOf(HANDLE thread)
{
    EXPECT_EQ(::WaitForSingleObject(thread, kPatience), WAIT_OBJECT_0);
    DWORD code = 0;
    ::GetExitCodeThread(thread, &code);
    return code;
}

class ServerThreadLife : public testing::Test
{
protected:
    ServerThreadLife()
    {
        creations.clear();
        queuedCalls.clear();
        eventRequests.clear();
        closedHandles.clear();
        waitedHandles.clear();
    }

    HardLimit m_limit;
    Journal m_journal;
};

TEST_F(ServerThreadLife, HasNoThreadBeforeItsStart)
{
    TestHandler handler(nullptr, m_journal, "handler");
    TestServer server;
    EXPECT_EQ(server.GetThreadHandle(), nullptr);
    EXPECT_FALSE(server.IsRunning());
    EXPECT_EQ(server.AddHandler(&handler), 1000001u);
    EXPECT_EQ(server.RemoveHandler(&handler), 1000001u);
    DWORD out = 99;
    EXPECT_EQ(server.Stop(&out), 1000001u);
    EXPECT_EQ(out, 0u);
    EXPECT_EQ(server.Stop(nullptr), 1000001u);
}

TEST_F(ServerThreadLife, StartsOneThreadAndReturnsWhenItRuns)
{
    const ImportPatch<decltype(&::CreateThread)> create(kLibrary, "CreateThread", &RecordingCreateThread);
    const ImportPatch<decltype(&::CreateEventW)> event(kLibrary, "CreateEventW", &RecordingCreateEvent);
    const ImportPatch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
    TestServer server;
    EXPECT_EQ(server.Start(), 0u);
    EXPECT_TRUE(server.IsRunning());
    const HANDLE thread = server.GetThreadHandle();
    EXPECT_NE(thread, nullptr);
    EXPECT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.GetThreadHandle(), thread);
    ASSERT_EQ(creations.size(), 1u);
    EXPECT_EQ(creations[0].security, nullptr);
    EXPECT_EQ(creations[0].stackSize, 0u);
    EXPECT_EQ(creations[0].routine, &QuonServerThread::ThreadProc);
    EXPECT_EQ(creations[0].flags, 4u);
    ASSERT_EQ(eventRequests.size(), 1u);
    EXPECT_EQ(eventRequests[0].security, nullptr);
    EXPECT_FALSE(eventRequests[0].manualReset);
    EXPECT_FALSE(eventRequests[0].initialState);
    EXPECT_EQ(eventRequests[0].name, nullptr);
    EXPECT_THAT(closedHandles, ElementsAre(eventRequests[0].event));
}

TEST_F(ServerThreadLife, FailsWithoutAnEvent)
{
    TestServer server;
    {
        const ImportPatch<decltype(&::CreateEventW)> event(kLibrary, "CreateEventW", &FailingCreateEvent);
        const ImportPatch<decltype(&::CreateThread)> create(kLibrary, "CreateThread", &RecordingCreateThread);
        EXPECT_EQ(server.Start(), 2000003u);
        EXPECT_EQ(server.GetThreadHandle(), nullptr);
        EXPECT_THAT(creations, IsEmpty());
    }
    EXPECT_EQ(server.Start(), 0u);
    EXPECT_TRUE(server.Settle());
}

TEST_F(ServerThreadLife, FailsWithoutAThread)
{
    TestServer server;
    {
        const ImportPatch<decltype(&::CreateThread)> create(kLibrary, "CreateThread", &FailingCreateThread);
        const ImportPatch<decltype(&::CreateEventW)> event(kLibrary, "CreateEventW", &RecordingCreateEvent);
        const ImportPatch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        EXPECT_EQ(server.Start(), 2000003u);
        EXPECT_EQ(server.GetThreadHandle(), nullptr);
        ASSERT_EQ(eventRequests.size(), 1u);
        EXPECT_THAT(closedHandles, ElementsAre(eventRequests[0].event));
    }
    EXPECT_EQ(server.Start(), 0u);
    EXPECT_TRUE(server.Settle());
}

TEST_F(ServerThreadLife, DoesNotWaitForAThreadThatResumesWithZero)
{
    QuonServerThread server;
    {
        const ImportPatch<decltype(&::ResumeThread)> resume(kLibrary, "ResumeThread", &RefusingResumeThread);
        const ImportPatch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &RecordingWait);
        EXPECT_EQ(server.Start(), 0u);
        EXPECT_THAT(waitedHandles, IsEmpty());
    }
    // The thread is still suspended and has nothing left to start with.
    ASSERT_NE(server.GetThreadHandle(), nullptr);
    ::TerminateThread(server.GetThreadHandle(), 0);
}

TEST_F(ServerThreadLife, SleepsAlertablyWithoutHandlersAndStillRunsCalls)
{
    const ImportPatch<decltype(&::SleepEx)> sleep(kLibrary, "SleepEx", &RecordingSleepEx);
    const Event asleep(false);
    fallsAsleep = &asleep;
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    for (int round = 0; round < 3; ++round)
    {
        ASSERT_TRUE(asleep.Wait());
        EXPECT_TRUE(sleepsWithoutLimit);
        EXPECT_TRUE(server.Settle());
    }
}

TEST_F(ServerThreadLife, StopsWithAFixedResultAndKeepsTheHandle)
{
    const ImportPatch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    const HANDLE thread = server.GetThreadHandle();
    closedHandles.clear();
    server.Queue([&] { server.StopRunning(); });
    DWORD out = 99;
    EXPECT_EQ(server.Stop(&out), 1000001u);
    EXPECT_EQ(out, 0u);
    EXPECT_EQ(server.GetThreadHandle(), thread);
    EXPECT_EQ(ExitCodeOf(thread), 0u);
    EXPECT_THAT(closedHandles, IsEmpty());
    EXPECT_EQ(server.Stop(nullptr), 1000001u);
    // There is a thread, though an ended one: no other is started.
    EXPECT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.GetThreadHandle(), thread);
    EXPECT_FALSE(server.IsRunning());
}

QuonServerThread* lockedServer = nullptr;
std::vector<std::string> locks;

// Notes whether another thread could enter the section that serializes the life of the server.
void NoteLock(const char* where)
{
    // The first of the object's fields.
    auto* const section = reinterpret_cast<CRITICAL_SECTION*>(reinterpret_cast<char*>(lockedServer) + sizeof(void*));
    bool isHeld = true;
    std::thread([&] {
        if (::TryEnterCriticalSection(section) != FALSE)
        {
            ::LeaveCriticalSection(section);
            isHeld = false;
        }
    }).join();
    locks.push_back(where + std::string(isHeld ? ": locked" : ": open"));
}

HANDLE WINAPI LockNotingCreateThread(SECURITY_ATTRIBUTES* security, SIZE_T stackSize, LPTHREAD_START_ROUTINE routine,
                                     void* argument, DWORD flags, DWORD* id)
{
    NoteLock("create");
    return ::CreateThread(security, stackSize, routine, argument, flags, id);
}

DWORD WINAPI LockNotingWait(HANDLE handle, DWORD timeout)
{
    NoteLock("wait");
    return ::WaitForSingleObject(handle, timeout);
}

// Another Start would make a second thread, another Stop wait for one that is about to be replaced.
TEST_F(ServerThreadLife, IsLockedWhileItStartsStopsAndIsDestroyed)
{
    locks.clear();
    auto server = std::make_unique<TestServer>();
    lockedServer = server.get();
    const ImportPatch<decltype(&::CreateThread)> create(kLibrary, "CreateThread", &LockNotingCreateThread);
    const ImportPatch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &LockNotingWait);
    ASSERT_EQ(server->Start(), 0u);
    NoteLock("started");
    server->End();
    NoteLock("stopped");
    server.reset();
    EXPECT_THAT(locks, ElementsAre("create: locked", "wait: locked", "started: open", "wait: locked", "stopped: open",
                                   // The destructors, of the derived class and of the base class.
                                   "wait: locked", "wait: locked"));
}

TEST_F(ServerThreadLife, IsWokenByStopAndByTheDestructor)
{
    for (const bool stops : {true, false})
    {
        SCOPED_TRACE(stops);
        auto server = std::make_unique<TestServer>();
        ASSERT_EQ(server->Start(), 0u);
        const HANDLE thread = server->GetThreadHandle();
        // The flag is cleared in a call, and the thread must then be woken once more only if it waits again.
        ASSERT_TRUE(server->Do([&] { server->StopRunning(); }));
        const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
        queuedCalls.clear();
        QuonServerThread* const address = server.get();
        if (stops)
        {
            server->Stop(nullptr);
        }
        else
        {
            server.reset();
        }
        ASSERT_FALSE(queuedCalls.empty());
        EXPECT_EQ(queuedCalls.back().routine, &QuonServerThread::WakeApc);
        EXPECT_EQ(queuedCalls.back().thread, thread);
        EXPECT_EQ(queuedCalls.back().data, reinterpret_cast<ULONG_PTR>(address));
        EXPECT_EQ(ExitCodeOf(thread), 0u);
    }
}

// Its flag is cleared from outside, while the thread sleeps: only the wake makes the thread look at it again.
TEST_F(ServerThreadLife, LooksAtItsFlagAgainWhenWoken)
{
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    ASSERT_TRUE(server.Settle());
    server.StopRunning();
    EXPECT_EQ(server.Stop(nullptr), 1000001u);
    EXPECT_EQ(ExitCodeOf(server.GetThreadHandle()), 0u);
}

TEST_F(ServerThreadLife, EndsWithItsOwnCodeWhenEllipsisEscapesAHandler)
{
    const Event event;
    event.Set();
    TestHandler handler(event.Handle(), m_journal, "handler", [] { throw QuonEllipsis(); });
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    EXPECT_EQ(ExitCodeOf(server.GetThreadHandle()), 2147549183u);
    EXPECT_EQ(server.Stop(nullptr), 1000001u);
    // Neither closed nor deleted.
    EXPECT_THAT(m_journal.Lines(), ElementsAre("handler signalled"));
}

class OwnRun : public QuonServerThread
{
public:
    DWORD Run(HANDLE started) override
    {
        ::SetEvent(started);
        return 17;
    }
};

TEST_F(ServerThreadLife, EndsWithTheResultOfRun)
{
    OwnRun server;
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(ExitCodeOf(server.GetThreadHandle()), 17u);
}

TEST_F(ServerThreadLife, LosesTheBlockOfACallThatCouldNotBeQueued)
{
    const Event event;
    TestHandler handler(event.Handle(), m_journal, "handler");
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &FailingQueueUserApc);
    const AllocationCounter counter;
    EXPECT_EQ(server.AddHandler(&handler), 1000001u);
    EXPECT_EQ(counter.GetLiveCount(), 1u);
    EXPECT_EQ(server.RemoveHandler(&handler), 1000001u);
    EXPECT_EQ(counter.GetLiveCount(), 2u);
    ASSERT_EQ(queuedCalls.size(), 2u);
    EXPECT_EQ(queuedCalls[0].routine, &QuonServerThread::AddHandlerApc);
    EXPECT_EQ(queuedCalls[1].routine, &QuonServerThread::RemoveHandlerApc);
    EXPECT_EQ(queuedCalls[0].thread, server.GetThreadHandle());
    // They are whole: carried by hand (the thread sleeps) they do their work, and go.
    for (const QueuedCall& call : queuedCalls)
    {
        call.routine(call.data);
    }
    ASSERT_EQ(server.Changes().size(), 2u);
    EXPECT_EQ(server.Changes()[0].handler, &handler);
    EXPECT_EQ(server.Changes()[1].handle, event.Handle());
    EXPECT_EQ(server.Changes()[1].result, 0u);
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST_F(ServerThreadLife, FailsWithoutMemoryForTheBlock)
{
    const Event event;
    TestHandler handler(event.Handle(), m_journal, "handler");
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    ASSERT_TRUE(server.Settle());
    const ImportPatch<decltype(&::QueueUserAPC)> apc(kLibrary, "QueueUserAPC", &RecordingQueueUserApc);
    unsigned int added = 0;
    unsigned int removed = 0;
    {
        const FailingAllocation failing(0);
        added = server.AddHandler(&handler);
        EXPECT_TRUE(failing.Failed());
    }
    {
        const FailingAllocation failing(0);
        removed = server.RemoveHandler(&handler);
        EXPECT_TRUE(failing.Failed());
    }
    EXPECT_EQ(added, 6u);
    EXPECT_EQ(removed, 6u);
    EXPECT_THAT(queuedCalls, IsEmpty());
}

TEST_F(ServerThreadLife, FreesTheBlockBeforeItMakesTheChange)
{
    const Event event;
    TestHandler handler(event.Handle(), m_journal, "handler");
    TestServer server;
    ASSERT_EQ(server.Start(), 0u);
    ASSERT_TRUE(server.Settle());
    std::vector<std::size_t> live;
    // No other thread of the library takes memory meanwhile.
    const AllocationCounter counter;
    server.onChange = [&] { live.push_back(counter.GetLiveCount()); };
    EXPECT_EQ(server.AddHandler(&handler), 0u);
    ASSERT_TRUE(server.Settle());
    const std::size_t table = counter.GetLiveCount();
    EXPECT_EQ(server.RemoveHandler(&handler), 0u);
    ASSERT_TRUE(server.Settle());
    EXPECT_THAT(live, ElementsAre(0u, table));
    EXPECT_EQ(counter.GetLiveCount(), 0u);
}

TEST_F(ServerThreadLife, HasAHookThatDoesNothing)
{
    QuonServerThread server;
    server.ServerHook();
}

TEST(ServerThreadSoak, StartsAndStopsAThousandWorkers)
{
    const HardLimit limit;
    Journal journal;
    const Event event(false);
    for (int cycle = 0; cycle < 1000; ++cycle)
    {
        const Event called;
        TestHandler handler(event.Handle(), journal, "handler", [&] { called.Set(); });
        TestServer server;
        ASSERT_EQ(server.Start(), 0u) << cycle;
        ASSERT_EQ(server.AddHandler(&handler), 0u) << cycle;
        event.Set();
        ASSERT_TRUE(called.Wait()) << cycle;
        server.End();
        ASSERT_EQ(ExitCodeOf(server.GetThreadHandle()), 0u) << cycle;
    }
    EXPECT_EQ(journal.Lines().size(), 2000u);
}

TEST(ServerThreadLayout, KeepsItsFieldsAndVirtualFunctionsInOrder)
{
    constexpr std::size_t kHandle = sizeof(void*) + sizeof(CRITICAL_SECTION);
    constexpr std::size_t kSelector = kHandle + 16;
    EXPECT_EQ(sizeof(QuonServerThread), kSelector + sizeof(QuonSynchronizedSelector) + sizeof(void*));
    TestServer server;
    EXPECT_EQ(FieldAt<HANDLE>(server, kHandle), nullptr);
    EXPECT_EQ(FieldAt<DWORD>(server, kHandle + 8), 0u);
    EXPECT_EQ(FieldAt<bool>(server, kHandle + 12), false);
    EXPECT_EQ(FieldAt<void*>(server, kSelector + sizeof(QuonSynchronizedSelector)), nullptr);
    ASSERT_EQ(server.Start(), 0u);
    EXPECT_EQ(FieldAt<HANDLE>(server, kHandle), server.GetThreadHandle());
    EXPECT_EQ(FieldAt<DWORD>(server, kHandle + 8), ::GetThreadId(server.GetThreadHandle()));
    EXPECT_EQ(FieldAt<bool>(server, kHandle + 12), true);
    const QuonSynchronizedSelector selector;
    EXPECT_EQ(FieldAt<void*>(server, kSelector), FieldAt<void*>(selector, 0));
#if !defined(_MSC_VER)
    EXPECT_EQ(SlotOf(&QuonServerThread::Start), 2u);
    EXPECT_EQ(SlotOf(&QuonServerThread::AddHandler), 3u);
    EXPECT_EQ(SlotOf(&QuonServerThread::RemoveHandler), 4u);
    EXPECT_EQ(SlotOf(&QuonServerThread::Stop), 5u);
    EXPECT_EQ(SlotOf(&QuonServerThread::Run), 6u);
    EXPECT_EQ(SlotOf(&QuonServerThread::DoAddHandler), 7u);
    EXPECT_EQ(SlotOf(&QuonServerThread::DoRemoveHandler), 8u);
    EXPECT_EQ(SlotOf(&QuonServerThread::ServerHook), 9u);
    EXPECT_EQ(SlotOf(&QuonServerEventHandler::SetOwner), 2u);
    EXPECT_EQ(SlotOf(&QuonServerEventHandler::GetHandle), 3u);
    EXPECT_EQ(SlotOf(&QuonServerEventHandler::OnSignaled), 4u);
    EXPECT_EQ(SlotOf(&QuonServerEventHandler::OnClose), 5u);
    EXPECT_EQ(SlotOf(&QuonSocket::GetSocket), 6u);
#endif
}

}  // namespace
