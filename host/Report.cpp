#include "host/Report.h"

#include "host/Console.h"

#include <cstdio>

namespace quonhost
{
namespace
{

// What comes from a command line or a file may be no UTF-8; a report is all the same.
void Print(const Json& report, int indent)
{
    const std::string text = report.dump(indent, ' ', false, Json::error_handler_t::replace) + '\n';
    std::fwrite(text.data(), 1, text.size(), stdout);
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
    std::fflush(stdout);
}

}  // namespace quonhost
