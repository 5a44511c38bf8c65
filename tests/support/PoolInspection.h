// Looks into the block pool's memory from outside: lists, page headers, and the system calls for regions.
#pragma once

#include "support/BlockPool.h"
#include "helpers/ImportPatch.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <vector>

namespace quon_test
{

constexpr std::size_t kElementsOffset = 24;
constexpr std::size_t kRegionPages = 16;

inline SYSTEM_INFO System()
{
    SYSTEM_INFO system{};
    ::GetSystemInfo(&system);
    return system;
}

inline std::size_t PageSize()
{
    return System().dwPageSize;
}

inline char* PageOf(const void* address)
{
    return reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(address) & ~std::uintptr_t{PageSize() - 1});
}

inline char* RegionOf(const void* address)
{
    const std::uintptr_t granularity = System().dwAllocationGranularity;
    return reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(address) & ~(granularity - 1));
}

struct PageHeader
{
    std::uint64_t capacity;
    std::uint64_t elementSize;
    std::uint32_t inUse;
};

inline PageHeader HeaderOf(const void* address)
{
    PageHeader header;
    std::memcpy(&header, PageOf(address), sizeof(header));
    return header;
}

struct Links
{
    void* previous;
    void* next;
};

inline Links LinksOf(const void* node)
{
    Links links;
    std::memcpy(&links, node, sizeof(links));
    return links;
}

/// The elements of a list from its head on. A previous link that does not lead back is a failure.
inline std::vector<void*> Walk(void* head)
{
    std::vector<void*> elements;
    void* previous = nullptr;
    for (void* element = head; element != nullptr; element = LinksOf(element).next)
    {
        EXPECT_EQ(LinksOf(element).previous, previous) << "element " << elements.size();
        if (elements.size() > 1000000 || LinksOf(element).previous != previous)
        {
            ADD_FAILURE() << "the list is broken";
            break;
        }
        elements.push_back(element);
        previous = element;
    }
    return elements;
}

/// The elements of a page in the order of their addresses.
inline std::vector<void*> ElementsOf(void* page)
{
    const PageHeader header = HeaderOf(page);
    std::vector<void*> elements;
    for (std::uint64_t i = 0; i < header.capacity; ++i)
    {
        elements.push_back(static_cast<char*>(page) + kElementsOffset + i * header.elementSize);
    }
    return elements;
}

inline void* AddPage(void** listHead, std::size_t elementSize)
{
    return PoolAddPage(listHead, &elementSize);
}

/// Takes all elements off the list.
inline std::vector<void*> AllocateAll(void** listHead)
{
    std::vector<void*> elements;
    while (*listHead != nullptr)
    {
        elements.push_back(PoolAllocate(listHead));
    }
    return elements;
}

inline void FreeAll(void** listHead, const std::vector<void*>& elements)
{
    for (void* element : elements)
    {
        PoolFree(listHead, element);
    }
}

/// Records the library's calls for regions while it lives, and lets them fail on demand. One at a time.
class RegionJournal
{
public:
    struct Request
    {
        void* address;
        SIZE_T size;
        DWORD type;
        DWORD protection;
        void* result;
    };
    struct Release
    {
        void* address;
        SIZE_T size;
        DWORD type;
    };

    RegionJournal()
    {
        s_fail = false;
        s_requests.clear();
        s_releases.clear();
    }

    void SetFail(bool fail) { s_fail = fail; }
    const std::vector<Request>& GetRequests() const { return s_requests; }
    const std::vector<Release>& GetReleases() const { return s_releases; }

private:
    static inline bool s_fail;
    static inline std::vector<Request> s_requests;
    static inline std::vector<Release> s_releases;

    static LPVOID WINAPI RecordingAlloc(LPVOID address, SIZE_T size, DWORD type, DWORD protection)
    {
        void* const result = s_fail ? nullptr : ::VirtualAlloc(address, size, type, protection);
        s_requests.push_back({address, size, type, protection, result});
        return result;
    }

    static BOOL WINAPI RecordingFree(LPVOID address, SIZE_T size, DWORD type)
    {
        s_releases.push_back({address, size, type});
        return ::VirtualFree(address, size, type);
    }

    ImportPatch<decltype(&::VirtualAlloc)> m_alloc{L"QuonWin32Utils.dll", "VirtualAlloc", &RecordingAlloc};
    ImportPatch<decltype(&::VirtualFree)> m_free{L"QuonWin32Utils.dll", "VirtualFree", &RecordingFree};
};

}  // namespace quon_test
