#include "host/plot/Relief.h"

#include <algorithm>
#include <cmath>

namespace quonhost
{
namespace
{

// From meadow green over straw and sand to rock.
constexpr PlotColour kTints[] = {
    {0.47, 0.70, 0.62}, {0.67, 0.81, 0.64}, {0.88, 0.91, 0.70}, {0.97, 0.90, 0.69},
    {0.93, 0.78, 0.58}, {0.84, 0.66, 0.54}, {0.93, 0.88, 0.85},
};
constexpr size_t kTintCount = sizeof(kTints) / sizeof(kTints[0]);

struct Vector
{
    double x = 0, y = 0, z = 0;
};

// The light comes from the north-west, as on every map, halfway up.
constexpr Vector kLight = {-0.5, 0.5, 0.70710678118654752};

// Twice the area of a triangle, as a vector that points up from its plane.
Vector NormalOf(const std::array<VxGePoint3d, 3>& corners)
{
    const VxGePoint3d &a = corners[0], &b = corners[1], &c = corners[2];
    const Vector ab = {b.x - a.x, b.y - a.y, b.z - a.z};
    const Vector ac = {c.x - a.x, c.y - a.y, c.z - a.z};
    const Vector normal = {ab.y * ac.z - ab.z * ac.y, ab.z * ac.x - ab.x * ac.z, ab.x * ac.y - ab.y * ac.x};
    return normal.z < 0 ? Vector{-normal.x, -normal.y, -normal.z} : normal;
}

std::vector<Vector> TriangleNormals(const SurveySurface& surface)
{
    std::vector<Vector> normals;
    normals.reserve(surface.triangles.size());
    for (const SurveyTriangle& triangle : surface.triangles)
    {
        normals.push_back(
            NormalOf({surface.points[triangle[0]], surface.points[triangle[1]], surface.points[triangle[2]]}));
    }
    return normals;
}

// Makes the middling slope one that the light shows well.
double ExaggerationFor(const std::vector<Vector>& normals)
{
    constexpr double kGoodSlope = 0.3;
    constexpr double kMost = 12;
    double rise = 0;
    double area = 0;
    for (const Vector& normal : normals)
    {
        rise += std::hypot(normal.x, normal.y);
        area += normal.z;
    }
    return rise > 0 && area > 0 ? std::clamp(kGoodSlope * area / rise, 0.5, kMost) : 1;
}

double LightOnPlane(const Vector& normal, double exaggeration)
{
    const Vector steep = {normal.x * exaggeration, normal.y * exaggeration, normal.z};
    const double length = std::sqrt(steep.x * steep.x + steep.y * steep.y + steep.z * steep.z);
    if (!(length > 0))
    {
        return 1;
    }
    const double light = (steep.x * kLight.x + steep.y * kLight.y + steep.z * kLight.z) / length;
    return std::max(0.0, light) / kLight.z;
}

std::vector<Vector> VertexNormals(const SurveySurface& surface, const std::vector<Vector>& normals)
{
    std::vector<Vector> sums(surface.points.size());
    for (size_t index = 0; index < normals.size(); ++index)
    {
        for (const std::uint32_t corner : surface.triangles[index])
        {
            sums[corner].x += normals[index].x;
            sums[corner].y += normals[index].y;
            sums[corner].z += normals[index].z;
        }
    }
    return sums;
}

int ByteOf(double part)
{
    return static_cast<int>(std::lround(255 * std::clamp(part, 0.0, 1.0)));
}

}  // namespace

PlotColour TintOf(double part)
{
    const double place = std::clamp(part, 0.0, 1.0) * static_cast<double>(kTintCount - 1);
    const size_t index = std::min(static_cast<size_t>(place), kTintCount - 2);
    const double rest = place - static_cast<double>(index);
    const PlotColour &a = kTints[index], &b = kTints[index + 1];
    return {a.red + rest * (b.red - a.red), a.green + rest * (b.green - a.green), a.blue + rest * (b.blue - a.blue)};
}

PlotColour Lit(const PlotColour& colour, double light)
{
    if (light <= 1)
    {
        const double part = 0.45 + 0.55 * light;
        return {colour.red * part, colour.green * part, colour.blue * part};
    }
    const double part = std::min(1.0, 1.6 * (light - 1));
    return {colour.red + part * (1 - colour.red), colour.green + part * (1 - colour.green),
            colour.blue + part * (1 - colour.blue)};
}

std::string HexOf(const PlotColour& colour)
{
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text = "#";
    for (const double part : {colour.red, colour.green, colour.blue})
    {
        const int byte = ByteOf(part);
        text += kDigits[byte / 16];
        text += kDigits[byte % 16];
    }
    return text;
}

std::vector<double> LightOn(const SurveySurface& surface)
{
    const std::vector<Vector> normals = TriangleNormals(surface);
    const std::vector<Vector> atVertices = VertexNormals(surface, normals);
    const double exaggeration = ExaggerationFor(normals);
    std::vector<double> lights;
    lights.reserve(normals.size());
    for (size_t index = 0; index < normals.size(); ++index)
    {
        double light = LightOnPlane(normals[index], exaggeration);
        for (const std::uint32_t corner : surface.triangles[index])
        {
            light += LightOnPlane(atVertices[corner], exaggeration);
        }
        lights.push_back(light / 4);
    }
    return lights;
}

}  // namespace quonhost
