// What the compiler's run-time library brings into every program and DLL, as far as the programs of this check need it:
// entry point, initialisers, memory, the roots of exceptions and of type information.

#include <windows.h>

#include <new>
#include <stdexcept>
#include <stdlib.h>
#include <string>
#include <typeinfo>

using Function = void(__cdecl*)();

extern "C" int _fltused = 0x9875;

extern "C" void __cdecl _purecall()
{
    ::ExitProcess(3);
}

// The linker sorts the sections by name: the addresses of all initialisers lie between these two.
#pragma section(".CRT$XCA", long, read)
#pragma section(".CRT$XCZ", long, read)
__declspec(allocate(".CRT$XCA")) Function g_firstInitialiser = nullptr;
__declspec(allocate(".CRT$XCZ")) Function g_lastInitialiser = nullptr;

namespace
{

constexpr int kMaxAtExit = 4096;
Function g_atExit[kMaxAtExit];
int g_atExitCount = 0;

void RunInitialisers()
{
    for (Function* initialiser = &g_firstInitialiser + 1; initialiser < &g_lastInitialiser; ++initialiser)
    {
        if (*initialiser != nullptr)
        {
            (*initialiser)();
        }
    }
}

void RunAtExit()
{
    while (g_atExitCount > 0)
    {
        g_atExit[--g_atExitCount]();
    }
}

}  // namespace

// The C run-time's function of the name is imported from its DLL; this one is the module's own.
int RegisterAtExit(Function function) __asm__("atexit");
int RegisterAtExit(Function function)
{
    if (g_atExitCount == kMaxAtExit)
    {
        return 1;
    }
    g_atExit[g_atExitCount++] = function;
    return 0;
}

#if defined(QUON_ABI_DLL)

extern "C" BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved);

extern "C" BOOL WINAPI Start(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH)
    {
        RunInitialisers();
    }
    const BOOL result = DllMain(instance, reason, reserved);
    if (reason == DLL_PROCESS_DETACH)
    {
        RunAtExit();
    }
    return result;
}

#else

// The parameters are the caller's to remove: a main without any is called in the same way.
int Main(int, char**) __asm__("main");
extern "C" __declspec(dllimport) int __cdecl _configure_narrow_argv(int);
extern "C" __declspec(dllimport) int* __cdecl __p___argc();
extern "C" __declspec(dllimport) char*** __cdecl __p___argv();

extern "C" void Start()
{
    _configure_narrow_argv(1);
    RunInitialisers();
    const int result = Main(*__p___argc(), *__p___argv());
    RunAtExit();
    ::ExitProcess(static_cast<UINT>(result));
}

#endif

// Memory. All modules share the heap of the C run-time. Operator new itself is the framework's (framework/new/).

void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    return malloc(size == 0 ? 1 : size);
}

void* operator new(size_t size, std::align_val_t)
{
    return operator new(size);
}

void* operator new[](size_t size)
{
    return operator new(size);
}

void* operator new[](size_t size, const std::nothrow_t& mark) noexcept
{
    return operator new(size, mark);
}

void operator delete(void* block, std::align_val_t) noexcept
{
    free(block);
}

void operator delete[](void* block) noexcept
{
    free(block);
}

void operator delete[](void* block, size_t) noexcept
{
    free(block);
}

// The table of type information: every class refers to it, nobody here calls through it.
extern const void* const g_typeInfoTable[2] __asm__("??_7type_info@@6B@");
const void* const g_typeInfoTable[2] = {};

namespace std
{

const nothrow_t nothrow{};

exception::exception() noexcept : _Data{} {}
exception::exception(const char* what) noexcept : _Data{what, false} {}
exception::exception(const exception& other) noexcept : _Data(other._Data) {}
exception::~exception() noexcept {}

const char* exception::what() const
{
    return _Data._What != nullptr ? _Data._What : "exception";
}

bad_alloc::bad_alloc() noexcept {}
bad_array_new_length::bad_array_new_length() noexcept {}

#if !defined(QUON_ABI_WHOLE_STANDARD_LIBRARY)

// What LLVM's standard library keeps in its binary.

template class basic_string<wchar_t>;

size_t __next_prime(size_t number)
{
    for (number = number < 3 ? 2 : number | 1;; number += 2)
    {
        bool isPrime = true;
        for (size_t factor = 3; isPrime && factor * factor <= number; factor += 2)
        {
            isPrime = number % factor != 0;
        }
        if (isPrime)
        {
            return number;
        }
    }
}

#endif

}  // namespace std
