// Paths as long as the system's longest and far longer, through every operation on paths and files.
#include "paths/QuonPath.h"

#include <gtest/gtest.h>

#include <list>
#include <string>
#include <vector>

#include "paths/FileOperations.h"
#include "helpers/HardLimit.h"
#include "helpers/TemporaryFolder.h"
#include "traversal/QuonFileTrees.h"

namespace
{

constexpr std::size_t kLongestPart = 263;
constexpr std::size_t kLengths[] = {259, 260, 261, 263, 264, 32766, 32767, 32768, 65535, 65536, 200000};

std::wstring Text(const QuonPath& path)
{
    return static_cast<const wchar_t*>(path);
}

// `head`, then `unit` over and over, exactly `length` characters.
std::wstring Fill(std::wstring head, const std::wstring& unit, std::size_t length)
{
    head.reserve(length + unit.size());
    while (head.size() < length)
    {
        head += unit;
    }
    head.resize(length);
    return head;
}

// One name; many folders; nothing but separators; nothing but dots; a UNC path; quotes; one endless extension. None of
// them exists: the drive does not.
std::vector<std::wstring> LongTexts(std::size_t length)
{
    return {Fill(L"Q:\\", L"n", length),    Fill(L"Q:", L"\\ab", length),
            Fill(L"", L"\\/", length),      Fill(L"Q:\\", L".", length),
            Fill(L"Q:\\", L"..\\", length), Fill(L"\\\\server\\share", L"\\x", length),
            Fill(L"Q:\\", L"\"", length),   Fill(L"Q:\\a.", L"e", length),
            Fill(L"\\\\", L"s", length),    Fill(L"Q:\\", L"\x0416 ", length)};
}

class LongPaths : public testing::TestWithParam<std::size_t>
{
protected:
    quon_test::HardLimit m_limit;
};

TEST_P(LongPaths, TextsAreKeptWhole)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        QuonPath path(text, 0);
        ASSERT_TRUE(Text(path) == text);
        EXPECT_TRUE(Text(QuonPath(path)) == text);
        path.ApplyFlags(QuonPathUpperCase);
        EXPECT_EQ(Text(path).size(), text.size());
        path.Assign(text, QuonPathAddTrailing);
        EXPECT_TRUE(path.HasTrailingSeparator());
        EXPECT_LE(Text(path).size(), text.size() + 1);
        path.RemoveTrailingSeparators();
        EXPECT_FALSE(path.HasTrailingSeparator());
        EXPECT_TRUE(text.compare(0, Text(path).size(), Text(path)) == 0);
        EXPECT_EQ(path.IsCharAt(static_cast<int>(text.size()) + 7, L'x'), false);
        EXPECT_EQ(QuonPath(text, 0).IsCharAt(static_cast<int>(text.size()), L'\0'), true);
    }
}

TEST_P(LongPaths, NormalFormsAreNotLongerAndAreTheirOwn)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        QuonPath path(text, 0);
        path.NormalizeToSlashes();
        EXPECT_EQ(Text(path).find(L'\\'), std::wstring::npos);
        path.NormalizeToBackslashes();
        const std::wstring once = Text(path);
        EXPECT_LE(once.size(), text.size());
        EXPECT_EQ(once.find(L'/'), std::wstring::npos);
        path.Normalize();
        EXPECT_TRUE(Text(path) == once);
    }
}

TEST_P(LongPaths, JoiningAddsUpTheLengths)
{
    const std::wstring text = Fill(L"Q:", L"\\ab", GetParam() / 3 * 3 + 2);
    QuonPath path(text, 0);
    path.Append(text.substr(3));
    EXPECT_TRUE(Text(path) == text + L"\\" + text.substr(3));
    EXPECT_TRUE(Text(QuonPath(text, 0) + L"c") == text + L"\\c");
    CString joined;
    CombinePaths(joined, text.c_str(), text.substr(3).c_str());
    EXPECT_LE(joined.GetLength(), 2 * static_cast<int>(text.size()) + 1);
    CString bare = text.c_str();
    AddTrailingBackslash(bare);
    EXPECT_EQ(bare.GetLength(), static_cast<int>(text.size()) + 1);
    RemoveTrailingBackslash(bare);
    EXPECT_TRUE(bare == text.c_str());
}

TEST_P(LongPaths, PartsAreCut)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        const QuonPath path(text, 0);
        QuonPath drive;
        QuonPath directory;
        QuonPath name;
        QuonPath extension;
        path.SplitPlain(drive, directory, name, extension);
        for (const QuonPath* part : {&drive, &directory, &name, &extension})
        {
            EXPECT_LE(Text(*part).size(), kLongestPart);
        }
        path.Split(drive, directory, name, extension);
        for (const QuonPath* part : {&drive, &directory, &name, &extension})
        {
            EXPECT_LE(Text(*part).size(), kLongestPart + 1);
        }
        EXPECT_LE(Text(path.GetFolder()).size(), 2 * kLongestPart + 2);
        EXPECT_LE(Text(path.GetFileName()).size(), 2 * kLongestPart);
        EXPECT_TRUE(Text(path.GetDrive()) == Text(drive));
        EXPECT_TRUE(Text(path.GetDirectory()) == Text(directory));
        EXPECT_TRUE(Text(path.GetFileTitle()) == Text(name));
        EXPECT_TRUE(Text(path.GetExtension()) == Text(extension));
    }
}

TEST_P(LongPaths, RebuiltPathsConsistOfCutParts)
{
    const std::wstring longName = Fill(L"", L"n", GetParam());
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        QuonPath path(text, 0);
        path.SetFileTitle(longName.c_str());
        EXPECT_LE(Text(path).size(), longName.size() + 3 * kLongestPart + 4);
        path.Assign(text, 0);
        path.SetExtension(longName.c_str());
        EXPECT_LE(Text(path).size(), longName.size() + 3 * kLongestPart + 4);
        path.Assign(text, 0);
        path.SetDirectory(longName.c_str());
        EXPECT_LE(Text(path).size(), longName.size() + 3 * kLongestPart + 4);
        path.Assign(text, 0);
        path.SetDrive(longName.c_str());
        EXPECT_LE(Text(path).size(), longName.size() + 3 * kLongestPart + 4);
    }
}

TEST_P(LongPaths, ComponentsEnd)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        QuonPath path(text, 0);
        std::list<QuonPath> components;
        path.GetComponents(components);
        EXPECT_LE(components.size(), 2 * kLongestPart);
        for (const QuonPath& component : components)
        {
            EXPECT_LE(Text(component).size(), 2 * kLongestPart);
        }
        EXPECT_LE(Text(path.GetFirstComponent()).size(), text.size());
        EXPECT_LE(Text(path.GetLastComponent()).size(), text.size());
        path.RemoveFirstComponent();
        EXPECT_LE(Text(path).size(), text.size());
        path.Assign(text, 0);
        path.RemoveLastComponent();
        EXPECT_TRUE(text.compare(0, Text(path).size(), Text(path)) == 0);
    }
}

// A step up and the whole rest, while the path is one that the shell takes (259 characters); never a piece of it. The
// length of a file's own name is no matter to what is relative to its folder.
TEST_P(LongPaths, RelativePathsAreWholeOrEmpty)
{
    const QuonPath base(L"Q:\\a\\b", 0);
    for (const std::wstring& text :
         {Fill(L"Q:\\", L"n", GetParam()), Fill(L"Q:\\a.", L"e", GetParam()), Fill(L"Q:\\", L"\x0416 ", GetParam())})
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        const std::wstring expected = text.size() < MAX_PATH ? L"..\\" + text.substr(3) : L"";
        EXPECT_TRUE(Text(QuonPath(text, 0).MakeRelativeTo(base)) == expected);
        EXPECT_EQ(Text(base.MakeRelativeTo(QuonPath(text, 0))), L".\\a\\b");
    }
    const std::wstring deep = Fill(L"Q:", L"\\ab", GetParam());
    const std::wstring expected = deep.size() < MAX_PATH ? L"..\\" + deep.substr(3) : L"";
    EXPECT_TRUE(Text(QuonPath(deep, 0).MakeRelativeTo(base)) == expected);
}

TEST_P(LongPaths, NothingIsRelativeToAnotherDrive)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        for (const wchar_t* const base : {L"", L"C:\\x"})
        {
            EXPECT_EQ(Text(QuonPath(text, 0).MakeRelativeTo(QuonPath(base, 0))), L"");
            EXPECT_EQ(Text(QuonPath(base, 0).MakeRelativeTo(QuonPath(text, 0))), L"");
        }
    }
}

TEST_P(LongPaths, RelativePathsAreShortOrEmpty)
{
    for (const std::wstring& text : LongTexts(GetParam()))
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        const QuonPath path(text, 0);
        const QuonPath base(L"Q:\\a\\b", 0);
        EXPECT_LE(Text(path.MakeRelativeTo(base)).size(), 4 * kLongestPart);
        EXPECT_LE(Text(base.MakeRelativeTo(path)).size(), 4 * kLongestPart);
        EXPECT_LE(Text(path.MakeRelativeTo(path)).size(), 4 * kLongestPart);
    }
}

TEST_P(LongPaths, NothingOfThatNameExists)
{
    // What is but separators or leads up from the root of a drive that is not there is left out: that a system may
    // find.
    for (const std::wstring& text : {Fill(L"Q:\\", L"n", GetParam()), Fill(L"Q:", L"\\ab", GetParam()),
                                     Fill(L"\\\\server\\share", L"\\x", GetParam()), Fill(L"Q:\\a.", L"e", GetParam())})
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        const QuonPath path(text, 0);
        QuonFileInfo info = {};
        EXPECT_FALSE(path.Exists());
        EXPECT_NE(path.Access(0), 0);
        EXPECT_FALSE(path.GetInfo(&info));
        EXPECT_EQ(GetFileInfo(path, 0, &info), 0);
    }
}

TEST_P(LongPaths, FileOperationsFail)
{
    const quon_test::TemporaryFolder folder;
    folder.WriteFile(L"file", "x");
    const std::wstring file = folder / L"file";
    for (const std::wstring& text :
         {Fill(L"Q:\\", L"n", GetParam()), Fill(L"Q:", L"\\ab", GetParam()), Fill(L"Q:\\a.", L"e", GetParam())})
    {
        SCOPED_TRACE(testing::PrintToString(text.substr(0, 20)));
        const wchar_t* const path = text.c_str();
        EXPECT_EQ(CreateFolderTree(path), 1u);
        EXPECT_EQ(CopyOneFile(path, (folder / L"copy").c_str(), FALSE), 1u);
        EXPECT_EQ(CopyOneFile(file.c_str(), path, FALSE), 1u);
        EXPECT_EQ(DeleteFileForced(path), 1u);
        EXPECT_EQ(CopyFolderTree(path, folder.Path().c_str(), FALSE), 1u);
        EXPECT_EQ(CopyFolderTree(folder.Path().c_str(), path, FALSE), 1u);
        EXPECT_EQ(MoveFolderTree(path, folder.Path().c_str(), FALSE), 1u);
        EXPECT_EQ(MoveFolderTree(folder.Path().c_str(), path, FALSE), 1u);
        EXPECT_EQ(RemoveFolderTree(path), 0u) << "what never was is gone";
    }
    EXPECT_EQ(folder.ReadFile(L"file"), "x");
    EXPECT_FALSE(folder.Exists(L"copy"));
}

template <typename Walk>
void ExpectNoMatch(const std::wstring& root, const std::wstring& pattern)
{
    Walk walk;
    EXPECT_FALSE(walk.FindFirst(root.c_str(), pattern.c_str(), kQuonMatchEverything));
    EXPECT_FALSE(walk.IsFound());
    EXPECT_FALSE(walk.FindNext());
}

// A folder tree begins or ends with its root, whether that exists or not.
template <typename Walk>
void ExpectRootAlone(const std::wstring& root)
{
    Walk walk;
    EXPECT_TRUE(walk.FindFirst(root.c_str(), L"*", kQuonMatchFolders));
    EXPECT_TRUE(Text(walk.GetFoundPath()).compare(0, 200, root, 0, 200) == 0);
    EXPECT_FALSE(walk.FindNext());
    EXPECT_FALSE(walk.IsFound());
}

TEST_P(LongPaths, WalksFindNothing)
{
    const quon_test::TemporaryFolder folder;
    folder.WriteFile(L"file", "x");
    const std::wstring missing = Fill(L"Q:", L"\\ab", GetParam());
    const std::wstring name = Fill(L"", L"n", GetParam());
    ExpectNoMatch<QuonBasicFileMatcher>(missing, L"*");
    ExpectRootAlone<QuonBFSDirectoryTree>(missing);
    ExpectRootAlone<QuonDFSDirectoryTree>(missing);
    ExpectNoMatch<QuonBFSFileTree>(missing, L"*");
    ExpectNoMatch<QuonDFSFileTree>(missing, L"*");
    ExpectNoMatch<QuonBasicFileMatcher>(folder.Path(), name);
    ExpectNoMatch<QuonBFSFileTree>(folder.Path(), name);
    ExpectNoMatch<QuonDFSFileTree>(folder.Path(), name);
}

INSTANTIATE_TEST_SUITE_P(Lengths, LongPaths, testing::ValuesIn(kLengths));

}  // namespace
