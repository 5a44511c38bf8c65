// What asks the system: real files, and the exact calls that only a patched import shows.
#include <afx.h>
#include <gtest/gtest.h>
#include <io.h>

#include <cstddef>
#include <climits>
#include <cstdint>

#include "paths/PathTestSupport.h"
#include "paths/QuonPath.h"
#include "helpers/ImportPatch.h"
#include "helpers/TemporaryFolder.h"

using quon_test::ImportPatch;
using quon_test::TemporaryFolder;

namespace
{

constexpr const wchar_t* kModule = L"QuonWin32Utils.dll";

static_assert(sizeof(QuonFileInfo) == 36);
static_assert(offsetof(QuonFileInfo, attributes) == 0);
static_assert(offsetof(QuonFileInfo, creationTime) == 4);
static_assert(offsetof(QuonFileInfo, lastAccessTime) == 12);
static_assert(offsetof(QuonFileInfo, lastWriteTime) == 20);
static_assert(offsetof(QuonFileInfo, sizeHigh) == 28);
static_assert(offsetof(QuonFileInfo, sizeLow) == 32);

constexpr DWORD kStale = 0xA5A5A5A5;

QuonFileInfo StaleInfo()
{
    const FILETIME time = {kStale, kStale};
    return {kStale, time, time, time, kStale, kStale};
}

std::uint64_t Ticks(const FILETIME& time)
{
    return (std::uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime;
}

constexpr std::uint64_t kStaleTicks = 0xA5A5A5A5A5A5A5A5;

TEST(QuonPathQueries, ExistenceIsTheRuntimesAnswer)
{
    const TemporaryFolder folder;
    const std::wstring file = folder.WriteFile(L"a.txt", "x");
    EXPECT_TRUE(QuonPath(file, 0).Exists());
    EXPECT_TRUE(QuonPath(folder.Path(), 0).Exists());
    EXPECT_FALSE(QuonPath(folder / L"missing.txt", 0).Exists());
    EXPECT_FALSE(QuonPath().Exists());
    EXPECT_FALSE(QuonPath(std::wstring(32767, L'a'), 0).Exists());
}

TEST(QuonPathQueries, AccessGoesByTheMode)
{
    const TemporaryFolder folder;
    const QuonPath writable(folder.WriteFile(L"a.txt", "x"), 0);
    const QuonPath readOnly(folder.WriteFile(L"b.txt", "x", FILE_ATTRIBUTE_READONLY), 0);
    const QuonPath missing(folder / L"missing.txt", 0);
    for (const int mode : {0, 2, 4, 6})
    {
        SCOPED_TRACE(mode);
        EXPECT_EQ(writable.Access(mode), 0);
        EXPECT_EQ(readOnly.Access(mode), (mode & 2) != 0 ? -1 : 0);
        EXPECT_EQ(missing.Access(mode), -1);
    }
}

struct AccessCall
{
    std::wstring name;
    int mode = -1;
    int answer = 0;
} g_access;

int __cdecl FakeAccess(const wchar_t* name, int mode)
{
    g_access.name = name;
    g_access.mode = mode;
    return g_access.answer;
}

TEST(QuonPathQueries, AccessIsHandedOnUnchanged)
{
    const ImportPatch<decltype(&::_waccess)> patch(kModule, "_waccess", &FakeAccess);
    const QuonPath path(L"a/b", 0);
    g_access = {L"", -1, 7};
    EXPECT_EQ(path.Access(5), 7);
    EXPECT_EQ(g_access.name, L"a/b");
    EXPECT_EQ(g_access.mode, 5);
    EXPECT_FALSE(path.Exists());
    EXPECT_EQ(g_access.mode, 0);
    g_access.answer = 0;
    EXPECT_TRUE(path.Exists());
}

TEST(GetFileInfo, TellsAttributesTimesAndSize)
{
    const TemporaryFolder folder;
    const std::wstring file = folder.WriteFile(L"a.txt", "12345");
    const std::uint64_t created = 125911584000000000;
    const std::uint64_t accessed = 125911584010000000;
    const std::uint64_t modified = 125911584020000000;
    folder.SetTimes(L"a.txt", &created, &accessed, &modified);

    WIN32_FILE_ATTRIBUTE_DATA expected;
    ASSERT_TRUE(::GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &expected));
    QuonFileInfo info = StaleInfo();
    EXPECT_NE(GetFileInfo(file.c_str(), 0, &info), 0);
    EXPECT_EQ(info.attributes, expected.dwFileAttributes);
    EXPECT_EQ(Ticks(info.creationTime), Ticks(expected.ftCreationTime));
    EXPECT_EQ(Ticks(info.lastAccessTime), Ticks(expected.ftLastAccessTime));
    EXPECT_EQ(Ticks(info.lastWriteTime), modified);
    EXPECT_EQ(info.sizeHigh, 0u);
    EXPECT_EQ(info.sizeLow, 5u);

    QuonFileInfo same = StaleInfo();
    EXPECT_TRUE(QuonPath(file, 0).GetInfo(&same));
    EXPECT_EQ(same.attributes, info.attributes);
    EXPECT_EQ(Ticks(same.lastWriteTime), modified);
    EXPECT_EQ(same.sizeLow, 5u);
}

TEST(GetFileInfo, EmptyFileHasSizeZero)
{
    const TemporaryFolder folder;
    QuonFileInfo info = StaleInfo();
    EXPECT_TRUE(QuonPath(folder.WriteFile(L"a.txt"), 0).GetInfo(&info));
    EXPECT_EQ(info.sizeLow, 0u);
    EXPECT_EQ(info.sizeHigh, 0u);
}

void ExpectOnlyAttributesWritten(const QuonFileInfo& info)
{
    EXPECT_EQ(Ticks(info.creationTime), kStaleTicks);
    EXPECT_EQ(Ticks(info.lastAccessTime), kStaleTicks);
    EXPECT_EQ(Ticks(info.lastWriteTime), kStaleTicks);
    EXPECT_EQ(info.sizeHigh, kStale);
    EXPECT_EQ(info.sizeLow, kStale);
}

TEST(GetFileInfo, FolderGivesNothingButItsAttributes)
{
    const TemporaryFolder folder;
    QuonFileInfo info = StaleInfo();
    EXPECT_EQ(GetFileInfo(folder.Path().c_str(), 0, &info), 0);
    EXPECT_EQ(info.attributes, ::GetFileAttributesW(folder.Path().c_str()));
    ExpectOnlyAttributesWritten(info);
    EXPECT_FALSE(QuonPath(folder.Path(), 0).GetInfo(&info));
}

TEST(GetFileInfo, MissingFileHasItsAttributesWritten)
{
    const TemporaryFolder folder;
    const std::wstring missing = folder / L"missing.txt";
    for (const wchar_t* name : {missing.c_str(), L"", static_cast<const wchar_t*>(nullptr)})
    {
        QuonFileInfo info = StaleInfo();
        EXPECT_EQ(GetFileInfo(name, 0, &info), 0);
        EXPECT_EQ(info.attributes, INVALID_FILE_ATTRIBUTES);
        ExpectOnlyAttributesWritten(info);
    }
}

TEST(GetFileInfo, RefusesOtherLevelsAndNoRecord)
{
    const TemporaryFolder folder;
    const std::wstring file = folder.WriteFile(L"a.txt", "x");
    for (const int level : {1, -1, 2, INT_MAX})
    {
        SCOPED_TRACE(level);
        QuonFileInfo info = StaleInfo();
        EXPECT_EQ(GetFileInfo(file.c_str(), level, &info), 0);
        EXPECT_EQ(info.attributes, kStale);
        ExpectOnlyAttributesWritten(info);
    }
    EXPECT_EQ(GetFileInfo(file.c_str(), 0, nullptr), 0);
    EXPECT_FALSE(QuonPath(file, 0).GetInfo(nullptr));
}

/// A made-up file: records how it is opened and gives the answers that it is told to.
struct FakeFile
{
    DWORD attributes = FILE_ATTRIBUTE_ARCHIVE;
    HANDLE handle = reinterpret_cast<HANDLE>(std::uintptr_t{0x1234});
    BOOL timeAnswer = TRUE;
    DWORD sizeLow = 10;
    DWORD sizeHigh = 3;
    DWORD sizeError = NO_ERROR;

    std::wstring calls;
    std::wstring name;
    DWORD access = 0;
    DWORD share = 0;
    LPSECURITY_ATTRIBUTES security = nullptr;
    DWORD disposition = 0;
    DWORD flags = 0;
    HANDLE handleTemplate = nullptr;
};
FakeFile* g_file = nullptr;

DWORD WINAPI FakeGetFileAttributes(LPCWSTR)
{
    g_file->calls += L"attributes ";
    return g_file->attributes;
}

HANDLE WINAPI FakeCreateFile(LPCWSTR name, DWORD access, DWORD share, LPSECURITY_ATTRIBUTES security, DWORD disposition,
                             DWORD flags, HANDLE handleTemplate)
{
    g_file->calls += L"open ";
    g_file->name = name;
    g_file->access = access;
    g_file->share = share;
    g_file->security = security;
    g_file->disposition = disposition;
    g_file->flags = flags;
    g_file->handleTemplate = handleTemplate;
    return g_file->handle;
}

BOOL WINAPI FakeGetFileTime(HANDLE handle, LPFILETIME created, LPFILETIME accessed, LPFILETIME modified)
{
    g_file->calls += handle == g_file->handle ? L"times " : L"times-of-another ";
    if (g_file->timeAnswer)
    {
        *created = {1, 11};
        *accessed = {2, 12};
        *modified = {3, 13};
    }
    return g_file->timeAnswer;
}

DWORD WINAPI FakeGetFileSize(HANDLE handle, LPDWORD high)
{
    g_file->calls += handle == g_file->handle ? L"size " : L"size-of-another ";
    *high = g_file->sizeHigh;
    ::SetLastError(g_file->sizeError);
    return g_file->sizeLow;
}

BOOL WINAPI FakeCloseHandle(HANDLE handle)
{
    g_file->calls += handle == g_file->handle ? L"close" : L"close-of-another";
    // What closing leaves behind must not be taken for the error of the size.
    ::SetLastError(ERROR_GEN_FAILURE);
    return TRUE;
}

class GetFileInfoCalls : public testing::Test
{
protected:
    void SetUp() override { g_file = &m_file; }
    void TearDown() override { g_file = nullptr; }

    FakeFile m_file;

private:
    ImportPatch<decltype(&::GetFileAttributesW)> m_attributes{kModule, "GetFileAttributesW", &FakeGetFileAttributes};
    ImportPatch<decltype(&::CreateFileW)> m_open{kModule, "CreateFileW", &FakeCreateFile};
    ImportPatch<decltype(&::GetFileTime)> m_times{kModule, "GetFileTime", &FakeGetFileTime};
    ImportPatch<decltype(&::GetFileSize)> m_size{kModule, "GetFileSize", &FakeGetFileSize};
    ImportPatch<decltype(&::CloseHandle)> m_close{kModule, "CloseHandle", &FakeCloseHandle};
};

TEST_F(GetFileInfoCalls, FileIsOpenedForReadingAndClosed)
{
    QuonFileInfo info = StaleInfo();
    EXPECT_NE(GetFileInfo(L"C:\\a.txt", 0, &info), 0);
    EXPECT_EQ(m_file.calls, L"attributes open times size close");
    EXPECT_EQ(m_file.name, L"C:\\a.txt");
    EXPECT_EQ(m_file.access, DWORD{GENERIC_READ});
    EXPECT_EQ(m_file.share, DWORD{FILE_SHARE_READ | FILE_SHARE_WRITE});
    EXPECT_EQ(m_file.security, nullptr);
    EXPECT_EQ(m_file.disposition, DWORD{OPEN_EXISTING});
    EXPECT_EQ(m_file.flags, 0u);
    EXPECT_EQ(m_file.handleTemplate, nullptr);
    EXPECT_EQ(info.attributes, DWORD{FILE_ATTRIBUTE_ARCHIVE});
    EXPECT_EQ(Ticks(info.creationTime), 0xB00000001u);
    EXPECT_EQ(Ticks(info.lastAccessTime), 0xC00000002u);
    EXPECT_EQ(Ticks(info.lastWriteTime), 0xD00000003u);
    EXPECT_EQ(info.sizeLow, 10u);
    EXPECT_EQ(info.sizeHigh, 3u);
}

TEST_F(GetFileInfoCalls, NothingIsOpenedWithoutAttributes)
{
    m_file.attributes = INVALID_FILE_ATTRIBUTES;
    QuonFileInfo info = StaleInfo();
    EXPECT_EQ(GetFileInfo(L"a", 0, &info), 0);
    EXPECT_EQ(m_file.calls, L"attributes ");
    EXPECT_EQ(info.attributes, INVALID_FILE_ATTRIBUTES);
}

TEST_F(GetFileInfoCalls, NothingIsAskedOfAFileThatDoesNotOpen)
{
    m_file.handle = INVALID_HANDLE_VALUE;
    QuonFileInfo info = StaleInfo();
    EXPECT_EQ(GetFileInfo(L"a", 0, &info), 0);
    EXPECT_EQ(m_file.calls, L"attributes open ");
    EXPECT_EQ(info.attributes, DWORD{FILE_ATTRIBUTE_ARCHIVE});
    ExpectOnlyAttributesWritten(info);
}

TEST_F(GetFileInfoCalls, MissingTimesDoNotKeepTheSizeAway)
{
    m_file.timeAnswer = FALSE;
    QuonFileInfo info = StaleInfo();
    EXPECT_EQ(GetFileInfo(L"a", 0, &info), 0);
    EXPECT_EQ(m_file.calls, L"attributes open times size close");
    EXPECT_EQ(info.sizeLow, 10u);
    EXPECT_EQ(info.sizeHigh, 3u);
}

TEST_F(GetFileInfoCalls, FailedSizeIsToldByTheErrorAlone)
{
    m_file.sizeLow = INVALID_FILE_SIZE;
    m_file.sizeError = ERROR_ACCESS_DENIED;
    QuonFileInfo info = StaleInfo();
    EXPECT_EQ(GetFileInfo(L"a", 0, &info), 0);
    EXPECT_EQ(m_file.calls, L"attributes open times size close");
    EXPECT_EQ(Ticks(info.lastWriteTime), 0xD00000003u);
    EXPECT_EQ(info.sizeLow, INVALID_FILE_SIZE);
    EXPECT_EQ(info.sizeHigh, 3u);
}

TEST_F(GetFileInfoCalls, SizeMayHaveTheLowWordOfAFailure)
{
    m_file.sizeLow = INVALID_FILE_SIZE;
    QuonFileInfo info = StaleInfo();
    EXPECT_NE(GetFileInfo(L"a", 0, &info), 0);
    EXPECT_EQ(info.sizeLow, 0xFFFFFFFFu);
    EXPECT_EQ(info.sizeHigh, 3u);
}

TEST_F(GetFileInfoCalls, ErrorIsLookedAtForThatLowWordOnly)
{
    m_file.sizeError = ERROR_ACCESS_DENIED;
    QuonFileInfo info = StaleInfo();
    EXPECT_NE(GetFileInfo(L"a", 0, &info), 0);
}

}  // namespace
