#include <afxtempl.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "helpers/FolderListing.h"
#include "helpers/RandomTree.h"
#include "helpers/SearchJournal.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonFileTrees.h"
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

void FillExample(const TemporaryFolder& root)
{
    for (const wchar_t* file : {L"A\\A1\\1.t", L"A\\A1\\2.t", L"A\\A2\\3.t", L"A\\4.t", L"B\\5.u", L"6.t", L"7.u"})
    {
        root.WriteFile(file);
    }
    root.MakeFolder(L"C\\C1");
}

TEST(FileTrees, ListFilesInTheOrderOfTheFolders)
{
    const TemporaryFolder root;
    FillExample(root);
    QuonBFSFileTree breadthFirst;
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"*", 0x20),
              (Names{L"6.t", L"7.u", L"A\\4.t", L"B\\5.u", L"A\\A1\\1.t", L"A\\A1\\2.t", L"A\\A2\\3.t"}));
    QuonDFSFileTree depthFirst;
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"*", 0x20),
              (Names{L"A\\A1\\1.t", L"A\\A1\\2.t", L"A\\A2\\3.t", L"A\\4.t", L"B\\5.u", L"6.t", L"7.u"}));
}

TEST(FileTrees, PatternHoldsForFilesAlone)
{
    const TemporaryFolder root;
    FillExample(root);
    QuonBFSFileTree breadthFirst;
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"*.u", 0x20), (Names{L"7.u", L"B\\5.u"}));
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"3.*", 0x20), Names{L"A\\A2\\3.t"});
    QuonDFSFileTree depthFirst;
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"*.u", 0x20), (Names{L"B\\5.u", L"7.u"}));
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"3.*", 0x20), Names{L"A\\A2\\3.t"});
}

TEST(FileTrees, FilesAreWhateverIsNoFolderWithTheArchiveAttributeOrWithout)
{
    const TemporaryFolder root;
    root.WriteFile(L"1");
    root.WriteFile(L"A\\2", "", FILE_ATTRIBUTE_HIDDEN);
    quon_test::SearchJournal journal;
    journal.clearArchive = true;
    QuonBFSFileTree breadthFirst;
    QuonDFSFileTree depthFirst;
    EXPECT_EQ(Sorted(Walk(breadthFirst, root.Path(), L"*", 0x20)), (Names{L"1", L"A\\2"}));
    EXPECT_EQ(Sorted(Walk(depthFirst, root.Path(), L"*", 0x20)), (Names{L"1", L"A\\2"}));
    EXPECT_EQ(Walk(breadthFirst, root.Path(), L"*", 0x1), Names{}) << "the attribute is not to be seen";
    EXPECT_EQ(Walk(depthFirst, root.Path(), L"*", 0x1), Names{});
}

TEST(FileTrees, FilterIsTheCallers)
{
    const TemporaryFolder root;
    root.WriteFile(L"A\\a");
    root.WriteFile(L"A\\h", "", FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
    root.MakeFolder(L"A\\B");
    root.WriteFile(L"r", "", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
    const struct
    {
        unsigned int filter;
        Names names;
    } kRows[] = {
        {0, {L"A", L"A\\B", L"A\\a", L"A\\h", L"r"}},  // subfolders too, but never "." and ".."
        {0x10, {L"A", L"A\\B"}},
        {0x20, {L"A\\a", L"A\\h", L"r"}},
        {0x40, {L"A\\h"}},
        {0xA0, {L"A\\a", L"r"}},
        {0x400, {L"r"}},
        {0x30, {}},
    };
    for (const auto& row : kRows)
    {
        SCOPED_TRACE(testing::Message() << std::hex << "filter 0x" << row.filter);
        QuonBFSFileTree breadthFirst;
        EXPECT_EQ(Sorted(Walk(breadthFirst, root.Path(), L"*", row.filter)), row.names);
        QuonDFSFileTree depthFirst;
        EXPECT_EQ(Sorted(Walk(depthFirst, root.Path(), L"*", row.filter)), row.names);
    }
}

template <typename Tree>
class EachFileTree : public testing::Test
{
protected:
    TemporaryFolder m_root;
    Tree m_tree;
};
using FileTreeTypes = testing::Types<QuonBFSFileTree, QuonDFSFileTree>;
TYPED_TEST_SUITE(EachFileTree, FileTreeTypes);

TYPED_TEST(EachFileTree, YieldsNothingWhereThereIsNothing)
{
    this->m_root.MakeFolder(L"A\\B");
    const std::wstring file = this->m_root.WriteFile(L"file");
    const std::wstring kRoots[] = {this->m_root / L"missing", this->m_root / L"A", file, L"Q:\\nowhere"};
    for (const std::wstring& root : kRoots)
    {
        SCOPED_TRACE(testing::PrintToString(root));
        EXPECT_FALSE(this->m_tree.FindFirst(root.c_str(), L"*", 0x20));
        EXPECT_FALSE(this->m_tree.IsFound());
        EXPECT_FALSE(this->m_tree.FindNext());
        EXPECT_EQ(Text(this->m_tree.GetFolder()), root);
    }
}

TYPED_TEST(EachFileTree, ResultsTellWhetherThereIsAFile)
{
    this->m_root.WriteFile(L"A\\B\\1");
    this->m_root.WriteFile(L"A\\2");
    this->m_root.WriteFile(L"C\\D\\3");
    EXPECT_TRUE(this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x20));
    EXPECT_TRUE(this->m_tree.IsFound());
    EXPECT_TRUE(this->m_tree.FindNext());
    EXPECT_TRUE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.IsFound());
    EXPECT_FALSE(this->m_tree.FindNext());
}

TYPED_TEST(EachFileTree, DoesNothingWhileIdle)
{
    EXPECT_FALSE(this->m_tree.FindNext());
    EXPECT_FALSE(this->m_tree.IsFound());
    EXPECT_EQ(Text(this->m_tree.GetFoundPath()), L"");
    EXPECT_EQ(Text(this->m_tree.GetFoundName()), L"");
    EXPECT_EQ(Text(this->m_tree.GetFolder()), L"");
}

TYPED_TEST(EachFileTree, GettersKeepTheEntryReadLast)
{
    this->m_root.WriteFile(L"last");
    Walk(this->m_tree, this->m_root.Path(), L"*", 0x20);
    const bool breadthFirst = std::is_same_v<TypeParam, QuonBFSFileTree>;
    // The walk over the folders is over: breadth-first its path is the root's, depth-first it is empty.
    EXPECT_EQ(Text(this->m_tree.GetFoundPath()), breadthFirst ? this->m_root / L"last" : L"last");
    EXPECT_EQ(Text(this->m_tree.GetFoundName()), L"last");
    EXPECT_EQ(Text(this->m_tree.GetFolder()), this->m_root.Path());
    this->m_tree.Close();
    EXPECT_EQ(Text(this->m_tree.GetFoundPath()), L"last");
    EXPECT_EQ(Text(this->m_tree.GetFoundName()), L"last");
    EXPECT_EQ(Text(this->m_tree.GetFolder()), L"");
}

TYPED_TEST(EachFileTree, RestartsInAnyState)
{
    FillExample(this->m_root);
    for (int steps = 0; steps < 10; ++steps)
    {
        this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*.t", 0x20);
        for (int i = 0; i < steps; ++i)
        {
            this->m_tree.FindNext();
        }
        EXPECT_EQ(Walk(this->m_tree, this->m_root.Path(), L"*", 0x20).size(), 7u) << steps;
    }
    EXPECT_TRUE(this->m_tree.FindFirst(this->m_tree.GetFolder(), L"*.u", 0x20));
    EXPECT_EQ(Remaining(this->m_tree).size(), 2u);
}

TYPED_TEST(EachFileTree, FoundPathsLeadToTheFiles)
{
    FillExample(this->m_root);
    std::wstring root = this->m_root.Path();
    std::replace(root.begin(), root.end(), L'\\', L'/');
    this->m_tree.FindFirst(root.c_str(), L"*", 0x20);
    for (; this->m_tree.IsFound(); this->m_tree.FindNext())
    {
        EXPECT_EQ(Text(this->m_tree.GetFoundPath()), this->m_root / Text(this->m_tree.GetFoundName()));
        EXPECT_TRUE(this->m_root.Exists(Text(this->m_tree.GetFoundName())));
    }
    EXPECT_EQ(Text(this->m_tree.GetFolder()), root);
}

TYPED_TEST(EachFileTree, CanLoseItsFilesDuringTheWalk)
{
    for (int i = 0; i < 300; ++i)
    {
        this->m_root.WriteFile((i % 3 == 0 ? L"A\\" : i % 3 == 1 ? L"A\\B\\" : L"") + std::to_wstring(i));
    }
    int deleted = 0;
    for (this->m_tree.FindFirst(this->m_root.Path().c_str(), L"*", 0x20); this->m_tree.IsFound();
         this->m_tree.FindNext())
    {
        EXPECT_TRUE(DeleteFileW(this->m_tree.GetFoundPath()));
        ++deleted;
    }
    EXPECT_EQ(deleted, 300);
}

TEST(FileTrees, ListWhatAnIndependentListingFindsInTheSameOrder)
{
    for (unsigned int seed = 101; seed <= 106; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const TemporaryFolder root;
        quon_test::FillRandomly(root, seed, 25, seed);
        const Names byLevel = quon_test::FoldersByLevel(root.Path());
        const Names postOrder = quon_test::FoldersPostOrder(root.Path());
        QuonBFSFileTree breadthFirst;
        QuonDFSFileTree depthFirst;
        const Names breadth = Walk(breadthFirst, root.Path(), L"*", 0x20);
        const Names depth = Walk(depthFirst, root.Path(), L"*", 0x20);
        EXPECT_EQ(breadth, quon_test::FilesOf(root.Path(), byLevel));
        EXPECT_EQ(depth, quon_test::FilesOf(root.Path(), postOrder));
        EXPECT_EQ(Sorted(breadth), Sorted(depth));
        EXPECT_EQ(Walk(breadthFirst, root.Path(), L"*", 0), quon_test::FilesOf(root.Path(), byLevel, true));
        EXPECT_EQ(Walk(depthFirst, root.Path(), L"*", 0), quon_test::FilesOf(root.Path(), postOrder, true));
        EXPECT_GT(breadth.size(), 50u);
    }
}

}  // namespace
