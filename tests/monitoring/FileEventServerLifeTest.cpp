// How the server starts and ends, which happens once in a process: each test starts this program anew with one of the
// parts that are disabled otherwise.
#include "monitoring/FakeFolders.h"

#include "helpers/ChildProcess.h"
#include "helpers/FailingAllocation.h"
#include "helpers/OneFailure.h"
#include "helpers/ReusedBlock.h"
#include "helpers/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdio>

using namespace quon_test;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{

constexpr UINT kFirstMessage = 0x8800;
constexpr UINT kMessageCount = 34824;
constexpr DWORD kRightEnd = 42;

ChildResult RunPart(const wchar_t* name)
{
    std::fflush(stdout);
    return RunChild(L'"' + OwnProgram() + L"\" --gtest_also_run_disabled_tests --gtest_filter=*DISABLED_" + name);
}

// Runs a part that needs nothing but to be the first user of the server.
void ExpectPartPasses(const wchar_t* name)
{
    const ChildResult result = RunPart(name);
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, 0u);
}

class Silent : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord*) override {}
};

// The cookie of a new registration: how many there have been.
UINT NextCookie(UINT number = WM_APP)
{
    static Silent* const callback = new Silent;
    UINT cookie = 0;
    QuonWndMsgServer::GetWndMsgServer()->AddCallback(&number, &cookie, callback);
    return cookie;
}

HRESULT TrySubscribe(QuonFileEventSink* sink = nullptr)
{
    QuonFileEventId id = 0;
    return GetFileEventServer()->Subscribe(L"C:\\no such folder", 0x1, sink, &id);
}

std::vector<std::string> calls;

HANDLE WINAPI RecordingCreateEvent(SECURITY_ATTRIBUTES* security, BOOL manualReset, BOOL initialState,
                                   const wchar_t* name)
{
    // The run-time makes events, too; they are not these.
    if (manualReset && security == nullptr && name == nullptr)
    {
        calls.push_back(initialState ? "event, set" : "event");
    }
    return ::CreateEventW(security, manualReset, initialState, name);
}

DWORD WINAPI RecordingResume(HANDLE thread)
{
    calls.push_back("resume");
    return ::ResumeThread(thread);
}

DWORD WINAPI RecordingWait(HANDLE handle, DWORD limit)
{
    calls.push_back("wait " + std::to_string(limit));
    return ::WaitForSingleObject(handle, limit);
}

DWORD watcherThread = 0;
BOOL WINAPI RecordingPeek(MSG* message, HWND window, UINT first, UINT last, UINT remove)
{
    if (watcherThread == 0)
    {
        watcherThread = ::GetCurrentThreadId();
        calls.push_back(remove == PM_NOREMOVE ? "peek" : "peek and take");
    }
    return ::PeekMessageW(message, window, first, last, remove);
}

BOOL WINAPI RecordingSetEvent(HANDLE event)
{
    if (::GetCurrentThreadId() == watcherThread)
    {
        calls.push_back("set event");
    }
    return ::SetEvent(event);
}

BOOL WINAPI RecordingCloseHandle(HANDLE handle)
{
    calls.push_back("close");
    return ::CloseHandle(handle);
}

// One after the other: the starter waits while the thread sets itself up.
TEST(Part, DISABLED_Start)
{
    const UINT before = NextCookie();
    {
        const Patch<decltype(&::CreateEventW)> create(kLibrary, "CreateEventW", &RecordingCreateEvent);
        const Patch<decltype(&::ResumeThread)> resume(kLibrary, "ResumeThread", &RecordingResume);
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &RecordingWait);
        const Patch<decltype(&::PeekMessageW)> peek(kLibrary, "PeekMessageW", &RecordingPeek);
        const Patch<decltype(&::SetEvent)> set(kLibrary, "SetEvent", &RecordingSetEvent);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        TheServer();
    }
    EXPECT_THAT(calls, testing::AnyOf(ElementsAre("event", "resume", "wait 4294967295", "peek", "set event", "close"),
                                      ElementsAre("event", "resume", "peek", "wait 4294967295", "set event", "close"),
                                      ElementsAre("event", "resume", "peek", "set event", "wait 4294967295", "close")));
    EXPECT_EQ(TheWatcherThread().stackSize, 0u);
    EXPECT_EQ(TheWatcherThread().flags, DWORD{CREATE_SUSPENDED});
    EXPECT_EQ(TheWatcherThread().id, watcherThread);
    // One registration for each of the message numbers, and none more on a second call.
    EXPECT_EQ(NextCookie(), before + kMessageCount + 1);
    TheServer();
    EXPECT_EQ(NextCookie(), before + kMessageCount + 2);
    EXPECT_EQ(TrySubscribe(), S_OK);
}

TEST(FileEventServerLife, StartsItsThreadOnce)
{
    ExpectPartPasses(L"Start");
}

// Every number from the first to the last, and none beside them.
TEST(Part, DISABLED_Numbers)
{
    FakeWatch watch;
    RecordingSink& sink = watch.sink;
    const QuonFileEventId id = watch.Subscribe(L"c:\\d", 0x1);
    // The sink hears of two numbers alone without change bits, so that these tell where the range lies.
    for (UINT number = kFirstMessage - 2; number < kFirstMessage + kMessageCount + 2; ++number)
    {
        SendEvent(number, 0, id);
    }
    EXPECT_THAT(sink.calls, ElementsAre("reserved 1", "reserved 2", "failed 0"));
    UINT removed = 0;
    for (UINT number = 1; number <= 0x12000; ++number)
    {
        removed += QuonWndMsgServer::GetWndMsgServer()->RemoveCallback(&number) == S_OK ? 1u : 0u;
    }
    EXPECT_EQ(removed, 0u);
}

TEST(FileEventServerLife, HearsOfItsMessages)
{
    ExpectPartPasses(L"Numbers");
}

TEST(Part, DISABLED_NoMemoryForRegistrations)
{
    NextCookie();
    bool hasFailed = false;
    {
        const FailingAllocation failing(1000);
        GetFileEventServer();
        hasFailed = failing.Failed();
    }
    EXPECT_TRUE(hasFailed);
    // It stopped there: most numbers have no registration.
    EXPECT_LT(NextCookie(), 1000u);
    EXPECT_EQ(TrySubscribe(), E_FAIL);
    EXPECT_EQ(GetFileEventServer()->Unsubscribe(77), S_OK);
    GetFileEventServer()->Shutdown();
}

TEST(FileEventServerLife, DoesNotStartWithoutItsRegistrations)
{
    ExpectPartPasses(L"NoMemoryForRegistrations");
}

HANDLE WINAPI FailingCreateEvent(SECURITY_ATTRIBUTES*, BOOL, BOOL, const wchar_t*)
{
    calls.push_back("event");
    return nullptr;
}

TEST(Part, DISABLED_NoEvent)
{
    QuonWndMsgServer::GetWndMsgServer();
    const Patch<decltype(&::CreateEventW)> create(kLibrary, "CreateEventW", &FailingCreateEvent);
    TheServer();
    EXPECT_THAT(calls, ElementsAre("event"));
    EXPECT_EQ(TheWatcherThread().id, 0u);
    EXPECT_EQ(TrySubscribe(), E_FAIL);
}

TEST(FileEventServerLife, DoesNotRunWithoutItsEvent)
{
    ExpectPartPasses(L"NoEvent");
}

std::uintptr_t __cdecl FailingBeginThread(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned, unsigned*)
{
    calls.push_back("thread");
    return 0;
}

TEST(Part, DISABLED_NoThread)
{
    QuonWndMsgServer::GetWndMsgServer();
    const Patch<decltype(&::_beginthreadex)> begin(kLibrary, "_beginthreadex", &FailingBeginThread);
    const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
    GetFileEventServer();
    EXPECT_THAT(calls, ElementsAre("thread", "close"));
    EXPECT_EQ(TrySubscribe(), E_FAIL);
    EXPECT_EQ(GetFileEventServer()->Unsubscribe(77), S_OK);
}

TEST(FileEventServerLife, DoesNotRunWithoutAThread)
{
    ExpectPartPasses(L"NoThread");
}

DWORD WINAPI FailingResume(HANDLE)
{
    calls.push_back("resume");
    return static_cast<DWORD>(-1);
}

BOOL WINAPI RecordingTerminate(HANDLE thread, DWORD code)
{
    calls.push_back("terminate " + std::to_string(static_cast<int>(code)));
    return ::TerminateThread(thread, code);
}

TEST(Part, DISABLED_NoResume)
{
    QuonWndMsgServer::GetWndMsgServer();
    const Patch<decltype(&::ResumeThread)> resume(kLibrary, "ResumeThread", &FailingResume);
    const Patch<decltype(&::TerminateThread)> terminate(kLibrary, "TerminateThread", &RecordingTerminate);
    const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
    TheServer();
    EXPECT_THAT(calls, ElementsAre("resume", "terminate -1", "close", "close"));
    DWORD code = 0;
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
    ::GetExitCodeThread(TheWatcherThread().handle, &code);
    EXPECT_EQ(code, static_cast<DWORD>(-1));
    EXPECT_EQ(TrySubscribe(), E_FAIL);
}

TEST(FileEventServerLife, DoesNotRunWhenItsThreadCannotBeResumed)
{
    ExpectPartPasses(L"NoResume");
}

// A thread that has ended for an error: nobody starts it again, and its callers see that.
TEST(Part, DISABLED_ThreadThatThrows)
{
    RecordingSink sink;
    {
        TheServer();
        FakeFolders folders;
        folders.onRead = [](const std::wstring&) { throw 5; };
        EXPECT_EQ(TrySubscribe(&sink), S_OK);
        EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
    }
    DWORD code = 99;
    ::GetExitCodeThread(TheWatcherThread().handle, &code);
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(TrySubscribe(), HRESULT_FROM_WIN32(ERROR_INVALID_THREAD_ID));
    GetFileEventServer()->Shutdown();
    EXPECT_EQ(TrySubscribe(), E_FAIL);
}

TEST(FileEventServerLife, TellsThatItsThreadHasEnded)
{
    ExpectPartPasses(L"ThreadThatThrows");
}

BOOL WINAPI RecordingPostThread(DWORD thread, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (::GetCurrentThreadId() != TheWatcherThread().id)
    {
        calls.push_back("post " + std::to_string(message) + ' ' + std::to_string(wParam) + ' ' +
                        std::to_string(lParam) + (thread == TheWatcherThread().id ? "" : " elsewhere"));
    }
    return ::PostThreadMessageW(thread, message, wParam, lParam);
}

TEST(Part, DISABLED_Shutdown)
{
    QuonFileEventServer* const server = TheServer();
    RecordingSink sink;
    QuonFileEventId id = 0;
    QuonFileEventId other = 0;
    const TemporaryFolder folder;
    ASSERT_EQ(server->Subscribe(folder.Path().c_str(), 0x1, &sink, &id), S_OK);
    ASSERT_EQ(server->Subscribe(folder.Path().c_str(), 0x1, &sink, &other), S_OK);
    {
        const Patch<decltype(&::PostThreadMessageW)> post(kLibrary, "PostThreadMessageW", &RecordingPostThread);
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &RecordingWait);
        const Patch<decltype(&::TerminateThread)> terminate(kLibrary, "TerminateThread", &RecordingTerminate);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        server->Shutdown();
    }
    EXPECT_THAT(calls, ElementsAre("post 18 0 0", "wait 10000", "close"));
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, 0), WAIT_OBJECT_0);
    DWORD code = 99;
    ::GetExitCodeThread(TheWatcherThread().handle, &code);
    EXPECT_EQ(code, 0u);

    // For good.
    EXPECT_EQ(GetFileEventServer(), server);
    EXPECT_EQ(TrySubscribe(), E_FAIL);
    calls.clear();
    {
        const Patch<decltype(&::PostThreadMessageW)> post(kLibrary, "PostThreadMessageW", &RecordingPostThread);
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &RecordingWait);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        server->Shutdown();
        // An unsubscription is remembered, and nobody is told.
        EXPECT_EQ(server->Unsubscribe(other), S_OK);
    }
    EXPECT_THAT(calls, IsEmpty());

    // The window server does not let the registrations go, whose cookies are not their numbers: events still come.
    SendEvent(kMsgChanged, 0x1, other);
    EXPECT_THAT(sink.calls, IsEmpty());
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    // Those of the server, and this one.
    EXPECT_EQ(NextCookie(), kMessageCount + 1);
}

TEST(FileEventServerLife, ShutsDownForGoodAndStaysRegistered)
{
    ExpectPartPasses(L"Shutdown");
}

// Whoever has made so many registrations before gives the server cookies that are its numbers.
TEST(Part, DISABLED_ShutdownWithMatchingCookies)
{
    while (NextCookie() != kFirstMessage - 1)
    {
    }
    QuonFileEventServer* const server = TheServer();
    RecordingSink sink;
    QuonFileEventId id = 0;
    ASSERT_EQ(server->Subscribe(L"C:\\no such folder", 0x1, &sink, &id), S_OK);
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    server->Shutdown();
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    // All are gone, and their cookies forgotten: a second time removes nothing of others.
    for (UINT number = kFirstMessage; number < kFirstMessage + kMessageCount; ++number)
    {
        ASSERT_EQ(QuonWndMsgServer::GetWndMsgServer()->RemoveCallback(&number), E_FAIL) << number;
    }
}

// The registrations of all messages go while one of them is being dispatched.
TEST(Part, DISABLED_ShutdownFromASink)
{
    while (NextCookie() != kFirstMessage - 1)
    {
    }
    QuonFileEventServer* const server = TheServer();
    // After the server, for the same message: still called, though the registration before it has gone.
    WindowJournal& journal = TheWindowJournal();
    RecordingSink sink;
    QuonFileEventId id = 0;
    ASSERT_EQ(server->Subscribe(L"C:\\no such folder", 0x1, &sink, &id), S_OK);
    sink.then = [server] { server->Shutdown(); };
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    EXPECT_EQ(journal.Count({kMsgChanged, 0x1, static_cast<LPARAM>(id)}), 1u);
    SendEvent(kMsgChanged, 0x1, id);
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    EXPECT_EQ(journal.Count({kMsgChanged, 0x1, static_cast<LPARAM>(id)}), 2u);
    for (UINT number = kFirstMessage; number < kFirstMessage + kMessageCount; ++number)
    {
        ASSERT_EQ(QuonWndMsgServer::GetWndMsgServer()->RemoveCallback(&number), E_FAIL) << number;
    }
}

TEST(FileEventServerLife, ShutsDownFromASink)
{
    ExpectPartPasses(L"ShutdownFromASink");
}

TEST(FileEventServerLife, RemovesTheRegistrationsThatItCan)
{
    ExpectPartPasses(L"ShutdownWithMatchingCookies");
}

DWORD WINAPI ImpatientWait(HANDLE handle, DWORD limit)
{
    calls.push_back("wait " + std::to_string(limit));
    return ::WaitForSingleObject(handle, limit == 10000 ? 0 : limit);
}

TEST(Part, DISABLED_ShutdownOfAHangingThread)
{
    QuonFileEventServer* const server = TheServer();
    // Patched for good: the thread ends in it.
    auto* const folders = new FakeFolders;
    folders->onRead = [](const std::wstring&) { ::Sleep(INFINITE); };
    EXPECT_EQ(TrySubscribe(), S_OK);
    {
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &ImpatientWait);
        const Patch<decltype(&::TerminateThread)> terminate(kLibrary, "TerminateThread", &RecordingTerminate);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        server->Shutdown();
    }
    EXPECT_THAT(calls, ElementsAre("wait 10000", "terminate 0", "close"));
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
    DWORD code = 99;
    ::GetExitCodeThread(TheWatcherThread().handle, &code);
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(TrySubscribe(), E_FAIL);
}

std::atomic<int> failedWaits = 0;
Event& waitHasFailed = *new Event;

// Takes no lock: the thread is terminated in it.
DWORD WINAPI FailureNotingWait(DWORD count, const HANDLE* handles, DWORD limit, DWORD wakeMask, DWORD flags)
{
    const DWORD result = ::MsgWaitForMultipleObjectsEx(count, handles, limit, wakeMask, flags);
    if (result == WAIT_FAILED && ++failedWaits == 100)
    {
        waitHasFailed.Set();
    }
    return result;
}

// The watcher cannot wait any more.
TEST(Part, DISABLED_TooManyFolders)
{
    QuonFileEventServer* const server = TheServer();
    new Patch<decltype(&::MsgWaitForMultipleObjectsEx)>(kLibrary, "MsgWaitForMultipleObjectsEx", &FailureNotingWait);
    TemporaryFolder folder;
    RecordingSink sink;
    std::vector<QuonFileEventId> ids;
    const auto subscribeToAnother = [&] {
        const std::wstring name = std::to_wstring(ids.size());
        folder.MakeFolder(name);
        QuonFileEventId id = 0;
        EXPECT_EQ(server->Subscribe((folder / name).c_str(), 0x1, &sink, &id), S_OK);
        ids.push_back(id);
    };
    while (ids.size() < kQuonMaxWatchedFolders)
    {
        subscribeToAnother();
    }
    // So many are watched: a request after them is carried out.
    RecordingSink missing;
    EXPECT_EQ(TrySubscribe(&missing), S_OK);
    EXPECT_TRUE(PumpUntil([&] { return !missing.calls.empty(); }));
    EXPECT_EQ(failedWaits, 0);

    subscribeToAnother();
    ASSERT_TRUE(waitHasFailed.Wait());
    EXPECT_EQ(server->Unsubscribe(ids.front()), S_OK);
    SendEvent(kMsgChanged, 0x1, ids.front());
    EXPECT_THAT(sink.calls, IsEmpty());
    SendEvent(kMsgChanged, 0x1, ids.back());
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
    EXPECT_EQ(TrySubscribe(), S_OK);
    {
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &ImpatientWait);
        const Patch<decltype(&::TerminateThread)> terminate(kLibrary, "TerminateThread", &RecordingTerminate);
        server->Shutdown();
    }
    EXPECT_THAT(calls, ElementsAre("wait 10000", "terminate 0"));
    EXPECT_EQ(TrySubscribe(), E_FAIL);
    EXPECT_EQ(server->Unsubscribe(ids.back()), S_OK);
    SendEvent(kMsgChanged, 0x1, ids.back());
    EXPECT_THAT(sink.calls, ElementsAre("file name"));
}

TEST(FileEventServerLife, UnsubscribesAndShutsDownWithMoreFoldersThanItCanWatch)
{
    ExpectPartPasses(L"TooManyFolders");
}

TEST(FileEventServerLife, TerminatesAThreadThatDoesNotEnd)
{
    ExpectPartPasses(L"ShutdownOfAHangingThread");
}

// Only a wait that runs out terminates the thread. It was told to end, and does.
TEST(Part, DISABLED_ShutdownWithAWaitThatFails)
{
    QuonFileEventServer* const server = TheServer();
    EXPECT_EQ(TrySubscribe(), S_OK);
    {
        const OneFailure wait("WaitForSingleObject", WAIT_FAILED, ERROR_INVALID_HANDLE);
        const Patch<decltype(&::TerminateThread)> terminate(kLibrary, "TerminateThread", &RecordingTerminate);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        server->Shutdown();
        EXPECT_TRUE(wait.WasCalled());
    }
    EXPECT_THAT(calls, ElementsAre("close"));
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
    EXPECT_EQ(TrySubscribe(), E_FAIL);
}

TEST(FileEventServerLife, LetsAThreadGoThatItCannotWaitFor)
{
    ExpectPartPasses(L"ShutdownWithAWaitThatFails");
}

// It is let go, and the server is as stopped as ever.
TEST(Part, DISABLED_ShutdownOfAThreadThatStays)
{
    QuonFileEventServer* const server = TheServer();
    auto* const folders = new FakeFolders;
    const Event go;
    folders->onRead = [&go](const std::wstring&) { go.Wait(); };
    EXPECT_EQ(TrySubscribe(), S_OK);
    {
        const Patch<decltype(&::WaitForSingleObject)> wait(kLibrary, "WaitForSingleObject", &ImpatientWait);
        const OneFailure terminate("TerminateThread", FALSE, ERROR_ACCESS_DENIED);
        const Patch<decltype(&::CloseHandle)> close(kLibrary, "CloseHandle", &RecordingCloseHandle);
        server->Shutdown();
        EXPECT_TRUE(terminate.WasCalled());
    }
    EXPECT_THAT(calls, ElementsAre("wait 10000", "close"));
    EXPECT_EQ(TrySubscribe(), E_FAIL);
    // It ends as it was told to once it can.
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, 0), DWORD{WAIT_TIMEOUT});
    go.Set();
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
}

TEST(FileEventServerLife, LeavesAThreadThatCannotBeTerminated)
{
    ExpectPartPasses(L"ShutdownOfAThreadThatStays");
}

// The thread ends as if it had been told to stop, and its callers see that.
TEST(Part, DISABLED_NoMessages)
{
    TheServer();
    {
        // The watcher waits in a call that has been made already: a request lets it come to the next.
        const OneFailure failure("GetMessageW", static_cast<std::uintptr_t>(-1), ERROR_INVALID_PARAMETER);
        EXPECT_EQ(TrySubscribe(), S_OK);
        EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
        EXPECT_TRUE(failure.WasCalled());
    }
    DWORD code = 99;
    ::GetExitCodeThread(TheWatcherThread().handle, &code);
    EXPECT_EQ(code, 0u);
    EXPECT_EQ(TrySubscribe(), HRESULT_FROM_WIN32(ERROR_INVALID_THREAD_ID));
}

TEST(FileEventServerLife, TellsThatItsThreadGetsNoMessages)
{
    ExpectPartPasses(L"NoMessages");
}

// What was asked for before is done before the end.
TEST(Part, DISABLED_ShutdownBehindRequests)
{
    QuonFileEventServer* const server = TheServer();
    FakeFolders folders;
    std::vector<QuonFileEventId> ids(5);
    for (QuonFileEventId& id : ids)
    {
        ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, nullptr, &id), S_OK);
    }
    for (const QuonFileEventId id : ids)
    {
        EXPECT_EQ(server->Unsubscribe(id), S_OK);
    }
    server->Shutdown();
    EXPECT_EQ(folders.OpenCount(), 0u);
    EXPECT_THAT(folders.TakeCalls(), testing::Contains("close c:\\d"));
}

TEST(FileEventServerLife, DoesWhatItWasAskedForBeforeItShutsDown)
{
    ExpectPartPasses(L"ShutdownBehindRequests");
}

// What was not unsubscribed stays with the system until the process ends.
TEST(Part, DISABLED_ShutdownWithSubscriptions)
{
    FakeWatch* const watch = new FakeWatch;
    watch->Subscribe(L"c:\\d", 0x1);
    EXPECT_TRUE(watch->Barrier());
    watch->server->Shutdown();
    EXPECT_EQ(watch->folders.OpenCount(), 1u);
    EXPECT_THAT(watch->folders.TakeCalls(), testing::Not(testing::Contains("close c:\\d")));
}

TEST(FileEventServerLife, DoesNotCloseNotificationsWhenItShutsDown)
{
    ExpectPartPasses(L"ShutdownWithSubscriptions");
}

HWND WINAPI FailingCreateWindow(DWORD, const wchar_t*, const wchar_t*, DWORD, int, int, int, int, HWND, HMENU,
                                HINSTANCE, void*)
{
    return nullptr;
}

// As another process of the same desktop can do.
TEST(Part, DISABLED_WindowClosed)
{
    QuonFileEventServer* const server = TheServer();
    QuonWndMsgServer* const window = QuonWndMsgServer::GetWndMsgServer();
    FakeFolders folders;
    folders.SetFolder(L"c:\\d");
    RecordingSink sink;
    QuonFileEventId id = 0;
    ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, &sink, &id), S_OK);
    ASSERT_TRUE(PumpUntil([&] { return folders.OpenCount() == 1; }));
    const HWND handle = window->GetWindow();
    ::SendMessageW(handle, WM_CLOSE, 0, 0);
    EXPECT_FALSE(::IsWindow(handle));
    EXPECT_EQ(window->GetWindow(), handle);
    EXPECT_FALSE(window->PostToWindow(kMsgChanged, 0x1, static_cast<LPARAM>(id)));

    folders.TakeCalls();
    folders.Signal(L"c:\\d");
    std::vector<std::string> seen;
    EXPECT_TRUE(PumpUntil([&] {
        for (const std::string& call : folders.TakeCalls())
        {
            seen.push_back(call);
        }
        return !seen.empty() && seen.back() == "read c:\\d";
    }));
    QuonFileEventId other = 0;
    EXPECT_EQ(server->Subscribe(L"c:\\d", 0x1, &sink, &other), S_OK);
    EXPECT_EQ(server->Unsubscribe(other), S_OK);
    EXPECT_EQ(server->Unsubscribe(id), S_OK);
    server->Shutdown();
    EXPECT_EQ(folders.OpenCount(), 0u);
    EXPECT_THAT(sink.calls, IsEmpty());
}

TEST(FileEventServerLife, ReportsNothingOnceItsWindowWasClosed)
{
    ExpectPartPasses(L"WindowClosed");
}

TEST(Part, DISABLED_WatcherQuit)
{
    TheServer();
    EXPECT_TRUE(::PostThreadMessageW(TheWatcherThread().id, WM_QUIT, 0, 0));
    EXPECT_EQ(::WaitForSingleObject(TheWatcherThread().handle, kPatience), WAIT_OBJECT_0);
    EXPECT_EQ(TrySubscribe(), static_cast<HRESULT>(0x800705A4));
    EXPECT_EQ(GetFileEventServer()->Unsubscribe(77), S_OK);
}

TEST(FileEventServerLife, RefusesSubscriptionsOnceItsThreadWasMadeToQuit)
{
    ExpectPartPasses(L"WatcherQuit");
}

int windowPosts = 0;
BOOL WINAPI CountingPost(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    ++windowPosts;
    return ::PostMessageW(window, message, wParam, lParam);
}

// A message to no window would reach the watcher's own queue: an acknowledgement would be a second removal there.
TEST(Part, DISABLED_NoWindow)
{
    const Patch<decltype(&::CreateWindowExW)> create(kLibrary, "CreateWindowExW", &FailingCreateWindow);
    const Patch<decltype(&::PostMessageW)> post(kLibrary, "PostMessageW", &CountingPost);
    QuonFileEventServer* const server = TheServer();
    FakeFolders folders;
    folders.SetFolder(L"c:\\d");
    folders.SetError(L"c:\\no", 5);
    QuonFileEventId id = 0;
    QuonFileEventId failing = 0;
    QuonFileEventId other = 0;
    ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, nullptr, &id), S_OK);
    ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, nullptr, &other), S_OK);
    ASSERT_EQ(server->Subscribe(L"c:\\no", 0x1, nullptr, &failing), S_OK);
    const auto waitFor = [&folders](size_t count) { return PumpUntil([&] { return folders.OpenCount() == count; }); };
    EXPECT_TRUE(waitFor(1));
    ::PostThreadMessageW(TheWatcherThread().id, kMsgFolderSignaled, 0,
                         reinterpret_cast<LPARAM>(folders.Notification(L"c:\\d")));
    EXPECT_EQ(server->Unsubscribe(id), S_OK);
    EXPECT_EQ(server->Unsubscribe(other), S_OK);
    EXPECT_TRUE(waitFor(0));
    {
        // No event of a subscription is queued, so its identifier is free at once.
        ReusedBlock block;
        ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, nullptr, &id), S_OK);
        EXPECT_EQ(server->Unsubscribe(id), S_OK);
        ASSERT_TRUE(block.WaitUntilFree());
        ASSERT_EQ(server->Subscribe(L"c:\\d", 0x1, nullptr, &other), S_OK);
        EXPECT_EQ(other, id);
        EXPECT_EQ(server->Unsubscribe(other), S_OK);
        ASSERT_TRUE(block.WaitUntilFree());
    }
    server->Shutdown();
    EXPECT_EQ(windowPosts, 0);
}

TEST(FileEventServerLife, PostsNothingWithoutAWindow)
{
    ExpectPartPasses(L"NoWindow");
}

// At the process's end the server shuts down by itself, before the window goes; nothing is left to tell but the code.
bool hasClosedThread = false;
BOOL WINAPI WatchingCloseHandle(HANDLE handle)
{
    DWORD code = 0;
    hasClosedThread = hasClosedThread || ::GetExitCodeThread(handle, &code) != FALSE;
    return ::CloseHandle(handle);
}

BOOL WINAPI EndingDestroyWindow(HWND window)
{
    const BOOL result = ::DestroyWindow(window);
    ::TerminateProcess(::GetCurrentProcess(), hasClosedThread ? kRightEnd : 43);
    return result;
}

TEST(Part, DISABLED_End)
{
    TheServer();
    EXPECT_EQ(TrySubscribe(), S_OK);
    // They stay until the process has gone.
    new Patch<decltype(&::CloseHandle)>(kLibrary, "CloseHandle", &WatchingCloseHandle);
    new Patch<decltype(&::DestroyWindow)>(kLibrary, "DestroyWindow", &EndingDestroyWindow);
}

TEST(FileEventServerLife, EndsBeforeTheWindowServer)
{
    const ChildResult result = RunPart(L"End");
    EXPECT_TRUE(result.ended);
    EXPECT_EQ(result.code, kRightEnd);
}

// A program whose modules end in every way that there is; see MonitoringLife.cpp.
TEST(MonitoringLifeCycle, EndsInEveryWayWithoutHanging)
{
    const std::wstring program = OwnProgram();
    const std::wstring folder = program.substr(0, program.find_last_of(L"\\/") + 1);
    for (const wchar_t* way : {L"return", L"exit", L"return-in-event", L"shutdown-return", L"free", L"free-twice"})
    {
        SCOPED_TRACE(std::string(way, way + wcslen(way)));
        const ChildResult result = RunChild(L'"' + folder + L"monitoring_life.exe\" " + way);
        EXPECT_TRUE(result.ended);
        EXPECT_EQ(result.code, 42u);
    }
}

}  // namespace
