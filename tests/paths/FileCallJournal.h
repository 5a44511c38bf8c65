// Watches the calls by which the library changes the file system, and makes chosen ones fail.
#pragma once

#include <afx.h>

#include <direct.h>
#include <io.h>

#include <functional>
#include <string>
#include <vector>

#include "helpers/ImportPatch.h"

namespace quon_test
{

/// One at a time. A call is written down as its name and its arguments, "CopyFileW a b 1"; null is "null". It goes on
/// to the operating system unless `fails` says otherwise.
class FileCallJournal
{
public:
    FileCallJournal() { s_active = this; }
    ~FileCallJournal() { s_active = nullptr; }
    FileCallJournal(const FileCallJournal&) = delete;
    FileCallJournal& operator=(const FileCallJournal&) = delete;

    using Calls = std::vector<std::wstring>;

    const Calls& All() const { return m_calls; }

    /// The calls of one function, without its name.
    Calls Of(const std::wstring& function) const
    {
        Calls arguments;
        for (const std::wstring& call : m_calls)
        {
            if (call.compare(0, function.size() + 1, function + L" ") == 0)
            {
                arguments.push_back(call.substr(function.size() + 1));
            }
        }
        return arguments;
    }

    void Clear() { m_calls.clear(); }

    /// Tells which calls fail without reaching the system.
    std::function<bool(const std::wstring& call)> fails = [](const std::wstring&) { return false; };

private:
    static std::wstring Shown(const wchar_t* text) { return text == nullptr ? L"null" : text; }

    // Whether the call may go on.
    static bool Enter(const std::wstring& call)
    {
        s_active->m_calls.push_back(call);
        if (!s_active->fails(call))
        {
            return true;
        }
        SetLastError(ERROR_ACCESS_DENIED);
        return false;
    }

    static DWORD WINAPI GetCurrent(DWORD size, LPWSTR text)
    {
        return Enter(L"GetCurrentDirectoryW " + std::to_wstring(size)) ? s_active->m_getCurrent.Original()(size, text)
                                                                       : 0;
    }
    static BOOL WINAPI SetCurrent(LPCWSTR path)
    {
        return Enter(L"SetCurrentDirectoryW " + Shown(path)) ? s_active->m_setCurrent.Original()(path) : FALSE;
    }
    static int __cdecl ChangeFolder(const wchar_t* path)
    {
        return Enter(L"_wchdir " + Shown(path)) ? s_active->m_changeFolder.Original()(path) : -1;
    }
    static int __cdecl Access(const wchar_t* path, int mode)
    {
        return Enter(L"_waccess " + Shown(path) + L" " + std::to_wstring(mode))
                   ? s_active->m_access.Original()(path, mode)
                   : -1;
    }
    static BOOL WINAPI Create(LPCWSTR path, LPSECURITY_ATTRIBUTES security)
    {
        return Enter(L"CreateDirectoryW " + Shown(path) + (security == nullptr ? L"" : L" secured"))
                   ? s_active->m_create.Original()(path, security)
                   : FALSE;
    }
    static BOOL WINAPI Remove(LPCWSTR path)
    {
        return Enter(L"RemoveDirectoryW " + Shown(path)) ? s_active->m_remove.Original()(path) : FALSE;
    }
    static BOOL WINAPI Copy(LPCWSTR source, LPCWSTR target, BOOL failIfExists)
    {
        return Enter(L"CopyFileW " + Shown(source) + L" " + Shown(target) + L" " + std::to_wstring(failIfExists))
                   ? s_active->m_copy.Original()(source, target, failIfExists)
                   : FALSE;
    }
    static BOOL WINAPI Delete(LPCWSTR path)
    {
        return Enter(L"DeleteFileW " + Shown(path)) ? s_active->m_delete.Original()(path) : FALSE;
    }
    static DWORD WINAPI GetAttributes(LPCWSTR path)
    {
        return Enter(L"GetFileAttributesW " + Shown(path)) ? s_active->m_getAttributes.Original()(path)
                                                           : INVALID_FILE_ATTRIBUTES;
    }
    static BOOL WINAPI SetAttributes(LPCWSTR path, DWORD attributes)
    {
        return Enter(L"SetFileAttributesW " + Shown(path) + L" " + std::to_wstring(attributes))
                   ? s_active->m_setAttributes.Original()(path, attributes)
                   : FALSE;
    }

    template <typename Function>
    using Patch = ImportPatch<Function>;
    static constexpr const wchar_t* kModule = L"QuonWin32Utils.dll";

    static inline FileCallJournal* s_active = nullptr;

    Calls m_calls;
    Patch<decltype(&::GetCurrentDirectoryW)> m_getCurrent{kModule, "GetCurrentDirectoryW", &GetCurrent};
    Patch<decltype(&::SetCurrentDirectoryW)> m_setCurrent{kModule, "SetCurrentDirectoryW", &SetCurrent};
    Patch<decltype(&::_wchdir)> m_changeFolder{kModule, "_wchdir", &ChangeFolder};
    Patch<decltype(&::_waccess)> m_access{kModule, "_waccess", &Access};
    Patch<decltype(&::CreateDirectoryW)> m_create{kModule, "CreateDirectoryW", &Create};
    Patch<decltype(&::RemoveDirectoryW)> m_remove{kModule, "RemoveDirectoryW", &Remove};
    Patch<decltype(&::CopyFileW)> m_copy{kModule, "CopyFileW", &Copy};
    Patch<decltype(&::DeleteFileW)> m_delete{kModule, "DeleteFileW", &Delete};
    Patch<decltype(&::GetFileAttributesW)> m_getAttributes{kModule, "GetFileAttributesW", &GetAttributes};
    Patch<decltype(&::SetFileAttributesW)> m_setAttributes{kModule, "SetFileAttributesW", &SetAttributes};
};

/// The process's current folder, put back at the end of a test.
class CurrentFolder
{
public:
    CurrentFolder() : m_before(Get()) {}
    ~CurrentFolder() { SetCurrentDirectoryW(m_before.c_str()); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

    static std::wstring Get()
    {
        wchar_t text[1000] = {};
        GetCurrentDirectoryW(1000, text);
        return text;
    }

private:
    std::wstring m_before;
};

}  // namespace quon_test
