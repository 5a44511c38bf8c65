#include <afx.h>

#include "reliability/ImportFailure.h"

#include "paths/FileOperations.h"
#include "traversal/QuonBasicFileMatcher.h"

namespace quon_test::import_failure
{

namespace
{

std::string Folder_(QuonFolderId folder)
{
    return Narrow(QuonPath(folder, 0));
}

std::string Shell(const Folder&)
{
    wchar_t folder[QuonShellFolderBufferSize] = {};
    return std::to_string(ReadShellFolder(L"Desktop", folder));
}

std::string Info(const Folder& folder)
{
    QuonFileInfo info = {};
    return std::to_string(GetFileInfo(folder.File().c_str(), 0, &info));
}

std::string FindFirstAndSecond(const Folder& folder)
{
    QuonBasicFileMatcher matcher;
    const bool first = matcher.FindFirst(folder.Path().c_str(), L"*", kQuonMatchFiles);
    const bool second = matcher.FindNext();
    return std::to_string(first) + std::to_string(second);
}

std::string RemoveTree(const Folder& folder)
{
    return std::to_string(RemoveFolderTree((folder / L"tree").c_str()));
}

std::string RemoveCurrentTree(const Folder& folder)
{
    ::SetCurrentDirectoryW((folder / L"tree").c_str());
    return RemoveTree(folder);
}

}  // namespace

std::vector<Row> PathRows()
{
    return {
        {"CopyFileW", kZero, "1",
         [](const Folder& f) { return std::to_string(CopyOneFile(f.File().c_str(), (f / L"copy").c_str(), FALSE)); }},
        {"CreateDirectoryW", kZero, "1",
         [](const Folder& f) { return std::to_string(CreateFolderTree((f / L"new").c_str())); }},
        {"DeleteFileW", kZero, "1", [](const Folder& f) { return std::to_string(DeleteFileForced(f.File().c_str())); }},
        {"SetFileAttributesW", kZero, "1",
         [](const Folder& f) { return std::to_string(DeleteFileForced((f / L"locked").c_str())); }},
        {"GetFileAttributesW", kMinusOne, "0", &Info},
        {"CreateFileW", kMinusOne, "0", &Info},
        {"GetFileTime", kZero, "0", &Info},
        {"GetFileSize", 0xFFFFFFFF, "0", &Info},
        {"CloseHandle", kZero, "1", &Info},
        {"RemoveDirectoryW", kZero, "1", &RemoveTree},
        // The run-time's own call does the same once more.
        {"SetCurrentDirectoryW", kZero, "0", &RemoveCurrentTree},
        {"FindFirstFileExW", kMinusOne, "00", &FindFirstAndSecond},
        // The first call is made for the folder's own two entries, and ends the search for a first match.
        {"FindNextFileW", kZero, "01", &FindFirstAndSecond},
        {"FindClose", kZero, "11", &FindFirstAndSecond},
        {"GetCurrentDirectoryW", kZero, "", [](const Folder&) { return Folder_(QuonFolderCurrent); }},
        {"GetModuleFileNameW", kZero, "", [](const Folder&) { return Folder_(QuonFolderModuleFile); }},
        {"GetSystemDirectoryW", kZero, "", [](const Folder&) { return Folder_(QuonFolderSystem); }},
        {"GetTempPathW", kZero, "", [](const Folder&) { return Folder_(QuonFolderTemp); }},
        {"GetWindowsDirectoryW", kZero, "", [](const Folder&) { return Folder_(QuonFolderWindows); }},
        {"RegOpenKeyExW", ERROR_ACCESS_DENIED, "5", &Shell},
        {"RegQueryValueExW", ERROR_ACCESS_DENIED, "5", &Shell},
        {"RegCloseKey", ERROR_ACCESS_DENIED, "5", &Shell},
        {"PathCombineW", kZero, "",
         [](const Folder&) {
             CString result;
             CombinePaths(result, L"a", L"b");
             return Narrow(result);
         }},
        {"PathRelativePathToW", kZero, "",
         [](const Folder&) { return Narrow(QuonPath(L"C:\\a\\b", 0).MakeRelativeTo(QuonPath(L"C:\\a\\c", 0))); }},
    };
}

}  // namespace quon_test::import_failure
