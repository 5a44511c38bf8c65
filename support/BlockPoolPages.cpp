#include <afx.h>

#include "support/BlockPoolInternal.h"

#include <map>

namespace QuonBlockPool_details
{

namespace
{

constexpr std::size_t kRegionPages = 16;

std::uintptr_t SystemGranularity()
{
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    return system.dwAllocationGranularity;
}

using RegionTable = std::map<std::uintptr_t, std::uint32_t>;

/// What all lists of the process share. The regions are not given back at the library's end: elements may still be in
/// use.
struct PoolState
{
    const std::uintptr_t regionMask = ~(SystemGranularity() - 1);
    void* freePages = nullptr;
    /// Region base and the number of its pages in use.
    RegionTable regions;
    /// The entry of the region asked for last, if any: pages come and go region by region.
    RegionTable::value_type* lastRegion = nullptr;
    std::int32_t regionCount = 0;
};

PoolState g_pool;

/// The number of pages in use of the region that `page` lies in. The entry is made when it is first asked for.
std::uint32_t& PagesInUse(const void* page)
{
    const std::uintptr_t base = reinterpret_cast<std::uintptr_t>(page) & g_pool.regionMask;
    if (g_pool.lastRegion == nullptr || g_pool.lastRegion->first != base)
    {
        g_pool.lastRegion = &*g_pool.regions.try_emplace(base, 0U).first;
    }
    return g_pool.lastRegion->second;
}

/// Adds the pages of a new region to the free pages. Without a region from the system the list stays empty. Without
/// memory for the region's record operator new's exception passes through, and the region is given back.
void AddRegion()
{
    // Executable, so that owners may put code into their elements.
    auto* const region = static_cast<char*>(
        ::VirtualAlloc(nullptr, kRegionPages * PageSize(), MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    if (region == nullptr)
    {
        return;
    }
    try
    {
        PagesInUse(region) = 0;
    }
    catch (...)
    {
        ::VirtualFree(region, 0, MEM_RELEASE);
        throw;
    }
    g_pool.regionCount += 1;

    void* previous = nullptr;
    for (std::size_t i = 0; i < kRegionPages; ++i)
    {
        char* const page = region + i * PageSize();
        SetPrevious(page, previous);
        SetNext(page, i + 1 < kRegionPages ? page + PageSize() : g_pool.freePages);
        previous = page;
    }
    if (g_pool.freePages != nullptr)
    {
        SetPrevious(g_pool.freePages, previous);
    }
    g_pool.freePages = region;
}

/// Gives a region, all of whose pages are free, back to the system.
void ReleaseRegion(char* region)
{
    for (std::size_t i = 0; i < kRegionPages; ++i)
    {
        Unlink(&g_pool.freePages, region + i * PageSize());
    }
    g_pool.regions.erase(reinterpret_cast<std::uintptr_t>(region));
    g_pool.lastRegion = nullptr;
    g_pool.regionCount -= 1;
    ::VirtualFree(region, 0, MEM_RELEASE);
}

/// Puts a page that holds no element in use and is on no list of elements back among the free pages.
void ReleasePage(PageHeader* page)
{
    // The capacity's word becomes the free page's previous link: none.
    page->capacity = 0;
    SetNext(page, g_pool.freePages);
    if (g_pool.freePages != nullptr)
    {
        SetPrevious(g_pool.freePages, page);
    }
    g_pool.freePages = page;

    std::uint32_t& pagesInUse = PagesInUse(page);
    pagesInUse -= 1;
    // The last region stays, so that the next request needs no system call.
    if (pagesInUse == 0 && g_pool.regionCount >= 2)
    {
        ReleaseRegion(reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(page) & g_pool.regionMask));
    }
}

/// Whether `node` is an element of `page`; null is none.
bool IsIn(const PageHeader* page, const void* node)
{
    return reinterpret_cast<std::uintptr_t>(node) - reinterpret_cast<std::uintptr_t>(page) < PageSize();
}

/// The number of runs of neighbours that the elements of `page`, which are all free, form on the list.
std::size_t CountRuns(PageHeader* page)
{
    std::size_t runs = 0;
    const std::size_t elementSize = page->elementSize;
    const char* const first = FirstElement(page);
    const char* const end = first + page->capacity * elementSize;
    for (const char* element = first; element != end; element += elementSize)
    {
        runs += IsIn(page, Previous(element)) ? 0U : 1U;
    }
    return runs;
}

/// Takes the elements of `page` off the list, where they are all neighbours and the first one is the list's head.
void UnlinkFront(void** listHead, PageHeader* page)
{
    // Elements freed in the order of their addresses, or against it, end with the first or the last one.
    const std::size_t elementSize = page->elementSize;
    char* tail = FirstElement(page);
    if (IsIn(page, Next(tail)))
    {
        tail += (page->capacity - 1) * elementSize;
    }
    while (IsIn(page, Next(tail)))
    {
        tail -= elementSize;
    }
    void* const after = Next(tail);
    *listHead = after;
    if (after != nullptr)
    {
        SetPrevious(after, nullptr);
    }
}

void UnlinkElements(void** listHead, PageHeader* page)
{
    // The element freed last is the head, so a single run is the list's front: mostly it is one, and goes as a whole.
    if (CountRuns(page) == 1)
    {
        UnlinkFront(listHead, page);
        return;
    }
    const std::size_t elementSize = page->elementSize;
    char* const first = FirstElement(page);
    char* const end = first + page->capacity * elementSize;
    for (char* element = first; element != end; element += elementSize)
    {
        Unlink(listHead, element);
    }
}

}  // namespace

void* TakePage()
{
    if (g_pool.freePages == nullptr)
    {
        AddRegion();
    }
    void* const page = g_pool.freePages;
    if (page == nullptr)
    {
        return nullptr;
    }
    g_pool.freePages = Next(page);
    if (g_pool.freePages != nullptr)
    {
        SetPrevious(g_pool.freePages, nullptr);
    }
    SetNext(page, nullptr);
    PagesInUse(page) += 1;
    return page;
}

void ReturnPage(void** listHead, PageHeader* page)
{
    UnlinkElements(listHead, page);
    ReleasePage(page);
}

}  // namespace QuonBlockPool_details
