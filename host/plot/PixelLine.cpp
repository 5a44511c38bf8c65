#include "host/plot/PixelLine.h"

#include <algorithm>
#include <cmath>

namespace quonhost
{
namespace
{

constexpr double kPi = 3.14159265358979323846;
constexpr double kCharacterWidth = 6.2;
constexpr double kLineHeight = 10;

}  // namespace

PixelLine::PixelLine(const PlotFrame& frame, const std::vector<VxGePoint3d>& line)
{
    for (const VxGePoint3d& point : line)
    {
        const VxGePoint3d place = {frame.ToX(point.x), frame.ToY(point.y), 0};
        const double step = m_places.empty() ? 0 : std::hypot(place.x - m_places.back().x, place.y - m_places.back().y);
        m_lengths.push_back(m_lengths.empty() ? 0 : m_lengths.back() + step);
        m_places.push_back(place);
    }
}

VxGePoint3d PixelLine::At(double length) const
{
    const auto after = std::lower_bound(m_lengths.begin() + 1, m_lengths.end() - 1, length) - m_lengths.begin();
    const auto index = static_cast<size_t>(after);
    const double step = m_lengths[index] - m_lengths[index - 1];
    const double part = step > 0 ? std::clamp((length - m_lengths[index - 1]) / step, 0.0, 1.0) : 0;
    const VxGePoint3d &a = m_places[index - 1], &b = m_places[index];
    return {a.x + part * (b.x - a.x), a.y + part * (b.y - a.y), 0};
}

PixelLine::Place PixelLine::PlaceAt(double length, double width) const
{
    const VxGePoint3d from = At(length - width / 2), to = At(length + width / 2), middle = At(length);
    double angle = std::atan2(to.y - from.y, to.x - from.x) * 180 / kPi;
    if (angle > 90 || angle <= -90)
    {
        angle += angle > 0 ? -180 : 180;
    }
    return {middle.x, middle.y, angle};
}

void AddLine(SvgPath& path, const PlotFrame& frame, const std::vector<VxGePoint3d>& line)
{
    path.Begin(frame.ToX(line[0].x), frame.ToY(line[0].y));
    for (size_t index = 1; index < line.size(); ++index)
    {
        path.LineTo(frame.ToX(line[index].x), frame.ToY(line[index].y));
    }
    path.End(line.size() > 2 && IsSameInPlan(line.front(), line.back()));
}

double WidthOf(const std::wstring& text)
{
    return kCharacterWidth * static_cast<double>(text.size()) + 4;
}

bool DrawAlong(SvgWriter& svg, const PixelLine& line, double length, const std::wstring& text, LabelLayout& layout)
{
    const double width = WidthOf(text);
    const PixelLine::Place place = line.PlaceAt(length, width);
    const double slant = place.angle * kPi / 180;
    const double x = (std::abs(std::cos(slant)) * width + std::abs(std::sin(slant)) * kLineHeight) / 2;
    const double y = (std::abs(std::sin(slant)) * width + std::abs(std::cos(slant)) * kLineHeight) / 2;
    if (!layout.Take({place.x - x, place.y - y, place.x + x, place.y + y}))
    {
        return false;
    }
    svg.Text(place.x, place.y + 3.5, text,
             "transform=\"rotate(" + Pixels(place.angle) + ' ' + Pixels(place.x) + ' ' + Pixels(place.y) + ")\"");
    return true;
}

}  // namespace quonhost
