// Lists of points as sets of ranges: an account of them that does not depend on how they are written.
#pragma once

#include <afx.h>

#include "points/QuonPointString.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// The points from `first` to `last`, which is not smaller.
struct PointRange
{
    unsigned long first;
    unsigned long last;

    bool operator==(const PointRange&) const = default;
};

/// A set of points: ranges in ascending order with a gap between any two.
using PointSet = std::vector<PointRange>;

/// Returns the points that a walk over a valid list visits.
PointSet PointsOf(QuonPointString& list);

/// Returns the points of `set` that are not in `removed`.
PointSet Without(const PointSet& set, const PointSet& removed);

/// An item of a list: what is between two commas, without blanks at its ends.
struct ListItem
{
    size_t number;  ///< from 1; empty items do not count
    std::wstring text;
};

/// Returns the first item that is not valid.
std::optional<ListItem> FindInvalidItem(std::wstring_view list);

/// Returns the first item that is a comparison, such as "<5". It is valid, but means the number 0, which no
/// rewritten list can contain.
std::optional<ListItem> FindComparison(std::wstring_view list);

}  // namespace quonhost
