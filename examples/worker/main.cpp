// A worker thread that serves two events and sends what it finds back to the main thread.
#include "messaging/QuonCallback.h"

#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonServerEventHandler.h"
#include "messaging/QuonServerThread.h"

#include <cstdio>
#include <memory>

namespace
{

struct Report : QuonMessage
{
    explicit Report(const char* what) : text(what) {}
    const char* text;
};

class Worker : public QuonServerThread
{
public:
    ~Worker() override
    {
        // Here and not later: the thread may still call what this class overrides.
        if (GetThreadHandle() != nullptr)
        {
            ::QueueUserAPC(&EndApc, GetThreadHandle(), reinterpret_cast<ULONG_PTR>(this));
            Stop(nullptr);
        }
    }

private:
    static void CALLBACK EndApc(ULONG_PTR worker) { reinterpret_cast<Worker*>(worker)->m_running = false; }
};

// Serves one event; runs on the worker.
class Job : public QuonServerEventHandler
{
public:
    Job(HANDLE event, const char* what, QuonMessageQueue& reports)
        : QuonServerEventHandler(0), m_event(event), m_what(what), m_reports(reports)
    {
    }

    HANDLE GetHandle() override { return m_event; }

    void OnSignaled() override
    {
        auto report = std::make_unique<Report>(m_what);
        if (m_reports.Post(report.get()) == kQuonServerOk)
        {
            report.release();  // the queue's from here on
        }
    }

private:
    HANDLE m_event;
    const char* m_what;
    QuonMessageQueue& m_reports;
};

// Waits alertably, which delivers what was posted, until a report is there.
std::unique_ptr<Report> WaitForReport(QuonMessageQueue& reports)
{
    QuonMessage* message = nullptr;
    while (reports.GetNext(&message) == kQuonServerQueueEmpty)
    {
        ::SleepEx(INFINITE, TRUE);
    }
    return std::unique_ptr<Report>(static_cast<Report*>(message));
}

}  // namespace

int main()
{
    HANDLE const pointsChanged = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    HANDLE const surfaceChanged = ::CreateEventW(nullptr, FALSE, FALSE, nullptr);
    QuonMessageQueue reports(nullptr, nullptr);  // for this thread
    Job points(pointsChanged, "points checked", reports);
    Job surface(surfaceChanged, "surface rebuilt", reports);
    {
        Worker worker;
        worker.Start();
        worker.AddHandler(&points);
        worker.AddHandler(&surface);

        ::SetEvent(pointsChanged);
        std::printf("%s\n", WaitForReport(reports)->text);
        ::SetEvent(surfaceChanged);
        std::printf("%s\n", WaitForReport(reports)->text);
    }  // the worker ends; its handlers stay ours, because their events are not signalled
    ::CloseHandle(pointsChanged);
    ::CloseHandle(surfaceChanged);
    std::printf("worker ended\n");
    return 0;
}
