// Single files and folders, and what is driven by a match.
#include <afx.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "paths/FileCallJournal.h"
#include "paths/FileOperations.h"
#include "helpers/FolderListing.h"
#include "helpers/TemporaryFolder.h"

namespace
{

using quon_test::CurrentFolder;
using quon_test::FileCallJournal;
using quon_test::TemporaryFolder;
using Calls = FileCallJournal::Calls;

// Hands out what it was given and writes down how it is driven.
class ScriptedMatch : public QuonFileMatch
{
public:
    struct Item
    {
        std::wstring path;
        std::wstring name;
    };
    explicit ScriptedMatch(std::vector<Item> items) : m_items(std::move(items)) {}

    void Close() override { calls += "Close "; }
    bool FindFirst(const wchar_t*, const wchar_t*, unsigned int) override
    {
        calls += "FindFirst ";
        return IsFound();
    }
    bool FindNext() override
    {
        calls += "next ";
        ++m_at;
        return false;  // not to be relied on: IsFound tells
    }
    bool IsFound() const override
    {
        calls += "found? ";
        return m_at < m_items.size();
    }
    QuonPath GetFoundPath() const override
    {
        calls += "path ";
        return QuonPath(m_items.at(m_at).path, 0);
    }
    QuonPath GetFoundName() const override
    {
        calls += "name ";
        return QuonPath(m_items.at(m_at).name, 0);
    }
    QuonPath GetFolder() const override
    {
        calls += "folder ";
        return QuonPath();
    }

    mutable std::string calls;

private:
    std::vector<Item> m_items;
    std::size_t m_at = 0;
};

TEST(CreateFolderTree, CreatesEveryMissingFolderTheLastOneIncluded)
{
    const TemporaryFolder root;
    const std::wstring folder = root / L"a.1\\b\\c.txt";
    EXPECT_EQ(CreateFolderTree(folder.c_str()), 0u);
    EXPECT_EQ(root.Attributes(L"a.1\\b\\c.txt") & FILE_ATTRIBUTE_DIRECTORY, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(CreateFolderTree(folder.c_str()), 0u);
}

TEST(CreateFolderTree, TakesEveryWayOfWritingSeparators)
{
    const TemporaryFolder root;
    for (const wchar_t* tail : {L"1\\a\\", L"2/a", L"3//a\\\\/", L"4\\\\a"})
    {
        SCOPED_TRACE(testing::PrintToString(std::wstring(tail)));
        EXPECT_EQ(CreateFolderTree((root / tail).c_str()), 0u);
        EXPECT_TRUE(root.Exists(std::wstring(1, tail[0]) + L"\\a"));
    }
}

TEST(CreateFolderTree, AsksForEachComponentAndCreatesWhatIsMissing)
{
    const TemporaryFolder root;
    root.MakeFolder(L"here");
    FileCallJournal journal;
    EXPECT_EQ(CreateFolderTree((root / L"here\\x\\y").c_str()), 0u);
    EXPECT_EQ(journal.Of(L"CreateDirectoryW"), (Calls{root / L"here\\x", root / L"here\\x\\y"}));
    const Calls asked = journal.Of(L"_waccess");
    ASSERT_GE(asked.size(), 4u);
    EXPECT_EQ(asked.front(), root.Path().substr(0, 2) + L" 0");  // the drive comes first, without a separator
    EXPECT_EQ(asked[asked.size() - 3], (root / L"here") + L" 0");
    EXPECT_EQ(asked[asked.size() - 2], (root / L"here\\x") + L" 0");
    EXPECT_EQ(asked[asked.size() - 1], (root / L"here\\x\\y") + L" 0");
}

TEST(CreateFolderTree, GoesOnAfterAFailureAndReportsIt)
{
    const TemporaryFolder root;
    FileCallJournal journal;
    const std::wstring refused = L"CreateDirectoryW " + (root / L"x");
    journal.fails = [&](const std::wstring& call) { return call == refused; };
    EXPECT_EQ(CreateFolderTree((root / L"x\\y").c_str()), 1u);
    EXPECT_EQ(journal.Of(L"CreateDirectoryW"), (Calls{root / L"x", root / L"x\\y"}));
}

TEST(CreateFolderTree, AFailureAboveDoesNotHideBehindASuccessBelow)
{
    const TemporaryFolder root;
    FileCallJournal journal;
    // Whoever else creates the folder meanwhile makes the call fail and the next one succeed.
    journal.fails = [&](const std::wstring& call) {
        return call == L"CreateDirectoryW " + (root / L"x") && root.MakeFolder(L"x") != L"";
    };
    EXPECT_EQ(CreateFolderTree((root / L"x\\y").c_str()), 1u);
    EXPECT_TRUE(root.Exists(L"x\\y"));
}

TEST(CreateFolderTree, AFileInTheWay)
{
    const TemporaryFolder root;
    root.WriteFile(L"file");
    EXPECT_EQ(CreateFolderTree((root / L"file\\below").c_str()), 1u);
    EXPECT_EQ(CreateFolderTree((root / L"file").c_str()), 0u);  // something of that name exists
    EXPECT_EQ(root.Attributes(L"file") & FILE_ATTRIBUTE_DIRECTORY, 0u);
}

TEST(CreateFolderTree, PathsThatAreNotFull)
{
    const CurrentFolder restore;
    const TemporaryFolder root;
    SetCurrentDirectoryW(root.Path().c_str());
    EXPECT_EQ(CreateFolderTree(L"r\\s"), 0u);
    EXPECT_TRUE(root.Exists(L"r\\s"));
    EXPECT_EQ(CreateFolderTree(L"\\t\\u"), 0u);  // the leading separator is lost: below the current folder
    EXPECT_TRUE(root.Exists(L"t\\u"));
    EXPECT_EQ(CreateFolderTree(L".\\v\\..\\w"), 0u);
    EXPECT_TRUE(root.Exists(L"v"));
    EXPECT_TRUE(root.Exists(L"w"));
    for (const wchar_t* nothing : {L"", L"\\", L"/", L"\"\""})
    {
        EXPECT_EQ(CreateFolderTree(nothing), 0u);
    }
}

TEST(CreateFolderTree, ADriveAloneMeansItsRoot)
{
    FileCallJournal journal;
    journal.fails = [](const std::wstring&) { return true; };
    EXPECT_EQ(CreateFolderTree(L"Q:a\\b"), 1u);
    EXPECT_EQ(journal.Of(L"CreateDirectoryW"), (Calls{L"Q:", L"Q:\\a", L"Q:\\a\\b"}));
}

// Kept: the directory is cut at 263 characters, and what lies deeper is neither created nor reported.
TEST(CreateFolderTree, CutsADeepPathAndReportsSuccess)
{
    const TemporaryFolder root;
    std::wstring path = root.Path();
    while (path.size() < 400)
    {
        path += L"\\folder" + std::to_wstring(path.size());
    }
    ASSERT_EQ(path[1], L':');
    EXPECT_EQ(CreateFolderTree(path.c_str()), 0u);
    const std::wstring created = path.substr(0, 2 + 263);
    EXPECT_TRUE(QuonPath(created.c_str(), 0).Exists());
    EXPECT_FALSE(QuonPath(path.substr(0, path.find(L'\\', created.size() + 1)).c_str(), 0).Exists());
    EXPECT_FALSE(QuonPath(path.c_str(), 0).Exists());
}

// Two separators begin a UNC path, which has a drive even without a server.
TEST(CreateFolderTree, OfSeparatorsAlone)
{
    for (const wchar_t* const one : {L"", L"\\", L"/"})
    {
        FileCallJournal journal;
        EXPECT_EQ(CreateFolderTree(one), 0u);
        EXPECT_EQ(journal.Of(L"CreateDirectoryW"), Calls());
    }
    for (const wchar_t* const more : {L"\\\\", L"//", L"\\/", L"\\\\\\", L"\\\\\\\\"})
    {
        FileCallJournal journal;
        EXPECT_EQ(CreateFolderTree(more), 1u);
        ASSERT_EQ(journal.Of(L"CreateDirectoryW").size(), 1u);
        EXPECT_EQ(journal.Of(L"CreateDirectoryW")[0].substr(0, 3), L"\\\\\\");
    }
}

TEST(CreateFolderTree, ServerAndShareAreOneComponent)
{
    FileCallJournal journal;
    journal.fails = [](const std::wstring&) { return true; };
    EXPECT_EQ(CreateFolderTree(L"//srv/share/a\\b"), 1u);
    EXPECT_EQ(journal.Of(L"CreateDirectoryW"),
              (Calls{L"\\\\srv\\share\\", L"\\\\srv\\share\\a", L"\\\\srv\\share\\a\\b"}));
}

TEST(CreateMatchedFolders, CreatesTheFoundNamesBelowTheDestination)
{
    const TemporaryFolder root;
    ScriptedMatch match({{L"-", L""}, {L"-", L"a"}, {L"-", L"b\\c"}});
    EXPECT_EQ(CreateMatchedFolders(match, (root / L"to").c_str()), 0u);
    EXPECT_TRUE(root.Exists(L"to\\a"));
    EXPECT_TRUE(root.Exists(L"to\\b\\c"));
    EXPECT_EQ(match.calls, "found? name next found? name next found? name next found? ");
}

TEST(CreateMatchedFolders, GoesOnAfterAFailure)
{
    const TemporaryFolder root;
    root.WriteFile(L"file");
    ScriptedMatch match({{L"-", L"a"}, {L"-", L"file\\x"}, {L"-", L"b"}});
    EXPECT_EQ(CreateMatchedFolders(match, root.Path().c_str()), 1u);
    EXPECT_TRUE(root.Exists(L"a"));
    EXPECT_TRUE(root.Exists(L"b"));
}

TEST(MatchDrivenOperations, SucceedWithoutAMatch)
{
    const TemporaryFolder root;
    ScriptedMatch match({});
    EXPECT_EQ(CreateMatchedFolders(match, (root / L"to").c_str()), 0u);
    EXPECT_FALSE(root.Exists(L"to"));
    EXPECT_EQ(CopyMatchedFiles(match, (root / L"to").c_str(), TRUE), 0u);
    EXPECT_EQ(DeleteMatchedFiles(match), 0u);
    EXPECT_EQ(match.calls, "found? found? found? ");
}

TEST(MatchDrivenOperations, StartAtTheCurrentMatch)
{
    const TemporaryFolder root;
    ScriptedMatch match({{L"-", L"skipped"}, {L"-", L"made"}});
    match.FindNext();
    EXPECT_EQ(CreateMatchedFolders(match, root.Path().c_str()), 0u);
    EXPECT_FALSE(root.Exists(L"skipped"));
    EXPECT_TRUE(root.Exists(L"made"));
}

TEST(CopyOneFile, CopiesContentAndAttributes)
{
    const TemporaryFolder root;
    root.WriteFile(L"from", "content", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(CopyOneFile((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 0u);
    EXPECT_EQ(root.ReadFile(L"to"), "content");
    EXPECT_EQ(root.Attributes(L"to") & FILE_ATTRIBUTE_READONLY, DWORD{FILE_ATTRIBUTE_READONLY});
}

TEST(CopyOneFile, ReplacesOnlyWhenAllowed)
{
    const TemporaryFolder root;
    root.WriteFile(L"from", "new");
    root.WriteFile(L"to", "old");
    EXPECT_EQ(CopyOneFile((root / L"from").c_str(), (root / L"to").c_str(), TRUE), 1u);
    EXPECT_EQ(root.ReadFile(L"to"), "old");
    EXPECT_EQ(CopyOneFile((root / L"from").c_str(), (root / L"to").c_str(), FALSE), 0u);
    EXPECT_EQ(root.ReadFile(L"to"), "new");
}

TEST(CopyOneFile, FailsWithoutSourceOrTargetFolder)
{
    const TemporaryFolder root;
    root.WriteFile(L"from");
    EXPECT_EQ(CopyOneFile((root / L"missing").c_str(), (root / L"to").c_str(), FALSE), 1u);
    EXPECT_EQ(CopyOneFile((root / L"from").c_str(), (root / L"missing\\to").c_str(), FALSE), 1u);
    EXPECT_EQ(CopyOneFile(L"", L"", FALSE), 1u);
}

TEST(CopyOneFile, PassesItsArgumentsAsTheyAre)
{
    FileCallJournal journal;
    journal.fails = [](const std::wstring&) { return true; };
    EXPECT_EQ(CopyOneFile(L"a/b", L"c//d", 7), 1u);
    EXPECT_EQ(journal.All(), Calls{L"CopyFileW a/b c//d 7"});
}

TEST(CopyMatchedFiles, CopiesFoundPathsToFoundNames)
{
    const TemporaryFolder root;
    const std::wstring one = root.WriteFile(L"from\\1", "one");
    const std::wstring two = root.WriteFile(L"elsewhere\\2", "two");
    root.MakeFolder(L"to\\sub");
    ScriptedMatch match({{one, L"eins"}, {two, L"sub\\zwei"}});
    EXPECT_EQ(CopyMatchedFiles(match, (root / L"to\\").c_str(), TRUE), 0u);
    EXPECT_EQ(root.ReadFile(L"to\\eins"), "one");
    EXPECT_EQ(root.ReadFile(L"to\\sub\\zwei"), "two");
    EXPECT_EQ(match.calls, "found? path name next found? path name next found? ");
}

TEST(CopyMatchedFiles, StopsAtTheFirstFailure)
{
    const TemporaryFolder root;
    const std::wstring file = root.WriteFile(L"file");
    root.WriteFile(L"to\\there", "old");
    ScriptedMatch match({{file, L"1"}, {file, L"there"}, {file, L"2"}});
    FileCallJournal journal;
    EXPECT_EQ(CopyMatchedFiles(match, (root / L"to").c_str(), 3), 1u);
    EXPECT_EQ(journal.Of(L"CopyFileW"),
              (Calls{file + L" " + (root / L"to\\1") + L" 3", file + L" " + (root / L"to\\there") + L" 3"}));
    EXPECT_EQ(match.calls, "found? path name next found? path name ");  // the failed one is still current
    EXPECT_FALSE(root.Exists(L"to\\2"));
    EXPECT_EQ(root.ReadFile(L"to\\there"), "old");
}

TEST(DeleteFileForced, DeletesAlsoWhatIsReadOnly)
{
    const TemporaryFolder root;
    const DWORD kAttributes[] = {0, FILE_ATTRIBUTE_READONLY, FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_SYSTEM,
                                 FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN};
    for (const DWORD attributes : kAttributes)
    {
        EXPECT_EQ(DeleteFileForced(root.WriteFile(L"file", "", attributes).c_str()), 0u) << attributes;
        EXPECT_FALSE(root.Exists(L"file")) << attributes;
    }
}

TEST(DeleteFileForced, SetsTheAttributesWithoutTheReadOnlyBitWhateverTheyAre)
{
    const TemporaryFolder root;
    for (const DWORD attributes :
         {DWORD{FILE_ATTRIBUTE_ARCHIVE}, DWORD{FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN}})
    {
        const std::wstring file = root.WriteFile(L"file", "", attributes);
        const DWORD before = root.Attributes(L"file");
        FileCallJournal journal;
        EXPECT_EQ(DeleteFileForced(file.c_str()), 0u);
        const DWORD cleared = before & ~DWORD{FILE_ATTRIBUTE_READONLY};
        EXPECT_EQ(journal.All(),
                  (Calls{L"GetFileAttributesW " + file, L"SetFileAttributesW " + file + L" " + std::to_wstring(cleared),
                         L"DeleteFileW " + file}));
    }
}

TEST(DeleteFileForced, PutsTheAttributesBackWhenTheFileStays)
{
    const TemporaryFolder root;
    const std::wstring file = root.WriteFile(L"file", "", FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_HIDDEN);
    const DWORD before = root.Attributes(L"file");
    FileCallJournal journal;
    journal.fails = [](const std::wstring& call) { return call.find(L"DeleteFileW") == 0; };
    EXPECT_EQ(DeleteFileForced(file.c_str()), 1u);
    EXPECT_EQ(root.Attributes(L"file"), before);
    EXPECT_EQ(journal.All().back(), L"SetFileAttributesW " + file + L" " + std::to_wstring(before));
}

TEST(DeleteFileForced, AFileInUseKeepsItsAttributes)
{
    const TemporaryFolder root;
    const std::wstring file = root.WriteFile(L"file", "", FILE_ATTRIBUTE_READONLY);
    const DWORD before = root.Attributes(L"file");
    const HANDLE user = CreateFileW(file.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(user, INVALID_HANDLE_VALUE);
    EXPECT_EQ(DeleteFileForced(file.c_str()), 1u);
    EXPECT_EQ(root.Attributes(L"file"), before);
    CloseHandle(user);
}

TEST(DeleteFileForced, PutsBackTheInvalidValueWhenNothingCouldBeRead)
{
    FileCallJournal journal;
    EXPECT_EQ(DeleteFileForced(L"Q:\\none"), 1u);
    EXPECT_EQ(journal.All(), (Calls{L"GetFileAttributesW Q:\\none", L"DeleteFileW Q:\\none",
                                    L"SetFileAttributesW Q:\\none 4294967295"}));
}

TEST(DeleteFileForced, LeavesFoldersAlone)
{
    const TemporaryFolder root;
    const std::wstring folder = root.MakeFolder(L"folder");
    EXPECT_EQ(DeleteFileForced(folder.c_str()), 1u);
    EXPECT_TRUE(root.Exists(L"folder"));
}

TEST(DeleteMatchedFiles, GoesOnAfterAFailure)
{
    const TemporaryFolder root;
    const std::wstring one = root.WriteFile(L"1", "", FILE_ATTRIBUTE_READONLY);
    const std::wstring two = root.WriteFile(L"2");
    ScriptedMatch match({{one, L"-"}, {root / L"missing", L"-"}, {two, L"-"}});
    EXPECT_EQ(DeleteMatchedFiles(match), 1u);
    EXPECT_FALSE(root.Exists(L"1"));
    EXPECT_FALSE(root.Exists(L"2"));
    EXPECT_EQ(match.calls, "found? path next found? path next found? path next found? ");
}

TEST(DeleteMatchedFiles, ReportsSuccessWhenAllAreGone)
{
    const TemporaryFolder root;
    ScriptedMatch match({{root.WriteFile(L"1"), L"-"}, {root.WriteFile(L"2"), L"-"}});
    EXPECT_EQ(DeleteMatchedFiles(match), 0u);
    EXPECT_TRUE(quon_test::ListTree(root.Path()).empty());
}

}  // namespace
