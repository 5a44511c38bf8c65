#include "host/Commands.h"

#include "host/Console.h"
#include "host/FileIdentity.h"
#include "host/FileSteps.h"
#include "host/Options.h"
#include "host/ProgressBar.h"
#include "host/Stop.h"
#include "paths/FileOperations.h"
#include "paths/QuonPath.h"
#include "support/Progress.h"
#include "traversal/QuonDirectoryTrees.h"
#include "traversal/QuonFileTrees.h"

#include <memory>

namespace quonhost
{
namespace
{

struct TransferOptions
{
    std::wstring source;
    std::wstring destination;
    bool failIfExists = false;
    bool progress = false;
};

struct RemoveOptions
{
    std::wstring target;
    bool progress = false;
};

QuonPath ExistingPath(const std::wstring& text)
{
    QuonPath path(text.c_str(), QuonPathNormalize);
    if (!path.Exists())
    {
        throw CommandError(InQuotes(text) + L" does not exist");
    }
    return path;
}

// Starts the bar. It needs to know the whole, so there is a walk before the walk when somebody watches.
void BeginFiles(const QuonPath& folder, bool isVisible)
{
    unsigned int count = 0;
    if (isVisible)
    {
        QuonBFSFileTree files;
        for (files.FindFirst(folder, L"*", kQuonMatchFiles); files.IsFound(); files.FindNext())
        {
            ++count;
            StopIfAsked();
        }
    }
    ProgressBegin(0, count);
}

// Between two files only, so that each file is whole.
void AdvanceFile(unsigned int& done)
{
    ProgressSetPosition(++done);
    StopIfAsked();
}

// As CopyFolderTree does it, with a name and a reason for what fails, and a chance to stop after each file.
void CopyFolder(const QuonPath& source, const QuonPath& destination, const TransferOptions& options)
{
    RequireSeparateFolders(source, destination);
    QuonBFSDirectoryTree folders;
    for (folders.FindFirst(source, L"*", kQuonMatchFolders); folders.IsFound(); folders.FindNext())
    {
        RequireReadableFolder(folders.GetFoundPath());
        MakeFolder(destination + folders.GetFoundName());
        StopIfAsked();
    }
    BeginFiles(source, options.progress || IsProgressVisible());
    unsigned int done = 0;
    QuonBFSFileTree files;
    for (files.FindFirst(source, L"*", kQuonMatchFiles); files.IsFound(); files.FindNext())
    {
        CopyFileWhole(files.GetFoundPath(), destination + files.GetFoundName(), options.failIfExists);
        AdvanceFile(done);
    }
}

void Copy(const TransferOptions& options)
{
    const QuonPath source = ExistingPath(options.source);
    const QuonPath destination(options.destination.c_str(), QuonPathNormalize);
    const bool isFolder = IsFolder(source);
    const ProgressBar bar(options.progress || (isFolder && IsProgressVisible()));
    if (isFolder)
    {
        CopyFolder(source, destination, options);
        return;
    }
    const QuonPath target = FileTarget(source, destination);
    // Before its folder is made: a refused copy leaves nothing.
    RequireDifferentFiles(source, target);
    MakeFolder(target.GetFolder());
    CopyFileWhole(source, target, options.failIfExists);
}

// Deletes all files that can be deleted, then the folders. The first file that cannot is the reason for what stays.
void RemoveFolder(const QuonPath& folder, bool isVisible)
{
    BeginFiles(folder, isVisible);
    std::wstring failure;
    {
        unsigned int done = 0;
        QuonDFSFileTree files;
        for (files.FindFirst(folder, L"*", kQuonMatchFiles); files.IsFound(); files.FindNext())
        {
            const std::wstring problem = DeleteFileOrExplain(files.GetFoundPath());
            failure = failure.empty() ? problem : failure;
            AdvanceFile(done);
        }
    }
    if (RemoveFolderTree(folder))
    {
        throw CommandError(failure.empty() ? ExplainFolderThatStays(folder) : failure);
    }
}

void Move(const TransferOptions& options)
{
    const QuonPath source = ExistingPath(options.source);
    const QuonPath destination(options.destination.c_str(), QuonPathNormalize);
    if (!IsFolder(source))
    {
        throw CommandError(InQuotes(options.source) + L" is not a folder");
    }
    const bool isVisible = options.progress || IsProgressVisible();
    const ProgressBar bar(isVisible);
    CopyFolder(source, destination, options);
    // All of the source was copied; from now on nothing stops the move.
    if (RemoveFolderTree(source))
    {
        throw CommandError(L"all is copied to " + InQuotes(options.destination) + L", but " +
                           ExplainFolderThatStays(source));
    }
}

void Remove(const RemoveOptions& options)
{
    const QuonPath path = ExistingPath(options.target);
    const bool isFolder = IsFolder(path);
    const bool isVisible = options.progress || (isFolder && IsProgressVisible());
    const ProgressBar bar(isVisible);
    if (isFolder)
    {
        RemoveFolder(path, isVisible);
        return;
    }
    const std::wstring failure = DeleteFileOrExplain(path);
    if (!failure.empty())
    {
        throw CommandError(failure);
    }
}

CLI::App* AddTransferCommand(CLI::App& app, const char* name, const char* description,
                             void (*transfer)(const TransferOptions&))
{
    auto options = std::make_shared<TransferOptions>();
    CLI::App* const command = app.add_subcommand(name, description);
    AddText(*command, "source", options->source, "What to take")->required();
    AddText(*command, "destination", options->destination,
            "Where it goes; missing folders are made. What is in a folder goes into this folder, a file into it or, "
            "if there is no such folder and no \\ or / at the end, under this name")
        ->required();
    command->add_flag("--fail-if-exists", options->failIfExists, "Stop at the first file that is already there");
    command->add_flag("--progress", options->progress, kProgressHelp);
    command->callback([options, transfer] { transfer(*options); });
    return command;
}

}  // namespace

void AddFileCommands(CLI::App& app)
{
    AddTransferCommand(app, "copy", "Copy a file, or a folder with all that is in it", &Copy);
    AddTransferCommand(app, "move", "Move a folder with all that is in it", &Move);

    auto options = std::make_shared<RemoveOptions>();
    CLI::App* remove = app.add_subcommand("remove", "Remove a file, or a folder with all that is in it");
    AddText(*remove, "path", options->target, "What to remove; read-only files go too")->required();
    remove->add_flag("--progress", options->progress, kProgressHelp);
    remove->callback([options] { Remove(*options); });
}

}  // namespace quonhost
