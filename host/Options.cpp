#include "host/Options.h"

#include "host/Console.h"
#include "host/NearestName.h"
#include "support/StringHelpers.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace quonhost
{
namespace
{

std::string NumberText(double value)
{
    CString text;
    text.Format(L"%.15g", value);
    return ToUtf8(text.GetString());
}

// Returns why the text is not such a number; empty when it is.
std::string CheckNumber(const std::string& text, double low, double high)
{
    const std::optional<double> number = ParseFiniteNumber(ToWide(text));
    if (!number)
    {
        return "\"" + text + "\" is not a number";
    }
    if (*number < low || *number > high)
    {
        return text + " is not from " + NumberText(low) + " to " + NumberText(high);
    }
    return {};
}

}  // namespace

CLI::Option* AddText(CLI::App& command, const char* name, std::wstring& value, const char* description,
                     const char* kind)
{
    return command
        .add_option_function<std::string>(
            name, [&value](const std::string& text) { value = ToWide(text); }, description)
        ->type_name(kind);
}

CLI::Option* AddText(CLI::App& command, const char* name, std::optional<std::wstring>& value, const char* description,
                     const char* kind)
{
    return command
        .add_option_function<std::string>(
            name, [&value](const std::string& text) { value = ToWide(text); }, description)
        ->type_name(kind);
}

CLI::Option* AddTexts(CLI::App& command, const char* name, std::vector<std::wstring>& values, const char* description)
{
    const auto take = [&values](const std::vector<std::string>& texts) {
        values.clear();
        std::transform(texts.begin(), texts.end(), std::back_inserter(values), &ToWide);
    };
    return command.add_option_function<std::vector<std::string>>(name, take, description)->type_name("");
}

CLI::Validator OneOf(const Choices& choices)
{
    const auto check = [choices](const std::string& text) -> std::string {
        if (std::find(choices.begin(), choices.end(), text) != choices.end())
        {
            return {};
        }
        return "\"" + text + "\" is not one of " + CLI::detail::join(choices, ", ") + Suggestion(text, choices);
    };
    return CLI::Validator(check, "");
}

CLI::Option* AddChoice(CLI::App& command, const char* name, std::string& value, const Choices& choices,
                       const char* description)
{
    return command.add_option(name, value, description)
        ->check(OneOf(choices))
        ->type_name(CLI::detail::join(choices, "|"));
}

CLI::Option* AddNumber(CLI::App& command, const char* name, double& value, double low, double high, const char* unit,
                       const char* description)
{
    const auto check = [low, high](const std::string& text) { return CheckNumber(text, low, high); };
    const auto take = [&value](const std::string& text) { value = ParseFiniteNumber(ToWide(text)).value_or(0); };
    return command.add_option_function<std::string>(name, take, description)
        ->check(CLI::Validator(check, ""))
        ->type_name(unit);
}

std::optional<double> ParseFiniteNumber(std::wstring_view text)
{
    // The library's parser also takes hexadecimal numbers, "nan", blanks and an empty text.
    if (text.empty() || text.find_first_not_of(L"0123456789+-.eE") != std::wstring_view::npos)
    {
        return std::nullopt;
    }
    double number = 0;
    if (!ParseDouble(std::wstring(text).c_str(), &number) || !std::isfinite(number))
    {
        return std::nullopt;
    }
    return number;
}

std::optional<unsigned long> ParseCode(std::string_view text, unsigned long limit)
{
    const bool isHexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    const char* const begin = text.data() + (isHexadecimal ? 2 : 0);
    const char* const end = text.data() + text.size();
    unsigned long code = 0;
    const std::from_chars_result result = std::from_chars(begin, end, code, isHexadecimal ? 16 : 10);
    if (result.ec != std::errc() || result.ptr != end || code > limit)
    {
        return std::nullopt;
    }
    return code;
}

}  // namespace quonhost
