#include "host/Commands.h"

#include "host/Console.h"
#include "host/Options.h"
#include "host/Report.h"
#include "host/Streams.h"
#include "support/NaturalCompare.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace quonhost
{
namespace
{

struct SortOptions
{
    std::wstring file;
    bool ignoreCase = false;
    bool json = false;
};

// Sorting must give back every name as it was, so bytes that are not UTF-8 are refused rather than replaced.
std::wstring LineOf(const std::string& utf8, const std::wstring& name, size_t number)
{
    std::wstring line = ToWide(utf8);
    if (ToUtf8(line) != utf8)
    {
        throw CommandError(ShownInput(name) + L" line " + std::to_wstring(number) + L" is not UTF-8");
    }
    return line;
}

std::vector<std::wstring> ReadLines(const std::wstring& name)
{
    std::string text = ReadWholeInput(name);
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    text.erase(0, text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0 ? kByteOrderMark.size() : 0);
    std::vector<std::wstring> lines;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = std::min(text.find('\n', begin), text.size());
        const bool hasReturn = end > begin && text[end - 1] == '\r';
        lines.push_back(LineOf(text.substr(begin, end - begin - (hasReturn ? 1 : 0)), name, lines.size() + 1));
        begin = end + 1;
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
    // Linguistic collation and the digits of other scripts can make natural order no strict order; a merge sort stays
    // within its bounds even then.
    std::stable_sort(lines.begin(), lines.end(), [compare](const std::wstring& a, const std::wstring& b) {
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
    AddText(*command, "file", options->file, "A UTF-8 text file, or - for the standard input")->required();
    command->add_flag("--ignore-case", options->ignoreCase, "Do not distinguish upper and lower case");
    AddJsonFlag(*command, options->json);
    command->callback([options] { PrintSorted(*options); });
}

}  // namespace quonhost
