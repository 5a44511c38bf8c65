#include "host/Commands.h"
#include "host/Console.h"

#include "paths/FileOperations.h"
#include "paths/QuonPath.h"

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

void Copy(const TransferOptions& options)
{
    const QuonPath source = ExistingPath(options.source);
    const QuonPath destination(ToWide(options.destination), QuonPathNormalize);
    const unsigned int failed = IsFolder(source) ? CopyFolderTree(source, destination, options.failIfExists)
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
    if (MoveFolderTree(source, destination, options.failIfExists))
    {
        throw CommandError("could not move \"" + options.source + "\" to \"" + options.destination + "\"");
    }
}

void Remove(const std::string& target)
{
    const QuonPath path = ExistingPath(target);
    if (IsFolder(path) ? RemoveFolderTree(path) : DeleteFileForced(path))
    {
        throw CommandError("could not remove all of \"" + target + "\"");
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
    command->callback([options, transfer] { transfer(*options); });
}

}  // namespace

void AddFileCommands(CLI::App& app)
{
    AddTransferCommand(app, "copy", "Copy a file, or a folder with all that is in it", &Copy);
    AddTransferCommand(app, "move", "Move a folder with all that is in it", &Move);

    auto target = std::make_shared<std::string>();
    CLI::App* remove = app.add_subcommand("remove", "Remove a file, or a folder with all that is in it");
    remove->add_option("path", *target, "What to remove; read-only files go too")->required();
    remove->callback([target] { Remove(*target); });
}

}  // namespace quonhost
