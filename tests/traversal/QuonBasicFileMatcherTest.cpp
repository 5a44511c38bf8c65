#include <afx.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "helpers/TemporaryFolder.h"
#include "traversal/QuonBasicFileMatcher.h"
#include "traversal/Walk.h"

namespace
{

using quon_test::Names;
using quon_test::Remaining;
using quon_test::TemporaryFolder;
using quon_test::Text;
using quon_test::Walk;

constexpr DWORD kHidden = FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_ARCHIVE;
constexpr DWORD kSystem = FILE_ATTRIBUTE_SYSTEM | FILE_ATTRIBUTE_ARCHIVE;
constexpr DWORD kReadOnly = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE;

class BasicFileMatcher : public testing::Test
{
protected:
    BasicFileMatcher()
    {
        m_folder.WriteFile(L"a.txt");
        m_folder.WriteFile(L"b.dat");
        m_folder.WriteFile(L"c.txt", "", kHidden);
        m_folder.WriteFile(L"d.txt", "", kSystem);
        m_folder.WriteFile(L"e.txt", "", kReadOnly);
        m_folder.MakeFolder(L"p");
        m_folder.MakeFolder(L"q.txt", FILE_ATTRIBUTE_HIDDEN);
        m_folder.MakeFolder(L"r", FILE_ATTRIBUTE_SYSTEM);
        m_folder.MakeFolder(L"s\\inner");
    }

    const std::wstring& Folder() const { return m_folder.Path(); }

    TemporaryFolder m_folder;
};

TEST_F(BasicFileMatcher, YieldsWhatPatternAndFilterAdmit)
{
    const Names everything = {L"a.txt", L"b.dat", L"c.txt", L"d.txt", L"e.txt", L"p", L"q.txt", L"r", L"s"};
    const Names files = {L"a.txt", L"b.dat", L"c.txt", L"d.txt", L"e.txt"};
    const struct
    {
        const wchar_t* pattern;
        unsigned int filter;
        Names names;
    } kRows[] = {
        {L"*", 0, everything},
        {L"*", 0x10, {L"p", L"q.txt", L"r", L"s"}},
        {L"*", 0x2090, {L"p", L"s"}},
        {L"*", 0x20, files},
        {L"*", 0x1, files},  // only entries with the archive bit: every file has it
        {L"*", 0x2, {L"p", L"q.txt", L"r", L"s"}},
        {L"*", 0x30, {}},
        {L"*", 0xC000, {}},
        {L"*", 0x40, {L"c.txt", L"q.txt"}},
        {L"*", 0x20 | 0x40, {L"c.txt"}},
        {L"*", 0x20 | 0x80, {L"a.txt", L"b.dat", L"d.txt", L"e.txt"}},
        {L"*", 0x1000, {L"d.txt", L"r"}},
        {L"*", 0x400, {L"e.txt"}},
        {L"*", 0x20 | 0x800, {L"a.txt", L"b.dat", L"c.txt", L"d.txt"}},
        {L"*", 0x4000, {}},
        {L"*", 0x4, {}},
        {L"*", 0x20 | 0xFFFF0000, files},
        {L"*.txt", 0, {L"a.txt", L"c.txt", L"d.txt", L"e.txt", L"q.txt"}},
        {L"*.txt", 0x20, {L"a.txt", L"c.txt", L"d.txt", L"e.txt"}},
        {L"*.txt", 0x10, {L"q.txt"}},
        {L"?.dat", 0, {L"b.dat"}},
        {L"b.dat", 0, {L"b.dat"}},
        {L"B.DAT", 0, {L"b.dat"}},
        {L"none*", 0, {}},
        {L"\\/\\*.dat", 0, {L"b.dat"}},  // leading separators of the pattern are dropped
        {L"s\\*", 0, {L"inner"}},        // a pattern may name a folder below
    };
    for (const auto& row : kRows)
    {
        SCOPED_TRACE(testing::Message() << "pattern " << testing::PrintToString(std::wstring(row.pattern)) << std::hex
                                        << ", filter 0x" << row.filter);
        QuonBasicFileMatcher matcher;
        Names names = Walk(matcher, Folder(), row.pattern, row.filter);
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names, row.names);
    }
}

TEST_F(BasicFileMatcher, FilterIsNoSetOfAttributeFlags)
{
    // The flag "archive" is the code "not a folder", and the flag "hidden" is the code "archive must be clear".
    QuonBasicFileMatcher matcher;
    for (matcher.FindFirst(Folder().c_str(), L"*", FILE_ATTRIBUTE_HIDDEN); matcher.IsFound(); matcher.FindNext())
    {
        EXPECT_EQ(matcher.GetFindData()->dwFileAttributes & FILE_ATTRIBUTE_ARCHIVE, 0u) << Text(matcher.GetFoundName());
    }
}

TEST_F(BasicFileMatcher, FolderWithoutEntriesHasOnlyTheDots)
{
    const std::wstring empty = m_folder.MakeFolder(L"empty");
    QuonBasicFileMatcher matcher;
    EXPECT_EQ(matcher.GetSkipDots(), TRUE);
    for (const unsigned int filter : {0u, 0x10u, 0x20u})
    {
        EXPECT_EQ(Walk(matcher, empty, L"*", filter), Names()) << filter;
    }
    matcher.SetSkipDots(FALSE);
    EXPECT_EQ(matcher.GetSkipDots(), FALSE);
    EXPECT_EQ(Walk(matcher, empty, L"*", 0x10), (Names{L".", L".."}));
    EXPECT_EQ(Walk(matcher, empty, L"*", 0), (Names{L".", L".."}));
    EXPECT_EQ(Walk(matcher, empty, L"*", 0x20), Names());
}

TEST_F(BasicFileMatcher, SkipDotsLeavesOutNothingButTheTwoNames)
{
    const Names names = {L"..x", L"..x..y", L".x", L"x.."};
    for (const std::wstring& name : names)
    {
        // Without the verbatim form Windows would drop the dots at the end.
        const std::wstring folder = L"\\\\?\\" + (m_folder / (L"dots\\" + name));
        m_folder.MakeFolder(L"dots");
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr)) << testing::PrintToString(name);
    }
    QuonBasicFileMatcher matcher;
    Names found = Walk(matcher, m_folder / L"dots", L"*", 0);
    std::sort(found.begin(), found.end());
    EXPECT_EQ(found, names);
}

TEST_F(BasicFileMatcher, SkipDotsMayChangeDuringTheSearch)
{
    QuonBasicFileMatcher matcher;
    matcher.SetSkipDots(FALSE);
    matcher.FindFirst((m_folder / L"s").c_str(), L"*", 0);
    EXPECT_EQ(Text(matcher.GetFoundName()), L".");
    matcher.SetSkipDots(TRUE);
    matcher.FindNext();
    EXPECT_EQ(Text(matcher.GetFoundName()), L"inner");
}

TEST_F(BasicFileMatcher, ResultsTellWhetherThereIsAMatch)
{
    QuonBasicFileMatcher matcher;
    EXPECT_FALSE(matcher.IsFound());
    EXPECT_TRUE(matcher.FindFirst(Folder().c_str(), L"?.txt", 0x20));
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_TRUE(matcher.IsFound());
        EXPECT_TRUE(matcher.FindNext());
    }
    EXPECT_FALSE(matcher.FindNext());
    EXPECT_FALSE(matcher.IsFound());
    EXPECT_FALSE(matcher.FindNext());  // stays at the end
    EXPECT_FALSE(matcher.FindFirst(Folder().c_str(), L"none", 0));
}

TEST_F(BasicFileMatcher, GettersInEveryState)
{
    QuonBasicFileMatcher matcher;
    const auto expect = [&matcher](const wchar_t* state, const std::wstring& path, const std::wstring& name,
                                   const std::wstring& folder) {
        EXPECT_EQ(Text(matcher.GetFoundPath()), path) << testing::PrintToString(std::wstring(state));
        EXPECT_EQ(Text(matcher.GetFoundName()), name) << testing::PrintToString(std::wstring(state));
        EXPECT_EQ(Text(matcher.GetFolder()), folder) << testing::PrintToString(std::wstring(state));
    };
    expect(L"fresh", L"", L"", L"");
    matcher.FindFirst(Folder().c_str(), L"b*", 0);
    expect(L"found", Folder() + L"\\b.dat", L"b.dat", Folder());
    matcher.FindNext();
    expect(L"exhausted", Folder(), L"", Folder());
    EXPECT_STREQ(matcher.GetFindData()->cFileName, L"b.dat");  // the entry that was read last
    matcher.Close();
    expect(L"closed", L"", L"", L"");
    EXPECT_STREQ(matcher.GetFindData()->cFileName, L"b.dat");
    matcher.FindFirst((Folder() + L"\\missing").c_str(), L"*", 0);
    expect(L"failed", Folder() + L"\\missing", L"", Folder() + L"\\missing");
}

TEST_F(BasicFileMatcher, FindDataIsTheEntryReadLastMatchedOrNot)
{
    QuonBasicFileMatcher matcher;
    EXPECT_FALSE(matcher.FindFirst(Folder().c_str(), L"b.dat", 0x10));
    EXPECT_STREQ(matcher.GetFindData()->cFileName, L"b.dat");
    EXPECT_EQ(Text(matcher.GetFoundPath()), Folder());
}

TEST_F(BasicFileMatcher, FolderIsKeptAsGivenAndJoinedWithBackslashes)
{
    std::wstring slashes = Folder();
    std::replace(slashes.begin(), slashes.end(), L'\\', L'/');
    const std::wstring kFolders[] = {Folder() + L"\\", slashes, slashes + L"/", Folder() + L"\\\\", slashes + L"//\\"};
    for (const std::wstring& folder : kFolders)
    {
        SCOPED_TRACE(testing::PrintToString(folder));
        QuonBasicFileMatcher matcher;
        ASSERT_TRUE(matcher.FindFirst(folder.c_str(), L"b*", 0));
        EXPECT_EQ(Text(matcher.GetFolder()), folder);
        EXPECT_EQ(Text(matcher.GetFoundPath()), Folder() + L"\\b.dat");
        matcher.FindNext();
        EXPECT_EQ(Text(matcher.GetFoundPath()), folder);
    }
}

TEST_F(BasicFileMatcher, EmptyFolderMeansTheCurrentOne)
{
    SetCurrentDirectoryW(Folder().c_str());
    QuonBasicFileMatcher matcher;
    EXPECT_TRUE(matcher.FindFirst(L"", L"b*", 0));
    EXPECT_EQ(Text(matcher.GetFoundPath()), L"b.dat");
    EXPECT_EQ(Text(matcher.GetFolder()), L"");
    EXPECT_FALSE(matcher.FindNext());
    EXPECT_EQ(Text(matcher.GetFoundPath()), L"");
    EXPECT_TRUE(matcher.FindFirst(L"s", L"*", 0));
    EXPECT_EQ(Text(matcher.GetFoundPath()), L"s\\inner");
}

TEST_F(BasicFileMatcher, EmptyPatternSearchesForTheFolderItself)
{
    QuonBasicFileMatcher matcher;
    EXPECT_TRUE(matcher.FindFirst((Folder() + L"\\s").c_str(), L"", 0));
    EXPECT_EQ(Text(matcher.GetFoundName()), L"s");
    EXPECT_EQ(Text(matcher.GetFoundPath()), Folder() + L"\\s\\s");  // joined all the same
    EXPECT_FALSE(matcher.FindNext());
}

TEST_F(BasicFileMatcher, WhatCannotBeSearchedHasNoMatch)
{
    const std::wstring kFolders[] = {
        Folder() + L"\\missing", Folder() + L"\\a.txt", L"Q:\\", Folder() + L"\\in|valid", L"\\\\",
        std::wstring(400, L'x')};
    for (const std::wstring& folder : kFolders)
    {
        QuonBasicFileMatcher matcher;
        EXPECT_FALSE(matcher.FindFirst(folder.c_str(), L"*", 0)) << testing::PrintToString(folder);
        EXPECT_FALSE(matcher.FindNext()) << testing::PrintToString(folder);
        EXPECT_EQ(Text(matcher.GetFolder()), folder);
    }
}

TEST_F(BasicFileMatcher, ArgumentsMayBeTheObjectsOwnTexts)
{
    QuonBasicFileMatcher matcher;
    matcher.FindFirst(Folder().c_str(), L"b.dat", 0);
    // The copy shares its characters with the object, so this is the object's own text.
    const wchar_t* const folder = matcher.GetFolder();
    EXPECT_TRUE(matcher.FindFirst(folder, matcher.GetFindData()->cFileName, 0));
    EXPECT_EQ(Text(matcher.GetFoundPath()), Folder() + L"\\b.dat");
    EXPECT_EQ(Text(matcher.GetFolder()), Folder());
}

TEST_F(BasicFileMatcher, NullTextsCountAsEmpty)
{
    SetCurrentDirectoryW(m_folder.MakeFolder(L"empty").c_str());
    QuonBasicFileMatcher matcher;
    EXPECT_FALSE(matcher.FindFirst(nullptr, L"*", 0));
    EXPECT_FALSE(matcher.FindFirst(nullptr, nullptr, 0));
    EXPECT_EQ(Text(matcher.GetFolder()), L"");
}

TEST_F(BasicFileMatcher, FindFirstRestartsInAnyState)
{
    QuonBasicFileMatcher matcher;
    EXPECT_EQ(Walk(matcher, Folder(), L"?.txt", 0x20).size(), 4u);  // ends exhausted
    EXPECT_TRUE(matcher.FindFirst(Folder().c_str(), L"?.txt", 0x20));
    EXPECT_EQ(Walk(matcher, Folder() + L"\\s", L"*", 0), Names{L"inner"});
    matcher.Close();
    matcher.Close();
    EXPECT_EQ(Walk(matcher, Folder(), L"b*", 0), Names{L"b.dat"});
}

TEST_F(BasicFileMatcher, FoundPathsHaveBackslashes)
{
    QuonBasicFileMatcher matcher;
    matcher.FindFirst(Folder().c_str(), L"b*", 0);
    for (QuonPath path : {matcher.GetFoundPath(), matcher.GetFoundName(), matcher.GetFolder()})
    {
        path.AddTrailingSeparator();
        EXPECT_EQ(Text(path).back(), L'\\');
    }
}

TEST_F(BasicFileMatcher, CloseOfADerivedClassRunsBeforeASearch)
{
    class Counting : public QuonBasicFileMatcher
    {
    public:
        void Close() override
        {
            ++closed;
            QuonBasicFileMatcher::Close();
        }
        int closed = 0;
    };
    Counting matcher;
    matcher.FindFirst(Folder().c_str(), L"*", 0);
    EXPECT_EQ(matcher.closed, 1);
    matcher.FindFirst(Folder().c_str(), L"*", 0);
    EXPECT_EQ(matcher.closed, 2);
    matcher.FindNext();
    EXPECT_EQ(matcher.closed, 2);
}

TEST_F(BasicFileMatcher, OneOfManyEntriesIsNotLost)
{
    const TemporaryFolder many;
    Names expected;
    for (int i = 0; i < 700; ++i)  // more than the system hands over at once
    {
        const std::wstring name = L"file with a rather long name " + std::to_wstring(1000 + i);
        many.WriteFile(name);
        expected.push_back(name);
    }
    QuonBasicFileMatcher matcher;
    Names names = Walk(matcher, many.Path(), L"*", 0x20);
    std::sort(names.begin(), names.end());
    EXPECT_EQ(names, expected);
}

}  // namespace
