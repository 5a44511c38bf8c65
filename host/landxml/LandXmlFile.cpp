#include "host/landxml/LandXmlFile.h"

#include "geometry/QuonFaceReader.h"
#include "host/Console.h"
#include "host/landxml/CsvText.h"
#include "host/landxml/DomElements.h"
#include "host/landxml/NumberText.h"
#include "host/landxml/Steps.h"
#include "xml/QuonXml.h"
#include "xml/XmlNodes.h"

#include <algorithm>

namespace quonhost
{
namespace
{

using MSXML2::IXMLDOMDocumentPtr;
using MSXML2::IXMLDOMNodePtr;

// What the parser has to say of a file that it could not load; "" when it says nothing.
std::wstring WhereItFailed(const IXMLDOMDocumentPtr& document)
{
    const MSXML2::IXMLDOMParseErrorPtr error = document->GetparseError();
    const long line = error->Getline();
    if (line <= 0)
    {
        return L"";
    }
    CString reason(static_cast<const wchar_t*>(error->Getreason()));
    return L", line " + std::to_wstring(line) + L": " + reason.Trim().GetString();
}

// The bytes as the parser takes them.
_variant_t BytesOf(const std::string& text)
{
    SAFEARRAY* const bytes = ::SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(text.size()));
    void* data = nullptr;
    const HRESULT result = bytes == nullptr ? E_OUTOFMEMORY : ::SafeArrayAccessData(bytes, &data);
    if (FAILED(result))
    {
        _com_issue_error(result);
    }
    std::copy(text.begin(), text.end(), static_cast<char*>(data));
    ::SafeArrayUnaccessData(bytes);
    _variant_t value;
    value.vt = VT_ARRAY | VT_UI1;
    value.parray = bytes;
    return value;
}

// The parser is given the bytes, not the name: it would take that for a URL, in which "%" has a meaning, and some
// parsers gather the text of a file in small pieces, which for a long one takes longer than all the rest.
IXMLDOMDocumentPtr LoadDocument(const std::string& name)
{
    const std::string text = ReadWholeFile(name);
    const QuonXml xml(L"", false, false, false);
    const IXMLDOMDocumentPtr document = xml.GetDocument();
    // By itself a document loads in the background.
    document->Putasync(VARIANT_FALSE);
    if (document->load(BytesOf(text)) == VARIANT_FALSE)
    {
        throw CommandError(L"\"" + ToWide(name) + L"\" cannot be read as XML" + WhereItFailed(document));
    }
    return document;
}

IXMLDOMNodePtr FindRoot(const IXMLDOMDocumentPtr& document)
{
    const MSXML2::IXMLDOMNodeListPtr nodes = GetDocumentChildNodes(document);
    while (const IXMLDOMNodePtr node = nodes->nextNode())
    {
        if (IsElement(node) && LocalName(View(node->GetnodeName())) == L"LandXML")
        {
            return node;
        }
    }
    return IXMLDOMNodePtr();
}

// The version that the root tells, or else the one at the end of its namespace.
std::wstring VersionOf(const IXMLDOMNodePtr& root)
{
    std::wstring version = AttributeOf(root, L"version");
    if (!version.empty())
    {
        return version;
    }
    const std::wstring space = NamespaceOf(root);
    return space.substr(space.rfind(L'-') + 1);
}

// Calls `visit` for every group of points of a node: its own, those in them, and those of its surveys.
template <typename Visit>
void ForEachPointGroup(const IXMLDOMNodePtr& parent, const Visit& visit)
{
    ForEachElement(parent, L"CgPoints", [&](const IXMLDOMNodePtr& group) {
        visit(group);
        ForEachPointGroup(group, visit);
    });
    ForEachElement(parent, L"Survey", [&](const IXMLDOMNodePtr& survey) { ForEachPointGroup(survey, visit); });
}

template <typename Visit>
void ForEachPoint(const IXMLDOMNodePtr& root, const Visit& visit)
{
    ForEachPointGroup(root, [&](const IXMLDOMNodePtr& group) {
        Steps steps(CountChildren(group));
        ForEachElement(group, L"CgPoint", [&](const IXMLDOMNodePtr& point) {
            visit(point);
            steps.Advance();
        });
        steps.Finish();
    });
}

// Adds the places of a surface's points to `places`; x is the easting, y the northing.
void ReadSurfacePoints(const IXMLDOMNodePtr& points, VxGePoint3dArray& places, SurfaceInfo& info)
{
    Steps steps(CountChildren(points));
    ForEachElement(points, L"P", [&](const IXMLDOMNodePtr& point) {
        const std::optional<CgPlace> place = ParsePlace(View(point->Gettext()));
        ++info.points;
        if (place && place->elevation)
        {
            places.Append({place->easting, place->northing, *place->elevation});
        }
        else
        {
            ++info.lostPoints;
        }
        steps.Advance();
    });
    steps.Finish();
}

std::optional<SurfaceExtents> ExtentsOf(const VxGePoint3dArray& places)
{
    if (places.IsEmpty())
    {
        return std::nullopt;
    }
    // For its extents in the plan a set of points is as good as a face with these corners.
    SurfaceExtents extents = {};
    QuonSingleFaceReader reader(&places);
    reader.GetExtents(&extents.minEasting, &extents.minNorthing, &extents.maxEasting, &extents.maxNorthing);
    const auto [lowest, highest] = std::minmax_element(
        places.begin(), places.end(), [](const VxGePoint3d& a, const VxGePoint3d& b) { return a.z < b.z; });
    extents.minElevation = lowest->z;
    extents.maxElevation = highest->z;
    return extents;
}

void CountFaces(const IXMLDOMNodePtr& faces, SurfaceInfo& info)
{
    Steps steps(CountChildren(faces));
    ForEachElement(faces, L"F", [&](const IXMLDOMNodePtr& face) {
        ++info.faces;
        info.invisibleFaces += AttributeOf(face, L"i") == L"1" ? 1 : 0;
        steps.Advance();
    });
    steps.Finish();
}

SurfaceInfo ReadSurface(const IXMLDOMNodePtr& surface)
{
    SurfaceInfo info;
    info.name = AttributeOf(surface, L"name");
    VxGePoint3dArray places;
    ForEachElement(surface, L"Definition", [&](const IXMLDOMNodePtr& definition) {
        ForEachElement(definition, L"Pnts",
                       [&](const IXMLDOMNodePtr& points) { ReadSurfacePoints(points, places, info); });
        ForEachElement(definition, L"Faces", [&](const IXMLDOMNodePtr& faces) { CountFaces(faces, info); });
    });
    info.extents = ExtentsOf(places);
    return info;
}

void ReadUnits(const IXMLDOMNodePtr& root, LandXmlHeading& heading)
{
    const IXMLDOMNodePtr units = FirstElement(root, L"Units");
    for (const wchar_t* const system : {L"Metric", L"Imperial"})
    {
        const IXMLDOMNodePtr unit = units ? FirstElement(units, system) : IXMLDOMNodePtr();
        if (unit)
        {
            heading.units = system;
            heading.linearUnit = AttributeOf(unit, L"linearUnit");
        }
    }
}

AlignmentInfo ReadAlignment(const IXMLDOMNodePtr& alignment)
{
    const std::wstring length = AttributeOf(alignment, L"length");
    return {AttributeOf(alignment, L"name"), ParseNumber(ToUtf8(length))};
}

}  // namespace

LandXmlFile::LandXmlFile(const std::string& name) : m_document(LoadDocument(name)), m_root(FindRoot(m_document))
{
    if (!m_root)
    {
        throw CommandError("\"" + name + "\" is no LandXML document");
    }
    m_version = VersionOf(m_root);
    if (m_version != L"1.0" && m_version != L"1.1" && m_version != L"1.2")
    {
        throw CommandError(L"\"" + ToWide(name) + L"\" has the LandXML version \"" + m_version +
                           L"\": known are 1.0, 1.1 and 1.2");
    }
}

LandXmlHeading LandXmlFile::GetHeading() const
{
    LandXmlHeading heading;
    heading.version = m_version;
    ReadUnits(m_root, heading);
    const IXMLDOMNodePtr project = FirstElement(m_root, L"Project");
    heading.project = project ? AttributeOf(project, L"name") : L"";
    return heading;
}

LandXmlInfo LandXmlFile::GetInfo() const
{
    LandXmlInfo info;
    static_cast<LandXmlHeading&>(info) = GetHeading();
    ForEachPoint(m_root, [&info](const IXMLDOMNodePtr&) { ++info.points; });
    ForEachElement(m_root, L"Surfaces", [&info](const IXMLDOMNodePtr& surfaces) {
        ForEachElement(surfaces, L"Surface",
                       [&info](const IXMLDOMNodePtr& surface) { info.surfaces.push_back(ReadSurface(surface)); });
    });
    ForEachElement(m_root, L"Alignments", [&info](const IXMLDOMNodePtr& alignments) {
        ForEachElement(alignments, L"Alignment", [&info](const IXMLDOMNodePtr& alignment) {
            info.alignments.push_back(ReadAlignment(alignment));
        });
    });
    return info;
}

std::vector<CgPoint> LandXmlFile::ReadPoints() const
{
    std::vector<CgPoint> points;
    ForEachPoint(m_root, [&points](const IXMLDOMNodePtr& node) {
        CgPoint point;
        point.name = AttributeOf(node, L"name");
        point.code = AttributeOf(node, L"code");
        point.text = View(node->Gettext());
        if (point.text.empty())
        {
            point.reference = AttributeOf(node, L"pntRef");
        }
        points.push_back(std::move(point));
    });
    return points;
}

}  // namespace quonhost
