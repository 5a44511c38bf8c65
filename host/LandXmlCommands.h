// What the LandXML commands share.
#pragma once

#include <afx.h>

#include "host/landxml/LandXmlContents.h"
#include "host/landxml/PointFilter.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace quonhost
{

/// Gives the command the option --progress and its work: `run` is called with a bar. Failures of the parser and the
/// library become those of the host, and what was printed is flushed.
void SetLandXmlWork(CLI::App& command, const std::function<void()>& run);

/// Which points a command takes.
struct PointChoice
{
    std::optional<std::wstring> list;
    std::vector<std::wstring> patterns;

    /// @throws CommandError when the list is not valid
    PointFilter MakeFilter() const;
};

/// Adds --points and --name.
void AddPointChoice(CLI::App& command, PointChoice& choice, const char* listHelp);

/// Which file a command reads, and how strictly.
struct LandXmlInput
{
    std::wstring file;
    bool isStrict = false;
};

/// Adds the argument and --strict.
void AddInput(CLI::App& command, LandXmlInput& input);

/// Reads the file and prints its warnings on the error output. @throws CommandError for a file that cannot be read and,
/// when that is asked for, in place of the first warning
LandXmlContents ReadInput(const LandXmlInput& input);

void AddLandXmlExport(CLI::App& parent);
void AddLandXmlInfo(CLI::App& parent);
void AddLandXmlPoints(CLI::App& parent);
void AddLandXmlPlot(CLI::App& parent);

}  // namespace quonhost
