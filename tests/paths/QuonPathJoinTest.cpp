// Normal forms, and everything that joins two paths.
#include <afx.h>
#include <gtest/gtest.h>
#include <shlwapi.h>

#include <algorithm>
#include <cwchar>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/ImportPatch.h"

using quon_test::MakeForward;
using quon_test::Repeated;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

struct NormalRow
{
    const wchar_t* text;
    const wchar_t* expected;  // with the separator "\"
};

const NormalRow kNormalRows[] = {
    {L"", L""},
    {L"a", L"a"},
    {L"C:/a//b\\", L"C:\\a\\b\\"},
    {L"\\\\srv/share", L"\\\\srv\\share"},
    {L"\"C:\\a b\"", L"C:\\a b"},
    {L"\\", L"\\"},
    {L"/", L"\\"},
    {L"\\\\", L"\\\\\\"},
    {L"//", L"\\\\\\"},
    {L"/\\", L"\\\\\\"},
    {L"\\\\\\", L"\\\\\\"},
    {L"////", L"\\\\\\"},
    {L"\\a", L"\\a"},
    {L"/a/", L"\\a\\"},
    {L"\\\\a", L"\\\\a"},
    {L"\\\\\\\\a\\\\\\", L"\\\\a\\"},
    {L"C:", L"C:"},
    {L"C:\\", L"C:\\"},
    {L"a/./..//b", L"a\\.\\..\\b"},
    {L"..", L".."},
    {L"ABC/dEf", L"ABC\\dEf"},
    // A double quote parts components, but it neither leads nor trails.
    {L"a\"b", L"a\\b"},
    {L"a\"\"b", L"a\\b"},
    {L"a\"", L"a"},
    {L"\"", L""},
    {L"\"\"", L""},
    {L"\"\\", L"\\"},
    {L"\\\"", L"\\"},
    {L"\"\\\\srv\\share\"", L"srv\\share"},
    {L"\\\"\\srv", L"\\srv"},
    {L"\\\\\"srv\"", L"\\\\srv"},
    {L"\\\\\"", L"\\\\"},
    {L"a\\\"", L"a"},
    {L"a\"\\", L"a\\"},
};

std::wstring WithSlashes(std::wstring text)
{
    for (wchar_t& ch : text)
    {
        ch = ch == L'\\' ? L'/' : ch;
    }
    return text;
}

TEST(QuonPathNormalize, WritesTheObjectsSeparator)
{
    for (const NormalRow& row : kNormalRows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath path(row.text, 0);
        path.Normalize();
        EXPECT_EQ(Text(path), row.expected);
        EXPECT_EQ(SeparatorOf(path), L"\\");
        MakeForward(path, row.text).Normalize();
        EXPECT_EQ(Text(path), WithSlashes(row.expected));
        EXPECT_EQ(SeparatorOf(path), L"/");
    }
}

TEST(QuonPathNormalize, ToOneSeparatorChangesTheObjects)
{
    for (const NormalRow& row : kNormalRows)
    {
        SCOPED_TRACE(testing::Message() << "text " << row.text);
        QuonPath path(row.text, 0);
        path.NormalizeToSlashes();
        EXPECT_EQ(Text(path), WithSlashes(row.expected));
        EXPECT_EQ(SeparatorOf(path), L"/");
        MakeForward(path, row.text).NormalizeToBackslashes();
        EXPECT_EQ(Text(path), row.expected);
        EXPECT_EQ(SeparatorOf(path), L"\\");
    }
}

TEST(QuonPathNormalize, LeavesCopiesAlone)
{
    const QuonPath original(L"a//b", 0);
    QuonPath copy(original);
    copy.Normalize();
    EXPECT_EQ(Text(copy), L"a\\b");
    EXPECT_EQ(Text(original), L"a//b");
}

TEST(QuonPathNormalize, TakesTextsOfAnyLength)
{
    QuonPath path(Repeated(32767, L'/'), QuonPathNormalize);
    EXPECT_EQ(Text(path), L"\\\\\\");
    path.Assign(Repeated(32767, L'a'), QuonPathNormalize);
    EXPECT_EQ(Text(path), Repeated(32767, L'a'));
    std::wstring alternating;
    std::wstring expected;
    for (int index = 0; index < 16383; ++index)
    {
        alternating += index % 2 == 0 ? L"a/" : L"b\\";
        expected += index % 2 == 0 ? L"a\\" : L"b\\";
    }
    path.Assign(alternating, QuonPathNormalize);
    EXPECT_EQ(Text(path), expected);
}

struct AppendRow
{
    const wchar_t* left;
    const wchar_t* right;
    const wchar_t* expected;  // with the separator "\"
};

const AppendRow kAppendRows[] = {
    {L"", L"", L""},
    {L"", L"a//b/", L"a\\b\\"},
    {L"", L"\\a", L"\\a"},
    {L"", L"\\\\srv\\share", L"\\\\srv\\share"},
    {L"", L"\\\\", L"\\\\\\"},
    {L"\"", L"/a", L"\\a"},
    {L"C:/a", L"", L"C:\\a"},
    {L"C:/a", L"\"", L"C:\\a"},
    {L"C:/a//", L"", L"C:\\a\\"},
    {L"\\\\", L"", L"\\\\\\"},
    {L"C:\\a", L"\\x", L"C:\\a\\x"},
    {L"C:\\a", L"x", L"C:\\a\\x"},
    {L"C:\\a\\", L"x", L"C:\\a\\x"},
    {L"C:\\a\\", L"//x/y\\", L"C:\\a\\x\\y\\"},
    {L"C:\\a", L"\\\\\\x", L"C:\\a\\x"},
    {L"C:", L"a", L"C:\\a"},
    {L"C:", L"\\", L"C:\\"},
    {L"a", L"\\", L"a\\"},
    {L"a\\", L"\\\\", L"a\\"},
    {L"\\\\srv", L"share/b", L"\\\\srv\\share\\b"},
    {L"\\", L"a", L"\\a"},
    {L"\\\\", L"a", L"\\\\\\a"},
    {L"a", L"..", L"a\\.."},
    {L"a", L"C:\\b", L"a\\C:\\b"},
    {L"\"C:\\a b\"", L"\"c d\"", L"C:\\a b\\c d"},
};

TEST(QuonPathAppend, JoinsInPlaceAndReturnsACopy)
{
    for (const AppendRow& row : kAppendRows)
    {
        SCOPED_TRACE(testing::Message() << "left " << row.left << " right " << row.right);
        QuonPath path(row.left, 0);
        EXPECT_EQ(Text(path.Append(row.right)), row.expected);
        EXPECT_EQ(Text(path), row.expected);

        QuonPath forward;
        MakeForward(forward, row.left);
        const QuonPath returned = forward.Append(std::wstring(row.right));
        EXPECT_EQ(Text(forward), WithSlashes(row.expected));
        EXPECT_EQ(SeparatorOf(forward), L"/");
        EXPECT_EQ(Text(returned), WithSlashes(row.expected));
        EXPECT_EQ(SeparatorOf(returned), L"\\");
    }
}

TEST(QuonPathAppend, NullAppendsNothingButNormalizes)
{
    const wchar_t* const none = nullptr;
    QuonPath path(L"a//b", 0);
    EXPECT_EQ(Text(path.Append(none)), L"a\\b");
    EXPECT_EQ(Text(path), L"a\\b");
}

TEST(QuonPathAppend, TheOwnTextMayBeAppended)
{
    QuonPath path(L"C://a", 0);
    path.Append(path);
    EXPECT_EQ(Text(path), L"C:\\a\\C:\\a");
    path.Append(static_cast<const wchar_t*>(path) + 5);
    EXPECT_EQ(Text(path), L"C:\\a\\C:\\a\\C:\\a");
}

TEST(QuonPathAppend, TakesTextsOfAnyLength)
{
    const std::wstring longText = Repeated(32767, L'a');
    QuonPath path(longText, 0);
    path.Append(L"/" + longText);
    EXPECT_EQ(Text(path), longText + L"\\" + longText);
    path = L"a";
    path.Append(Repeated(32767, L'/'));
    EXPECT_EQ(Text(path), L"a\\");
    // Around the length up to which no memory is taken for the second text.
    for (std::size_t length = 515; length < 525; ++length)
    {
        SCOPED_TRACE(length);
        path = L"b";
        path.Append(Repeated(length, L'c'));
        EXPECT_EQ(Text(path), L"b\\" + Repeated(length, L'c'));
    }
}

TEST(QuonPathPlus, JoinsIntoANewPath)
{
    for (const AppendRow& row : kAppendRows)
    {
        SCOPED_TRACE(testing::Message() << "left " << row.left << " right " << row.right);
        QuonPath left;
        MakeForward(left, row.left);
        const QuonPath joined = left + row.right;
        EXPECT_EQ(Text(joined), row.expected);
        EXPECT_EQ(SeparatorOf(joined), L"\\");
        EXPECT_EQ(Text(left + std::wstring(row.right)), row.expected);
        EXPECT_EQ(Text(left + QuonPath(row.right, 0)), row.expected);
        EXPECT_EQ(Text(left), row.left);
        EXPECT_EQ(SeparatorOf(left), L"/");

        const CString text(row.left);
        const QuonPath fromText = text + std::wstring(row.right);
        EXPECT_EQ(Text(fromText), row.expected);
        EXPECT_EQ(SeparatorOf(fromText), L"\\");
        EXPECT_EQ(Text(text), row.left);
    }
}

TEST(QuonPathPlus, StringPlusLiteralIsTheFrameworksOwn)
{
    const CString joined = CString(L"a") + L"b";
    EXPECT_EQ(Text(joined), L"ab");
}

TEST(CombinePaths, IsTheShellsCombination)
{
    const struct
    {
        const wchar_t* first;
        const wchar_t* second;
        const wchar_t* expected;
    } rows[] = {
        {L"C:\\a", L"b", L"C:\\a\\b"},        {L"C:\\a\\", L"b\\c.txt", L"C:\\a\\b\\c.txt"},
        {L"C:\\a\\b", L"..\\c", L"C:\\a\\c"}, {L"C:\\a", L"D:\\b", L"D:\\b"},
        {L"C:\\a", L"\\b", L"C:\\b"},         {L"C:\\a", L"", L"C:\\a"},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "first " << row.first << " second " << row.second);
        CString result(L"old");
        CombinePaths(result, row.first, row.second);
        EXPECT_EQ(Text(result), row.expected);
    }
}

TEST(CombinePaths, ResultMayBeAnArgument)
{
    CString path(L"C:\\a");
    CombinePaths(path, path, L"b");
    EXPECT_EQ(Text(path), L"C:\\a\\b");
}

TEST(CombinePaths, IsEmptyWhenTheTwoDoNotFit)
{
    CString result(L"old");
    CombinePaths(result, L"C:\\a", Repeated(MAX_PATH, L'b').c_str());
    EXPECT_EQ(Text(result), L"");
}

struct RelativeRow
{
    const wchar_t* path;
    const wchar_t* base;
    const wchar_t* expected;
};

const RelativeRow kRelativeRows[] = {
    {L"C:\\a\\x.txt", L"C:\\a\\b.txt", L".\\x.txt"},
    {L"C:\\a\\x.txt", L"C:\\a\\", L".\\x.txt"},
    {L"C:\\a\\c\\x.txt", L"C:\\a\\b.txt", L".\\c\\x.txt"},
    {L"C:\\a\\x.txt", L"C:\\a\\b\\f.txt", L"..\\x.txt"},
    {L"C:\\a\\x.txt", L"C:\\a\\b\\c\\", L"..\\..\\x.txt"},
    {L"C:\\a\\d\\x.txt", L"C:\\a\\b\\f.txt", L"..\\d\\x.txt"},
    // The base is a file's name: its last component is dropped.
    {L"C:\\a\\b\\x.txt", L"C:\\a\\b", L".\\b\\x.txt"},
    {L"D:\\a\\x.txt", L"C:\\a\\b.txt", L""},
    {L"C:\\a\\x.txt", L"", L""},
    {L"", L"C:\\a\\b.txt", L""},
};

TEST(QuonPathRelative, LeadsFromTheFolderOfTheBase)
{
    for (const RelativeRow& row : kRelativeRows)
    {
        SCOPED_TRACE(testing::Message() << "path " << row.path << " base " << row.base);
        const QuonPath path(row.path, 0);
        const QuonPath relative = path.MakeRelativeTo(QuonPath(row.base, 0));
        EXPECT_EQ(Text(relative), row.expected);
        EXPECT_EQ(SeparatorOf(relative), L"\\");
        EXPECT_EQ(Text(path), row.path);
    }
}

TEST(QuonPathRelative, BaseIsWrittenWithBackslashesForTheShell)
{
    QuonPath base;
    MakeForward(base, L"C:/a/b/f.txt");
    EXPECT_EQ(Text(QuonPath(L"C:\\a\\x.txt", 0).MakeRelativeTo(base)), L"..\\x.txt");
}

// A shell that answers with what it is bound to: MAX_PATH bounds the paths it is given, and each folder of one
// character, with its separator, becomes a step up of three.
BOOL WINAPI LongestRelativePath(LPWSTR out, LPCWSTR from, DWORD fromAttributes, LPCWSTR to, DWORD toAttributes)
{
    EXPECT_EQ(fromAttributes, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(toAttributes, DWORD{FILE_ATTRIBUTE_NORMAL});
    std::wstring relative;
    for (const wchar_t* ch = from; *ch != L'\0'; ++ch)
    {
        relative += *ch == L'a' ? L"..\\" : L"";
    }
    relative += to + std::wcslen(L"C:\\");
    std::copy_n(relative.c_str(), relative.size() + 1, out);
    return TRUE;
}

TEST(QuonPathRelative, ResultsBeyondTheLongestPathOfTheShellComeBackWhole)
{
    const quon_test::ImportPatch<decltype(&::PathRelativePathToW)> shell(L"QuonWin32Utils.dll", "PathRelativePathToW",
                                                                         &LongestRelativePath);
    std::wstring base = L"C:";
    std::wstring expected;
    while (base.size() + 2 < MAX_PATH)
    {
        base += L"\\a";
        expected += L"..\\";
    }
    const std::wstring name(200, L'x');
    expected += name;
    ASSERT_GT(expected.size(), 2u * MAX_PATH);
    EXPECT_EQ(Text(QuonPath(L"C:\\" + name, 0).MakeRelativeTo(QuonPath(base + L"\\", 0))), expected);
}

TEST(QuonPathRelative, SurvivesDeepBasesAndLongNames)
{
    std::wstring base = L"C:";
    while (base.size() < 250)
    {
        base += L"\\a";
    }
    // What the shell makes of it is its own affair; it may refuse. It must come back.
    EXPECT_NO_THROW(QuonPath(L"C:\\x.txt", 0).MakeRelativeTo(QuonPath(base + L"\\", 0)));
    const std::wstring longName = Repeated(32000, L'a');
    EXPECT_NO_THROW(QuonPath(L"C:\\" + longName, 0).MakeRelativeTo(QuonPath(L"C:\\" + longName + L"\\", 0)));
}

}  // namespace
