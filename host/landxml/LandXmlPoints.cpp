#include "host/landxml/LandXmlParts.h"

#include "host/Console.h"
#include "host/landxml/PlaceText.h"
#include "host/landxml/Steps.h"

namespace quonhost
{
namespace
{

// A point that has the place of another.
struct Reference
{
    size_t point;
    XmlElement element;
    std::wstring target;
};

class PointsReader
{
public:
    explicit PointsReader(LandXmlContents& contents) : m_contents(contents) {}

    // The points of a node: those of its groups, of groups in groups, and of its surveys.
    void ReadGroups(const XmlElement& parent)
    {
        for (XmlElement child = parent.FirstChild(); child; child = child.Next())
        {
            if (child.Is("CgPoints"))
            {
                ReadGroup(child);
            }
            else if (child.Is("Survey"))
            {
                ReadGroups(child);
            }
        }
    }

    // A reference may lead to a point that is a reference itself, but not in circles.
    void Resolve()
    {
        for (const Reference& reference : m_references)
        {
            const Reference* current = &reference;
            for (size_t steps = 0; current != nullptr && steps <= m_references.size(); ++steps)
            {
                current = Follow(*current, reference.point);
            }
        }
        DropPointsWithoutPlace();
    }

private:
    void ReadGroup(const XmlElement& group)
    {
        Steps steps(group.CountChildren());
        for (XmlElement child = group.FirstChild(); child; child = child.Next())
        {
            if (child.Is("CgPoint"))
            {
                ReadPoint(child);
            }
            else if (child.Is("CgPoints"))
            {
                ReadGroup(child);
            }
            steps.Advance();
        }
        steps.Finish();
    }

    void ReadPoint(const XmlElement& element)
    {
        SurveyPoint point;
        point.identifier = element.Attribute("name");
        point.code = element.Attribute("code");
        point.description = element.Attribute("desc");
        const std::string text = element.Text();
        const std::optional<VxGePoint3d> place = ParsePlace(text);
        const bool isBlank = text.find_first_not_of(" \t\r\n") == std::string::npos;
        const std::wstring target = isBlank ? element.Attribute("pntRef") : L"";
        if (!place && target.empty())
        {
            const std::wstring reason = isBlank ? L"" : L": \"" + ToWide(text) + L"\"";
            Warn(m_contents, element, L"point \"" + point.identifier + L"\" has no coordinates" + reason);
            return;
        }
        if (!target.empty())
        {
            m_references.push_back({m_contents.points.size(), element, target});
            m_isPlaced.resize(m_contents.points.size(), true);
            m_isPlaced.push_back(false);
        }
        point.place = place.value_or(VxGePoint3d{0, 0, kNoElevation});
        m_contents.points.push_back(std::move(point));
    }

    bool IsPlaced(size_t point) const { return point >= m_isPlaced.size() || m_isPlaced[point]; }

    // Gives `point` the place that a reference leads to. Returns the reference that the target is, if it is one.
    const Reference* Follow(const Reference& reference, size_t point)
    {
        FillIndex();
        const auto found = m_byName.find(reference.target);
        if (found == m_byName.end())
        {
            return nullptr;
        }
        if (IsPlaced(found->second))
        {
            m_contents.points[point].place = m_contents.points[found->second].place;
            m_isPlaced[point] = true;
            return nullptr;
        }
        const auto next = m_referenceOf.find(found->second);
        return next == m_referenceOf.end() ? nullptr : &m_references[next->second];
    }

    void FillIndex()
    {
        if (!m_byName.empty())
        {
            return;
        }
        for (size_t index = 0; index < m_contents.points.size(); ++index)
        {
            m_byName.emplace(m_contents.points[index].identifier, index);
        }
        for (size_t index = 0; index < m_references.size(); ++index)
        {
            m_referenceOf.emplace(m_references[index].point, index);
        }
    }

    void DropPointsWithoutPlace()
    {
        for (const Reference& reference : m_references)
        {
            if (!IsPlaced(reference.point))
            {
                Warn(m_contents, reference.element,
                     L"point \"" + m_contents.points[reference.point].identifier +
                         L"\" has no coordinates: it refers to point \"" + reference.target + L"\"");
            }
        }
        size_t index = 0;
        std::erase_if(m_contents.points, [&](const SurveyPoint&) { return !IsPlaced(index++); });
    }

    LandXmlContents& m_contents;
    std::vector<Reference> m_references;
    std::vector<bool> m_isPlaced;  // of the points up to the last reference
    std::unordered_map<std::wstring_view, size_t> m_byName;
    std::unordered_map<size_t, size_t> m_referenceOf;  // by the point
};

}  // namespace

void ReadPoints(const XmlElement& root, LandXmlContents& contents)
{
    PointsReader reader(contents);
    reader.ReadGroups(root);
    reader.Resolve();
}

const VxGePoint3d* PlacesByName::Find(const std::wstring& name)
{
    if (m_places.empty())
    {
        for (const SurveyPoint& point : m_points)
        {
            m_places.emplace(point.identifier, &point.place);
        }
    }
    const auto found = m_places.find(name);
    return found == m_places.end() ? nullptr : found->second;
}

}  // namespace quonhost
