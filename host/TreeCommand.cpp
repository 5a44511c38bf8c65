#include "host/Commands.h"

#include "host/Console.h"
#include "host/FileHandle.h"
#include "host/FileIdentity.h"
#include "host/FileSteps.h"
#include "host/Options.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/Stop.h"
#include "host/Streams.h"
#include "paths/QuonPath.h"
#include "support/Progress.h"
#include "support/QuonTimer.h"
#include "traversal/QuonDirectoryTrees.h"
#include "traversal/QuonFileTrees.h"

#include <memory>

namespace quonhost
{
namespace
{

constexpr unsigned long kLargestFilter = 0xFFFF;

struct TreeOptions
{
    std::wstring folder;
    std::wstring pattern = L"*";
    std::string filter = "0x20";
    std::wstring timerLog;
    bool progress = false;
    bool files = false;
    bool depthFirst = false;
    bool totalsOnly = false;
    bool json = false;
};

struct Totals
{
    unsigned long long entries = 0;
    unsigned long long bytes = 0;
    Json names = Json::array();  // for a report
};

std::unique_ptr<QuonFileMatch> MakeWalk(const TreeOptions& options)
{
    if (options.files)
    {
        return options.depthFirst ? std::unique_ptr<QuonFileMatch>(new QuonDFSFileTree)
                                  : std::unique_ptr<QuonFileMatch>(new QuonBFSFileTree);
    }
    return options.depthFirst ? std::unique_ptr<QuonFileMatch>(new QuonDFSDirectoryTree)
                              : std::unique_ptr<QuonFileMatch>(new QuonBFSDirectoryTree);
}

unsigned long long SizeOf(const QuonPath& file)
{
    WIN32_FILE_ATTRIBUTE_DATA data = {};
    ::GetFileAttributesExW(file, GetFileExInfoStandard, &data);
    return (static_cast<unsigned long long>(data.nFileSizeHigh) << 32) | data.nFileSizeLow;
}

// The bar moves every so many entries: drawing costs more than an entry.
void ReportProgress(unsigned long long entries)
{
    constexpr unsigned long long kStep = 64;
    if (entries % kStep == 0)
    {
        ProgressSetPosition(static_cast<UINT>(entries));
    }
    StopIfAsked();
}

Totals Walk(const TreeOptions& options, const QuonPath& root, unsigned int filter)
{
    Totals totals;
    const std::unique_ptr<QuonFileMatch> walk = MakeWalk(options);
    for (walk->FindFirst(root, options.pattern.c_str(), filter); walk->IsFound(); walk->FindNext())
    {
        ReportProgress(++totals.entries);
        if (options.files && options.totalsOnly)
        {
            totals.bytes += SizeOf(walk->GetFoundPath());
        }
        if (!options.totalsOnly)
        {
            const std::wstring name(walk->GetFoundName());
            const std::wstring shown = name.empty() ? L"." : name;
            options.json ? totals.names.push_back(JsonText(shown)) : PrintLine(shown);
        }
    }
    return totals;
}

unsigned int CountEntries(const TreeOptions& options, const QuonPath& root, unsigned int filter)
{
    const QuonProgressDisabler quiet;
    unsigned int count = 0;
    const std::unique_ptr<QuonFileMatch> walk = MakeWalk(options);
    for (walk->FindFirst(root, options.pattern.c_str(), filter); walk->IsFound(); walk->FindNext())
    {
        ReportProgress(++count);
    }
    return count;
}

Totals WalkWithProgress(const TreeOptions& options, const QuonPath& root, unsigned int filter)
{
    const bool isVisible = options.progress || IsProgressVisible();
    const ProgressBar bar(isVisible);
    // A bar needs to know the whole, which takes a walk of its own.
    ProgressBegin(0, isVisible ? CountEntries(options, root, filter) : 0);
    const Totals totals = Walk(options, root, filter);
    ProgressSetPosition(static_cast<UINT>(totals.entries));
    return totals;
}

// Returns why the text is not a filter code; empty when it is.
std::string CheckFilter(const std::string& text)
{
    return ParseCode(text, kLargestFilter) ? "" : "\"" + text + "\" is not a number from 0 to 0xFFFF";
}

// The stopwatch of the library with its log, whose failures are not passed over here.
class TimerLog : public QuonTimer
{
public:
    explicit TimerLog(const std::wstring& path) : QuonTimer(path.c_str(), FALSE, FALSE), m_path(path)
    {
        if (!path.empty() && !m_isOpen)
        {
            // Opened again as it was, because the reason of the first failure is gone.
            const FileHandle file = OwnFile(::CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                                          OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
            Fail(::GetLastError());
        }
    }

    void WriteTime()
    {
        AddLap();
        WriteReport(L"tree", TRUE);
        try
        {
            m_isOpen ? Flush() : void();
        }
        catch (CFileException* failure)
        {
            const auto error = static_cast<DWORD>(failure->m_lOsError);
            failure->Delete();
            Fail(error);
        }
    }

private:
    [[noreturn]] void Fail(DWORD error) const
    {
        throw CommandError(InQuotes(m_path) + L" cannot be written: " + SystemErrorText(error));
    }

    std::wstring m_path;
};

void RequireFolder(const QuonPath& path)
{
    if (path.Exists() && !IsFolder(path))
    {
        throw CommandError(InQuotes(path) + L" is not a folder");
    }
    RequireReadableFolder(path);
}

Json TotalsAsJson(const TreeOptions& options, const QuonPath& root, const Totals& totals)
{
    Json report = {{"root", JsonText(static_cast<const wchar_t*>(root))}, {"count", totals.entries}};
    if (options.files && options.totalsOnly)
    {
        report["bytes"] = totals.bytes;
    }
    if (!options.totalsOnly)
    {
        report[options.files ? "files" : "folders"] = totals.names;
    }
    return report;
}

void PrintTree(const TreeOptions& options)
{
    const auto filter = static_cast<unsigned int>(ParseCode(options.filter, kLargestFilter).value_or(0));
    const QuonPath root(options.folder.c_str(), QuonPathNormalize);
    RequireFolder(root);
    TimerLog timer(options.timerLog);
    timer.StartTimer();
    const Totals totals = WalkWithProgress(options, root, filter);
    timer.WriteTime();
    if (options.json)
    {
        PrintJson(TotalsAsJson(options, root, totals));
    }
    else if (options.totalsOnly)
    {
        PrintLine(options.files
                      ? Counted(totals.entries, L"file", L"files") + L", " + Counted(totals.bytes, L"byte", L"bytes")
                      : Counted(totals.entries, L"folder", L"folders"));
    }
}

}  // namespace

void AddTreeCommand(CLI::App& app)
{
    auto options = std::make_shared<TreeOptions>();
    CLI::App* command = app.add_subcommand("tree", "Print the folders of a tree, or its files");
    AddText(*command, "folder", options->folder, "Where to start")->required();
    command->add_flag("--files", options->files, "Print files instead of folders");
    command->add_flag("--depth-first", options->depthFirst, "Deepest first, a folder after all that is in it");
    AddText(*command, "--pattern", options->pattern,
            "Wildcards for file names; for folders it restricts the first level, depth-first every level", "WILDCARDS")
        ->default_str("*");
    command
        ->add_option(
            "--filter", options->filter,
            "With --files, two bits for each attribute, 1 set, 2 clear: archive 0-1, compressed 2-3, directory "
            "4-5, hidden 6-7, normal 8-9, read-only 10-11, system 12-13, temporary 14-15")
        ->check(CLI::Validator(&CheckFilter, ""))
        ->type_name("CODE")
        ->capture_default_str();
    command->add_flag("--totals", options->totalsOnly, "Print only how much there is");
    AddJsonFlag(*command, options->json);
    command->add_flag("--progress", options->progress, kProgressHelp);
    AddText(*command, "--timer", options->timerLog, "Append the time that the walk took to this file", "FILE");
    command->callback([options] { PrintTree(*options); });
}

}  // namespace quonhost
