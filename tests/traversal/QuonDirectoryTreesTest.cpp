#include <afxtempl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "helpers/FolderListing.h"
#include "helpers/RandomTree.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonDirectoryTrees.h"
#include "traversal/Walk.h"

namespace
{

using quon_test::Names;
using quon_test::Remaining;
using quon_test::TemporaryFolder;
using quon_test::Text;
using quon_test::Walk;

Names Sorted(Names names)
{
    std::sort(names.begin(), names.end());
    return names;
}

TEST(DirectoryTrees, VisitTheirTextbookExample)
{
    const TemporaryFolder root;
    root.MakeFolder(L"A\\A1");
    root.MakeFolder(L"A\\A2");
    root.MakeFolder(L"B");
    root.WriteFile(L"file");
    root.WriteFile(L"A\\file");
    QuonDFSDirectoryTree depthFirst;
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"*", 0x10), (Names{L"A\\A1", L"A\\A2", L"A", L"B", L""}));
    QuonBFSDirectoryTree breadthFirst;
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"*", 0x10), (Names{L"", L"A", L"B", L"A\\A1", L"A\\A2"}));
}

TEST(DirectoryTrees, PatternHoldsForTheFirstLevelOrForEveryLevel)
{
    const TemporaryFolder root;
    for (const wchar_t* folder : {L"A1\\A2\\A3", L"A1\\B2\\A3", L"A1\\A2\\B3\\A4", L"B1\\A2", L"A9"})
    {
        root.MakeFolder(folder);
    }
    QuonBFSDirectoryTree breadthFirst;
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"A*", 0x10),
              (Names{L"", L"A1", L"A9", L"A1\\A2", L"A1\\B2", L"A1\\A2\\A3", L"A1\\A2\\B3", L"A1\\B2\\A3",
                     L"A1\\A2\\B3\\A4"}));
    QuonDFSDirectoryTree depthFirst;
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"A*", 0x10), (Names{L"A1\\A2\\A3", L"A1\\A2", L"A1", L"A9", L""}));
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"none", 0x10), Names{L""});
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"none", 0x10), Names{L""});
    // An empty pattern searches for the root itself, by its own name.
    const std::wstring own = root.Path().substr(root.Path().rfind(L'\\') + 1);
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"", 0x10), (Names{L"", own}));
}

TEST(DirectoryTrees, BreadthFirstDropsLeadingSeparatorsOfThePattern)
{
    const TemporaryFolder root;
    root.MakeFolder(L"A\\A1");
    root.MakeFolder(L"B");
    QuonBFSDirectoryTree tree;
    EXPECT_EQ(Walk(tree, root.Path(), L"/\\A*", 0x10), (Names{L"", L"A", L"A\\A1"}));
}

template <typename Tree>
class EachDirectoryTree : public testing::Test
{
protected:
    TemporaryFolder m_root;
    Tree m_tree;
};
using DirectoryTreeTypes = testing::Types<QuonBFSDirectoryTree, QuonDFSDirectoryTree>;
TYPED_TEST_SUITE(EachDirectoryTree, DirectoryTreeTypes);

TYPED_TEST(EachDirectoryTree, YieldsARootWithoutSubfoldersOnce)
{
    this->m_root.WriteFile(L"file");
    this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
    ASSERT_TRUE(this->m_tree.IsFound());
    EXPECT_EQ(Text(this->m_tree.GetFoundName()), L"");
    EXPECT_EQ(Text(this->m_tree.GetFoundPath()), this->m_root.Path());
    EXPECT_FALSE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.IsFound());
}

TYPED_TEST(EachDirectoryTree, YieldsARootThatCannotBeListedOnce)
{
    const std::wstring file = this->m_root.WriteFile(L"file");
    const std::wstring kRoots[] = {this->m_root / L"missing", file, L"Q:\\nowhere", this->m_root / L"in|valid"};
    for (const std::wstring& root : kRoots)
    {
        SCOPED_TRACE(testing::PrintToString(root));
        EXPECT_TRUE(this->m_tree.FindFirst(root.c_str(), L"*", 0x10));
        EXPECT_EQ(Text(this->m_tree.GetFoundPath()), root);
        EXPECT_EQ(Remaining(this->m_tree), Names{L""});
    }
}

TYPED_TEST(EachDirectoryTree, IgnoresTheFilter)
{
    this->m_root.MakeFolder(L"hidden", FILE_ATTRIBUTE_HIDDEN);
    this->m_root.MakeFolder(L"plain\\system", FILE_ATTRIBUTE_SYSTEM);
    this->m_root.WriteFile(L"plain\\file");
    const Names all = {L"", L"hidden", L"plain", L"plain\\system"};
    for (const unsigned int filter : {0u, 0x10u, 0x20u, 0x2090u, 0x30u, 0xFFFFFFFFu})
    {
        EXPECT_EQ(Sorted(Walk(this->m_tree, this->m_root.Path(), L"*", filter)), all) << std::hex << filter;
    }
}

TYPED_TEST(EachDirectoryTree, DoesNothingWhileIdle)
{
    for (int round = 0; round < 2; ++round)
    {
        SCOPED_TRACE(round == 0 ? "fresh" : "closed");
        EXPECT_FALSE(this->m_tree.IsFound());
        EXPECT_FALSE(this->m_tree.FindNext());
        EXPECT_FALSE(this->m_tree.IsFound());
        EXPECT_EQ(Text(this->m_tree.GetFoundPath()), L"");
        EXPECT_EQ(Text(this->m_tree.GetFoundName()), L"");
        EXPECT_EQ(Text(this->m_tree.GetFolder()), L"");
        this->m_root.MakeFolder(L"A");
        this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
        this->m_tree.Close();
    }
}

TYPED_TEST(EachDirectoryTree, RestartsInAnyState)
{
    this->m_root.MakeFolder(L"A\\A1\\A11");
    this->m_root.MakeFolder(L"B");
    const std::size_t all = 5;
    for (std::size_t steps = 0; steps <= all + 1; ++steps)
    {
        this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
        for (std::size_t i = 0; i < steps; ++i)
        {
            this->m_tree.FindNext();
        }
        EXPECT_EQ(this->m_tree.IsFound(), steps < all) << steps;
        EXPECT_EQ(Walk(this->m_tree, this->m_root.Path(), L"*", 0x10).size(), all) << steps;
        EXPECT_EQ(Walk(this->m_tree, this->m_root / L"A", L"*", 0x10).size(), 3u) << steps;
    }
}

TYPED_TEST(EachDirectoryTree, ResultsTellWhetherThereIsAFolder)
{
    this->m_root.MakeFolder(L"A");
    EXPECT_TRUE(this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10));
    EXPECT_TRUE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.FindNext());
}

TYPED_TEST(EachDirectoryTree, ArgumentsMayBeItsOwnTexts)
{
    // Puts other text where the closed walk had its own: whoever reads that afterwards is found out.
    struct Overwriting : TypeParam
    {
        void Close() override
        {
            TypeParam::Close();
            for (int i = 0; i < 200; ++i)
            {
                texts.emplace_back(L'#', length);
            }
        }
        int length = 0;
        std::vector<CString> texts;
    };
    this->m_root.MakeFolder(L"A");
    Overwriting tree;
    tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
    // The copy shares its characters with the object, so this is the object's own text.
    const wchar_t* const root = tree.GetFolder();
    tree.length = static_cast<int>(this->m_root.Path().size());
    EXPECT_TRUE(tree.FindFirst(root, L"*", 0x10));
    EXPECT_EQ(Text(tree.GetFolder()), this->m_root.Path());
    EXPECT_EQ(Remaining(tree).size(), 2u);
}

TYPED_TEST(EachDirectoryTree, CloseOfADerivedClassRunsBeforeAWalk)
{
    struct Counting : TypeParam
    {
        void Close() override
        {
            ++closed;
            TypeParam::Close();
        }
        int closed = 0;
    };
    Counting tree;
    tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
    EXPECT_EQ(tree.closed, 1);
    Remaining(tree);
    EXPECT_EQ(tree.closed, 1);
    tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x10);
    EXPECT_EQ(tree.closed, 2);
}

TYPED_TEST(EachDirectoryTree, WalksTheCurrentFolderWhenTheRootIsEmpty)
{
    this->m_root.MakeFolder(L"A\\A1");
    SetCurrentDirectoryW(this->m_root.Path().c_str());
    this->m_tree.FindFirst(L"", L"*", 0x10);
    Names paths;
    for (; this->m_tree.IsFound(); this->m_tree.FindNext())
    {
        EXPECT_EQ(Text(this->m_tree.GetFoundPath()), Text(this->m_tree.GetFoundName()));
        paths.push_back(Text(this->m_tree.GetFoundPath()));
    }
    EXPECT_EQ(Sorted(paths), (Names{L"", L"A", L"A\\A1"}));
}

TYPED_TEST(EachDirectoryTree, EndsAtDeepFolders)
{
    std::wstring deepest;
    for (int level = 0; level < 40; ++level)
    {
        deepest = quon_test::JoinNames(deepest, L"d");
    }
    this->m_root.MakeFolder(deepest);
    Names names = Sorted(Walk(this->m_tree, this->m_root.Path(), L"*", 0x10));
    ASSERT_EQ(names.size(), 41u);
    EXPECT_EQ(names.back(), deepest);
}

// Takes the very object that a getter returned: any copy of it would write "\" whatever the object itself writes.
std::wstring WithSeparatorAdded(QuonPath path)
{
    path.AddTrailingSeparator();
    return Text(path);
}

TYPED_TEST(EachDirectoryTree, FoundPathsHaveBackslashes)
{
    this->m_root.MakeFolder(L"A");
    std::wstring root = this->m_root.Path();
    std::replace(root.begin(), root.end(), L'\\', L'/');
    this->m_tree.FindFirst(root.c_str(), L"*", 0x10);
    EXPECT_EQ(Text(this->m_tree.GetFolder()), root);
    for (; this->m_tree.IsFound(); this->m_tree.FindNext())
    {
        EXPECT_EQ(WithSeparatorAdded(this->m_tree.GetFoundPath()).back(), L'\\');
        EXPECT_EQ(WithSeparatorAdded(this->m_tree.GetFoundName()).back(), L'\\');
        EXPECT_EQ(WithSeparatorAdded(this->m_tree.GetFolder()).back(), L'\\');
        if (Text(this->m_tree.GetFoundName()) == L"A")
        {
            EXPECT_EQ(Text(this->m_tree.GetFoundPath()), this->m_root / L"A");
        }
    }
}

TEST(DirectoryTrees, TheRootsOwnPathIsNormalisedBreadthFirstAndAsGivenDepthFirst)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A");
    std::wstring root = folder.Path() + L"\\";
    std::replace(root.begin(), root.end(), L'\\', L'/');
    QuonBFSDirectoryTree breadthFirst;
    breadthFirst.FindFirst(root.c_str(), L"*", 0x10);
    EXPECT_EQ(Text(breadthFirst.GetFoundPath()), folder.Path() + L"\\");
    EXPECT_EQ(Text(breadthFirst.GetFolder()), root);
    QuonDFSDirectoryTree depthFirst;
    depthFirst.FindFirst(root.c_str(), L"*", 0x10);
    EXPECT_EQ(Text(depthFirst.GetFoundPath()), folder / L"A");
    depthFirst.FindNext();
    EXPECT_EQ(Text(depthFirst.GetFoundPath()), root);
    EXPECT_EQ(Text(depthFirst.GetFoundName()), L"");
    EXPECT_EQ(Text(depthFirst.GetFolder()), root);
}

TEST(DirectoryTrees, GettersAfterTheEnd)
{
    const TemporaryFolder root;
    root.MakeFolder(L"A");
    QuonBFSDirectoryTree breadthFirst;
    Walk(breadthFirst, root.Path(), L"*", 0x10);
    EXPECT_EQ(Text(breadthFirst.GetFoundName()), L"");
    EXPECT_EQ(Text(breadthFirst.GetFoundPath()), root.Path());  // the root joined with nothing
    EXPECT_EQ(Text(breadthFirst.GetFolder()), root.Path());
    QuonDFSDirectoryTree depthFirst;
    Walk(depthFirst, root.Path(), L"*", 0x10);
    EXPECT_EQ(Text(depthFirst.GetFoundName()), L"");
    EXPECT_EQ(Text(depthFirst.GetFoundPath()), L"");
    EXPECT_EQ(Text(depthFirst.GetFolder()), root.Path());
}

TEST(DirectoryTrees, ABreadthFirstWalkListsAFolderWhenItBecomesCurrent)
{
    const TemporaryFolder root;
    root.MakeFolder(L"A");
    QuonBFSDirectoryTree tree;
    tree.FindFirst(root.Path().c_str(), L"*", 0x10);
    root.MakeFolder(L"late");  // the root was listed already
    root.MakeFolder(L"A\\early");
    EXPECT_EQ(Remaining(tree), (Names{L"", L"A", L"A\\early"}));
}

TEST(DirectoryTrees, FoldersCanBeRemovedDuringADepthFirstWalk)
{
    const TemporaryFolder root;
    for (const wchar_t* folder : {L"r\\A\\A1\\A11", L"r\\A\\A2", L"r\\B", L"r\\C\\C1"})
    {
        root.MakeFolder(folder);
    }
    {
        QuonDFSDirectoryTree tree;
        for (tree.FindFirst((root / L"r").c_str(), L"*", 0x10); tree.IsFound(); tree.FindNext())
        {
            EXPECT_TRUE(RemoveDirectoryW(tree.GetFoundPath())) << testing::PrintToString(Text(tree.GetFoundName()));
        }
    }
    EXPECT_FALSE(root.Exists(L"r"));
}

TEST(DirectoryTrees, VisitWhatAnIndependentListingFindsInTheSameOrder)
{
    for (unsigned int seed = 3; seed <= 8; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const TemporaryFolder root;
        quon_test::FillRandomly(root, seed, seed * 8, 30);
        QuonBFSDirectoryTree breadthFirst;
        QuonDFSDirectoryTree depthFirst;
        const Names breadth = Walk(breadthFirst, root.Path(), L"*", 0x10);
        const Names depth = Walk(depthFirst, root.Path(), L"*", 0x10);
        EXPECT_EQ(breadth, quon_test::FoldersByLevel(root.Path()));
        EXPECT_EQ(depth, quon_test::FoldersPostOrder(root.Path()));
        EXPECT_EQ(Sorted(breadth), Sorted(depth));
        EXPECT_GT(breadth.size(), 5u);
    }
}

TEST(DirectoryTrees, FoundPathIsTheRootJoinedWithTheFoundName)
{
    const TemporaryFolder root;
    quon_test::FillRandomly(root, 77, 40, 0);
    for (const bool depthFirst : {false, true})
    {
        const std::unique_ptr<QuonFileMatch> tree = depthFirst
                                                        ? std::unique_ptr<QuonFileMatch>(new QuonDFSDirectoryTree)
                                                        : std::make_unique<QuonBFSDirectoryTree>();
        for (tree->FindFirst(root.Path().c_str(), L"*", 0x10); tree->IsFound(); tree->FindNext())
        {
            const std::wstring name = Text(tree->GetFoundName());
            EXPECT_EQ(Text(tree->GetFoundPath()), name.empty() ? root.Path() : root / name);
            EXPECT_EQ(Text(tree->GetFolder()), root.Path());
        }
    }
}

}  // namespace
