#include "support/Angles.h"

#include "base/RuntimeInternal.h"

// The order of the operations is part of what the functions promise: results are equal to the last bit wherever doubles
// are IEEE. No expression here may be simplified or get a precomputed factor.

namespace
{

constexpr double kPi = 3.141592653589793;

}  // namespace

double DegreesToRadians(double degrees)
{
    return kPi * degrees / 180;
}

double RadiansToDegrees(double radians)
{
    return radians * 180 / kPi;
}

double RoundTripRadians(double radians)
{
    return radians * 180 / kPi * kPi / 180;
}

double DmsToDegrees(double dms)
{
    double degrees = 0;
    double minutes = 0;
    const double fraction = RuntimeModf(dms, &degrees);
    const double seconds = RuntimeModf(fraction * 100, &minutes) * 100;
    return degrees + (minutes + seconds / 60) / 60;
}

double DmsToRadians(double dms)
{
    return kPi * DmsToDegrees(dms) / 180;
}

double DegreesToDms(double degrees)
{
    double wholeDegrees = 0;
    double minutes = 0;
    const double fraction = RuntimeModf(degrees, &wholeDegrees);
    const double fractionOfMinute = RuntimeModf(fraction * 60, &minutes);
    // The fraction of a minute stands where D.MMSS has seconds, on purpose: callers may rely on it.
    return minutes / 100 + wholeDegrees + fractionOfMinute / 10000;
}
