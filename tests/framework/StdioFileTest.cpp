#include <afx.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

#include "framework/ThrowsPointer.h"
#include "helpers/TemporaryFolder.h"

namespace
{
using quon_test::FileErrorOf;
using quon_test::TemporaryFolder;

constexpr UINT kAppendText = 0x7012;
constexpr UINT kTruncateText = 0x5012;

std::vector<std::wstring> LinesOf(const std::wstring& path)
{
    std::vector<std::wstring> lines;
    CStdioFile file(path.c_str(), CFile::modeRead | CFile::typeText);
    CString line;
    while (file.ReadString(line))
    {
        lines.emplace_back(line.GetString());
    }
    return lines;
}

TEST(CStdioFileTest, TruncatingFlagsStartAfresh)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"log.txt", "old text");
    {
        CStdioFile file;
        ASSERT_TRUE(file.Open(path.c_str(), kTruncateText));
        ASSERT_NE(file.m_pStream, nullptr);
        EXPECT_NE(file.m_hFile, CFile::hFileNull);
        file.WriteString(L"one\ntwo");
        file.WriteString(L"\n");
    }
    EXPECT_EQ(folder.ReadFile(L"log.txt"), "one\r\ntwo\r\n");
}

TEST(CStdioFileTest, AppendingFlagsKeepWhatIsThere)
{
    const TemporaryFolder folder;
    const std::wstring path = folder / L"log.txt";
    for (const wchar_t* line : {L"first\n", L"second\n", L"third"})
    {
        CStdioFile file;
        ASSERT_TRUE(file.Open(path.c_str(), kAppendText));
        file.SeekToEnd();
        file.WriteString(line);
        file.Close();
    }
    EXPECT_EQ(folder.ReadFile(L"log.txt"), "first\r\nsecond\r\nthird");
}

TEST(CStdioFileTest, TranslatesLinesInTextOnly)
{
    struct Row
    {
        UINT type;
        const char* onDisk;
    };
    for (const Row& row : {Row{CFile::typeText, "a\r\n\r\nb"}, Row{0, "a\r\n\r\nb"}, Row{CFile::typeBinary, "a\n\nb"}})
    {
        SCOPED_TRACE(row.type);
        const TemporaryFolder folder;
        CStdioFile file((folder / L"a").c_str(), CFile::modeCreate | CFile::modeWrite | row.type);
        file.Write("a\n\nb", 4);
        file.Close();
        EXPECT_EQ(folder.ReadFile(L"a"), row.onDisk);
    }
}

TEST(CStdioFileTest, ReadsLines)
{
    struct Row
    {
        std::string content;
        std::vector<std::wstring> lines;
    };
    const std::string longLine(1000, 'x');
    const std::string fullPiece(127, 'y');
    const Row rows[] = {
        {"", {}},
        {"a", {L"a"}},
        {"a\r\n", {L"a"}},
        {"a\nb", {L"a", L"b"}},
        {"\r\n\r\n", {L"", L""}},
        {"a\r\n\r\n b \r\n", {L"a", L"", L" b "}},
        {longLine + "\r\nend", {std::wstring(1000, L'x'), L"end"}},
        {fullPiece + "\r\n" + fullPiece + "y\r\n", {std::wstring(127, L'y'), std::wstring(128, L'y')}},
        {fullPiece, {std::wstring(127, L'y')}},
    };
    const TemporaryFolder folder;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.content);
        EXPECT_EQ(LinesOf(folder.WriteFile(L"a.txt", row.content)), row.lines);
    }
}

TEST(CStdioFileTest, ReadsIntoABufferWithTheEndOfTheLine)
{
    const TemporaryFolder folder;
    CStdioFile file(folder.WriteFile(L"a.txt", "abcdef\r\ng").c_str(), CFile::modeRead | CFile::typeText);
    wchar_t text[5] = {};
    EXPECT_EQ(file.ReadString(text, 5), text);
    EXPECT_STREQ(text, L"abcd");
    EXPECT_EQ(file.ReadString(text, 5), text);
    EXPECT_STREQ(text, L"ef\n");
    EXPECT_EQ(file.ReadString(text, 5), text);
    EXPECT_STREQ(text, L"g");
    EXPECT_EQ(file.ReadString(text, 5), nullptr);
}

TEST(CStdioFileTest, FlushMakesTheTextVisible)
{
    const TemporaryFolder folder;
    CStdioFile file((folder / L"a").c_str(), CFile::modeCreate | CFile::modeWrite | CFile::shareDenyNone);
    file.WriteString(L"text");
    EXPECT_EQ(folder.ReadFile(L"a"), "");
    file.Flush();
    EXPECT_EQ(folder.ReadFile(L"a"), "text");
    file.Close();
    EXPECT_EQ(file.m_pStream, nullptr);
    EXPECT_EQ(file.m_hFile, CFile::hFileNull);
    file.Flush();  // nothing is open: nothing happens
}

TEST(CStdioFileTest, SeeksAndTellsThroughTheBuffer)
{
    const TemporaryFolder folder;
    CStdioFile file((folder / L"a").c_str(), CFile::modeCreate | CFile::modeReadWrite | CFile::typeBinary);
    file.Write("0123456789", 10);
    EXPECT_EQ(file.GetPosition(), 10U);
    EXPECT_EQ(file.GetLength(), 10U);
    EXPECT_EQ(file.Seek(4, CFile::begin), 4U);
    EXPECT_EQ(file.GetLength(), 10U);
    EXPECT_EQ(file.GetPosition(), 4U);
    char text[8] = {};
    EXPECT_EQ(file.Read(text, 3), 3U);
    EXPECT_STREQ(text, "456");
    EXPECT_EQ(file.SeekToEnd(), 10U);
    EXPECT_EQ(file.Read(text, 3), 0U);
    EXPECT_EQ(FileErrorOf([&] { file.Seek(-1, CFile::begin); }).first, CFileException::badSeek);
}

TEST(CStdioFileTest, WhatIsNotOpenForItFails)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"a", "content");
    CStdioFile file(path.c_str(), CFile::modeRead);
    EXPECT_EQ(FileErrorOf([&] { file.WriteString(L"x"); }).first, CFileException::diskFull);
    EXPECT_EQ(FileErrorOf([&] { file.Write("x", 1); }).first, CFileException::genericException);
    file.Abort();  // silent, whatever the stream thinks of its past
    EXPECT_EQ(folder.ReadFile(L"a"), "content");
    CStdioFile closed;
    EXPECT_EQ(FileErrorOf([&] { closed.Seek(0, CFile::begin); }).first, CFileException::invalidFile);
}

TEST(CStdioFileTest, TheDestructorOfADerivedClassClosesAndFlushes)
{
    struct Log : CStdioFile
    {
        int isOpen = 0;
    };
    const TemporaryFolder folder;
    const std::wstring path = folder / L"log.txt";
    {
        Log log;
        log.isOpen = log.Open(path.c_str(), kTruncateText);
        log.WriteString(L"end\n");
        CFile other;
        EXPECT_FALSE(other.Open(path.c_str(), CFile::modeRead | CFile::shareDenyNone));  // exclusive
    }
    EXPECT_EQ(folder.ReadFile(L"log.txt"), "end\r\n");
    EXPECT_TRUE(DeleteFileW(path.c_str()));
}

TEST(CStdioFileTest, WhatIsWrittenIsReadBack)
{
    std::mt19937 random(20240505);
    const TemporaryFolder folder;
    const std::wstring path = folder / L"a.txt";
    for (int round = 0; round < 40; ++round)
    {
        SCOPED_TRACE(round);
        std::vector<std::wstring> lines;
        CStdioFile file(path.c_str(), kTruncateText);
        for (int i = std::uniform_int_distribution<int>(0, 20)(random); i > 0; --i)
        {
            std::wstring line(std::uniform_int_distribution<std::size_t>(0, 400)(random), L' ');
            for (wchar_t& character : line)
            {
                // Printable ASCII: what every locale stores in one byte.
                character = static_cast<wchar_t>(std::uniform_int_distribution<int>(0x20, 0x7E)(random));
            }
            file.WriteString((line + L"\n").c_str());
            lines.push_back(line);
        }
        file.Close();
        ASSERT_EQ(LinesOf(path), lines);
    }
}
}  // namespace
