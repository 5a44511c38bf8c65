// Options and arguments of commands. What the user typed becomes wide text or a checked value here.
#pragma once

#include <afx.h>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// Adds an option, or without dashes in its name an argument, that takes any text.
/// @param kind what the help calls the text, such as "FILE"; null for none
CLI::Option* AddText(CLI::App& command, const char* name, std::wstring& value, const char* description,
                     const char* kind = "");
CLI::Option* AddText(CLI::App& command, const char* name, std::optional<std::wstring>& value, const char* description,
                     const char* kind = "");
/// Adds an argument that takes one text or more.
CLI::Option* AddTexts(CLI::App& command, const char* name, std::vector<std::wstring>& values, const char* description);

/// The names that an option takes.
using Choices = std::vector<std::string>;

/// Adds an option that takes one of `choices`.
CLI::Option* AddChoice(CLI::App& command, const char* name, std::string& value, const Choices& choices,
                       const char* description);

/// Returns a check for an option that takes names out of `choices`. It refuses others and names the nearest.
CLI::Validator OneOf(const Choices& choices);

/// The longest time that an option takes, in seconds.
inline constexpr double kLongestWait = 1e9;

/// Adds an option that takes a finite number from `low` to `high`.
/// @param unit what the help calls the number, such as "SECONDS"
CLI::Option* AddNumber(CLI::App& command, const char* name, double& value, double low, double high, const char* unit,
                       const char* description);

/// Returns the number that a text consists of: decimal, with a sign and an exponent if it has them. Returns nothing for
/// anything else, such as "nan", "inf", "0x10", a number too large for the type, or blanks.
std::optional<double> ParseFiniteNumber(std::wstring_view text);

/// Returns the whole number that a text consists of, decimal or after "0x" hexadecimal, if it is at most `limit`.
std::optional<unsigned long> ParseCode(std::string_view text, unsigned long limit);

}  // namespace quonhost
