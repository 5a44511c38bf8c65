// Trees that a walk must survive: names that the system trims or resolves, and folders that vanish under its feet.
#include "traversal/QuonFileTrees.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "paths/FileOperations.h"
#include "support/HardLimit.h"
#include "support/TemporaryFolder.h"

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

template <typename Walk>
void ExpectWalkEnds(const std::wstring& root, unsigned int filter)
{
    const std::vector<std::wstring> names = NamesOf<Walk>(root, filter);
    EXPECT_LT(names.size(), kTooMany) << "the walk goes in circles";
}

// The search itself names what is there, whatever the names. What lies below a name that the system trims is what the
// trimmed name leads to, if anything.
TEST(HostileTrees, NamesThatEndInBlanksOrDotsAreFound)
{
    const HardLimit limit(60000);
    const TemporaryFolder root;
    FillWithTrimmedNames(root);
    const std::vector<std::wstring> names = NamesOf<QuonBasicFileMatcher>(root.Path(), kQuonMatchFolders);
    for (const wchar_t* const name : kTrimmedNames)
    {
        EXPECT_NE(std::find(names.begin(), names.end(), name), names.end()) << testing::PrintToString(name);
    }
}

TEST(HostileTrees, WalksOverNamesThatEndInBlanksOrDotsEnd)
{
    const HardLimit limit(60000);
    const TemporaryFolder root;
    FillWithTrimmedNames(root);
    ExpectWalkEnds<QuonBFSDirectoryTree>(root.Path(), kQuonMatchFolders);
    ExpectWalkEnds<QuonDFSDirectoryTree>(root.Path(), kQuonMatchFolders);
    ExpectWalkEnds<QuonBFSFileTree>(root.Path(), kQuonMatchFiles);
    ExpectWalkEnds<QuonDFSFileTree>(root.Path(), kQuonMatchFiles);
}

// Folders that the system's trimmed names do not reach stay, and are told as a failure. What lies beside the tree is
// never touched.
TEST(HostileTrees, RemovingNamesThatEndInBlanksOrDotsStaysInside)
{
    const HardLimit limit(60000);
    const TemporaryFolder outside;
    outside.WriteFile(L"beside", "x");
    outside.WriteFile(L"tree\\plain\\file", "x");
    for (const wchar_t* const name : {L"dot.", L"blank ", L"..."})
    {
        outside.WriteFile(L"tree\\" + std::wstring(name) + L"\\file ", "x");
    }
    const unsigned int result = RemoveFolderTree((outside / L"tree").c_str());
    EXPECT_EQ(result, outside.Exists(L"tree") ? 1u : 0u);
    EXPECT_FALSE(outside.Exists(L"tree\\plain"));
    EXPECT_EQ(outside.ReadFile(L"beside"), "x");
}

TEST(HostileTrees, CopyingNamesThatEndInBlanksOrDotsEnds)
{
    const HardLimit limit(60000);
    const TemporaryFolder source;
    const TemporaryFolder target;
    source.WriteFile(L"plain\\file", "x");
    source.WriteFile(L"file.", "x");
    source.WriteFile(L"blank \\file", "x");
    const unsigned int result = CopyFolderTree(source.Path().c_str(), (target / L"copy").c_str(), FALSE);
    EXPECT_LE(result, 1u);
    EXPECT_TRUE(target.Exists(L"copy\\plain"));
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

template <typename Walk>
class VanishingTrees : public testing::Test
{
};

using Walks = testing::Types<QuonBFSDirectoryTree, QuonDFSDirectoryTree, QuonBFSFileTree, QuonDFSFileTree>;
TYPED_TEST_SUITE(VanishingTrees, Walks);

// Everything below the root goes while the walk stands at its n-th match, for every n.
TYPED_TEST(VanishingTrees, AWalkEndsWhenItsTreeVanishes)
{
    const HardLimit limit(120000);
    for (std::size_t at = 1; at <= 12; ++at)
    {
        SCOPED_TRACE(at);
        const TemporaryFolder root;
        FillThreeLevels(root);
        const std::vector<std::wstring> names = NamesOf<TypeParam>(root.Path(), kQuonMatchEverything,
                                                                   [&](std::size_t match)
                                                                   {
                                                                       if (match == at)
                                                                       {
                                                                           for (const wchar_t* sub : {L"a", L"b", L"c"})
                                                                           {
                                                                               RemoveFolderTree((root / sub).c_str());
                                                                           }
                                                                       }
                                                                   });
        EXPECT_GE(names.size(), std::min<std::size_t>(at, 9));
        EXPECT_LT(names.size(), 40u);
    }
}

// Each match is removed, file or folder, before the walk goes on.
TYPED_TEST(VanishingTrees, AWalkEndsWhenEachMatchVanishes)
{
    const HardLimit limit(60000);
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
    EXPECT_GE(matches, 3u);
    EXPECT_LT(matches, 40u);
    EXPECT_FALSE(walk.FindNext());
}

// A folder that is renamed under the walk is gone for it, and the rest is still found.
TYPED_TEST(VanishingTrees, AWalkGoesOnWhenAFolderIsRenamed)
{
    const HardLimit limit(60000);
    const TemporaryFolder root;
    FillThreeLevels(root);
    const std::vector<std::wstring> names =
        NamesOf<TypeParam>(root.Path(), kQuonMatchEverything,
                           [&](std::size_t match)
                           {
                               if (match == 1)
                               {
                                   ::MoveFileW((root / L"b").c_str(), (root / L"renamed").c_str());
                               }
                           });
    EXPECT_GE(names.size(), 3u);
    EXPECT_LT(names.size(), 60u);
}

// Deeper than any path that the system takes without a prefix: the walk sees as far as it gets.
TEST(HostileTrees, ATreeDeeperThanTheLongestPathEnds)
{
    const HardLimit limit(120000);
    const TemporaryFolder root;
    std::wstring relative;
    for (int depth = 0; depth < 60; ++depth)
    {
        relative += (relative.empty() ? L"" : L"\\") + std::wstring(20, static_cast<wchar_t>(L'a' + depth % 26));
    }
    root.WriteFile(relative + L"\\file", "x");
    for (const unsigned int filter : {kQuonMatchEverything, kQuonMatchFolders, kQuonMatchFiles})
    {
        EXPECT_LE(NamesOf<QuonBFSDirectoryTree>(root.Path(), filter).size(), 200u);
        EXPECT_LE(NamesOf<QuonDFSDirectoryTree>(root.Path(), filter).size(), 200u);
        EXPECT_LE(NamesOf<QuonBFSFileTree>(root.Path(), filter).size(), 200u);
        EXPECT_LE(NamesOf<QuonDFSFileTree>(root.Path(), filter).size(), 200u);
    }
    const unsigned int result = RemoveFolderTree((root / std::wstring(20, L'a')).c_str());
    EXPECT_EQ(result, root.Exists(std::wstring(20, L'a')) ? 1u : 0u);
}

}  // namespace
