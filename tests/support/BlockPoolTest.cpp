#include "support/BlockPool.h"

#include "support/PoolInspection.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <string>

using namespace quon_test;

namespace
{

std::vector<void*> Concatenated(std::vector<void*> one, const std::vector<void*>& other)
{
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

std::vector<void*> WithoutPage(std::vector<void*> elements, const void* page)
{
    std::erase_if(elements, [page](void* element) { return PageOf(element) == page; });
    return elements;
}

struct SizeRow
{
    std::size_t requested;
    std::uint64_t elementSize;
    std::uint64_t capacity;  // with pages of 4096 bytes
};

void PrintTo(const SizeRow& row, std::ostream* stream)
{
    *stream << row.requested << " bytes";
}

class BlockPoolSizes : public testing::TestWithParam<SizeRow>
{
};

INSTANTIATE_TEST_SUITE_P(All, BlockPoolSizes,
                         testing::Values(SizeRow{0, 16, 254}, SizeRow{1, 16, 254}, SizeRow{15, 16, 254},
                                         SizeRow{16, 16, 254}, SizeRow{17, 17, 239}, SizeRow{24, 24, 169},
                                         SizeRow{48, 48, 84}, SizeRow{128, 128, 31}, SizeRow{1357, 1357, 3},
                                         SizeRow{1358, 1358, 2}, SizeRow{2036, 2036, 2}, SizeRow{2037, 2037, 1},
                                         SizeRow{4071, 4071, 1}, SizeRow{4072, 4072, 1}));

TEST_P(BlockPoolSizes, FormatThePageForTheElements)
{
    ASSERT_EQ(PageSize(), 4096u);
    const SizeRow row = GetParam();
    void* head = nullptr;
    std::size_t size = row.requested;
    void* const page = PoolAddPage(&head, &size);
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(PageOf(page), page);
    EXPECT_EQ(size, row.requested);
    const PageHeader header = HeaderOf(page);
    EXPECT_EQ(header.capacity, row.capacity);
    EXPECT_EQ(header.elementSize, row.elementSize);
    EXPECT_EQ(header.inUse, 0u);
    EXPECT_EQ(head, static_cast<char*>(page) + kElementsOffset);
    EXPECT_EQ(Walk(head), ElementsOf(page));

    // Every byte of every element is the user's.
    const std::vector<void*> elements = AllocateAll(&head);
    ASSERT_EQ(elements.size(), row.capacity);
    EXPECT_EQ(HeaderOf(page).inUse, row.capacity);
    for (std::size_t i = 0; i < elements.size(); ++i)
    {
        std::memset(elements[i], static_cast<int>(i), row.elementSize);
    }
    EXPECT_EQ(HeaderOf(page).elementSize, row.elementSize);
    for (std::size_t i = 0; i < elements.size(); ++i)
    {
        const auto* const bytes = static_cast<const unsigned char*>(elements[i]);
        for (std::size_t k = 0; k < row.elementSize; ++k)
        {
            ASSERT_EQ(bytes[k], static_cast<unsigned char>(i)) << "element " << i << ", byte " << k;
        }
    }
    FreeAll(&head, elements);
    EXPECT_EQ(head, nullptr);
    EXPECT_EQ(HeaderOf(page).capacity, 0u);
}

TEST(BlockPool, TakesAPageWithoutElementsForAnOversizedElement)
{
    for (const std::size_t size : {std::size_t{4073}, std::size_t{65536}, (std::numeric_limits<std::size_t>::max)()})
    {
        SCOPED_TRACE(size);
        void* empty = nullptr;
        void* const page = AddPage(&empty, size);
        ASSERT_NE(page, nullptr);
        EXPECT_EQ(empty, nullptr);
        EXPECT_EQ(HeaderOf(page).capacity, 0u);
        EXPECT_EQ(HeaderOf(page).elementSize, size);
        EXPECT_EQ(HeaderOf(page).inUse, 0u);

        void* head = nullptr;
        void* const other = AddPage(&head, 48);
        EXPECT_NE(other, page) << "the page was not taken";
        const std::vector<void*> before = Walk(head);
        EXPECT_NE(AddPage(&head, size), nullptr);
        EXPECT_EQ(Walk(head), before);
        PoolFree(&head, PoolAllocate(&head));
        EXPECT_EQ(head, nullptr);
    }
}

TEST(BlockPool, AllocatesTheFirstElementOfTheList)
{
    void* head = nullptr;
    void* const page = AddPage(&head, 100);
    const std::vector<void*> elements = ElementsOf(page);
    for (std::size_t i = 0; i < elements.size(); ++i)
    {
        void* const element = PoolAllocate(&head);
        ASSERT_EQ(element, elements[i]);
        ASSERT_EQ(LinksOf(element).next, nullptr);
        ASSERT_EQ(HeaderOf(page).inUse, i + 1);
        ASSERT_EQ(head, i + 1 < elements.size() ? elements[i + 1] : nullptr);
        ASSERT_EQ(Walk(head).size(), elements.size() - i - 1);
    }
    FreeAll(&head, elements);
}

TEST(BlockPool, LinksAFreedElementInFront)
{
    void* head = nullptr;
    void* const page = AddPage(&head, 100);
    std::vector<void*> elements = AllocateAll(&head);
    std::vector<void*> expected;
    std::shuffle(elements.begin(), elements.end(), std::mt19937(5));
    for (std::size_t i = 0; i + 1 < elements.size(); ++i)
    {
        PoolFree(&head, elements[i]);
        expected.insert(expected.begin(), elements[i]);
        ASSERT_EQ(Walk(head), expected);
        ASSERT_EQ(HeaderOf(page).inUse, elements.size() - i - 1);
    }
    EXPECT_EQ(PoolAllocate(&head), expected.front());
    PoolFree(&head, expected.front());
    PoolFree(&head, elements.back());
    EXPECT_EQ(head, nullptr);
}

TEST(BlockPool, PutsANewPagesElementsInFrontOfTheList)
{
    void* head = nullptr;
    void* const first = AddPage(&head, 500);
    void* const kept = PoolAllocate(&head);
    const std::vector<void*> old = Walk(head);
    void* const second = AddPage(&head, 500);
    EXPECT_EQ(Walk(head), Concatenated(ElementsOf(second), old));
    void* const alsoKept = PoolAllocate(&head);
    PoolFree(&head, kept);
    EXPECT_EQ(Walk(head), WithoutPage(Walk(head), first));
    PoolFree(&head, alsoKept);
    EXPECT_EQ(head, nullptr);
}

/// Elements of several pages, freed in many orders: the last free of a page takes just that page's elements off.
TEST(BlockPool, FreeingAPagesLastElementTakesAllItsElementsOffTheList)
{
    std::mt19937 random(2024);
    for (int round = 0; round < 300; ++round)
    {
        SCOPED_TRACE(round);
        const std::size_t size = std::vector<std::size_t>{16, 48, 100, 500, 1400, 2000, 4000}[random() % 7];
        const std::size_t pages = 1 + random() % 4;
        void* head = nullptr;
        std::vector<void*> elements;
        for (std::size_t i = 0; i < pages; ++i)
        {
            AddPage(&head, size);
            elements = Concatenated(elements, AllocateAll(&head));
        }
        switch (round % 4)
        {
            case 0:
                std::shuffle(elements.begin(), elements.end(), random);
                break;
            case 1:
                std::reverse(elements.begin(), elements.end());
                break;
            case 2:
            {
                // Runs of neighbours: few, but more than one for a page.
                const auto middle = elements.begin() + static_cast<std::ptrdiff_t>(random() % elements.size());
                std::rotate(elements.begin(), middle, elements.end());
                break;
            }
            default:
                break;
        }
        for (void* element : elements)
        {
            std::vector<void*> expected = Walk(head);
            expected.insert(expected.begin(), element);
            char* const page = PageOf(element);
            const bool last = HeaderOf(page).inUse == 1;
            if (last)
            {
                expected = WithoutPage(expected, page);
            }
            PoolFree(&head, element);
            ASSERT_EQ(Walk(head), expected);
            ASSERT_EQ(HeaderOf(page).capacity == 0, last);
        }
        ASSERT_EQ(head, nullptr);
    }
}

TEST(BlockPool, TakesThePageNextThatWasReturnedLast)
{
    void* head = nullptr;
    std::vector<void*> pages;
    for (int i = 0; i < 3; ++i)
    {
        pages.push_back(AddPage(&head, 4000));
    }
    const std::vector<void*> elements = AllocateAll(&head);
    for (void* element : elements)
    {
        PoolFree(&head, element);
    }
    // The elements came off the list in the order of the newest page first, and so did their pages.
    EXPECT_EQ(LinksOf(pages[0]).previous, nullptr);
    EXPECT_EQ(LinksOf(pages[0]).next, pages[1]);
    EXPECT_EQ(LinksOf(pages[1]).previous, pages[0]);
    EXPECT_EQ(LinksOf(pages[1]).next, pages[2]);
    EXPECT_EQ(LinksOf(pages[2]).previous, pages[1]);
    std::vector<void*> again;
    for (int i = 0; i < 3; ++i)
    {
        again.push_back(AddPage(&head, 4000));
    }
    EXPECT_EQ(again, pages);
    FreeAll(&head, AllocateAll(&head));
}

TEST(BlockPool, ReturnsAPageAtOnceWhenItsOnlyElementInUseIsFreed)
{
    void* head = nullptr;
    for (int i = 0; i < 3; ++i)
    {
        void* const page = AddPage(&head, 48);
        void* const element = PoolAllocate(&head);
        EXPECT_EQ(Walk(head).size(), 83u);
        PoolFree(&head, element);
        EXPECT_EQ(head, nullptr);
        EXPECT_EQ(HeaderOf(page).capacity, 0u);
    }
}

TEST(FillBytes, FillsJustTheBytesTold)
{
    for (const std::size_t count : {0, 1, 2, 7, 8, 9, 100})
    {
        SCOPED_TRACE(count);
        std::vector<BYTE> bytes(110, BYTE{0xEE});
        BYTE* start = bytes.data() + 5;
        std::size_t counted = count;
        const BYTE value = 0x5A;
        EXPECT_EQ(FillBytes(start, counted, value), bytes.data() + 5);
        EXPECT_EQ(start, bytes.data() + 5);
        EXPECT_EQ(counted, count);
        for (std::size_t i = 0; i < bytes.size(); ++i)
        {
            ASSERT_EQ(bytes[i], i >= 5 && i < 5 + count ? 0x5A : 0xEE) << i;
        }
    }
}

TEST(FillBytes, TakesNoneFromNowhere)
{
    BYTE* start = nullptr;
    std::size_t count = 0;
    EXPECT_EQ(FillBytes(start, count, BYTE{1}), nullptr);
}

TEST(FillBytes, TakesItsValueFromTheBytesThatItFills)
{
    BYTE bytes[] = {1, 2, 3, 4};
    BYTE* start = bytes;
    std::size_t count = 4;
    FillBytes(start, count, bytes[2]);
    EXPECT_EQ(std::string(bytes, bytes + 4), std::string(4, '\3'));
}

}  // namespace
