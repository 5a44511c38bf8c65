// How the matcher and the trees call the system: arguments, results that decide, and every search closed once.
#include <afxtempl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <new>

#include "helpers/FailingAllocation.h"
#include "helpers/SearchJournal.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonFileTrees.h"
#include "traversal/Walk.h"

namespace
{

using quon_test::FailingAllocation;
using quon_test::Names;
using quon_test::SearchJournal;
using quon_test::TemporaryFolder;
using quon_test::Text;
using quon_test::Walk;

TEST(SearchCall, TwoFiltersExactlyLimitTheSearchToFolders)
{
    const TemporaryFolder folder;
    const struct
    {
        unsigned int filter;
        FINDEX_SEARCH_OPS operation;
    } kRows[] = {
        {0x10, FindExSearchLimitToDirectories}, {0x2090, FindExSearchLimitToDirectories},
        {0x0, FindExSearchNameMatch},           {0x20, FindExSearchNameMatch},
        {0x30, FindExSearchNameMatch},          {0x11, FindExSearchNameMatch},
        {0x12, FindExSearchNameMatch},          {0x90, FindExSearchNameMatch},
        {0x2010, FindExSearchNameMatch},        {0x2091, FindExSearchNameMatch},
        {0x10010, FindExSearchNameMatch},  // the same condition, but not the same code
        {0x80002090, FindExSearchNameMatch},
    };
    for (const auto& row : kRows)
    {
        SCOPED_TRACE(testing::Message() << std::hex << "filter 0x" << row.filter);
        SearchJournal journal;
        QuonBasicFileMatcher matcher;
        matcher.FindFirst(folder.Path().c_str(), L"*.x", row.filter);
        ASSERT_EQ(journal.Openings().size(), 1u);
        const quon_test::SearchOpening& call = journal.Openings()[0];
        EXPECT_EQ(call.operation, row.operation);
        EXPECT_EQ(call.path, folder / L"*.x");
        EXPECT_EQ(call.level, FindExInfoStandard);
        EXPECT_EQ(call.data, matcher.GetFindData());
        EXPECT_EQ(call.searchFilter, nullptr);
        EXPECT_EQ(call.flags, 0u);
    }
}

TEST(SearchCall, LimitedSearchesStillTestEveryEntry)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"file");
    folder.MakeFolder(L"folder");
    QuonBasicFileMatcher matcher;
    EXPECT_EQ(Walk(matcher, folder.Path(), L"f*", 0x10), Names{L"folder"});
    EXPECT_EQ(Walk(matcher, folder.Path(), L"f*", 0x2090), Names{L"folder"});
}

TEST(SearchCall, PathIsFolderJoinedWithPattern)
{
    const struct
    {
        const wchar_t* folder;
        const wchar_t* pattern;
        const wchar_t* path;
    } kRows[] = {
        {L"", L"*.q", L"*.q"},
        {L"Q:\\a", L"", L"Q:\\a"},
        {L"Q:\\a", L"*", L"Q:\\a\\*"},
        {L"Q:\\a\\", L"*", L"Q:\\a\\*"},
        {L"Q:/a//b/", L"//c/*.*", L"Q:\\a\\b\\c\\*.*"},
        {L"Q:", L"*", L"Q:\\*"},  // a drive alone means its root, not its current folder
        {L"\\\\srv/share", L"*", L"\\\\srv\\share\\*"},
        {L"\\\\?\\Q:\\a", L"*", L"\\\\?\\Q:\\a\\*"},
        {L"", L"", L""},
    };
    for (const auto& row : kRows)
    {
        SearchJournal journal;
        QuonBasicFileMatcher matcher;
        matcher.FindFirst(row.folder, row.pattern, 0x30);
        EXPECT_EQ(journal.Paths(), Names{row.path});
    }
}

TEST(SearchCall, FindFirstGoesOnOnlyWhileTheResultIsExactlyTrue)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"a");
    folder.WriteFile(L"b");
    SearchJournal journal;
    QuonBasicFileMatcher matcher;
    matcher.FindFirst(folder.Path().c_str(), L"*", 0);
    ASSERT_TRUE(matcher.IsFound());  // past "." and ".."

    journal.nextResult = 2;
    EXPECT_FALSE(matcher.FindFirst(folder.Path().c_str(), L"*", 0));
    EXPECT_FALSE(matcher.IsFound());
    EXPECT_STREQ(matcher.GetFindData()->cFileName, L"..");  // was read, but not looked at
    EXPECT_EQ(journal.OpenNow(), 1u);                       // open until Close
    matcher.Close();
    EXPECT_EQ(journal.OpenNow(), 0u);
}

TEST(SearchCall, FindNextTakesAnyResultButZeroForItsFirstEntryAlone)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"a");
    folder.WriteFile(L"b");
    folder.MakeFolder(L"c");
    folder.WriteFile(L"d");
    SearchJournal journal;
    QuonBasicFileMatcher matcher;
    matcher.SetSkipDots(FALSE);
    matcher.FindFirst(folder.Path().c_str(), L"?", 0x20);
    ASSERT_EQ(Text(matcher.GetFoundName()), L"a");
    journal.nextResult = -1;
    EXPECT_TRUE(matcher.FindNext());
    EXPECT_EQ(Text(matcher.GetFoundName()), L"b");
    EXPECT_FALSE(matcher.FindNext());  // "c" is no match, and the step to "d" did not give TRUE
    EXPECT_STREQ(matcher.GetFindData()->cFileName, L"d");
}

TEST(SearchCall, FindNextAsksTheSystemAlsoWhenNoSearchIsOpen)
{
    SearchJournal journal;
    QuonBasicFileMatcher matcher;
    EXPECT_FALSE(matcher.FindNext());
    EXPECT_EQ(journal.NextCalls(), 1u);
    EXPECT_EQ(journal.Events(), Names());
}

TEST(SearchHandles, MatcherClosesEachSearchOnceAndBeforeTheNext)
{
    const TemporaryFolder folder;
    const std::wstring first = folder.MakeFolder(L"1") + L"\\*";
    const std::wstring second = folder.MakeFolder(L"2") + L"\\*";
    SearchJournal journal;
    {
        QuonBasicFileMatcher matcher;
        matcher.FindFirst((folder / L"1").c_str(), L"*", 0);
        matcher.FindFirst((folder / L"2").c_str(), L"*", 0);
        EXPECT_EQ(journal.Events(), (Names{L"open " + first, L"close " + first, L"open " + second}));
    }
    EXPECT_EQ(journal.Events().back(), L"close " + second);
    EXPECT_EQ(journal.Events().size(), 4u);
}

TEST(SearchHandles, MatcherClosesOnlyWhatIsOpen)
{
    const TemporaryFolder folder;
    SearchJournal journal;
    {
        QuonBasicFileMatcher matcher;
        matcher.Close();
        matcher.FindFirst((folder / L"missing").c_str(), L"*", 0);
        matcher.Close();
        matcher.FindFirst(folder.Path().c_str(), L"*", 0);
        matcher.Close();
        matcher.Close();
    }
    EXPECT_EQ(journal.Events(), (Names{L"fail " + folder.Path() + L"\\missing\\*", L"open " + folder.Path() + L"\\*",
                                       L"close " + folder.Path() + L"\\*"}));
}

TEST(SearchHandles, AFailureToCloseIsIgnored)
{
    const TemporaryFolder folder;
    SearchJournal journal;
    journal.closeResult = FALSE;
    QuonBasicFileMatcher matcher;
    matcher.FindFirst(folder.Path().c_str(), L"*", 0);
    matcher.Close();
    matcher.Close();
    EXPECT_EQ(journal.Events().size(), 2u);
}

TEST(SearchHandles, ExhaustedSearchStaysOpenUntilClose)
{
    const TemporaryFolder folder;
    SearchJournal journal;
    QuonBasicFileMatcher matcher;
    Walk(matcher, folder.Path(), L"*", 0);
    EXPECT_EQ(journal.OpenNow(), 1u);
    matcher.Close();
    EXPECT_EQ(journal.OpenNow(), 0u);
}

template <typename Tree>
class SearchHandlesOf : public testing::Test
{
};
using EveryClass =
    testing::Types<QuonBasicFileMatcher, QuonBFSDirectoryTree, QuonDFSDirectoryTree, QuonBFSFileTree, QuonDFSFileTree>;
TYPED_TEST_SUITE(SearchHandlesOf, EveryClass);

// Every way of leaving a walk: at its end, half-way, by Close, by a new start, by destruction.
TYPED_TEST(SearchHandlesOf, AreAllClosedHoweverTheWalkEnds)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1\\A11");
    folder.MakeFolder(L"B\\B1");
    folder.WriteFile(L"A\\A1\\file");
    folder.WriteFile(L"file");
    for (int steps = 0; steps < 12; ++steps)
    {
        SCOPED_TRACE(testing::Message() << "after " << steps << " steps");
        const auto walk = [&](QuonFileMatch& match) {
            match.FindFirst(folder.Path().c_str(), L"*", 0x20);
            for (int i = 0; i < steps; ++i)
            {
                match.FindNext();
            }
        };
        SearchJournal journal;
        {
            TypeParam match;
            walk(match);
            match.Close();
            EXPECT_EQ(journal.OpenNow(), 0u);
            EXPECT_FALSE(match.IsFound());
            walk(match);
            walk(match);
        }
        EXPECT_EQ(journal.OpenNow(), 0u);
        {
            const std::unique_ptr<QuonFileMatch> match = std::make_unique<TypeParam>();
            walk(*match);
        }
        EXPECT_EQ(journal.OpenNow(), 0u);
        const Names& events = journal.Events();
        EXPECT_EQ(std::count(events.begin(), events.end(), L"close ?"), 0);
    }
}

TEST(SearchHandles, BreadthFirstTreeKeepsNoneOpen)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1\\A11");
    folder.MakeFolder(L"B");
    SearchJournal journal;
    QuonBFSDirectoryTree tree;
    for (tree.FindFirst(folder.Path().c_str(), L"A*", 0); tree.IsFound(); tree.FindNext())
    {
        EXPECT_EQ(journal.OpenNow(), 0u) << Text(tree.GetFoundName());
    }
    EXPECT_EQ(journal.MostOpen(), 1u);
    EXPECT_EQ(journal.Paths(),
              (Names{folder / L"A*", folder / L"A\\*", folder / L"A\\A1\\*", folder / L"A\\A1\\A11\\*"}));
    for (const quon_test::SearchOpening& call : journal.Openings())
    {
        EXPECT_EQ(call.operation, FindExSearchLimitToDirectories);
    }
}

TEST(SearchHandles, DepthFirstTreeKeepsOnePerLevel)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1\\A11");
    folder.MakeFolder(L"AB");
    folder.MakeFolder(L"B");
    SearchJournal journal;
    QuonDFSDirectoryTree tree;
    std::vector<std::size_t> open;
    for (tree.FindFirst(folder.Path().c_str(), L"*", 0); tree.IsFound(); tree.FindNext())
    {
        open.push_back(journal.OpenNow());
    }
    EXPECT_EQ(open, (std::vector<std::size_t>{4, 3, 2, 2, 2, 1}));
    EXPECT_EQ(journal.OpenNow(), 0u);
}

// The last events that closed something, without what came before.
Names Closings(const Names& events, std::size_t count)
{
    return Names(events.end() - static_cast<std::ptrdiff_t>(count), events.end());
}

TEST(SearchHandles, DepthFirstTreeClosesFromTheRootDown)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1");
    SearchJournal journal;
    QuonDFSDirectoryTree tree;
    tree.FindFirst(folder.Path().c_str(), L"*", 0);
    tree.Close();
    EXPECT_EQ(Closings(journal.Events(), 3), (Names{L"close " + folder.Path() + L"\\*", L"close " + (folder / L"A\\*"),
                                                    L"close " + (folder / L"A\\A1\\*")}));
}

TEST(SearchHandles, FileTreeClosesTheSearchForFilesFirst)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"A\\file");
    SearchJournal journal;
    QuonDFSFileTree tree;
    tree.FindFirst(folder.Path().c_str(), L"f*", 0);
    tree.Close();
    EXPECT_EQ(Closings(journal.Events(), 3), (Names{L"close " + (folder / L"A\\f*"), L"close " + folder.Path() + L"\\*",
                                                    L"close " + (folder / L"A\\*")}));
}

TEST(SearchHandles, DepthFirstTreeSearchesEveryLevelForThePattern)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1\\A11");
    folder.MakeFolder(L"AB");
    folder.MakeFolder(L"B");
    SearchJournal journal;
    QuonDFSDirectoryTree tree;
    Walk(tree, folder.Path(), L"A*", 0);
    EXPECT_EQ(journal.Paths(), (Names{folder / L"A*", folder / L"A\\A*", folder / L"A\\A1\\A*",
                                      folder / L"A\\A1\\A11\\A*", folder / L"AB\\A*"}));
    for (const quon_test::SearchOpening& call : journal.Openings())
    {
        EXPECT_EQ(call.operation, FindExSearchLimitToDirectories);
    }
}

TEST(SearchHandles, FileTreesWalkEveryFolderAndSearchEachForThePattern)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A");
    folder.WriteFile(L"f.x");
    {
        SearchJournal journal;
        QuonBFSFileTree tree;
        EXPECT_FALSE(tree.FindFirst(folder.Path().c_str(), L"*.x", 0x2090));
        EXPECT_EQ(journal.Paths(), (Names{folder / L"*", folder / L"*.x", folder / L"A\\*", folder / L"A\\*.x"}));
        EXPECT_EQ(journal.Openings()[0].operation, FindExSearchLimitToDirectories);
        EXPECT_EQ(journal.Openings()[1].operation, FindExSearchLimitToDirectories);
        EXPECT_EQ(journal.OpenNow(), 0u);
    }
    {
        SearchJournal journal;
        QuonDFSFileTree tree;
        EXPECT_FALSE(tree.FindFirst(folder.Path().c_str(), L"*.x", 0x30));
        EXPECT_EQ(journal.Paths(), (Names{folder / L"*", folder / L"A\\*", folder / L"A\\*.x", folder / L"*.x"}));
        EXPECT_EQ(journal.Openings()[0].operation, FindExSearchLimitToDirectories);
        EXPECT_EQ(journal.Openings()[3].operation, FindExSearchNameMatch);
        EXPECT_EQ(journal.OpenNow(), 1u);  // the search for files in the last folder, exhausted
    }
}

// The tree lives on: nothing may wait for its end or for the next walk.
TEST(SearchHandles, BreadthFirstTreeKeepsNoneOpenWhenMemoryRunsOutWhileListing)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1");
    folder.MakeFolder(L"A\\A2");
    folder.MakeFolder(L"B");
    int thrownWhileListing = 0;
    bool failed = true;
    for (int successes = 0; failed; ++successes)
    {
        ASSERT_LT(successes, 10000);
        SearchJournal journal;
        QuonBFSDirectoryTree tree;
        try
        {
            const FailingAllocation failing(successes);
            Walk(tree, folder.Path(), L"*", 0x10);
            failed = failing.Failed();
        }
        catch (const std::bad_alloc&)
        {
            thrownWhileListing += journal.MostOpen() > 0 ? 1 : 0;
        }
        catch (CException* exception)
        {
            thrownWhileListing += journal.MostOpen() > 0 ? 1 : 0;
            exception->Delete();
        }
        ASSERT_EQ(journal.OpenNow(), 0u) << "after " << successes << " allocations";
        EXPECT_EQ(Walk(tree, folder.Path(), L"*", 0x10), (Names{L"", L"A", L"B", L"A\\A1", L"A\\A2"}));
    }
    EXPECT_GT(thrownWhileListing, 0);
}

TYPED_TEST(SearchHandlesOf, AreAllClosedWhenMemoryRunsOut)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"A\\A1");
    folder.WriteFile(L"A\\file");
    SearchJournal journal;
    int thrown = 0;
    bool failed = true;
    for (int successes = 0; failed; ++successes)
    {
        ASSERT_LT(successes, 10000);
        try
        {
            TypeParam match;
            const FailingAllocation failing(successes);
            Walk(match, folder.Path(), L"*", 0x20);
            failed = failing.Failed();  // some failures are made up for
        }
        catch (const std::bad_alloc&)
        {
            ++thrown;
        }
        catch (CException* exception)
        {
            ++thrown;
            exception->Delete();
        }
        ASSERT_EQ(journal.OpenNow(), 0u) << "after " << successes << " allocations";
    }
    EXPECT_GT(thrown, 0);
}

}  // namespace
