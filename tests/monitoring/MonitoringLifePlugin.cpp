// The plug-in of MonitoringLife.cpp: a module of a host that watches files.
#include "monitoring/QuonFileEventServer.h"

#include "helpers/ImportPatch.h"

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

// Whoever started this program ends it when nothing comes.
void PumpUntilFailures(int count)
{
    while (TheSink().Failures() < count)
    {
        MSG message = {};
        ::GetMessageW(&message, nullptr, 0, 0);
        ::DispatchMessageW(&message);
    }
}

// @return whether the file's folder is watched: it is known to be, since a later request has been answered
bool WatchFile(const std::wstring& file)
{
    QuonFileEventId id = 0;
    QuonFileEventId failing = 0;
    QuonFileEventServer* const server = GetFileEventServer();
    if (server->Subscribe(file.c_str(), 0x18, &TheSink(), &id) != S_OK ||
        server->Subscribe(L"C:\\no such folder\\at all", 0x18, &TheSink(), &failing) != S_OK)
    {
        return false;
    }
    PumpUntilFailures(1);
    return true;
}

void Write(const std::wstring& file)
{
    FILE* const stream = ::_wfopen(file.c_str(), L"w");
    std::fputs("text", stream);
    std::fclose(stream);
}

HANDLE pauseHasBegun = nullptr;

void WINAPI NeverEndingPause(DWORD)
{
    ::SetEvent(pauseHasBegun);
    ::Sleep(INFINITE);
}

}  // namespace

// Leaves a folder watched.
extern "C" __declspec(dllexport) int Watch()
{
    const std::wstring file = OwnFile();
    const bool isWatched = WatchFile(file);
    ::DeleteFileW(file.c_str());
    return isWatched ? kRight : 0;
}

// Ends while the watcher is in the pause before it looks at the file, which lasts until then.
extern "C" __declspec(dllexport) int WatchAndWrite()
{
    pauseHasBegun = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    new quon_test::ImportPatch<decltype(&::Sleep)>(L"QuonWin32Utils.dll", "Sleep", &NeverEndingPause);
    const std::wstring file = OwnFile();
    const bool isWatched = WatchFile(file);
    Write(file);
    ::WaitForSingleObject(pauseHasBegun, INFINITE);
    ::DeleteFileW(file.c_str());
    return isWatched ? kRight : 0;
}

extern "C" __declspec(dllexport) int ShutDown()
{
    QuonFileEventServer* const server = GetFileEventServer();
    server->Shutdown();
    QuonFileEventId id = 0;
    return server->Subscribe(L"C:\\", 0x1, &TheSink(), &id) == E_FAIL ? kRight : 0;
}
