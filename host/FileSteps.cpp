#include "host/FileSteps.h"

#include <afx.h>

#include "host/Console.h"
#include "host/FileIdentity.h"
#include "host/Streams.h"
#include "paths/FileOperations.h"
#include "traversal/QuonDirectoryTrees.h"
#include "traversal/QuonFileTrees.h"

#include <list>

namespace quonhost
{
namespace
{

std::wstring NotRemoved(const QuonPath& path, DWORD error)
{
    return InQuotes(path) + L" cannot be removed: " + SystemErrorText(error);
}

// Tries the missing folders from the outermost on, to learn the reason that creating them all at once does not give.
DWORD ReasonOfMissingFolder(const QuonPath& folder)
{
    std::list<QuonPath> components;
    QuonPath(folder, QuonPathAddTrailing).GetComponents(components);
    QuonPath current(L"", QuonPathBackslash);
    for (const QuonPath& component : components)
    {
        current.Append(component);
        if (!current.Exists() && !::CreateDirectoryW(current, nullptr))
        {
            return ::GetLastError();
        }
    }
    return ERROR_SUCCESS;
}

bool Exists(const std::wstring& path)
{
    return ::GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

// Its search must have ended before folders are tried: it keeps them open.
std::wstring ExplainFileThatStays(const QuonPath& folder)
{
    QuonDFSFileTree files;
    files.FindFirst(folder, L"*", kQuonMatchFiles);
    return files.IsFound() ? DeleteFileOrExplain(files.GetFoundPath()) : std::wstring();
}

}  // namespace

QuonPath FileTarget(const QuonPath& source, const QuonPath& destination)
{
    const std::wstring text(destination);
    const bool isFolderName = !text.empty() && (text.back() == L'\\' || text.back() == L'/');
    return isFolderName || IsFolder(text.c_str()) ? destination + source.GetFileName() : QuonPath(destination);
}

void RequireSeparateFolders(const QuonPath& source, const QuonPath& destination)
{
    const std::wstring from = FullPath(source);
    const std::wstring to = FullPath(destination);
    if (IsInside(to.c_str(), from.c_str()))
    {
        throw CommandError(InQuotes(source) + L" contains the destination " + InQuotes(destination));
    }
    // Out of a folder into one above it: what has the source's own name would land in the source.
    if (IsInside(from.c_str(), to.c_str()) && from.size() > to.size())
    {
        const std::wstring below = from.substr(to.back() == L'\\' ? to.size() : to.size() + 1);
        if (Exists(from + L'\\' + below))
        {
            throw CommandError(InQuotes(source) + L" contains " + InQuotes(below) + L", which would be copied into " +
                               InQuotes(source) + L" itself");
        }
    }
}

void RequireDifferentFiles(const QuonPath& source, const QuonPath& target)
{
    if (IsSameFile(source, target))
    {
        throw CommandError(InQuotes(source) + L" and " + InQuotes(target) + L" are the same file");
    }
}

void RequireReadableFolder(const QuonPath& folder)
{
    WIN32_FIND_DATAW data = {};
    const HANDLE search = ::FindFirstFileW(folder + L"*", &data);
    const DWORD error = ::GetLastError();
    if (search != INVALID_HANDLE_VALUE)
    {
        ::FindClose(search);
    }
    else if (error != ERROR_FILE_NOT_FOUND)
    {
        // A root without files has no entries at all.
        throw CommandError(InQuotes(folder) + L" cannot be read: " + SystemErrorText(error));
    }
}

void MakeFolder(const QuonPath& folder)
{
    const std::wstring text(folder);
    if (text.empty())
    {
        return;
    }
    if (CreateFolderTree(folder))
    {
        const DWORD error = ReasonOfMissingFolder(folder);
        throw CommandError(InQuotes(text) + L" cannot be made: " + SystemErrorText(error));
    }
    if (!IsFolder(text.c_str()))
    {
        throw CommandError(InQuotes(text) + L" is not a folder");
    }
}

void CopyFileWhole(const QuonPath& source, const QuonPath& target, bool failIfExists)
{
    RequireDifferentFiles(source, target);
    if (CopyOneFile(source, target, failIfExists))
    {
        const DWORD error = ::GetLastError();
        throw CommandError(InQuotes(source) + L" cannot be copied to " + InQuotes(target) + L": " +
                           SystemErrorText(error));
    }
}

std::wstring DeleteFileOrExplain(const QuonPath& file)
{
    if (DeleteFileForced(file))
    {
        // The attributes were put back since; that succeeds, and so leaves the deletion's error.
        return NotRemoved(file, ::GetLastError());
    }
    return {};
}

std::wstring ExplainFolderThatStays(const QuonPath& folder)
{
    const std::wstring file = ExplainFileThatStays(folder);
    if (!file.empty())
    {
        return file;
    }
    QuonDFSDirectoryTree folders;
    folders.FindFirst(folder, L"*", kQuonMatchFolders);
    if (folders.IsFound() && !::RemoveDirectoryW(folders.GetFoundPath()))
    {
        const DWORD error = ::GetLastError();
        return NotRemoved(folders.GetFoundPath(), error);
    }
    return InQuotes(folder) + L" is not empty";
}

}  // namespace quonhost
