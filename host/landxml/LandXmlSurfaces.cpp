#include "host/landxml/LandXmlFile.h"

#include "host/Console.h"
#include "host/landxml/DomElements.h"
#include "host/landxml/Steps.h"

#include <algorithm>
#include <unordered_map>

namespace quonhost
{
namespace
{

using MSXML2::IXMLDOMNodePtr;

std::vector<std::wstring_view> WordsOf(std::wstring_view text)
{
    constexpr std::wstring_view kBlanks = L" \t\r\n";
    std::vector<std::wstring_view> words;
    for (size_t begin = text.find_first_not_of(kBlanks); begin != std::wstring_view::npos;)
    {
        const size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
        words.push_back(text.substr(begin, end - begin));
        begin = text.find_first_not_of(kBlanks, end);
    }
    return words;
}

// Reads the definitions of one surface.
class SurfaceReader
{
public:
    explicit SurfaceReader(const IXMLDOMNodePtr& node)
    {
        m_surface.name = AttributeOf(node, L"name");
        // Faces may name points of any list.
        ForEachPart(node, L"Pnts", L"P", [this](const IXMLDOMNodePtr& point) { AddPoint(point); });
        ForEachPart(node, L"Faces", L"F", [this](const IXMLDOMNodePtr& face) { AddFace(face); });
    }

    LandXmlSurface Take() { return std::move(m_surface); }

private:
    template <typename Visit>
    static void ForEachPart(const IXMLDOMNodePtr& node, const wchar_t* listName, const wchar_t* name,
                            const Visit& visit)
    {
        const auto visitList = [&](const IXMLDOMNodePtr& list) {
            Steps steps(CountChildren(list));
            ForEachElement(list, name, [&](const IXMLDOMNodePtr& part) {
                visit(part);
                steps.Advance();
            });
            steps.Finish();
        };
        ForEachElement(node, L"Definition",
                       [&](const IXMLDOMNodePtr& definition) { ForEachElement(definition, listName, visitList); });
    }

    void AddPoint(const IXMLDOMNodePtr& point)
    {
        const std::wstring id = AttributeOf(point, L"id");
        const std::wstring text(View(point->Gettext()));
        const std::optional<CgPlace> place = ParsePlace(text);
        if (!place || !place->elevation)
        {
            throw CommandError(L"point " + id + L" of surface \"" + m_surface.name + L"\" has no coordinates: \"" +
                               text + L"\"");
        }
        m_indices.emplace(id, m_surface.points.size());
        m_surface.points.push_back({place->northing, place->easting, *place->elevation});
    }

    size_t IndexOf(std::wstring_view id) const
    {
        const auto found = m_indices.find(std::wstring(id));
        if (found == m_indices.end())
        {
            throw CommandError(L"a face of surface \"" + m_surface.name + L"\" names point " + std::wstring(id) +
                               L", which the surface does not have");
        }
        return found->second;
    }

    void AddFace(const IXMLDOMNodePtr& face)
    {
        if (AttributeOf(face, L"i") == L"1")
        {
            return;
        }
        const std::wstring text(View(face->Gettext()));
        std::vector<size_t> corners;
        for (const std::wstring_view id : WordsOf(text))
        {
            corners.push_back(IndexOf(id));
        }
        for (size_t index = 2; index < corners.size(); ++index)
        {
            m_surface.triangles.push_back({corners[0], corners[index - 1], corners[index]});
        }
    }

    LandXmlSurface m_surface;
    std::unordered_map<std::wstring, size_t> m_indices;
};

}  // namespace

std::vector<LandXmlSurface> LandXmlFile::ReadSurfaces() const
{
    std::vector<LandXmlSurface> surfaces;
    ForEachElement(m_root, L"Surfaces", [&surfaces](const IXMLDOMNodePtr& list) {
        ForEachElement(list, L"Surface",
                       [&surfaces](const IXMLDOMNodePtr& node) { surfaces.push_back(SurfaceReader(node).Take()); });
    });
    return surfaces;
}

}  // namespace quonhost
