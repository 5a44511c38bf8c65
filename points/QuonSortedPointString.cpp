#include "points/QuonSortedPointString.h"

#include "points/PointFormatInternal.h"

QuonSortedPointString::QuonSortedPointString() : m_points(std::make_unique<QuonPointMarker>()) {}

QuonSortedPointString::~QuonSortedPointString() = default;

void QuonSortedPointString::AddPoint(const wchar_t* text)
{
    m_points->MarkPoint(QuonPointDetails::ReadLeadingNumber(text));
    m_changed = 1;
}

void QuonSortedPointString::AddPoint(unsigned long point)
{
    m_points->MarkPoint(point);
    m_changed = 1;
}

void QuonSortedPointString::UpdateText()
{
    m_changed = 1;
    // Emptied, with the room for the new text kept.
    m_text.Truncate(0);
    // The end would be below the first number if the sum of the two had wrapped: then there is nothing to write.
    if (m_points->GetFirstNumber() <= m_points->GetEndNumber())
    {
        QuonPointDetails::PointTextWriter writer(m_text);
        QuonPointDetails::WriteSortedPoints(*m_points, writer);
        writer.CopyLastNumber(m_format);
    }
}

void QuonSortedPointString::Clear()
{
    m_text.Empty();
    m_points->Clear();
    m_changed = 1;
}

void QuonSortedPointString::RemovePoint(unsigned long point)
{
    m_points->UnmarkPoint(point);
    m_changed = 1;
}
