#include "xml/QuonXmlTestSupport.h"

namespace
{

using namespace quon_test;

TEST_F(QuonXmlTest, StartsWithADocumentAndItsArguments)
{
    const QuonXml xml(L"name.xml", true, false, true);
    EXPECT_TRUE(xml.m_pDoc);
    EXPECT_EQ(xml.m_strFileName, L"name.xml");
    EXPECT_EQ(xml.GetFileName(), L"name.xml");
    EXPECT_TRUE(xml.m_bAsync);
    EXPECT_FALSE(xml.m_bStream);
    EXPECT_TRUE(xml.m_bFileStream);
    EXPECT_EQ(xml.GetDocument().GetInterfacePtr(), xml.m_pDoc.GetInterfacePtr());
}

TEST_F(QuonXmlTest, FieldsStandInOrder)
{
    const QuonXml xml(L"", false, false, false);
    const auto offset = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&xml);
    };
    EXPECT_EQ(offset(&xml.m_pDoc), 8);
    EXPECT_EQ(offset(&xml.m_bAsync), 16);
    EXPECT_EQ(offset(&xml.m_bStream), 17);
    EXPECT_EQ(offset(&xml.m_bFileStream), 18);
    EXPECT_EQ(offset(&xml.m_strFileName), 24);
    EXPECT_EQ(sizeof(xml), 32u);
}

struct Creation
{
    CLSID clsid;
    DWORD context;
};
std::vector<Creation> g_creations;
int g_initialisations;

TEST_F(QuonXmlTest, CreatesItsDocumentAndReportsNoFailure)
{
    g_creations.clear();
    g_initialisations = 0;
    const ImportPatch<decltype(&::CoInitialize)> initialising(kLibrary, "CoInitialize", [](LPVOID reserved) -> HRESULT {
        EXPECT_EQ(reserved, nullptr);
        ++g_initialisations;
        return E_FAIL;
    });
    const ImportPatch<decltype(&::CoCreateInstance)> creating(
        kLibrary, "CoCreateInstance", [](REFCLSID clsid, LPUNKNOWN, DWORD context, REFIID, LPVOID* object) -> HRESULT {
            g_creations.push_back({clsid, context});
            *object = nullptr;
            return REGDB_E_CLASSNOTREG;
        });
    {
        QuonXml xml(L"", false, false, false);
        EXPECT_FALSE(xml.m_pDoc);
        EXPECT_FALSE(xml.GetDocument());
        EXPECT_EQ(g_initialisations, 1);
        EXPECT_EQ(xml.CreateDocument(), REGDB_E_CLASSNOTREG);
        EXPECT_EQ(g_initialisations, 2);
        EXPECT_TRUE(xml.WalkTree([](CString, MSXML2::IXMLDOMNodePtr&, __int64) { return false; }, 0))
            << "nothing to walk";
    }
    ASSERT_EQ(g_creations.size(), 2u);
    constexpr GUID kClass = {0xF6D90F11, 0x9C73, 0x11D3, {0xB3, 0x2E, 0x00, 0xC0, 0x4F, 0x99, 0x0B, 0xB4}};
    EXPECT_TRUE(::IsEqualGUID(g_creations[0].clsid, kClass));
    EXPECT_EQ(g_creations[0].context, 23u);
}

// On a thread of its own: 1 when COM is still initialised there, single-threaded, once a QuonXml has come and gone.
DWORD WINAPI InitialiseAgain(void*)
{
    {
        const QuonXml xml(L"", false, false, false);
        if (!xml.m_pDoc)
        {
            return 2;
        }
    }
    const bool initialised = ::CoInitialize(nullptr) == S_FALSE;
    const bool singleThreaded = ::CoInitializeEx(nullptr, COINIT_MULTITHREADED) == RPC_E_CHANGED_MODE;
    ::CoUninitialize();
    ::CoUninitialize();
    return initialised && singleThreaded ? 1 : 0;
}

TEST_F(QuonXmlTest, NeverUninitialisesCom)
{
    const HANDLE thread = ::CreateThread(nullptr, 0, &InitialiseAgain, nullptr, 0, nullptr);
    ASSERT_EQ(::WaitForSingleObject(thread, 60000), WAIT_OBJECT_0);
    DWORD result = 0;
    ::GetExitCodeThread(thread, &result);
    ::CloseHandle(thread);
    EXPECT_EQ(result, 1u);
}

TEST_F(QuonXmlTest, CreateDocumentReleasesTheOldOne)
{
    QuonXml xml(L"", false, false, false);
    xml.m_pDoc = m_pointer;
    EXPECT_EQ(m_document.references, 3);
    EXPECT_HRESULT_SUCCEEDED(xml.CreateDocument());
    EXPECT_EQ(m_document.references, 2);
    EXPECT_TRUE(xml.m_pDoc);
    xml.m_pDoc = m_pointer;
    {
        const MSXML2::IXMLDOMDocumentPtr copy = xml.GetDocument();
        EXPECT_EQ(m_document.references, 4) << "a reference was added";
    }
    xml.m_pDoc = nullptr;
}

TEST_F(QuonXmlTest, TheDestructorReleasesTheDocument)
{
    {
        QuonXml xml(L"", false, false, false);
        xml.m_pDoc = m_pointer;
        EXPECT_EQ(m_document.references, 3);
    }
    EXPECT_EQ(m_document.references, 2);
}

TEST_F(QuonXmlTest, LoadAndSaveDoNothingWithoutAName)
{
    for (const int flags : {0, 1, 2, 3, 6, 7})
    {
        QuonXml xml(L"", false, false, false);
        xml.m_pDoc = m_pointer;
        EXPECT_EQ(xml.Load(L"", (flags & 1) != 0, (flags & 2) != 0, (flags & 4) != 0), 0);
        EXPECT_EQ(xml.Load(), 0);
        EXPECT_EQ(xml.Save(L""), 0);
    }
    EXPECT_EQ(m_document.plan.Count("load"), 0);
    EXPECT_EQ(m_document.plan.Count("put_async"), 0);
    EXPECT_EQ(m_document.plan.Count("save"), 0);
}

TEST_F(QuonXmlTest, LoadsAndSavesByName)
{
    const std::wstring in = m_folder.WriteFile(L"in.xml", "<a><b/></a>");
    const std::wstring out = m_folder / L"out.xml";
    for (const bool async : {false, true})
    {
        SCOPED_TRACE(async);
        QuonXml xml(L"", false, true, true);
        EXPECT_EQ(xml.Load(in.c_str(), async, false, true), 0);
        EXPECT_EQ(xml.m_bAsync, async);
        EXPECT_FALSE(xml.m_bStream);
        EXPECT_TRUE(xml.m_bFileStream);
        EXPECT_EQ(xml.GetFileName(), in.c_str());
        EXPECT_EQ(Xml(xml.m_pDoc), L"<a><b/></a>");
        VARIANT_BOOL value = VARIANT_FALSE;
        xml.m_pDoc->get_async(&value);
        EXPECT_EQ(value, async ? VARIANT_TRUE : VARIANT_FALSE);
        EXPECT_EQ(xml.Save(out.c_str()), 0);
        QuonXml again(out.c_str(), async, false, false);
        EXPECT_EQ(again.Load(), 0);
        EXPECT_EQ(Xml(again.m_pDoc), L"<a><b/></a>");
    }
    EXPECT_TRUE(g_boxes.empty());
}

TEST_F(QuonXmlTest, AFileThatCannotBeLoadedIsNotReported)
{
    const std::wstring bad = m_folder.WriteFile(L"bad.xml", "<a>\n<b>\n</a>");
    for (const std::wstring& name : {bad, m_folder / L"missing.xml"})
    {
        for (const bool async : {false, true})
        {
            QuonXml xml(name.c_str(), async, false, false);
            EXPECT_EQ(xml.Load(), 0);
        }
    }
    EXPECT_TRUE(g_boxes.empty());
}

// A load that the parser accepts and whose error shows once it is complete, as that of a background load does.
TEST_F(QuonXmlTest, AnErrorOfABackgroundLoadIsShownAndReturned)
{
    m_document.parseError = &m_error;
    m_document.plan.Replace("load", Returns(S_OK));
    class Loading : public ForwardingDocument
    {
    public:
        using ForwardingDocument::ForwardingDocument;
        VARIANT_BOOL loaded = VARIANT_TRUE;
        std::wstring name;
        VARTYPE type = 0;
        HRESULT STDMETHODCALLTYPE raw_load(VARIANT source, VARIANT_BOOL* out) override
        {
            type = source.vt;
            name = source.bstrVal;
            *out = loaded;
            return S_OK;
        }
    };
    Loading document(Parse(L"<r/>"));
    document.parseError = &m_error;
    int asked = 0;
    document.readyState = [&] {
        return ++asked < 3 ? 2 * asked - 1 : 4;  // 1, then 3, which is not enough yet
    };
    m_error.code = static_cast<LONG>(0xC00CE56D);
    m_error.line = 3;
    m_error.position = 5;
    m_error.reason = L"End tag does not match.";
    m_error.url = L"file:///C:/bad.xml";
    ::PostMessageW(nullptr, WM_APP, 0, 0);
    ::PostMessageW(nullptr, WM_APP, 0, 0);

    QuonXml xml(L"bad.xml", true, false, false);
    xml.m_pDoc = &document;
    EXPECT_EQ(xml.Load(), static_cast<HRESULT>(0xC00CE56D));
    EXPECT_EQ(document.type, VT_BSTR);
    EXPECT_EQ(document.name, L"bad.xml");
    ASSERT_EQ(g_boxes.size(), 1u);
    EXPECT_EQ(g_boxes[0].owner, nullptr);
    EXPECT_EQ(g_boxes[0].type, static_cast<UINT>(MB_OK));
    EXPECT_EQ(g_boxes[0].caption, L"End tag does not match.");
    EXPECT_EQ(g_boxes[0].text, L"Error on line 3, position 5 in \"file:///C:/bad.xml\".\n");

    document.loaded = VARIANT_FALSE;
    EXPECT_EQ(xml.Load(), 0) << "the parser said no: nothing is looked at";
    document.loaded = VARIANT_TRUE;
    xml.m_bAsync = false;
    EXPECT_EQ(xml.Load(), static_cast<HRESULT>(0xC00CE56D)) << "the waiting load looks at the error too";
    EXPECT_EQ(g_boxes.size(), 2u);
    EXPECT_EQ(asked, 3) << "and does not wait";
    document.loaded = VARIANT_FALSE;
    EXPECT_EQ(xml.Load(), 0);
    EXPECT_EQ(g_boxes.size(), 2u);
    xml.m_pDoc = nullptr;
    EXPECT_EQ(document.references, 1);
    EXPECT_EQ(m_error.references, 1);
}

TEST_F(QuonXmlTest, FailedCallsAreRaised)
{
    QuonXml xml(L"name.xml", false, false, false);
    const MSXML2::IXMLDOMDocumentPtr none;
    EXPECT_EQ(ErrorOf([&] { xml.LoadSync(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadAsync(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadFromStream(none, nullptr); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.SaveDocument(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.WaitUntilLoaded(none); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.CheckParseError(none); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.ReportParseError(MSXML2::IXMLDOMParseErrorPtr()); }), E_POINTER);

    xml.m_pDoc = m_pointer;
    m_document.plan.Replace("put_async", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_ACCESSDENIED);
    xml.m_bAsync = true;
    EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_ACCESSDENIED);
    m_document.plan.Replace("put_async", Returns(S_OK));
    m_document.plan.Replace("load", Returns(E_INVALIDARG));
    EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_INVALIDARG);
    xml.m_bAsync = false;
    EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_INVALIDARG);
    m_document.plan.Replace("save", Returns(E_ACCESSDENIED));
    EXPECT_EQ(ErrorOf([&] { xml.Save(L"n"); }), E_ACCESSDENIED);
    m_document.plan.Replace("save", Returns(S_FALSE));
    EXPECT_EQ(xml.Save(L"n"), S_FALSE) << "a success code is passed on";
    m_document.plan.Replace("get_readyState", Returns(E_ABORT));
    EXPECT_EQ(ErrorOf([&] { xml.WaitUntilLoaded(m_pointer); }), E_ABORT);
    m_document.plan.Replace("get_parseError", Returns(E_ABORT));
    EXPECT_EQ(ErrorOf([&] { xml.CheckParseError(m_pointer); }), E_ABORT);
    xml.m_pDoc = nullptr;
}

TEST_F(QuonXmlTest, ANameThatNeedsMoreMemoryThanThereIsRaises)
{
    QuonXml xml(L"name.xml", false, true, false);
    const ImportPatch<decltype(&::SysAllocString)> patch(kLibrary, "SysAllocString",
                                                         [](const OLECHAR*) -> BSTR { return nullptr; });
    EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_OUTOFMEMORY);
}

TEST_F(QuonXmlTest, ParseErrorBoxes)
{
    QuonXml xml(L"", false, false, false);
    m_document.parseError = &m_error;
    EXPECT_EQ(xml.CheckParseError(m_pointer), 0);
    EXPECT_TRUE(g_boxes.empty());

    struct Row
    {
        LONG line;
        const wchar_t* reason;
        const wchar_t* url;
        const wchar_t* caption;
        const wchar_t* text;
    };
    const Row rows[] = {
        {1, L"r", L"u", L"r", L"Error on line 1, position 7 in \"u\".\n"},
        {0, L"r", L"u", L"r", L""},
        {-1, L"100 %s", L"u", L"100 %s", L""},
        {2, nullptr, nullptr, L"", L"Error on line 2, position 7 in \"\".\n"},
        {2, L"\x4E2D", L"\x4E2D%d", L"?", L"Error on line 2, position 7 in \"?%d\".\n"},
    };
    m_error.code = 17;
    m_error.position = 7;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(row.line);
        g_boxes.clear();
        m_error.line = row.line;
        m_error.reason = row.reason;
        m_error.url = row.url;
        EXPECT_EQ(xml.CheckParseError(m_pointer), 17);
        ASSERT_EQ(g_boxes.size(), 1u);
        EXPECT_EQ(g_boxes[0].caption, row.caption);
        EXPECT_EQ(g_boxes[0].text, row.text);
    }
    for (const char* property : {"get_errorCode", "get_line", "get_linepos", "get_reason", "get_url"})
    {
        SCOPED_TRACE(property);
        g_boxes.clear();
        FakeParseError error;
        error.code = 1;
        error.plan.Replace(property, Returns(E_NOTIMPL));
        m_document.parseError = &error;
        EXPECT_EQ(ErrorOf([&] { xml.CheckParseError(m_pointer); }), E_NOTIMPL);
        EXPECT_TRUE(g_boxes.empty());
        EXPECT_EQ(error.references, 1);
    }
}

// The wait: messages of this thread reach their windows, before and after the document is complete.

std::vector<UINT> g_dispatched;

LRESULT CALLBACK RecordingProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message >= WM_APP)
    {
        g_dispatched.push_back(message);
    }
    return ::DefWindowProcW(window, message, wParam, lParam);
}

TEST_F(QuonXmlTest, WaitingDispatchesMessagesAndEmptiesTheQueue)
{
    WNDCLASSW description = {};
    description.lpfnWndProc = &RecordingProcedure;
    description.hInstance = ::GetModuleHandleW(nullptr);
    description.lpszClassName = L"QuonXmlTestWindow";
    ::RegisterClassW(&description);
    const HWND window = ::CreateWindowExW(0, L"QuonXmlTestWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr,
                                          description.hInstance, nullptr);
    ASSERT_NE(window, nullptr);
    QuonXml xml(L"", false, false, false);

    g_dispatched.clear();
    m_document.readyState = [] { return g_dispatched.size() >= 2 ? 4 : 1; };
    for (UINT i = 0; i < 4; ++i)
    {
        ::PostMessageW(window, WM_APP + i, 0, 0);
    }
    xml.WaitUntilLoaded(m_pointer);
    EXPECT_EQ(g_dispatched, (std::vector<UINT>{WM_APP, WM_APP + 1, WM_APP + 2, WM_APP + 3}));
    EXPECT_EQ(m_document.plan.Count("get_readyState"), 3) << "asked before each message and not while emptying";

    g_dispatched.clear();
    m_document.readyState = [] { return 4; };
    ::PostMessageW(window, WM_APP + 9, 0, 0);
    ::PostQuitMessage(5);
    xml.WaitUntilLoaded(m_pointer);
    EXPECT_EQ(g_dispatched, std::vector<UINT>{WM_APP + 9});
    MSG message;
    EXPECT_FALSE(::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "the quit message is swallowed";
    ::DestroyWindow(window);
    ::UnregisterClassW(L"QuonXmlTestWindow", description.hInstance);
}

}  // namespace
