// From the arguments to the exit code.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace quonhost
{

/// Runs the command that the arguments name, flushes the standard output, and reports a failure on the standard error
/// output in one line.
/// @param arguments UTF-8, last one first, without the program's name
/// @return the exit code
int RunCommandLine(CLI::App& app, std::vector<std::string> arguments);

}  // namespace quonhost
