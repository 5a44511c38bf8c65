// What is in a folder tree according to the operating system alone: the reference that walks and copies are compared
// to.
#pragma once

#include <afx.h>

#include <algorithm>
#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace quon_test
{

struct ListedEntry
{
    std::wstring name;  // relative to the folder that was listed, written with "\"
    DWORD attributes = 0;
    std::uint64_t size = 0;

    bool IsFolder() const { return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0; }

    friend bool operator==(const ListedEntry& left, const ListedEntry& right)
    {
        return left.name == right.name && left.attributes == right.attributes && left.size == right.size;
    }
    friend bool operator<(const ListedEntry& left, const ListedEntry& right) { return left.name < right.name; }
};

inline std::wstring JoinNames(const std::wstring& left, const std::wstring& right)
{
    return left.empty() ? right : left + L"\\" + right;
}

// The entries of one folder in the order of the system, "." and ".." left out.
inline std::vector<ListedEntry> ListFolder(const std::wstring& folder)
{
    std::vector<ListedEntry> entries;
    WIN32_FIND_DATAW data;
    const HANDLE search = FindFirstFileW((folder + L"\\*").c_str(), &data);
    if (search == INVALID_HANDLE_VALUE)
    {
        return entries;
    }
    do
    {
        const std::wstring name = data.cFileName;
        if (name != L"." && name != L"..")
        {
            const bool isFolder = (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
            const std::uint64_t size = (std::uint64_t{data.nFileSizeHigh} << 32) | data.nFileSizeLow;
            entries.push_back({name, data.dwFileAttributes, isFolder ? 0 : size});
        }
    } while (FindNextFileW(search, &data));
    FindClose(search);
    return entries;
}

// Everything below `root`, each folder before what it holds, siblings in the order of the system.
inline std::vector<ListedEntry> ListTree(const std::wstring& root, const std::wstring& below = L"")
{
    std::vector<ListedEntry> entries;
    for (ListedEntry& entry : ListFolder(below.empty() ? root : root + L"\\" + below))
    {
        entry.name = JoinNames(below, entry.name);
        entries.push_back(entry);
        if (entry.IsFolder())
        {
            const std::vector<ListedEntry> inner = ListTree(root, entry.name);
            entries.insert(entries.end(), inner.begin(), inner.end());
        }
    }
    return entries;
}

inline std::vector<ListedEntry> SortedTree(const std::wstring& root)
{
    std::vector<ListedEntry> entries = ListTree(root);
    std::sort(entries.begin(), entries.end());
    return entries;
}

// Relative names of all folders, the root ("") first, level by level.
inline std::vector<std::wstring> FoldersByLevel(const std::wstring& root)
{
    std::vector<std::wstring> visited;
    std::deque<std::wstring> waiting{L""};
    while (!waiting.empty())
    {
        const std::wstring current = waiting.front();
        waiting.pop_front();
        visited.push_back(current);
        for (const ListedEntry& entry : ListFolder(root + L"\\" + current))
        {
            if (entry.IsFolder())
            {
                waiting.push_back(JoinNames(current, entry.name));
            }
        }
    }
    return visited;
}

// Relative names of all folders, each one after all of its subfolders, the root ("") last.
inline std::vector<std::wstring> FoldersPostOrder(const std::wstring& root, const std::wstring& below = L"")
{
    std::vector<std::wstring> visited;
    for (const ListedEntry& entry : ListFolder(root + L"\\" + below))
    {
        if (entry.IsFolder())
        {
            const std::vector<std::wstring> inner = FoldersPostOrder(root, JoinNames(below, entry.name));
            visited.insert(visited.end(), inner.begin(), inner.end());
        }
    }
    visited.push_back(below);
    return visited;
}

// Relative names of the files (or, with `folders`, of all entries) of these folders, folder by folder.
inline std::vector<std::wstring> FilesOf(const std::wstring& root, const std::vector<std::wstring>& below,
                                         bool folders = false)
{
    std::vector<std::wstring> files;
    for (const std::wstring& folder : below)
    {
        for (const ListedEntry& entry : ListFolder(root + L"\\" + folder))
        {
            if (folders || !entry.IsFolder())
            {
                files.push_back(JoinNames(folder, entry.name));
            }
        }
    }
    return files;
}

}  // namespace quon_test
