#include "host/Report.h"

#include "host/Console.h"
#include "host/Streams.h"

namespace quonhost
{
namespace
{

// Text of a command line or a file may not be UTF-8; the report is printed all the same.
void Print(const Json& report, int indent)
{
    StandardOutput().Write(report.dump(indent, ' ', false, Json::error_handler_t::replace) + '\n');
}

}  // namespace

CLI::Option* AddJsonFlag(CLI::App& command, bool& isAsked)
{
    return command.add_flag("--json", isAsked, "Print JSON");
}

Json JsonText(std::wstring_view text)
{
    return ToUtf8(text);
}

void PrintJson(const Json& report)
{
    Print(report, 2);
}

void PrintJsonLine(const Json& report)
{
    Print(report, -1);
    StandardOutput().Flush();
}

}  // namespace quonhost
