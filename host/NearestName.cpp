#include "host/NearestName.h"

#include <algorithm>
#include <utility>

namespace quonhost
{
namespace
{

char Lower(char ch)
{
    return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch;
}

std::string Lower(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char ch) { return Lower(ch); });
    return lower;
}

// The number of edits between two texts, where no letter is edited twice.
size_t Distance(const std::string& a, const std::string& b)
{
    std::vector<size_t> beforeLast;
    std::vector<size_t> last(b.size() + 1);
    for (size_t column = 0; column <= b.size(); ++column)
    {
        last[column] = column;
    }
    for (size_t row = 1; row <= a.size(); ++row)
    {
        std::vector<size_t> current(b.size() + 1);
        current[0] = row;
        for (size_t column = 1; column <= b.size(); ++column)
        {
            const size_t exchanged = last[column - 1] + (a[row - 1] == b[column - 1] ? 0 : 1);
            current[column] = std::min({exchanged, last[column] + 1, current[column - 1] + 1});
            if (row > 1 && column > 1 && a[row - 1] == b[column - 2] && a[row - 2] == b[column - 1])
            {
                current[column] = std::min(current[column], beforeLast[column - 2] + 1);
            }
        }
        beforeLast = std::exchange(last, std::move(current));
    }
    return last.back();
}

}  // namespace

std::optional<std::string> NearestName(std::string_view text, const std::vector<std::string>& names)
{
    const std::string wanted = Lower(text);
    const size_t limit = (wanted.size() + 2) / 3;
    std::optional<std::string> nearest;
    size_t smallest = limit + 1;
    for (const std::string& name : names)
    {
        const std::string known = Lower(name);
        // Longer texts are not near anyway, and would take long to compare.
        if (wanted.empty() || wanted.size() > 2 * known.size())
        {
            continue;
        }
        const size_t distance = known.compare(0, wanted.size(), wanted) == 0 ? 0 : Distance(wanted, known);
        if (distance < smallest)
        {
            smallest = distance;
            nearest = name;
        }
    }
    return nearest;
}

std::string Suggestion(std::string_view text, const std::vector<std::string>& names)
{
    const std::optional<std::string> nearest = NearestName(text, names);
    return nearest ? "; did you mean \"" + *nearest + "\"?" : std::string();
}

}  // namespace quonhost
