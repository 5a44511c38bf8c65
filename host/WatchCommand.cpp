#include "host/Commands.h"

#include "host/Console.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/Streams.h"
#include "monitoring/QuonFileEventServer.h"
#include "paths/QuonPath.h"
#include "support/Progress.h"
#include "support/StringHelpers.h"

#include <memory>

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

struct WatchOptions
{
    std::vector<std::string> paths;
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

// One path and what is heard of it.
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

    /// Why nothing is heard; empty while something may be.
    const std::wstring& Failure() const { return m_failure; }
    HRESULT Result() const { return m_result; }

    void OnFileNameChanged(const QuonFileEventId*) override { Print(L"name"); }
    void OnFolderNameChanged(const QuonFileEventId*) override { Print(L"folder"); }
    void OnAttributesChanged(const QuonFileEventId*) override { Print(L"attributes"); }
    void OnSizeChanged(const QuonFileEventId*) override { Print(L"size"); }
    void OnLastWriteChanged(const QuonFileEventId*) override { Print(L"write"); }
    void OnLastAccessChanged(const QuonFileEventId*) override { Print(L"access"); }
    void OnWatchFailed(const QuonFileEventId*, const DWORD* error) override
    {
        m_failure = L"\"" + std::wstring(m_path) + L"\" cannot be watched: " +
                    CString(GetSystemErrorText(*error)).TrimRight().GetString() + L" (error " +
                    std::to_wstring(*error) + L")";
    }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

private:
    // At once, so that who reads a pipe sees it when it happens.
    void Print(std::wstring name) const
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

std::vector<std::unique_ptr<Watch>> StartWatches(const WatchOptions& options)
{
    std::vector<std::unique_ptr<Watch>> watches;
    for (const std::string& path : options.paths)
    {
        watches.push_back(std::make_unique<Watch>(FullPath(ToWide(path)), MaskOf(options.events), options.json));
        if (FAILED(watches.back()->Result()))
        {
            throw CommandError("the watcher does not run");
        }
    }
    return watches;
}

// Forgets the watches that have failed and tells why. The last failure of all ends the command.
void ReportFailures(std::vector<std::unique_ptr<Watch>>& watches)
{
    for (size_t index = 0; index < watches.size();)
    {
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
        PrintError(ToUtf8(failure));
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
    command->add_option("path", options->paths, "Files and folders")->required();
    std::vector<std::string> names;
    for (const EventName& event : kEventNames)
    {
        names.emplace_back(event.name);
    }
    command
        ->add_option("--events", options->events,
                     "What to tell of, parted by commas. name, folder and attributes are told for every change in the "
                     "folder, access only where the file system keeps that time")
        ->delimiter(',')
        ->check(CLI::IsMember(names))
        ->capture_default_str();
    CLI::Option* const seconds = command->add_option("--seconds", options->seconds, "End after this time")
                                     ->check(CLI::Range(0.0, 1e9).description(""))
                                     ->type_name("SECONDS");
    AddJsonFlag(*command, options->json)->description("Print a JSON object a line");
    command->callback([options, seconds] {
        options->hasEnd = seconds->count() != 0;
        WatchPaths(*options);
    });
}

}  // namespace quonhost
