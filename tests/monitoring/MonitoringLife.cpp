// A host whose plug-in watches a file, and which then ends in the way that its argument tells: with the code 42 when
// everything worked.
#include <windows.h>

#include <cwchar>

namespace
{

constexpr int kRight = 42;
constexpr int kNoPlugin = 1;
constexpr int kPluginFailed = 2;
constexpr int kStillLoaded = 3;
constexpr int kUnknownWay = 4;

using Function = int (*)();

HMODULE plugin;

bool Load()
{
    plugin = ::LoadLibraryW(L"monitoring_life_plugin.dll");
    return plugin != nullptr;
}

int Call(const char* name)
{
    const auto function = reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(plugin, name)));
    return function != nullptr ? function() : 0;
}

// Loads the plug-in, lets it watch and shut the server down, and unloads it and with it the library.
int LoadAndFree()
{
    if (!Load())
    {
        return kNoPlugin;
    }
    if (Call("Watch") != kRight || Call("ShutDown") != kRight)
    {
        return kPluginFailed;
    }
    ::FreeLibrary(plugin);
    return ::GetModuleHandleW(L"QuonWin32Utils.dll") == nullptr ? kRight : kStillLoaded;
}

int LoadAndCall(const char* function)
{
    if (!Load())
    {
        return kNoPlugin;
    }
    return Call(function) == kRight ? kRight : kPluginFailed;
}

}  // namespace

int main()
{
    const wchar_t* const commandLine = ::GetCommandLineW();
    const wchar_t* const way = std::wcsrchr(commandLine, L' ') + 1;
    if (std::wcscmp(way, L"return") == 0)
    {
        return LoadAndCall("Watch");
    }
    if (std::wcscmp(way, L"exit") == 0)
    {
        ::ExitProcess(static_cast<UINT>(LoadAndCall("Watch")));
    }
    if (std::wcscmp(way, L"return-in-event") == 0)
    {
        return LoadAndCall("WatchAndWrite");
    }
    if (std::wcscmp(way, L"shutdown-return") == 0)
    {
        const int result = LoadAndCall("Watch");
        return result == kRight && Call("ShutDown") == kRight ? kRight : kPluginFailed;
    }
    if (std::wcscmp(way, L"free") == 0)
    {
        return LoadAndFree();
    }
    if (std::wcscmp(way, L"free-twice") == 0)
    {
        const int first = LoadAndFree();
        return first == kRight ? LoadAndFree() : first;
    }
    return kUnknownWay;
}
