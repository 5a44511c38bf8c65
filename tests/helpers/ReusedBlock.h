// Makes the allocator give an address out again at a moment that the test controls.
#pragma once

#include <afx.h>

#include <cstddef>
#include <cstdlib>
#include <mutex>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

namespace quon_test
{

/// The first block that the library allocates on this thread while it lives. As soon as the library has freed it, on
/// any thread, the next allocation of the same size on this thread gets it again; until then nobody can read or write
/// it. One at a time. The library must have freed the block when the object goes.
class ReusedBlock
{
public:
    ReusedBlock()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active = this;
    }
    ~ReusedBlock()
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        s_active = nullptr;
        if (m_isFree)
        {
            ::VirtualFree(m_block, 0, MEM_RELEASE);
        }
        ::CloseHandle(m_freed);
    }
    ReusedBlock(const ReusedBlock&) = delete;
    ReusedBlock& operator=(const ReusedBlock&) = delete;

    /// The block, null before the first allocation.
    void* Address() const { return m_block; }

    /// Waits until the library has freed the block. @return whether it has
    bool WaitUntilFree() const { return ::WaitForSingleObject(m_freed, 60000) == WAIT_OBJECT_0; }

    /// How often the block was given out again.
    int Reuses() const { return m_reuses; }

private:
    static void* __cdecl Allocate(std::size_t size)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        return s_active != nullptr && s_active->m_thread == ::GetCurrentThreadId() ? s_active->AllocateOrReuse(size)
                                                                                   : std::malloc(size);
    }

    static void __cdecl Free(void* block)
    {
        const std::lock_guard<std::mutex> lock(s_mutex);
        if (block == nullptr || s_active == nullptr || block != s_active->m_block)
        {
            std::free(block);
            return;
        }
        s_active->m_isFree = true;
        s_active->Protect(PAGE_NOACCESS);
        ::SetEvent(s_active->m_freed);
    }

    void* AllocateOrReuse(std::size_t size)
    {
        if (m_isFree && size == m_size)
        {
            m_isFree = false;
            Protect(PAGE_READWRITE);
            ::ResetEvent(m_freed);
            ++m_reuses;
            return m_block;
        }
        if (m_block != nullptr)
        {
            return std::malloc(size);
        }
        m_block = ::VirtualAlloc(nullptr, size, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
        m_size = size;
        return m_block;
    }

    void Protect(DWORD protection) const
    {
        DWORD previous = 0;
        ::VirtualProtect(m_block, m_size, protection, &previous);
    }

    // Other threads of the library allocate and free while an object comes and goes.
    static inline std::mutex s_mutex;
    static inline ReusedBlock* s_active = nullptr;

    const DWORD m_thread = ::GetCurrentThreadId();
    const HANDLE m_freed = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
    void* m_block = nullptr;
    std::size_t m_size = 0;
    bool m_isFree = false;
    int m_reuses = 0;
    // The allocator's calls may be in either module.
    ImportPatch<void*(__cdecl*)(std::size_t)> m_libraryMalloc{kLibraryModule, "malloc", &Allocate};
    ImportPatch<void(__cdecl*)(void*)> m_libraryFree{kLibraryModule, "free", &Free};
    ImportPatch<void*(__cdecl*)(std::size_t)> m_frameworkMalloc{kFrameworkModule, "malloc", &Allocate};
    ImportPatch<void(__cdecl*)(void*)> m_frameworkFree{kFrameworkModule, "free", &Free};
};

}  // namespace quon_test
