#include "support/QuonTimer.h"

#include <gtest/gtest.h>

#include <ctime>
#include <string>
#include <algorithm>
#include <utility>
#include <type_traits>

#include "helpers/ImportPatch.h"
#include "helpers/ModuleNames.h"
#include "helpers/TemporaryFolder.h"
#include "support/Wide.h"

namespace
{

using quon_test::ImportPatch;
using quon_test::TemporaryFolder;
using quon_test::ToCString;
using quon_test::Wide;

constexpr const wchar_t* kLibrary = quon_test::kLibraryModule;

static_assert(std::is_base_of_v<CStdioFile, QuonStdioFile>);
static_assert(std::is_base_of_v<QuonStdioFile, QuonTimer>);
static_assert(std::has_virtual_destructor_v<QuonTimer>);
static_assert(std::is_same_v<decltype(std::declval<QuonTimer&>().StartTimer()), long> && sizeof(long) == 4);

// Shows what derived classes see.
class ProbeFile : public QuonStdioFile
{
public:
    ProbeFile(const std::wstring& path, BOOL timeStamped, BOOL overwrite)
        : QuonStdioFile(ToCString(path), timeStamped, overwrite)
    {
        static_assert(sizeof m_isOpen == 4);
    }
    int IsOpen() const { return m_isOpen; }
};

TEST(QuonStdioFile, WithoutAPathStaysClosed)
{
    for (const BOOL stamped : {FALSE, TRUE})
    {
        const ProbeFile file(L"", stamped, TRUE);
        EXPECT_EQ(file.IsOpen(), 0);
        EXPECT_EQ(file.m_pStream, nullptr);
    }
}

TEST(QuonStdioFile, CreatesAMissingFile)
{
    const TemporaryFolder folder;
    for (const BOOL overwrite : {FALSE, TRUE})
    {
        const std::wstring name = overwrite ? L"new.log" : L"kept.log";
        {
            ProbeFile file(folder / name, FALSE, overwrite);
            EXPECT_EQ(file.IsOpen(), 1);
            file.WriteString(L"one\ntwo\n");
        }
        EXPECT_EQ(folder.ReadFile(name), "one\r\ntwo\r\n");
    }
}

TEST(QuonStdioFile, KeepsOrDropsWhatTheFileHolds)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"run.log", "old\r\n");
    {
        ProbeFile file(folder / L"run.log", FALSE, FALSE);
        EXPECT_EQ(file.IsOpen(), 1);
        EXPECT_EQ(folder.Exists(L"run.log"), true);
        file.WriteString(L"new\n");
    }
    EXPECT_EQ(folder.ReadFile(L"run.log"), "old\r\nnew\r\n");
    {
        ProbeFile file(folder / L"run.log", FALSE, 2);
        EXPECT_EQ(file.IsOpen(), 1);
    }
    EXPECT_EQ(folder.ReadFile(L"run.log"), "");
}

TEST(QuonStdioFile, ReadsAsWellAsWrites)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"run.log", "old\r\n");
    ProbeFile file(folder / L"run.log", FALSE, FALSE);
    file.WriteString(L"new\n");
    file.Seek(0, CFile::begin);
    CString line;
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, L"old");
    EXPECT_TRUE(file.ReadString(line));
    EXPECT_EQ(line, L"new");
    EXPECT_FALSE(file.ReadString(line));
}

TEST(QuonStdioFile, SharesTheFileWithNobody)
{
    const TemporaryFolder folder;
    const std::wstring path = folder / L"run.log";
    {
        const ProbeFile file(path, FALSE, FALSE);
        EXPECT_EQ(file.IsOpen(), 1);
        const HANDLE second =
            ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                          OPEN_EXISTING, 0, nullptr);
        const DWORD error = ::GetLastError();
        EXPECT_EQ(second, INVALID_HANDLE_VALUE);
        EXPECT_EQ(error, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
        const ProbeFile other(path, FALSE, TRUE);
        EXPECT_EQ(other.IsOpen(), 0);
    }
    const ProbeFile again(path, FALSE, FALSE);
    EXPECT_EQ(again.IsOpen(), 1);
}

struct CreateCall
{
    int calls;
    std::wstring name;
    DWORD access;
    DWORD sharing;
    DWORD disposition;
};
CreateCall g_create;

HANDLE WINAPI RecordingCreateFile(LPCWSTR name, DWORD access, DWORD sharing, LPSECURITY_ATTRIBUTES security,
                                  DWORD disposition, DWORD flags, HANDLE model)
{
    ++g_create.calls;
    g_create = {g_create.calls, name, access, sharing, disposition};
    return ::CreateFileW(name, access, sharing, security, disposition, flags, model);
}

TEST(QuonStdioFile, OpensOnceWithTheWantedAccess)
{
    const TemporaryFolder folder;
    const ImportPatch<decltype(&::CreateFileW)> patch(quon_test::kFrameworkModule, "CreateFileW", &RecordingCreateFile);
    for (const BOOL overwrite : {FALSE, TRUE})
    {
        SCOPED_TRACE(overwrite);
        g_create = CreateCall();
        const ProbeFile file(folder / L"run.log", FALSE, overwrite);
        EXPECT_EQ(g_create.calls, 1);
        EXPECT_EQ(g_create.access, GENERIC_READ | GENERIC_WRITE);
        EXPECT_EQ(g_create.sharing, 0U);
        EXPECT_EQ(g_create.disposition, static_cast<DWORD>(overwrite ? CREATE_ALWAYS : OPEN_ALWAYS));
    }
}

TEST(QuonStdioFile, StaysClosedWhenOpeningFails)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"folder");
    for (const wchar_t* name : {L"folder", L"missing\\run.log", L"a*b.log"})
    {
        SCOPED_TRACE(testing::PrintToString(name));
        EXPECT_NO_THROW({
            const ProbeFile file(folder / name, FALSE, FALSE);
            EXPECT_EQ(file.IsOpen(), 0);
            EXPECT_EQ(file.m_pStream, nullptr);
        });
    }
    // Without a stamp no folder is made.
    EXPECT_FALSE(folder.Exists(L"missing"));
    EXPECT_NO_THROW(ProbeFile(std::wstring(3000, L'x'), FALSE, FALSE));
}

HANDLE WINAPI DeniedCreateFile(LPCWSTR, DWORD, DWORD, LPSECURITY_ATTRIBUTES, DWORD, DWORD, HANDLE)
{
    ::SetLastError(ERROR_ACCESS_DENIED);
    return INVALID_HANDLE_VALUE;
}

TEST(QuonStdioFile, StaysClosedWhenTheSystemDeniesAccess)
{
    const TemporaryFolder folder;
    const ImportPatch<decltype(&::CreateFileW)> patch(quon_test::kFrameworkModule, "CreateFileW", &DeniedCreateFile);
    EXPECT_NO_THROW(EXPECT_EQ(ProbeFile(folder / L"run.log", FALSE, FALSE).IsOpen(), 0));
    EXPECT_NO_THROW(EXPECT_EQ(ProbeFile(folder / L"run.log", TRUE, TRUE).IsOpen(), 0));
}

__time64_t g_time;

__time64_t __cdecl FixedTime(__time64_t* time)
{
    if (time != nullptr)
    {
        *time = g_time;
    }
    return g_time;
}

class StampedFile : public testing::Test
{
protected:
    StampedFile() : m_patch(kLibrary, "_time64", &FixedTime) { g_time = 1700000000; }

private:
    ImportPatch<decltype(&::_time64)> m_patch;
};

TEST_F(StampedFile, PutsTheSecondsBehindTheTitle)
{
    struct Row
    {
        const wchar_t* name;
        const wchar_t* stamped;
    };
    const Row rows[] = {
        {L"run.log", L"run - 1700000000.log"},
        {L"run", L"run - 1700000000"},
        {L"a.b.log", L"a.b - 1700000000.log"},
        {L".log", L" - 1700000000.log"},
        {L"two words.txt", L"two words - 1700000000.txt"},
        {L"sub\\deeper\\run.log", L"sub\\deeper\\run - 1700000000.log"},
        {L"slash/run.log", L"slash\\run - 1700000000.log"},
    };
    const TemporaryFolder folder;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::PrintToString(row.name));
        {
            ProbeFile file(folder / row.name, TRUE, FALSE);
            EXPECT_EQ(file.IsOpen(), 1);
            file.WriteString(L"text");
        }
        EXPECT_TRUE(folder.Exists(row.stamped));
        EXPECT_FALSE(folder.Exists(row.name));
        EXPECT_EQ(folder.ReadFile(row.stamped), "text");
    }
}

TEST_F(StampedFile, WrapsSecondsBeyond32Bits)
{
    struct Row
    {
        __time64_t time;
        const wchar_t* stamped;
    };
    const Row rows[] = {
        {0, L"run - 0.log"},
        {2147483647, L"run - 2147483647.log"},
        {2147483648LL, L"run - -2147483648.log"},
        {4294967296LL + 5, L"run - 5.log"},
        {-1, L"run - -1.log"},
    };
    const TemporaryFolder folder;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.time);
        g_time = row.time;
        EXPECT_EQ(ProbeFile(folder / L"run.log", TRUE, FALSE).IsOpen(), 1);
        EXPECT_TRUE(folder.Exists(row.stamped));
    }
}

TEST_F(StampedFile, KeepsOrDropsTheContentOfTheStampedFile)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"run - 1700000000.log", "old ");
    {
        ProbeFile file(folder / L"run.log", TRUE, FALSE);
        file.WriteString(L"new");
    }
    EXPECT_EQ(folder.ReadFile(L"run - 1700000000.log"), "old new");
    {
        ProbeFile file(folder / L"run.log", TRUE, TRUE);
    }
    EXPECT_EQ(folder.ReadFile(L"run - 1700000000.log"), "");
}

TEST_F(StampedFile, GoesIntoTheCurrentFolderForABareName)
{
    const TemporaryFolder folder;
    wchar_t before[MAX_PATH] = {};
    ::GetCurrentDirectoryW(MAX_PATH, before);
    ASSERT_TRUE(::SetCurrentDirectoryW(folder.Path().c_str()));
    EXPECT_EQ(ProbeFile(L"run.log", TRUE, FALSE).IsOpen(), 1);
    ::SetCurrentDirectoryW(before);
    EXPECT_TRUE(folder.Exists(L"run - 1700000000.log"));
}

TEST_F(StampedFile, StaysClosedWhenItsFolderCannotBeMade)
{
    const TemporaryFolder folder;
    folder.WriteFile(L"file", "");
    EXPECT_NO_THROW(EXPECT_EQ(ProbeFile(folder / L"file\\sub\\run.log", TRUE, FALSE).IsOpen(), 0));
}

std::clock_t g_clock;

std::clock_t __cdecl FixedClock()
{
    return g_clock;
}

class Timer : public testing::Test
{
protected:
    Timer() : m_patch(kLibrary, "clock", &FixedClock) { g_clock = 0; }

private:
    ImportPatch<std::clock_t(__cdecl*)()> m_patch;
};

TEST_F(Timer, StartsAtZeroOfTheClock)
{
    QuonTimer timer(L"", FALSE, FALSE);
    g_clock = 1234;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"1.234 sec");
}

TEST_F(Timer, AddsLapsSinceTheStart)
{
    QuonTimer timer(L"", FALSE, FALSE);
    g_clock = 1000;
    EXPECT_EQ(timer.StartTimer(), 1000);
    g_clock = 1250;
    EXPECT_EQ(timer.AddLap(), 250);
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.250 sec");
    // Without a new start the second lap holds the first one too.
    g_clock = 1500;
    EXPECT_EQ(timer.AddLap(), 500);
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.750 sec");
    // A new start keeps the sum.
    EXPECT_EQ(timer.StartTimer(), 1500);
    g_clock = 1501;
    EXPECT_EQ(timer.AddLap(), 1);
    EXPECT_EQ(timer.GetElapsedText(TRUE), L"0.751 sec");
    g_clock = 1600;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.100 sec");
}

TEST_F(Timer, KeepsAFirstReadingUntilReset)
{
    QuonTimer timer(L"", FALSE, FALSE);
    g_clock = 100;
    timer.StartTimer();
    g_clock = 1100;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"1.000 sec");
    g_clock = 9100;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"1.000 sec");
    EXPECT_EQ(timer.GetElapsedText(TRUE), L"1.000 sec");
    EXPECT_EQ(timer.GetElapsedText(TRUE), L"9.000 sec");
    g_clock = 9200;
    EXPECT_EQ(timer.GetElapsedText(TRUE), L"9.100 sec");
    // A sum of exactly zero counts as none.
    g_clock = 100;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.000 sec");
    g_clock = 200;
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.100 sec");
}

TEST_F(Timer, WrapsWithTheClock)
{
    QuonTimer timer(L"", FALSE, FALSE);
    g_clock = 0x7FFFFFF0;
    EXPECT_EQ(timer.StartTimer(), 0x7FFFFFF0);
    g_clock = static_cast<std::clock_t>(0x80000010U);
    EXPECT_EQ(timer.AddLap(), 32);
    EXPECT_EQ(timer.GetElapsedText(TRUE), L"0.032 sec");
    g_clock = 1000;
    EXPECT_EQ(timer.StartTimer(), 1000);
    g_clock = 500;
    EXPECT_EQ(timer.AddLap(), -500);
    EXPECT_EQ(timer.GetElapsedText(FALSE), L"-0.500 sec");
}

TEST_F(Timer, ReportsUnderALabel)
{
    QuonTimer timer(L"", FALSE, FALSE);
    g_clock = 2500;
    EXPECT_EQ(timer.GetReportText(L"Load", FALSE), L"\nTimer in Load: 2.500 sec\n");
    EXPECT_EQ(timer.GetReportText(L"", TRUE), L"\nTimer in : 2.500 sec\n");
    g_clock = 12345678;
    EXPECT_EQ(timer.GetReportText(L"%d %s", TRUE), L"\nTimer in %d %s: 12345.678 sec\n");
}

TEST_F(Timer, WritesItsReadingsIntoTheLog)
{
    const TemporaryFolder folder;
    {
        QuonTimer timer(ToCString(folder / L"run.log"), FALSE, FALSE);
        g_clock = 100;
        timer.WriteReport(L"Load", TRUE);
        g_clock = 250;
        timer.WriteElapsed(FALSE);
        g_clock = 900;
        timer.WriteReport(L"Save", TRUE);
    }
    EXPECT_EQ(folder.ReadFile(L"run.log"), "\r\nTimer in Load: 0.100 sec\r\n0.250 sec\r\nTimer in Save: 0.250 sec\r\n");
    {
        QuonTimer timer(ToCString(folder / L"run.log"), FALSE, TRUE);
        timer.WriteElapsed(TRUE);
    }
    EXPECT_EQ(folder.ReadFile(L"run.log"), "0.900 sec");
}

TEST_F(Timer, WritesIntoAStampedLog)
{
    const ImportPatch<decltype(&::_time64)> time(kLibrary, "_time64", &FixedTime);
    g_time = 1234567890;
    const TemporaryFolder folder;
    {
        QuonTimer timer(ToCString(folder / L"logs\\run.log"), TRUE, FALSE);
        timer.WriteElapsed(TRUE);
    }
    EXPECT_EQ(folder.ReadFile(L"logs\\run - 1234567890.log"), "0.000 sec");
}

TEST_F(Timer, WithoutALogWritesNothingAndMeasures)
{
    const TemporaryFolder folder;
    folder.MakeFolder(L"folder");
    for (const std::wstring& path : {std::wstring(), folder / L"folder", folder / L"missing\\run.log"})
    {
        SCOPED_TRACE(testing::PrintToString(path));
        EXPECT_NO_THROW({
            QuonTimer timer(ToCString(path), FALSE, FALSE);
            g_clock = 100;
            timer.WriteElapsed(FALSE);
            timer.WriteReport(L"Load", TRUE);
            // The sum was neither set nor reset.
            g_clock = 200;
            EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.200 sec");
            timer.WriteElapsed(TRUE);
            g_clock = 300;
            EXPECT_EQ(timer.GetElapsedText(FALSE), L"0.200 sec");
        });
    }
    EXPECT_FALSE(folder.Exists(L"missing"));
}

// A log whose disk is full, or whose memory is.
class FailingTimer : public QuonTimer
{
public:
    explicit FailingTimer(const std::wstring& path) : QuonTimer(ToCString(path), FALSE, FALSE) {}
    void WriteString(LPCTSTR) override
    {
        if (outOfMemory)
        {
            AfxThrowMemoryException();
        }
        AfxThrowFileException(CFileException::diskFull);
    }
    bool outOfMemory = false;
};

TEST_F(Timer, DoesNotReportAFailureToWrite)
{
    const TemporaryFolder folder;
    FailingTimer timer(folder / L"run.log");
    g_clock = 100;
    EXPECT_NO_THROW(timer.WriteElapsed(FALSE));
    EXPECT_NO_THROW(timer.WriteReport(L"Load", FALSE));
    timer.outOfMemory = true;
    try
    {
        timer.WriteElapsed(FALSE);
        ADD_FAILURE() << "lack of memory went unnoticed";
    }
    catch (CMemoryException* failure)
    {
        failure->Delete();
    }
}

TEST_F(Timer, GoesOnBehindALabelThatTheLogCannotStore)
{
    const TemporaryFolder folder;
    {
        QuonTimer timer(ToCString(folder / L"run.log"), FALSE, FALSE);
        EXPECT_NO_THROW(timer.WriteReport(L"\u4e2d\u6587", FALSE));
        EXPECT_NO_THROW(timer.WriteElapsed(FALSE));
    }
    const std::string log = folder.ReadFile(L"run.log");
    EXPECT_EQ(log.substr(log.size() - std::min<std::size_t>(log.size(), 9)), "0.000 sec");
}

TEST_F(Timer, TimersAreIndependent)
{
    QuonTimer first(L"", FALSE, FALSE);
    QuonTimer second(L"", FALSE, FALSE);
    g_clock = 100;
    first.StartTimer();
    g_clock = 200;
    second.StartTimer();
    g_clock = 300;
    EXPECT_EQ(first.AddLap(), 200);
    EXPECT_EQ(second.GetElapsedText(FALSE), L"0.100 sec");
    EXPECT_EQ(first.GetElapsedText(FALSE), L"0.200 sec");
}

// The lap is longer than what another clock shows within it, and shorter than what that shows around it, by what the
// two clocks' steps allow.
TEST(TimerOnTheRealClock, CountsMilliseconds)
{
    constexpr ULONGLONG kSteps = 40;
    QuonTimer timer(L"", FALSE, FALSE);
    const ULONGLONG before = ::GetTickCount64();
    const long start = timer.StartTimer();
    const ULONGLONG begun = ::GetTickCount64();
    ::Sleep(100);
    const ULONGLONG ended = ::GetTickCount64();
    const long lap = timer.AddLap();
    const ULONGLONG after = ::GetTickCount64();
    EXPECT_GE(static_cast<ULONGLONG>(lap) + kSteps, ended - begun);
    EXPECT_LE(static_cast<ULONGLONG>(lap), after - before + kSteps);
    EXPECT_GE(timer.StartTimer() - start, lap);
}

}  // namespace
