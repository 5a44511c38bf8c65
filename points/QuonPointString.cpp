#include "points/QuonPointString.h"

#include "base/LengthInternal.h"
#include "points/PointFormatInternal.h"
#include "points/PointSetInternal.h"
#include "points/PointTextInternal.h"

#include <cwchar>

using QuonPointDetails::FormatDifference;
using QuonPointDetails::FormatUnique;
using QuonPointDetails::ItemKind;
using QuonPointDetails::ParsedPoints;
using QuonPointDetails::ParsePoints;
using QuonPointDetails::PointItem;
using QuonPointDetails::PointTextReader;

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
    TakeText(other.m_text);
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
    if (StartWalk())
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
        ParseNextRange();
        m_cursor = m_rangeFirst;
    }
    *point = m_cursor;
}

void QuonPointString::GetFirstRange(unsigned long* first, unsigned long* last)
{
    if (StartWalk())
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
        Consume(reader.position - text);
        return;
    }
    ParseOtherItem();
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
        StartWalk();
        while (m_isDone == 0)
        {
            ParseNextRange();
        }
    }
    const bool isValid = m_hasError == 0;
    m_hasError = 0;
    return isValid ? TRUE : FALSE;
}

unsigned long QuonPointString::GetPointCount()
{
    m_count = 0;
    StartWalk();
    while (m_isDone == 0)
    {
        m_count += m_rangeLast - m_rangeFirst + 1;
        ParseNextRange();
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
    TakeText(CString(text));
}

// Returns false when the text is blank: then the bounds and the cursor stay as they are and nothing is handed out.
bool QuonPointString::StartWalk()
{
    m_isDone = 0;
    m_isDescending = 0;
    m_hasError = 0;
    m_workText = m_text;
    QuonPointDetails::TrimRight(m_workText);
    const PointTextReader reader = PointTextReader::Start(m_workText, static_cast<std::size_t>(m_workText.GetLength()));
    Consume(reader.position - m_workText.GetString());
    if (m_workText.IsEmpty())
    {
        m_isDone = 1;
        return false;
    }
    m_rangeFirst = 0;
    m_rangeLast = 0;
    m_cursor = 0;
    ParseNextRange();
    return true;
}

void QuonPointString::ParseNextRange()
{
    unsigned long first = 0;
    unsigned long last = 0;
    QuonPointString::GetNextRange(&first, &last);
}

// The same step for whatever else comes next, the end of the text included.
void QuonPointString::ParseOtherItem()
{
    const wchar_t* const text = m_workText;
    PointTextReader reader{text + m_consumed, text + m_workText.GetLength()};
    if (reader.AtEnd())
    {
        m_isDone = 1;
        return;
    }
    const PointItem item = reader.Next();
    m_token.SetString(item.token, ToStringLength(item.tokenLength));
    Consume(reader.position - text);
    if (item.kind == ItemKind::None)
    {
        m_isDone = 1;
        return;
    }
    // Once an item was invalid no further one is read, also when the caller goes on past the end of the walk.
    if (item.kind == ItemKind::BadSyntax)
    {
        m_hasError = 1;
    }
    if (m_hasError == 0)
    {
        m_rangeFirst = item.range.first;
        m_rangeLast = item.range.last;
        m_isDescending = item.isRange ? m_rangeFirst > m_rangeLast : m_isDescending;
        m_hasError = item.kind == ItemKind::BadBound;
    }
    m_isDone |= m_hasError;
}

// Cutting the work text at every item would make the walk quadratic: it is cut once, at its end.
void QuonPointString::Consume(std::ptrdiff_t length)
{
    const bool isAll = length == m_workText.GetLength();
    m_consumed = isAll ? 0 : static_cast<unsigned long>(length);
    if (isAll)
    {
        m_workText.Empty();
    }
}

void QuonPointString::TakeText(const CString& text)
{
    m_text = text;
    m_workText.Empty();
    m_consumed = 0;
    m_token.Empty();
    m_rangeFirst = 0;
    m_rangeLast = 0;
    m_cursor = 0;
    m_isDone = 0;
    m_isDescending = 0;
    m_hasError = 0;
    m_count = 0;
    m_format[0] = L'\0';
    m_changed = 1;
}
