// A host that does not link the library, for tests of how a process with it ends.
#pragma once

#include <windows.h>

#include <cwchar>
#include <vector>

namespace quon_test
{

/// The exit codes of such a host.
enum PluginHostCode : int
{
    kPluginMissing = 1,
    kPluginFailed = 2,
    kLibraryStaysLoaded = 3,
    kUnknownWay = 4,
    kPluginRight = 42  ///< Also what a function of the plug-in returns when it worked.
};

/// How the host ends once its plug-in has worked.
enum class PluginEnd
{
    kReturn,       ///< Returns from main, with the plug-in loaded.
    kExitProcess,  ///< Calls ExitProcess, with the plug-in loaded.
    kFree,         ///< Frees the plug-in, and with it the library, and returns.
    kFreeTwice     ///< Does all that two times.
};

/// What the host does for one word on its command line: calls functions of the plug-in and ends.
struct PluginWay
{
    const wchar_t* word;
    std::vector<const char*> functions;
    PluginEnd end;
};

/// Loads the plug-in and calls its functions. @return a PluginHostCode
inline int CallPlugin(const wchar_t* file, const std::vector<const char*>& functions)
{
    const HMODULE plugin = ::LoadLibraryW(file);
    if (plugin == nullptr)
    {
        return kPluginMissing;
    }
    for (const char* const name : functions)
    {
        using Function = int (*)();
        const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(plugin, name)));
        if (function == nullptr || function() != kPluginRight)
        {
            return kPluginFailed;
        }
    }
    return kPluginRight;
}

/// The same, and the plug-in goes, and with it the library.
inline int CallAndFreePlugin(const wchar_t* file, const std::vector<const char*>& functions)
{
    const int result = CallPlugin(file, functions);
    if (result != kPluginRight)
    {
        return result;
    }
    ::FreeLibrary(::GetModuleHandleW(file));
    return ::GetModuleHandleW(L"QuonWin32Utils.dll") == nullptr ? kPluginRight : kLibraryStaysLoaded;
}

/// The whole of the host: goes the way that the last word of the command line names. @return the exit code
inline int RunPluginHost(const wchar_t* file, const std::vector<PluginWay>& ways)
{
    const wchar_t* const word = std::wcsrchr(::GetCommandLineW(), L' ') + 1;
    for (const PluginWay& way : ways)
    {
        if (std::wcscmp(way.word, word) != 0)
        {
            continue;
        }
        switch (way.end)
        {
            case PluginEnd::kReturn:
                return CallPlugin(file, way.functions);
            case PluginEnd::kExitProcess:
                ::ExitProcess(static_cast<UINT>(CallPlugin(file, way.functions)));
            case PluginEnd::kFree:
                return CallAndFreePlugin(file, way.functions);
            case PluginEnd::kFreeTwice:
            {
                const int first = CallAndFreePlugin(file, way.functions);
                return first == kPluginRight ? CallAndFreePlugin(file, way.functions) : first;
            }
        }
    }
    return kUnknownWay;
}

}  // namespace quon_test
