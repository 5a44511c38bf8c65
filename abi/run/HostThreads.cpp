// Worker threads in the ABI of MSVC: the library calls virtual functions of this program on a thread that it started.

#include "HostChecks.h"

#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonServerThread.h"

namespace
{

constexpr DWORD kLimit = 30000;  // milliseconds; what waits this long has failed

class StoppableServer : public QuonServerThread
{
public:
    void End()
    {
        CHECK(::QueueUserAPC(&StopRunning, GetThreadHandle(), reinterpret_cast<ULONG_PTR>(this)) != 0);
        DWORD out = 1;
        CHECK(Stop(&out) == kQuonServerRefused && out == 0);
    }

    // On the server thread.
    QuonServerResult DoAddHandler(QuonServerEventHandler* handler) override
    {
        ++added;
        return QuonServerThread::DoAddHandler(handler);
    }

    int added = 0;

private:
    static void CALLBACK StopRunning(ULONG_PTR server)
    {
        reinterpret_cast<StoppableServer*>(server)->m_running = false;
    }
};

class CountingHandler : public QuonSocket
{
public:
    explicit CountingHandler(HANDLE done)
        : QuonSocket(7), m_event(::CreateEventW(nullptr, FALSE, FALSE, nullptr)), m_done(done)
    {
    }
    ~CountingHandler() override { ::CloseHandle(m_event); }
    CountingHandler(const CountingHandler&) = delete;
    CountingHandler& operator=(const CountingHandler&) = delete;

    HANDLE GetHandle() override { return m_event; }
    std::uintptr_t GetSocket() override { return m_owner; }
    void OnSignaled() override
    {
        thread = ::GetCurrentThreadId();
        ++calls;
        ::SetEvent(m_done);
    }

    DWORD thread = 0;
    int calls = 0;

private:
    HANDLE m_event;
    HANDLE m_done;
};

void CheckHandlers()
{
    const HANDLE done = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CountingHandler handler(done);
    CHECK(handler.GetSocket() == 7);
    handler.SetOwner(9);
    CHECK(handler.GetSocket() == 9);
    {
        StoppableServer server;
        CHECK(server.Start() == kQuonServerOk);
        CHECK(server.AddHandler(&handler) == kQuonServerOk);
        for (int call = 1; call <= 2; ++call)
        {
            ::SetEvent(handler.GetHandle());
            CHECK(::WaitForSingleObject(done, kLimit) == WAIT_OBJECT_0 && handler.calls == call);
        }
        CHECK(server.RemoveHandler(&handler) == kQuonServerOk);
        server.End();
        DWORD code = 1;
        CHECK(::GetExitCodeThread(server.GetThreadHandle(), &code) && code == 0);
        CHECK(server.added == 1 && handler.thread == ::GetThreadId(server.GetThreadHandle()));
        ::CloseHandle(server.GetThreadHandle());
    }
    ::CloseHandle(done);
}

void CheckSelector()
{
    QuonSynchronizedSelector selector;
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    CountingHandler handler(event);
    CHECK(selector.Add(handler.GetHandle(), &handler) == kQuonServerOk);
    CHECK(selector.Add(handler.GetHandle(), &handler) == kQuonServerRefused);
    HANDLE handles[64] = {};
    CHECK(selector.GetHandles(handles) == 1 && handles[0] == handler.GetHandle());
    QuonSynchronizedSelector::HandleRecord record = {};
    CHECK(selector.Find(handles[0], record) && record.active && record.handler == &handler);
    QuonServerEventHandler* removed = nullptr;
    CHECK(selector.Remove(handles[0], removed) == kQuonServerOk && removed == &handler);
    CHECK(selector.GetHandles(handles) == 0);
    ::CloseHandle(event);
}

class Number : public QuonMessage
{
public:
    explicit Number(int value) : value(value) {}

    int value;
};

// Messages go to this thread; an event reports each.
void CheckQueue()
{
    HANDLE thread = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(), &thread, 0, FALSE,
                      DUPLICATE_SAME_ACCESS);
    const HANDLE event = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    {
        QuonHEVENTCallback callback(event, false);
        QuonMessageQueue queue(&callback, thread);
        CHECK(queue.GetCallback() == &callback);
        CHECK(queue.Post(nullptr) == kQuonServerNullMessage);
        QuonMessage* message = nullptr;
        CHECK(queue.PeekNext(&message) == kQuonServerQueueEmpty);
        CHECK(queue.Post(new Number(3)) == kQuonServerOk && queue.Close() == kQuonServerRefused);
        ::SleepEx(0, TRUE);
        CHECK(::WaitForSingleObject(event, 0) == WAIT_OBJECT_0);
        CHECK(queue.PeekNext(&message) == kQuonServerOk && static_cast<Number*>(message)->value == 3);
        CHECK(queue.GetNext(&message) == kQuonServerOk);
        delete message;
        CHECK(queue.GetNext(&message) == kQuonServerQueueClosed);
    }
    ::CloseHandle(event);
    ::CloseHandle(thread);
}

}  // namespace

void CheckThreads()
{
    CheckHandlers();
    CheckSelector();
    CheckQueue();
}
