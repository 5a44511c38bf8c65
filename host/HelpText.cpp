#include "host/HelpText.h"

namespace quonhost
{
namespace
{

// Where the text of a line begins: after its indentation, and after the gap that ends its first column if it has one.
size_t TextColumn(std::string_view line)
{
    const size_t start = line.find_first_not_of(' ');
    const size_t gap = line.find("  ", start);
    if (gap == std::string_view::npos)
    {
        return start;
    }
    return line.find_first_not_of(' ', gap);
}

std::string WrapLine(std::string_view line, size_t columns)
{
    std::string wrapped;
    std::string indent;
    if (line.size() > columns)
    {
        indent.assign(TextColumn(line), ' ');
    }
    std::string rest(line);
    while (rest.size() > columns)
    {
        size_t end = rest.rfind(' ', columns);
        if (end == std::string::npos || end < indent.size() + 1)
        {
            end = rest.find(' ', indent.size());
        }
        if (end == std::string::npos)
        {
            break;
        }
        wrapped += rest.substr(0, end) + '\n';
        rest = indent + rest.substr(end + 1);
    }
    return wrapped + rest;
}

}  // namespace

std::string WrapHelp(std::string_view text, size_t columns)
{
    std::string wrapped;
    for (size_t begin = 0; begin < text.size();)
    {
        const size_t end = text.find('\n', begin);
        std::string_view line = text.substr(begin, end == std::string_view::npos ? end : end - begin);
        line.remove_suffix(line.size() - (line.find_last_not_of(' ') + 1));
        wrapped += WrapLine(line, columns);
        if (end == std::string_view::npos)
        {
            break;
        }
        wrapped += '\n';
        begin = end + 1;
    }
    return wrapped;
}

}  // namespace quonhost
