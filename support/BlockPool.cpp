#include "support/BlockPool.h"

#include "support/BlockPoolInternal.h"

#include <algorithm>
#include <cstring>

using namespace QuonBlockPool_details;

namespace
{

char* FirstElement(PageHeader* page)
{
    return reinterpret_cast<char*>(page) + kElementsOffset;
}

/// Links the elements of `page` into a chain in address order and puts it in front of the list.
void LinkElements(void** listHead, PageHeader* page)
{
    if (page->capacity == 0)
    {
        return;
    }
    const std::size_t elementSize = page->elementSize;
    char* const first = FirstElement(page);
    char* const last = first + (page->capacity - 1) * elementSize;
    void* previous = nullptr;
    for (char* element = first; element != last; element += elementSize)
    {
        SetPrevious(element, previous);
        SetNext(element, element + elementSize);
        previous = element;
    }
    SetPrevious(last, previous);
    SetNext(last, *listHead);
    if (*listHead != nullptr)
    {
        SetPrevious(*listHead, last);
    }
    *listHead = first;
}

/// The two ends of the elements of one page on their list, as far as there is just one of each.
struct Runs
{
    std::size_t count = 0;
    void* before = nullptr;
    void* after = nullptr;
};

/// Counts the runs of neighbours that the elements of `page`, which are all free, form on the list.
Runs FindRuns(PageHeader* page)
{
    Runs runs;
    char* element = FirstElement(page);
    for (std::uint64_t i = 0; i < page->capacity; ++i, element += page->elementSize)
    {
        void* const previous = Previous(element);
        void* const next = Next(element);
        if (PageOf(previous) != page)
        {
            runs.count += 1;
            runs.before = previous;
        }
        if (PageOf(next) != page)
        {
            runs.after = next;
        }
    }
    return runs;
}

void UnlinkElements(void** listHead, PageHeader* page)
{
    const Runs runs = FindRuns(page);
    if (runs.count == 1)
    {
        // Mostly a page's elements are neighbours on the list: then the whole run is taken out at once.
        if (runs.before != nullptr)
        {
            SetNext(runs.before, runs.after);
        }
        else
        {
            *listHead = runs.after;
        }
        if (runs.after != nullptr)
        {
            SetPrevious(runs.after, runs.before);
        }
        return;
    }
    char* element = FirstElement(page);
    for (std::uint64_t i = 0; i < page->capacity; ++i, element += page->elementSize)
    {
        Unlink(listHead, element);
    }
}

/// Returns a page without an element in use to the pool.
void ReturnPage(void** listHead, PageHeader* page)
{
    UnlinkElements(listHead, page);
    ReleasePage(page);
}

}  // namespace

void* PoolAddPage(void** listHead, std::size_t* elementSize)
{
    const std::size_t size = (std::max)(*elementSize, kLinksSize);
    const std::size_t capacity = (g_pageSize - kElementsOffset) / size;
    auto* const page = static_cast<PageHeader*>(TakePage());
    if (page == nullptr)
    {
        return nullptr;
    }
    page->capacity = capacity;
    page->elementSize = size;
    page->inUse = 0;
    LinkElements(listHead, page);
    return page;
}

void* PoolAllocate(void** listHead)
{
    void* const element = *listHead;
    void* const next = Next(element);
    *listHead = next;
    if (next != nullptr)
    {
        SetPrevious(next, nullptr);
    }
    SetNext(element, nullptr);
    PageOf(element)->inUse += 1;
    return element;
}

void PoolFree(void** listHead, void* element)
{
    SetPrevious(element, nullptr);
    SetNext(element, *listHead);
    if (*listHead != nullptr)
    {
        SetPrevious(*listHead, element);
    }
    *listHead = element;

    PageHeader* const page = PageOf(element);
    page->inUse -= 1;
    if (page->inUse == 0)
    {
        ReturnPage(listHead, page);
    }
}

BYTE* FillBytes(BYTE*& start, std::size_t& count, const BYTE& value)
{
    if (count != 0)
    {
        std::memset(start, value, count);
    }
    return start;
}
