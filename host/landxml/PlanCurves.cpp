#include "host/landxml/PlanCurves.h"

#include <cmath>
#include <complex>

namespace quonhost
{
namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr double kLargestChord = 2 * kPi / 180;

// A place or direction in the plan.
using Plan = std::complex<double>;

Plan PlanOf(const VxGePoint3d& place)
{
    return {place.x, place.y};
}

// A place on the way from one to another, at the same part of the difference in elevation.
VxGePoint3d PlaceAt(const Plan& plan, const VxGePoint3d& start, const VxGePoint3d& end, double part)
{
    return {plan.real(), plan.imag(), start.z + part * (end.z - start.z)};
}

double CurvatureOf(double radius)
{
    return std::isfinite(radius) && radius != 0 ? 1 / std::abs(radius) : 0;
}

// The angle from one direction to another, in the sense of rotation: above 0, at most a full turn.
double TurnBetween(const Plan& from, const Plan& to, bool isClockwise)
{
    const double turn = (isClockwise ? -1 : 1) * (std::arg(to) - std::arg(from));
    const double rest = std::fmod(turn, 2 * kPi);
    return rest > 1e-12 ? rest : rest + 2 * kPi;
}

}  // namespace

std::vector<VxGePoint3d> ArcPlaces(const PlanArc& arc)
{
    const Plan center = PlanOf(arc.center);
    const Plan from = PlanOf(arc.start) - center, to = PlanOf(arc.end) - center;
    if (std::abs(from) == 0 || std::abs(to) == 0)
    {
        return {arc.start, arc.end};
    }
    const double turn = TurnBetween(from, to, arc.isClockwise);
    const int chords = std::max(1, static_cast<int>(std::ceil(turn / kLargestChord)));
    std::vector<VxGePoint3d> places = {arc.start};
    for (int index = 1; index < chords; ++index)
    {
        const double part = static_cast<double>(index) / chords;
        const double radius = std::abs(from) + part * (std::abs(to) - std::abs(from));
        const double angle = std::arg(from) + (arc.isClockwise ? -1 : 1) * part * turn;
        places.push_back(PlaceAt(center + std::polar(radius, angle), arc.start, arc.end, part));
    }
    places.push_back(arc.end);
    return places;
}

std::vector<VxGePoint3d> SpiralPlaces(const PlanSpiral& spiral)
{
    constexpr int kSteps = 48;
    const Plan start = PlanOf(spiral.start), end = PlanOf(spiral.end);
    const Plan tangent = PlanOf(spiral.intersection) - start;
    const double sign = spiral.isClockwise ? -1 : 1;
    const double from = sign * CurvatureOf(spiral.startRadius), to = sign * CurvatureOf(spiral.endRadius);
    const double direction = std::arg(std::abs(tangent) > 0 ? tangent : end - start);
    std::vector<Plan> way = {Plan()};
    for (int index = 0; index < kSteps; ++index)
    {
        // In the middle of a step the direction is nearly the one over the step.
        const double along = (index + 0.5) / kSteps;
        const double angle = direction + spiral.length * (from * along + (to - from) * along * along / 2);
        way.push_back(way.back() + std::polar(spiral.length / kSteps, angle));
    }
    if (std::abs(way.back()) == 0)
    {
        return {spiral.start, spiral.end};
    }
    const Plan fit = (end - start) / way.back();
    std::vector<VxGePoint3d> places = {spiral.start};
    for (int index = 1; index < kSteps; ++index)
    {
        places.push_back(PlaceAt(start + fit * way[static_cast<size_t>(index)], spiral.start, spiral.end,
                                 static_cast<double>(index) / kSteps));
    }
    places.push_back(spiral.end);
    return places;
}

}  // namespace quonhost
