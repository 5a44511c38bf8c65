// Watches a file, writes it, and prints what the watcher tells.

#include "monitoring/QuonFileEventServer.h"

#include <cstdio>
#include <string>

namespace
{

class PrintingSink : public QuonFileEventSink
{
public:
    void OnFileNameChanged(const QuonFileEventId*) override {}
    void OnFolderNameChanged(const QuonFileEventId*) override {}
    void OnAttributesChanged(const QuonFileEventId*) override {}
    void OnSizeChanged(const QuonFileEventId*) override { std::puts("the size has changed"); }
    void OnLastWriteChanged(const QuonFileEventId*) override
    {
        std::puts("the file was written");
        m_isDone = true;
    }
    void OnLastAccessChanged(const QuonFileEventId*) override {}
    void OnWatchFailed(const QuonFileEventId*, const DWORD* error) override
    {
        std::printf("the folder cannot be watched: error %lu\n", *error);
        m_isDone = true;
    }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

    bool IsDone() const { return m_isDone; }

private:
    bool m_isDone = false;
};

std::wstring MakeFile()
{
    wchar_t folder[MAX_PATH + 1] = {};
    wchar_t file[MAX_PATH + 1] = {};
    ::GetTempPathW(MAX_PATH, folder);
    ::GetTempFileNameW(folder, L"qwu", 0, file);
    return file;
}

bool AppendTo(const std::wstring& file, const char* text)
{
    FILE* const stream = ::_wfopen(file.c_str(), L"a");
    if (stream == nullptr)
    {
        return false;
    }
    std::fputs(text, stream);
    return std::fclose(stream) == 0;
}

int WatchOneFile(const std::wstring& file)
{
    PrintingSink sink;
    QuonFileEventServer* const server = GetFileEventServer();
    QuonFileEventId id = 0;
    const DWORD mask = FILE_NOTIFY_CHANGE_SIZE | FILE_NOTIFY_CHANGE_LAST_WRITE;
    if (FAILED(server->Subscribe(file.c_str(), mask, &sink, &id)))
    {
        std::puts("the watcher does not run");
        return 1;
    }
    // The watch is set up on the watcher's thread, some time after Subscribe has returned; what is written before that
    // is not reported. So this writes again every second, until the watcher reports it.
    const UINT_PTR timer = ::SetTimer(nullptr, 0, 1000, nullptr);
    // Events arrive as window messages: the thread that made the server needs a message loop, as any host with windows
    // has.
    MSG message;
    while (!sink.IsDone() && ::GetMessageW(&message, nullptr, 0, 0) > 0)
    {
        if (message.message == WM_TIMER && message.wParam == timer)
        {
            AppendTo(file, "another line\n");
        }
        ::TranslateMessage(&message);
        ::DispatchMessageW(&message);
    }
    ::KillTimer(nullptr, timer);
    // From here on the sink is not called any more.
    server->Unsubscribe(id);
    return sink.IsDone() ? 0 : 1;
}

}  // namespace

int main()
{
    const std::wstring file = MakeFile();
    const int result = WatchOneFile(file);
    ::DeleteFileW(file.c_str());
    // Only a host that unloads the library must do this; at process exit it happens by itself.
    GetFileEventServer()->Shutdown();
    std::puts(result == 0 ? "done" : "nothing was heard");
    return result;
}
