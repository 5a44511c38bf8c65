// A tree of 10,000 entries, five folders deep: its folders, its files, and the read-only ones among them; and the files
// of a tree with more folders.
#include <afx.h>

#include "BenchmarkSupport.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonFileTrees.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <random>
#include <string>
#include <vector>

using namespace quon_benchmark;

namespace
{

// As in the folders of a project; and a tree of many small folders, where opening a folder is what counts.
constexpr int kEntriesPerFolder = 20;
constexpr int kFewEntriesPerFolder = 8;
constexpr int kDepth = 5;

using Paths = std::vector<std::wstring>;

// A tree below a temporary folder, which ends with the program.
struct Tree
{
    quon_test::TemporaryFolder root;

    Tree(int entries, int entriesPerFolder)
    {
        std::mt19937 random(9);
        std::vector<std::pair<std::wstring, int>> folders{{L"", 0}};
        const int folderCount = std::max(kDepth, entries / entriesPerFolder);
        for (int index = 1; index <= folderCount; ++index)
        {
            // The first ones make a chain, so that the depth is reached; the others lie anywhere above it.
            std::size_t parent = static_cast<std::size_t>(index) - 1;
            while (index > kDepth && (parent = random() % folders.size(), folders[parent].second == kDepth))
            {
            }
            const std::wstring name = L"folder " + std::to_wstring(index);
            const std::wstring path = folders[parent].first.empty() ? name : folders[parent].first + L'\\' + name;
            root.MakeFolder(path);
            folders.emplace_back(path, folders[parent].second + 1);
        }
        for (int index = folderCount; index < entries; ++index)
        {
            const std::wstring& folder = folders[random() % folders.size()].first;
            const std::wstring name = L"drawing " + std::to_wstring(index) + L".dwg";
            root.WriteFile(folder.empty() ? name : folder + L'\\' + name, "1234",
                           index % 10 == 0 ? DWORD{FILE_ATTRIBUTE_READONLY} : DWORD{0});
        }
    }
};

using SharedTree = std::shared_ptr<const Tree>;

// The path of what is visited. What a contender does with it costs all of them the same.
struct Collect
{
    Paths& paths;
    void operator()(const wchar_t* path) const { paths.emplace_back(path); }
};

struct CountLength
{
    std::size_t& length;
    void operator()(const wchar_t* path) const { length += std::wcslen(path); }
};

template <typename Match, typename Visit>
void VisitMatches(const std::wstring& root, unsigned int filter, const Visit& visit)
{
    Match match;
    for (match.FindFirst(root.c_str(), L"*", filter); match.IsFound(); match.FindNext())
    {
        visit(match.GetFoundPath());
    }
}

// The bare loop: a path in one buffer, recursion, the searches of the system and nothing else.
class BareLoop
{
public:
    explicit BareLoop(const std::wstring& root) : m_length(root.size()) { root.copy(m_path, root.size()); }

    template <typename Visit>
    void VisitFolders(const Visit& visit)
    {
        m_path[m_length] = L'\0';
        visit(m_path);
        Search(FindExSearchLimitToDirectories, [&](const WIN32_FIND_DATAW& data) {
            if (IsFolder(data))
            {
                Enter(data.cFileName, [&] { VisitFolders(visit); });
            }
        });
    }

    // Two searches a folder: the walk over the folders is ahead of the search for files, which may come to an end
    // early.
    template <typename Visit>
    void VisitFiles(DWORD attributes, const Visit& visit)
    {
        VisitFilesHere(attributes, visit);
        Search(FindExSearchLimitToDirectories, [&](const WIN32_FIND_DATAW& data) {
            if (IsFolder(data))
            {
                Enter(data.cFileName, [&] { VisitFiles(attributes, visit); });
            }
        });
    }

    // One search a folder, for both.
    template <typename Visit>
    void VisitFilesAtOnce(DWORD attributes, const Visit& visit)
    {
        Search(FindExSearchNameMatch, [&](const WIN32_FIND_DATAW& data) {
            if (IsFolder(data))
            {
                Enter(data.cFileName, [&] { VisitFilesAtOnce(attributes, visit); });
            }
            else
            {
                VisitFile(data, attributes, visit);
            }
        });
    }

private:
    static bool IsFolder(const WIN32_FIND_DATAW& data)
    {
        return (data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0 && std::wcscmp(data.cFileName, L".") != 0 &&
               std::wcscmp(data.cFileName, L"..") != 0;
    }

    template <typename Visit>
    void VisitFilesHere(DWORD attributes, const Visit& visit)
    {
        Search(FindExSearchNameMatch, [&](const WIN32_FIND_DATAW& data) { VisitFile(data, attributes, visit); });
    }

    template <typename Visit>
    void VisitFile(const WIN32_FIND_DATAW& data, DWORD attributes, const Visit& visit)
    {
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 &&
            (data.dwFileAttributes & attributes) == attributes)
        {
            m_path[m_length] = L'\\';
            std::wcscpy(m_path + m_length + 1, data.cFileName);
            visit(m_path);
        }
    }

    template <typename Visit>
    void Search(FINDEX_SEARCH_OPS operation, const Visit& visit)
    {
        std::wcscpy(m_path + m_length, L"\\*");
        WIN32_FIND_DATAW data;
        const HANDLE search = ::FindFirstFileExW(m_path, FindExInfoStandard, &data, operation, nullptr, 0);
        if (search != INVALID_HANDLE_VALUE)
        {
            do
            {
                visit(data);
            } while (::FindNextFileW(search, &data));
            ::FindClose(search);
        }
    }

    template <typename Inside>
    void Enter(const wchar_t* name, const Inside& inside)
    {
        const std::size_t length = m_length;
        m_path[m_length] = L'\\';
        std::wcscpy(m_path + m_length + 1, name);
        m_length += 1 + std::wcslen(name);
        inside();
        m_length = length;
    }

    wchar_t m_path[1024] = {};
    std::size_t m_length;
};

enum class Facts
{
    NameAndType,
    NameTypeAndSize,
};

template <Facts facts, typename Visit>
void VisitByStandard(const std::wstring& root, bool folders, bool readOnlyOnly, const Visit& visit)
{
    namespace fs = std::filesystem;
    if (folders)
    {
        visit(root.c_str());
    }
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(root))
    {
        const bool isFolder = entry.is_directory();
        if (isFolder != folders)
        {
            continue;
        }
        if (facts == Facts::NameTypeAndSize && !isFolder)
        {
            std::uintmax_t size = entry.file_size();
            benchmark::DoNotOptimize(size);
        }
        if (!readOnlyOnly || (entry.status().permissions() & fs::perms::owner_write) == fs::perms::none)
        {
            visit(entry.path().c_str());
        }
    }
}

// Visits once to see that all contenders come by the same paths, then again and again for their length alone.
template <typename Walk>
void AddWalk(const std::string& work, int size, const std::string& contender, Paths& expected, const SharedTree& tree,
             const Walk& walk)
{
    Paths paths;
    walk(tree->root.Path(), Collect{paths});
    std::sort(paths.begin(), paths.end());
    if (expected.empty())
    {
        expected = paths;
    }
    Require(!paths.empty() && paths == expected, work + " by " + contender);
    Add(work, size, contender, [tree, walk] {
        std::size_t length = 0;
        walk(tree->root.Path(), CountLength{length});
        benchmark::DoNotOptimize(length);
    });
}

void AddFolders(const SharedTree& tree, int size)
{
    Paths expected;
    const auto add = [&](const std::string& contender, const auto& walk) {
        AddWalk("folders", size, contender, expected, tree, walk);
    };
    add("quon", [](const std::wstring& root, const auto& visit) {
        VisitMatches<QuonBFSDirectoryTree>(root, kQuonMatchFolders, visit);
    });
    add("limit: bare loop", [](const std::wstring& root, const auto& visit) { BareLoop(root).VisitFolders(visit); });
    add("std::filesystem", [](const std::wstring& root, const auto& visit) {
        VisitByStandard<Facts::NameAndType>(root, true, false, visit);
    });
}

void AddFiles(const SharedTree& tree, int size, const std::string& work, unsigned int filter, DWORD attributes)
{
    const bool readOnly = attributes != 0;
    Paths expected;
    const auto add = [&](const std::string& contender, const auto& walk) {
        AddWalk(work, size, contender, expected, tree, walk);
    };
    add("quon",
        [filter](const std::wstring& root, const auto& visit) { VisitMatches<QuonBFSFileTree>(root, filter, visit); });
    add("limit: bare loop, two searches a folder",
        [attributes](const std::wstring& root, const auto& visit) { BareLoop(root).VisitFiles(attributes, visit); });
    add("bare loop, one search a folder", [attributes](const std::wstring& root, const auto& visit) {
        BareLoop(root).VisitFilesAtOnce(attributes, visit);
    });
    add("std::filesystem, name and type", [readOnly](const std::wstring& root, const auto& visit) {
        VisitByStandard<Facts::NameAndType>(root, false, readOnly, visit);
    });
    add("std::filesystem, name, type and size", [readOnly](const std::wstring& root, const auto& visit) {
        VisitByStandard<Facts::NameTypeAndSize>(root, false, readOnly, visit);
    });
}

void AddContenders(const Sizes& sizes)
{
    for (const int size : sizes.UpTo(10000))
    {
        const SharedTree tree = std::make_shared<const Tree>(size, kEntriesPerFolder);
        AddFolders(tree, size);
        AddFiles(tree, size, "files", kQuonMatchFiles, 0);
        if (size >= 100)
        {
            AddFiles(tree, size, "read-only files", kQuonMatchFiles | kQuonMatchReadOnly, FILE_ATTRIBUTE_READONLY);
        }
        AddFiles(std::make_shared<const Tree>(size, kFewEntriesPerFolder), size, "files of many small folders",
                 kQuonMatchFiles, 0);
    }
}

}  // namespace

int main(int argc, char** argv)
{
    return Run(argc, argv, &AddContenders);
}
