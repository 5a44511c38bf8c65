// How a failed allocation is reported to the library's code.
#pragma once

#include <afx.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace quon_test
{

/// What operator new throws when there is no memory.
enum class ShortMemory
{
    Framework,  ///< CMemoryException*, as in every module that links the framework
    Standard    ///< std::bad_alloc, as when another operator new is linked or the C++ run-time throws by itself
};

/// The kind of this run: the framework's, unless the environment says QUON_SHORT_MEMORY=standard. The programs that
/// make memory run out are run with each.
inline ShortMemory ShortMemoryOfThisRun()
{
    const char* const chosen = std::getenv("QUON_SHORT_MEMORY");
    return chosen != nullptr && std::strcmp(chosen, "standard") == 0 ? ShortMemory::Standard : ShortMemory::Framework;
}

/// While it lives, operator new of the framework's modules reports short memory to the calling thread as `kind` says.
class ShortMemoryReport
{
public:
    explicit ShortMemoryReport(ShortMemory kind)
        : m_previous(::AfxSetNewHandler(kind == ShortMemory::Standard ? &ThrowBadAlloc : &::AfxNewHandler))
    {
    }
    ~ShortMemoryReport() { ::AfxSetNewHandler(m_previous); }
    ShortMemoryReport(const ShortMemoryReport&) = delete;
    ShortMemoryReport& operator=(const ShortMemoryReport&) = delete;

private:
    static int __cdecl ThrowBadAlloc(std::size_t) { throw std::bad_alloc(); }

    _PNH m_previous;
};

/// Runs `action`, which must find memory short.
/// @return whether it ended with the exception of this run
template <typename Action>
bool ThrowsShortMemory(Action action)
{
    try
    {
        action();
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
        return ShortMemoryOfThisRun() == ShortMemory::Framework;
    }
    catch (const std::bad_alloc&)
    {
        return ShortMemoryOfThisRun() == ShortMemory::Standard;
    }
    return false;
}

}  // namespace quon_test
