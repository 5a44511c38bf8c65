#include "support/BlockPool.h"
#include "support/BlockPoolInternal.h"

#include <algorithm>
#include <cstring>

using namespace QuonBlockPool_details;

namespace
{

std::uintptr_t SystemPageSize()
{
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    return system.dwPageSize;
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

}  // namespace

// Beside the functions that read it for every element, which spares them an indirection.
const std::uintptr_t QuonBlockPool_details::g_pageMask = ~(SystemPageSize() - 1);

void* PoolAddPage(void** listHead, std::size_t* elementSize)
{
    const std::size_t size = (std::max)(*elementSize, kLinksSize);
    const std::size_t capacity = (PageSize() - kElementsOffset) / size;
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
