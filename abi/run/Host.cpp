// A program in the ABI of MSVC that calls the library as its callers do: objects by value, virtual calls in both
// directions, classes derived from exported ones, exceptions across the border. It ends with 0 and one closing line.

#include "HostChecks.h"

#include <afxwin.h>

#include "geometry/QuonFaceReader.h"
#include "messaging/QuonCallback.h"
#include "messaging/QuonMessageQueue.h"
#include "messaging/QuonWndMsgServer.h"
#include "paths/FileOperations.h"
#include "paths/QuonPath.h"
#include "points/QuonSortedPointString.h"
#include "support/Progress.h"
#include "support/StringHelpers.h"
#include "traversal/QuonFileTrees.h"
#include "xml/QuonXml.h"
#include "xml/XmlDocument.h"

namespace
{

int g_failures = 0;

void Print(const char* text)
{
    DWORD written = 0;
    ::WriteFile(::GetStdHandle(STD_OUTPUT_HANDLE), text, static_cast<DWORD>(strlen(text)), &written, nullptr);
}

}  // namespace

void Check(bool holds, const char* condition)
{
    if (!holds)
    {
        ++g_failures;
        Print("does not hold: ");
        Print(condition);
        Print("\r\n");
    }
}

namespace
{

void CheckPaths()
{
    QuonPath path(L"C:\\a/b", QuonPathForwardSlash | QuonPathNormalize);
    CHECK(wcscmp(path, L"C:/a/b") == 0);
    // A path returned by value has the separator "\\".
    const QuonPath joined = path + L"c.txt";
    CHECK(wcscmp(joined, L"C:\\a\\b\\c.txt") == 0);
    CHECK(wcscmp(joined.GetFileTitle(), L"c") == 0);
    CHECK(ToUpperCopy(CString(L"abc")) == L"ABC");
}

void CheckTrees()
{
    CHECK(CreateFolderTree(L"tree\\in") == 0);
    ::CloseHandle(::CreateFileW(L"tree\\in\\f.txt", GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
    QuonFileMatch* const trees[] = {new QuonBFSFileTree, new QuonDFSFileTree};
    for (QuonFileMatch* const tree : trees)
    {
        CHECK(tree->FindFirst(L"tree", L"*.txt", kQuonMatchFiles));
        CHECK(wcscmp(tree->GetFoundName(), L"in\\f.txt") == 0);
        CHECK(wcscmp(tree->GetFolder(), L"tree") == 0);
        CHECK(!tree->FindNext() && !tree->IsFound());
        delete tree;
    }
    CHECK(RemoveFolderTree(L"tree") == 0);
    CHECK(!QuonPath(L"tree", 0).Exists());
}

void CheckPoints()
{
    QuonSortedPointString sorted;
    sorted.AddPoint(9UL);
    sorted.AddPoint(L"3");
    sorted.AddPoint(4UL);
    sorted.AddPoint(L"5");
    sorted.RemovePoint(9UL);
    sorted.UpdateText();
    CHECK(sorted.GetText() == L"3-5");
    CHECK(sorted.GetPointCount() == 3);

    unsigned long point = 0;
    unsigned long sum = 0;
    for (sorted.GetFirstPoint(&point); !sorted.IsDone(); sorted.GetNextPoint(&point))
    {
        sum += point;
    }
    CHECK(sum == 12);
}

void CheckFaces()
{
    VxGePoint3dArray corners;
    for (int i = 0; i < 3; ++i)
    {
        corners.Append({i * 1.0, i * -2.0, 9.0});
    }
    QuonMultiTriFaceReader reader;
    CHECK(reader.AddFace(corners) == 1);
    double extents[4] = {};
    reader.GetExtents(&extents[0], &extents[1], &extents[2], &extents[3]);
    CHECK(extents[0] == 0 && extents[1] == -4 && extents[2] == 2 && extents[3] == 0);
    VxGePoint3dArray face;
    CHECK(reader.GetNextFace(face) && face.GetLogicalLength() == 3);
    CHECK(!reader.GetNextFace(face));
}

class CountingCallback : public QuonCallback
{
public:
    BOOL Invoke() override
    {
        ++calls;
        return TRUE;
    }

    int calls = 0;
};

class CountedMessage : public QuonMessage
{
public:
    explicit CountedMessage(int* destroyed) : m_destroyed(destroyed) {}
    ~CountedMessage() override { ++*m_destroyed; }

private:
    int* m_destroyed;
};

void CheckMessageQueue()
{
    HANDLE thread = nullptr;
    ::DuplicateHandle(::GetCurrentProcess(), ::GetCurrentThread(), ::GetCurrentProcess(), &thread, 0, FALSE,
                      DUPLICATE_SAME_ACCESS);
    CountingCallback callback;
    int destroyed = 0;
    {
        QuonMessageQueue queue(&callback, thread);
        CHECK(queue.Post(new CountedMessage(&destroyed)) == 0);
        CHECK(queue.Post(new CountedMessage(&destroyed)) == 0);
        ::SleepEx(0, TRUE);
        CHECK(callback.calls == 2);
        QuonMessage* message = nullptr;
        CHECK(queue.GetNext(&message) == 0 && destroyed == 0);
        delete message;
        CHECK(destroyed == 1);
        CHECK(queue.GetNext(&message) == 0);
        delete message;
    }
    CHECK(destroyed == 2);
    ::CloseHandle(thread);
}

class Recorder : public QuonWndMsgServer::Callback
{
public:
    void OnMessage(const WndMsgRecord* message) override { last = *message; }

    WndMsgRecord last = {};
};

void CheckWindowMessages()
{
    QuonWndMsgServer* const server = QuonWndMsgServer::GetWndMsgServer();
    Recorder recorder;
    const UINT message = WM_APP + 1;
    UINT cookie = 0;
    CHECK(server->AddCallback(&message, &cookie, &recorder) == S_OK && cookie == 1);
    server->SendToWindow(message, 77, -5);
    CHECK(recorder.last.window == server->GetWindow());
    CHECK(recorder.last.message == message && recorder.last.wParam == 77 && recorder.last.lParam == -5);
}

int CountProgress(int, unsigned int, LPARAM b)
{
    return static_cast<int>(b);
}

void CheckProgress()
{
    SetProgressCallback(CountProgress);
    CHECK(EnableProgress(true) || IsProgressEnabled());
    {
        QuonProgressDisabler disabler;
        CHECK(!IsProgressEnabled());
    }
    CHECK(IsProgressEnabled());
    SetProgressCallback(nullptr);
}

void CheckExceptions()
{
    const MSXML2::IXMLDOMDocumentPtr none;
    int caught = 0;
    try
    {
        SaveXmlFile(CString(L"none.xml"), none);
    }
    catch (const CString& status)
    {
        caught += status == L"pDoc is NULL!" ? 1 : 0;
    }
    try
    {
        CreateLandXmlDocument(none);
    }
    catch (const _com_error& error)
    {
        caught += error.Error() == E_POINTER ? 2 : 0;
    }
    CHECK(caught == 3);
}

void CheckDocuments()
{
    CHECK(SUCCEEDED(::CoInitialize(nullptr)));
    {
        QuonXml xml(CString(L""), false, false, false);
        CHECK(SUCCEEDED(xml.CreateDocument()));
        CreateLandXmlDocument(xml.GetDocument());
        const MSXML2::IXMLDOMNodePtr root = GetLandXmlRoot(xml.GetDocument());
        CHECK(root && wcscmp(root->GetnodeName(), L"LandXML") == 0);
        CheckXml();
    }
    ::CoUninitialize();
}

}  // namespace

int main()
{
    CHECK(AfxWinInit(::GetModuleHandleW(nullptr), nullptr, ::GetCommandLineW(), 0) != FALSE);
    CheckPaths();
    CheckTrees();
    CheckPoints();
    CheckFaces();
    CheckMessageQueue();
    CheckWindowMessages();
    CheckProgress();
    CheckExceptions();
    CheckDocuments();
    CheckThreads();
    CheckServices();
    Print(g_failures == 0 ? "all calls did what they promise\r\n" : "some calls failed\r\n");
    return g_failures;
}
