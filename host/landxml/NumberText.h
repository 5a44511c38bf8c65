// Numbers as the text of survey files carries them: a point as decimal separator whatever the locale, no digit lost.
#pragma once

#include <afx.h>

#include <optional>
#include <string>
#include <string_view>

namespace quonhost
{

/// The highest point number that a list of points can name.
inline constexpr unsigned long kHighestPointNumber = 2147483647;

/// Returns the shortest text without an exponent that reads back as exactly this number, which must be finite.
std::string FormatNumber(double value);

/// Returns the same as wide text.
std::wstring NumberText(double value);

/// Reads a decimal number, with a sign and an exponent if it has them. Returns nothing when the text is anything else
/// than one finite number.
std::optional<double> ParseNumber(std::string_view text);

/// Reads wide text likewise.
std::optional<double> ParseNumber(std::wstring_view text);

/// Reads a point number: digits, from 1 to kHighestPointNumber; leading zeros do not count. Returns nothing for any
/// other text.
std::optional<unsigned long> ParsePointNumber(std::string_view text);

/// Reads wide text likewise.
std::optional<unsigned long> ParsePointNumber(std::wstring_view text);

}  // namespace quonhost
