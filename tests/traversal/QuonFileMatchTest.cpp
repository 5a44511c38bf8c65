// What compiled clients rely on: the order of the virtual operations and of the members.
#include <afxtempl.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <list>
#include <new>
#include <type_traits>

#include "helpers/SearchJournal.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonFileTrees.h"
#include "traversal/Walk.h"

namespace
{

using quon_test::SearchJournal;
using quon_test::TemporaryFolder;
using quon_test::Text;

// The members of the library's classes, in their order, behind a virtual table as there.
struct WithVirtualTable
{
    virtual ~WithVirtualTable() = default;
};
struct MatcherLayout : WithVirtualTable
{
    QuonPath folder;
    QuonPath pattern;
    unsigned int filter;
    BOOL found;
    HANDLE search;
    WIN32_FIND_DATAW data;
    BOOL skipDots;
};
struct BreadthLayout : WithVirtualTable
{
    QuonPath root;
    std::list<QuonPath> queue;
    QuonBasicFileMatcher matcher;
    unsigned int folderFilter;
};
struct DepthLayout : WithVirtualTable
{
    QuonPath root;
    QuonPath unused;
    CList<QuonBasicFileMatcher*, QuonBasicFileMatcher*> stack;
    unsigned int folderFilter;
    unsigned int unusedWord;
    CString pattern;
};
template <typename FolderTree>
struct FileTreeLayout : WithVirtualTable
{
    FolderTree folders;
    QuonBasicFileMatcher matcher;
    QuonPath filePattern;
    unsigned int fileFilter;
};

template <typename Layout, typename Object>
const Layout& Look(const Object& object)
{
    static_assert(sizeof(Layout) == sizeof(Object));
    return *std::launder(reinterpret_cast<const Layout*>(&object));
}

TEST(FileMatchInterface, HasNoData)
{
    EXPECT_EQ(sizeof(QuonFileMatch), sizeof(void*));
    EXPECT_TRUE(std::is_abstract_v<QuonFileMatch>);
    EXPECT_TRUE(std::has_virtual_destructor_v<QuonFileMatch>);
    EXPECT_TRUE((std::is_base_of_v<QuonFileMatch, QuonBasicFileMatcher>));
    EXPECT_TRUE((std::is_base_of_v<QuonFileMatch, QuonBFSDirectoryTree>));
    EXPECT_TRUE((std::is_base_of_v<QuonFileMatch, QuonDFSDirectoryTree>));
    EXPECT_TRUE((std::is_base_of_v<QuonFileMatch, QuonBFSFileTree>));
    EXPECT_TRUE((std::is_base_of_v<QuonFileMatch, QuonDFSFileTree>));
}

#if !defined(_MSC_VER)
// A pointer to a virtual member holds one more than the offset of its slot (Itanium C++ ABI).
template <typename Member>
std::ptrdiff_t SlotOf(Member member)
{
    std::ptrdiff_t word = 0;
    std::memcpy(&word, &member, sizeof word);
    return (word - 1) / static_cast<std::ptrdiff_t>(sizeof(void*));
}

TEST(FileMatchInterface, VirtualOperationsKeepTheirSlots)
{
    EXPECT_EQ(SlotOf(&QuonFileMatch::Close), 0);
    EXPECT_EQ(SlotOf(&QuonFileMatch::FindFirst), 1);
    EXPECT_EQ(SlotOf(&QuonFileMatch::FindNext), 2);
    EXPECT_EQ(SlotOf(&QuonFileMatch::IsFound), 3);
    EXPECT_EQ(SlotOf(&QuonFileMatch::GetFoundPath), 4);
    EXPECT_EQ(SlotOf(&QuonFileMatch::GetFoundName), 5);
    EXPECT_EQ(SlotOf(&QuonFileMatch::GetFolder), 6);
}
#endif

TEST(ObjectLayout, FreshMatcher)
{
    const QuonBasicFileMatcher matcher;
    const auto& fields = Look<MatcherLayout>(matcher);
    EXPECT_EQ(Text(fields.folder), L"");
    EXPECT_EQ(Text(fields.pattern), L"");
    EXPECT_EQ(fields.filter, 0u);
    EXPECT_EQ(fields.found, FALSE);
    EXPECT_EQ(fields.search, INVALID_HANDLE_VALUE);
    EXPECT_EQ(&fields.data, matcher.GetFindData());
    const WIN32_FIND_DATAW zero = {};
    EXPECT_EQ(std::memcmp(&fields.data, &zero, sizeof zero), 0);
    EXPECT_EQ(fields.skipDots, TRUE);
}

TEST(ObjectLayout, SearchingMatcher)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"a.txt");
    SearchJournal journal;
    QuonBasicFileMatcher matcher;
    matcher.SetSkipDots(5);
    matcher.FindFirst(folder.Path().c_str(), L"*.txt", 0xABCD0020);
    const auto& fields = Look<MatcherLayout>(matcher);
    EXPECT_EQ(Text(fields.folder), folder.Path());
    EXPECT_EQ(Text(fields.pattern), L"*.txt");
    EXPECT_EQ(fields.filter, 0xABCD0020u);
    EXPECT_EQ(fields.found, TRUE);
    EXPECT_EQ(fields.search, journal.Openings().at(0).search);
    EXPECT_STREQ(fields.data.cFileName, L"a.txt");
    EXPECT_EQ(fields.skipDots, 5);

    matcher.Close();
    EXPECT_EQ(Text(fields.folder), L"");
    EXPECT_EQ(Text(fields.pattern), L"");
    EXPECT_EQ(fields.filter, 0u);
    EXPECT_EQ(fields.found, FALSE);
    EXPECT_EQ(fields.search, INVALID_HANDLE_VALUE);
    EXPECT_STREQ(fields.data.cFileName, L"a.txt");
    EXPECT_EQ(fields.skipDots, 5);
}

TEST(ObjectLayout, BreadthFirstTree)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A");
    folder.MakeFolder(L"B");
    QuonBFSDirectoryTree tree;
    const auto& fields = Look<BreadthLayout>(tree);
    EXPECT_EQ(Text(fields.root), L"");
    EXPECT_EQ(fields.queue.size(), 0u);
    EXPECT_EQ(fields.folderFilter, 0u);

    tree.FindFirst(folder.Path().c_str(), L"*", 0xFFFF);
    EXPECT_EQ(Text(fields.root), folder.Path());
    ASSERT_EQ(fields.queue.size(), 3u);
    EXPECT_EQ(Text(fields.queue.front()), L"");
    EXPECT_EQ(Text(fields.queue.back()), L"B");
    EXPECT_EQ(fields.folderFilter, 0x10u);
    EXPECT_EQ(Look<MatcherLayout>(fields.matcher).search, INVALID_HANDLE_VALUE);

    tree.Close();
    EXPECT_EQ(Text(fields.root), L"");
    EXPECT_EQ(fields.queue.size(), 0u);
    EXPECT_EQ(fields.folderFilter, 0x10u);
}

TEST(ObjectLayout, DepthFirstTree)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1");
    QuonDFSDirectoryTree tree;
    const auto& fields = Look<DepthLayout>(tree);
    EXPECT_EQ(Text(fields.root), L"");
    EXPECT_EQ(fields.stack.GetCount(), 0);
    EXPECT_EQ(fields.folderFilter, 0u);
    EXPECT_EQ(fields.unusedWord, 0u);

    tree.FindFirst(folder.Path().c_str(), L"A*", 0xFFFF);
    EXPECT_EQ(Text(fields.root), folder.Path());
    EXPECT_EQ(Text(fields.unused), L"");
    ASSERT_EQ(fields.stack.GetCount(), 3);
    POSITION position = fields.stack.GetHeadPosition();
    EXPECT_EQ(Text(fields.stack.GetNext(position)->GetFoundPath()), folder / L"A");
    EXPECT_EQ(Text(fields.stack.GetNext(position)->GetFoundPath()), folder / L"A\\A1");
    EXPECT_FALSE(fields.stack.GetNext(position)->IsFound());
    EXPECT_EQ(fields.folderFilter, 0x10u);
    EXPECT_EQ(fields.unusedWord, 0u);
    EXPECT_STREQ(fields.pattern, L"A*");

    tree.Close();
    EXPECT_EQ(Text(fields.root), L"");
    EXPECT_EQ(fields.stack.GetCount(), 0);
    EXPECT_STREQ(fields.pattern, L"A*");
}

template <typename Tree, typename FolderTree>
void CheckFileTreeLayout()
{
    const TemporaryFolder folder;
    folder.WriteFile(L"a.txt");
    Tree tree;
    const auto& fields = Look<FileTreeLayout<FolderTree>>(tree);
    EXPECT_EQ(Text(fields.filePattern), L"");
    EXPECT_EQ(fields.fileFilter, 0u);
    EXPECT_EQ(fields.matcher.GetSkipDots(), TRUE);

    tree.FindFirst(folder.Path().c_str(), L"*.txt", 0x21);
    EXPECT_EQ(Text(fields.folders.GetFolder()), folder.Path());
    EXPECT_TRUE(fields.folders.IsFound());
    EXPECT_EQ(Text(fields.matcher.GetFoundName()), L"a.txt");
    EXPECT_EQ(Text(fields.filePattern), L"*.txt");
    EXPECT_EQ(fields.fileFilter, 0x21u);

    tree.Close();
    EXPECT_FALSE(fields.folders.IsFound());
    EXPECT_EQ(Text(fields.folders.GetFolder()), L"");
    EXPECT_EQ(Text(fields.matcher.GetFolder()), L"");
    EXPECT_EQ(Text(fields.filePattern), L"");
    EXPECT_EQ(fields.fileFilter, 0x21u);
}

TEST(ObjectLayout, FileTrees)
{
    CheckFileTreeLayout<QuonBFSFileTree, QuonBFSDirectoryTree>();
    CheckFileTreeLayout<QuonDFSFileTree, QuonDFSDirectoryTree>();
}

}  // namespace
