// The plan extents of runs of points, shared by the face readers.
#pragma once

#include <afx.h>

#include "geometry/VxGe.h"

#include <cstddef>

/// The smallest and largest x and y of the points added so far; z is ignored.
///
/// A bound moves only when it compares strictly: a NaN never moves one, and of coordinates that compare equal (0.0 and
/// -0.0) the first one added stays.
class PlanExtents
{
public:
    /// No points yet: the minima are `start`, the maxima -`start`.
    explicit PlanExtents(double start);

    void Add(const VxGePoint3d* points, std::size_t count);

    void Store(double* minX, double* minY, double* maxX, double* maxY) const;

private:
    double m_start;
    double m_minX;
    double m_minY;
    double m_maxX;
    double m_maxY;
};
