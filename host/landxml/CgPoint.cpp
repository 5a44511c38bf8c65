#include "host/landxml/CgPoint.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"

#include <algorithm>
#include <unordered_map>

namespace quonhost
{
namespace
{

constexpr std::string_view kWhiteSpace = " \t\r\n";

// Numbers are ASCII. What is not becomes a character that no number has.
std::string Narrow(std::wstring_view text)
{
    std::string result(text.size(), '?');
    std::transform(text.begin(), text.end(), result.begin(),
                   [](wchar_t ch) { return ch < 0x80 ? static_cast<char>(ch) : '?'; });
    return result;
}

// Texts of points by the points' names; made when the first reference is met, for most documents have none.
class TextsByName
{
public:
    explicit TextsByName(const std::vector<CgPoint>& points) : m_points(points) {}

    // A reference may lead to a point that is a reference itself, but not in circles.
    const std::wstring& TextOf(const CgPoint& point)
    {
        const CgPoint* current = &point;
        for (size_t steps = 0; current->text.empty() && !current->reference.empty() && steps < m_points.size(); ++steps)
        {
            FillIndex();
            const auto found = m_byName.find(current->reference);
            if (found == m_byName.end())
            {
                break;
            }
            current = found->second;
        }
        return current->text;
    }

private:
    void FillIndex()
    {
        if (m_byName.empty())
        {
            for (const CgPoint& point : m_points)
            {
                m_byName.emplace(point.name, &point);
            }
        }
    }

    const std::vector<CgPoint>& m_points;
    std::unordered_map<std::wstring_view, const CgPoint*> m_byName;
};

CgPlace PlaceOf(const CgPoint& point, TextsByName& texts)
{
    const std::wstring& text = texts.TextOf(point);
    const std::optional<CgPlace> place = ParsePlace(text);
    if (!place)
    {
        throw CommandError(L"point " + point.name + L" has no coordinates: \"" + text + L"\"");
    }
    return *place;
}

}  // namespace

std::optional<CgPlace> ParsePlace(std::wstring_view text)
{
    const std::string numbers = Narrow(text);
    std::vector<double> values;
    for (size_t begin = numbers.find_first_not_of(kWhiteSpace); begin != std::string::npos;)
    {
        const size_t end = std::min(numbers.find_first_of(kWhiteSpace, begin), numbers.size());
        const std::optional<double> value = ParseNumber(std::string_view(numbers).substr(begin, end - begin));
        if (!value || values.size() == 3)
        {
            return std::nullopt;
        }
        values.push_back(*value);
        begin = numbers.find_first_not_of(kWhiteSpace, end);
    }
    if (values.size() < 2)
    {
        return std::nullopt;
    }
    return CgPlace{values[0], values[1], values.size() == 3 ? std::optional(values[2]) : std::nullopt};
}

std::vector<PlacedPoint> PlacePoints(const std::vector<CgPoint>& points)
{
    TextsByName texts(points);
    std::vector<PlacedPoint> placed;
    for (const CgPoint& point : points)
    {
        placed.push_back({point.name, point.code, PlaceOf(point, texts)});
    }
    return placed;
}

std::vector<SurveyPoint> ChoosePoints(const std::vector<CgPoint>& points, const PointFilter& filter)
{
    TextsByName texts(points);
    std::vector<SurveyPoint> chosen;
    for (const CgPoint& point : points)
    {
        const std::optional<unsigned long> number = ParsePointNumber(Narrow(point.name));
        if (!number || !filter.Contains(*number))
        {
            continue;
        }
        const CgPlace place = PlaceOf(point, texts);
        chosen.push_back({*number, place.northing, place.easting, place.elevation, ToUtf8(point.code)});
    }
    return chosen;
}

}  // namespace quonhost
