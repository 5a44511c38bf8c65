// Every system function that the library imports fails once, and the operation that calls it gives the result that it
// states for that. An import that is in none of the tables below fails the test: whoever brings it in says what happens
// when it fails.
#include <afx.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <clocale>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonWndMsgServer.h"
#include "messaging/ServerThreadTestSupport.h"
#include "paths/FileOperations.h"
#include "support/BlockPool.h"
#include "support/HardLimit.h"
#include "support/OneFailure.h"
#include "support/StringHelpers.h"
#include "support/TemporaryFolder.h"
#include "support/TraceLog.h"
#include "traversal/QuonBasicFileMatcher.h"
#include "xml/DomFakes.h"
#include "xml/QuonFileStream.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlNodes.h"
#include "xml/XmlTestSupport.h"
#include "xml/XmlValues.h"

namespace
{

using quon_test::Event;
using quon_test::Import;
using quon_test::ImportsOf;
using quon_test::OneFailure;
using quon_test::TemporaryFolder;
using quon_test::TestServer;

constexpr std::uintptr_t kMinusOne = ~std::uintptr_t{0};
constexpr std::uintptr_t kZero = 0;
constexpr std::uintptr_t kNoMemory = 0x8007000E;
constexpr std::uintptr_t kFailed = 0x80004005;

// The folder of a test, with a file, a read-only file and a tree.
class Folder : public TemporaryFolder
{
public:
    Folder()
    {
        WriteFile(L"file", "text");
        WriteFile(L"locked", "text", FILE_ATTRIBUTE_READONLY);
        WriteFile(L"tree\\sub\\file", "text");
    }
    std::wstring File() const { return *this / L"file"; }
};

std::string Narrow(const wchar_t* text)
{
    const std::wstring wide = text;
    return std::string(wide.begin(), wide.end());
}

std::string Hex(HRESULT result)
{
    char text[16];
    std::snprintf(text, sizeof text, "%08lX", static_cast<unsigned long>(result));
    return text;
}

std::string Folder_(QuonFolderId folder)
{
    return Narrow(QuonPath(folder, 0));
}

std::string StartServer(const Folder&)
{
    TestServer server;
    return std::to_string(server.Start());
}

std::string PostMessageToQueue(const Folder&)
{
    class Message final : public QuonMessage
    {
    };
    QuonMessageQueue queue(nullptr, nullptr);
    Message message;
    const QuonServerResult result = queue.Post(&message);
    QuonMessage* taken = nullptr;
    queue.GetNext(&taken);
    return std::to_string(result);
}

std::string PeekAtQueue(const Folder&)
{
    QuonMessageQueue queue(nullptr, nullptr);
    QuonMessage* taken = nullptr;
    return std::to_string(queue.PeekNext(&taken));
}

// A wait that fails is made again, and the handler is served then.
std::string ServeAHandler(const Folder&)
{
    const Event event(false);
    const Event served;
    quon_test::Journal journal;
    quon_test::TestHandler handler(event.Handle(), journal, "handler", [&] { served.Set(); });
    TestServer server;
    server.Start();
    server.AddHandler(&handler);
    event.Set();
    const bool result = served.Wait();
    server.RemoveHandler(&handler);
    server.Settle();
    return result ? "served" : "lost";
}

// The stream's own life is by reference count.
std::string UseStream(const Folder& folder, const std::function<std::string(QuonFileStream&)>& use)
{
    ::SetCurrentDirectoryW(folder.Path().c_str());
    auto* const stream = new QuonFileStream;
    const std::string result = use(*stream);
    stream->Release();
    return result;
}

std::string OpenStream(const Folder& folder)
{
    return UseStream(folder, [](QuonFileStream& stream) { return stream.OpenForWrite(L"out") ? "open" : "closed"; });
}

std::string WriteStream(const Folder& folder)
{
    return UseStream(folder,
                     [](QuonFileStream& stream)
                     {
                         stream.OpenForWrite(L"out");
                         ULONG written = 0;
                         return Hex(stream.Write("x", 1, &written));
                     });
}

std::string ReadStream(const Folder& folder)
{
    const std::wstring path = folder.File();
    return UseStream(folder,
                     [&path](QuonFileStream& stream)
                     {
                         stream.m_hFile = ::CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                                        OPEN_EXISTING, 0, nullptr);
                         stream.m_bRead = true;
                         char byte = 0;
                         ULONG read = 0;
                         return Hex(stream.Read(&byte, 1, &read));
                     });
}

constexpr char kDocument[] = "<r a='7'/>";

std::string LoadFromMemory(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    return Hex(
        xml.LoadFromMemory(xml.GetDocument(), reinterpret_cast<const unsigned char*>(kDocument), sizeof kDocument - 1));
}

std::string SaveToMemory(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    AppendNewElement(xml.GetDocument(), nullptr, L"r");
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    const HRESULT result = xml.SaveToMemory(xml.GetDocument(), buffer, size);
    delete[] buffer;
    return Hex(result);
}

std::string MakeDocument(const Folder&)
{
    QuonXml xml(L"", false, false, false);
    return xml.GetDocument() ? "document" : "none";
}

template <typename Operation>
std::string ComResult(Operation operation)
{
    try
    {
        return std::to_string(operation());
    }
    catch (const _com_error& error)
    {
        return Hex(error.Error());
    }
}

std::string ReadLong(const Folder&)
{
    const MSXML2::IXMLDOMDocumentPtr document = quon_test::Parse(L"<r a='7'/>");
    const MSXML2::IXMLDOMNodePtr root = quon_test::Find(document, L"r");
    return ComResult([&] { return GetXmlLong(root, L"@a"); });
}

// Waits for a document that is complete when it is asked for the second time, with a message in the queue.
std::string WaitForDocument(const Folder&)
{
    quon_test::ForwardingDocument document(quon_test::Parse(L"<r/>"));
    int asked = 0;
    document.readyState = [&asked]
    {
        return ++asked < 2 ? 1 : 4;
    };
    QuonXml xml(L"", false, false, false);
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    ::PostThreadMessageW(::GetCurrentThreadId(), WM_APP, 0, 0);
    xml.WaitUntilLoaded(MSXML2::IXMLDOMDocumentPtr(&document));
    int left = 0;
    MSG message;
    while (::PeekMessageW(&message, nullptr, WM_APP, WM_APP, PM_REMOVE))
    {
        ++left;
    }
    return "asked " + std::to_string(asked) + ", left " + std::to_string(left);
}

std::string DescribeAFailedList(const Folder&)
{
    quon_test::DescribingList list;
    const std::wstring status =
        quon_test::StatusOf([&list] { FindNodesByName(MSXML2::IXMLDOMNodeListPtr(&list), L"a", false); });
    ::SetErrorInfo(0, nullptr);
    return Narrow(status.c_str());
}

// In a locale with a code page, the run-time asks the system how many characters of the text it has read.
std::string ParseInALocale(const Folder&)
{
    std::setlocale(LC_ALL, "German");
    double value = 0;
    const bool parsed = ParseDouble(L"2,5", &value);
    std::setlocale(LC_ALL, "C");
    return std::to_string(parsed) + ' ' + std::to_string(value);
}

std::string TakePages(const Folder&)
{
    // At most a region and a page: then the pool has asked the system.
    void* head = nullptr;
    std::size_t size = 2000;
    bool isRefused = false;
    for (int page = 0; page < 33 && !isRefused; ++page)
    {
        isRefused = PoolAddPage(&head, &size) == nullptr;
    }
    while (head != nullptr)
    {
        void* const element = PoolAllocate(&head);
        void* const other = head != nullptr ? PoolAllocate(&head) : nullptr;
        PoolFree(&head, element);
        if (other != nullptr)
        {
            PoolFree(&head, other);
        }
    }
    return isRefused ? "refused" : "taken";
}

std::string SignalEvent(bool pulse)
{
    const Event event;
    QuonHEVENTCallback callback(event.Handle(), pulse);
    return std::to_string(callback.Invoke());
}

struct Row
{
    const char* import;
    std::uintptr_t failure;
    std::string expected;  // what the operation says when the import fails
    std::function<std::string(const Folder&)> operation;
};

std::string Shell(const Folder&)
{
    wchar_t folder[QuonShellFolderBufferSize] = {};
    return std::to_string(ReadShellFolder(L"Desktop", folder));
}

std::string Info(const Folder& folder)
{
    QuonFileInfo info = {};
    return std::to_string(GetFileInfo(folder.File().c_str(), 0, &info));
}

std::string FindFirstAndSecond(const Folder& folder)
{
    QuonBasicFileMatcher matcher;
    const bool first = matcher.FindFirst(folder.Path().c_str(), L"*", kQuonMatchFiles);
    const bool second = matcher.FindNext();
    return std::to_string(first) + std::to_string(second);
}

std::string RemoveTree(const Folder& folder)
{
    return std::to_string(RemoveFolderTree((folder / L"tree").c_str()));
}

std::string RemoveCurrentTree(const Folder& folder)
{
    ::SetCurrentDirectoryW((folder / L"tree").c_str());
    return RemoveTree(folder);
}

std::vector<Row> PathRows()
{
    return {
        {"CopyFileW", kZero, "1",
         [](const Folder& f)
         {
             return std::to_string(CopyOneFile(f.File().c_str(), (f / L"copy").c_str(), FALSE));
         }},
        {"CreateDirectoryW", kZero, "1",
         [](const Folder& f)
         {
             return std::to_string(CreateFolderTree((f / L"new").c_str()));
         }},
        {"DeleteFileW", kZero, "1",
         [](const Folder& f)
         {
             return std::to_string(DeleteFileForced(f.File().c_str()));
         }},
        {"SetFileAttributesW", kZero, "1",
         [](const Folder& f)
         {
             return std::to_string(DeleteFileForced((f / L"locked").c_str()));
         }},
        {"GetFileAttributesW", kMinusOne, "0", &Info},
        {"CreateFileW", kMinusOne, "0", &Info},
        {"GetFileTime", kZero, "0", &Info},
        {"GetFileSize", 0xFFFFFFFF, "0", &Info},
        {"CloseHandle", kZero, "1", &Info},
        {"RemoveDirectoryW", kZero, "1", &RemoveTree},
        // The run-time's own call does the same once more.
        {"SetCurrentDirectoryW", kZero, "0", &RemoveCurrentTree},
        {"FindFirstFileExW", kMinusOne, "00", &FindFirstAndSecond},
        // The first call is made for the folder's own two entries, and ends the search for a first match.
        {"FindNextFileW", kZero, "01", &FindFirstAndSecond},
        {"FindClose", kZero, "11", &FindFirstAndSecond},
        {"GetCurrentDirectoryW", kZero, "",
         [](const Folder&)
         {
             return Folder_(QuonFolderCurrent);
         }},
        {"GetModuleFileNameW", kZero, "",
         [](const Folder&)
         {
             return Folder_(QuonFolderModuleFile);
         }},
        {"GetSystemDirectoryW", kZero, "",
         [](const Folder&)
         {
             return Folder_(QuonFolderSystem);
         }},
        {"GetTempPathW", kZero, "",
         [](const Folder&)
         {
             return Folder_(QuonFolderTemp);
         }},
        {"GetWindowsDirectoryW", kZero, "",
         [](const Folder&)
         {
             return Folder_(QuonFolderWindows);
         }},
        {"RegOpenKeyExW", ERROR_ACCESS_DENIED, "5", &Shell},
        {"RegQueryValueExW", ERROR_ACCESS_DENIED, "5", &Shell},
        {"RegCloseKey", ERROR_ACCESS_DENIED, "5", &Shell},
        {"PathCombineW", kZero, "",
         [](const Folder&)
         {
             CString result;
             CombinePaths(result, L"a", L"b");
             return Narrow(result);
         }},
        {"PathRelativePathToW", kZero, "",
         [](const Folder&)
         {
             return Narrow(QuonPath(L"C:\\a\\b", 0).MakeRelativeTo(QuonPath(L"C:\\a\\c", 0)));
         }},
    };
}

std::vector<Row> SupportRows()
{
    return
    {
        {"CharLowerBuffW", kZero, "AbC",
         [](const Folder&)
         {
             return Narrow(ToLowerCopy(L"AbC"));
         }},
            {"CharUpperBuffW", kZero, "AbC",
             [](const Folder&)
             {
                 return Narrow(ToUpperCopy(L"AbC"));
             }},
            {"FormatMessageW", kZero, "",
             [](const Folder&)
             {
                 return Narrow(GetSystemErrorText(ERROR_FILE_NOT_FOUND));
             }},
            {"LocalFree", 1, "text",
             [](const Folder&)
             {
                 return GetSystemErrorText(ERROR_FILE_NOT_FOUND).IsEmpty() ? "none" : "text";
             }},
            {"StringFromCLSID", kNoMemory, "",
             [](const Folder&)
             {
                 return Narrow(ClsidToString(IID_IUnknown));
             }},
            {"MessageBoxW", kZero, "0",
             [](const Folder&)
             {
                 return std::to_string(ShowErrorBox(ERROR_FILE_NOT_FOUND));
             }},
            {"VirtualAlloc", kZero, "refused", &TakePages},
#if !defined(_MSC_VER)
            {"MultiByteToWideChar", kZero, "0 2.500000", &ParseInALocale},
#endif
    };
}

std::vector<Row> MessagingRows()
{
    const auto server = []
    {
        return QuonWndMsgServer::GetWndMsgServer();
    };
    return {
        {"CreateEventW", kZero, "2000003", &StartServer},
        {"CreateThread", kZero, "2000003", &StartServer},
        {"DuplicateHandle", kZero, "1000001", &PostMessageToQueue},
        {"QueueUserAPC", kZero, "1000001", &PostMessageToQueue},
        {"SleepEx", kZero, "2002001", &PeekAtQueue},
        {"WaitForMultipleObjectsEx", 0xFFFFFFFF, "served", &ServeAHandler},
        {"SetEvent", kZero, "0",
         [](const Folder&)
         {
             return SignalEvent(false);
         }},
        {"PulseEvent", kZero, "0",
         [](const Folder&)
         {
             return SignalEvent(true);
         }},
        {"PostMessageW", kZero, "0",
         [server](const Folder&)
         {
             return std::to_string(server()->PostToWindow(WM_NULL, 0, 0));
         }},
        {"SendMessageW", kZero, "0",
         [server](const Folder&)
         {
             return std::to_string(server()->SendToWindow(WM_GETTEXTLENGTH, 0, 0));
         }},
    };
}

std::vector<Row> XmlRows()
{
    return {
        {"CreateFileA", kMinusOne, "closed", &OpenStream},
        {"WideCharToMultiByte", kZero, "closed", &OpenStream},
        {"WriteFile", kZero, Hex(E_FAIL), &WriteStream},
        {"ReadFile", kZero, Hex(E_FAIL), &ReadStream},
        {"CoInitialize", kFailed, "document", &MakeDocument},
        {"CoCreateInstance", kFailed, "none", &MakeDocument},
        {"CreateStreamOnHGlobal", kNoMemory, Hex(E_OUTOFMEMORY), &LoadFromMemory},
        {"GetHGlobalFromStream", kFailed, Hex(E_FAIL), &SaveToMemory},
        {"GlobalLock", kZero, Hex(HRESULT_FROM_WIN32(ERROR_NOT_ENOUGH_MEMORY)), &SaveToMemory},
        {"GlobalUnlock", kZero, Hex(S_OK), &SaveToMemory},
        {"SysAllocString", kZero, Hex(E_OUTOFMEMORY), &ReadLong},
        {"VariantChangeType", kFailed, Hex(E_FAIL), &ReadLong},
        {"VariantClear", kFailed, "7", &ReadLong},
        {"GetErrorInfo", S_FALSE, "_com_error = No IErrorInfo recorded - Error is undefined!", &DescribeAFailedList},
        {"GetFullPathNameW", kZero, Hex(E_FAIL),
         [](const Folder&)
         {
             QuonXml xml(L"", false, false, false);
             return Hex(xml.LoadFromUrl(L"file.xml"));
         }},
        // Nothing is dispatched, and the document is asked again.
        {"GetMessageW", kMinusOne, "asked 2, left 0", &WaitForDocument},
        // The queue looks empty.
        {"PeekMessageW", kZero, "asked 2, left 1", &WaitForDocument},
    };
}

class ImportFailure : public testing::Test
{
protected:
    void Check(const std::vector<Row>& rows)
    {
        for (const Row& row : rows)
        {
            SCOPED_TRACE(row.import);
            const quon_test::HardLimit limit(60000);
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
    // Not with the library's own valid handle or address, in all uses of it.
    "VirtualFree", "WaitForSingleObject"};

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
                                "TlsGetValue",
                                "TlsSetValue",
                                "TryEnterCriticalSection",
                                "VirtualProtect",
                                "VirtualQuery",
                                "WaitForMultipleObjects",
                                "__C_specific_handler"};

bool IsFrameworkOrRunTime(const Import& import)
{
    return import.library == "msvcrt.dll" || import.library == "QuonFramework.dll";
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
    for (const Import& import : ImportsOf(L"QuonWin32Utils.dll"))
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
