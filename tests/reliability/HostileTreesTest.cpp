// Trees that a walk must survive: names that the system trims or resolves, and folders that vanish under its feet.
#include "traversal/QuonFileTrees.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "paths/FileOperations.h"
#include "helpers/HardLimit.h"
#include "helpers/TemporaryFolder.h"

namespace
{

using quon_test::HardLimit;
using quon_test::TemporaryFolder;

// More matches than any tree here can have: a walk that goes in circles is stopped there and not by the time limit.
constexpr std::size_t kTooMany = 2000;

template <typename Walk>
std::vector<std::wstring> NamesOf(
    const std::wstring& root, unsigned int filter, const std::function<void(std::size_t)>& onMatch = [](std::size_t) {})
{
    std::vector<std::wstring> names;
    Walk walk;
    for (walk.FindFirst(root.c_str(), L"*", filter); walk.IsFound() && names.size() < kTooMany; walk.FindNext())
    {
        names.push_back(static_cast<const wchar_t*>(walk.GetFoundName()));
        onMatch(names.size());
    }
    return names;
}

const wchar_t* const kTrimmedNames[] = {L"dot.",    L"dots...", L"blank ", L"blanks   ", L" leading",
                                        L"both. .", L"...",     L".. ",    L". ",        L"a. b. "};

void FillWithTrimmedNames(const TemporaryFolder& root)
{
    for (const wchar_t* const name : kTrimmedNames)
    {
        root.MakeFolder(name);
        root.WriteFile(name + std::wstring(L"\\file"), "x");
        root.WriteFile(name + std::wstring(L"\\file."), "x");
        root.WriteFile(name + std::wstring(L"\\file "), "x");
    }
    root.WriteFile(L"plain\\file", "x");
}

using Names = std::vector<std::wstring>;

Names Sorted(Names names)
{
    std::sort(names.begin(), names.end());
    return names;
}

// The root's own name is empty.
Names RootAndTrimmedNames()
{
    Names names(std::begin(kTrimmedNames), std::end(kTrimmedNames));
    names.push_back(L"plain");
    names.push_back(L"");
    return Sorted(std::move(names));
}

// What Wine finds: it does not trim blanks, and sees nothing below a name that ends in a dot when another character
// stands before it.
Names FilesBelowTrimmedNames()
{
    Names names = {L"plain\\file"};
    for (const wchar_t* const folder : {L" leading", L". ", L".. ", L"a. b. ", L"blank ", L"blanks   "})
    {
        for (const wchar_t* const file : {L"\\file", L"\\file ", L"\\file."})
        {
            names.push_back(std::wstring(folder) + file);
        }
    }
    return Sorted(std::move(names));
}

// The search itself names what is there, whatever the names. What lies below a name that the system trims is what the
// trimmed name leads to, if anything.
TEST(HostileTrees, NamesThatEndInBlanksOrDotsAreFound)
{
    const HardLimit limit;
    const TemporaryFolder root;
    FillWithTrimmedNames(root);
    Names names = NamesOf<QuonBasicFileMatcher>(root.Path(), kQuonMatchFolders);
    names.push_back(L"");
    EXPECT_EQ(Sorted(names), RootAndTrimmedNames());
}

TEST(HostileTrees, WalksOverNamesThatEndInBlanksOrDotsEnd)
{
    const HardLimit limit;
    const TemporaryFolder root;
    FillWithTrimmedNames(root);
    EXPECT_EQ(Sorted(NamesOf<QuonBFSDirectoryTree>(root.Path(), kQuonMatchFolders)), RootAndTrimmedNames());
    EXPECT_EQ(Sorted(NamesOf<QuonDFSDirectoryTree>(root.Path(), kQuonMatchFolders)), RootAndTrimmedNames());
    EXPECT_EQ(Sorted(NamesOf<QuonBFSFileTree>(root.Path(), kQuonMatchFiles)), FilesBelowTrimmedNames());
    EXPECT_EQ(Sorted(NamesOf<QuonDFSFileTree>(root.Path(), kQuonMatchFiles)), FilesBelowTrimmedNames());
}

// Folders that the system's trimmed names do not reach stay (under Wine all of these), and are told as a failure. What
// lies beside the tree is never touched.
TEST(HostileTrees, RemovingNamesThatEndInBlanksOrDotsStaysInside)
{
    const HardLimit limit;
    const TemporaryFolder outside;
    outside.WriteFile(L"beside", "x");
    outside.WriteFile(L"tree\\plain\\file", "x");
    for (const wchar_t* const name : {L"dot.", L"blank ", L"..."})
    {
        outside.WriteFile(L"tree\\" + std::wstring(name) + L"\\file ", "x");
    }
    const unsigned int result = RemoveFolderTree((outside / L"tree").c_str());
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(NamesOf<QuonBasicFileMatcher>(outside / L"tree", kQuonMatchFolders), (Names{L"...", L"blank ", L"dot."}));
    EXPECT_EQ(outside.ReadFile(L"beside"), "x");
}

// The folders come first, their names as the system trims them. Then the copying stops at the first file, whose own
// name leads nowhere.
TEST(HostileTrees, CopyingNamesThatEndInBlanksOrDotsEnds)
{
    const HardLimit limit;
    const TemporaryFolder source;
    const TemporaryFolder target;
    source.WriteFile(L"plain\\file", "x");
    source.WriteFile(L"file.", "x");
    source.WriteFile(L"blank \\file", "x");
    const unsigned int result = CopyFolderTree(source.Path().c_str(), (target / L"copy").c_str(), FALSE);
    EXPECT_EQ(result, 1u);
    EXPECT_EQ(NamesOf<QuonBFSFileTree>(target / L"copy", kQuonMatchEverything), (Names{L"blank", L"plain"}));
}

void FillThreeLevels(const TemporaryFolder& root)
{
    for (const wchar_t outer : std::wstring(L"abc"))
    {
        for (const wchar_t inner : std::wstring(L"xyz"))
        {
            root.WriteFile(std::wstring{outer, L'\\', inner, L'\\'} + L"file", "x");
        }
    }
}

// How many matches a walk still sees of the three levels: one that goes breadth first has noted the folders before they
// go, one that goes depth first meets them one by one.
struct Seen
{
    std::size_t afterVanishing[12];  // when all vanishes at the n-th match
    std::size_t afterEach;           // when each match vanishes
    std::size_t afterRenaming;       // when the second folder is renamed at the first match
};

template <typename Walk>
Seen Expected();
template <>
Seen Expected<QuonBFSDirectoryTree>()
{
    return {{4, 7, 10, 13, 13, 13, 13, 13, 13, 13, 13, 13}, 13, 10};
}
template <>
Seen Expected<QuonDFSDirectoryTree>()
{
    return {{7, 7, 7, 7, 10, 10, 10, 10, 13, 13, 13, 13}, 13, 10};
}
template <>
Seen Expected<QuonBFSFileTree>()
{
    return {{3, 3, 3, 6, 6, 6, 9, 9, 9, 12, 12, 12}, 3, 15};
}
template <>
Seen Expected<QuonDFSFileTree>()
{
    return {{3, 4, 5, 7, 7, 7, 9, 10, 11, 13, 13, 13}, 21, 15};
}

template <typename Walk>
class VanishingTrees : public testing::Test
{
};

using Walks = testing::Types<QuonBFSDirectoryTree, QuonDFSDirectoryTree, QuonBFSFileTree, QuonDFSFileTree>;
TYPED_TEST_SUITE(VanishingTrees, Walks);

// Everything below the root goes while the walk stands at its n-th match, for every n.
TYPED_TEST(VanishingTrees, AWalkEndsWhenItsTreeVanishes)
{
    const HardLimit limit;
    for (std::size_t at = 1; at <= 12; ++at)
    {
        SCOPED_TRACE(at);
        const TemporaryFolder root;
        FillThreeLevels(root);
        const std::vector<std::wstring> names =
            NamesOf<TypeParam>(root.Path(), kQuonMatchEverything, [&](std::size_t match) {
                if (match == at)
                {
                    for (const wchar_t* sub : {L"a", L"b", L"c"})
                    {
                        RemoveFolderTree((root / sub).c_str());
                    }
                }
            });
        EXPECT_EQ(names.size(), Expected<TypeParam>().afterVanishing[at - 1]);
    }
}

// Each match is removed, file or folder, before the walk goes on.
TYPED_TEST(VanishingTrees, AWalkEndsWhenEachMatchVanishes)
{
    const HardLimit limit;
    const TemporaryFolder root;
    FillThreeLevels(root);
    TypeParam walk;
    std::size_t matches = 0;
    for (walk.FindFirst(root.Path().c_str(), L"*", kQuonMatchEverything); walk.IsFound() && matches < kTooMany;
         walk.FindNext())
    {
        ++matches;
        const QuonPath found = walk.GetFoundPath();
        DeleteFileForced(found);
        if (std::wstring(static_cast<const wchar_t*>(walk.GetFoundName())).size() > 0)
        {
            RemoveFolderTree(found);
        }
    }
    EXPECT_EQ(matches, Expected<TypeParam>().afterEach);
    EXPECT_FALSE(walk.FindNext());
}

// A folder that is renamed under the walk is gone for it, and the rest is still found.
TYPED_TEST(VanishingTrees, AWalkGoesOnWhenAFolderIsRenamed)
{
    const HardLimit limit;
    const TemporaryFolder root;
    FillThreeLevels(root);
    const std::vector<std::wstring> names =
        NamesOf<TypeParam>(root.Path(), kQuonMatchEverything, [&](std::size_t match) {
            if (match == 1)
            {
                ::MoveFileW((root / L"b").c_str(), (root / L"renamed").c_str());
            }
        });
    EXPECT_EQ(names.size(), Expected<TypeParam>().afterRenaming);
    for (const wchar_t* const found : {L"a\\x", L"a\\y", L"a\\z", L"c\\x", L"c\\y", L"c\\z"})
    {
        EXPECT_EQ(std::count(names.begin(), names.end(), found), 1) << testing::PrintToString(found);
    }
    for (const std::wstring& name : names)
    {
        EXPECT_NE(name.substr(0, 2), L"b\\");
    }
}

// Deeper than any path that Windows takes without a prefix: there the walk sees as far as it gets. Wine has no such
// limit, and all of it is seen and removed.
TEST(HostileTrees, ATreeDeeperThanTheLongestPathEnds)
{
    const HardLimit limit;
    const TemporaryFolder root;
    constexpr std::size_t kFolders = 60;
    std::wstring relative;
    for (std::size_t depth = 0; depth < kFolders; ++depth)
    {
        relative += (relative.empty() ? L"" : L"\\") + std::wstring(20, static_cast<wchar_t>(L'a' + depth % 26));
    }
    root.WriteFile(relative + L"\\file", "x");
    const struct
    {
        unsigned int filter;
        std::size_t matches;  // of a walk over files; one over folders finds them and the root, whatever the filter
    } rows[] = {{kQuonMatchEverything, kFolders + 1}, {kQuonMatchFolders, kFolders}, {kQuonMatchFiles, 1}};
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.filter);
        EXPECT_EQ(NamesOf<QuonBFSDirectoryTree>(root.Path(), row.filter).size(), kFolders + 1);
        EXPECT_EQ(NamesOf<QuonDFSDirectoryTree>(root.Path(), row.filter).size(), kFolders + 1);
        EXPECT_EQ(NamesOf<QuonBFSFileTree>(root.Path(), row.filter).size(), row.matches);
        EXPECT_EQ(NamesOf<QuonDFSFileTree>(root.Path(), row.filter).size(), row.matches);
    }
    EXPECT_EQ(RemoveFolderTree((root / std::wstring(20, L'a')).c_str()), 0u);
    EXPECT_FALSE(root.Exists(std::wstring(20, L'a')));
}

}  // namespace
