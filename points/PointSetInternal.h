// The set operations on point strings: ranges in, text out. Whole ranges are marked, cleared and scanned; no step is
// taken for a single point.
#pragma once

#include <afx.h>

#include "points/PointTextInternal.h"

#include <cstddef>
#include <vector>

namespace QuonPointDetails
{

/// What a walk over a text hands out.
struct ParsedPoints
{
    std::vector<PointRange> ranges;
    bool isValid = true;  // false when an invalid item ended the walk
};

/// A zero character follows the text.
ParsedPoints ParsePoints(const wchar_t* text, std::size_t length);

/// The points of `text` that are not among `removed`: sorted, or in the order of the walk with the duplicates left in.
CString FormatDifference(const CString& text, const ParsedPoints& removed, bool sorted);

/// Every point of `text` once: sorted, or in the order of first occurrence.
CString FormatUnique(const CString& text, bool sorted);

}  // namespace QuonPointDetails
