/// @file
/// The host geometry library's point and its growable array of points.
///
/// The application brings both with its geometry library. Where that library is not at hand, this header gives an
/// equivalent pair with the same fields. A build that has the library sets the CMake option QUON_VXGE_INCLUDE_DIR; then
/// the header named by QUON_VXGE_HEADER is taken instead, and it must give the same names: VxGePoint3d with x, y and z,
/// and VxGePoint3dArray with the constructors, GetPoints, GetPhysicalLength, GetLogicalLength, RemoveAll, Append and
/// assignment as told below (where the library spells them otherwise, a small adapter header does).
#pragma once

#if defined(QUON_USE_HOST_VXGE)

#include QUON_VXGE_HEADER

#else

#include "module/Export.h"

#include <cstring>
#include <limits>
#include <new>
#include <utility>

/// A point in space.
struct VxGePoint3d
{
    double x;
    double y;
    double z;
};

/// Gives the storage `points` of `physicalLength` points (null for 0) room for `newPhysicalLength` points and keeps those
/// that fit. Every point that the storage gains is (0, 0, 0) or one that stood there before a shrinking.
///
/// All arrays, of every module, take and return their storage here: it belongs to one heap whichever module grows or
/// frees an array, and whatever C run-time that module has.
/// @return the storage, null for the new length 0; null also when memory is exhausted, `points` then stays as it is.
QUON_API VxGePoint3d* VxGeResizeStorage(VxGePoint3d* points, int physicalLength, int newPhysicalLength);

/// A growable array of points. Removing and assigning keep the storage, so that an array which is filled again and again
/// allocates only while it has not yet had room for its largest contents.
///
/// Whatever needs more storage throws std::bad_alloc when there is none; the array then stays as it was.
/// Not for several threads at a time.
class VxGePoint3dArray
{
public:
    /// An empty array with room for `physicalLength` points; it grows by `growLength` points at a time (at least 1).
    explicit VxGePoint3dArray(int physicalLength = 0, int growLength = 8) : m_growLength(growLength)
    {
        SetPhysicalLength(physicalLength);
    }

    /// A deep copy with room for just the points of `other`; its grow length is that of `other`.
    VxGePoint3dArray(const VxGePoint3dArray& other) : m_growLength(other.m_growLength) { *this = other; }

    /// Takes the storage of `other`, which is empty afterwards.
    VxGePoint3dArray(VxGePoint3dArray&& other) noexcept : m_growLength(other.m_growLength) { Swap(other); }

    ~VxGePoint3dArray() { VxGeResizeStorage(m_points, m_physicalLength, 0); }

    /// Replaces the points by copies of those of `other`. Storage that suffices is kept, so is the grow length.
    VxGePoint3dArray& operator=(const VxGePoint3dArray& other)
    {
        if (this != &other)
        {
            if (other.m_logicalLength > m_physicalLength)
            {
                SetPhysicalLength(other.m_logicalLength);
            }
            if (other.m_logicalLength > 0)
            {
                std::memcpy(m_points, other.m_points,
                            static_cast<std::size_t>(other.m_logicalLength) * sizeof(VxGePoint3d));
            }
            m_logicalLength = other.m_logicalLength;
        }
        return *this;
    }

    /// Exchanges all with `other`, the grow length included.
    VxGePoint3dArray& operator=(VxGePoint3dArray&& other) noexcept
    {
        Swap(other);
        return *this;
    }

    /// Adds a copy of `point` at the end; `point` may be one of the array's own.
    void Append(const VxGePoint3d& point)
    {
        const VxGePoint3d copy = point;
        if (m_logicalLength >= m_physicalLength)
        {
            Grow();
        }
        m_points[m_logicalLength++] = copy;
    }

    /// Removes all points and keeps the storage.
    void RemoveAll() { m_logicalLength = 0; }

    /// Makes room for exactly `physicalLength` points (0 for less than 0); points beyond are removed.
    void SetPhysicalLength(int physicalLength)
    {
        const int length = physicalLength > 0 ? physicalLength : 0;
        VxGePoint3d* const points = VxGeResizeStorage(m_points, m_physicalLength, length);
        if (points == nullptr && length > 0)
        {
            throw std::bad_alloc();
        }
        m_points = points;
        m_physicalLength = length;
        m_logicalLength = m_logicalLength < length ? m_logicalLength : length;
    }

    /// The first point; null while the physical length is 0. Valid until the array grows, is assigned to or ends.
    VxGePoint3d* GetPoints() { return m_points; }
    const VxGePoint3d* GetPoints() const { return m_points; }

    /// The points that the storage has room for.
    int GetPhysicalLength() const { return m_physicalLength; }
    /// The points in use.
    int GetLogicalLength() const { return m_logicalLength; }
    /// The points that the storage gains whenever an appended point finds it full.
    int GetGrowLength() const { return m_growLength; }
    bool IsEmpty() const { return m_logicalLength == 0; }

    /// The point at `index`, which is not checked.
    VxGePoint3d& operator[](int index) { return m_points[index]; }
    const VxGePoint3d& operator[](int index) const { return m_points[index]; }

    VxGePoint3d* begin() { return m_points; }
    VxGePoint3d* end() { return m_points + m_logicalLength; }
    const VxGePoint3d* begin() const { return m_points; }
    const VxGePoint3d* end() const { return m_points + m_logicalLength; }

private:
    void Grow()
    {
        const int growLength = m_growLength > 0 ? m_growLength : 1;
        if (m_physicalLength > (std::numeric_limits<int>::max)() - growLength)
        {
            throw std::bad_alloc();
        }
        SetPhysicalLength(m_physicalLength + growLength);
    }

    void Swap(VxGePoint3dArray& other) noexcept
    {
        std::swap(m_points, other.m_points);
        std::swap(m_physicalLength, other.m_physicalLength);
        std::swap(m_logicalLength, other.m_logicalLength);
        std::swap(m_growLength, other.m_growLength);
    }

    VxGePoint3d* m_points = nullptr;
    int m_physicalLength = 0;
    int m_logicalLength = 0;
    int m_growLength;
};

#endif
