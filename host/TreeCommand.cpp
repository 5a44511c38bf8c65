#include "host/Commands.h"

#include "host/Console.h"
#include "host/ProgressBar.h"
#include "host/Report.h"
#include "host/Stop.h"
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

struct TreeOptions
{
    std::string folder;
    std::string pattern = "*";
    std::string filter = "0x20";
    std::string timerLog;
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
    for (walk->FindFirst(root, ToWide(options.pattern).c_str(), filter); walk->IsFound(); walk->FindNext())
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
    for (walk->FindFirst(root, ToWide(options.pattern).c_str(), filter); walk->IsFound(); walk->FindNext())
    {
        ReportProgress(++count);
    }
    return count;
}

Totals WalkWithProgress(const TreeOptions& options, const QuonPath& root, unsigned int filter)
{
    const bool isVisible = options.progress || IsProgressVisible();
    const ProgressBar bar(isVisible);
    // A bar needs to know the whole, which is known only after a walk: there are two when somebody looks.
    ProgressBegin(0, isVisible ? CountEntries(options, root, filter) : 0);
    const Totals totals = Walk(options, root, filter);
    ProgressSetPosition(static_cast<UINT>(totals.entries));
    return totals;
}

unsigned int ParseFilter(const std::string& text)
{
    size_t read = 0;
    unsigned long code = 0;
    try
    {
        code = std::stoul(text, &read, 0);
    }
    catch (const std::logic_error&)
    {
        read = 0;
    }
    if (read == 0 || read != text.size() || code > 0xFFFF)
    {
        throw CommandError("\"" + text + "\" is no filter code: give a number from 0 to 0xFFFF");
    }
    return static_cast<unsigned int>(code);
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
    const unsigned int filter = ParseFilter(options.filter);
    const QuonPath root(ToWide(options.folder), QuonPathNormalize);
    const DWORD attributes = ::GetFileAttributesW(root);
    if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0)
    {
        throw CommandError("\"" + options.folder + "\" is no folder");
    }
    QuonTimer timer(ToWide(options.timerLog).c_str(), FALSE, FALSE);
    timer.StartTimer();
    const Totals totals = WalkWithProgress(options, root, filter);
    timer.AddLap();
    timer.WriteReport(L"tree", TRUE);
    if (options.json)
    {
        PrintJson(TotalsAsJson(options, root, totals));
    }
    else if (options.totalsOnly)
    {
        PrintLine(std::to_wstring(totals.entries) +
                  (options.files ? L" files, " + std::to_wstring(totals.bytes) + L" bytes" : L" folders"));
    }
}

}  // namespace

void AddTreeCommand(CLI::App& app)
{
    auto options = std::make_shared<TreeOptions>();
    CLI::App* command = app.add_subcommand("tree", "Print the folders of a tree, or its files");
    command->add_option("folder", options->folder, "Where to start")->required();
    command->add_flag("--files", options->files, "Print files instead of folders");
    command->add_flag("--depth-first", options->depthFirst, "Deepest first, a folder after all that is in it");
    command
        ->add_option("--pattern", options->pattern,
                     "Wildcards for file names; for folders it restricts the first level, depth-first every level")
        ->capture_default_str();
    command
        ->add_option(
            "--filter", options->filter,
            "With --files, two bits for each attribute, 1 set, 2 clear: archive 0-1, compressed 2-3, directory "
            "4-5, hidden 6-7, normal 8-9, read-only 10-11, system 12-13, temporary 14-15")
        ->capture_default_str();
    command->add_flag("--totals", options->totalsOnly, "Print only how much there is");
    AddJsonFlag(*command, options->json);
    command->add_flag("--progress", options->progress, kProgressHelp);
    command->add_option("--timer", options->timerLog, "Append the time that the walk took to this file");
    command->callback([options] { PrintTree(*options); });
}

}  // namespace quonhost
