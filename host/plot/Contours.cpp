#include "host/plot/Contours.h"

#include <algorithm>
#include <deque>
#include <map>

namespace quonhost
{
namespace
{

// Always reckoned from the lower end, so that the two triangles at an edge find the same place to the last bit.
VxGePoint3d PlaceAt(const VxGePoint3d& below, const VxGePoint3d& above, double level)
{
    const double part = (level - below.z) / (above.z - below.z);
    return {below.x + part * (above.x - below.x), below.y + part * (above.y - below.y), level};
}

// An edge that a contour crosses, by its ends' indices.
using Edge = std::pair<std::uint32_t, std::uint32_t>;

struct Crossing
{
    Edge edge;
    VxGePoint3d place;
};

bool IsTurningLeft(const std::array<VxGePoint3d, 3>& corners)
{
    const VxGePoint3d &a = corners[0], &b = corners[1], &c = corners[2];
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x) > 0;
}

// The pieces of a level, each from the edge where it enters its triangle.
class Pieces
{
public:
    Pieces(const SurveySurface& surface, double level)
    {
        for (const SurveyTriangle& triangle : surface.triangles)
        {
            const std::array<VxGePoint3d, 3> corners = CornersOf(surface, triangle);
            // Most triangles are not crossed: they must cost little.
            const bool isAbove = corners[0].z >= level;
            if (isAbove == (corners[1].z >= level) && isAbove == (corners[2].z >= level))
            {
                continue;
            }
            const std::vector<ContourCrossing> crossings = ContourOfTriangle(corners, level);
            std::array<Crossing, 2> ends;
            for (size_t index = 0; index < ends.size(); ++index)
            {
                const ContourCrossing& crossing = crossings[index];
                ends[index] = {{triangle[crossing.below], triangle[crossing.above]}, crossing.place};
            }
            // In triangles of either sense of rotation the line runs the same way.
            if (!IsTurningLeft(corners))
            {
                std::swap(ends[0], ends[1]);
            }
            m_pieces.emplace(ends[0].edge, ends);
        }
    }

    bool IsEmpty() const { return m_pieces.empty(); }

    ContourLine TakeLine()
    {
        std::array<Crossing, 2> piece = m_pieces.begin()->second;
        m_pieces.erase(m_pieces.begin());
        std::deque<VxGePoint3d> line = {piece[0].place, piece[1].place};
        for (auto next = m_pieces.find(piece[1].edge); next != m_pieces.end(); next = m_pieces.find(piece[1].edge))
        {
            piece = next->second;
            line.push_back(piece[1].place);
            m_pieces.erase(next);
        }
        return {line.begin(), line.end()};
    }

private:
    std::multimap<Edge, std::array<Crossing, 2>> m_pieces;
};

// Lines that were begun in their middle are joined to those that end there.
void JoinLines(std::vector<ContourLine>& lines)
{
    const auto less = [](const VxGePoint3d& a, const VxGePoint3d& b) { return a.x != b.x ? a.x < b.x : a.y < b.y; };
    std::map<VxGePoint3d, size_t, decltype(less)> byStart(less);
    for (size_t index = 0; index < lines.size(); ++index)
    {
        byStart.emplace(lines[index].front(), index);
    }
    for (size_t index = 0; index < lines.size(); ++index)
    {
        while (!lines[index].empty() && !IsSameInPlan(lines[index].front(), lines[index].back()))
        {
            const auto next = byStart.find(lines[index].back());
            if (next == byStart.end() || next->second == index || lines[next->second].empty())
            {
                break;
            }
            ContourLine& other = lines[next->second];
            lines[index].insert(lines[index].end(), other.begin() + 1, other.end());
            other.clear();
            byStart.erase(next);
        }
    }
    std::erase_if(lines, [](const ContourLine& line) { return line.empty(); });
}

// The part of a convex polygon on one side of a level.
std::vector<VxGePoint3d> CutOff(const std::vector<VxGePoint3d>& polygon, double level, bool keepAbove)
{
    std::vector<VxGePoint3d> kept;
    for (size_t index = 0; index < polygon.size(); ++index)
    {
        const VxGePoint3d& from = polygon[index];
        const VxGePoint3d& to = polygon[(index + 1) % polygon.size()];
        const bool isFromAbove = from.z >= level;
        const bool isToAbove = to.z >= level;
        if (isFromAbove == keepAbove)
        {
            kept.push_back(from);
        }
        if (isFromAbove != isToAbove)
        {
            kept.push_back(isFromAbove ? PlaceAt(to, from, level) : PlaceAt(from, to, level));
        }
    }
    return kept;
}

}  // namespace

std::array<VxGePoint3d, 3> CornersOf(const SurveySurface& surface, const SurveyTriangle& triangle)
{
    return {surface.points[triangle[0]], surface.points[triangle[1]], surface.points[triangle[2]]};
}

std::vector<ContourCrossing> ContourOfTriangle(const std::array<VxGePoint3d, 3>& corners, double level)
{
    std::vector<ContourCrossing> crossings;
    for (size_t from = 0; from < corners.size(); ++from)
    {
        const size_t to = (from + 1) % corners.size();
        const bool isFromAbove = corners[from].z >= level;
        if (isFromAbove == (corners[to].z >= level))
        {
            continue;
        }
        const size_t below = isFromAbove ? to : from;
        const size_t above = isFromAbove ? from : to;
        const VxGePoint3d place = PlaceAt(corners[below], corners[above], level);
        crossings.push_back({below, above, place});
        // The way up comes first.
        if (crossings.size() == 2 && !isFromAbove)
        {
            std::swap(crossings[0], crossings[1]);
        }
    }
    return crossings;
}

std::vector<ContourLine> TraceContours(const SurveySurface& surface, double level)
{
    Pieces pieces(surface, level);
    std::vector<ContourLine> lines;
    while (!pieces.IsEmpty())
    {
        lines.push_back(pieces.TakeLine());
    }
    JoinLines(lines);
    // A piece without length says nothing: the level only touches a corner there.
    std::erase_if(lines, [](const ContourLine& line) {
        return std::all_of(line.begin(), line.end(), [&](const VxGePoint3d& p) { return IsSameInPlan(p, line[0]); });
    });
    return lines;
}

std::vector<VxGePoint3d> ClipToBand(const std::array<VxGePoint3d, 3>& corners, double low, double high)
{
    const std::vector<VxGePoint3d> upper = CutOff({corners.begin(), corners.end()}, low, true);
    std::vector<VxGePoint3d> band = CutOff(upper, high, false);
    return band.size() < 3 ? std::vector<VxGePoint3d>() : band;
}

}  // namespace quonhost
