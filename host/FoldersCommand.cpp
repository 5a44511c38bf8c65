#include "host/Commands.h"

#include "host/Console.h"
#include "host/Report.h"
#include "paths/QuonPath.h"

#include <memory>

namespace quonhost
{
namespace
{

struct NamedFolder
{
    QuonFolderId id;
    const wchar_t* name;
    const char* member;  // in JSON
};

constexpr NamedFolder kFolders[] = {
    {QuonFolderModuleFile, L"program", "program"},
    {QuonFolderModuleFolder, L"program folder", "programFolder"},
    {QuonFolderWindows, L"windows", "windows"},
    {QuonFolderSystem, L"system", "system"},
    {QuonFolderTemp, L"temporary", "temporary"},
    {QuonFolderCurrent, L"current", "current"},
    {QuonFolderDesktop, L"desktop", "desktop"},
    {QuonFolderFavorites, L"favorites", "favorites"},
    {QuonFolderTempFileName, L"temporary file", "temporaryFile"},
};

void PrintFoldersAsJson()
{
    Json report;
    for (const NamedFolder& folder : kFolders)
    {
        report[folder.member] = JsonText(static_cast<const wchar_t*>(QuonPath(folder.id, 0)));
    }
    PrintJson(report);
}

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
    auto isJson = std::make_shared<bool>(false);
    CLI::App* const command = app.add_subcommand("folders", "Print the well-known folders");
    AddJsonFlag(*command, *isJson);
    command->callback([isJson] { *isJson ? PrintFoldersAsJson() : PrintFolders(); });
}

}  // namespace quonhost
