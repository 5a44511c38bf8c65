#include "host/landxml/PlaceText.h"

#include "host/landxml/NumberText.h"

namespace quonhost
{
namespace
{

// Reads the numbers of a text. Returns nothing when one is not a number.
std::optional<std::vector<double>> ParseNumbers(std::string_view text)
{
    std::vector<double> values;
    bool isGood = true;
    ForEachWord(text, [&](std::string_view word) {
        const std::optional<double> value = ParseNumber(word);
        isGood = isGood && value.has_value();
        values.push_back(value.value_or(0));
    });
    return isGood ? std::optional(std::move(values)) : std::nullopt;
}

}  // namespace

std::optional<unsigned long> NumberOf(const SurveyPoint& point)
{
    return ParsePointNumber(point.identifier);
}

std::optional<VxGePoint3d> ParsePlace(std::string_view text)
{
    // Without a vector: there may be millions of places.
    double values[3] = {0, 0, kNoElevation};
    size_t count = 0;
    bool isGood = true;
    ForEachWord(text, [&](std::string_view word) {
        const std::optional<double> value = count < 3 ? ParseNumber(word) : std::nullopt;
        isGood = isGood && value.has_value();
        values[std::min<size_t>(count, 2)] = value.value_or(0);
        ++count;
    });
    if (!isGood || count < 2)
    {
        return std::nullopt;
    }
    return VxGePoint3d{values[1], values[0], values[2]};
}

std::optional<std::vector<VxGePoint3d>> ParsePlaces(std::string_view text, size_t dimensions)
{
    const std::optional<std::vector<double>> values = ParseNumbers(text);
    if (!values || values->size() % dimensions != 0)
    {
        return std::nullopt;
    }
    std::vector<VxGePoint3d> places;
    for (size_t index = 0; index < values->size(); index += dimensions)
    {
        const double elevation = dimensions == 3 ? (*values)[index + 2] : kNoElevation;
        places.push_back({(*values)[index + 1], (*values)[index], elevation});
    }
    return places;
}

std::string PlaceText(const VxGePoint3d& place)
{
    const std::string plan = FormatNumber(place.y) + ' ' + FormatNumber(place.x);
    return HasElevation(place) ? plan + ' ' + FormatNumber(place.z) : plan;
}

}  // namespace quonhost
