// Memory that runs out at every place of an operation in turn, and a count of what the operation left on the heap.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdlib>
#include <functional>
#include <set>

#include "support/ImportPatch.h"

namespace quon_test
{

/// Lets one allocation of the library or of the framework fail, the one after `successes` others, whichever function it
/// asks: malloc, calloc or realloc. Counts what was taken and not returned by either. One at a time, for one thread.
class NthFailure
{
public:
    explicit NthFailure(int successes) : m_thread(::GetCurrentThreadId()), m_left(successes)
    {
        s_active = this;
        Patch(L"QuonWin32Utils.dll", m_library);
        Patch(L"QuonFramework.dll", m_framework);
    }
    ~NthFailure()
    {
        m_library.Reset();
        m_framework.Reset();
        s_active = nullptr;
    }
    NthFailure(const NthFailure&) = delete;
    NthFailure& operator=(const NthFailure&) = delete;

    /// Whether that allocation was asked for.
    bool Failed() const { return m_left < 0; }

    /// Blocks taken while this object lives and not returned yet.
    std::size_t LiveBlocks() const { return m_live.size(); }

private:
    using Malloc = void*(__cdecl*)(std::size_t);
    using Calloc = void*(__cdecl*)(std::size_t, std::size_t);
    using Realloc = void*(__cdecl*)(void*, std::size_t);
    using Free = void(__cdecl*)(void*);

    struct Patches
    {
        std::unique_ptr<ImportPatch<Malloc>> malloc;
        std::unique_ptr<ImportPatch<Calloc>> calloc;
        std::unique_ptr<ImportPatch<Realloc>> realloc;
        std::unique_ptr<ImportPatch<Free>> free;

        void Reset()
        {
            free.reset();
            realloc.reset();
            calloc.reset();
            malloc.reset();
        }
    };

    // What the compiler's run-time takes for each thread that throws, and does not survive without.
    static constexpr std::size_t kThreadKeys = 2 * sizeof(void*);

    static void Patch(const wchar_t* module, Patches& patches)
    {
        patches.malloc = std::make_unique<ImportPatch<Malloc>>(module, "malloc", &TakeNew);
        patches.calloc = std::make_unique<ImportPatch<Calloc>>(module, "calloc", &TakeZeroed);
        patches.realloc = std::make_unique<ImportPatch<Realloc>>(module, "realloc", &TakeAgain);
        patches.free = std::make_unique<ImportPatch<Free>>(module, "free", &Return);
    }

    static bool IsRefused(std::size_t size)
    {
        return ::GetCurrentThreadId() == s_active->m_thread && size > kThreadKeys && s_active->m_left-- == 0;
    }

    static void* Keep(void* block)
    {
        if (block != nullptr && ::GetCurrentThreadId() == s_active->m_thread)
        {
            s_active->m_live.insert(block);
        }
        return block;
    }

    static void* __cdecl TakeNew(std::size_t size) { return IsRefused(size) ? nullptr : Keep(std::malloc(size)); }
    static void* __cdecl TakeZeroed(std::size_t count, std::size_t size)
    {
        return IsRefused(count * size) ? nullptr : Keep(std::calloc(count, size));
    }
    static void* __cdecl TakeAgain(void* block, std::size_t size)
    {
        if (IsRefused(size))
        {
            return nullptr;
        }
        s_active->m_live.erase(block);
        return Keep(std::realloc(block, size));
    }
    static void __cdecl Return(void* block)
    {
        s_active->m_live.erase(block);
        std::free(block);
    }

    static inline NthFailure* s_active = nullptr;

    DWORD m_thread;
    int m_left;
    std::set<void*> m_live;
    Patches m_library;
    Patches m_framework;
};

/// What became of an operation.
enum class Outcome
{
    returned,
    threwFrameworkMemory,  ///< CMemoryException*
    threwStandardMemory,   ///< std::bad_alloc
    threwComMemory,        ///< _com_error with E_OUTOFMEMORY
    threwStatus,           ///< the status text of the XML functions
    threwOther
};

}  // namespace quon_test
