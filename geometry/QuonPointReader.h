/// @file
/// Cursors that hand out points one at a time.
///
/// ```cpp
/// double x, y, z;
/// while (reader.GetNextPoint(&x, &y, &z, nullptr))
/// {
///     Plot(x, y, z);
/// }
/// ```
/// A reader is for one thread at a time and throws nothing.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "geometry/VxGe.h"

/// A set of points, however it is held.
class QUON_API QuonPointReader
{
public:
    QuonPointReader(const QuonPointReader&) = delete;
    QuonPointReader& operator=(const QuonPointReader&) = delete;

    /// Writes the next point.
    /// @param x,y,z not null; untouched when there is no point left
    /// @param end may be null; receives true when there was no point left, else false
    /// @return true when a point was written.
    virtual bool GetNextPoint(double* x, double* y, double* z, bool* end) = 0;

    /// Goes back to the first point.
    virtual void Reset() = 0;

    /// @return the number of points, whether read or not.
    virtual int GetPointCount() = 0;

    virtual ~QuonPointReader();

protected:
    QuonPointReader();
};

/// One point.
class QUON_API QuonSinglePointReader : public QuonPointReader
{
public:
    /// Reads the point (x, y, z).
    QuonSinglePointReader(double x, double y, double z);

    bool GetNextPoint(double* x, double* y, double* z, bool* end) override;
    void Reset() override;

    /// @return always 1.
    int GetPointCount() override;

    ~QuonSinglePointReader() override;

private:
    double m_x;
    double m_y;
    double m_z;
    int m_read;  // 1 when the point was handed out
};

/// The points of an array, in the order of their index.
class QUON_API QuonArrayPointReader : public QuonPointReader
{
public:
    /// @param points not null, not owned, must outlive the reader. Points appended or removed later are seen, whatever
    ///               was read before.
    explicit QuonArrayPointReader(const VxGePoint3dArray* points);

    bool GetNextPoint(double* x, double* y, double* z, bool* end) override;
    void Reset() override;
    int GetPointCount() override;

    ~QuonArrayPointReader() override;

private:
    unsigned int m_cursor;  // index of the next point
    const VxGePoint3dArray* m_points;
};
