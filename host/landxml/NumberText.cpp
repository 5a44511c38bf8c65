#include "host/landxml/NumberText.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <system_error>

namespace quonhost
{
namespace
{

// Numbers are ASCII. Anything else becomes a character that no number has.
std::string Narrow(std::wstring_view text)
{
    std::string result(text.size(), '?');
    std::transform(text.begin(), text.end(), result.begin(),
                   [](wchar_t ch) { return ch < 0x80 ? static_cast<char>(ch) : '?'; });
    return result;
}

}  // namespace

std::string FormatNumber(double value)
{
    // The fixed form of the library writes all digits of a large number, although 17 distinguish it from its
    // neighbours. Its scientific form has the fewest digits that do; they are put around the point here.
    char text[32] = {};
    const std::to_chars_result result = std::to_chars(text, text + sizeof(text), value, std::chars_format::scientific);
    const std::string_view scientific(text, static_cast<size_t>(result.ptr - text));
    const size_t mark = scientific.find('e');
    std::string digits;
    std::copy_if(text, text + mark, std::back_inserter(digits), [](char ch) { return ch >= '0' && ch <= '9'; });
    const int exponent = std::atoi(text + mark + 1);
    const int count = static_cast<int>(digits.size());
    if (exponent < 0)
    {
        digits.insert(0, static_cast<size_t>(-exponent), '0');
        digits.insert(1, 1, '.');
    }
    else if (exponent + 1 < count)
    {
        digits.insert(static_cast<size_t>(exponent) + 1, 1, '.');
    }
    else
    {
        digits.append(static_cast<size_t>(exponent + 1 - count), '0');
    }
    return std::signbit(value) ? '-' + digits : digits;
}

std::optional<double> ParseNumber(std::string_view text)
{
    // Written by others, a number may carry the plus sign that from_chars does not take.
    const bool hasPlus = text.size() > 1 && text[0] == '+' && text[1] != '-';
    const char* const begin = text.data() + (hasPlus ? 1 : 0);
    const char* const end = text.data() + text.size();
    double value = 0;
    const std::from_chars_result result = std::from_chars(begin, end, value);
    if (result.ec != std::errc() || result.ptr != end || !std::isfinite(value))
    {
        return std::nullopt;
    }
    return value;
}

std::optional<unsigned long> ParsePointNumber(std::string_view text)
{
    const char* const end = text.data() + text.size();
    unsigned long number = 0;
    const std::from_chars_result result = std::from_chars(text.data(), end, number);
    if (result.ec != std::errc() || result.ptr != end || number == 0 || number > kHighestPointNumber)
    {
        return std::nullopt;
    }
    return number;
}

std::wstring NumberText(double value)
{
    const std::string text = FormatNumber(value);
    return std::wstring(text.begin(), text.end());
}

std::optional<double> ParseNumber(std::wstring_view text)
{
    return ParseNumber(std::string_view(Narrow(text)));
}

std::optional<unsigned long> ParsePointNumber(std::wstring_view text)
{
    return ParsePointNumber(std::string_view(Narrow(text)));
}

}  // namespace quonhost
