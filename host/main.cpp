// quonhost: a small application around the library, for trying it on real folders and files.

#include "host/Commands.h"

#include <afxwin.h>

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
    try
    {
        app.parse(ReversedArguments(count, arguments));
    }
    catch (const CLI::Success& asked)
    {
        return app.exit(asked);
    }
    catch (const CLI::ParseError& error)
    {
        quonhost::PrintError(std::string(error.what()) + " (see --help)");
        return quonhost::kUsage;
    }
    catch (const std::exception& error)
    {
        quonhost::PrintError(error.what());
        return quonhost::kFailed;
    }
    catch (CException* error)
    {
        wchar_t text[256] = {};
        error->GetErrorMessage(text, 256);
        error->Delete();
        quonhost::PrintError(quonhost::ToUtf8(text));
        return quonhost::kFailed;
    }
    return quonhost::kSuccess;
}

}  // namespace

int wmain(int count, wchar_t** arguments)
{
    quonhost::SetUpConsole();
    if (!AfxWinInit(::GetModuleHandleW(nullptr), nullptr, ::GetCommandLineW(), 0))
    {
        quonhost::PrintError("the application framework could not be initialised");
        return quonhost::kFailed;
    }
    return Run(count, arguments);
}
