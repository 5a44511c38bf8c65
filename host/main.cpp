// quonhost: a small application around the library, for trying it on real folders and files.

#include "host/Commands.h"

#include <afxwin.h>

#include "host/CommandLine.h"
#include "host/Console.h"

#include <algorithm>
#include <vector>

namespace
{

// CLI11 wants the arguments without the program's name and in reverse.
std::vector<std::string> ReversedArguments(int count, wchar_t** arguments)
{
    std::vector<std::string> result;
    for (int index = 1; index < count; ++index)
    {
        result.push_back(quonhost::ToUtf8(arguments[index]));
    }
    std::reverse(result.begin(), result.end());
    return result;
}

int Run(int count, wchar_t** arguments)
{
    CLI::App app("Works on folders, paths, lists of points, names and angles with QuonWin32Utils.", "quonhost");
    app.require_subcommand(1);
    app.footer(
        "Exit codes:\n"
        "  0  done; also when Ctrl+C ends a watch\n"
        "  1  the work failed or was stopped by Ctrl+C; one line on the error output tells why\n"
        "  2  the command line was not understood\n"
        "Names are UTF-8 on the command line, in files and in what is printed.");
    quonhost::AddFoldersCommand(app);
    quonhost::AddTreeCommand(app);
    quonhost::AddFileCommands(app);
    quonhost::AddSplitCommand(app);
    quonhost::AddPointsCommand(app);
    quonhost::AddSortCommand(app);
    quonhost::AddAngleCommand(app);
    quonhost::AddLandXmlCommand(app);
    quonhost::AddWatchCommand(app);
    quonhost::AddModifiedCommand(app);
    quonhost::AddBrowseCommand(app);
    return quonhost::RunCommandLine(app, ReversedArguments(count, arguments));
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    const quonhost::ConsoleCodePages codePages;
    if (!AfxWinInit(::GetModuleHandleW(nullptr), nullptr, ::GetCommandLineW(), 0))
    {
        quonhost::PrintError("the application framework could not be initialized");
        return quonhost::kFailed;
    }
    return Run(count, arguments);
}
