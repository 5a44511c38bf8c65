/// @file
/// The host geometry library's point and its growable array of points.
///
/// The application brings both with its geometry library. Where that library is not at hand, this header gives an
/// equivalent pair with the same fields. A build that has the library sets the CMake option QUON_VXGE_INCLUDE_DIR; then
/// the header named by QUON_VXGE_HEADER is taken instead, and it must give the same names: VxGePoint3d with x, y and z,
/// and VxGePoint3dArray with the constructors, GetPoints, GetPhysicalLength, GetLogicalLength, RemoveAll, Append and
/// assignment as told below (where the library spells them otherwise, a small adapter header does).
#pragma once

#include <afx.h>

#if defined(QUON_USE_HOST_VXGE)

#include QUON_VXGE_HEADER

#else

#include "base/Export.h"

#include <functional>
#include <limits>
#include <new>

/// A point in space.
struct VxGePoint3d
{
    double x;  ///< In the plan, in drawing units.
    double y;  ///< In the plan, in drawing units.
    double z;  ///< The elevation, in drawing units.
};

/// A growable array of points. Removing and assigning keep the storage, so that an array which is filled again and
/// again allocates only while it has not yet had room for its largest contents.
///
/// All that takes or returns storage is done inside the library: whichever module grows or ends an array, and whatever
/// C run-time that module has, the storage belongs to one heap. What needs more storage throws std::bad_alloc when
/// there is none; the array then stays as it was. Not for several threads at a time.
class VxGePoint3dArray
{
public:
    /// An empty array with room for `physicalLength` points; it grows by `growLength` points at a time (at least 1).
    QUON_API explicit VxGePoint3dArray(int physicalLength = 0, int growLength = 8);

    /// A deep copy with room for just the points of `other`; its grow length is that of `other`.
    QUON_API VxGePoint3dArray(const VxGePoint3dArray& other);

    /// Takes the storage of `other`, which has none afterwards.
    QUON_API VxGePoint3dArray(VxGePoint3dArray&& other) noexcept;

    QUON_API ~VxGePoint3dArray();

    /// Replaces the points by copies of those of `other`. Storage that suffices is kept, so is the grow length.
    QUON_API VxGePoint3dArray& operator=(const VxGePoint3dArray& other);

    /// Exchanges all with `other`, the grow length included.
    QUON_API VxGePoint3dArray& operator=(VxGePoint3dArray&& other) noexcept;

    /// Adds a copy of `point` at the end; `point` may be one of the array's own.
    void Append(const VxGePoint3d& point)
    {
        if (m_logicalLength >= m_physicalLength)
        {
            AppendGrowing(&point, 1);
            return;
        }
        m_points[m_logicalLength] = point;
        m_logicalLength += 1;
    }

    /// Adds copies of the `count` points (not negative) from `points` on, which may be the array's own.
    void Append(const VxGePoint3d* points, int count)
    {
        if (count > m_physicalLength - m_logicalLength)
        {
            AppendGrowing(points, count);
            return;
        }
        VxGePoint3d* const end = m_points + m_logicalLength;
        for (int i = 0; i < count; ++i)
        {
            end[i] = points[i];
        }
        m_logicalLength += count;
    }

    /// Removes all points and keeps the storage.
    void RemoveAll() { m_logicalLength = 0; }

    /// Makes room for exactly `physicalLength` points (0 for less than 0); points beyond are removed. Room that is
    /// gained holds (0, 0, 0), or a point that stood there before a shrinking.
    QUON_API void SetPhysicalLength(int physicalLength);

    /// The first point; null while the physical length is 0. Valid until the array grows, is assigned to or ends.
    VxGePoint3d* GetPoints() { return m_points; }
    /// As above, for reading.
    const VxGePoint3d* GetPoints() const { return m_points; }

    /// The points that the storage has room for.
    int GetPhysicalLength() const { return m_physicalLength; }
    /// The points in use.
    int GetLogicalLength() const { return m_logicalLength; }
    /// The points that the storage gains, once or several times, whenever appended points find it full.
    int GetGrowLength() const { return m_growLength; }
    /// Whether no points are in use.
    bool IsEmpty() const { return m_logicalLength == 0; }

    /// The point at `index`, which is not checked.
    VxGePoint3d& operator[](int index) { return m_points[index]; }
    /// As above, for reading.
    const VxGePoint3d& operator[](int index) const { return m_points[index]; }

    /// The points in use as a range; its ends stay valid as long as GetPoints().
    VxGePoint3d* begin() { return m_points; }
    /// One past the last point in use.
    VxGePoint3d* end() { return m_points + m_logicalLength; }
    /// As above, for reading.
    const VxGePoint3d* begin() const { return m_points; }
    /// As above, for reading.
    const VxGePoint3d* end() const { return m_points + m_logicalLength; }

private:
    // The room for `count` more points: the physical length, grown by as many grow lengths as that takes.
    int GrownLength(int count) const
    {
        const long long growLength = m_growLength > 1 ? m_growLength : 1;
        const long long missing = static_cast<long long>(m_logicalLength) + count - m_physicalLength;
        const long long length = m_physicalLength + (missing + growLength - 1) / growLength * growLength;
        if (length > (std::numeric_limits<int>::max)())
        {
            throw std::bad_alloc();
        }
        return static_cast<int>(length);
    }

    // Takes storage by SetPhysicalLength alone, so that this needs no export of its own.
    void AppendGrowing(const VxGePoint3d* points, int count)
    {
        // The array's own points move with its block.
        const bool own = std::less_equal<>()(m_points, points) && std::less<>()(points, m_points + m_logicalLength);
        const auto index = own ? points - m_points : 0;
        SetPhysicalLength(GrownLength(count));
        Append(own ? m_points + index : points, count);
    }

    VxGePoint3d* m_points;
    int m_physicalLength;
    int m_logicalLength;
    int m_growLength;
};

#endif
