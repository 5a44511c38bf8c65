#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Report.h"
#include "paths/QuonPath.h"

#include <list>
#include <memory>
#include <optional>

namespace quonhost
{
namespace
{

struct SplitOptions
{
    std::wstring path;
    std::optional<std::wstring> base;
    bool slashes = false;
    bool json = false;
};

void PrintNamed(const wchar_t* name, const wchar_t* text)
{
    std::wstring line = name;
    line.resize(12, L' ');
    PrintLine(line + text);
}

struct Parts
{
    QuonPath drive, directory, title, extension, normal, relative;
    std::list<QuonPath> components;
};

Parts PartsOf(const SplitOptions& options)
{
    const QuonPathFlags flags = options.slashes ? QuonPathForwardSlash : QuonPathBackslash;
    QuonPath path(options.path.c_str(), flags);
    Parts parts;
    for (QuonPath* const part : {&parts.drive, &parts.directory, &parts.title, &parts.extension})
    {
        *part = QuonPath(L"", flags);
    }
    path.Split(parts.drive, parts.directory, parts.title, parts.extension);
    path.GetComponents(parts.components);
    path.Normalize();
    parts.normal = path;
    if (options.base)
    {
        // The shell, which finds the relative path, knows backslashes only.
        QuonPath target(path, QuonPathBackslash | QuonPathNormalize);
        parts.relative = target.MakeRelativeTo(QuonPath(options.base->c_str(), QuonPathNormalize));
    }
    return parts;
}

void PrintAsText(const SplitOptions& options, const Parts& parts)
{
    PrintNamed(L"drive", parts.drive);
    PrintNamed(L"directory", parts.directory);
    PrintNamed(L"title", parts.title);
    PrintNamed(L"extension", parts.extension);
    for (const QuonPath& component : parts.components)
    {
        PrintNamed(L"component", component);
    }
    PrintNamed(L"normal", parts.normal);
    if (options.base)
    {
        PrintNamed(L"relative", parts.relative);
    }
}

void PrintAsJson(const SplitOptions& options, const Parts& parts)
{
    const auto textOf = [](const QuonPath& path) { return JsonText(static_cast<const wchar_t*>(path)); };
    Json report = {{"drive", textOf(parts.drive)}, {"directory", textOf(parts.directory)},
                   {"title", textOf(parts.title)}, {"extension", textOf(parts.extension)},
                   {"components", Json::array()},  {"normal", textOf(parts.normal)}};
    for (const QuonPath& component : parts.components)
    {
        report["components"].push_back(textOf(component));
    }
    if (options.base)
    {
        report["relative"] = textOf(parts.relative);
    }
    PrintJson(report);
}

void PrintParts(const SplitOptions& options)
{
    options.json ? PrintAsJson(options, PartsOf(options)) : PrintAsText(options, PartsOf(options));
}

}  // namespace

void AddSplitCommand(CLI::App& app)
{
    auto options = std::make_shared<SplitOptions>();
    CLI::App* command = app.add_subcommand("split", "Print the parts, components and normal form of a path");
    AddText(*command, "path", options->path, "The path; it need not exist")->required();
    AddText(*command, "--relative-to", options->base,
            "Also print the path relative to the folder of this one (end it in a separator to name a folder)", "PATH");
    command->add_flag("--slashes", options->slashes, "Write forward slashes");
    AddJsonFlag(*command, options->json);
    command->callback([options] { PrintParts(*options); });
}

}  // namespace quonhost
