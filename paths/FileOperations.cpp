#include "paths/FileOperations.h"

#include "base/LetterCaseInternal.h"
#include "traversal/QuonDirectoryTrees.h"
#include "traversal/QuonFileTrees.h"

#include <direct.h>
#include <io.h>
#include <wchar.h>

#include <list>

namespace
{

constexpr unsigned int kSucceeded = 0;
constexpr unsigned int kFailed = 1;

constexpr const wchar_t* kAnyName = L"*";
constexpr DWORD kCurrentFolderSize = 260;

bool IsMissing(const wchar_t* path)
{
    return _waccess(path, 0) != 0;
}

// By the user's locale: the flag QuonPathUpperCase leaves foreign letters alone in a program that sets no locale.
QuonPath InUpperCase(const wchar_t* path)
{
    CString text(path);
    MakeUpperForUser(text);
    return {text, QuonPathBackslash};
}

// The process cannot remove its current folder. The test has no boundary: "C:\ab" counts as being inside of "C:\a", and
// leaving it although that is not needed does no harm.
void MakeParentCurrentIfInside(const wchar_t* folder)
{
    wchar_t text[kCurrentFolderSize] = {};
    GetCurrentDirectoryW(kCurrentFolderSize, text);
    QuonPath current = InUpperCase(text);
    current.Normalize();
    current.AddTrailingSeparator();

    // Upper case serves the comparison only: the parent keeps its own.
    QuonPath parent(folder, QuonPathBackslash);
    parent.Normalize();
    const QuonPath start = InUpperCase(parent);
    if (_wcsnicmp(current, start, wcslen(start)) == 0)
    {
        parent.RemoveLastComponent();
        SetCurrentDirectoryW(parent);
        _wchdir(parent);
    }
}

void DeleteFilesBelow(const wchar_t* folder)
{
    QuonDFSFileTree files;
    files.FindFirst(folder, kAnyName, kQuonMatchFiles);
    DeleteMatchedFiles(files);
}

unsigned int RemoveFoldersFrom(const wchar_t* folder)
{
    unsigned int result = kSucceeded;
    QuonDFSDirectoryTree folders;
    for (folders.FindFirst(folder, kAnyName, kQuonMatchFolders); folders.IsFound(); folders.FindNext())
    {
        if (!RemoveDirectoryW(folders.GetFoundPath()))
        {
            result = kFailed;
        }
    }
    return result;
}

}  // namespace

unsigned int CreateFolderTree(const wchar_t* path)
{
    // With a trailing separator the last component is a folder as well, not a file name.
    const QuonPath whole(path, QuonPathBackslash | QuonPathAddTrailing);
    std::list<QuonPath> components;
    whole.GetComponents(components);

    unsigned int result = kSucceeded;
    QuonPath current(L"", QuonPathBackslash);
    for (const QuonPath& component : components)
    {
        current.Append(component);
        if (IsMissing(current) && !CreateDirectoryW(current, nullptr))
        {
            result = kFailed;
        }
    }
    return result;
}

unsigned int CreateMatchedFolders(QuonFileMatch& match, const wchar_t* destination)
{
    const QuonPath target(destination, QuonPathBackslash);
    unsigned int result = kSucceeded;
    for (; match.IsFound(); match.FindNext())
    {
        if (CreateFolderTree(target + match.GetFoundName()) != kSucceeded)
        {
            result = kFailed;
        }
    }
    return result;
}

unsigned int CopyOneFile(const wchar_t* source, const wchar_t* target, BOOL failIfExists)
{
    return CopyFileW(source, target, failIfExists) ? kSucceeded : kFailed;
}

unsigned int CopyMatchedFiles(QuonFileMatch& match, const wchar_t* destination, BOOL failIfExists)
{
    const QuonPath target(destination, QuonPathBackslash);
    for (; match.IsFound(); match.FindNext())
    {
        const QuonPath source = match.GetFoundPath();
        if (CopyOneFile(source, target + match.GetFoundName(), failIfExists) != kSucceeded)
        {
            return kFailed;
        }
    }
    return kSucceeded;
}

unsigned int DeleteFileForced(const wchar_t* path)
{
    const DWORD attributes = GetFileAttributesW(path);
    if (attributes != INVALID_FILE_ATTRIBUTES)
    {
        SetFileAttributesW(path, attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
    }
    if (DeleteFileW(path))
    {
        return kSucceeded;
    }
    // Put back whatever was read, even when nothing could be read: the system refuses that value by itself.
    SetFileAttributesW(path, attributes);
    return kFailed;
}

unsigned int DeleteMatchedFiles(QuonFileMatch& match)
{
    unsigned int result = kSucceeded;
    for (; match.IsFound(); match.FindNext())
    {
        if (DeleteFileForced(match.GetFoundPath()) != kSucceeded)
        {
            result = kFailed;
        }
    }
    return result;
}

unsigned int CopyFolderTree(const wchar_t* source, const wchar_t* destination, BOOL failIfExists)
{
    if (IsMissing(source))
    {
        return kFailed;
    }
    {
        QuonBFSDirectoryTree folders;
        folders.FindFirst(source, kAnyName, kQuonMatchFolders);
        if (CreateMatchedFolders(folders, destination) != kSucceeded)
        {
            return kFailed;
        }
    }
    QuonBFSFileTree files;
    files.FindFirst(source, kAnyName, kQuonMatchFiles);
    return CopyMatchedFiles(files, destination, failIfExists);
}

unsigned int RemoveFolderTree(const wchar_t* folder)
{
    MakeParentCurrentIfInside(folder);
    if (IsMissing(folder))
    {
        return kSucceeded;
    }
    // An open search keeps its folder alive. So each walk ends its life, and with it its searches, in a function of its
    // own: the one over the files before the first folder is removed, the one over the folders before this returns.
    DeleteFilesBelow(folder);
    return RemoveFoldersFrom(folder);
}

unsigned int MoveFolderTree(const wchar_t* source, const wchar_t* destination, BOOL failIfExists)
{
    if (CopyFolderTree(source, destination, failIfExists) != kSucceeded)
    {
        return kFailed;
    }
    return RemoveFolderTree(source);
}
