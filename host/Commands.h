// The commands of the host. Each adds itself, with its options, to the command line; its callback does the work.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>

namespace quonhost
{

void AddFoldersCommand(CLI::App& app);
void AddTreeCommand(CLI::App& app);
void AddFileCommands(CLI::App& app);
void AddSplitCommand(CLI::App& app);
void AddPointsCommand(CLI::App& app);
void AddSortCommand(CLI::App& app);
void AddAngleCommand(CLI::App& app);
void AddLandXmlCommand(CLI::App& app);
void AddWatchCommand(CLI::App& app);
void AddModifiedCommand(CLI::App& app);
void AddBrowseCommand(CLI::App& app);

}  // namespace quonhost
