// The plug-in of MessagingLife.cpp: a module of a host that uses the library.
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonServerThread.h"
#include "messaging/QuonWndMsgServer.h"

namespace
{

constexpr int kRight = 42;

class Worker : public QuonServerThread
{
public:
    static void CALLBACK EndApc(ULONG_PTR worker) { reinterpret_cast<Worker*>(worker)->m_running = false; }
};

class Message : public QuonMessage
{
};

class Counter : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord*) override { ++m_calls; }
    int Calls() const { return m_calls; }

private:
    int m_calls = 0;
};

// Its registration stays until the end, and so must it.
Counter& TheCounter()
{
    static Counter* const counter = new Counter;
    return *counter;
}

bool UseTheWindow()
{
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    const UINT message = WM_APP;
    UINT cookie = 0;
    if (server->AddCallback(&message, &cookie, &TheCounter()) != S_OK)
    {
        return false;
    }
    server->SendToWindow(message, 0, 0);
    return ::IsWindow(server->GetWindow()) && TheCounter().Calls() == 1;
}

bool UseAQueue()
{
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    QuonMessage* got = nullptr;
    return queue.Post(&message) == kQuonServerOk && queue.GetNext(&got) == kQuonServerOk && got == &message;
}

}  // namespace

extern "C" __declspec(dllexport) int Work()
{
    Worker worker;
    if (!UseTheWindow() || !UseAQueue() || worker.Start() != kQuonServerOk)
    {
        return 0;
    }
    ::QueueUserAPC(&Worker::EndApc, worker.GetThreadHandle(), reinterpret_cast<ULONG_PTR>(&worker));
    worker.Stop(nullptr);
    return kRight;
}

// Against the rules, and yet the process ends: by then the system has ended the thread.
extern "C" __declspec(dllexport) int LeaveAWorkerRunning()
{
    static Worker worker;
    return UseTheWindow() && worker.Start() == kQuonServerOk ? kRight : 0;
}
