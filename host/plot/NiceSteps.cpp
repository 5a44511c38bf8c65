#include "host/plot/NiceSteps.h"

#include <charconv>
#include <cmath>

namespace quonhost
{
namespace
{

constexpr int kMostDecimals = 6;

// A quotient that misses a whole number by less is meant to be that number.
constexpr double kRoundingSlack = 1e-9;

// A power of ten as exact as a double can be: below one it is a quotient of whole numbers.
double PowerOfTen(int exponent)
{
    return exponent < 0 ? 1 / std::pow(10.0, -exponent) : std::pow(10.0, exponent);
}

}  // namespace

double NiceStep(double span, int most)
{
    const double least = span / most;
    const int exponent = static_cast<int>(std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
    {
        const double step = exponent < 0 ? factor / PowerOfTen(-exponent) : factor * PowerOfTen(exponent);
        if (step >= least * (1 - kRoundingSlack))
        {
            return step;
        }
    }
    return PowerOfTen(exponent + 1);
}

double ScaleBarLength(double width)
{
    const double most = 0.45 * width;
    // Between two neighbours of the series there is a factor of 2 or 2.5.
    const double longer = NiceStep(most / 2, 1);
    return longer <= most ? longer : NiceStep(most / 2.5, 1);
}

std::vector<double> MultiplesWithin(double low, double high, double step, size_t most)
{
    const double first = std::ceil(low / step - kRoundingSlack);
    const double last = std::floor(high / step + kRoundingSlack);
    std::vector<double> multiples;
    if (!(last >= first) || last - first >= static_cast<double>(most))
    {
        return multiples;
    }
    // A step below one is divided by its inverse when that is whole: 3 / 10, not 3 * 0.1.
    const double inverse = std::round(1 / step);
    const bool isFraction = step < 1 && std::abs(inverse * step - 1) < kRoundingSlack;
    for (double index = first; index <= last; ++index)
    {
        multiples.push_back(isFraction ? index / inverse : index * step);
    }
    return multiples;
}

int DecimalsOf(double step)
{
    double scaled = step;
    for (int decimals = 0; decimals < kMostDecimals; ++decimals)
    {
        if (std::abs(scaled - std::round(scaled)) < kRoundingSlack * scaled)
        {
            return decimals;
        }
        scaled *= 10;
    }
    return kMostDecimals;
}

std::wstring FormatFixed(double value, int decimals)
{
    char text[400] = {};
    const std::to_chars_result result =
        std::to_chars(text, text + sizeof(text), value, std::chars_format::fixed, decimals);
    const std::wstring number(text, result.ptr);
    return number.find_first_of(L"123456789") == std::wstring::npos && number[0] == L'-' ? number.substr(1) : number;
}

}  // namespace quonhost
