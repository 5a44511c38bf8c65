#include "paths/WellKnownFolders.h"

#include "paths/QuonPath.h"

#include <stdlib.h>
#include <wchar.h>

#include <algorithm>
#include <memory>

namespace
{

/// The length of the buffer that Windows is told: a path of MAX_PATH characters and its terminating zero.
constexpr DWORD kBufferLength = 261;
/// One more, so that a text that fills the buffer without a zero still ends.
constexpr int kBufferRoom = kBufferLength + 1;

/// The most of a registry value that is read.
constexpr int kMaxValue = 260;
static_assert(QuonShellFolderBufferSize == kMaxValue + 2);
static_assert(QuonShellFolderBufferSize <= kBufferRoom, "ReadShellFolder() writes into the text of a path");

const wchar_t kShellFoldersKey[] = L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";

struct FreeRuntimeMemory
{
    void operator()(wchar_t* memory) const { ::free(memory); }
};

/// Windows answers with the length written, or with the length that it would need when it wrote nothing.
bool IsWritten(DWORD length)
{
    return length > 0 && length <= kBufferLength;
}

/// Writes a name that no file in the temporary folder has. Writes nothing on failure, not even the folder.
bool WriteTempFileName(wchar_t* out)
{
    wchar_t folder[kBufferRoom] = L"";
    if (!IsWritten(::GetTempPathW(kBufferLength, folder)))
    {
        return false;
    }
    folder[kBufferLength] = L'\0';
    const std::unique_ptr<wchar_t, FreeRuntimeMemory> name(::_wtempnam(folder, L"~"));
    if (name == nullptr)
    {
        return false;
    }
    const std::size_t length = wcsnlen(name.get(), kBufferLength);
    *std::copy_n(name.get(), length, out) = L'\0';
    return true;
}

/// Lets the source of the folder write to `out`, which has kBufferRoom characters.
/// @return whether the source says that it wrote.
bool WriteFolder(QuonFolderId folder, wchar_t* out)
{
    switch (folder)
    {
        case QuonFolderModuleFile:
        case QuonFolderModuleFolder:
            return IsWritten(::GetModuleFileNameW(nullptr, out, kBufferLength));
        case QuonFolderWindows:
            return IsWritten(::GetWindowsDirectoryW(out, kBufferLength));
        case QuonFolderSystem:
            return IsWritten(::GetSystemDirectoryW(out, kBufferLength));
        case QuonFolderTemp:
            return IsWritten(::GetTempPathW(kBufferLength, out));
        case QuonFolderCurrent:
            return IsWritten(::GetCurrentDirectoryW(kBufferLength, out));
        case QuonFolderDesktop:
            return ReadShellFolder(L"Desktop", out) == ERROR_SUCCESS;
        case QuonFolderFavorites:
            return ReadShellFolder(L"Favorites", out) == ERROR_SUCCESS;
        case QuonFolderTempFileName:
            return WriteTempFileName(out);
        default:
            return false;
    }
}

}  // namespace

void QuonPath::SetToFolder(QuonFolderId folder)
{
    if (folder < QuonFolderModuleFile || folder > QuonFolderTempFileName)
    {
        return;
    }
    // A source that fails writes nothing, and the text that stands in the buffer is the one that stays.
    wchar_t* const buffer = m_path.GetBuffer(kBufferLength);
    const bool written = WriteFolder(folder, buffer);
    if (written)
    {
        buffer[kBufferLength] = L'\0';
    }
    m_path.ReleaseBuffer();
    if (written && folder == QuonFolderModuleFolder)
    {
        RemoveLastComponent();
    }
}

namespace
{

/// Owns an open registry key.
class RegistryKey
{
public:
    explicit RegistryKey(HKEY key) : m_key(key) {}
    ~RegistryKey() { Close(); }
    RegistryKey(const RegistryKey&) = delete;
    RegistryKey& operator=(const RegistryKey&) = delete;

    HKEY Get() const { return m_key; }
    LONG Close()
    {
        const HKEY key = m_key;
        m_key = nullptr;
        return key == nullptr ? ERROR_SUCCESS : ::RegCloseKey(key);
    }

private:
    HKEY m_key;
};

/// Copies the text that stands in `bytes` bytes of a registry value, and ends it with a separator.
void CopyFolderValue(const wchar_t* value, DWORD bytes, wchar_t* out)
{
    // A value need not end in a zero: the bytes that were read bound it.
    const std::size_t length = wcsnlen(value, std::min<std::size_t>(bytes / sizeof(wchar_t), kMaxValue));
    wchar_t* end = std::copy_n(value, length, out);
    if (length == 0 || value[length - 1] != L'\\')
    {
        *end++ = L'\\';
    }
    *end = L'\0';
}

}  // namespace

LONG ReadShellFolder(const wchar_t* valueName, wchar_t* out)
{
    HKEY opened = nullptr;
    // Full access, although reading would do: an account that may not change the key is told the error, and callers
    // take that for a folder that is not there.
    const LONG openError = ::RegOpenKeyExW(HKEY_CURRENT_USER, kShellFoldersKey, 0, KEY_ALL_ACCESS, &opened);
    if (openError != ERROR_SUCCESS)
    {
        return openError;
    }
    RegistryKey key(opened);
    wchar_t value[kMaxValue] = L"";
    DWORD bytes = sizeof(value);
    const LONG readError =
        ::RegQueryValueExW(key.Get(), valueName, nullptr, nullptr, reinterpret_cast<BYTE*>(value), &bytes);
    if (readError != ERROR_SUCCESS)
    {
        key.Close();
        return readError;
    }
    CopyFolderValue(value, bytes, out);
    return key.Close();
}
