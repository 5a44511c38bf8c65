// Drives matchers and trees through their common interface, as every caller does.
#pragma once

#include <afx.h>

#include <ostream>
#include <string>
#include <vector>

#include "traversal/QuonFileMatch.h"

namespace quon_test
{

using Names = std::vector<std::wstring>;

inline std::wstring Text(const QuonPath& path)
{
    return static_cast<const wchar_t*>(path);
}

/// Found names from the current match to the end.
inline Names Remaining(QuonFileMatch& match)
{
    Names names;
    while (match.IsFound())
    {
        names.push_back(Text(match.GetFoundName()));
        match.FindNext();
    }
    return names;
}

inline Names Walk(QuonFileMatch& match, const std::wstring& folder, const wchar_t* pattern, unsigned int filter)
{
    match.FindFirst(folder.c_str(), pattern, filter);
    return Remaining(match);
}

}  // namespace quon_test
