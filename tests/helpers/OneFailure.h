// The system functions that the library imports, and one of them that fails once.
#pragma once

#include <afx.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "helpers/ModuleNames.h"

namespace quon_test
{

struct Import
{
    std::string library;
    std::string function;
    void** slot;
};

/// Everything that the loaded module imports by name.
inline std::vector<Import> ImportsOf(const wchar_t* module)
{
    std::vector<Import> imports;
    auto* const base = reinterpret_cast<unsigned char*>(::GetModuleHandleW(module));
    if (base == nullptr)
    {
        throw std::runtime_error("the module is not loaded");
    }
    const auto* const dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    const auto* const nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto* from = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress); from->Name != 0;
         ++from)
    {
        const std::string library = reinterpret_cast<const char*>(base + from->Name);
        auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->OriginalFirstThunk);
        auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + from->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++address)
        {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
            {
                const auto* const entry = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
                imports.push_back({library, reinterpret_cast<const char*>(entry->Name),
                                   reinterpret_cast<void**>(&address->u1.Function)});
            }
        }
    }
    return imports;
}

/// Lets the next call of one import of the library return `result`, with `error` as the last error; the calls after it
/// reach the system again. Works for every function whose result is a number or a pointer: on this platform the caller
/// cleans up the arguments, whatever they are. One at a time.
class OneFailure
{
public:
    OneFailure(const char* function, std::uintptr_t result, DWORD error)
    {
        for (const Import& import : ImportsOf(kLibraryModule))
        {
            if (import.function == function)
            {
                s_slot = import.slot;
            }
        }
        if (s_slot == nullptr)
        {
            throw std::runtime_error(std::string("the library does not import ") + function);
        }
        s_result = result;
        s_error = error;
        s_wasCalled = false;
        s_original = *s_slot;
        Put(reinterpret_cast<void*>(&Fail));
    }
    ~OneFailure()
    {
        Put(s_original);
        s_slot = nullptr;
    }
    OneFailure(const OneFailure&) = delete;
    OneFailure& operator=(const OneFailure&) = delete;

    bool WasCalled() const { return s_wasCalled; }

private:
    static std::uintptr_t WINAPI Fail()
    {
        s_wasCalled = true;
        Put(s_original);
        ::SetLastError(s_error);
        return s_result;
    }

    static void Put(void* function)
    {
        DWORD protection = 0;
        ::VirtualProtect(s_slot, sizeof(void*), PAGE_READWRITE, &protection);
        *s_slot = function;
        ::VirtualProtect(s_slot, sizeof(void*), protection, &protection);
    }

    static inline void** s_slot = nullptr;
    static inline void* s_original = nullptr;
    static inline std::uintptr_t s_result = 0;
    static inline DWORD s_error = 0;
    static inline volatile bool s_wasCalled = false;
};

}  // namespace quon_test
