// Operator new of a program or DLL that links the framework. It is linked into each such module, as the framework's
// import library brings it along: so the standard containers of that module report short memory with it too.
#include <afx.h>

#include <cstdlib>
#include <new>

void* operator new(std::size_t size)
{
    for (;;)
    {
        if (void* const memory = std::malloc(size == 0 ? 1 : size))
        {
            return memory;
        }
        if (AfxGetNewHandler()(size) == 0)
        {
            AfxThrowMemoryException();
        }
    }
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}
