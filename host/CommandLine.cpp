#include "host/CommandLine.h"

#include "host/Console.h"
#include "host/Streams.h"

#include <sstream>

namespace quonhost
{
namespace
{

// What was printed before the failure comes first. If it cannot be written, the failure at hand is the one to report.
void FlushBeforeError()
{
    try
    {
        StandardOutput().Flush();
    }
    catch (const CommandError&)
    {
        return;
    }
}

int Fail(std::wstring_view text, ExitCode code = kFailed)
{
    FlushBeforeError();
    PrintError(text);
    return code;
}

void Run(CLI::App& app, std::vector<std::string> arguments)
{
    try
    {
        app.parse(std::move(arguments));
    }
    catch (const CLI::Success& asked)
    {
        std::ostringstream text;
        app.exit(asked, text, text);
        StandardOutput().Write(text.str());
    }
    StandardOutput().Flush();
}

}  // namespace

int RunCommandLine(CLI::App& app, std::vector<std::string> arguments)
{
    try
    {
        Run(app, std::move(arguments));
    }
    catch (const CLI::ParseError& error)
    {
        return Fail(ToWide(error.what()) + L" (see --help)", kUsage);
    }
    catch (const CommandError& error)
    {
        return Fail(error.Text());
    }
    catch (const std::exception& error)
    {
        return Fail(ToWide(error.what()));
    }
    catch (CException* error)
    {
        wchar_t text[256] = {};
        error->GetErrorMessage(text, 256);
        error->Delete();
        return Fail(text);
    }
    return kSuccess;
}

}  // namespace quonhost
