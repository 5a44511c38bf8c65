#include "host/landxml/LandXmlWriter.h"

#include "geometry/QuonFaceReader.h"
#include "geometry/QuonPointReader.h"
#include "host/Console.h"
#include "host/landxml/DomBranch.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"
#include "xml/QuonXml.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace quonhost
{
namespace
{

CString Wide(const std::string& text)
{
    return CString(ToWide(text).c_str());
}

// The text of a place. LandXML puts the northing, which is y in the plan, first.
CString PlaceText(const VxGePoint3d& place)
{
    std::string text = FormatNumber(place.y) + ' ' + FormatNumber(place.x);
    if (!std::isnan(place.z))
    {
        text += ' ' + FormatNumber(place.z);
    }
    return Wide(text);
}

// The place of a point. Without an elevation z is no number.
VxGePoint3d PlaceOf(const SurveyPoint& point)
{
    return {point.easting, point.northing, point.elevation.value_or(std::numeric_limits<double>::quiet_NaN())};
}

// A place by its bits: the corners of the faces are copies of the points' places.
struct PlaceKey
{
    std::uint64_t x, y, z;

    explicit PlaceKey(const VxGePoint3d& place)
        : x(std::bit_cast<std::uint64_t>(place.x)),
          y(std::bit_cast<std::uint64_t>(place.y)),
          z(std::bit_cast<std::uint64_t>(place.z))
    {
    }
    bool operator==(const PlaceKey&) const = default;

    struct Hash
    {
        size_t operator()(const PlaceKey& key) const
        {
            constexpr std::uint64_t kOdd = 0x9E3779B97F4A7C15;
            const std::uint64_t mixed = ((key.x * kOdd ^ key.y) * kOdd ^ key.z) * kOdd;
            return static_cast<size_t>(mixed ^ (mixed >> 32));
        }
    };
};

// The number of the point at a place; of points at the same place, the first one's.
using NumbersByPlace = std::unordered_map<PlaceKey, unsigned long, PlaceKey::Hash>;

void AddUnits(const DomBranch& root, bool isImperial)
{
    const DomBranch units = root.Add(L"Units");
    const DomBranch unit = units.Add(isImperial ? L"Imperial" : L"Metric");
    unit.Set(L"areaUnit", isImperial ? L"squareFoot" : L"squareMeter");
    unit.Set(L"linearUnit", isImperial ? L"foot" : L"meter");
    unit.Set(L"volumeUnit", isImperial ? L"cubicYard" : L"cubicMeter");
    unit.Set(L"temperatureUnit", isImperial ? L"fahrenheit" : L"celsius");
    unit.Set(L"pressureUnit", isImperial ? L"inHG" : L"milliBars");
    units.Close();
}

void AddHeader(const DomBranch& root, const LandXmlHeader& header)
{
    AddUnits(root, header.isImperial);
    root.Add(L"Project").Set(L"name", header.project.c_str());
    const DomBranch application = root.Add(L"Application");
    application.Set(L"name", L"quonhost");
    application.Set(L"desc", L"The console host of QuonWin32Utils");
}

void AddPoints(const DomBranch& root, const std::vector<SurveyPoint>& points, QuonPointReader& places, Steps& steps)
{
    const DomBranch branch = root.Add(L"CgPoints");
    VxGePoint3d place = {};
    for (const SurveyPoint& point : points)
    {
        places.GetNextPoint(&place.x, &place.y, &place.z, nullptr);
        const DomBranch element = branch.Add(L"CgPoint");
        element.Set(L"name", Wide(std::to_string(point.number)));
        if (!point.code.empty())
        {
            element.Set(L"code", Wide(point.code));
        }
        element.SetText(PlaceText(place));
        steps.Advance();
    }
    branch.Close();
}

class SurfaceWriter
{
public:
    SurfaceWriter(const std::vector<SurveyPoint>& points, QuonPointReader& places, QuonFaceReader& faces, Steps& steps)
        : m_points(points), m_places(places), m_faces(faces), m_steps(steps)
    {
        VxGePoint3d place = {};
        m_places.Reset();
        for (const SurveyPoint& point : m_points)
        {
            m_places.GetNextPoint(&place.x, &place.y, &place.z, nullptr);
            m_numbers.emplace(PlaceKey(place), point.number);
        }
        VxGePoint3dArray corners;
        m_faces.Reset();
        while (m_faces.GetNextFace(corners))
        {
            for (const VxGePoint3d& corner : corners)
            {
                m_used.insert(NumberAt(corner));
                m_lowest = std::min(m_lowest, corner.z);
                m_highest = std::max(m_highest, corner.z);
            }
        }
    }

    void AddTo(const DomBranch& root) const
    {
        const DomBranch surfaces = root.Add(L"Surfaces");
        const DomBranch surface = surfaces.Add(L"Surface");
        surface.Set(L"name", L"Ground");
        const DomBranch definition = surface.Add(L"Definition");
        definition.Set(L"surfType", L"TIN");
        definition.Set(L"elevMax", Wide(FormatNumber(m_highest)));
        definition.Set(L"elevMin", Wide(FormatNumber(m_lowest)));
        AddSurfacePoints(definition);
        AddFaces(definition);
        definition.Close();
        surface.Close();
        surfaces.Close();
    }

private:
    unsigned long NumberAt(const VxGePoint3d& place) const { return m_numbers.at(PlaceKey(place)); }

    void AddSurfacePoints(const DomBranch& definition) const
    {
        const DomBranch branch = definition.Add(L"Pnts");
        VxGePoint3d place = {};
        m_places.Reset();
        for (const SurveyPoint& point : m_points)
        {
            m_places.GetNextPoint(&place.x, &place.y, &place.z, nullptr);
            if (m_used.contains(point.number))
            {
                const DomBranch element = branch.Add(L"P");
                element.Set(L"id", Wide(std::to_string(point.number)));
                element.SetText(PlaceText(place));
            }
            m_steps.Advance();
        }
        branch.Close();
    }

    void AddFaces(const DomBranch& definition) const
    {
        const DomBranch branch = definition.Add(L"Faces");
        VxGePoint3dArray corners;
        m_faces.Reset();
        while (m_faces.GetNextFace(corners))
        {
            std::string ids;
            for (const VxGePoint3d& corner : corners)
            {
                ids += (ids.empty() ? "" : " ") + std::to_string(NumberAt(corner));
            }
            branch.Add(L"F").SetText(Wide(ids));
            m_steps.Advance();
        }
        branch.Close();
    }

    const std::vector<SurveyPoint>& m_points;
    QuonPointReader& m_places;
    QuonFaceReader& m_faces;
    Steps& m_steps;
    NumbersByPlace m_numbers;
    std::unordered_set<unsigned long> m_used;
    double m_lowest = std::numeric_limits<double>::infinity();
    double m_highest = -std::numeric_limits<double>::infinity();
};

// The faces of a survey as the library's readers hold faces: by the places of their corners.
void FillFaces(QuonMultiTriFaceReader& reader, const Survey& survey)
{
    std::unordered_map<unsigned long, VxGePoint3d> places;
    for (const SurveyPoint& point : survey.points)
    {
        places.emplace(point.number, PlaceOf(point));
    }
    VxGePoint3dArray corners;
    for (const SurveyFace& face : survey.faces)
    {
        corners.RemoveAll();
        for (const unsigned long number : face)
        {
            corners.Append(places.at(number));
        }
        reader.AddFace(corners);
    }
}

void AddDeclaration(const MSXML2::IXMLDOMDocumentPtr& document)
{
    document->appendChild(document->createProcessingInstruction(L"xml", L"version=\"1.0\" encoding=\"UTF-8\""));
}

void AddSurvey(const DomBranch& root, const Survey& survey)
{
    VxGePoint3dArray places(static_cast<int>(survey.points.size()));
    for (const SurveyPoint& point : survey.points)
    {
        places.Append(PlaceOf(point));
    }
    QuonArrayPointReader placeReader(&places);
    Steps steps(survey.points.size() * (survey.faces.empty() ? 1 : 2) + survey.faces.size());
    AddPoints(root, survey.points, placeReader, steps);
    if (!survey.faces.empty())
    {
        QuonMultiTriFaceReader faceReader;
        FillFaces(faceReader, survey);
        SurfaceWriter(survey.points, placeReader, faceReader, steps).AddTo(root);
    }
    steps.Finish();
}

}  // namespace

void WriteLandXml(const Survey& survey, const LandXmlHeader& header, const QuonPath& path)
{
    const QuonXml xml(L"", false, false, false);
    const MSXML2::IXMLDOMDocumentPtr document = xml.GetDocument();
    AddDeclaration(document);
    CreateLandXmlDocument(document);
    const DomBranch root(document, GetLandXmlRoot(document), 0);
    AddHeader(root, header);
    AddSurvey(root, survey);
    root.Close();
    SaveXmlFile(CString(static_cast<const wchar_t*>(path)), document);
}

}  // namespace quonhost
