#include <afx.h>

#include "support/QuonMergeSort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "helpers/Thorough.h"
#include "support/NaturalCompare.h"

namespace
{

// A value, and where it stood before.
using Element = std::pair<int, int>;

std::vector<Element> RandomElements(std::mt19937& engine, std::size_t count)
{
    std::vector<Element> elements(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        elements[i] = {static_cast<int>(engine() % 20), static_cast<int>(i)};
    }
    return elements;
}

TEST(MergeSort, EqualsTheStableSortOfTheStandardLibraryForAnOrder)
{
    const auto before = [](const Element& a, const Element& b) { return a.first < b.first; };
    std::mt19937 engine(18);
    for (int round = 0; round < quon_test::Cases(2000); ++round)
    {
        std::vector<Element> elements = RandomElements(engine, engine() % 70);
        std::vector<Element> expected = elements;
        std::stable_sort(expected.begin(), expected.end(), before);
        QuonMergeSort(elements.begin(), elements.end(), before);
        ASSERT_EQ(elements, expected);
    }
}

TEST(MergeSort, KeepsTheElementsAndEndsWhateverTheComparisonAnswers)
{
    std::mt19937 engine(81);
    for (std::size_t count = 0; count < 300; ++count)
    {
        std::vector<Element> elements = RandomElements(engine, count);
        std::vector<Element> expected = elements;
        std::size_t calls = 0;
        QuonMergeSort(elements.begin(), elements.end(), [&](const Element& a, const Element& b) {
            ++calls;
            // References to elements of the range and no others.
            EXPECT_TRUE(&a >= elements.data() && &a < elements.data() + count);
            EXPECT_TRUE(&b >= elements.data() && &b < elements.data() + count);
            return engine() % 2 == 0;
        });
        const auto n = static_cast<double>(count);
        EXPECT_LE(static_cast<double>(calls), n * std::log2(n + 1) + n);
        std::sort(elements.begin(), elements.end());
        std::sort(expected.begin(), expected.end());
        ASSERT_EQ(elements, expected);
    }
}

TEST(MergeSort, LeavesTheRangeWhenTheComparisonThrows)
{
    std::vector<std::wstring> names = {L"d", L"b", L"c", L"a", L"e"};
    const std::vector<std::wstring> given = names;
    int calls = 0;
    const auto throwing = [&calls](const std::wstring& a, const std::wstring& b) {
        return ++calls == 5 ? throw std::runtime_error("enough") : a < b;
    };
    EXPECT_THROW(QuonMergeSort(names.begin(), names.end(), throwing), std::runtime_error);
    EXPECT_EQ(names, given);
}

TEST(MergeSort, MovesElementsThatCannotBeCopied)
{
    std::vector<std::unique_ptr<int>> numbers;
    for (const int number : {3, 1, 2})
    {
        numbers.push_back(std::make_unique<int>(number));
    }
    QuonMergeSort(numbers.begin(), numbers.end(),
                  [](const std::unique_ptr<int>& a, const std::unique_ptr<int>& b) { return *a < *b; });
    EXPECT_EQ(*numbers[0], 1);
    EXPECT_EQ(*numbers[1], 2);
    EXPECT_EQ(*numbers[2], 3);
}

TEST(MergeSort, PutsNamesOfOneShapeInNaturalOrder)
{
    std::vector<CString> names = {L"sheet 10", L"sheet 2", L"sheet 1"};
    QuonMergeSort(names.begin(), names.end(),
                  [](const CString& a, const CString& b) { return CompareNatural(a, b) < 0; });
    EXPECT_EQ(names[0], L"sheet 1");
    EXPECT_EQ(names[1], L"sheet 2");
    EXPECT_EQ(names[2], L"sheet 10");
}

}  // namespace
