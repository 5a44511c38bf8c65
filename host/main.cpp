// quonhost: a small application around the library, for trying it on real folders and files.

#include "host/Commands.h"

#include <afxwin.h>

#include "host/CommandLine.h"
#include "host/Console.h"

#include <algorithm>
#include <string>
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

constexpr const char* kFooter =
    "\"quonhost COMMAND --help\" describes a command and its options.\n"
    "\n"
    "Exit codes:\n"
    "  0  done; also when Ctrl+C ends a watch\n"
    "  1  the work failed, was stopped by Ctrl+C, or a list checked by points --valid is invalid; one line on the "
    "error output says why\n"
    "  2  the command line was not understood\n"
    "\n"
    "Text is UTF-8 on the command line, in files and in what is printed. The name - means the standard input.";

int Run(int count, wchar_t** arguments)
{
    CLI::App app("Works on folders, paths, lists of points, names, angles and surveys with QuonWin32Utils.",
                 "quonhost");
    // Else "/site/survey.xml" would be taken for an option.
    app.allow_windows_style_options(false);
    app.set_version_flag("--version", "quonhost " QUONHOST_VERSION, "Print the version and exit");
    app.require_subcommand(1);
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
    // Last, because commands take over what their parent has by then.
    app.footer(kFooter);
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
