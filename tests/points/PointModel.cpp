#include "points/PointModel.h"

#include <afx.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <cwctype>
#include <string_view>

namespace quon_test
{
namespace
{

void TrimLeft(std::wstring& text)
{
    while (!text.empty() && std::iswspace(text.front()) != 0)
    {
        text.erase(0, 1);
    }
}

void TrimRight(std::wstring& text)
{
    while (!text.empty() && std::iswspace(text.back()) != 0)
    {
        text.pop_back();
    }
}

// Reads a token from its front.
class TokenReader
{
public:
    explicit TokenReader(const std::wstring& token) : m_token(token) {}

    /// @return how many of the characters of `set` stand here, up to `most`
    std::size_t Take(std::wstring_view set, std::size_t most = std::wstring::npos)
    {
        const std::size_t begin = m_at;
        while (m_at < m_token.size() && m_at - begin < most && set.find(m_token[m_at]) != set.npos)
        {
            ++m_at;
        }
        return m_at - begin;
    }
    bool TakeNumber()
    {
        const bool hasDigits = Take(L"0123456789") != 0;
        Take(L" ");
        return hasDigits;
    }
    bool IsAtEnd() const { return m_at == m_token.size(); }

private:
    const std::wstring& m_token;
    std::size_t m_at = 0;
};

// [<>]+=?( *[0-9]+ *)?
bool IsComparison(const std::wstring& token)
{
    TokenReader reader(token);
    if (reader.Take(L"<>") == 0)
    {
        return false;
    }
    reader.Take(L"=", 1);
    if (reader.IsAtEnd())
    {
        return true;
    }
    reader.Take(L" ");
    return reader.TakeNumber() && reader.IsAtEnd();
}

// [0-9]+ *(- *([0-9]+ *)?)?, a number or a range; the second number of a range may be missing here.
bool IsNumberOrRange(const std::wstring& token)
{
    TokenReader reader(token);
    if (!reader.TakeNumber())
    {
        return false;
    }
    if (reader.Take(L"-", 1) != 0)
    {
        reader.Take(L" ");
        reader.TakeNumber();
    }
    return reader.IsAtEnd();
}

Point ToNumber(const std::wstring& text)
{
    return static_cast<Point>(_wtol(text.c_str()));
}

std::wstring Print(Point point)
{
    wchar_t buffer[128];
    swprintf_s(buffer, 128, L"%ld", static_cast<long>(point));
    return buffer;
}

}  // namespace

bool ModelMarker::Reach(Point point)
{
    if (point >= 0xFFFFFC00u)
    {
        return false;
    }
    const Point index = point - 1;
    if (index >= m_marks.size())
    {
        const std::uint64_t wanted = std::uint64_t{index} + 1024;
        if (wanted + 1 > 4294967295u)
        {
            return false;
        }
        m_marks.resize(static_cast<std::size_t>(wanted), false);
    }
    return true;
}

void ModelMarker::Mark(Point point)
{
    if (Reach(point))
    {
        m_marks[point - 1] = true;
    }
}

void ModelMarker::Unmark(Point point)
{
    if (Reach(point))
    {
        m_marks[point - 1] = false;
    }
}

bool ModelMarker::IsMarked(Point point) const
{
    return Point{point - 1} < m_marks.size() && m_marks[point - 1];
}

void ModelMarker::Clear()
{
    m_marks.clear();
}

void ModelString::ResetWalk()
{
    m_work.clear();
    m_first = m_last = m_cursor = 0;
    done = m_descending = m_error = false;
}

void ModelString::Assign(const ModelString& other)
{
    if (this != &other)
    {
        text = other.text;
        label.clear();
        ResetWalk();
    }
}

void ModelString::SetText(const std::wstring& newText)
{
    text = newText;
    ResetWalk();
}

void ModelString::ParseNextRange()
{
    std::wstring token;
    bool foundComma = false;
    do
    {
        if (m_work.empty())
        {
            done = true;
            return;
        }
        const std::size_t comma = m_work.find(L',');
        foundComma = comma != std::wstring::npos;
        token = m_work.substr(0, comma);
        m_work = foundComma ? m_work.substr(comma + 1) : L"";
        TrimRight(token);
        TrimLeft(m_work);
    } while (token.empty() && foundComma);

    const bool comparison = IsComparison(token);
    if (!comparison && !IsNumberOrRange(token))
    {
        m_error = true;
    }
    if (!m_error)
    {
        const std::size_t dash = token.find(L'-');
        if (dash == std::wstring::npos)
        {
            m_first = m_last = ToNumber(token);
        }
        else
        {
            m_first = ToNumber(token.substr(0, dash));
            m_last = ToNumber(token.substr(dash + 1));
            m_descending = m_first > m_last;
        }
        m_error = !comparison && (m_first == 0 || m_last == 0);
    }
    if (m_error)
    {
        done = true;
    }
}

bool ModelString::StartWalk()
{
    done = m_descending = m_error = false;
    m_work = text;
    TrimLeft(m_work);
    TrimRight(m_work);
    if (m_work.empty())
    {
        done = true;
        return false;
    }
    m_first = m_last = m_cursor = 0;
    ParseNextRange();
    return true;
}

void ModelString::GetFirstRange(Point& first, Point& last)
{
    if (StartWalk())
    {
        first = m_first;
        last = m_last;
    }
}

void ModelString::GetNextRange(Point& first, Point& last)
{
    ParseNextRange();
    first = m_first;
    last = m_last;
}

void ModelString::GetFirstPoint(Point& point)
{
    if (StartWalk())
    {
        point = m_cursor = m_first;
    }
}

void ModelString::GetNextPoint(Point& point)
{
    if (m_descending && m_cursor > m_last)
    {
        --m_cursor;
    }
    else if (!m_descending && m_cursor < m_last)
    {
        ++m_cursor;
    }
    else
    {
        ParseNextRange();
        m_cursor = m_first;
    }
    point = m_cursor;
}

bool ModelString::IsValid()
{
    if (m_error)
    {
        m_error = false;
        return false;
    }
    Point first = 0;
    Point last = 0;
    for (GetFirstRange(first, last); !done; GetNextRange(first, last))
    {
    }
    const bool valid = !m_error;
    m_error = false;
    return valid;
}

Point ModelString::GetPointCount()
{
    Point count = 0;
    Point first = 0;
    Point last = 0;
    for (GetFirstRange(first, last); !done; GetNextRange(first, last))
    {
        count += last - first + 1;
    }
    return count;
}

ModelString::Extent ModelString::Measure() const
{
    ModelString copy(text);
    Extent extent{0, 0};
    Point first = 0;
    Point last = 0;
    for (copy.GetFirstRange(first, last); !copy.done; copy.GetNextRange(first, last))
    {
        extent.length += 1 + std::uint64_t{first > last ? first - last : last - first};
        extent.highest = std::max({extent.highest, first, last});
    }
    return extent;
}

void ModelString::RemovePoints(const std::wstring& points, bool sorted)
{
    ModelString removed(points);
    if (!removed.IsValid())
    {
        return;
    }
    ModelString copy(*this);
    ModelMarker marker;
    Point point = 0;
    for (removed.GetFirstPoint(point); !removed.done; removed.GetNextPoint(point))
    {
        marker.Mark(point);
    }
    ModelSorted ascending;
    ModelUnsorted inOrder;
    for (copy.GetFirstPoint(point); !copy.done; copy.GetNextPoint(point))
    {
        if (!marker.IsMarked(point))
        {
            sorted ? ascending.AddPoint(point) : inOrder.AddPoint(point);
        }
    }
    ascending.UpdateText();
    inOrder.UpdateText();
    sorted ? Assign(ascending) : Assign(inOrder);
}

void ModelString::RemoveDuplicates(bool sorted)
{
    ModelString copy(*this);
    ModelMarker seen;
    ModelSorted ascending;
    ModelUnsorted inOrder;
    Point point = 0;
    for (copy.GetFirstPoint(point); !copy.done; copy.GetNextPoint(point))
    {
        if (!seen.IsMarked(point))
        {
            seen.Mark(point);
            sorted ? ascending.AddPoint(point) : inOrder.AddPoint(point);
        }
    }
    ascending.UpdateText();
    inOrder.UpdateText();
    sorted ? Assign(ascending) : Assign(inOrder);
}

void ModelSorted::AddPoint(const std::wstring& pointText)
{
    AddPoint(ToNumber(pointText));
}

void ModelSorted::UpdateText()
{
    text.clear();
    bool inRun = false;
    Point start = 0;
    const std::uint64_t end = m_marker.End();
    for (std::uint64_t at = 1; at <= end; ++at)
    {
        const Point point = static_cast<Point>(at);
        const bool present = m_marker.IsMarked(point);
        if (present && !inRun)
        {
            text += (text.empty() ? L"" : L",") + Print(point);
            start = point;
        }
        else if (!present && inRun && point > start + 1)
        {
            text += L"-" + Print(point - 1);
        }
        inRun = present;
    }
}

void ModelSorted::Clear()
{
    text.clear();
    m_marker.Clear();
}

void ModelUnsorted::AddPoint(const std::wstring& pointText)
{
    AddPoint(ToNumber(pointText));
}

void ModelUnsorted::UpdateText()
{
    TrimRight(text);
    if (m_list.empty())
    {
        return;
    }
    Point previous = m_list.front();
    text += (text.empty() ? L"" : L",") + Print(previous);
    bool up = false;
    bool down = false;
    for (std::size_t at = 1; at < m_list.size(); ++at)
    {
        const Point value = m_list[at];
        const Point difference = value - previous;
        if ((up && difference != 1) || (down && difference != 4294967295u))
        {
            text += L"-" + Print(previous) + L"," + Print(value);
            up = down = false;
        }
        else if (!up && !down)
        {
            if (difference == 1)
            {
                up = true;
            }
            else if (difference == 4294967295u)
            {
                down = true;
            }
            else
            {
                text += (text.empty() ? L"" : L",") + Print(value);
            }
        }
        previous = value;
    }
    if (up || down)
    {
        text += L"-" + Print(previous);
    }
    m_list.clear();
}

void ModelUnsorted::Clear()
{
    text.clear();
    m_list.clear();
}

}  // namespace quon_test
