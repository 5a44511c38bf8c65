// Places for texts that do not cover each other.
#pragma once

#include <afx.h>

#include <cstddef>
#include <unordered_map>
#include <vector>

namespace quonhost
{

/// A box of the picture, in pixels.
struct LabelBox
{
    double left, top, right, bottom;
};

/// The boxes that are taken, and the area that all must keep to.
class LabelLayout
{
public:
    explicit LabelLayout(const LabelBox& area) : m_area(area) {}

    /// Takes the box, if it lies within the area and touches none that is taken. @return whether it did
    bool Take(const LabelBox& box);

    /// Takes the box whatever is there already.
    void Block(const LabelBox& box);

private:
    template <typename Visit>
    void ForEachCell(const LabelBox& box, const Visit& visit) const;

    LabelBox m_area;
    std::vector<LabelBox> m_boxes;
    std::unordered_map<long long, std::vector<size_t>> m_cells;
};

}  // namespace quonhost
