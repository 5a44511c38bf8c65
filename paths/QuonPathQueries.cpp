// What asks the operating system about paths: the file queries, and the two joins that the shell does.
#include "paths/QuonPath.h"

#include <io.h>
#include <shlwapi.h>

#include <cstddef>

static_assert(sizeof(QuonFileInfo) == sizeof(WIN32_FILE_ATTRIBUTE_DATA));
static_assert(offsetof(QuonFileInfo, attributes) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, dwFileAttributes));
static_assert(offsetof(QuonFileInfo, creationTime) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftCreationTime));
static_assert(offsetof(QuonFileInfo, lastAccessTime) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftLastAccessTime));
static_assert(offsetof(QuonFileInfo, lastWriteTime) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, ftLastWriteTime));
static_assert(offsetof(QuonFileInfo, sizeHigh) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, nFileSizeHigh));
static_assert(offsetof(QuonFileInfo, sizeLow) == offsetof(WIN32_FILE_ATTRIBUTE_DATA, nFileSizeLow));

namespace
{

/// Owns the handle of an open file; `INVALID_HANDLE_VALUE` is none.
class FileHandle
{
public:
    explicit FileHandle(HANDLE handle) : m_handle(handle) {}
    ~FileHandle()
    {
        if (IsOpen())
        {
            ::CloseHandle(m_handle);
        }
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;

    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    HANDLE Get() const { return m_handle; }

private:
    HANDLE m_handle;
};

bool ReadSize(HANDLE file, QuonFileInfo& info)
{
    info.sizeLow = ::GetFileSize(file, &info.sizeHigh);
    // The low word of a size may be this very number: only the error tells it from a failure.
    return info.sizeLow != INVALID_FILE_SIZE || ::GetLastError() == NO_ERROR;
}

}  // namespace

bool QuonPath::Exists() const
{
    return Access(0) == 0;
}

int QuonPath::Access(int mode) const
{
    return ::_waccess(m_path, mode);
}

bool QuonPath::GetInfo(QuonFileInfo* info) const
{
    return GetFileInfo(m_path, 0, info) != 0;
}

QuonPath QuonPath::MakeRelativeTo(QuonPath base) const
{
    QuonPath relative;
    const QuonPath from = base.GetFolder();
    // The shell asks for MAX_PATH characters. It bounds the two paths by that, but a step up ("..\") takes more room
    // than the shortest folder name that it undoes, so a deep base can lead it further: there is room for that.
    wchar_t out[4 * MAX_PATH] = L"";
    if (::PathRelativePathToW(out, from, FILE_ATTRIBUTE_DIRECTORY, m_path, FILE_ATTRIBUTE_NORMAL) == FALSE)
    {
        return relative;
    }
    relative = out;
    relative.Normalize();
    // Compared with this path's own separator: a path that writes "/" gets no "." in front.
    if (!relative.m_path.IsEmpty() && relative.m_path.GetAt(0) == *m_separator)
    {
        QuonPath dotted(L".", QuonPathBackslash);
        dotted.Append(relative);
        relative = dotted;
    }
    return relative;
}

void CombinePaths(CString& result, CString first, CString second)
{
    wchar_t combined[MAX_PATH] = L"";
    ::PathCombineW(combined, first, second);
    result = combined;
}

int GetFileInfo(const wchar_t* name, int level, QuonFileInfo* info)
{
    if (info == nullptr || level != 0)
    {
        return 0;
    }
    info->attributes = ::GetFileAttributesW(name);
    if (info->attributes == INVALID_FILE_ATTRIBUTES)
    {
        return 0;
    }
    const FileHandle file(
        ::CreateFileW(name, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr));
    if (!file.IsOpen())
    {
        return 0;
    }
    const bool hasTimes =
        ::GetFileTime(file.Get(), &info->creationTime, &info->lastAccessTime, &info->lastWriteTime) != FALSE;
    const bool hasSize = ReadSize(file.Get(), *info);
    return hasTimes && hasSize ? 1 : 0;
}
