#include "host/landxml/LandXmlParts.h"

#include "host/Console.h"
#include "host/landxml/PlaceText.h"
#include "host/landxml/Steps.h"

#include <charconv>

namespace quonhost
{
namespace
{

// The indices of a surface's points by their identifiers, which are numbers, and most often 1, 2, 3 and so on.
class PointIndices
{
public:
    bool Add(std::string_view id, std::uint32_t index)
    {
        const std::optional<size_t> number = NumberOf(id);
        if (number && *number <= m_byNumber.size() + kLargestGap)
        {
            m_byNumber.resize(std::max(m_byNumber.size(), *number + 1), kNone);
            const bool isNew = m_byNumber[*number] == kNone;
            m_byNumber[*number] = isNew ? index : m_byNumber[*number];
            return isNew;
        }
        return m_byText.emplace(id, index).second;
    }

    std::optional<std::uint32_t> Find(std::string_view id) const
    {
        const std::optional<size_t> number = NumberOf(id);
        if (number && *number < m_byNumber.size() && m_byNumber[*number] != kNone)
        {
            return m_byNumber[*number];
        }
        const auto found = m_byText.empty() ? m_byText.end() : m_byText.find(std::string(id));
        return found == m_byText.end() ? std::nullopt : std::optional(found->second);
    }

private:
    static constexpr std::uint32_t kNone = UINT32_MAX;
    static constexpr size_t kLargestGap = 1000;

    static std::optional<size_t> NumberOf(std::string_view id)
    {
        size_t number = 0;
        const std::from_chars_result result = std::from_chars(id.data(), id.data() + id.size(), number);
        // "01" is another text than "1".
        const bool isPlain = !id.empty() && id[0] != '0' && result.ec == std::errc();
        return isPlain && result.ptr == id.data() + id.size() ? std::optional(number) : std::nullopt;
    }

    std::vector<std::uint32_t> m_byNumber;
    std::unordered_map<std::string, std::uint32_t> m_byText;
};

// Reads one surface.
class SurfaceReader
{
public:
    SurfaceReader(const XmlElement& element, LandXmlContents& contents) : m_contents(contents)
    {
        m_surface.name = element.Attribute("name");
        ForEachChild(element, "Definition", [this](const XmlElement& definition) {
            m_surface.type = definition.Attribute("surfType");
            ForEachListed(definition, "Pnts", "P", [this](const XmlElement& point) { AddPoint(point); });
        });
        // Faces may name points of any list.
        ForEachChild(element, "Definition", [this](const XmlElement& definition) {
            ForEachListed(definition, "Faces", "F", [this](const XmlElement& face) { AddFace(face); });
        });
        ForEachChild(element, "SourceData", [this](const XmlElement& source) { ReadSource(source); });
        m_contents.surfaces.push_back(std::move(m_surface));
    }

private:
    template <typename Visit>
    static void ForEachListed(const XmlElement& parent, std::string_view list, std::string_view name,
                              const Visit& visit)
    {
        ForEachChild(parent, list, [&](const XmlElement& found) {
            Steps steps(found.CountChildren());
            ForEachChild(found, name, [&](const XmlElement& element) {
                visit(element);
                steps.Advance();
            });
            steps.Finish();
        });
    }

    std::wstring OfSurface() const { return L" of surface \"" + m_surface.name + L"\""; }

    void AddPoint(const XmlElement& point)
    {
        const std::wstring id = point.Attribute("id");
        const std::string text = point.Text();
        const std::optional<VxGePoint3d> place = ParsePlace(text);
        ++m_surface.pointCount;
        if (!place || !HasElevation(*place))
        {
            Warn(m_contents, point,
                 L"point \"" + id + L"\"" + OfSurface() + L" has no coordinates: \"" + ToWide(text) + L"\"");
            return;
        }
        if (!m_indices.Add(ToUtf8(id), static_cast<std::uint32_t>(m_surface.points.size())))
        {
            Warn(m_contents, point, L"point \"" + id + L"\"" + OfSurface() + L" is defined twice");
        }
        m_surface.points.push_back(*place);
    }

    void AddFace(const XmlElement& face)
    {
        ++m_surface.faceCount;
        if (face.Attribute("i") == L"1")
        {
            ++m_surface.invisibleFaces;
            return;
        }
        m_corners.clear();
        const std::string text = face.Text();
        std::wstring missing;
        ForEachWord(text, [&](std::string_view id) {
            const std::optional<std::uint32_t> index = m_indices.Find(id);
            missing = index || !missing.empty() ? missing : ToWide(id);
            m_corners.push_back(index.value_or(0));
        });
        if (!missing.empty())
        {
            Warn(m_contents, face,
                 L"a face" + OfSurface() + L" names point \"" + missing + L"\", which the surface does not have");
            return;
        }
        if (m_corners.size() < 3)
        {
            Warn(m_contents, face,
                 L"a face" + OfSurface() + L" has fewer than three corners: \"" + ToWide(text) + L"\"");
            return;
        }
        for (size_t index = 2; index < m_corners.size(); ++index)
        {
            m_surface.triangles.push_back({m_corners[0], m_corners[index - 1], m_corners[index]});
        }
    }

    void ReadSource(const XmlElement& source)
    {
        ForEachListed(source, "Breaklines", "Breakline", [this](const XmlElement& line) {
            ++m_surface.breaklines;
            AddLine(line, LineKind::kBreakline, L"breakline");
        });
        ForEachListed(source, "Boundaries", "Boundary", [this](const XmlElement& line) {
            ++m_surface.boundaries;
            AddLine(line, LineKind::kBoundary, L"boundary");
        });
        ForEachChild(source, "DataPoints", [this](const XmlElement& points) { CountDataPoints(points); });
        ForEachChild(source, "Contours", [this](const XmlElement& contours) {
            ForEachChild(contours, "Contour", [this](const XmlElement&) { ++m_surface.contours; });
        });
    }

    void CountDataPoints(const XmlElement& points)
    {
        for (XmlElement child = points.FirstChild(); child; child = child.Next())
        {
            const std::optional<std::vector<VxGePoint3d>> places = PlacesOf(child);
            m_surface.dataPoints += places ? places->size() : 0;
        }
    }

    // The places of a list element. Returns nothing when they cannot be read, or when the element is not a list.
    std::optional<std::vector<VxGePoint3d>> PlacesOf(const XmlElement& list)
    {
        if (!list.Is("PntList2D") && !list.Is("PntList3D"))
        {
            return std::nullopt;
        }
        std::optional<std::vector<VxGePoint3d>> places = ParsePlaces(list.Text(), list.Is("PntList2D") ? 2 : 3);
        if (!places)
        {
            Warn(m_contents, list,
                 L"a list of places" + OfSurface() + L" holds what is not a number, or ends within a place");
        }
        return places;
    }

    void AddLine(const XmlElement& element, LineKind kind, const wchar_t* what)
    {
        bool hasList = false;
        for (XmlElement child = element.FirstChild(); child; child = child.Next())
        {
            hasList = hasList || child.Is("PntList2D") || child.Is("PntList3D");
            if (std::optional<std::vector<VxGePoint3d>> places = PlacesOf(child))
            {
                m_contents.lines.push_back({kind, element.Attribute("name"), m_surface.name, std::move(*places)});
            }
        }
        if (!hasList)
        {
            Warn(m_contents, element, std::wstring(L"a ") + what + OfSurface() + L" has no list of places");
        }
    }

    LandXmlContents& m_contents;
    LandXmlSurface m_surface;
    PointIndices m_indices;
    std::vector<std::uint32_t> m_corners;
};

}  // namespace

void ReadSurfaces(const XmlElement& root, LandXmlContents& contents)
{
    ForEachChild(root, "Surfaces", [&contents](const XmlElement& list) {
        ForEachChild(list, "Surface", [&contents](const XmlElement& element) { SurfaceReader(element, contents); });
    });
}

}  // namespace quonhost
