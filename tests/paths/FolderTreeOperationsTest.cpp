// Copying, moving and removing whole folder trees.
#include <afx.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "paths/FileCallJournal.h"
#include "paths/FileOperations.h"
#include "helpers/FolderListing.h"
#include "helpers/RandomTree.h"
#include "helpers/SearchJournal.h"
#include "helpers/TemporaryFolder.h"

namespace
{

using quon_test::CurrentFolder;
using quon_test::FileCallJournal;
using quon_test::SearchJournal;
using quon_test::SortedTree;
using quon_test::TemporaryFolder;
using Calls = FileCallJournal::Calls;

// Names and sizes; the system decides which attributes a copy carries along.
std::vector<std::pair<std::wstring, std::uint64_t>> NamesAndSizes(const std::wstring& folder)
{
    std::vector<std::pair<std::wstring, std::uint64_t>> result;
    for (const quon_test::ListedEntry& entry : SortedTree(folder))
    {
        result.emplace_back(entry.name + (entry.IsFolder() ? L"\\" : L""), entry.size);
    }
    return result;
}

void FillExample(const TemporaryFolder& root)
{
    root.WriteFile(L"from\\1", "1");
    root.WriteFile(L"from\\A\\2", "22");
    root.WriteFile(L"from\\A\\A1\\3", "333");
    root.MakeFolder(L"from\\B\\B1");
}

TEST(CopyFolderTree, CopiesRandomTreesWhole)
{
    for (unsigned int seed = 201; seed <= 206; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const TemporaryFolder from;
        const TemporaryFolder to;
        quon_test::FillRandomly(from, seed, 25, 40);
        const auto expected = NamesAndSizes(from.Path());
        ASSERT_GT(expected.size(), 30u);
        EXPECT_EQ(CopyFolderTree(from.Path().c_str(), (to / L"deep\\copy").c_str(), TRUE), 0u);
        EXPECT_EQ(NamesAndSizes(to / L"deep\\copy"), expected);
        EXPECT_EQ(NamesAndSizes(from.Path()), expected);
    }
}

TEST(CopyFolderTree, CreatesAllFoldersBeforeTheFirstFileIsCopied)
{
    const TemporaryFolder root;
    FillExample(root);
    FileCallJournal journal;
    EXPECT_EQ(CopyFolderTree((root / L"from").c_str(), (root / L"to").c_str(), 5), 0u);
    EXPECT_EQ(journal.All().front(), L"_waccess " + (root / L"from") + L" 0");
    EXPECT_EQ(journal.Of(L"CreateDirectoryW"),
              (Calls{root / L"to", root / L"to\\A", root / L"to\\B", root / L"to\\A\\A1", root / L"to\\B\\B1"}));
    const auto copy = [&](const wchar_t* name) {
        return (root / L"from\\") + name + L" " + (root / L"to\\") + name + L" 5";
    };
    EXPECT_EQ(journal.Of(L"CopyFileW"), (Calls{copy(L"1"), copy(L"A\\2"), copy(L"A\\A1\\3")}));
    const Calls& all = journal.All();
    const auto is = [](const wchar_t* function) {
        return [function](const std::wstring& call) { return call.find(function) == 0; };
    };
    const auto lastCreated = std::find_if(all.rbegin(), all.rend(), is(L"CreateDirectoryW")).base();
    EXPECT_LT(lastCreated - 1 - all.begin(), std::find_if(all.begin(), all.end(), is(L"CopyFileW")) - all.begin());
}

TEST(CopyFolderTree, CopiesFilesWithoutTheArchiveAttribute)
{
    const TemporaryFolder root;
    FillExample(root);
    SearchJournal journal;
    journal.clearArchive = true;
    EXPECT_EQ(CopyFolderTree((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 0u);
    EXPECT_EQ(NamesAndSizes(root / L"to"), NamesAndSizes(root / L"from"));
}

TEST(CopyFolderTree, FailsWithoutASourceAndCreatesNothing)
{
    const TemporaryFolder root;
    EXPECT_EQ(CopyFolderTree((root / L"missing").c_str(), (root / L"to").c_str(), FALSE), 1u);
    EXPECT_FALSE(root.Exists(L"to"));
}

TEST(CopyFolderTree, StopsAtTheFirstFileThatExists)
{
    const TemporaryFolder root;
    FillExample(root);
    root.WriteFile(L"to\\A\\2", "old");
    EXPECT_EQ(CopyFolderTree((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 1u);
    EXPECT_EQ(root.ReadFile(L"to\\A\\2"), "old");
    EXPECT_TRUE(root.Exists(L"to\\1"));
    EXPECT_TRUE(root.Exists(L"to\\A\\A1"));  // all folders were there first
    EXPECT_FALSE(root.Exists(L"to\\A\\A1\\3"));
    EXPECT_EQ(CopyFolderTree((root / L"from").c_str(), (root / L"to").c_str(), FALSE), 0u);
    EXPECT_EQ(root.ReadFile(L"to\\A\\2"), "22");
    EXPECT_EQ(NamesAndSizes(root / L"to"), NamesAndSizes(root / L"from"));
}

TEST(CopyFolderTree, CopiesNoFileWhenAFolderCannotBeCreated)
{
    const TemporaryFolder root;
    FillExample(root);
    root.WriteFile(L"to\\B", "a file where a folder must be");
    FileCallJournal journal;
    EXPECT_EQ(CopyFolderTree((root / L"from").c_str(), (root / L"to").c_str(), FALSE), 1u);
    EXPECT_EQ(journal.Of(L"CopyFileW"), Calls());
    EXPECT_TRUE(root.Exists(L"to\\A\\A1"));  // the other folders were created all the same
}

TEST(CopyFolderTree, MergesIntoWhatIsThere)
{
    const TemporaryFolder root;
    FillExample(root);
    root.WriteFile(L"to\\kept", "kept");
    root.WriteFile(L"to\\A\\kept", "kept");
    EXPECT_EQ(CopyFolderTree((root / L"from\\").c_str(), (root / L"to/").c_str(), TRUE), 0u);
    EXPECT_EQ(NamesAndSizes(root / L"to").size(), NamesAndSizes(root / L"from").size() + 2);
}

TEST(CopyFolderTree, OfAFileCreatesAnEmptyFolder)
{
    const TemporaryFolder root;
    const std::wstring file = root.WriteFile(L"file", "x");
    EXPECT_EQ(CopyFolderTree(file.c_str(), (root / L"to").c_str(), TRUE), 0u);
    EXPECT_EQ(root.Attributes(L"to") & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_TRUE(quon_test::ListTree(root / L"to").empty());
}

TEST(RemoveFolderTree, RemovesRandomTreesWhole)
{
    for (unsigned int seed = 301; seed <= 306; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const TemporaryFolder root;
        quon_test::FillRandomly(root, seed, 25, 40);
        root.WriteFile(L"read-only\\too", "", FILE_ATTRIBUTE_READONLY);
        SearchJournal journal;
        EXPECT_EQ(RemoveFolderTree(root.Path().c_str()), 0u);
        EXPECT_EQ(journal.OpenNow(), 0u);
        EXPECT_EQ(GetFileAttributesW(root.Path().c_str()), INVALID_FILE_ATTRIBUTES);
    }
}

TEST(RemoveFolderTree, RemovesFilesWithoutTheArchiveAttribute)
{
    const TemporaryFolder root;
    FillExample(root);
    SearchJournal journal;
    journal.clearArchive = true;
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 0u);
    EXPECT_FALSE(root.Exists(L"from"));
}

TEST(RemoveFolderTree, OfNothingSucceeds)
{
    const TemporaryFolder root;
    EXPECT_EQ(RemoveFolderTree((root / L"missing").c_str()), 0u);
    EXPECT_EQ(RemoveFolderTree(L"Q:\\nowhere"), 0u);
    EXPECT_EQ(RemoveFolderTree(L""), 0u);
}

TEST(RemoveFolderTree, OfAFileFailsAndLeavesIt)
{
    const TemporaryFolder root;
    const std::wstring file = root.WriteFile(L"file");
    EXPECT_EQ(RemoveFolderTree(file.c_str()), 1u);
    EXPECT_TRUE(root.Exists(L"file"));
}

TEST(RemoveFolderTree, DeletesFilesThenFoldersDeepestFirst)
{
    const TemporaryFolder root;
    FillExample(root);
    FileCallJournal journal;
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 0u);
    EXPECT_EQ(journal.All().front(), L"GetCurrentDirectoryW 260");
    EXPECT_EQ(journal.Of(L"DeleteFileW"), (Calls{root / L"from\\A\\A1\\3", root / L"from\\A\\2", root / L"from\\1"}));
    EXPECT_EQ(journal.Of(L"RemoveDirectoryW"), (Calls{root / L"from\\A\\A1", root / L"from\\A", root / L"from\\B\\B1",
                                                      root / L"from\\B", root / L"from"}));
}

TEST(RemoveFolderTree, GoesOnAfterAFailure)
{
    const TemporaryFolder root;
    FillExample(root);
    FileCallJournal journal;
    const std::wstring stays = L"DeleteFileW " + (root / L"from\\A\\A1\\3");
    journal.fails = [&](const std::wstring& call) { return call == stays; };
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 1u);
    EXPECT_EQ(journal.Of(L"RemoveDirectoryW").size(), 5u);
    const Calls left = {L"A\\", L"A\\A1\\", L"A\\A1\\3"};
    Calls names;
    for (const auto& [name, size] : NamesAndSizes(root / L"from"))
    {
        names.push_back(name);
    }
    EXPECT_EQ(names, left);
}

// Windows refuses to remove a read-only folder. Where the system has no such folders, it is refused by its name.
TEST(RemoveFolderTree, LeavesAReadOnlyFolderAndGoesOn)
{
    const TemporaryFolder root;
    FillExample(root);
    root.MakeFolder(L"from\\B\\read-only", FILE_ATTRIBUTE_READONLY);
    root.MakeFolder(L"from\\C");
    FileCallJournal journal;
    const std::wstring stays = L"RemoveDirectoryW " + (root / L"from\\B\\read-only");
    journal.fails = [&](const std::wstring& call) { return call == stays; };
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 1u);
    EXPECT_TRUE(root.Exists(L"from\\B\\read-only"));
    EXPECT_EQ(journal.Of(L"SetFileAttributesW").size(), 3u) << "the attributes of files alone are touched";
    EXPECT_EQ(journal.Of(L"RemoveDirectoryW").size(), 7u);
    EXPECT_FALSE(root.Exists(L"from\\A"));
    EXPECT_FALSE(root.Exists(L"from\\B\\B1"));
    EXPECT_FALSE(root.Exists(L"from\\C")) << "comes after the folder that stayed";
}

TEST(RemoveFolderTree, ShowsAFileThatStaysOnlyThroughItsFolder)
{
    const TemporaryFolder root;
    root.MakeFolder(L"from");
    FileCallJournal journal;
    // The file is gone when its folder is removed, whatever its own deletion reported.
    root.WriteFile(L"from\\1");
    journal.fails = [&](const std::wstring& call) {
        return call.find(L"DeleteFileW") == 0 && DeleteFileW((root / L"from\\1").c_str());
    };
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 0u);
    EXPECT_FALSE(root.Exists(L"from"));
}

TEST(RemoveFolderTree, EndsTheWalkOverTheFilesBeforeTheFirstFolderIsRemoved)
{
    const TemporaryFolder root;
    FillExample(root);
    SearchJournal searches;
    FileCallJournal journal;
    std::vector<std::size_t> open;
    journal.fails = [&](const std::wstring& call) {
        if (call.find(L"RemoveDirectoryW") == 0)
        {
            open.push_back(searches.OpenNow());
        }
        return false;
    };
    EXPECT_EQ(RemoveFolderTree((root / L"from").c_str()), 0u);
    // One per level from the root down to the folder that is removed: none is left of the walk over the files.
    EXPECT_EQ(open, (std::vector<std::size_t>{3, 2, 3, 2, 1}));
    EXPECT_EQ(searches.OpenNow(), 0u);
}

class RemoveCurrentFolder : public testing::Test
{
protected:
    RemoveCurrentFolder() { FillExample(m_root); }

    // Removes `folder` while `current` is the current folder; gives the current folder afterwards.
    std::wstring RemoveWhileIn(const std::wstring& current, const std::wstring& folder, unsigned int result = 0)
    {
        SetCurrentDirectoryW(current.c_str());
        EXPECT_EQ(RemoveFolderTree(folder.c_str()), result);
        return CurrentFolder::Get();
    }

    CurrentFolder m_restore;
    TemporaryFolder m_root{L" Mixed Case"};
};

TEST_F(RemoveCurrentFolder, MakesTheParentCurrent)
{
    EXPECT_EQ(RemoveWhileIn(m_root / L"from", m_root / L"from"), m_root.Path());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST_F(RemoveCurrentFolder, MakesTheParentCurrentAlsoForAFolderGivenWithASeparatorAtItsEnd)
{
    EXPECT_EQ(RemoveWhileIn(m_root / L"from", m_root / L"from//"), m_root.Path());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST_F(RemoveCurrentFolder, ComparesForeignLettersWithoutCaseToo)
{
    const std::wstring lower = L"\u00E4\u0436";
    const std::wstring upper = L"\u00C4\u0416";
    for (const auto& [current, removed] : {std::pair(lower, upper), std::pair(upper, lower)})
    {
        SCOPED_TRACE(testing::PrintToString(current));
        m_root.WriteFile(current + L"\\file");
        EXPECT_EQ(RemoveWhileIn(m_root / current, m_root / removed), m_root.Path());
        EXPECT_FALSE(m_root.Exists(current));
    }
}

TEST_F(RemoveCurrentFolder, LeavesAFolderFurtherDownAsWell)
{
    EXPECT_EQ(RemoveWhileIn(m_root / L"from\\B\\B1", m_root / L"from\\"), m_root.Path());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST_F(RemoveCurrentFolder, ComparesWithoutCaseAndWithEitherSeparator)
{
    std::wstring written = m_root / L"FROM";
    std::replace(written.begin(), written.end(), L'\\', L'/');
    EXPECT_EQ(RemoveWhileIn(m_root / L"from\\A", written), m_root.Path());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST_F(RemoveCurrentFolder, StaysElsewhere)
{
    EXPECT_EQ(RemoveWhileIn(m_root.Path(), m_root / L"from"), m_root.Path());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST_F(RemoveCurrentFolder, TakesAFolderWhoseNameOnlyBeginsAlikeForOneInside)
{
    m_root.MakeFolder(L"other\\fromage");
    m_root.MakeFolder(L"other\\from");
    EXPECT_EQ(RemoveWhileIn(m_root / L"other\\fromage", m_root / L"other\\from"), m_root / L"other");
    EXPECT_TRUE(m_root.Exists(L"other\\fromage"));
    EXPECT_FALSE(m_root.Exists(L"other\\from"));
}

TEST_F(RemoveCurrentFolder, HappensEvenWhenThereIsNothingToRemove)
{
    m_root.MakeFolder(L"fromage");
    EXPECT_EQ(RemoveWhileIn(m_root / L"fromage", m_root / L"fro"), m_root.Path());
}

TEST_F(RemoveCurrentFolder, UsesBothWaysAndKeepsTheCaseOfTheParent)
{
    SetCurrentDirectoryW((m_root / L"from").c_str());
    FileCallJournal journal;
    EXPECT_EQ(RemoveFolderTree((m_root / L"From").c_str()), 0u);
    EXPECT_EQ(journal.Of(L"SetCurrentDirectoryW"), Calls{m_root.Path() + L"\\"});
    EXPECT_EQ(journal.Of(L"_wchdir"), Calls{m_root.Path() + L"\\"});
    const Calls& all = journal.All();
    ASSERT_GE(all.size(), 4u);
    EXPECT_EQ(all[0], L"GetCurrentDirectoryW 260");
    EXPECT_EQ(all[1], L"SetCurrentDirectoryW " + m_root.Path() + L"\\");
    EXPECT_EQ(all[2], L"_wchdir " + m_root.Path() + L"\\");
    EXPECT_EQ(all[3], L"_waccess " + (m_root / L"From") + L" 0");
}

TEST_F(RemoveCurrentFolder, ARelativeFolderIsNotRecognised)
{
    SetCurrentDirectoryW(m_root.Path().c_str());
    FileCallJournal journal;
    EXPECT_EQ(RemoveFolderTree(L"from"), 0u);
    EXPECT_EQ(journal.Of(L"SetCurrentDirectoryW"), Calls());
    EXPECT_FALSE(m_root.Exists(L"from"));
}

TEST(MoveFolderTree, MovesRandomTreesWhole)
{
    for (unsigned int seed = 401; seed <= 403; ++seed)
    {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        const TemporaryFolder from;
        const TemporaryFolder to;
        quon_test::FillRandomly(from, seed, 20, 30);
        const auto expected = NamesAndSizes(from.Path());
        EXPECT_EQ(MoveFolderTree(from.Path().c_str(), (to / L"moved").c_str(), TRUE), 0u);
        EXPECT_EQ(NamesAndSizes(to / L"moved"), expected);
        EXPECT_EQ(GetFileAttributesW(from.Path().c_str()), INVALID_FILE_ATTRIBUTES);
    }
}

// Kept: beyond the cut of CreateFolderTree an empty folder is lost without a failure, and a file is a failure.
TEST(MoveFolderTree, LosesEmptyFoldersThatAreTooDeepInTheDestination)
{
    const TemporaryFolder root;
    // As long as the temporary folder's own path allows: "deep" is within the cut, a name of 60 characters beyond it.
    const std::wstring name(100, L'n');
    const std::wstring from = root / L"from";
    ASSERT_LT(root.Path().size(), 110u) << "the temporary folder is too deep for this test";
    const std::wstring to = root / (L"to" + std::wstring(118 - root.Path().size(), L'x')).c_str();
    root.MakeFolder((L"from\\" + name + L"\\deep").c_str());
    ASSERT_LE((to + L"\\" + name + L"\\deep\\").size(), 263u);
    ASSERT_GT((to + L"\\" + name + L"\\").size() + 60, 2 + 263u);
    root.MakeFolder((L"from\\" + name + L"\\" + std::wstring(60, L'e')).c_str());
    EXPECT_EQ(MoveFolderTree(from.c_str(), to.c_str(), TRUE), 0u);
    EXPECT_FALSE(root.Exists(L"from"));
    EXPECT_TRUE(QuonPath((to + L"\\" + name + L"\\deep").c_str(), 0).Exists());
    EXPECT_FALSE(QuonPath((to + L"\\" + name + L"\\" + std::wstring(60, L'e')).c_str(), 0).Exists());

    root.WriteFile((L"from\\" + name + L"\\" + std::wstring(60, L'e') + L"\\file").c_str(), "x");
    EXPECT_EQ(MoveFolderTree(from.c_str(), to.c_str(), TRUE), 1u);
    EXPECT_TRUE(root.Exists(L"from"));
}

TEST(MoveFolderTree, RemovesNothingWhenTheCopyFailed)
{
    const TemporaryFolder root;
    FillExample(root);
    root.WriteFile(L"to\\A\\2");
    const auto before = SortedTree(root / L"from");
    EXPECT_EQ(MoveFolderTree((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 1u);
    EXPECT_EQ(SortedTree(root / L"from"), before);
    EXPECT_EQ(MoveFolderTree((root / L"missing").c_str(), (root / L"to").c_str(), TRUE), 1u);
    EXPECT_EQ(MoveFolderTree((root / L"from").c_str(), (root / L"to").c_str(), FALSE), 0u);
    EXPECT_FALSE(root.Exists(L"from"));
}

TEST(MoveFolderTree, FailsWhenTheSourceCannotBeRemoved)
{
    const TemporaryFolder root;
    FillExample(root);
    FileCallJournal journal;
    journal.fails = [](const std::wstring& call) { return call.find(L"RemoveDirectoryW") == 0; };
    EXPECT_EQ(MoveFolderTree((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 1u);
    EXPECT_TRUE(root.Exists(L"from"));
    EXPECT_TRUE(root.Exists(L"to\\A\\A1\\3"));
}

}  // namespace
