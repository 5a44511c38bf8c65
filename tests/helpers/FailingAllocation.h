// Makes memory run out at a chosen place.
#pragma once

#include <cstddef>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "helpers/ShortMemory.h"

namespace quon_test
{

/// Lets one allocation of the library or of the framework fail: the one after `successes` others. One at a time.
/// Operator new reports it to the thread that made the object as `kind` says, to others as the framework does.
class FailingAllocation
{
public:
    explicit FailingAllocation(int successes, ShortMemory kind = ShortMemoryOfThisRun())
        : m_left(successes), m_report(kind)
    {
        s_active = this;
    }
    ~FailingAllocation() { s_active = nullptr; }
    FailingAllocation(const FailingAllocation&) = delete;
    FailingAllocation& operator=(const FailingAllocation&) = delete;

    /// Whether that allocation was asked for.
    bool Failed() const { return m_left < 0; }

private:
    // Only the n-th one: what handles the failure may allocate again.
    static void* __cdecl Allocate(std::size_t size)
    {
        return s_active->m_left-- == 0 ? nullptr : s_active->m_library.Original()(size);
    }

    static inline FailingAllocation* s_active = nullptr;
    int m_left;
    ShortMemoryReport m_report;
    ImportPatch<void*(__cdecl*)(std::size_t)> m_library{kLibraryModule, "malloc", &Allocate};
    ImportPatch<void*(__cdecl*)(std::size_t)> m_framework{kFrameworkModule, "malloc", &Allocate};
};

}  // namespace quon_test
