// Stands for the header of a host's geometry library: it gives no more than what the readers are promised to use.
#pragma once

#include <vector>

class VxGePoint3d
{
public:
    double x;
    double y;
    double z;
};

class VxGePoint3dArray
{
public:
    explicit VxGePoint3dArray(int = 0, int = 8) {}

    const VxGePoint3d* GetPoints() const { return m_points.data(); }
    int GetPhysicalLength() const { return static_cast<int>(m_points.capacity()); }
    int GetLogicalLength() const { return static_cast<int>(m_points.size()); }
    void Append(const VxGePoint3d& point) { m_points.push_back(point); }
    void RemoveAll() { m_points.clear(); }

    static constexpr bool kIsTheHosts = true;

private:
    std::vector<VxGePoint3d> m_points;
};
