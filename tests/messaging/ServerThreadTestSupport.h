// A server thread and handlers that tell what happens to them.
#pragma once

#include "messaging/QuonServerThread.h"

#include "messaging/MessagingTestSupport.h"

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace quon_test
{

/// Runs functions on its thread, writes down what the thread does with handlers, and ends its thread in its destructor.
class TestServer : public QuonServerThread
{
public:
    struct Change
    {
        bool added;
        QuonServerEventHandler* handler;  ///< Null when removed.
        HANDLE handle;                    ///< Null when added.
        QuonServerResult result;
    };

    ~TestServer() override { End(); }

    /// Queues a function for the thread. They run in this order, and in that of AddHandler and RemoveHandler.
    void Queue(std::function<void()> function)
    {
        auto* const call = new std::function<void()>(std::move(function));
        if (::QueueUserAPC(&RunQueued, GetThreadHandle(), reinterpret_cast<ULONG_PTR>(call)) == 0)
        {
            delete call;  // The thread has ended.
        }
    }

    /// Runs a function on the thread and waits for it. @return whether it ran
    bool Do(const std::function<void()>& function)
    {
        const Event done;
        Queue([&] {
            function();
            done.Set();
        });
        return done.Wait();
    }

    /// Waits until the thread has made all changes that were queued so far.
    bool Settle()
    {
        return Do([] {});
    }

    /// Clears the running flag on the thread, in the same call as `last`, and waits for the thread's end.
    void End(const std::function<void()>& last = [] {})
    {
        if (GetThreadHandle() != nullptr)
        {
            Queue([this, last] {
                last();
                StopRunning();
            });
            Stop(nullptr);
        }
    }

    void StopRunning() { m_running = false; }
    bool IsRunning() const { return m_running; }

    /// Only after Settle.
    const std::vector<Change>& Changes() const { return m_changes; }

    /// Called at the start of each change, on the thread.
    std::function<void()> onChange = [] {};

    QuonServerResult DoAddHandler(QuonServerEventHandler* handler) override
    {
        onChange();
        const QuonServerResult result = QuonServerThread::DoAddHandler(handler);
        m_changes.push_back({true, handler, nullptr, result});
        return result;
    }

    QuonServerResult DoRemoveHandler(HANDLE handle) override
    {
        onChange();
        const QuonServerResult result = QuonServerThread::DoRemoveHandler(handle);
        m_changes.push_back({false, nullptr, handle, result});
        return result;
    }

private:
    static void CALLBACK RunQueued(ULONG_PTR data)
    {
        auto* const call = reinterpret_cast<std::function<void()>*>(data);
        const std::function<void()> function = std::move(*call);
        delete call;
        function();
    }

    std::vector<Change> m_changes;
};

/// Writes its name and what is called into a journal.
class TestHandler : public QuonServerEventHandler
{
public:
    TestHandler(
        HANDLE handle, Journal& journal, std::string name, std::function<void()> onSignaled = [] {})
        : QuonServerEventHandler(0),
          m_handle(handle),
          m_journal(journal),
          m_name(std::move(name)),
          m_onSignaled(std::move(onSignaled))
    {
    }
    ~TestHandler() override { m_journal.Write(m_name + " deleted"); }
    TestHandler(const TestHandler&) = delete;
    TestHandler& operator=(const TestHandler&) = delete;

    HANDLE GetHandle() override { return m_handle; }
    void OnSignaled() override
    {
        m_journal.Write(m_name + " signalled");
        m_onSignaled();
    }
    void OnClose() override { m_journal.Write(m_name + " closed"); }

    void SetHandle(HANDLE handle) { m_handle = handle; }
    std::uintptr_t Owner() const { return m_owner; }

private:
    HANDLE m_handle;
    Journal& m_journal;
    std::string m_name;
    std::function<void()> m_onSignaled;
};

}  // namespace quon_test
