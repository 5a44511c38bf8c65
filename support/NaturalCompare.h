/// @file
/// Comparison of texts in the order in which people count: "file2" before "file10".
#pragma once

#include <afx.h>

#include "base/Export.h"

/// Compares two texts, taking each run of decimal digits as a number and the text between the runs by the collation of
/// the C run-time's current locale, upper and lower case being different.
///
/// The texts are taken apart into alternating stretches of other characters and runs of digits, side by side:
/// - While the stretches are of equal length and collate equal, the numbers behind them decide.
/// - As soon as the stretches differ in length, or one text has no digit left, the collation of both whole remainders
///   decides.
/// - Numbers have 32 bits; what is larger counts as 2147483647. Leading zeros do not count, so "a01" equals "a1".
/// - A text that ends behind a number comes before one that goes on.
///
/// This is an order only among names of one shape: "x1y" and "xy1" are compared by plain collation. Between shapes the
/// answers can contradict one another: where collation ignores hyphens at first, as in the locale of the United States,
/// "a-9" comes before "a-10", "a-10" before "a9" and "a9" before "a-9". So it must not be handed to std::sort, std::map
/// or another user of a strict order; QuonMergeSort (support/QuonMergeSort.h) takes it.
///
/// Allocates nothing. A null pointer counts as an empty text. Any thread.
/// @return negative when @p a comes first, 0 when the two rank equal, positive when @p b comes first. Where numbers
///         decide, the value is their difference, not a sign; where collation decides, it is what `wcscoll` or
///         `_wcsncoll` returned.
QUON_API int CompareNatural(const wchar_t* a, const wchar_t* b);

/// `CompareNatural` with upper and lower case taken as equal (`_wcsicoll`, `_wcsnicoll`).
QUON_API int CompareNaturalNoCase(const wchar_t* a, const wchar_t* b);
