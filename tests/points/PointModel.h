// Models of the marker and the point strings, written point by point from their description, with nothing shared with
// the library: what is slow and plain here is what the library must agree with.
#pragma once

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace quon_test
{

using Point = std::uint32_t;

/// A mark for each point, as many as the bits that the real marker would hold.
class ModelMarker
{
public:
    void Mark(Point point);
    void Unmark(Point point);
    bool IsMarked(Point point) const;
    void Clear();
    Point End() const { return static_cast<Point>(1 + m_marks.size()); }

private:
    bool Reach(Point point);

    std::vector<bool> m_marks;
};

class ModelString
{
public:
    explicit ModelString(std::wstring initial = L"") : text(std::move(initial)) {}

    void Assign(const ModelString& other);
    void SetText(const std::wstring& newText);
    void RemovePoints(const std::wstring& points, bool sorted);
    void RemoveDuplicates(bool sorted);
    void GetFirstPoint(Point& point);
    void GetNextPoint(Point& point);
    void GetFirstRange(Point& first, Point& last);
    void GetNextRange(Point& first, Point& last);
    bool IsValid();
    Point GetPointCount();

    /// The number of points that a walk would hand out, and the highest of them, without walking them.
    struct Extent
    {
        std::uint64_t length;
        Point highest;
    };
    Extent Measure() const;

    std::wstring text;
    std::wstring label;
    bool done = false;

private:
    void ResetWalk();
    bool StartWalk();
    void ParseNextRange();

    std::wstring m_work;
    Point m_first = 0;
    Point m_last = 0;
    Point m_cursor = 0;
    bool m_descending = false;
    bool m_error = false;
};

class ModelSorted : public ModelString
{
public:
    void AddPoint(Point point) { m_marker.Mark(point); }
    void AddPoint(const std::wstring& pointText);
    void UpdateText();
    void Clear();
    void RemovePoint(Point point) { m_marker.Unmark(point); }

private:
    ModelMarker m_marker;
};

class ModelUnsorted : public ModelString
{
public:
    void AddPoint(Point point) { m_list.push_back(point); }
    void AddPoint(const std::wstring& pointText);
    void UpdateText();
    void Clear();

private:
    std::vector<Point> m_list;
};

}  // namespace quon_test
