// What somebody may have meant by a name that is not known.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// Returns the name nearest to `text`: one that `text` begins, or one that few edits turn `text` into (a letter more,
/// less, exchanged, or two neighbors swapped; one edit for each three letters, upper and lower case being equal).
/// Returns nothing when no name is near.
std::optional<std::string> NearestName(std::string_view text, const std::vector<std::string>& names);

/// Returns `; did you mean "NAME"?` for the nearest name, or an empty text.
std::string Suggestion(std::string_view text, const std::vector<std::string>& names);

}  // namespace quonhost
