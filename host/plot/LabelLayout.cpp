#include "host/plot/LabelLayout.h"

#include <cmath>

namespace quonhost
{
namespace
{

// About the size of a label, so that few boxes lie in a cell and few cells below a box.
constexpr double kCell = 32;

bool IsOverlapping(const LabelBox& a, const LabelBox& b)
{
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool IsWithin(const LabelBox& box, const LabelBox& area)
{
    return box.left >= area.left && box.top >= area.top && box.right <= area.right && box.bottom <= area.bottom;
}

}  // namespace

template <typename Visit>
void LabelLayout::ForEachCell(const LabelBox& box, const Visit& visit) const
{
    constexpr long long kRow = 1LL << 32;
    const auto cellOf = [](double place) { return static_cast<long long>(std::floor(place / kCell)); };
    for (long long y = cellOf(box.top); y <= cellOf(box.bottom); ++y)
    {
        for (long long x = cellOf(box.left); x <= cellOf(box.right); ++x)
        {
            visit(y * kRow + x);
        }
    }
}

bool LabelLayout::Take(const LabelBox& box)
{
    bool isFree = IsWithin(box, m_area);
    ForEachCell(box, [&](long long cell) {
        const auto found = m_cells.find(cell);
        for (size_t index = 0; isFree && found != m_cells.end() && index < found->second.size(); ++index)
        {
            isFree = !IsOverlapping(box, m_boxes[found->second[index]]);
        }
    });
    if (isFree)
    {
        Block(box);
    }
    return isFree;
}

void LabelLayout::Block(const LabelBox& box)
{
    ForEachCell(box, [this](long long cell) { m_cells[cell].push_back(m_boxes.size()); });
    m_boxes.push_back(box);
}

}  // namespace quonhost
