// Counts what the library takes from and returns to its C run-time's heap.
#pragma once

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"

#include <cstdlib>
#include <set>

namespace quon_test
{

/// While it lives, counts the library's calls of malloc, realloc and free, and lets realloc fail on demand. One at a
/// time.
///
/// What the compiler's run-time needs to throw never fails: the exception's memory comes from malloc, and a few bytes
/// for each thread from realloc.
class AllocationCounter
{
public:
    AllocationCounter()
    {
        s_taken = 0;
        s_exhausted = false;
        s_live.clear();
    }

    /// Calls that took memory, growing a block included.
    int GetTaken() const { return s_taken; }

    /// Blocks that the library took since the counter began and has not returned.
    std::size_t GetLiveCount() const { return s_live.size(); }

    /// From now on realloc has no memory, or has it again.
    void SetExhausted(bool exhausted) { s_exhausted = exhausted; }

private:
    static constexpr std::size_t kThreadKeys = 2 * sizeof(void*);

    static inline int s_taken;
    static inline bool s_exhausted;
    static inline std::set<void*> s_live;

    static void* CountingMalloc(std::size_t size)
    {
        s_taken += 1;
        void* const block = std::malloc(size);
        s_live.insert(block);
        return block;
    }

    static void* CountingRealloc(void* block, std::size_t size)
    {
        if (s_exhausted && size > kThreadKeys)
        {
            return nullptr;
        }
        s_taken += 1;
        s_live.erase(block);
        void* const moved = std::realloc(block, size);
        s_live.insert(moved);
        return moved;
    }

    static void CountingFree(void* block)
    {
        s_live.erase(block);
        std::free(block);
    }

    ImportPatch<void* (*)(std::size_t)> m_malloc{kLibraryModule, "malloc", &CountingMalloc};
    ImportPatch<void* (*)(void*, std::size_t)> m_realloc{kLibraryModule, "realloc", &CountingRealloc};
    ImportPatch<void (*)(void*)> m_free{kLibraryModule, "free", &CountingFree};
};

}  // namespace quon_test
