#include "host/Commands.h"
#include "host/Console.h"

#include "paths/QuonPath.h"

namespace quonhost
{
namespace
{

struct NamedFolder
{
    QuonFolderId id;
    const wchar_t* name;
};

constexpr NamedFolder kFolders[] = {
    {QuonFolderModuleFile, L"program"},
    {QuonFolderModuleFolder, L"program folder"},
    {QuonFolderWindows, L"windows"},
    {QuonFolderSystem, L"system"},
    {QuonFolderTemp, L"temporary"},
    {QuonFolderCurrent, L"current"},
    {QuonFolderDesktop, L"desktop"},
    {QuonFolderFavorites, L"favorites"},
    {QuonFolderTempFileName, L"temporary file"},
};

void PrintFolders()
{
    for (const NamedFolder& folder : kFolders)
    {
        std::wstring line = folder.name;
        line.resize(16, L' ');
        PrintLine(line + static_cast<const wchar_t*>(QuonPath(folder.id, 0)));
    }
}

}  // namespace

void AddFoldersCommand(CLI::App& app)
{
    app.add_subcommand("folders", "Print the well-known folders")->callback(&PrintFolders);
}

}  // namespace quonhost
