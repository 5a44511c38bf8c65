/// @file
/// Cursors that hand out faces (planar polygons given by their corners) one at a time.
///
/// ```cpp
/// VxGePoint3dArray face;
/// reader.Reset();
/// while (reader.GetNextFace(face))
/// {
///     Draw(face);
/// }
/// ```
/// With the same array for all faces, reading allocates nothing once the array has had room for the largest face.
/// A reader is for one thread at a time. The only exceptions are those of exhausted memory:
/// std::bad_alloc from the point array, CMemoryException* from operator new of a module that links the framework.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "geometry/VxGe.h"

#include <vector>

/// A set of faces, however it is held.
class QUON_API QuonFaceReader
{
public:
    QuonFaceReader(const QuonFaceReader&) = delete;
    QuonFaceReader& operator=(const QuonFaceReader&) = delete;

    /// Writes the next face into `face`, whose previous contents are discarded. Faces come in the order of their
    /// adding.
    /// @return false when there is none left; `face` is then untouched.
    virtual bool GetNextFace(VxGePoint3dArray& face) = 0;

    /// Goes back to the first face.
    virtual void Reset() = 0;

    /// @return the number of faces, whether read or not.
    virtual int GetFaceCount() = 0;

    /// Stores the smallest and largest x and y of all corners; z is ignored, and coordinates that are not a number
    /// leave the extents as they are. Without corners the minima are the reader's start value and the maxima its
    /// negative. The cursor stays where it is. No pointer may be null.
    virtual void GetExtents(double* minX, double* minY, double* maxX, double* maxY) = 0;

    virtual ~QuonFaceReader();

protected:
    QuonFaceReader();
};

/// One face, held by the caller.
class QUON_API QuonSingleFaceReader : public QuonFaceReader
{
public:
    /// @param face the corners; not null, not owned, must outlive the reader. Later changes of it are seen.
    explicit QuonSingleFaceReader(const VxGePoint3dArray* face);

    bool GetNextFace(VxGePoint3dArray& face) override;
    void Reset() override;

    /// @return always 1, also for a face without corners.
    int GetFaceCount() override;

    /// The start value is infinity.
    void GetExtents(double* minX, double* minY, double* maxX, double* maxY) override;

    ~QuonSingleFaceReader() override;

private:
    const VxGePoint3dArray* m_face;
    int m_read;  // 1 when the face was handed out
};

/// Triangles, held by the reader as a flat run of corners.
class QUON_API QuonMultiTriFaceReader : public QuonFaceReader
{
public:
    QuonMultiTriFaceReader();

    bool GetNextFace(VxGePoint3dArray& face) override;
    void Reset() override;
    int GetFaceCount() override;

    /// The start value is the largest finite double.
    void GetExtents(double* minX, double* minY, double* maxX, double* maxY) override;

    ~QuonMultiTriFaceReader() override;

    /// Adds a copy of the first three points of `face`. The length of `face` is not checked: what stands in its storage
    /// past its last point is taken, and (0, 0, 0) where it has no storage.
    /// @return the number of faces after adding.
    virtual int AddFace(const VxGePoint3dArray& face);

private:
    VxGePoint3dArray* m_corners;  // owned
    unsigned int m_cursor;        // index of the next corner to hand out
};

/// Polygons of any number of corners, held by the reader.
class QUON_API QuonMultiPolyFaceReader : public QuonFaceReader
{
public:
    QuonMultiPolyFaceReader();

    bool GetNextFace(VxGePoint3dArray& face) override;
    void Reset() override;
    int GetFaceCount() override;

    /// The start value is the largest finite double.
    void GetExtents(double* minX, double* minY, double* maxX, double* maxY) override;

    ~QuonMultiPolyFaceReader() override;

    /// Adds a copy of `face`, which may be empty.
    /// @return the number of faces after adding.
    virtual int AddFace(const VxGePoint3dArray& face);

private:
    std::vector<VxGePoint3dArray>* m_polygons;  // owned
    unsigned int m_cursor;                      // index of the next polygon to hand out
};
