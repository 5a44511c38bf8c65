#include "host/landxml/CsvText.h"

#include "host/landxml/NumberText.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace quonhost
{
namespace
{

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

std::string_view Trimmed(std::string_view text, std::string_view characters)
{
    const size_t first = text.find_first_not_of(characters);
    if (first == std::string_view::npos)
    {
        return {};
    }
    return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

// ASCII only: the names of the columns are.
char LowerCase(char ch)
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

std::vector<std::string_view> SplitAtCommas(std::string_view line)
{
    std::vector<std::string_view> fields;
    for (size_t begin = 0; begin <= line.size();)
    {
        const size_t end = std::min(line.find(',', begin), line.size());
        fields.push_back(line.substr(begin, end - begin));
        begin = end + 1;
    }
    return fields;
}

// Whether the fields of a first line are names of columns. One name will do, for the others may be misspelt; but a row
// may have such a word for its code, and then it has numbers too.
bool IsHeader(const std::vector<std::string_view>& fields, const std::vector<std::string_view>& names)
{
    bool hasName = false;
    for (const std::string_view field : fields)
    {
        const std::string_view bare = Trimmed(field, " \t\"");
        if (ParseNumber(bare))
        {
            return false;
        }
        hasName = hasName || std::find(names.begin(), names.end(), bare) != names.end();
    }
    return hasName;
}

// Puts the first line that is not blank into lower case if it is a header. @return 0 then, otherwise the number of its
// fields
size_t LookForHeader(std::string& text, const std::vector<std::string_view>& names)
{
    const size_t begin = std::min(text.find_first_not_of(" \t\r\n"), text.size());
    const size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
    std::string line = text.substr(begin, end - begin);
    std::transform(line.begin(), line.end(), line.begin(), &LowerCase);
    const std::vector<std::string_view> fields = SplitAtCommas(line);
    if (!IsHeader(fields, names))
    {
        return fields.size();
    }
    text.replace(begin, line.size(), line);
    return 0;
}

std::string MakeHeader(const std::vector<std::string_view>& names, size_t count)
{
    std::string header;
    for (size_t i = 0; i < std::min(count, names.size()); ++i)
    {
        header.append(i == 0 ? "" : ",").append(names[i]);
    }
    return header + '\n';
}

}  // namespace

CommandError LineError(const std::string& file, unsigned int line, const std::string& what)
{
    return CommandError(file + "(" + std::to_string(line) + "): " + what);
}

size_t CsvText::CountRows() const
{
    return static_cast<size_t>(std::count(text.begin(), text.end(), '\n')) - 1;
}

CsvText PrepareCsv(const std::string& file, std::string text, const std::vector<std::string_view>& names)
{
    if (text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0)
    {
        text.erase(0, kByteOrderMark.size());
    }
    const auto nul = std::find(text.begin(), text.end(), '\0');
    if (nul != text.end())
    {
        const auto line = std::count(text.begin(), nul, '\n') + 1;
        throw LineError(file, static_cast<unsigned int>(line), "this is no UTF-8 text: it holds a NUL character");
    }
    if (text.find_first_not_of(" \t\r\n") == std::string::npos)
    {
        throw CommandError("\"" + file + "\" is empty");
    }
    // The parser reads one character past a last line without an end.
    text += text.back() == '\n' ? "" : "\n";
    const size_t fields = LookForHeader(text, names);
    if (fields == 0)
    {
        return {file, std::move(text), true};
    }
    return {file, MakeHeader(names, fields) + text, false};
}

std::string ReadWholeFile(const std::string& name)
{
    std::ifstream file(std::filesystem::path(ToWide(name)), std::ios::binary);
    if (!file)
    {
        throw CommandError("\"" + name + "\" cannot be read");
    }
    std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad())
    {
        throw CommandError("\"" + name + "\" cannot be read to its end");
    }
    return text;
}

std::string QuoteField(const std::string& field)
{
    std::string plain = field;
    std::replace_if(
        plain.begin(), plain.end(), [](char ch) { return static_cast<unsigned char>(ch) < ' '; }, ' ');
    const bool hasOuterBlank = Trimmed(plain, " ").size() != plain.size();
    if (!hasOuterBlank && plain.find_first_of(",\"") == std::string::npos)
    {
        return plain;
    }
    std::string quoted = "\"";
    for (const char ch : plain)
    {
        quoted.append(ch == '"' ? 2 : 1, ch);
    }
    return quoted + '"';
}

}  // namespace quonhost
