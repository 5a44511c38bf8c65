// The plug-in of MonitoringLife.cpp: a module of a host that watches files.
#include "monitoring/QuonFileEventServer.h"

#include <cstdio>
#include <string>

namespace
{

constexpr int kRight = 42;

class Sink : public QuonFileEventSink
{
public:
    void OnFileNameChanged(const QuonFileEventId*) override {}
    void OnFolderNameChanged(const QuonFileEventId*) override {}
    void OnAttributesChanged(const QuonFileEventId*) override {}
    void OnSizeChanged(const QuonFileEventId*) override {}
    void OnLastWriteChanged(const QuonFileEventId*) override {}
    void OnLastAccessChanged(const QuonFileEventId*) override {}
    void OnWatchFailed(const QuonFileEventId*, const DWORD*) override { ++m_failures; }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

    int Failures() const { return m_failures; }

private:
    int m_failures = 0;
};

// Lives until the end: the subscriptions are not removed.
Sink& TheSink()
{
    static Sink* const sink = new Sink;
    return *sink;
}

std::wstring OwnFile()
{
    wchar_t folder[MAX_PATH] = {};
    wchar_t file[MAX_PATH] = {};
    ::GetTempPathW(MAX_PATH, folder);
    ::GetTempFileNameW(folder, L"qml", 0, file);
    return file;
}

bool PumpUntilFailures(int count)
{
    for (int attempt = 0; attempt < 2000 && TheSink().Failures() < count; ++attempt)
    {
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            ::DispatchMessageW(&message);
        }
        ::Sleep(10);
    }
    return TheSink().Failures() == count;
}

}  // namespace

// Leaves a folder watched: it is known to be, since a later request has been answered.
extern "C" __declspec(dllexport) int Watch()
{
    const std::wstring file = OwnFile();
    QuonFileEventId id = 0;
    QuonFileEventId failing = 0;
    QuonFileEventServer* const server = GetFileEventServer();
    if (server->Subscribe(file.c_str(), 0x18, &TheSink(), &id) != S_OK ||
        server->Subscribe(L"C:\\no such folder\\at all", 0x18, &TheSink(), &failing) != S_OK)
    {
        return 0;
    }
    const bool isAnswered = PumpUntilFailures(1);
    ::DeleteFileW(file.c_str());
    return isAnswered ? kRight : 0;
}

// Ends while the watcher is in the pause before it looks at the file.
extern "C" __declspec(dllexport) int WatchAndWrite()
{
    const int result = Watch();
    ::DeleteFileW(OwnFile().c_str());
    ::Sleep(100);
    return result;
}

extern "C" __declspec(dllexport) int ShutDown()
{
    QuonFileEventServer* const server = GetFileEventServer();
    server->Shutdown();
    QuonFileEventId id = 0;
    return server->Subscribe(L"C:\\", 0x1, &TheSink(), &id) == E_FAIL ? kRight : 0;
}
