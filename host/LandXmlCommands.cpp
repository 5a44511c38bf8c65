#include "host/LandXmlCommands.h"

#include "host/Commands.h"
#include "host/Console.h"
#include "host/Options.h"
#include "host/ProgressBar.h"
#include "host/Streams.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/LandXmlFile.h"
#include "xml/ComHelpers.h"

#include <memory>

namespace quonhost
{
namespace
{

// So many warnings are printed; more of them say nothing new.
constexpr size_t kMostWarnings = 20;

void PrintWarnings(const std::wstring& name, const std::vector<LandXmlWarning>& warnings)
{
    for (size_t index = 0; index < std::min(warnings.size(), kMostWarnings); ++index)
    {
        const LandXmlWarning& warning = warnings[index];
        PrintError(
            std::wstring_view(L"warning: " + name + L" line " + std::to_wstring(warning.line) + L": " + warning.text));
    }
    if (warnings.size() > kMostWarnings)
    {
        PrintError(ToUtf8(L"warning: " + name + L": " +
                          Counted(warnings.size() - kMostWarnings, L"more warning", L"more warnings")));
    }
}

}  // namespace

PointFilter PointChoice::MakeFilter() const
{
    PointFilter filter;
    if (list)
    {
        filter.AddList(*list);
    }
    for (const std::wstring& pattern : patterns)
    {
        filter.AddPattern(pattern);
    }
    return filter;
}

void AddPointChoice(CLI::App& command, PointChoice& choice, const char* listHelp)
{
    AddText(command, "--points", choice.list, listHelp, "LIST");
    command
        .add_option_function<std::vector<std::string>>(
            "--name",
            [&choice](const std::vector<std::string>& patterns) {
                for (const std::string& pattern : patterns)
                {
                    choice.patterns.push_back(ToWide(pattern));
                }
            },
            "Points whose names match, such as \"BM*\" (* any text, ? one character); may be given several times")
        ->type_name("PATTERN")
        ->allow_extra_args(false);
}

void AddInput(CLI::App& command, LandXmlInput& input)
{
    AddText(command, "file.xml", input.file, "The file; - for the standard input")->required();
    command.add_flag("--strict", input.isStrict, "Refuse a file with points, faces or lines that cannot be read");
}

LandXmlContents ReadInput(const LandXmlInput& input)
{
    LandXmlContents contents = ReadLandXml(input.file);
    const std::wstring name = ShownName(input.file);
    if (input.isStrict && !contents.warnings.empty())
    {
        throw LineError(name, contents.warnings[0].line, contents.warnings[0].text);
    }
    PrintWarnings(name, contents.warnings);
    return contents;
}

void SetLandXmlWork(CLI::App& command, const std::function<void()>& run)
{
    auto progress = std::make_shared<bool>(false);
    command.add_flag("--progress", *progress, kProgressHelp);
    command.callback([progress, run] {
        const ProgressBar bar(*progress || IsProgressVisible());
        try
        {
            run();
            StandardOutput().Flush();
        }
        catch (const CString& status)
        {
            throw CommandError(std::wstring_view(status.GetString()));
        }
        catch (const _com_error& error)
        {
            throw CommandError(std::wstring_view(L"the XML parser failed: " + std::wstring(error.ErrorMessage())));
        }
    });
}

void AddLandXmlCommand(CLI::App& app)
{
    CLI::App* const command = app.add_subcommand("landxml", "Exchange survey points and surfaces as LandXML");
    command->require_subcommand(1);
    AddLandXmlExport(*command);
    AddLandXmlInfo(*command);
    AddLandXmlPoints(*command);
    AddLandXmlPlot(*command);
}

}  // namespace quonhost
