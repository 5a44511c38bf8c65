#include "support/Angles.h"
#include "helpers/Thorough.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

namespace
{

// Two doubles are the same when their bits are; the payload of a NaN is nobody's promise.
std::uint64_t Bits(double value)
{
    std::uint64_t bits = 0;
    const double canonical = std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value;
    std::memcpy(&bits, &canonical, sizeof bits);
    return bits;
}

struct AngleRow
{
    double value;
    double expected;
};

TEST(Angles, ConvertKnownAngles)
{
    EXPECT_EQ(DegreesToRadians(180), 3.141592653589793);
    EXPECT_EQ(DegreesToRadians(-90), -3.141592653589793 / 2);
    EXPECT_EQ(RadiansToDegrees(3.141592653589793), 180);
    EXPECT_EQ(RadiansToDegrees(3.141592653589793 / 4), 45);
    EXPECT_EQ(DegreesToRadians(0), 0);
    EXPECT_NEAR(RoundTripRadians(1), 1, 1e-15);
    EXPECT_NEAR(DmsToRadians(12.3045), 0.21838432, 1e-8);
}

TEST(Angles, ReadDegreesMinutesAndSeconds)
{
    const AngleRow rows[] = {
        {0, 0},
        {12.3045, 12.5125},
        {-12.3045, -12.5125},
        {45, 45},
        {0.30, 0.5},
        {0.0030, 30.0 / 3600},
        {359.5959, 360 - 1.0 / 3600},
        {1.0001, 1 + 1.0 / 3600},
        {10.5, 10 + 50.0 / 60},
        // Minutes and seconds beyond 59 are taken as they stand.
        {1.99, 1 + 99.0 / 60},
    };
    for (const AngleRow& row : rows)
    {
        SCOPED_TRACE(row.value);
        EXPECT_NEAR(DmsToDegrees(row.value), row.expected, 1e-9);
    }
}

TEST(Angles, WriteTheFractionOfAMinuteWhereSecondsWouldStand)
{
    const AngleRow rows[] = {
        {0, 0},      {12.5125, 12.300075}, {-12.5125, -12.300075}, {45, 45},
        {0.5, 0.30}, {10.25, 10.15},       {1.0 / 120, 0.00005},
    };
    for (const AngleRow& row : rows)
    {
        SCOPED_TRACE(row.value);
        EXPECT_NEAR(DegreesToDms(row.value), row.expected, 1e-12);
    }
    EXPECT_GT(std::abs(DmsToDegrees(DegreesToDms(12.5125)) - 12.5125), 0.01);
}

// Each operation into a variable of its own: the compiler cannot take any together or put them in another order.
constexpr double kPi = 3.141592653589793;

double PlainToRadians(double d)
{
    volatile double product = kPi * d;
    return product / 180;
}

double PlainToDegrees(double r)
{
    volatile double product = r * 180;
    return product / kPi;
}

double PlainRoundTrip(double r)
{
    volatile double x = r * 180;
    x = x / kPi;
    x = x * kPi;
    return x / 180;
}

// Both results keep the sign, of a zero as well.
double PlainModf(double value, double* whole)
{
    *whole = std::copysign(std::trunc(value), value);
    return std::copysign(std::isinf(value) ? 0 : value - *whole, value);
}

double PlainDmsToDegrees(double x)
{
    double degrees = 0;
    double minutes = 0;
    volatile double m = PlainModf(x, &degrees) * 100;
    volatile double seconds = PlainModf(m, &minutes) * 100;
    volatile double minute = seconds / 60;
    minute = minutes + minute;
    minute = minute / 60;
    return degrees + minute;
}

double PlainDegreesToDms(double x)
{
    double degrees = 0;
    double minutes = 0;
    volatile double m = PlainModf(x, &degrees) * 60;
    const double fraction = PlainModf(m, &minutes);
    volatile double front = minutes / 100;
    front = front + degrees;
    volatile double back = fraction / 10000;
    return front + back;
}

std::vector<double> ManyValues()
{
    using Limits = std::numeric_limits<double>;
    std::vector<double> values = {0.0,
                                  -0.0,
                                  1,
                                  -1,
                                  12.3045,
                                  -12.3045,
                                  0.5959,
                                  359.5959,
                                  1e300,
                                  -1e300,
                                  Limits::max(),
                                  Limits::lowest(),
                                  Limits::min(),
                                  Limits::denorm_min(),
                                  -Limits::denorm_min(),
                                  Limits::infinity(),
                                  -Limits::infinity(),
                                  Limits::quiet_NaN(),
                                  4503599627370496.5,
                                  9007199254740993.0};
    std::mt19937_64 engine(44);
    std::uniform_real_distribution<double> angles(-720, 720);
    const int half = quon_test::Cases(100000) / 2;
    for (int i = 0; i < half; ++i)
    {
        values.push_back(angles(engine));
    }
    // Any pattern of bits is a double.
    for (int i = 0; i < half; ++i)
    {
        const std::uint64_t bits = engine();
        double value = 0;
        std::memcpy(&value, &bits, sizeof value);
        values.push_back(value);
    }
    return values;
}

TEST(Angles, AreEqualToThePlainFormulasInEveryBit)
{
    for (const double value : ManyValues())
    {
        ASSERT_EQ(Bits(DegreesToRadians(value)), Bits(PlainToRadians(value))) << value;
        ASSERT_EQ(Bits(RadiansToDegrees(value)), Bits(PlainToDegrees(value))) << value;
        ASSERT_EQ(Bits(RoundTripRadians(value)), Bits(PlainRoundTrip(value))) << value;
        ASSERT_EQ(Bits(DmsToDegrees(value)), Bits(PlainDmsToDegrees(value))) << value;
        ASSERT_EQ(Bits(DmsToRadians(value)), Bits(PlainToRadians(PlainDmsToDegrees(value)))) << value;
        ASSERT_EQ(Bits(DegreesToDms(value)), Bits(PlainDegreesToDms(value))) << value;
    }
}

TEST(Angles, MirrorAtZero)
{
    for (const double value : ManyValues())
    {
        ASSERT_EQ(Bits(DmsToDegrees(-value)), Bits(-DmsToDegrees(value))) << value;
        ASSERT_EQ(Bits(DmsToRadians(-value)), Bits(-DmsToRadians(value))) << value;
        ASSERT_EQ(Bits(DegreesToDms(-value)), Bits(-DegreesToDms(value))) << value;
    }
}

TEST(Angles, LetInfinitiesAndNotANumberThrough)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (double (*convert)(double) :
         {&DegreesToRadians, &RadiansToDegrees, &RoundTripRadians, &DmsToDegrees, &DmsToRadians, &DegreesToDms})
    {
        EXPECT_EQ(convert(infinity), infinity);
        EXPECT_EQ(convert(-infinity), -infinity);
        EXPECT_TRUE(std::isnan(convert(std::numeric_limits<double>::quiet_NaN())));
        EXPECT_EQ(Bits(convert(-0.0)), Bits(-0.0));
        EXPECT_EQ(Bits(convert(0.0)), Bits(0.0));
    }
}

}  // namespace
