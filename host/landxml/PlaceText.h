// Places as LandXML writes them: northing, easting and, if known, elevation.
#pragma once

#include <afx.h>

#include "host/landxml/Survey.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// Reads two or three numbers separated by white space. Returns nothing for any other text.
std::optional<VxGePoint3d> ParsePlace(std::string_view text);

/// Reads a list of places of `dimensions` numbers each, 2 or 3. Returns nothing when a number is not one, or some are
/// missing at the end.
std::optional<std::vector<VxGePoint3d>> ParsePlaces(std::string_view text, size_t dimensions);

/// Calls `visit(word)` for each piece of the text between white space.
template <typename Visit>
void ForEachWord(std::string_view text, const Visit& visit)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    for (size_t begin = text.find_first_not_of(kBlanks); begin != std::string_view::npos;)
    {
        const size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
        visit(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBlanks, end);
    }
}

/// Returns the text of a place, without the elevation when that is not known.
std::string PlaceText(const VxGePoint3d& place);

}  // namespace quonhost
