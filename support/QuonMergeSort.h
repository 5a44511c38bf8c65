/// @file
/// A sort for comparisons that need not be an order, such as natural comparison.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <numeric>
#include <utility>
#include <vector>

/// Sorts a range, keeping the order of elements that rank equal. Requires nothing of `before` but that it returns:
/// where its answers contradict one another, the result is some order of the elements, after no more than
/// n * log2(n) + n calls. The sorts of the standard library have undefined behavior then; std::sort can leave the
/// range.
///
/// ```cpp
/// QuonMergeSort(names.begin(), names.end(),
///               [](const CString& a, const CString& b) { return CompareNatural(a, b) < 0; });
/// ```
/// Takes memory for two indices and one moved element for each element. When there is none, or `before` throws, the
/// exception passes through and the range is as it was.
/// @param first, last random-access iterators to elements that can be moved
/// @param before      true when its first argument comes before its second
template <typename Iterator, typename Before>
void QuonMergeSort(Iterator first, Iterator last, const Before& before)
{
    using Value = typename std::iterator_traits<Iterator>::value_type;
    const auto at = [first](std::size_t index) -> Value& {
        return first[static_cast<typename std::iterator_traits<Iterator>::difference_type>(index)];
    };
    const auto count = static_cast<std::size_t>(last - first);
    std::vector<std::size_t> order(count);
    std::vector<std::size_t> merged(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    for (std::size_t width = 1; width < count; width *= 2)
    {
        for (std::size_t begin = 0, out = 0; begin < count; begin += 2 * width)
        {
            const std::size_t middle = (std::min)(begin + width, count);
            const std::size_t end = (std::min)(middle + width, count);
            for (std::size_t left = begin, right = middle; out < end; ++out)
            {
                const bool takesRight = left == middle || (right != end && before(at(order[right]), at(order[left])));
                merged[out] = takesRight ? order[right++] : order[left++];
            }
        }
        order.swap(merged);
    }
    std::vector<Value> sorted;
    sorted.reserve(count);
    for (const std::size_t index : order)
    {
        sorted.push_back(std::move(at(index)));
    }
    std::move(sorted.begin(), sorted.end(), first);
}
