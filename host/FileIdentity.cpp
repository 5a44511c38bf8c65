#include "host/FileIdentity.h"

#include <afx.h>

#include "host/Console.h"
#include "host/FileHandle.h"

#include <optional>
#include <string>

namespace quonhost
{
namespace
{

// No access is asked for, so files that others have locked and folders can be opened too.
std::optional<BY_HANDLE_FILE_INFORMATION> IdentityOf(const wchar_t* path)
{
    const FileHandle file = OwnFile(::CreateFileW(path, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                                  nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    BY_HANDLE_FILE_INFORMATION information = {};
    if (!file || !::GetFileInformationByHandle(file.get(), &information))
    {
        return std::nullopt;
    }
    return information;
}

bool IsSame(const BY_HANDLE_FILE_INFORMATION& a, const BY_HANDLE_FILE_INFORMATION& b)
{
    return a.dwVolumeSerialNumber == b.dwVolumeSerialNumber && a.nFileIndexHigh == b.nFileIndexHigh &&
           a.nFileIndexLow == b.nFileIndexLow;
}

std::optional<BY_HANDLE_FILE_INFORMATION> IdentityOfStandard(DWORD standardHandle)
{
    const HANDLE file = ::GetStdHandle(standardHandle);
    BY_HANDLE_FILE_INFORMATION information = {};
    if (::GetFileType(file) != FILE_TYPE_DISK || !::GetFileInformationByHandle(file, &information))
    {
        return std::nullopt;
    }
    return information;
}

// The folder of a full path; empty for a root.
std::wstring ParentOf(std::wstring path)
{
    while (!path.empty() && path.back() == L'\\')
    {
        path.pop_back();
    }
    const size_t separator = path.find_last_of(L'\\');
    return separator == std::wstring::npos ? std::wstring() : path.substr(0, separator + 1);
}

}  // namespace

bool IsFolder(const wchar_t* path)
{
    const DWORD attributes = ::GetFileAttributesW(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool IsSameFile(const wchar_t* path, const wchar_t* other)
{
    const std::optional<BY_HANDLE_FILE_INFORMATION> identity = IdentityOf(path);
    const std::optional<BY_HANDLE_FILE_INFORMATION> otherIdentity = IdentityOf(other);
    return identity && otherIdentity && IsSame(*identity, *otherIdentity);
}

bool IsRedirectedTo(DWORD standardHandle, const wchar_t* path)
{
    const std::optional<BY_HANDLE_FILE_INFORMATION> identity = IdentityOfStandard(standardHandle);
    const std::optional<BY_HANDLE_FILE_INFORMATION> other = IdentityOf(path);
    return identity && other && IsSame(*identity, *other);
}

bool IsInside(const wchar_t* path, const wchar_t* folder)
{
    const std::optional<BY_HANDLE_FILE_INFORMATION> outer = IdentityOf(folder);
    if (!outer)
    {
        return false;
    }
    for (std::wstring inner = FullPath(path); !inner.empty(); inner = ParentOf(inner))
    {
        const std::optional<BY_HANDLE_FILE_INFORMATION> identity = IdentityOf(inner.c_str());
        if (identity && IsSame(*identity, *outer))
        {
            return true;
        }
    }
    return false;
}

}  // namespace quonhost
