#include "geometry/PlanExtentsInternal.h"

namespace
{

/// Points of one block that each of the two runs of bounds takes.
constexpr std::size_t kRunLength = 16;

struct Bounds
{
    double minX;
    double minY;
    double maxX;
    double maxY;

    // Each line is one minimum or maximum instruction, with exactly the outcome for NaN and equal values that is
    // wanted: the bound is the operand that stays.
    void Add(double x, double y)
    {
        minX = x < minX ? x : minX;
        minY = y < minY ? y : minY;
        maxX = x > maxX ? x : maxX;
        maxY = y > maxY ? y : maxY;
    }

    /// Adds what `later` saw in points that follow all of this one's in storage.
    void Add(const Bounds& later)
    {
        minX = later.minX < minX ? later.minX : minX;
        minY = later.minY < minY ? later.minY : minY;
        maxX = later.maxX > maxX ? later.maxX : maxX;
        maxY = later.maxY > maxY ? later.maxY : maxY;
    }
};

}  // namespace

PlanExtents::PlanExtents(double start) : m_start(start), m_minX(start), m_minY(start), m_maxX(-start), m_maxY(-start) {}

void PlanExtents::Add(const VxGePoint3d* points, std::size_t count)
{
    const Bounds none{m_start, m_start, -m_start, -m_start};
    Bounds total{m_minX, m_minY, m_maxX, m_maxY};
    // One run of bounds waits for the previous point's comparison; two runs keep up with the memory. Each takes
    // neighbouring points, and they are joined in storage order, so that the result is that of the plain loop to the
    // bit.
    for (; count >= 2 * kRunLength; count -= 2 * kRunLength, points += 2 * kRunLength)
    {
        Bounds second = none;
        for (std::size_t i = 0; i < kRunLength; ++i)
        {
            total.Add(points[i].x, points[i].y);
            second.Add(points[kRunLength + i].x, points[kRunLength + i].y);
        }
        total.Add(second);
    }
    for (std::size_t i = 0; i < count; ++i)
    {
        total.Add(points[i].x, points[i].y);
    }
    m_minX = total.minX;
    m_minY = total.minY;
    m_maxX = total.maxX;
    m_maxY = total.maxY;
}

void PlanExtents::Store(double* minX, double* minY, double* maxX, double* maxY) const
{
    *minX = m_minX;
    *minY = m_minY;
    *maxX = m_maxX;
    *maxY = m_maxY;
}
