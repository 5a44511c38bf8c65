// How every LandXML command runs.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>
#include <functional>
#include <memory>

namespace quonhost
{

/// Gives the command the option --progress and its work: `run` is called with a bar, and failures of the parser and the
/// library are told as those of the host are.
void SetLandXmlWork(CLI::App& command, const std::function<void()>& run);

void AddLandXmlPlot(CLI::App& parent);

}  // namespace quonhost
