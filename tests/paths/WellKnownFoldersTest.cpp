// The well-known folders: what the system gives, and the exact calls.
#include "paths/WellKnownFolders.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <climits>
#include <optional>
#include <set>
#include <type_traits>
#include <vector>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/ImportPatch.h"

using quon_test::ImportPatch;
using quon_test::MakeForward;
using quon_test::Repeated;
using quon_test::SeparatorOf;
using quon_test::Text;

namespace
{

constexpr const wchar_t* kModule = L"QuonWin32Utils.dll";
constexpr DWORD kBufferLength = 261;

std::wstring ModuleFile()
{
    wchar_t name[MAX_PATH];
    ::GetModuleFileNameW(nullptr, name, MAX_PATH);
    return name;
}

TEST(QuonFolderIdNames, HaveTheirValues)
{
    EXPECT_EQ(sizeof(QuonFolderId), 4u);
    EXPECT_TRUE(std::is_signed_v<QuonFolderId>);
    EXPECT_EQ(QuonFolderModuleFile, 0);
    EXPECT_EQ(QuonFolderModuleFolder, 1);
    EXPECT_EQ(QuonFolderWindows, 2);
    EXPECT_EQ(QuonFolderSystem, 3);
    EXPECT_EQ(QuonFolderTemp, 4);
    EXPECT_EQ(QuonFolderCurrent, 5);
    EXPECT_EQ(QuonFolderDesktop, 6);
    EXPECT_EQ(QuonFolderFavorites, 7);
    EXPECT_EQ(QuonFolderTempFileName, 8);
}

TEST(WellKnownFolders, AreTheSystems)
{
    wchar_t windows[MAX_PATH];
    wchar_t system[MAX_PATH];
    wchar_t temp[MAX_PATH];
    wchar_t current[MAX_PATH];
    ::GetWindowsDirectoryW(windows, MAX_PATH);
    ::GetSystemDirectoryW(system, MAX_PATH);
    ::GetTempPathW(MAX_PATH, temp);
    ::GetCurrentDirectoryW(MAX_PATH, current);
    EXPECT_EQ(Text(QuonPath(QuonFolderModuleFile, 0)), ModuleFile());
    EXPECT_EQ(Text(QuonPath(QuonFolderWindows, 0)), windows);
    EXPECT_EQ(Text(QuonPath(QuonFolderSystem, 0)), system);
    EXPECT_EQ(Text(QuonPath(QuonFolderTemp, 0)), temp);
    EXPECT_EQ(Text(QuonPath(QuonFolderCurrent, 0)), current);
    EXPECT_TRUE(QuonPath(QuonFolderTemp, 0).HasTrailingSeparator());
    EXPECT_FALSE(QuonPath(QuonFolderWindows, 0).HasTrailingSeparator());
}

TEST(WellKnownFolders, ModuleFolderIsTheExecutablesWithASeparator)
{
    const std::wstring file = ModuleFile();
    const std::wstring folder = Text(QuonPath(QuonFolderModuleFolder, 0));
    EXPECT_EQ(folder, file.substr(0, file.rfind(L'\\') + 1));
    EXPECT_EQ(folder.back(), L'\\');
    EXPECT_EQ(Text(QuonPath(QuonFolderModuleFile, 0).GetFileName()), L"well_known_folders_test.exe");
}

TEST(WellKnownFolders, OtherIdsLeaveTheTextAndApplyTheFlags)
{
    for (const QuonFolderId id : {9, -1, 100, INT_MAX, INT_MIN})
    {
        SCOPED_TRACE(id);
        EXPECT_EQ(Text(QuonPath(id, 0)), L"");
        QuonPath path(L"a/B", 0);
        path.SetToFolder(id);
        EXPECT_EQ(Text(path), L"a/B");
        path.Assign(id, QuonPathForwardSlash | QuonPathAddTrailing | QuonPathUpperCase);
        EXPECT_EQ(Text(path), L"A/B/");
        EXPECT_EQ(SeparatorOf(path), L"/");
        path.Assign(id, 0);
        EXPECT_EQ(Text(path), L"A/B/");
        EXPECT_EQ(SeparatorOf(path), L"\\");
    }
}

TEST(WellKnownFolders, SettingKeepsTheSeparatorAndFlagsComeAfterwards)
{
    QuonPath path;
    MakeForward(path, L"a");
    path.SetToFolder(QuonFolderModuleFolder);
    EXPECT_EQ(SeparatorOf(path), L"/");
    EXPECT_EQ(Text(path), Text(QuonPath(QuonFolderModuleFolder, 0)));

    std::wstring expected = Text(QuonPath(QuonFolderModuleFolder, 0));
    for (wchar_t& ch : expected)
    {
        ch = ch == L'\\' ? L'/' : ch;
    }
    expected.pop_back();
    const QuonPathFlags flags = QuonPathForwardSlash | QuonPathStripTrailing | QuonPathNormalize;
    EXPECT_EQ(Text(QuonPath(QuonFolderModuleFolder, flags)), expected);
    path.Assign(QuonFolderModuleFolder, flags);
    EXPECT_EQ(Text(path), expected);
}

TEST(WellKnownFolders, SettingLeavesCopiesAlone)
{
    const QuonPath original(L"a", 0);
    QuonPath copy(original);
    copy.SetToFolder(QuonFolderWindows);
    EXPECT_EQ(Text(original), L"a");
}

TEST(WellKnownFolders, TempFileNamesAreFreshAndNotCreated)
{
    std::set<std::wstring> names;
    for (int round = 0; round < 5; ++round)
    {
        const QuonPath name(QuonFolderTempFileName, 0);
        EXPECT_EQ(Text(name.GetFolder()), Text(QuonPath(QuonFolderTemp, 0)));
        EXPECT_TRUE(name.GetFileName().IsCharAt(0, L'~')) << Text(name);
        EXPECT_FALSE(name.Exists());
        EXPECT_TRUE(names.insert(Text(name)).second) << Text(name);
    }
}

// The sources of the folders, replaced: each records the buffer length that it is given and writes what it is told.

struct Source
{
    std::vector<DWORD> lengths;
    HMODULE module = reinterpret_cast<HMODULE>(1);
    const wchar_t* written = nullptr;  // nothing is written when null
    DWORD answer = 0;
    bool fillsTheBuffer = false;
} g_source;

DWORD Answer(wchar_t* buffer, DWORD length)
{
    g_source.lengths.push_back(length);
    if (g_source.fillsTheBuffer)
    {
        std::fill_n(buffer, length, L'x');  // and no terminating zero
        return length;
    }
    if (g_source.written != nullptr)
    {
        ::lstrcpyW(buffer, g_source.written);
    }
    return g_source.answer;
}

DWORD WINAPI FakeModuleFileName(HMODULE module, LPWSTR buffer, DWORD length)
{
    g_source.module = module;
    return Answer(buffer, length);
}

UINT WINAPI FakeWindowsDirectory(LPWSTR buffer, UINT length)
{
    return Answer(buffer, length);
}

UINT WINAPI FakeSystemDirectory(LPWSTR buffer, UINT length)
{
    return Answer(buffer, length);
}

DWORD WINAPI FakeTempPath(DWORD length, LPWSTR buffer)
{
    return Answer(buffer, length);
}

DWORD WINAPI FakeCurrentDirectory(DWORD length, LPWSTR buffer)
{
    return Answer(buffer, length);
}

class FolderSources : public testing::Test
{
protected:
    void SetUp() override { g_source = Source(); }

    static constexpr QuonFolderId kBuffered[] = {QuonFolderModuleFile, QuonFolderWindows, QuonFolderSystem,
                                                 QuonFolderTemp, QuonFolderCurrent};

private:
    ImportPatch<decltype(&::GetModuleFileNameW)> m_module{kModule, "GetModuleFileNameW", &FakeModuleFileName};
    ImportPatch<decltype(&::GetWindowsDirectoryW)> m_windows{kModule, "GetWindowsDirectoryW", &FakeWindowsDirectory};
    ImportPatch<decltype(&::GetSystemDirectoryW)> m_system{kModule, "GetSystemDirectoryW", &FakeSystemDirectory};
    ImportPatch<decltype(&::GetTempPathW)> m_temp{kModule, "GetTempPathW", &FakeTempPath};
    ImportPatch<decltype(&::GetCurrentDirectoryW)> m_current{kModule, "GetCurrentDirectoryW", &FakeCurrentDirectory};
};

TEST_F(FolderSources, AreGiven261Characters)
{
    for (const QuonFolderId id : kBuffered)
    {
        SCOPED_TRACE(id);
        g_source = Source();
        g_source.written = L"C:\\folder\\file";
        g_source.answer = 14;
        EXPECT_EQ(Text(QuonPath(id, 0)), L"C:\\folder\\file");
        EXPECT_EQ(g_source.lengths, std::vector<DWORD>{kBufferLength});
    }
}

TEST_F(FolderSources, ExecutableIsAskedForWithoutAModule)
{
    for (const QuonFolderId id : {QuonFolderModuleFile, QuonFolderModuleFolder})
    {
        g_source = Source();
        g_source.written = L"C:\\folder\\file";
        g_source.answer = 14;
        EXPECT_EQ(Text(QuonPath(id, 0)), id == QuonFolderModuleFile ? L"C:\\folder\\file" : L"C:\\folder\\");
        EXPECT_EQ(g_source.module, nullptr);
        EXPECT_EQ(g_source.lengths, std::vector<DWORD>{kBufferLength});
    }
}

TEST_F(FolderSources, FailureLeavesTheText)
{
    const std::wstring texts[] = {L"", L"C:\\old\\text", Repeated(260, L'o'), Repeated(261, L'o'),
                                  L"C:\\" + Repeated(1000, L'o')};
    for (const std::wstring& text : texts)
    {
        for (QuonFolderId id = QuonFolderModuleFile; id <= QuonFolderCurrent; ++id)
        {
            // Nothing written, and told so in both ways: no length at all, or the length that would be needed.
            for (const DWORD answer : {0u, 262u, 40000u})
            {
                SCOPED_TRACE(testing::Message() << "id " << id << " length " << text.size() << " answer " << answer);
                g_source = Source();
                g_source.answer = answer;
                QuonPath path;
                MakeForward(path, text.c_str()).SetToFolder(id);
                EXPECT_EQ(Text(path), text);
                EXPECT_EQ(SeparatorOf(path), L"/");
                EXPECT_EQ(g_source.lengths.size(), 1u);
            }
        }
    }
}

TEST_F(FolderSources, TextThatFillsTheBufferIsTerminated)
{
    for (const QuonFolderId id : kBuffered)
    {
        for (const std::size_t oldLength : {0u, 3u, 260u, 261u, 262u, 1000u})
        {
            SCOPED_TRACE(testing::Message() << "id " << id << " old length " << oldLength);
            g_source = Source();
            g_source.fillsTheBuffer = true;
            QuonPath path(Repeated(oldLength, L'o'), 0);
            path.SetToFolder(id);
            EXPECT_EQ(Text(path), Repeated(kBufferLength, L'x'));
        }
    }
}

TEST_F(FolderSources, ShorterFolderReplacesALongerText)
{
    g_source.written = L"C:\\w";
    g_source.answer = 4;
    QuonPath path(Repeated(1000, L'o'), 0);
    path.SetToFolder(QuonFolderWindows);
    EXPECT_EQ(Text(path), L"C:\\w");
}

struct TempName
{
    std::wstring folder;
    std::wstring prefix;
    std::optional<std::wstring> name;
    int calls = 0;
    void* handedOut = nullptr;
    int freed = 0;
} g_tempName;

wchar_t* __cdecl FakeTempName(const wchar_t* folder, const wchar_t* prefix)
{
    ++g_tempName.calls;
    g_tempName.folder = folder;
    g_tempName.prefix = prefix;
    wchar_t* const name = g_tempName.name ? ::_wcsdup(g_tempName.name->c_str()) : nullptr;
    g_tempName.handedOut = name;
    return name;
}

void __cdecl CountingFree(void* memory)
{
    g_tempName.freed += memory != nullptr && memory == g_tempName.handedOut ? 1 : 0;
    ::free(memory);
}

class TempFileName : public FolderSources
{
protected:
    void SetUp() override
    {
        FolderSources::SetUp();
        g_tempName = TempName();
        g_source.written = L"C:\\temp\\";
        g_source.answer = 8;
    }

private:
    ImportPatch<decltype(&::_wtempnam)> m_name{kModule, "_wtempnam", &FakeTempName};
    ImportPatch<decltype(&::free)> m_free{kModule, "free", &CountingFree};
};

TEST_F(TempFileName, IsTheRuntimesForTheTemporaryFolderAndATilde)
{
    g_tempName.name = L"C:\\temp\\~12";
    EXPECT_EQ(Text(QuonPath(QuonFolderTempFileName, 0)), L"C:\\temp\\~12");
    EXPECT_EQ(g_tempName.folder, L"C:\\temp\\");
    EXPECT_EQ(g_tempName.prefix, L"~");
    EXPECT_EQ(g_source.lengths, std::vector<DWORD>{kBufferLength});
    EXPECT_EQ(g_tempName.freed, 1);
}

TEST_F(TempFileName, LongNamesAreCut)
{
    g_tempName.name = Repeated(260, L'n');
    EXPECT_EQ(Text(QuonPath(QuonFolderTempFileName, 0)), Repeated(260, L'n'));
    g_tempName.name = Repeated(32767, L'n');
    EXPECT_EQ(Text(QuonPath(QuonFolderTempFileName, 0)), Repeated(261, L'n'));
}

TEST_F(TempFileName, FailureLeavesTheText)
{
    QuonPath path(L"old", 0);
    path.SetToFolder(QuonFolderTempFileName);
    EXPECT_EQ(Text(path), L"old");
    EXPECT_EQ(g_tempName.calls, 1);
    g_source.written = nullptr;
    g_source.answer = 0;
    g_tempName.name = L"C:\\temp\\~12";
    path.SetToFolder(QuonFolderTempFileName);
    EXPECT_EQ(Text(path), L"old");
    EXPECT_EQ(g_tempName.calls, 1);
}

TEST_F(TempFileName, FolderThatFillsTheBufferIsTerminated)
{
    g_source.fillsTheBuffer = true;
    g_tempName.name = L"C:\\temp\\~12";
    EXPECT_EQ(Text(QuonPath(QuonFolderTempFileName, 0)), L"C:\\temp\\~12");
    EXPECT_EQ(g_tempName.folder, Repeated(kBufferLength, L'x'));
}

}  // namespace
