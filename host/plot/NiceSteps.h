// Round numbers for scales, grids and contours.
#pragma once

#include <afx.h>

#include <string>
#include <vector>

namespace quonhost
{

/// The smallest of 1, 2 and 5 times a power of ten that divides `span` into at most `most` steps. Both are above 0.
double NiceStep(double span, int most);

/// The longest of 1, 2 and 5 times a power of ten that is at most 45 % of a map's width.
double ScaleBarLength(double width);

/// The multiples of `step` from `low` to `high`, both included.
/// @return nothing when there are more than `most`
std::vector<double> MultiplesWithin(double low, double high, double step, size_t most);

/// The decimals that multiples of `step` need, at most 6.
int DecimalsOf(double step);

/// A number with so many decimals and a point, whatever the locale; zero has no sign.
std::wstring FormatFixed(double value, int decimals);

}  // namespace quonhost
