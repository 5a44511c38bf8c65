/// @file
/// Angles in radians, decimal degrees and the surveyor's notation D.MMSS.
///
/// D.MMSS writes degrees, minutes and seconds as one number: 12.3045 stands for 12 degrees 30 minutes 45 seconds, which
/// is 12.5125 decimal degrees. Minutes and seconds are read from the decimals as they stand: nothing checks that they
/// are below 60, and a value a rounding error below 12.3 reads as 12 degrees 29 minutes and nearly 100 seconds.
///
/// All functions are pure; any thread may call them. pi is 3.141592653589793. Every operation is an IEEE double
/// operation in the order given; infinities and NaN go through as that arithmetic has it.
#pragma once

#include <afx.h>

#include "base/Export.h"

/// @param degrees decimal degrees.
/// @return radians: pi * degrees / 180.
QUON_API double DegreesToRadians(double degrees);

/// @param radians radians.
/// @return decimal degrees: radians * 180 / pi.
QUON_API double RadiansToDegrees(double radians);

/// Gives radians the rounding of a way to degrees and back: radians * 180 / pi * pi / 180, in that order.
QUON_API double RoundTripRadians(double radians);

/// @param dms an angle in D.MMSS. A negative one is split toward zero: -12.3045 is the negative of 12.3045.
/// @return decimal degrees: degrees + (minutes + seconds / 60) / 60.
QUON_API double DmsToDegrees(double dms);

/// @param dms an angle in D.MMSS.
/// @return radians: pi * `DmsToDegrees(dms)` / 180.
QUON_API double DmsToRadians(double dms);

/// @param degrees decimal degrees. A negative angle is split toward zero.
/// @return degrees + minutes / 100 + fraction of a minute / 10000. This is not D.MMSS: the last decimals hold the
///         fraction of a minute and not seconds, so 12.5125 gives 12.300075 where D.MMSS would be 12.3045, and
///         `DmsToDegrees` does not undo it.
QUON_API double DegreesToDms(double degrees);
