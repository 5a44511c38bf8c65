#include "host/landxml/SurveyCsv.h"

#include "host/Console.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"
#include "host/landxml/XmlText.h"

#include <algorithm>
#include <unordered_map>

namespace quonhost
{
namespace
{

enum PointColumn : size_t
{
    kNumber,
    kNorthing,
    kEasting,
    kElevation,
    kCode,
    kDescription,
};

std::wstring Quoted(std::wstring_view text)
{
    return L"\"" + std::wstring(text) + L"\"";
}

std::wstring TextField(const CsvReader& reader, size_t column, const wchar_t* name)
{
    const std::wstring text = ToWide(reader.Field(column));
    if (!IsXmlText(text))
    {
        reader.Fail(std::wstring(name) + L" holds control characters");
    }
    return text;
}

// A number loses its leading zeros: lists know it by its value.
std::wstring IdentifierOf(const CsvReader& reader)
{
    const std::wstring text = TextField(reader, kNumber, L"the point number");
    const std::optional<unsigned long> number = ParsePointNumber(text);
    if (!number && (text.empty() || ParseNumber(text)))
    {
        reader.Fail(L"a point number must be from 1 to " + std::to_wstring(kHighestPointNumber) + L", or a name: " +
                    Quoted(text));
    }
    return number ? std::to_wstring(*number) : text;
}

SurveyPoint PointOf(CsvReader& reader)
{
    SurveyPoint point;
    point.identifier = IdentifierOf(reader);
    point.place.y = reader.Number(kNorthing);
    point.place.x = reader.Number(kEasting);
    point.place.z = reader.Field(kElevation).empty() ? kNoElevation : reader.Number(kElevation);
    point.code = TextField(reader, kCode, L"the code");
    point.description = TextField(reader, kDescription, L"the description");
    return point;
}

// The points by their numbers.
class PointIndex
{
public:
    explicit PointIndex(const std::vector<SurveyPoint>& points)
    {
        m_points.reserve(points.size());
        for (const SurveyPoint& point : points)
        {
            if (const std::optional<unsigned long> number = NumberOf(point))
            {
                m_points.emplace(*number, &point);
            }
        }
    }

    /// Returns the point of a corner of a face.
    const SurveyPoint& Corner(const CsvReader& reader, size_t column, SurveyFace& face) const
    {
        const std::wstring text = ToWide(reader.Field(column));
        const std::optional<unsigned long> number = ParsePointNumber(text);
        if (!number)
        {
            reader.Fail(L"the face names point " + Quoted(text) + L", which is not a point number");
        }
        const auto found = m_points.find(*number);
        if (found == m_points.end())
        {
            reader.Fail(L"the face names point " + text + L", which is not among the points");
        }
        if (!HasElevation(found->second->place))
        {
            reader.Fail(L"the face names point " + text + L", which has no elevation");
        }
        face[column] = *number;
        return *found->second;
    }

private:
    std::unordered_map<unsigned long, const SurveyPoint*> m_points;
};

void RequireApart(const CsvReader& reader, const SurveyPoint& a, const SurveyPoint& b)
{
    if (&a == &b)
    {
        reader.Fail(L"the face names point " + a.identifier + L" twice");
    }
    if (IsSameInPlan(a.place, b.place))
    {
        reader.Fail(L"the face's points " + a.identifier + L" and " + b.identifier + L" are at the same place");
    }
}

}  // namespace

std::vector<SurveyPoint> ParsePoints(const std::wstring& name, std::string bytes, const CsvFormat& format)
{
    CsvReader reader(name, std::move(bytes), format,
                     {{"number", true, "name"},
                      {"northing", true},
                      {"easting", true},
                      {"elevation", true},
                      {"code", false},
                      {"desc", false, "description"}});
    std::vector<SurveyPoint> points;
    std::unordered_map<std::wstring, unsigned int> lines;
    Steps steps(reader.ByteCount());
    while (reader.Next())
    {
        points.push_back(PointOf(reader));
        const auto [first, isNew] = lines.emplace(points.back().identifier, reader.Line());
        if (!isNew)
        {
            reader.Fail(L"point " + first->first + L" is there already, in line " + std::to_wstring(first->second));
        }
        steps.MoveTo(reader.BytesRead());
    }
    steps.Finish();
    return points;
}

std::vector<SurveyFace> ParseFaces(const std::wstring& name, std::string bytes, const CsvFormat& format,
                                   const std::vector<SurveyPoint>& points)
{
    CsvReader reader(name, std::move(bytes), format, {{"point1", true}, {"point2", true}, {"point3", true}});
    const PointIndex index(points);
    std::vector<SurveyFace> faces;
    Steps steps(reader.ByteCount());
    while (reader.Next())
    {
        SurveyFace face = {};
        const SurveyPoint& a = index.Corner(reader, 0, face);
        const SurveyPoint& b = index.Corner(reader, 1, face);
        const SurveyPoint& c = index.Corner(reader, 2, face);
        RequireApart(reader, a, b);
        RequireApart(reader, b, c);
        RequireApart(reader, c, a);
        faces.push_back(face);
        steps.MoveTo(reader.BytesRead());
    }
    steps.Finish();
    return faces;
}

std::wstring FormatPoint(const SurveyPoint& point)
{
    return QuoteField(point.identifier) + L"," + NumberText(point.place.y) + L"," + NumberText(point.place.x) + L"," +
           (HasElevation(point.place) ? NumberText(point.place.z) : std::wstring()) + L"," + QuoteField(point.code) +
           L"," + QuoteField(point.description);
}

}  // namespace quonhost
