// Memory that runs out at one place of an operation, and counts of what is taken from the heap and of open handles.
#pragma once

#include <afx.h>

#include <malloc.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "helpers/ShortMemory.h"

namespace quon_test
{

/// Lets one allocation of the library or of the framework fail, the one after `successes` others, whichever function it
/// asks: malloc, calloc or realloc. Only on the thread that made it, and reported by operator new as `kind` says. One
/// at a time.
class NthFailure
{
public:
    explicit NthFailure(int successes, ShortMemory kind = ShortMemoryOfThisRun())
        : m_thread(::GetCurrentThreadId()), m_left(successes), m_report(kind)
    {
        s_active = this;
    }
    ~NthFailure() { s_active = nullptr; }
    NthFailure(const NthFailure&) = delete;
    NthFailure& operator=(const NthFailure&) = delete;

    /// Whether that allocation was asked for.
    bool Failed() const { return m_left < 0; }

private:
    using Malloc = void*(__cdecl*)(std::size_t);
    using Calloc = void*(__cdecl*)(std::size_t, std::size_t);
    using Realloc = void*(__cdecl*)(void*, std::size_t);

    // What the compiler's run-time takes once for each thread, and does not survive without.
    static constexpr std::size_t kThreadKeys = 2 * sizeof(void*);

    static bool IsRefused()
    {
        NthFailure* const active = s_active;
        return active != nullptr && ::GetCurrentThreadId() == active->m_thread && active->m_left-- == 0;
    }

    static void* __cdecl Take(std::size_t size) { return IsRefused() ? nullptr : std::malloc(size); }
    static void* __cdecl TakeZeroed(std::size_t count, std::size_t size)
    {
        return IsRefused() ? nullptr : std::calloc(count, size);
    }
    static void* __cdecl TakeAgain(void* block, std::size_t size)
    {
        return size > kThreadKeys && IsRefused() ? nullptr : std::realloc(block, size);
    }

    static inline NthFailure* s_active = nullptr;

    DWORD m_thread;
    int m_left;
    ShortMemoryReport m_report;
    ImportPatch<Malloc> m_libraryNew{kLibraryModule, "malloc", &Take};
    ImportPatch<Calloc> m_libraryZeroed{kLibraryModule, "calloc", &TakeZeroed};
    ImportPatch<Realloc> m_libraryAgain{kLibraryModule, "realloc", &TakeAgain};
    ImportPatch<Malloc> m_frameworkNew{kFrameworkModule, "malloc", &Take};
    ImportPatch<Calloc> m_frameworkZeroed{kFrameworkModule, "calloc", &TakeZeroed};
    ImportPatch<Realloc> m_frameworkAgain{kFrameworkModule, "realloc", &TakeAgain};
};

/// The blocks in use on the heap of the C run-time, which the library, the framework and the test share.
inline std::size_t BlocksInUse()
{
    const HANDLE heap = reinterpret_cast<HANDLE>(::_get_heap_handle());
    std::size_t count = 0;
    PROCESS_HEAP_ENTRY entry = {};
    ::HeapLock(heap);
    while (::HeapWalk(heap, &entry))
    {
        count += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
    }
    ::HeapUnlock(heap);
    return count;
}

/// The handles that this process has open, among the first thousand; new ones come from the low end. Wine does not
/// count them for GetProcessHandleCount, so each is asked for.
inline std::size_t HandlesOpen()
{
    constexpr std::uintptr_t kHandles = 1000;
    std::size_t count = 0;
    for (std::uintptr_t i = 1; i <= kHandles; ++i)
    {
        DWORD flags = 0;
        count += ::GetHandleInformation(reinterpret_cast<HANDLE>(4 * i), &flags) != FALSE ? 1 : 0;
    }
    return count;
}

}  // namespace quon_test
