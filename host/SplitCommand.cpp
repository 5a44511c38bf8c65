#include "host/Commands.h"
#include "host/Console.h"

#include "paths/QuonPath.h"

#include <list>
#include <memory>

namespace quonhost
{
namespace
{

struct SplitOptions
{
    std::string path;
    std::string base;
    bool slashes = false;
};

void PrintNamed(const wchar_t* name, const wchar_t* text)
{
    std::wstring line = name;
    line.resize(12, L' ');
    PrintLine(line + text);
}

void PrintParts(const SplitOptions& options)
{
    const QuonPathFlags flags = options.slashes ? QuonPathForwardSlash : QuonPathBackslash;
    QuonPath path(ToWide(options.path), flags);

    QuonPath drive(L"", flags), directory(L"", flags), title(L"", flags), extension(L"", flags);
    path.Split(drive, directory, title, extension);
    PrintNamed(L"drive", drive);
    PrintNamed(L"directory", directory);
    PrintNamed(L"title", title);
    PrintNamed(L"extension", extension);

    std::list<QuonPath> components;
    path.GetComponents(components);
    for (const QuonPath& component : components)
    {
        PrintNamed(L"component", component);
    }

    path.Normalize();
    PrintNamed(L"normal", path);
    if (!options.base.empty())
    {
        // The shell, which finds the relative path, knows backslashes only.
        QuonPath target(path, QuonPathBackslash | QuonPathNormalize);
        PrintNamed(L"relative", target.MakeRelativeTo(QuonPath(ToWide(options.base), QuonPathNormalize)));
    }
}

}  // namespace

void AddSplitCommand(CLI::App& app)
{
    auto options = std::make_shared<SplitOptions>();
    CLI::App* command = app.add_subcommand("split", "Print the parts, components and normal form of a path");
    command->add_option("path", options->path, "The path; it need not exist")->required();
    command->add_option(
        "--relative-to", options->base,
        "Also print the path relative to the folder of this one (end it in a separator to name a folder)");
    command->add_flag("--slashes", options->slashes, "Write forward slashes");
    command->callback([options] { PrintParts(*options); });
}

}  // namespace quonhost
