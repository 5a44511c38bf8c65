#include "host/Commands.h"

#include "host/Console.h"
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
    std::optional<std::string> initialFolder;
    std::optional<std::string> rootFolder;
    std::string title = "Choose a folder";
    bool json = false;
};

// Says below the title what it would return.
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
    const std::wstring initialFolder = FullPath(ToWide(options.initialFolder.value_or("")));
    const std::wstring rootFolder = FullPath(ToWide(options.rootFolder.value_or("")));
    QuonPath chosen;
    Browser browser;
    if (!browser.Browse(chosen, options.initialFolder ? initialFolder.c_str() : nullptr, ToWide(options.title).c_str(),
                        nullptr, options.rootFolder ? rootFolder.c_str() : nullptr))
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
    command->add_option("--initial", options->initialFolder, "The folder to select at first");
    command->add_option("--root", options->rootFolder, "The folder above which nobody can go");
    command->add_option("--title", options->title, "The text above the folders")->capture_default_str();
    AddJsonFlag(*command, options->json);
    command->callback([options] { BrowseFolders(*options); });
}

}  // namespace quonhost
