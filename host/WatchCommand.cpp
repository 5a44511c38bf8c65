#include "host/Commands.h"

#include "host/Console.h"
#include "host/FileIdentity.h"
#include "host/Options.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/Streams.h"
#include "monitoring/QuonFileEventServer.h"
#include "paths/QuonPath.h"
#include "support/Progress.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <set>

namespace quonhost
{
namespace
{

struct EventName
{
    const char* name;
    DWORD bit;
};

// As the user names them, and as they are printed.
constexpr EventName kEventNames[] = {
    {"name", FILE_NOTIFY_CHANGE_FILE_NAME},        {"folder", FILE_NOTIFY_CHANGE_DIR_NAME},
    {"attributes", FILE_NOTIFY_CHANGE_ATTRIBUTES}, {"size", FILE_NOTIFY_CHANGE_SIZE},
    {"write", FILE_NOTIFY_CHANGE_LAST_WRITE},      {"access", FILE_NOTIFY_CHANGE_LAST_ACCESS},
};

// What one thread of the system can wait for, besides its messages.
constexpr size_t kMaxWatchedFolders = 63;

struct WatchOptions
{
    std::vector<std::wstring> paths;
    std::vector<std::string> events = {"size", "write"};
    double seconds = 0;
    bool hasEnd = false;
    bool json = false;
};

std::wstring LocalTime()
{
    SYSTEMTIME now = {};
    ::GetLocalTime(&now);
    CString text;
    text.Format(L"%04u-%02u-%02u %02u:%02u:%02u.%03u", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
                now.wSecond, now.wMilliseconds);
    return text.GetString();
}

// Prints the events of one path.
class Watch : public QuonFileEventSink
{
public:
    Watch(const std::wstring& path, DWORD mask, bool isJson)
        : m_path(path, 0), m_isJson(isJson), m_result(GetFileEventServer()->Subscribe(m_path, mask, this, &m_id))
    {
    }
    ~Watch()
    {
        if (SUCCEEDED(m_result))
        {
            GetFileEventServer()->Unsubscribe(m_id);
        }
    }
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;

    /// Returns why the path cannot be watched; empty while it is.
    const std::wstring& Failure() const { return m_failure; }
    HRESULT Result() const { return m_result; }

    /// @throws CommandError when a line could not be written
    void RequireOutput() const
    {
        if (m_outputFailure)
        {
            std::rethrow_exception(m_outputFailure);
        }
    }

    void OnFileNameChanged(const QuonFileEventId*) override { Print(L"name"); }
    void OnFolderNameChanged(const QuonFileEventId*) override { Print(L"folder"); }
    void OnAttributesChanged(const QuonFileEventId*) override { Print(L"attributes"); }
    void OnSizeChanged(const QuonFileEventId*) override { Print(L"size"); }
    void OnLastWriteChanged(const QuonFileEventId*) override { Print(L"write"); }
    void OnLastAccessChanged(const QuonFileEventId*) override { Print(L"access"); }
    void OnWatchFailed(const QuonFileEventId*, const DWORD* error) override
    {
        m_failure = InQuotes(m_path) + L" cannot be watched: " + SystemErrorText(*error);
    }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

private:
    // The server drops what its sinks throw, so a line that cannot be written is kept until it returns.
    void Print(const std::wstring& name)
    {
        try
        {
            PrintEvent(name);
        }
        catch (const CommandError&)
        {
            m_outputFailure = std::current_exception();
        }
    }

    // Flushed, so that pipe readers see it at once.
    void PrintEvent(std::wstring name) const
    {
        if (m_isJson)
        {
            PrintJsonLine({{"time", JsonText(LocalTime())},
                           {"event", JsonText(name)},
                           {"path", JsonText(static_cast<const wchar_t*>(m_path))}});
            return;
        }
        name.resize(11, L' ');
        PrintLine(LocalTime() + L"  " + name + static_cast<const wchar_t*>(m_path));
        StandardOutput().Flush();
    }

    QuonPath m_path;
    bool m_isJson;
    QuonFileEventId m_id = 0;
    std::wstring m_failure;
    std::exception_ptr m_outputFailure;
    HRESULT m_result;
};

DWORD MaskOf(const std::vector<std::string>& events)
{
    DWORD mask = 0;
    for (const EventName& event : kEventNames)
    {
        if (std::find(events.begin(), events.end(), event.name) != events.end())
        {
            mask |= event.bit;
        }
    }
    return mask;
}

// A file is watched through its folder, several files of a folder through one. What is missing is refused one by one.
void RequireFewFolders(const std::vector<std::wstring>& paths)
{
    std::set<std::wstring> folders;
    for (const std::wstring& path : paths)
    {
        const QuonPath full(FullPath(path.c_str()).c_str(), QuonPathLowerCase);
        if (full.Exists())
        {
            folders.insert(std::wstring(IsFolder(full) ? full : full.GetFolder()));
        }
    }
    if (folders.size() > kMaxWatchedFolders)
    {
        throw CommandError(std::to_wstring(folders.size()) + L" folders are too many to watch: the limit is " +
                           std::to_wstring(kMaxWatchedFolders));
    }
}

std::vector<std::unique_ptr<Watch>> StartWatches(const WatchOptions& options)
{
    RequireFewFolders(options.paths);
    std::vector<std::unique_ptr<Watch>> watches;
    for (const std::wstring& path : options.paths)
    {
        watches.push_back(std::make_unique<Watch>(FullPath(path.c_str()), MaskOf(options.events), options.json));
        if (FAILED(watches.back()->Result()))
        {
            throw CommandError(L"the watcher cannot be started: " +
                               SystemErrorText(static_cast<DWORD>(watches.back()->Result())));
        }
    }
    return watches;
}

// Drops the watches that have failed and reports why. The failure of the last one ends the command.
void ReportFailures(std::vector<std::unique_ptr<Watch>>& watches)
{
    for (size_t index = 0; index < watches.size();)
    {
        watches[index]->RequireOutput();
        const std::wstring failure = watches[index]->Failure();
        if (failure.empty())
        {
            ++index;
            continue;
        }
        watches.erase(watches.begin() + static_cast<std::ptrdiff_t>(index));
        if (watches.empty())
        {
            throw CommandError(failure);
        }
        PrintError(failure);
    }
}

void DispatchMessages()
{
    MSG message;
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
    {
        ::DispatchMessageW(&message);
    }
}

void WatchPaths(const WatchOptions& options)
{
    constexpr DWORD kPollMilliseconds = 100;
    const ProgressBar poll(false);
    const ULONGLONG start = ::GetTickCount64();
    const auto limit = static_cast<ULONGLONG>(options.seconds * 1000);
    std::vector<std::unique_ptr<Watch>> watches = StartWatches(options);
    while (!ProgressPoll() && !(options.hasEnd && ::GetTickCount64() - start >= limit))
    {
        ::MsgWaitForMultipleObjectsEx(0, nullptr, kPollMilliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        DispatchMessages();
        ReportFailures(watches);
    }
}

}  // namespace

void AddWatchCommand(CLI::App& app)
{
    auto options = std::make_shared<WatchOptions>();
    CLI::App* command = app.add_subcommand("watch", "Print what happens to files and folders until Ctrl+C");
    AddTexts(*command, "path", options->paths, "Files and folders; in at most 63 folders")->required();
    Choices names;
    for (const EventName& event : kEventNames)
    {
        names.emplace_back(event.name);
    }
    command
        ->add_option("--events", options->events,
                     "What to report, separated by commas: name, folder, attributes, size, write, access. The first "
                     "three are reported for every change in the folder, access only where the file system keeps that "
                     "time")
        ->delimiter(',')
        ->check(OneOf(names))
        ->type_name("NAMES")
        ->default_str("size,write");
    CLI::Option* const seconds =
        AddNumber(*command, "--seconds", options->seconds, 0, kLongestWait, "SECONDS", "End after this time");
    AddJsonFlag(*command, options->json)->description("Print one JSON object a line");
    command->callback([options, seconds] {
        options->hasEnd = seconds->count() != 0;
        WatchPaths(*options);
    });
}

}  // namespace quonhost
