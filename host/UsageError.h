// What is wrong with a command line, in the words of somebody who typed it.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>
#include <string>

namespace quonhost
{

/// Returns one line: what `error`, which ended the parsing of `app`, complains about, the nearest right name for an
/// unknown one, and where the help is.
std::string DescribeUsageError(const CLI::App& app, const CLI::ParseError& error);

}  // namespace quonhost
