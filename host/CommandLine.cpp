#include "host/CommandLine.h"

#include "host/Console.h"
#include "host/HelpText.h"
#include "host/Streams.h"
#include "host/UsageError.h"

#include <algorithm>
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

// CLI11 takes a value in brackets for a list and drops the brackets; here it may be the name of a file. A mark in front
// hides the brackets from it.
constexpr char kMark = '\x01';

void MarkBrackets(std::string& argument)
{
    if (argument.size() > 1 && argument.front() == '[' && argument.back() == ']')
    {
        argument.insert(argument.begin(), kMark);
    }
}

std::string Unmarked(std::string text)
{
    std::erase(text, kMark);
    return text;
}

// Takes the mark away again before anything looks at the values of the command's options, and of its commands'.
void TakeMarks(CLI::App& command)
{
    const auto takeMark = [](std::string& value) {
        value = Unmarked(value);
        return std::string();
    };
    for (CLI::Option* const option :
         command.get_options([](const CLI::Option* any) { return any->get_type_size() > 0; }))
    {
        option->transform(CLI::Validator(takeMark, ""));
    }
    for (CLI::App* const sub : command.get_subcommands([](const CLI::App*) { return true; }))
    {
        TakeMarks(*sub);
    }
}

void Run(CLI::App& app, std::vector<std::string> arguments)
{
    std::for_each(arguments.begin(), arguments.end(), &MarkBrackets);
    TakeMarks(app);
    try
    {
        app.parse(std::move(arguments));
    }
    catch (const CLI::Success& asked)
    {
        std::ostringstream text;
        app.exit(asked, text, text);
        StandardOutput().Write(WrapHelp(text.str()));
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
        return Fail(ToWide(Unmarked(DescribeUsageError(app, error))), kUsage);
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
