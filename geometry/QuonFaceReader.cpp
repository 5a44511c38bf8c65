#include "geometry/QuonFaceReader.h"

#include "geometry/PlanExtentsInternal.h"

#include <limits>
#include <utility>

namespace
{

// The start values of the extents differ between the readers, and callers tell an empty reader by them.
constexpr double kSingleStart = std::numeric_limits<double>::infinity();
constexpr double kMultiStart = (std::numeric_limits<double>::max)();

constexpr int kGrowLength = 8;
constexpr unsigned int kTriangleCorners = 3;

void AddPoints(PlanExtents& extents, const VxGePoint3dArray& points)
{
    extents.Add(points.GetPoints(), static_cast<std::size_t>(points.GetLogicalLength()));
}

/// Appends in one go where the array can; the host's may know only single points.
template <typename Array>
void AppendRun(Array& to, const VxGePoint3d* points, int count)
{
    if constexpr (requires { to.Append(points, count); })
    {
        to.Append(points, count);
    }
    else
    {
        for (int i = 0; i < count; ++i)
        {
            to.Append(points[i]);
        }
    }
}

/// Appends the points that are stored from `points` on, less than three, and the origin for those that are missing.
void AppendCutTriangle(VxGePoint3dArray& to, const VxGePoint3d* points, unsigned int stored)
{
    VxGePoint3d cut[kTriangleCorners] = {};
    for (unsigned int i = 0; i < stored; ++i)
    {
        cut[i] = points[i];
    }
    AppendRun(to, cut, int{kTriangleCorners});
}

/// Appends three points of `from`, from `first` on. Only the storage bounds them, not the logical length: past that,
/// what the storage holds is taken. Past the storage there is nothing to take, there the origin stands in.
/// Short enough to be compiled into the reading of a face, which is done a million times.
inline void AppendTriangle(VxGePoint3dArray& to, const VxGePoint3dArray& from, unsigned int first)
{
    const VxGePoint3d* const points = from.GetPoints() + first;
    const auto stored = static_cast<unsigned int>(from.GetPhysicalLength());
    if (stored < first + kTriangleCorners)
    {
        AppendCutTriangle(to, points, stored - first);
        return;
    }
    AppendRun(to, points, int{kTriangleCorners});
}

}  // namespace

QuonFaceReader::QuonFaceReader() = default;
QuonFaceReader::~QuonFaceReader() = default;

QuonSingleFaceReader::QuonSingleFaceReader(const VxGePoint3dArray* face) : m_face(face), m_read(0) {}
QuonSingleFaceReader::~QuonSingleFaceReader() = default;

bool QuonSingleFaceReader::GetNextFace(VxGePoint3dArray& face)
{
    if (m_read == 1)
    {
        return false;
    }
    face = *m_face;
    m_read = 1;
    return true;
}

void QuonSingleFaceReader::Reset()
{
    m_read = 0;
}

int QuonSingleFaceReader::GetFaceCount()
{
    return 1;
}

void QuonSingleFaceReader::GetExtents(double* minX, double* minY, double* maxX, double* maxY)
{
    PlanExtents extents(kSingleStart);
    AddPoints(extents, *m_face);
    extents.Store(minX, minY, maxX, maxY);
}

QuonMultiTriFaceReader::QuonMultiTriFaceReader() : m_corners(new VxGePoint3dArray(0, kGrowLength)), m_cursor(0) {}

QuonMultiTriFaceReader::~QuonMultiTriFaceReader()
{
    delete m_corners;
}

bool QuonMultiTriFaceReader::GetNextFace(VxGePoint3dArray& face)
{
    // Only the first corner is tested: were the number of corners no multiple of three, the last face would take what
    // lies past the logical end.
    if (m_cursor >= static_cast<unsigned int>(m_corners->GetLogicalLength()))
    {
        return false;
    }
    face.RemoveAll();
    AppendTriangle(face, *m_corners, m_cursor);
    m_cursor += kTriangleCorners;
    return true;
}

void QuonMultiTriFaceReader::Reset()
{
    m_cursor = 0;
}

int QuonMultiTriFaceReader::GetFaceCount()
{
    return m_corners->GetLogicalLength() / static_cast<int>(kTriangleCorners);
}

void QuonMultiTriFaceReader::GetExtents(double* minX, double* minY, double* maxX, double* maxY)
{
    PlanExtents extents(kMultiStart);
    AddPoints(extents, *m_corners);
    extents.Store(minX, minY, maxX, maxY);
}

int QuonMultiTriFaceReader::AddFace(const VxGePoint3dArray& face)
{
    AppendTriangle(*m_corners, face, 0);
    return QuonMultiTriFaceReader::GetFaceCount();
}

QuonMultiPolyFaceReader::QuonMultiPolyFaceReader() : m_polygons(new std::vector<VxGePoint3dArray>), m_cursor(0) {}

QuonMultiPolyFaceReader::~QuonMultiPolyFaceReader()
{
    delete m_polygons;
}

bool QuonMultiPolyFaceReader::GetNextFace(VxGePoint3dArray& face)
{
    if (m_cursor >= m_polygons->size())
    {
        return false;
    }
    face.RemoveAll();
    face = (*m_polygons)[m_cursor];
    m_cursor += 1;
    return true;
}

void QuonMultiPolyFaceReader::Reset()
{
    m_cursor = 0;
}

int QuonMultiPolyFaceReader::GetFaceCount()
{
    return static_cast<int>(m_polygons->size());
}

void QuonMultiPolyFaceReader::GetExtents(double* minX, double* minY, double* maxX, double* maxY)
{
    PlanExtents extents(kMultiStart);
    for (const VxGePoint3dArray& polygon : *m_polygons)
    {
        AddPoints(extents, polygon);
    }
    extents.Store(minX, minY, maxX, maxY);
}

int QuonMultiPolyFaceReader::AddFace(const VxGePoint3dArray& face)
{
    // The reader's arrays grow by its own length, whatever that of the caller's array.
    VxGePoint3dArray copy(0, kGrowLength);
    copy = face;
    m_polygons->push_back(std::move(copy));
    return static_cast<int>(m_polygons->size());
}
