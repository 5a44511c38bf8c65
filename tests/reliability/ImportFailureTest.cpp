// Every system function that the library imports fails once, and the operation that calls it gives the result that it
// states for that. An import that is in none of the tables below fails the test: whoever brings it in says what happens
// when it fails.
#include <afx.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <string>
#include <vector>

#include "reliability/ImportFailure.h"
#include "helpers/HardLimit.h"
#include "helpers/ModuleNames.h"
#include "helpers/OneFailure.h"
#include "xml/XmlTestSupport.h"

namespace
{

using namespace quon_test::import_failure;
using quon_test::Import;
using quon_test::ImportsOf;
using quon_test::OneFailure;

class ImportFailure : public testing::Test
{
protected:
    void Check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows)
        {
            SCOPED_TRACE(row.import);
            const quon_test::HardLimit limit;
            const Folder folder;
            std::string result;
            {
                const OneFailure failure(row.import, row.failure, ERROR_NOT_ENOUGH_MEMORY);
                result = row.operation(folder);
                EXPECT_TRUE(failure.WasCalled()) << "the operation does not call it";
            }
            EXPECT_EQ(result, row.expected);
            ::SetCurrentDirectoryW(L"C:\\");
        }
    }

    quon_test::ComApartment m_com;
};

TEST_F(ImportFailure, PathsAndFiles)
{
    Check(PathRows());
}
TEST_F(ImportFailure, Support)
{
    Check(SupportRows());
}
TEST_F(ImportFailure, Messaging)
{
    Check(MessagingRows());
}
TEST_F(ImportFailure, Xml)
{
    Check(XmlRows());
}

struct Elsewhere
{
    const char* import;
    const char* test;  // the one that makes it fail
};

// Failures that need more than one call to show: each has a test of its own beside its subsystem's other tests.
constexpr Elsewhere kTestedElsewhere[] = {
    {"GetModuleHandleW", "WndMsgServerCreation.GoesOnWithoutAnInstance"},
    {"RegisterClassW", "WndMsgServerCreation.GoesOnWithoutAClass"},
    {"CreateWindowExW", "WndMsgServerCreation.GoesOnWithoutAWindowAndTakesTheClassDownAtExit"},
    {"FindFirstChangeNotificationW", "WatchedFolders.ThatCannotBeWatchedAreToldWithTheError"},
    {"FindNextChangeNotification", "WatchedFolders.AreCheckedThoughTheirNotificationCannotBeArmed"},
    {"FindCloseChangeNotification", "WatchedFolders.AreForgottenThoughTheirNotificationCannotBeClosed"},
    {"GetFileAttributesExW", "WatchedFolders.ReportNothingOfAFileThatIsGone"},
    {"MsgWaitForMultipleObjectsEx", "WatchedFolders.SurviveAWaitThatFails"},
    {"PostThreadMessageW", "FileEventServer.ReturnsTheErrorOfPosting"},
    {"ResumeThread", "FileEventServerLife.DoesNotRunWhenItsThreadCannotBeResumed"},
    {"WaitForSingleObject", "FileEventServerLife.LetsAThreadGoThatItCannotWaitFor"},
    {"TerminateThread", "FileEventServerLife.LeavesAThreadThatCannotBeTerminated"},
    {"SHBrowseForFolderW", "BrowseForDirectory.LeavesTheResultOnCancel"},
    {"SHGetDesktopFolder", "BrowseForDirectory.GoesOnWithoutADesktop"},
    {"SHGetMalloc", "BrowseForDirectory.FailsWithoutAnAllocatorEvenWhenAFolderWasChosen"},
    {"SHGetPathFromIDListW", "BrowseForDirectory.TakesAFolderWithoutAPathForTheRoot"},
    // 0 is its answer both for a key that is up and for a desktop that it cannot ask.
    {"GetAsyncKeyState", "ErrorBox.ShowsAgainAfterOkWithoutShift"},
    {"GetLocaleInfoW", "XmlValues.ASeparatorThatCannotBeReadIsLeftAlone"},
    {"SetLocaleInfoW", "XmlValues.ASeparatorThatCannotBeSetStaysInForce"},
    {"GetVersionExW", "IsWindowsXPOrLaterDeathTest.IsFalseWhenTheSystemDoesNotSay"},
};

// They have no result, or none that tells a failure.
const char* const kCannotFail[] = {
    "CompareFileTime", "CoTaskMemFree", "CoUninitialize", "DefWindowProcW", "DeleteCriticalSection", "DispatchMessageW",
    "EnterCriticalSection", "GetCurrentProcess", "GetCurrentProcessId", "GetCurrentThread", "GetCurrentThreadId",
    "GetLastError", "GetSystemInfo", "GetSystemTimeAsFileTime", "GetTickCount", "GetTickCount64",
    "InitializeCriticalSection", "LeaveCriticalSection", "OutputDebugStringA", "OutputDebugStringW", "SetLastError",
    "Sleep", "SysFreeString", "SysStringByteLen", "SysStringLen", "VariantInit",
    // Not with the base of the pool's own region.
    "VirtualFree"};

// Called while the process ends: nobody is left who could be told.
const char* const kOnlyAtTheEnd[] = {"DestroyWindow", "UnregisterClassW"};

// The compiler's run-time, linked into the library, calls them for exceptions, threads and texts; no operation does.
const char* const kRunTime[] = {"AddVectoredExceptionHandler",
                                "CreateEventA",
                                "CreateSemaphoreA",
                                "GetHandleInformation",
                                "GetProcAddress",
                                "GetProcessAffinityMask",
                                "GetThreadContext",
                                "GetThreadPriority",
                                "IsDBCSLeadByteEx",
                                "IsDebuggerPresent",
                                "LoadLibraryW",
                                "MultiByteToWideChar",
                                "OleRun",
                                "OpenProcess",
                                "RaiseException",
                                "ReleaseSemaphore",
                                "RemoveVectoredExceptionHandler",
                                "ResetEvent",
                                "RtlCaptureContext",
                                "RtlLookupFunctionEntry",
                                "RtlUnwindEx",
                                "RtlVirtualUnwind",
                                "SetProcessAffinityMask",
                                "SetThreadContext",
                                "SetThreadPriority",
                                "SuspendThread",
                                "SysAllocStringByteLen",
                                "TlsAlloc",
                                "TlsFree",
                                "TlsGetValue",
                                "TlsSetValue",
                                "TryEnterCriticalSection",
                                "VirtualProtect",
                                "VirtualQuery",
                                "WaitForMultipleObjects",
                                "__C_specific_handler"};

bool IsFrameworkOrRunTime(const Import& import)
{
    return quon_test::IsRunTimeLibrary(import.library.c_str()) ||
           CString(import.library.c_str()).CompareNoCase(quon_test::kFrameworkModule) == 0;
}

TEST(ImportFailureTable, KnowsEveryImport)
{
#if defined(QUON_COVERAGE)
    GTEST_SKIP() << "what counts the lines imports more";
#endif
    std::vector<std::string> known;
    for (const std::vector<Row>& rows : {PathRows(), SupportRows(), MessagingRows(), XmlRows()})
    {
        for (const Row& row : rows)
        {
            known.push_back(row.import);
        }
    }
    for (const Elsewhere& elsewhere : kTestedElsewhere)
    {
        known.push_back(elsewhere.import);
    }
    known.insert(known.end(), std::begin(kCannotFail), std::end(kCannotFail));
    known.insert(known.end(), std::begin(kOnlyAtTheEnd), std::end(kOnlyAtTheEnd));
    known.insert(known.end(), std::begin(kRunTime), std::end(kRunTime));
    std::size_t count = 0;
    for (const Import& import : ImportsOf(quon_test::kLibraryModule))
    {
        if (!IsFrameworkOrRunTime(import))
        {
            ++count;
            EXPECT_EQ(std::count(known.begin(), known.end(), import.function), 1)
                << import.library << ' ' << import.function << ": what happens when it fails?";
        }
    }
    EXPECT_GT(count, 50u);
}

}  // namespace
