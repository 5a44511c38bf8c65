/// @file
/// A worker thread that waits on handles and calls their handlers.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "messaging/QuonServerEventHandler.h"
#include "messaging/QuonServerResult.h"
#include "messaging/QuonSynchronizedSelector.h"

/// A thread that sleeps in alertable waits on a set of handles and calls a handler when one is signalled. Changes of
/// the set, from any thread, travel to it as asynchronous procedure calls, so that its table needs no lock. They take
/// effect at the first wait that finds no handle signalled: while any handle stays signalled, no procedure call runs.
/// A handler that wants to be taken out at once calls DoRemoveHandler, and one that ends the thread clears the flag
/// itself.
///
/// The set takes kQuonMaxServerHandles handles. With more the thread calls no handler and waits for procedure calls
/// alone, until RemoveHandler has brought the number down; at its end it leaves all of them alone.
///
/// The class never clears its running flag. A derived class does, on the server thread (from a handler or a procedure
/// call of its own), before Stop or the destructor is called: both wait for the thread without limit.
class QUON_API QuonServerThread
{
public:
    /// There is no thread before Start.
    QuonServerThread();
    /// One object, one thread.
    QuonServerThread(const QuonServerThread&) = delete;
    /// One object, one thread.
    QuonServerThread& operator=(const QuonServerThread&) = delete;

    /// Wakes the thread, if there is one, and waits without limit for its end. Handlers still registered are not
    /// deleted, and the thread handle stays open. A derived class whose overrides the thread may still call has called
    /// Stop before: here they are gone already.
    virtual ~QuonServerThread();

    /// Starts the thread and returns once it runs. Does nothing when there is a thread already, ended or not: an object
    /// starts one thread in its life. Never from a DllMain.
    /// @return kQuonServerOk, or kQuonServerNoThread when the event or the thread could not be created
    virtual QuonServerResult Start();

    /// Sends the thread a handler to register. May be called on any thread; the handle is asked for on this one and
    /// again on the server thread.
    /// @param handler the 64th at most (kQuonMaxServerHandles): with one more no handler is called. Null is sent and
    /// ignored. It stays the caller's until the thread's end, which deletes it when its handle is signalled then.
    /// @return kQuonServerOk when it was sent; kQuonServerOutOfMemory; kQuonServerRefused when it could not be queued
    virtual QuonServerResult AddHandler(QuonServerEventHandler* handler);

    /// Sends the thread a handler to take out, by the handle it has now. May be called on any thread. From OnSignaled
    /// it has no effect as long as a handle stays signalled: use DoRemoveHandler there.
    /// @param handler null is sent and ignored; the caller's again once the thread has processed it; it is not deleted
    /// @return as for AddHandler
    virtual QuonServerResult RemoveHandler(QuonServerEventHandler* handler);

    /// Wakes the thread and waits without limit for its end; the running flag must have been cleared on it, or Stop
    /// never returns. Not from the server thread. The thread handle stays open and is kept.
    /// @param out set to 0 when not null
    /// @return kQuonServerRefused, always
    virtual QuonServerResult Stop(DWORD* out);

    /// The thread's work: waits and calls handlers until the running flag is cleared, then closes and deletes the
    /// handlers whose handles are signalled at that moment.
    /// @param started set once the thread runs
    /// @return the thread's exit value, 0
    virtual DWORD Run(HANDLE started);

    /// Registers a handler. On the server thread only.
    /// @return kQuonServerOk, or kQuonServerRefused when the handle is registered already
    virtual QuonServerResult DoAddHandler(QuonServerEventHandler* handler);

    /// Takes a handle out of the table, at once; its handler is not deleted. On the server thread only, also from
    /// OnSignaled.
    /// @return kQuonServerOk, or kQuonServerRefused when the handle is not registered
    virtual QuonServerResult DoRemoveHandler(HANDLE handle);

    /// For derived classes. Does nothing and is not called.
    virtual void ServerHook();

    /// @return the thread's handle, which nobody closes; null before Start
    HANDLE GetThreadHandle() const;

    /// The thread's start routine.
    /// @param startBlock what Start put together
    /// @return the result of Run, or 0x8000FFFF when a QuonEllipsis escaped it
    static DWORD WINAPI ThreadProc(void* startBlock);

    /// Carries AddHandler to the server thread.
    /// @param workBlock what AddHandler allocated; freed
    static void CALLBACK AddHandlerApc(ULONG_PTR workBlock);
    /// Carries RemoveHandler to the server thread.
    /// @param workBlock what RemoveHandler allocated; freed
    static void CALLBACK RemoveHandlerApc(ULONG_PTR workBlock);
    /// Does nothing: it only ends the thread's wait.
    static void CALLBACK WakeApc(ULONG_PTR server);

private:
    // In this order: other modules were built against this layout.
    CRITICAL_SECTION m_lifeCycle;
    HANDLE m_thread;
    DWORD m_threadId;

protected:
    bool m_running;  ///< Cleared by a derived class, on the server thread, to end it.

private:
    QuonSynchronizedSelector m_selector;
    void* m_unused;
};
