// What the stand-in promises beyond the framework; these tests need not pass against the framework itself.
#include <afxwin.h>

#include <gtest/gtest.h>

#include <string>

#include "helpers/TemporaryFolder.h"

namespace
{
std::wstring Text(const CString& text)
{
    return {text.GetString(), static_cast<size_t>(text.GetLength())};
}

TEST(StandInTest, FormattingTakesTheTextItselfAsAnArgument)
{
    CString text(L"abc");
    text.Format(L"<%s-%s>", text.GetString(), text.GetString());
    EXPECT_EQ(Text(text), L"<abc-abc>");
    text.AppendFormat(L"[%s]", text.GetString());
    EXPECT_EQ(Text(text), L"<abc-abc>[<abc-abc>]");
    text = CString(L'x', 1000);
    text.Format(L"%s%s", text.GetString(), text.GetString());
    EXPECT_EQ(Text(text), std::wstring(2000, L'x'));
}

TEST(StandInTest, EditingTakesAPartOfTheTextAsAnArgument)
{
    CString text(L"abc");
    EXPECT_EQ(text.Insert(0, text.GetString() + 1), 5);
    EXPECT_EQ(Text(text), L"bcabc");
    text = L"abc";
    EXPECT_EQ(text.Insert(1, text.GetString() + 1), 5);
    EXPECT_EQ(Text(text), L"abcbc");
    EXPECT_EQ(text.Replace(text.GetString() + 3, text.GetString()), 2);
    EXPECT_EQ(Text(text), L"aabcbcabcbc");
}

TEST(StandInTest, RoomComesInStepsOfEight)
{
    EXPECT_EQ(CString().GetAllocLength(), 0);
    EXPECT_EQ(CString(L"a").GetAllocLength(), 7);
    EXPECT_EQ(CString(L"1234567").GetAllocLength(), 7);
    EXPECT_EQ(CString(L"12345678").GetAllocLength(), 15);
}

TEST(StandInTest, MovedFromStringsAreEmpty)
{
    CString source(L"abc");
    CString target(static_cast<CString&&>(source));
    EXPECT_TRUE(source.IsEmpty());
    source = static_cast<CString&&>(target);
    EXPECT_TRUE(target.IsEmpty());
}

// The framework itself leaves the position at the start of the file.
TEST(StandInTest, AppendingFlagsWriteToTheEndUnasked)
{
    const quon_test::TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"log.txt", "old\r\n");
    CStdioFile file;
    ASSERT_TRUE(
        file.Open(path.c_str(), CFile::modeCreate | CFile::modeNoTruncate | CFile::modeWrite | CFile::typeText));
    file.WriteString(L"a\n");
    file.Seek(0, CFile::begin);
    file.WriteString(L"b\n");
    file.Close();
    EXPECT_EQ(folder.ReadFile(L"log.txt"), "old\r\na\r\nb\r\n");
}

// A null handler makes the framework's operator new return null, which only MSVC's code expects.
TEST(StandInTest, NoHandlerForShortMemoryMeansTheFrameworksOwn)
{
    const _PNH previous = AfxSetNewHandler(nullptr);
    EXPECT_EQ(AfxGetNewHandler(), &AfxNewHandler);
    AfxSetNewHandler(previous);
}

TEST(StandInTest, AskingForTheStateLeavesTheLastErrorAlone)
{
    SetLastError(1234);
    AfxGetModuleState();
    AFX_MANAGE_STATE(AfxGetAppModuleState());
    AfxLockTempMaps();
    AfxUnlockTempMaps();
    EXPECT_EQ(GetLastError(), 1234U);
}
}  // namespace
