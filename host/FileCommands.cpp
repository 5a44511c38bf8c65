#include "host/Commands.h"

#include "host/Console.h"
#include "host/ProgressBar.h"
#include "host/StoppableWalk.h"
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
    std::string source;
    std::string destination;
    bool failIfExists = false;
    bool progress = false;
};

struct RemoveOptions
{
    std::string target;
    bool progress = false;
};

bool IsFolder(const QuonPath& path)
{
    const DWORD attributes = ::GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

QuonPath ExistingPath(const std::string& text)
{
    QuonPath path(ToWide(text), QuonPathNormalize);
    if (!path.Exists())
    {
        throw CommandError("\"" + text + "\" does not exist");
    }
    return path;
}

// Starts the bar, which needs to know the whole: when somebody looks there is a walk before the walk.
void BeginFiles(const QuonPath& folder, bool isVisible)
{
    unsigned int count = 0;
    if (isVisible)
    {
        QuonBFSFileTree files;
        for (files.FindFirst(folder, L"*", kQuonMatchFiles); files.IsFound(); files.FindNext())
        {
            ++count;
        }
    }
    ProgressBegin(0, count);
}

// Copies as CopyFolderTree does, but Ctrl+C ends it after the file at hand.
unsigned int CopyFolder(const QuonPath& source, const QuonPath& destination, const TransferOptions& options)
{
    QuonBFSDirectoryTree folders;
    folders.FindFirst(source, L"*", kQuonMatchFolders);
    if (CreateMatchedFolders(folders, destination))
    {
        return 1;
    }
    BeginFiles(source, options.progress || IsProgressVisible());
    StoppableWalk<QuonBFSFileTree> files;
    files.FindFirst(source, L"*", kQuonMatchFiles);
    const unsigned int failed = CopyMatchedFiles(files, destination, options.failIfExists);
    files.ThrowIfStopped();
    return failed;
}

void Copy(const TransferOptions& options)
{
    const QuonPath source = ExistingPath(options.source);
    const QuonPath destination(ToWide(options.destination), QuonPathNormalize);
    const ProgressBar bar(options.progress || (IsFolder(source) && IsProgressVisible()));
    const unsigned int failed = IsFolder(source) ? CopyFolder(source, destination, options)
                                                 : CopyOneFile(source, destination, options.failIfExists);
    if (failed)
    {
        throw CommandError("could not copy all of \"" + options.source + "\" to \"" + options.destination + "\"");
    }
}

void Move(const TransferOptions& options)
{
    const QuonPath source = ExistingPath(options.source);
    const QuonPath destination(ToWide(options.destination), QuonPathNormalize);
    if (!IsFolder(source))
    {
        throw CommandError("\"" + options.source + "\" is no folder");
    }
    const ProgressBar bar(options.progress || IsProgressVisible());
    // The source goes only when all of it was copied; from then on nothing stops the move.
    if (CopyFolder(source, destination, options) || RemoveFolderTree(source))
    {
        throw CommandError("could not move \"" + options.source + "\" to \"" + options.destination + "\"");
    }
}

unsigned int RemoveFolder(const QuonPath& folder, const RemoveOptions& options)
{
    BeginFiles(folder, options.progress || IsProgressVisible());
    {
        StoppableWalk<QuonDFSFileTree> files;
        files.FindFirst(folder, L"*", kQuonMatchFiles);
        DeleteMatchedFiles(files);
        files.ThrowIfStopped();
    }
    return RemoveFolderTree(folder);
}

void Remove(const RemoveOptions& options)
{
    const QuonPath path = ExistingPath(options.target);
    const ProgressBar bar(options.progress || (IsFolder(path) && IsProgressVisible()));
    if (IsFolder(path) ? RemoveFolder(path, options) : DeleteFileForced(path))
    {
        throw CommandError("could not remove all of \"" + options.target + "\"");
    }
}

void AddTransferCommand(CLI::App& app, const char* name, const char* description,
                        void (*transfer)(const TransferOptions&))
{
    auto options = std::make_shared<TransferOptions>();
    CLI::App* command = app.add_subcommand(name, description);
    command->add_option("source", options->source, "What to take")->required();
    command->add_option("destination", options->destination, "Where it goes; missing folders are made")->required();
    command->add_flag("--fail-if-exists", options->failIfExists, "Stop at the first file that is already there");
    command->add_flag("--progress", options->progress, kProgressHelp);
    command->callback([options, transfer] { transfer(*options); });
}

}  // namespace

void AddFileCommands(CLI::App& app)
{
    AddTransferCommand(app, "copy", "Copy a file, or a folder with all that is in it", &Copy);
    AddTransferCommand(app, "move", "Move a folder with all that is in it", &Move);

    auto options = std::make_shared<RemoveOptions>();
    CLI::App* remove = app.add_subcommand("remove", "Remove a file, or a folder with all that is in it");
    remove->add_option("path", options->target, "What to remove; read-only files go too")->required();
    remove->add_flag("--progress", options->progress, kProgressHelp);
    remove->callback([options] { Remove(*options); });
}

}  // namespace quonhost
