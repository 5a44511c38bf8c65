#include "points/QuonUnsortedPointString.h"

#include "points/PointFormatInternal.h"

QuonUnsortedPointString::QuonUnsortedPointString() : m_points(10) {}

QuonUnsortedPointString::~QuonUnsortedPointString() = default;

void QuonUnsortedPointString::AddPoint(const wchar_t* text)
{
    unsigned long point = QuonPointDetails::ReadLeadingNumber(text);
    m_points.AddTail(point);
    m_changed = 1;
}

void QuonUnsortedPointString::AddPoint(unsigned long point)
{
    m_points.AddTail(point);
    m_changed = 1;
}

void QuonUnsortedPointString::UpdateText()
{
    QuonPointDetails::TrimRight(m_text);
    if (m_points.IsEmpty())
    {
        return;
    }
    {
        QuonPointDetails::PointTextWriter writer(m_text);
        QuonPointDetails::UnsortedPointLayout layout(writer);
        for (POSITION position = m_points.GetHeadPosition(); position != nullptr;)
        {
            layout.Add(m_points.GetNext(position));
        }
        layout.Finish();
        writer.CopyLastNumber(m_format);
    }
    m_points.RemoveAll();
    m_changed = 1;
}

void QuonUnsortedPointString::Clear()
{
    m_text.Empty();
    m_points.RemoveAll();
    m_changed = 1;
}
