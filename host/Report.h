// What a command reports to programs: JSON, printed in one way by all commands.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>
#include <string_view>

namespace quonhost
{

/// Members keep the order in which they were put in.
using Json = nlohmann::ordered_json;

/// Gives the command the option --json. @return the option
CLI::Option* AddJsonFlag(CLI::App& command, bool& isAsked);

/// Returns a text as a value.
Json JsonText(std::wstring_view text);

/// Prints a report over several lines. @throws CommandError when it cannot be written
void PrintJson(const Json& report);

/// Prints a report on one line, flushed, so that pipe readers see it at once.
/// @throws CommandError when it cannot be written
void PrintJsonLine(const Json& report);

}  // namespace quonhost
