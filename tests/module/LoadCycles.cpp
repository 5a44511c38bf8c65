// Loads and unloads a module that links the library, again and again, and counts the slots of thread-local storage that
// the process has left: LoadCycles MODULE ROUNDS [keep]. "keep" leaves the framework loaded all the time, as a host
// that uses it does. Ends with 0 when every round worked and no slot was lost. Links neither the library nor the
// framework.

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <vector>

namespace
{

constexpr int kAllRight = 0;
constexpr int kNotLoaded = 1;
constexpr int kWorkFailed = 2;
constexpr int kStaysLoaded = 3;
constexpr int kSlotsLost = 4;

int FreeSlots()
{
    std::vector<DWORD> slots;
    slots.reserve(2000);
    for (DWORD slot = ::TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = ::TlsAlloc())
    {
        slots.push_back(slot);
    }
    for (const DWORD slot : slots)
    {
        ::TlsFree(slot);
    }
    return static_cast<int>(slots.size());
}

int Round(const wchar_t* file)
{
    const HMODULE module = ::LoadLibraryW(file);
    if (module == nullptr)
    {
        return kNotLoaded;
    }
    using Function = int (*)();
    const auto work = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(module, "Work")));
    const bool worked = work == nullptr || work() != 0;
    ::FreeLibrary(module);
    if (!worked)
    {
        return kWorkFailed;
    }
    return ::GetModuleHandleW(L"QuonWin32Utils.dll") == nullptr ? kAllRight : kStaysLoaded;
}

}  // namespace

int wmain(int count, wchar_t** words)
{
    if (count < 3)
    {
        return kWorkFailed;
    }
    const bool keep = count > 3 && std::wcscmp(words[3], L"keep") == 0;
    if (keep && ::LoadLibraryW(L"QuonFramework.dll") == nullptr)
    {
        return kNotLoaded;
    }
    const int slots = FreeSlots();
    for (long rounds = std::wcstol(words[2], nullptr, 10); rounds > 0; --rounds)
    {
        const int result = Round(words[1]);
        if (result != kAllRight)
        {
            return result;
        }
    }
    if ((::GetModuleHandleW(L"QuonFramework.dll") != nullptr) != keep)
    {
        return kStaysLoaded;
    }
    // The first round may load a library of the system that stays, and that takes a slot.
    const int lost = slots - FreeSlots();
    if (lost > 1)
    {
        std::printf("%d slots of thread-local storage are lost\n", lost);
        return kSlotsLost;
    }
    return kAllRight;
}
