// Replaces one function that a loaded DLL imports, for as long as an object lives.
#pragma once

#include <afx.h>

#include <cstring>
#include <stdexcept>
#include <string>
#include <type_traits>

namespace quon_test
{

/// Swaps the entry for `function` in the import table of the loaded module `module` and puts the old one back at the
/// end of its life. The replacement sees exactly what the module passes; `Original()` is the function that stood there.
///
/// ```cpp
/// ImportPatch<decltype(&::CreateFileW)> patch(L"QuonWin32Utils.dll", "CreateFileW", &RecordingCreateFile);
/// ```
/// Patches of the same entry nest. An import that the module does not have is an error: the test would prove nothing.
template <typename Function>
class ImportPatch
{
    static_assert(std::is_pointer_v<Function> && std::is_function_v<std::remove_pointer_t<Function>>);

public:
    ImportPatch(const wchar_t* module, const char* function, Function replacement)
        : m_slot(FindSlot(::GetModuleHandleW(module), function))
    {
        if (m_slot == nullptr)
        {
            throw std::runtime_error(std::string("the module does not import ") + function);
        }
        m_original = Swap(reinterpret_cast<void*>(replacement));
    }

    ~ImportPatch() { Swap(m_original); }

    ImportPatch(const ImportPatch&) = delete;
    ImportPatch& operator=(const ImportPatch&) = delete;

    Function Original() const { return reinterpret_cast<Function>(m_original); }

private:
    static void** FindSlot(HMODULE module, const char* function)
    {
        if (module == nullptr)
        {
            return nullptr;
        }
        auto* base = reinterpret_cast<unsigned char*>(module);
        auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
        auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const IMAGE_DATA_DIRECTORY& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
        if (directory.VirtualAddress == 0)
        {
            return nullptr;
        }
        for (auto* imported = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
             imported->Name != 0; ++imported)
        {
            auto* name = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imported->OriginalFirstThunk);
            auto* address = reinterpret_cast<IMAGE_THUNK_DATA*>(base + imported->FirstThunk);
            for (; name->u1.AddressOfData != 0; ++name, ++address)
            {
                if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal))
                {
                    continue;
                }
                auto* entry = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(base + name->u1.AddressOfData);
                if (std::strcmp(reinterpret_cast<const char*>(entry->Name), function) == 0)
                {
                    return reinterpret_cast<void**>(&address->u1.Function);
                }
            }
        }
        return nullptr;
    }

    void* Swap(void* function)
    {
        DWORD protection = 0;
        ::VirtualProtect(m_slot, sizeof(void*), PAGE_READWRITE, &protection);
        void* const previous = *m_slot;
        *m_slot = function;
        ::VirtualProtect(m_slot, sizeof(void*), protection, &protection);
        return previous;
    }

    void** m_slot;
    void* m_original = nullptr;
};

}  // namespace quon_test
