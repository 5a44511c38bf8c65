#include "host/Commands.h"

#include "host/Console.h"
#include "host/Report.h"
#include "support/NaturalCompare.h"
#include "support/QuonMergeSort.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

namespace quonhost
{
namespace
{

struct SortOptions
{
    std::string file;
    bool ignoreCase = false;
    bool json = false;
};

std::vector<std::wstring> ReadLines(const std::string& name)
{
    std::ifstream file(std::filesystem::path(ToWide(name)), std::ios::binary);
    if (!file)
    {
        throw CommandError("\"" + name + "\" cannot be read");
    }
    std::vector<std::wstring> lines;
    for (std::string line; std::getline(file, line);)
    {
        if (!line.empty() && line.back() == '\r')
        {
            line.pop_back();
        }
        lines.push_back(ToWide(line));
    }
    if (file.bad())
    {
        throw CommandError("\"" + name + "\" cannot be read to its end");
    }
    constexpr wchar_t kByteOrderMark = 0xFEFF;
    if (!lines.empty() && !lines.front().empty() && lines.front().front() == kByteOrderMark)
    {
        lines.front().erase(0, 1);
    }
    return lines;
}

void PrintLinesAsJson(const std::vector<std::wstring>& lines)
{
    Json list = Json::array();
    for (const std::wstring& line : lines)
    {
        list.push_back(JsonText(line));
    }
    PrintJson({{"lines", std::move(list)}});
}

void PrintSorted(const SortOptions& options)
{
    std::vector<std::wstring> lines = ReadLines(options.file);
    const auto compare = options.ignoreCase ? &CompareNaturalNoCase : &CompareNatural;
    // Natural comparison is not a strict order, which the standard library's sorts require.
    QuonMergeSort(lines.begin(), lines.end(), [compare](const std::wstring& a, const std::wstring& b) {
        return compare(a.c_str(), b.c_str()) < 0;
    });
    if (options.json)
    {
        PrintLinesAsJson(lines);
        return;
    }
    for (const std::wstring& line : lines)
    {
        PrintLine(line);
    }
}

}  // namespace

void AddSortCommand(CLI::App& app)
{
    auto options = std::make_shared<SortOptions>();
    CLI::App* command =
        app.add_subcommand("sort", "Print the lines of a text file in natural order: file2 before file10");
    command->add_option("file", options->file, "A UTF-8 text file")->required();
    command->add_flag("--ignore-case", options->ignoreCase, "Take upper and lower case for the same");
    AddJsonFlag(*command, options->json);
    command->callback([options] { PrintSorted(*options); });
}

}  // namespace quonhost
