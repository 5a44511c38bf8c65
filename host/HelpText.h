// The look of help texts.
#pragma once

#include <string>
#include <string_view>

namespace quonhost
{

/// The number of columns that help texts fit into.
inline constexpr size_t kHelpColumns = 80;

/// Returns the text with each line that is longer than `columns` continued on further lines at blanks. Continuations
/// begin below the line's second column: the first text after a gap of two or more blanks, or else below its start.
/// A word that is too long for a line stays whole.
std::string WrapHelp(std::string_view text, size_t columns = kHelpColumns);

}  // namespace quonhost
