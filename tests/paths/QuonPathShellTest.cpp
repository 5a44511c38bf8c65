// The exact calls of the shell's path functions, which only a patched import shows.
#include <afx.h>
#include <gtest/gtest.h>
#include <shlwapi.h>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/ImportPatch.h"

using quon_test::ImportPatch;
using quon_test::MakeForward;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

constexpr const wchar_t* kModule = L"QuonWin32Utils.dll";

struct ShellCall
{
    std::wstring from;
    DWORD fromAttributes = 0;
    std::wstring to;
    DWORD toAttributes = 0;
    const wchar_t* written = L"";
    BOOL answer = TRUE;
    std::wstring outBefore;
} g_shell;

BOOL WINAPI FakeRelativePath(LPWSTR out, LPCWSTR from, DWORD fromAttributes, LPCWSTR to, DWORD toAttributes)
{
    g_shell.from = from;
    g_shell.fromAttributes = fromAttributes;
    g_shell.to = to;
    g_shell.toAttributes = toAttributes;
    ::lstrcpyW(out, g_shell.written);
    return g_shell.answer;
}

class MakeRelativeCalls : public testing::Test
{
protected:
    void SetUp() override { g_shell = ShellCall(); }

private:
    ImportPatch<decltype(&::PathRelativePathToW)> m_patch{kModule, "PathRelativePathToW", &FakeRelativePath};
};

TEST_F(MakeRelativeCalls, ShellIsGivenTheBasesFolderAndTheTextAsItIs)
{
    QuonPath path;
    MakeForward(path, L"C:/a//x.txt");
    path.MakeRelativeTo(QuonPath(L"C:/a//b/f.txt", QuonPathForwardSlash));
    EXPECT_EQ(g_shell.from, L"C:\\a\\b\\");
    EXPECT_EQ(g_shell.fromAttributes, DWORD{FILE_ATTRIBUTE_DIRECTORY});
    EXPECT_EQ(g_shell.to, L"C:/a//x.txt");
    EXPECT_EQ(g_shell.toAttributes, DWORD{FILE_ATTRIBUTE_NORMAL});
}

TEST_F(MakeRelativeCalls, FailureIsTheEmptyPath)
{
    g_shell.written = L"left over";
    g_shell.answer = FALSE;
    EXPECT_EQ(Text(QuonPath(L"C:\\a", 0).MakeRelativeTo(QuonPath(L"C:\\b", 0))), L"");
}

TEST_F(MakeRelativeCalls, LeadingSeparatorGetsADotWhenItIsThePathsOwn)
{
    const struct
    {
        const wchar_t* written;
        QuonPathFlags flags;
        const wchar_t* expected;
    } rows[] = {
        {L"\\x.txt", QuonPathBackslash, L".\\x.txt"},
        {L"/x.txt", QuonPathBackslash, L".\\x.txt"},
        {L"\\x.txt", QuonPathForwardSlash, L"\\x.txt"},
        {L"/x.txt", QuonPathForwardSlash, L"\\x.txt"},
        {L"\\\\x.txt", QuonPathBackslash, L".\\x.txt"},
        {L"..//a/x.txt", QuonPathBackslash, L"..\\a\\x.txt"},
        {L"..//a/x.txt", QuonPathForwardSlash, L"..\\a\\x.txt"},
        {L"", QuonPathBackslash, L""},
        {L"\"", QuonPathBackslash, L""},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(testing::Message() << "written " << row.written << " flags " << row.flags);
        g_shell.written = row.written;
        const QuonPath relative = QuonPath(L"C:\\a", row.flags).MakeRelativeTo(QuonPath(L"C:\\b", 0));
        EXPECT_EQ(Text(relative), row.expected);
        EXPECT_EQ(SeparatorOf(relative), L"\\");
    }
}

LPWSTR WINAPI FakeCombine(LPWSTR out, LPCWSTR first, LPCWSTR second)
{
    g_shell.outBefore = out;
    g_shell.from = first;
    g_shell.to = second;
    // Fills the whole buffer, and the process with it if it were smaller.
    const std::wstring whole(MAX_PATH - 1, L'c');
    ::lstrcpyW(out, g_shell.answer ? whole.c_str() : out);
    return g_shell.answer ? out : nullptr;
}

TEST(CombinePathsCalls, BufferStartsEmptyAndIsTheResult)
{
    const ImportPatch<decltype(&::PathCombineW)> patch(kModule, "PathCombineW", &FakeCombine);
    g_shell = ShellCall();
    CString result(L"old");
    CombinePaths(result, L"a/b", L"c");
    EXPECT_EQ(g_shell.outBefore, L"");
    EXPECT_EQ(g_shell.from, L"a/b");
    EXPECT_EQ(g_shell.to, L"c");
    EXPECT_EQ(Text(result), std::wstring(MAX_PATH - 1, L'c'));
    g_shell.answer = FALSE;
    CombinePaths(result, L"a", L"b");
    EXPECT_EQ(Text(result), L"");
}

}  // namespace
