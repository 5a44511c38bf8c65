#include "messaging/QuonServerThread.h"

#include "base/MemoryInternal.h"
#include "base/QuonEllipsis.h"
#include "messaging/ThreadStartInternal.h"

#include <memory>

namespace
{

static_assert(kQuonMaxServerHandles == MAXIMUM_WAIT_OBJECTS, "what one wait takes");
constexpr DWORD kUnhandledError = 0x8000FFFF;

class Lock
{
public:
    explicit Lock(CRITICAL_SECTION& section) : m_section(section) { ::EnterCriticalSection(&m_section); }
    ~Lock() { ::LeaveCriticalSection(&m_section); }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

private:
    CRITICAL_SECTION& m_section;
};

using StartBlock = ThreadStart<QuonServerThread>;

// What travels to the server thread with a procedure call, which frees it.
struct HandlerWork
{
    QuonServerThread* server;
    QuonServerEventHandler* handler;
    HANDLE handle;
};
static_assert(sizeof(HandlerWork) == 24, "three pointers");

QuonServerResult QueueHandlerWork(QuonServerThread* server, QuonServerEventHandler* handler, PAPCFUNC routine)
{
    std::unique_ptr<HandlerWork> work = MakeInMemory<HandlerWork>(HandlerWork{server, handler, nullptr});
    if (work == nullptr)
    {
        return kQuonServerOutOfMemory;
    }
    work->handle = handler != nullptr ? handler->GetHandle() : nullptr;
    // From here on the block is the other thread's. One that could not be queued is not freed.
    return ::QueueUserAPC(routine, server->GetThreadHandle(), reinterpret_cast<ULONG_PTR>(work.release())) != 0
               ? kQuonServerOk
               : kQuonServerRefused;
}

// The block is freed before anything is done for it: what is called then may throw or not return.
HandlerWork TakeHandlerWork(ULONG_PTR workBlock)
{
    const std::unique_ptr<HandlerWork> work(reinterpret_cast<HandlerWork*>(workBlock));
    return *work;
}

// The index of the handle that ended a wait for any of `count` handles, signalled or abandoned; -1 for anything else.
int IndexOfWaitResult(DWORD result, DWORD count)
{
    if (result < WAIT_OBJECT_0 + count)
    {
        return static_cast<int>(result - WAIT_OBJECT_0);
    }
    if (result >= WAIT_ABANDONED_0 && result < WAIT_ABANDONED_0 + count)
    {
        return static_cast<int>(result - WAIT_ABANDONED_0);
    }
    return -1;
}

void WakeAndJoin(QuonServerThread* server, HANDLE thread)
{
    if (thread != nullptr)
    {
        ::QueueUserAPC(&QuonServerThread::WakeApc, thread, reinterpret_cast<ULONG_PTR>(server));
        ::WaitForSingleObject(thread, INFINITE);
    }
}

// The active handles, for one wait. More than a wait takes count as none: then the thread serves nobody, but still
// carries out the procedure calls that take handlers out and that end it.
DWORD CopyHandles(const QuonSynchronizedSelector& selector, HANDLE (&handles)[kQuonMaxServerHandles])
{
    return selector.GetCount() <= kQuonMaxServerHandles ? selector.GetHandles(handles) : 0;
}

void WaitOnce(const QuonSynchronizedSelector& selector)
{
    HANDLE handles[kQuonMaxServerHandles] = {};
    const DWORD count = CopyHandles(selector, handles);
    if (count == 0)
    {
        ::SleepEx(INFINITE, TRUE);
        return;
    }
    const int index = IndexOfWaitResult(::WaitForMultipleObjectsEx(count, handles, FALSE, INFINITE, TRUE), count);
    QuonSynchronizedSelector::HandleRecord record = {};
    if (index >= 0 && selector.Find(handles[index], record))
    {
        record.handler->OnSignaled();
    }
}

// Handlers whose handles are not signalled at this moment are left alone: they are their owners' to clean up.
void CloseSignaledHandlers(const QuonSynchronizedSelector& selector)
{
    HANDLE handles[kQuonMaxServerHandles] = {};
    const DWORD count = CopyHandles(selector, handles);
    for (DWORD index = 0; index < count; ++index)
    {
        QuonSynchronizedSelector::HandleRecord record = {};
        if (!selector.Find(handles[index], record) || record.handler == nullptr)
        {
            continue;
        }
        const DWORD state = ::WaitForSingleObject(handles[index], 0);
        if (state == WAIT_OBJECT_0 || state == WAIT_ABANDONED)
        {
            record.handler->OnSignaled();
            record.handler->OnClose();
            delete record.handler;
        }
    }
}

}  // namespace

QuonServerThread::QuonServerThread() : m_thread(nullptr), m_threadId(0), m_running(false), m_unused(nullptr)
{
    ::InitializeCriticalSection(&m_lifeCycle);
}

QuonServerThread::~QuonServerThread()
{
    {
        const Lock lock(m_lifeCycle);
        WakeAndJoin(this, m_thread);
    }
    ::DeleteCriticalSection(&m_lifeCycle);
}

QuonServerResult QuonServerThread::Start()
{
    const Lock lock(m_lifeCycle);
    if (m_thread != nullptr)
    {
        return kQuonServerOk;
    }
    StartBlock block = {::CreateEventW(nullptr, FALSE, FALSE, nullptr), this};
    if (block.started == nullptr)
    {
        return kQuonServerNoThread;
    }
    m_thread = ::CreateThread(nullptr, 0, &QuonServerThread::ThreadProc, &block, CREATE_SUSPENDED, &m_threadId);
    if (m_thread != nullptr && ::ResumeThread(m_thread) != 0)
    {
        ::WaitForSingleObject(block.started, INFINITE);
    }
    ::CloseHandle(block.started);
    return m_thread != nullptr ? kQuonServerOk : kQuonServerNoThread;
}

QuonServerResult QuonServerThread::AddHandler(QuonServerEventHandler* handler)
{
    return QueueHandlerWork(this, handler, &QuonServerThread::AddHandlerApc);
}

QuonServerResult QuonServerThread::RemoveHandler(QuonServerEventHandler* handler)
{
    return QueueHandlerWork(this, handler, &QuonServerThread::RemoveHandlerApc);
}

QuonServerResult QuonServerThread::Stop(DWORD* out)
{
    {
        const Lock lock(m_lifeCycle);
        WakeAndJoin(this, m_thread);
    }
    if (out != nullptr)
    {
        *out = 0;
    }
    return kQuonServerRefused;
}

DWORD QuonServerThread::Run(HANDLE started)
{
    m_running = true;
    ::SetEvent(started);
    while (m_running)
    {
        WaitOnce(m_selector);
    }
    CloseSignaledHandlers(m_selector);
    return 0;
}

QuonServerResult QuonServerThread::DoAddHandler(QuonServerEventHandler* handler)
{
    return m_selector.Add(handler->GetHandle(), handler);
}

QuonServerResult QuonServerThread::DoRemoveHandler(HANDLE handle)
{
    QuonServerEventHandler* handler = nullptr;
    return m_selector.Remove(handle, handler);
}

void QuonServerThread::ServerHook() {}

HANDLE QuonServerThread::GetThreadHandle() const
{
    return m_thread;
}

DWORD WINAPI QuonServerThread::ThreadProc(void* startBlock)
{
    const StartBlock block = StartBlock::Copy(startBlock);
    try
    {
        return block.owner->Run(block.started);
    }
    catch (const QuonEllipsis&)
    {
        return kUnhandledError;
    }
}

void CALLBACK QuonServerThread::AddHandlerApc(ULONG_PTR workBlock)
{
    const HandlerWork work = TakeHandlerWork(workBlock);
    if (work.server != nullptr && work.handler != nullptr)
    {
        work.server->DoAddHandler(work.handler);
    }
}

void CALLBACK QuonServerThread::RemoveHandlerApc(ULONG_PTR workBlock)
{
    const HandlerWork work = TakeHandlerWork(workBlock);
    if (work.server != nullptr && work.handle != nullptr)
    {
        work.server->DoRemoveHandler(work.handle);
    }
}

void CALLBACK QuonServerThread::WakeApc(ULONG_PTR) {}
