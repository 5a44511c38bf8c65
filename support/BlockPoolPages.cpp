#include "support/BlockPoolInternal.h"

#include <windows.h>

#include <map>

namespace QuonBlockPool_details
{

namespace
{

constexpr std::size_t kRegionPages = 16;

SYSTEM_INFO GetSystem()
{
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    return system;
}

using RegionTable = std::map<std::uintptr_t, std::uint32_t>;

/// What all lists of the process share. The regions are not given back at the library's end: elements may still be in use.
struct PoolState
{
    const std::uintptr_t regionMask = ~(std::uintptr_t{GetSystem().dwAllocationGranularity} - 1);
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

/// Without memory the list of free pages simply stays empty.
void AddRegion()
{
    // Executable, so that owners may put code into their elements.
    auto* const region = static_cast<char*>(
        ::VirtualAlloc(nullptr, kRegionPages * g_pageSize, MEM_COMMIT | MEM_RESERVE, PAGE_EXECUTE_READWRITE));
    if (region == nullptr)
    {
        return;
    }
    PagesInUse(region) = 0;
    g_pool.regionCount += 1;

    void* previous = nullptr;
    for (std::size_t i = 0; i < kRegionPages; ++i)
    {
        char* const page = region + i * g_pageSize;
        SetPrevious(page, previous);
        SetNext(page, i + 1 < kRegionPages ? page + g_pageSize : g_pool.freePages);
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
        Unlink(&g_pool.freePages, region + i * g_pageSize);
    }
    g_pool.regions.erase(reinterpret_cast<std::uintptr_t>(region));
    g_pool.lastRegion = nullptr;
    g_pool.regionCount -= 1;
    ::VirtualFree(region, 0, MEM_RELEASE);
}

}  // namespace

const std::size_t g_pageSize = GetSystem().dwPageSize;
const std::uintptr_t g_pageMask = ~(std::uintptr_t{GetSystem().dwPageSize} - 1);

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

}  // namespace QuonBlockPool_details
