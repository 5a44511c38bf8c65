#include "geometry/QuonPointReader.h"

namespace
{

/// Tells the caller that the end flag is the negation of the result, where it asked for the flag.
bool Report(bool written, bool* end)
{
    if (end != nullptr)
    {
        *end = !written;
    }
    return written;
}

}  // namespace

QuonPointReader::QuonPointReader() = default;
QuonPointReader::~QuonPointReader() = default;

QuonSinglePointReader::QuonSinglePointReader(double x, double y, double z) : m_x(x), m_y(y), m_z(z), m_read(0) {}
QuonSinglePointReader::~QuonSinglePointReader() = default;

bool QuonSinglePointReader::GetNextPoint(double* x, double* y, double* z, bool* end)
{
    const bool written = m_read != 1;
    if (written)
    {
        *x = m_x;
        *y = m_y;
        *z = m_z;
        m_read = 1;
    }
    return Report(written, end);
}

void QuonSinglePointReader::Reset()
{
    m_read = 0;
}

int QuonSinglePointReader::GetPointCount()
{
    return 1;
}

QuonArrayPointReader::QuonArrayPointReader(const VxGePoint3dArray* points) : m_cursor(0), m_points(points) {}
QuonArrayPointReader::~QuonArrayPointReader() = default;

bool QuonArrayPointReader::GetNextPoint(double* x, double* y, double* z, bool* end)
{
    const bool written = static_cast<int>(m_cursor) < m_points->GetLogicalLength();
    if (written)
    {
        const VxGePoint3d& point = m_points->GetPoints()[m_cursor];
        *x = point.x;
        *y = point.y;
        *z = point.z;
        m_cursor += 1;
    }
    return Report(written, end);
}

void QuonArrayPointReader::Reset()
{
    m_cursor = 0;
}

int QuonArrayPointReader::GetPointCount()
{
    return m_points->GetLogicalLength();
}
