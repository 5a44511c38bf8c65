// The DLLs that tests patch or look at, by the names that they have with each compiler and framework.
#pragma once

#include <afx.h>

namespace quon_test
{

/// The library.
inline constexpr const wchar_t* kLibraryModule = L"QuonWin32Utils.dll";

// The stand-in marks its exports by this macro; the framework itself has none of that name.
#if defined(QUON_FRAMEWORK_API)
/// The framework.
inline constexpr const wchar_t* kFrameworkModule = L"QuonFramework.dll";
#elif defined(_DEBUG)
/// The framework.
inline constexpr const wchar_t* kFrameworkModule = L"mfc140ud.dll";
#else
/// The framework.
inline constexpr const wchar_t* kFrameworkModule = L"mfc140u.dll";
#endif

#if !defined(_MSC_VER)
/// The C run-time.
inline constexpr const wchar_t* kRunTimeModule = L"msvcrt.dll";
#elif defined(_DEBUG)
/// The C run-time.
inline constexpr const wchar_t* kRunTimeModule = L"ucrtbased.dll";
#else
/// The C run-time.
inline constexpr const wchar_t* kRunTimeModule = L"ucrtbase.dll";
#endif

/// Tests an imported library's name, as the import table has it: the C run-time, or a part of it under a name of its
/// own
/// ("api-ms-win-crt-heap-l1-1-0.dll").
inline bool IsRunTimeLibrary(const char* library)
{
    return ::_strnicmp(library, "api-ms-win-crt-", 15) == 0 || CString(library).CompareNoCase(kRunTimeModule) == 0;
}

}  // namespace quon_test
