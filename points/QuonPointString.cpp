#include "points/QuonPointString.h"

#include "base/LengthInternal.h"
#include "points/PointFormatInternal.h"
#include "points/PointSetInternal.h"
#include "points/PointTextInternal.h"

#include <cstddef>
#include <cwchar>

using QuonPointDetails::FormatDifference;
using QuonPointDetails::FormatUnique;
using QuonPointDetails::ItemKind;
using QuonPointDetails::ParsedPoints;
using QuonPointDetails::ParsePoints;
using QuonPointDetails::PointItem;
using QuonPointDetails::PointTextReader;
using QuonPointString_details::Walk;

namespace QuonPointString_details
{

/// The steps of a walk over the points of one string.
struct Walk
{
    QuonPointString& string;

    bool Start();
    void ParseNextRange();
    void ParseOtherItem();
    void Consume(std::ptrdiff_t length);
    void Restart(const CString& text);
};

// Returns false when the text is blank: then the bounds and the cursor stay as they are and nothing is handed out.
bool Walk::Start()
{
    string.m_isDone = 0;
    string.m_isDescending = 0;
    string.m_hasError = 0;
    string.m_workText = string.m_text;
    QuonPointDetails::TrimRight(string.m_workText);
    const PointTextReader reader =
        PointTextReader::Start(string.m_workText, static_cast<std::size_t>(string.m_workText.GetLength()));
    Consume(reader.position - string.m_workText.GetString());
    if (string.m_workText.IsEmpty())
    {
        string.m_isDone = 1;
        return false;
    }
    string.m_rangeFirst = 0;
    string.m_rangeLast = 0;
    string.m_cursor = 0;
    ParseNextRange();
    return true;
}

void Walk::ParseNextRange()
{
    unsigned long first = 0;
    unsigned long last = 0;
    string.QuonPointString::GetNextRange(&first, &last);
}

// The same step for whatever else comes next, the end of the text included.
void Walk::ParseOtherItem()
{
    const wchar_t* const text = string.m_workText;
    PointTextReader reader{text + string.m_consumed, text + string.m_workText.GetLength()};
    if (reader.AtEnd())
    {
        string.m_isDone = 1;
        return;
    }
    const PointItem item = reader.Next();
    string.m_token.SetString(item.token, ToStringLength(item.tokenLength));
    Consume(reader.position - text);
    if (item.kind == ItemKind::None)
    {
        string.m_isDone = 1;
        return;
    }
    // Once an item was invalid no further one is read, also when the caller goes on past the end of the walk.
    if (item.kind == ItemKind::BadSyntax)
    {
        string.m_hasError = 1;
    }
    if (string.m_hasError == 0)
    {
        string.m_rangeFirst = item.range.first;
        string.m_rangeLast = item.range.last;
        string.m_isDescending = item.isRange ? string.m_rangeFirst > string.m_rangeLast : string.m_isDescending;
        string.m_hasError = item.kind == ItemKind::BadBound;
    }
    string.m_isDone |= string.m_hasError;
}

// Cutting the work text at every item would make the walk quadratic: it is cut once, at its end.
void Walk::Consume(std::ptrdiff_t length)
{
    const bool isAll = length == string.m_workText.GetLength();
    string.m_consumed = isAll ? 0 : static_cast<unsigned long>(length);
    if (isAll)
    {
        string.m_workText.Empty();
    }
}

// Takes a new text, of which no point was handed out yet.
void Walk::Restart(const CString& text)
{
    string.m_text = text;
    string.m_workText.Empty();
    string.m_consumed = 0;
    string.m_token.Empty();
    string.m_rangeFirst = 0;
    string.m_rangeLast = 0;
    string.m_cursor = 0;
    string.m_isDone = 0;
    string.m_isDescending = 0;
    string.m_hasError = 0;
    string.m_count = 0;
    string.m_format[0] = L'\0';
    string.m_changed = 1;
}

}  // namespace QuonPointString_details

QuonPointString::QuonPointString() : QuonPointString(nullptr) {}

QuonPointString::QuonPointString(const wchar_t* text)
    : m_text(text),
      m_changed(1),
      m_rangeFirst(0),
      m_rangeLast(0),
      m_cursor(0),
      m_isDone(0),
      m_isDescending(0),
      m_hasError(0),
      m_count(0),
      m_format(),
      m_consumed(0)
{
}

QuonPointString::QuonPointString(const QuonPointString& other) = default;
QuonPointString& QuonPointString::operator=(const QuonPointString& other) = default;
QuonPointString::~QuonPointString() = default;

void QuonPointString::Assign(const QuonPointString& other)
{
    if (this == &other)
    {
        return;
    }
    Walk{*this}.Restart(other.m_text);
    m_label.Empty();
}

void QuonPointString::RemovePoints(const wchar_t* points, BOOL sorted)
{
    const wchar_t* const text = points != nullptr ? points : L"";
    const ParsedPoints removed = ParsePoints(text, std::wcslen(text));
    if (removed.isValid)
    {
        QuonPointString result;
        result.m_text = FormatDifference(m_text, removed, sorted != FALSE);
        Assign(result);
        m_changed = 1;
    }
}

void QuonPointString::RemoveDuplicates(BOOL sorted)
{
    QuonPointString result;
    result.m_text = FormatUnique(m_text, sorted != FALSE);
    Assign(result);
    m_changed = 1;
}

void QuonPointString::GetFirstPoint(unsigned long* point)
{
    if (Walk{*this}.Start())
    {
        m_cursor = m_rangeFirst;
        *point = m_cursor;
    }
}

void QuonPointString::GetNextPoint(unsigned long* point)
{
    if (m_isDescending != 0 && m_cursor > m_rangeLast)
    {
        --m_cursor;
    }
    else if (m_isDescending == 0 && m_cursor < m_rangeLast)
    {
        ++m_cursor;
    }
    else
    {
        Walk{*this}.ParseNextRange();
        m_cursor = m_rangeFirst;
    }
    *point = m_cursor;
}

void QuonPointString::GetFirstRange(unsigned long* first, unsigned long* last)
{
    if (Walk{*this}.Start())
    {
        *first = m_rangeFirst;
        *last = m_rangeLast;
    }
}

// The step that every walk takes. Nearly every item is plain. Reading one takes about as long as a bare loop over its
// digits, so nothing more than that is done here: in particular it is not cut out of the work text.
void QuonPointString::GetNextRange(unsigned long* first, unsigned long* last)
{
    const wchar_t* const text = m_workText;
    PointTextReader reader{text + m_consumed, text + m_workText.GetLength()};
    PointItem item;
    if (m_hasError == 0 && reader.ReadPlainItem(item))
    {
        *first = m_rangeFirst = item.range.first;
        *last = m_rangeLast = item.range.last;
        // A number leaves the flag of the range before it: that shows when GetNextPoint follows a walk over ranges.
        if (item.isRange)
        {
            m_isDescending = item.range.first > item.range.last;
        }
        Walk{*this}.Consume(reader.position - text);
        return;
    }
    Walk{*this}.ParseOtherItem();
    *first = m_rangeFirst;
    *last = m_rangeLast;
}

BOOL QuonPointString::IsDone() const
{
    return m_isDone;
}

void QuonPointString::SetLabel(const wchar_t* label)
{
    m_label = CString(label);
}

bool QuonPointString::HasLabel() const
{
    return !m_label.IsEmpty();
}

const wchar_t* QuonPointString::GetLabel() const
{
    return m_label;
}

BOOL QuonPointString::IsValid()
{
    // An error that a walk has left behind is the answer, even when the text has become valid since.
    if (m_hasError == 0)
    {
        Walk{*this}.Start();
        while (m_isDone == 0)
        {
            Walk{*this}.ParseNextRange();
        }
    }
    const bool isValid = m_hasError == 0;
    m_hasError = 0;
    return isValid ? TRUE : FALSE;
}

unsigned long QuonPointString::GetPointCount()
{
    m_count = 0;
    Walk{*this}.Start();
    while (m_isDone == 0)
    {
        m_count += m_rangeLast - m_rangeFirst + 1;
        Walk{*this}.ParseNextRange();
    }
    return m_count;
}

const CString& QuonPointString::GetText() const
{
    return m_text;
}

void QuonPointString::SetText(const wchar_t* text)
{
    // A copy first: `text` may be this object's own.
    Walk{*this}.Restart(CString(text));
}
