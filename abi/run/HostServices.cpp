// Services of the library in the ABI of MSVC: window callbacks, file events, log files, the block pool, documents.

#include "HostChecks.h"

#include "messaging/QuonWndMsgServer.h"
#include "monitoring/QuonFileEventServer.h"
#include "monitoring/QuonFileModifiedManager.h"
#include "paths/FileOperations.h"
#include "paths/QuonPath.h"
#include "support/QuonPoolAllocator.h"
#include "support/QuonTimer.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"
#include "xml/XmlValues.h"

namespace
{

void WriteBytes(const wchar_t* name, DWORD count)
{
    const HANDLE file = ::CreateFileW(name, GENERIC_WRITE, FILE_SHARE_READ, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD written = 0;
    CHECK(::WriteFile(file, "0123456789", count, &written, nullptr) && written == count);
    ::CloseHandle(file);
}

class Watcher : public QuonFileEventSink
{
public:
    void OnFileNameChanged(const QuonFileEventId*) override {}
    void OnFolderNameChanged(const QuonFileEventId*) override {}
    void OnAttributesChanged(const QuonFileEventId*) override {}
    void OnSizeChanged(const QuonFileEventId* id) override { resized = *id; }
    void OnLastWriteChanged(const QuonFileEventId*) override {}
    void OnLastAccessChanged(const QuonFileEventId*) override {}
    void OnWatchFailed(const QuonFileEventId*, const DWORD* error) override { failure = *error; }
    void OnReservedEvent1(const QuonFileEventId*) override {}
    void OnReservedEvent2(const QuonFileEventId*) override {}

    QuonFileEventId resized = 0;
    DWORD failure = 0;
};

// Dispatches messages and lets the file grow until the sink was called, at most half a minute: the watcher looks at the
// file for the first time at a moment of its own.
void GrowUntilCalled(const wchar_t* file, const Watcher& watcher)
{
    const ULONGLONG end = ::GetTickCount64() + 30000;
    for (DWORD size = 2; watcher.resized == 0 && watcher.failure == 0 && ::GetTickCount64() < end; ++size)
    {
        WriteBytes(file, size % 10 + 1);
        ::MsgWaitForMultipleObjects(0, nullptr, FALSE, 1000, QS_ALLINPUT);
        MSG message;
        while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
        {
            ::DispatchMessageW(&message);
        }
    }
}

void CheckFileEvents()
{
    QuonPath folder(QuonFolderTemp, QuonPathNormalize);
    folder.Append(L"quon-abi-host");
    CreateFolderTree(folder);
    const QuonPath file = folder + L"watched.txt";
    WriteBytes(file, 1);
    QuonFileModifiedManager manager;
    CHECK(manager.IsFileModified(CString(static_cast<const wchar_t*>(file))));
    CHECK(!manager.IsFileModified(CString(static_cast<const wchar_t*>(file))));

    Watcher watcher;
    QuonFileEventServer* const server = GetFileEventServer();
    QuonFileEventId id = 0;
    CHECK(server->Subscribe(file, FILE_NOTIFY_CHANGE_SIZE, &watcher, &id) == S_OK && id != 0);
    GrowUntilCalled(file, watcher);
    CHECK(watcher.resized == id && watcher.failure == 0);
    CHECK(server->Unsubscribe(id) == S_OK);
    server->Shutdown();
    CHECK(server->Subscribe(file, FILE_NOTIFY_CHANGE_SIZE, &watcher, &id) == E_FAIL);
    CHECK(RemoveFolderTree(folder) == 0);
}

class Observer : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord* message) override { sum += message->wParam; }

    WPARAM sum = 0;
};

// A message whose number is the cookie, which alone can be taken back.
void CheckWindowCallbacks()
{
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    Observer observer;
    const UINT other = WM_APP + 2;
    UINT cookie = 0;
    CHECK(server->AddCallback(&other, &cookie, nullptr) == E_POINTER);
    CHECK(server->AddCallback(&other, &cookie, &observer) == S_OK);
    const UINT own = cookie + 1;
    CHECK(server->AddCallback(&own, &cookie, &observer) == S_OK && cookie == own);
    CHECK(server->PostToWindow(other, 4, 0));
    MSG message;
    while (::PeekMessageW(&message, server->GetWindow(), 0, 0, PM_REMOVE))
    {
        ::DispatchMessageW(&message);
    }
    CHECK(observer.sum == 4);
    CHECK(server->RemoveCallback(&own) == S_OK && server->RemoveCallback(&own) == E_FAIL);
    CHECK(server->RemoveCallback(&other) == E_FAIL);
}

void CheckTimer()
{
    ::DeleteFileW(L"timer.log");
    {
        QuonTimer timer(CString(L"timer.log"), FALSE, TRUE);
        CHECK(timer.StartTimer() >= 0 && timer.AddLap() >= 0);
        CHECK(timer.GetElapsedText(FALSE).Right(4) == L" sec");
        timer.WriteReport(CString(L"Host"), TRUE);
    }
    QuonFileInfo info = {};
    CHECK(GetFileInfo(L"timer.log", 0, &info) != 0 && info.sizeLow > 20);
    ::DeleteFileW(L"timer.log");
}

void CheckPool()
{
    QuonPoolAllocator<double> pool;
    double* const first = pool.Allocate();
    double* const second = pool.Allocate();
    *first = 1.5;
    *second = 2.5;
    CHECK(first != second && *first == 1.5 && *second == 2.5);
    pool.Free(second);
    CHECK(pool.Allocate() == second);
    pool.Free(first);
    pool.Free(second);
}

bool CountNodes(CString name, MSXML2::IXMLDOMNodePtr& node, __int64 count)
{
    *reinterpret_cast<int*>(count) += node && name == L"LandXML" ? 1 : 0;
    return true;
}

}  // namespace

void CheckServices()
{
    CheckWindowCallbacks();
    CheckFileEvents();
    CheckTimer();
    CheckPool();
}

void CheckXml()
{
    {
        QuonXml xml(CString(L""), false, false, false);
        CHECK(SUCCEEDED(xml.CreateDocument()));
        CreateLandXmlDocument(xml.GetDocument());
        const MSXML2::IXMLDOMNodePtr root = GetLandXmlRoot(xml.GetDocument());
        SetXmlDouble(root, CString(L"east"), 1234.5);
        SetXmlLong(root, CString(L"count"), -7);
        CHECK(SUCCEEDED(xml.Save(CString(L"host.xml"))));
    }
    QuonXml xml(CString(L"host.xml"), false, false, false);
    CHECK(SUCCEEDED(xml.CreateDocument()) && SUCCEEDED(xml.Load()));
    CHECK(xml.GetFileName() == L"host.xml");
    const MSXML2::IXMLDOMNodePtr root = GetLandXmlRoot(xml.GetDocument());
    CHECK(GetXmlDouble(root, CString(L"@east")) == 1234.5 && GetXmlLong(root, CString(L"@count")) == -7);
    int found = 0;
    xml.WalkTree(&CountNodes, reinterpret_cast<__int64>(&found));
    CHECK(found == 1);
    ::DeleteFileW(L"host.xml");
}
