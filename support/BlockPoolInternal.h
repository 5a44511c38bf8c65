// The pages of the block pool: what lies in them, and where they come from and go to.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace QuonBlockPool_details
{

/// The start of a page in use.
struct PageHeader
{
    std::uint64_t capacity;
    std::uint64_t elementSize;
    std::uint32_t inUse;
};
constexpr std::size_t kElementsOffset = 24;
static_assert(sizeof(PageHeader) == kElementsOffset);

/// Free elements and free pages begin with the links of the list that they are on. Elements of an odd size lie at odd
/// addresses, so links are copied, never dereferenced in place.
constexpr std::size_t kPreviousOffset = 0;
constexpr std::size_t kNextOffset = sizeof(void*);
constexpr std::size_t kLinksSize = 2 * sizeof(void*);

inline void* LoadLink(const void* node, std::size_t offset)
{
    void* link;
    std::memcpy(&link, static_cast<const char*>(node) + offset, sizeof(link));
    return link;
}

inline void StoreLink(void* node, std::size_t offset, void* link)
{
    std::memcpy(static_cast<char*>(node) + offset, &link, sizeof(link));
}

inline void* Previous(const void* node)
{
    return LoadLink(node, kPreviousOffset);
}

inline void* Next(const void* node)
{
    return LoadLink(node, kNextOffset);
}

inline void SetPrevious(void* node, void* link)
{
    StoreLink(node, kPreviousOffset, link);
}

inline void SetNext(void* node, void* link)
{
    StoreLink(node, kNextOffset, link);
}

/// Takes `node` off the list; the head moves on when it is `node`.
inline void Unlink(void** listHead, void* node)
{
    void* const previous = Previous(node);
    void* const next = Next(node);
    if (*listHead == node)
    {
        *listHead = next;
    }
    if (previous != nullptr)
    {
        SetNext(previous, next);
    }
    if (next != nullptr)
    {
        SetPrevious(next, previous);
    }
}

/// Clears an address's offset within its page: the negation of the system's page size.
extern const std::uintptr_t g_pageMask;

inline std::size_t PageSize()
{
    return ~g_pageMask + 1;
}

inline PageHeader* PageOf(const void* address)
{
    return reinterpret_cast<PageHeader*>(reinterpret_cast<std::uintptr_t>(address) & g_pageMask);
}

inline char* FirstElement(PageHeader* page)
{
    return reinterpret_cast<char*>(page) + kElementsOffset;
}

/// @return a page of any contents; null when the system has no memory.
void* TakePage();

/// Takes the elements of `page`, which are all free, off the list and takes the page back.
void ReturnPage(void** listHead, PageHeader* page);

}  // namespace QuonBlockPool_details
