#include <afx.h>
#include <atltime.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <string>
#include <type_traits>

#include "framework/ThrowsPointer.h"
#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "helpers/TemporaryFolder.h"

namespace
{
using quon_test::ImportPatch;
using quon_test::kFrameworkModule;
using quon_test::TemporaryFolder;
using quon_test::ThrowsPointer;

constexpr std::uint64_t kUnixEpoch = 116444736000000000;  // 1970-01-01 in 100 ns since 1601
constexpr std::uint64_t kSecond = 10000000;

std::uint64_t Ticks(__time64_t time)
{
    return kUnixEpoch + static_cast<std::uint64_t>(time) * kSecond;
}

FILETIME ToFileTime(std::uint64_t ticks)
{
    return {static_cast<DWORD>(ticks & 0xFFFFFFFF), static_cast<DWORD>(ticks >> 32)};
}

TEST(CTimeTest, IsSixtyFourBitsOfSeconds)
{
    EXPECT_EQ(sizeof(CTime), 8U);
    EXPECT_TRUE((std::is_same_v<CTime, ATL::CTime>));
    EXPECT_EQ(CTime().GetTime(), 0);
    EXPECT_EQ(CTime(__time64_t{5000000000}).GetTime(), 5000000000);
    CTime time;
    time = CTime(__time64_t{7});
    EXPECT_EQ(time.GetTime(), 7);
}

TEST(CTimeTest, CurrentTimeLiesBetweenTwoReadings)
{
    const __time64_t before = _time64(nullptr);
    const CTime now = CTime::GetCurrentTime();
    const __time64_t after = _time64(nullptr);
    EXPECT_LE(before, now.GetTime());
    EXPECT_LE(now.GetTime(), after);
}

TEST(CTimeTest, ComesFromACalendarAndGoesBack)
{
    struct Row
    {
        int year, month, day, hour, minute, second, weekday;
    };
    const Row rows[] = {{1970, 1, 3, 0, 0, 0, 7},   {2000, 2, 29, 23, 59, 59, 3}, {2024, 12, 31, 12, 30, 1, 3},
                        {2038, 1, 20, 3, 14, 8, 4}, {2100, 3, 1, 6, 0, 0, 2},     {2999, 12, 31, 12, 0, 0, 3},
                        {2024, 7, 15, 12, 0, 0, 2}};
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.year);
        const CTime time(row.year, row.month, row.day, row.hour, row.minute, row.second);
        struct tm calendar = {};
        calendar.tm_year = row.year - 1900;
        calendar.tm_mon = row.month - 1;
        calendar.tm_mday = row.day;
        calendar.tm_hour = row.hour;
        calendar.tm_min = row.minute;
        calendar.tm_sec = row.second;
        calendar.tm_isdst = -1;
        EXPECT_EQ(time.GetTime(), _mktime64(&calendar));
        EXPECT_EQ(time.GetYear(), row.year);
        EXPECT_EQ(time.GetMonth(), row.month);
        EXPECT_EQ(time.GetDay(), row.day);
        EXPECT_EQ(time.GetHour(), row.hour);
        EXPECT_EQ(time.GetMinute(), row.minute);
        EXPECT_EQ(time.GetSecond(), row.second);
        EXPECT_EQ(time.GetDayOfWeek(), row.weekday);

        SYSTEMTIME system = {};
        system.wYear = static_cast<WORD>(row.year);
        system.wMonth = static_cast<WORD>(row.month);
        system.wDay = static_cast<WORD>(row.day);
        system.wHour = static_cast<WORD>(row.hour);
        system.wMinute = static_cast<WORD>(row.minute);
        system.wSecond = static_cast<WORD>(row.second);
        system.wMilliseconds = 999;
        EXPECT_EQ(CTime(system).GetTime(), time.GetTime());
    }
}

TEST(CTimeTest, TakesAFileTimeLessItsFraction)
{
    // Now: the conversion uses the time zone's present offset.
    const __time64_t now = _time64(nullptr);
    EXPECT_EQ(CTime(ToFileTime(Ticks(now))).GetTime(), now);
    EXPECT_EQ(CTime(ToFileTime(Ticks(now) + kSecond - 1)).GetTime(), now);
    EXPECT_EQ(CTime(ToFileTime(Ticks(now) + kSecond)).GetTime(), now + 1);
}

TEST(CTimeTest, YearsBeforeItsReckoningAreZero)
{
    SYSTEMTIME system = {1899, 12, 0, 31, 12, 0, 0, 0};
    EXPECT_EQ(CTime(system).GetTime(), 0);
    const FILETIME in1700 = ToFileTime(31241376000000000);
    EXPECT_TRUE(CTime::IsValidFILETIME(in1700));
    EXPECT_EQ(CTime(in1700).GetTime(), 0);
    EXPECT_TRUE(CTime::IsValidFILETIME(ToFileTime(kUnixEpoch)));
    EXPECT_FALSE(CTime::IsValidFILETIME(ToFileTime(0xFFFFFFFFFFFFFFFF)));
}

// The framework asserts these in a debug build, where they would stop the test.
#ifndef _DEBUG
TEST(CTimeTest, WhatIsNoDateThrows)
{
    EXPECT_TRUE(ThrowsPointer<CException>([] { CTime(1899, 1, 1, 0, 0, 0); }));
    EXPECT_TRUE(ThrowsPointer<CException>([] { CTime(2000, 0, 1, 0, 0, 0); }));
    EXPECT_TRUE(ThrowsPointer<CException>([] { CTime(2000, 13, 1, 0, 0, 0); }));
    EXPECT_TRUE(ThrowsPointer<CException>([] { CTime(2000, 1, 32, 0, 0, 0); }));
    EXPECT_TRUE(ThrowsPointer<CException>([] { CTime(1950, 1, 1, 0, 0, 0); }));
}
#endif

TEST(CTimeTest, Compares)
{
    const CTime early(__time64_t{1});
    const CTime late(__time64_t{2});
    EXPECT_TRUE(early == CTime(__time64_t{1}));
    EXPECT_FALSE(early == late);
    EXPECT_TRUE(early != late);
    EXPECT_TRUE(early < late);
    EXPECT_FALSE(late < early);
    EXPECT_TRUE(late > early);
    EXPECT_TRUE(early <= early);
    EXPECT_TRUE(late >= late);
    EXPECT_FALSE(late <= early);
}

TEST(CTimeTest, Formats)
{
    const CTime time(2024, 3, 9, 7, 5, 2);
    EXPECT_TRUE(time.Format(L"%Y-%m-%d %H:%M:%S") == L"2024-03-09 07:05:02");
    EXPECT_TRUE(time.Format(L"%j %%") == L"069 %");
    EXPECT_TRUE(time.Format(L"").IsEmpty());
    const CString fits(std::wstring(127, L'x').c_str());
    EXPECT_TRUE(time.Format(fits) == fits);
    EXPECT_TRUE(time.Format(fits + L"x").IsEmpty());
}

TEST(CFileStatusTest, IsLaidOutAsTheFrameworkDoes)
{
    EXPECT_EQ(offsetof(CFileStatus, m_ctime), 0U);
    EXPECT_EQ(offsetof(CFileStatus, m_mtime), 8U);
    EXPECT_EQ(offsetof(CFileStatus, m_atime), 16U);
    EXPECT_EQ(offsetof(CFileStatus, m_size), 24U);
    EXPECT_EQ(offsetof(CFileStatus, m_attribute), 32U);
    EXPECT_EQ(offsetof(CFileStatus, m_szFullName), 34U);
    EXPECT_EQ(sizeof(CFileStatus), 560U);
}

TEST(CFileStatusTest, TellsNameTimesSizeAndAttributes)
{
    const TemporaryFolder folder;
    const std::wstring path = folder.WriteFile(L"A file.txt", "12345", FILE_ATTRIBUTE_HIDDEN);
    const __time64_t modified = _time64(nullptr) - 1000;
    const std::uint64_t modifiedTicks = Ticks(modified) + 9999999;
    const std::uint64_t accessedTicks = Ticks(modified + 100);
    folder.SetTimes(L"A file.txt", nullptr, &accessedTicks, &modifiedTicks);
    CFileStatus status = {};
    ASSERT_TRUE(CFile::GetStatus(path.c_str(), status));
    EXPECT_EQ(std::wstring(status.m_szFullName), path);
    EXPECT_EQ(status.m_size, 5U);
    EXPECT_EQ(status.m_attribute & FILE_ATTRIBUTE_HIDDEN, FILE_ATTRIBUTE_HIDDEN);
    EXPECT_EQ(status.m_mtime.GetTime(), modified);
    EXPECT_EQ(status.m_atime.GetTime(), modified + 100);

    const std::wstring plain = folder.MakeFolder(L"sub");
    ASSERT_TRUE(CFile::GetStatus(plain.c_str(), status));
    EXPECT_EQ(status.m_attribute & FILE_ATTRIBUTE_DIRECTORY, FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(std::wstring(status.m_szFullName), plain);
}

TEST(CFileStatusTest, CompletesThePathFirst)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"sub\\a.txt", "1");
    CFileStatus status = {};
    ASSERT_TRUE(CFile::GetStatus((folder / L"sub\\..\\sub/./A.TXT").c_str(), status));
    EXPECT_EQ(std::wstring(status.m_szFullName), folder / L"sub\\A.TXT");  // as given, not as stored

    EXPECT_FALSE(CFile::GetStatus((folder / L"missing").c_str(), status));
    EXPECT_EQ(std::wstring(status.m_szFullName), folder / L"missing");
    EXPECT_FALSE(CFile::GetStatus((folder / L"sub\\").c_str(), status));
    EXPECT_FALSE(CFile::GetStatus(L"C:\\", status));
    EXPECT_FALSE(CFile::GetStatus(L"", status));
}

TEST(CFileStatusTest, AWildcardGivesTheFirstMatch)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"only.txt", "123");
    CFileStatus status = {};
    ASSERT_TRUE(CFile::GetStatus((folder / L"*.txt").c_str(), status));
    EXPECT_EQ(status.m_size, 3U);
    EXPECT_EQ(std::wstring(status.m_szFullName), folder / L"*.txt");
}

WIN32_FIND_DATAW g_found;

HANDLE WINAPI FindFaked(LPCWSTR, LPWIN32_FIND_DATAW found)
{
    // A search that can be closed, for what the test made up.
    wchar_t windows[MAX_PATH];
    GetWindowsDirectoryW(windows, MAX_PATH);
    WIN32_FIND_DATAW unused;
    const HANDLE search = FindFirstFileW(windows, &unused);
    *found = g_found;
    return search;
}

TEST(CFileStatusTest, MissingTimesAreTheModificationTime)
{
    const ImportPatch<decltype(&::FindFirstFileW)> patch(kFrameworkModule, "FindFirstFileW", &FindFaked);
    const __time64_t modified = _time64(nullptr);
    g_found = {};
    g_found.ftLastWriteTime = ToFileTime(Ticks(modified));
    g_found.nFileSizeHigh = 3;
    g_found.nFileSizeLow = 0x80000001;
    g_found.dwFileAttributes = FILE_ATTRIBUTE_NORMAL | FILE_ATTRIBUTE_COMPRESSED;
    CFileStatus status = {};
    ASSERT_TRUE(CFile::GetStatus(L"C:\\a.txt", status));
    EXPECT_EQ(status.m_ctime.GetTime(), modified);
    EXPECT_EQ(status.m_mtime.GetTime(), modified);
    EXPECT_EQ(status.m_atime.GetTime(), modified);
    EXPECT_EQ(status.m_size, 0x380000001U);
    EXPECT_EQ(status.m_attribute, 0);  // normal is no attribute, and only the low byte is kept

    g_found.ftCreationTime = ToFileTime(Ticks(modified - 5));
    g_found.ftLastAccessTime = ToFileTime(0xFFFFFFFFFFFFFFFF);  // no time at all
    ASSERT_TRUE(CFile::GetStatus(L"C:\\a.txt", status));
    EXPECT_EQ(status.m_ctime.GetTime(), modified - 5);
    EXPECT_EQ(status.m_atime.GetTime(), modified);
}

int g_searches = 0;

HANDLE WINAPI FindCounted(LPCWSTR, LPWIN32_FIND_DATAW)
{
    ++g_searches;
    return INVALID_HANDLE_VALUE;
}

TEST(CFileStatusTest, APathThatIsTooLongIsNotSearched)
{
#ifdef _DEBUG
    GTEST_SKIP() << "the framework asserts this in a debug build";
#endif
    const ImportPatch<decltype(&::FindFirstFileW)> patch(kFrameworkModule, "FindFirstFileW", &FindCounted);
    CFileStatus status = {};
    g_searches = 0;
    EXPECT_FALSE(CFile::GetStatus((L"C:\\" + std::wstring(257, L'x')).c_str(), status));
    EXPECT_EQ(g_searches, 0);
    EXPECT_FALSE(CFile::GetStatus((L"C:\\" + std::wstring(256, L'x')).c_str(), status));
    EXPECT_EQ(g_searches, 1);
}
}  // namespace
