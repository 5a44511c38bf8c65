#include "host/plot/PlotLevels.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"
#include "host/plot/NiceSteps.h"

#include <algorithm>
#include <cmath>

namespace quonhost
{
namespace
{

constexpr size_t kMostContours = 500;
constexpr int kContoursByDefault = 25;
constexpr size_t kMostTints = 60;
constexpr int kTintsByDefault = 25;

std::vector<double> ContoursOf(const PlotLevels& levels)
{
    const std::vector<double> contours = MultiplesWithin(levels.low, levels.high, levels.step, kMostContours);
    if (contours.empty() && levels.high - levels.low >= levels.step)
    {
        throw CommandError(std::wstring_view(L"contours every " + NumberText(levels.step) + L" would be more than " +
                                             std::to_wstring(kMostContours)));
    }
    return contours;
}

// Tints change where contours run, as far as those are neither too many nor too few.
std::vector<double> TintsOf(const PlotLevels& levels)
{
    const double range = levels.high - levels.low;
    std::vector<double> limits = levels.contours;
    if (limits.size() > kMostTints || limits.size() < 5)
    {
        limits = MultiplesWithin(levels.low, levels.high, NiceStep(range, kTintsByDefault), kMostTints);
    }
    std::erase_if(limits, [&levels](double limit) { return limit <= levels.low; });
    limits.insert(limits.begin(), levels.low);
    // The highest corner belongs to the last band too.
    if (limits.back() < levels.high)
    {
        limits.push_back(levels.high);
    }
    limits.back() = std::nextafter(levels.high, HUGE_VAL);
    return limits;
}

}  // namespace

bool PlotLevels::IsIndex(double contour) const
{
    constexpr double kEvery = 5;
    const double index = contour / step / kEvery;
    return std::abs(index - std::round(index)) < 1e-6;
}

PlotColour PlotLevels::TintOfBand(size_t band) const
{
    const double middle = (tints[band] + tints[band + 1]) / 2;
    return TintOf(high > low ? (middle - low) / (high - low) : 0.5);
}

std::optional<PlotLevels> LevelsOf(const SurveySurface& surface, std::optional<double> step)
{
    if (surface.triangles.empty())
    {
        return std::nullopt;
    }
    PlotLevels levels;
    levels.low = levels.high = surface.points[surface.triangles[0][0]].z;
    for (const SurveyTriangle& triangle : surface.triangles)
    {
        for (const std::uint32_t corner : triangle)
        {
            levels.low = std::min(levels.low, surface.points[corner].z);
            levels.high = std::max(levels.high, surface.points[corner].z);
        }
    }
    const bool isFlat = !(levels.high > levels.low);
    levels.hasContours = !isFlat && step.value_or(1) > 0;
    if (levels.hasContours)
    {
        levels.step = step ? *step : NiceStep(levels.high - levels.low, kContoursByDefault);
        levels.contours = ContoursOf(levels);
    }
    levels.tints = isFlat ? std::vector{levels.low, std::nextafter(levels.low, HUGE_VAL)} : TintsOf(levels);
    return levels;
}

}  // namespace quonhost
