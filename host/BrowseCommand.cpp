#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Report.h"
#include "monitoring/QuonBrowseForDirectory.h"
#include "paths/QuonPath.h"

#include <memory>
#include <optional>

namespace quonhost
{
namespace
{

struct BrowseOptions
{
    std::optional<std::wstring> initialFolder;
    std::optional<std::wstring> rootFolder;
    std::wstring title = L"Choose a folder";
    bool json = false;
};

// Shows below the title what it would return.
class Browser : public QuonBrowseForDirectory
{
public:
    Browser() : QuonBrowseForDirectory(nullptr) {}

    bool ValidateFolder(const wchar_t* path, CString& statusText) override
    {
        statusText = path;
        return true;
    }
};

void BrowseFolders(const BrowseOptions& options)
{
    const std::wstring initialFolder = FullPath(options.initialFolder.value_or(L"").c_str());
    const std::wstring rootFolder = FullPath(options.rootFolder.value_or(L"").c_str());
    QuonPath chosen;
    Browser browser;
    if (!browser.Browse(chosen, options.initialFolder ? initialFolder.c_str() : nullptr, options.title.c_str(), nullptr,
                        options.rootFolder ? rootFolder.c_str() : nullptr))
    {
        throw CommandError("no folder was chosen");
    }
    if (options.json)
    {
        PrintJson({{"folder", JsonText(static_cast<const wchar_t*>(chosen))}});
        return;
    }
    PrintLine(static_cast<const wchar_t*>(chosen));
}

}  // namespace

void AddBrowseCommand(CLI::App& app)
{
    auto options = std::make_shared<BrowseOptions>();
    CLI::App* command = app.add_subcommand("browse", "Let the user choose a folder in a dialog and print it");
    AddText(*command, "--initial", options->initialFolder, "The folder to select at first", "FOLDER");
    AddText(*command, "--root", options->rootFolder, "The outermost folder that is shown", "FOLDER");
    AddText(*command, "--title", options->title, "The text above the folders", "TEXT")->default_str("Choose a folder");
    AddJsonFlag(*command, options->json);
    command->callback([options] { BrowseFolders(*options); });
}

}  // namespace quonhost
