#include "xml/QuonXml.h"

#include "support/ImportPatch.h"
#include "support/TemporaryFolder.h"
#include "xml/DomFakes.h"
#include "xml/XmlTestSupport.h"

#include <array>

namespace
{

using namespace quon_test;
using MSXML2::IXMLDOMDocumentPtr;
using MSXML2::IXMLDOMNodePtr;
using MSXML2::IXMLDOMParseErrorPtr;

constexpr wchar_t kLibrary[] = L"QuonWin32Utils.dll";

// Every message box of the library, answered at once.
struct Box
{
    HWND owner;
    std::wstring text;
    std::wstring caption;
    UINT type;
};
std::vector<Box> g_boxes;

class QuonXmlTest : public XmlTest
{
protected:
    void SetUp() override { g_boxes.clear(); }

    const TemporaryFolder m_folder;
    ForwardingDocument m_document{Parse(L"<r/>")};
    const IXMLDOMDocumentPtr m_pointer{&m_document};
    FakeParseError m_error;

private:
    const ImportPatch<decltype(&::MessageBoxW)> m_patch{kLibrary, "MessageBoxW",
                                                        [](HWND owner, LPCWSTR text, LPCWSTR caption, UINT type)
                                                            WINAPI -> int
                                                        {
                                                            g_boxes.push_back({owner, text, caption, type});
                                                            return IDOK;
                                                        }};
};

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
    const auto offset = [&](const void* field)
    {
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
    const ImportPatch<decltype(&::CoInitialize)> initialising(kLibrary, "CoInitialize",
                                                              [](LPVOID reserved) WINAPI -> HRESULT
                                                              {
                                                                  EXPECT_EQ(reserved, nullptr);
                                                                  ++g_initialisations;
                                                                  return E_FAIL;
                                                              });
    const ImportPatch<decltype(&::CoCreateInstance)> creating(
        kLibrary, "CoCreateInstance",
        [](REFCLSID clsid, LPUNKNOWN, DWORD context, REFIID, LPVOID* object) WINAPI -> HRESULT
        {
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
        EXPECT_TRUE(xml.WalkTree([](CString, IXMLDOMNodePtr&, __int64) { return false; }, 0)) << "nothing to walk";
    }
    ASSERT_EQ(g_creations.size(), 2u);
    constexpr GUID kClass = {0xF6D90F11, 0x9C73, 0x11D3, {0xB3, 0x2E, 0x00, 0xC0, 0x4F, 0x99, 0x0B, 0xB4}};
    EXPECT_TRUE(::IsEqualGUID(g_creations[0].clsid, kClass));
    EXPECT_EQ(g_creations[0].context, 23u);
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
        const IXMLDOMDocumentPtr copy = xml.GetDocument();
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
        HRESULT STDMETHODCALLTYPE load(VARIANT source, VARIANT_BOOL* out) override
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
    document.readyState = [&]
    {
        return ++asked < 3 ? 1 : 4;
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
    const IXMLDOMDocumentPtr none;
    EXPECT_EQ(ErrorOf([&] { xml.LoadSync(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadAsync(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadFromStream(none, nullptr); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.SaveDocument(none, L"n"); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.WaitUntilLoaded(none); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.CheckParseError(none); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.ReportParseError(IXMLDOMParseErrorPtr()); }), E_POINTER);

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
                                                         [](const OLECHAR*) WINAPI -> BSTR { return nullptr; });
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
    m_document.readyState = []
    {
        return g_dispatched.size() >= 2 ? 4 : 1;
    };
    for (UINT i = 0; i < 4; ++i)
    {
        ::PostMessageW(window, WM_APP + i, 0, 0);
    }
    xml.WaitUntilLoaded(m_pointer);
    EXPECT_EQ(g_dispatched, (std::vector<UINT>{WM_APP, WM_APP + 1, WM_APP + 2, WM_APP + 3}));
    EXPECT_EQ(m_document.plan.Count("get_readyState"), 3) << "asked before each message and not while emptying";

    g_dispatched.clear();
    m_document.readyState = []
    {
        return 4;
    };
    ::PostMessageW(window, WM_APP + 9, 0, 0);
    ::PostQuitMessage(5);
    xml.WaitUntilLoaded(m_pointer);
    EXPECT_EQ(g_dispatched, std::vector<UINT>{WM_APP + 9});
    MSG message;
    EXPECT_FALSE(::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) << "the quit message is swallowed";
    ::DestroyWindow(window);
    ::UnregisterClassW(L"QuonXmlTestWindow", description.hInstance);
}

// Streams.

TEST_F(QuonXmlTest, LoadingThroughAFileStreamEmptiesTheFile)
{
    const std::wstring path = m_folder.WriteFile(L"victim.xml", "<a/>");
    QuonXml xml(path.c_str(), true, true, true);
    xml.m_pDoc = m_pointer;
    const int queries = m_document.plan.Count("QueryInterface");
    EXPECT_EQ(xml.Load(), 1);
    EXPECT_EQ(m_folder.ReadFile(L"victim.xml"), "");
    EXPECT_EQ(m_document.plan.Count("QueryInterface"), queries) << "not asked for its stream interface";
    EXPECT_EQ(m_document.plan.Count("put_async"), 0);
    EXPECT_TRUE(::DeleteFileW(path.c_str())) << "closed";
    xml.m_pDoc = nullptr;
}

// The stream interface of a document.
class FakePersist : public IPersistStreamInit
{
public:
    HRESULT loadResult = S_OK;
    HRESULT saveResult = S_OK;
    std::function<HRESULT(IStream*)> onLoad;
    std::string toSave;
    BOOL clearDirty = FALSE;
    LONG references = 1;
    int loads = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE GetClassID(CLSID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE IsDirty() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetSizeMax(ULARGE_INTEGER*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE InitNew() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Load(IStream* stream) override
    {
        ++loads;
        return onLoad ? onLoad(stream) : loadResult;
    }
    HRESULT STDMETHODCALLTYPE Save(IStream* stream, BOOL clear) override
    {
        clearDirty = clear;
        return FAILED(saveResult) ? saveResult
                                  : stream->Write(toSave.data(), static_cast<ULONG>(toSave.size()), nullptr);
    }
};

// A document with such an interface, or with none.
class StreamedDocument : public ForwardingDocument
{
public:
    StreamedDocument() : ForwardingDocument(Parse(L"<r/>")) {}
    FakePersist* persist = nullptr;

protected:
    HRESULT QueryInner(REFIID iid, void** object) override
    {
        if (!::IsEqualIID(iid, IID_IPersistStreamInit))
        {
            return ForwardingDocument::QueryInner(iid, object);
        }
        *object = persist;
        if (persist == nullptr)
        {
            return E_NOINTERFACE;
        }
        persist->AddRef();
        return S_OK;
    }
};

TEST_F(QuonXmlTest, AFileStreamThatCannotBeOpenedGoesToTheParser)
{
    StreamedDocument document;
    FakePersist persist;
    document.persist = &persist;
    ULONG afterwards = 0;
    persist.onLoad = [&](IStream* stream)
    {
        char byte;
        EXPECT_EQ(stream->Read(&byte, 1, nullptr), E_FAIL);
        stream->AddRef();
        afterwards = stream->Release();
        return E_ACCESSDENIED;
    };
    QuonXml xml((m_folder / L"no such folder\\file.xml").c_str(), false, true, true);
    xml.m_pDoc = &document;
    EXPECT_EQ(xml.Load(), E_ACCESSDENIED);
    EXPECT_EQ(persist.loads, 1);
    EXPECT_EQ(afterwards, 1u) << "one holder: the stream ends with the load";
    xml.m_pDoc = nullptr;
    EXPECT_EQ(persist.references, 1);
    EXPECT_EQ(document.references, 1);
}

TEST_F(QuonXmlTest, LoadFromStreamWaitsAndLooksAtTheError)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    const IXMLDOMDocumentPtr pointer(&document);
    EXPECT_EQ(xml.LoadFromStream(pointer, nullptr), 0) << "no stream interface";
    EXPECT_EQ(document.plan.Count("get_readyState"), 0);

    FakePersist persist;
    document.persist = &persist;
    document.parseError = &m_error;
    persist.loadResult = E_ABORT;
    EXPECT_EQ(xml.LoadFromStream(pointer, nullptr), E_ABORT);
    EXPECT_EQ(document.plan.Count("get_readyState"), 0) << "a failed load is not waited for";

    persist.loadResult = S_OK;
    EXPECT_EQ(xml.LoadFromStream(pointer, nullptr), 0);
    EXPECT_EQ(document.plan.Count("get_readyState"), 1);
    m_error.code = 99;
    m_error.reason = L"broken";
    EXPECT_EQ(xml.LoadFromStream(pointer, nullptr), 99);
    ASSERT_EQ(g_boxes.size(), 1u);
    EXPECT_EQ(g_boxes[0].caption, L"broken");
    EXPECT_EQ(persist.references, 1);
}

std::vector<std::pair<std::wstring, DWORD>> g_resolved;

TEST_F(QuonXmlTest, LoadFromUrlResolvesAndFails)
{
    g_resolved.clear();
    const ImportPatch<decltype(&::GetFullPathNameW)> patch(kLibrary, "GetFullPathNameW",
                                                           [](LPCWSTR name, DWORD size, LPWSTR buffer, LPWSTR* part)
                                                               WINAPI -> DWORD
                                                           {
                                                               EXPECT_EQ(part, nullptr);
                                                               g_resolved.emplace_back(name, size);
                                                               return ::GetFullPathNameW(name, size, buffer, part);
                                                           });
    QuonXml xml(L"local.xml", true, true, false);
    xml.m_pDoc = m_pointer;
    EXPECT_EQ(xml.LoadFromUrl(L"http://host/file.xml"), E_FAIL);
    EXPECT_EQ(xml.LoadFromUrl(L"http:"), E_FAIL);
    EXPECT_TRUE(g_resolved.empty());
    EXPECT_EQ(xml.LoadFromUrl(L"C:\\file.xml"), E_FAIL);
    EXPECT_EQ(xml.LoadFromUrl(L"HTTP://host/file.xml"), E_FAIL);
    EXPECT_EQ(xml.LoadFromUrl(std::wstring(400, L'x').c_str()), E_FAIL);
    ASSERT_EQ(g_resolved.size(), 3u);
    EXPECT_EQ(g_resolved[0], std::make_pair(std::wstring(L"C:\\file.xml"), DWORD{260}));
    EXPECT_EQ(xml.Load(), E_FAIL) << "a stream, but not over a file";
    ASSERT_EQ(g_resolved.size(), 4u);
    EXPECT_EQ(g_resolved[3].first, L"local.xml");
    EXPECT_EQ(m_document.plan.Count("load"), 0);
    xml.m_pDoc = nullptr;
}

TEST_F(QuonXmlTest, MemoryGivesTheSameDocumentBack)
{
    QuonXml xml(L"", false, false, false);
    // With a declaration: some parsers do not recognise the encoding of their own stream without one.
    const IXMLDOMDocumentPtr document = Parse(L"<?xml version='1.0'?><a k='v'><b>t\x00E4\x4E2D</b><!--c--></a>");
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    ASSERT_EQ(xml.SaveToMemory(document, buffer, size), 0);
    ASSERT_GT(size, 0u);
    const IXMLDOMDocumentPtr second = EmptyDocument();
    EXPECT_EQ(xml.LoadFromMemory(second, buffer, size), 0);
    EXPECT_EQ(Xml(second), Xml(document));
    delete[] buffer;
}

TEST_F(QuonXmlTest, MemoryHoldsTheBytesOfTheStream)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    FakePersist persist;
    document.persist = &persist;
    const IXMLDOMDocumentPtr pointer(&document);
    for (const size_t length : {size_t{0}, size_t{1}, size_t{5}, size_t{100000}})
    {
        SCOPED_TRACE(length);
        persist.toSave.clear();
        for (size_t i = 0; i < length; ++i)
        {
            persist.toSave.push_back(static_cast<char>(i * 7));
        }
        unsigned char* buffer = nullptr;
        unsigned long size = 99;
        EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), 0);
        EXPECT_EQ(persist.clearDirty, TRUE);
        EXPECT_EQ(size, length);
        EXPECT_EQ(std::string(reinterpret_cast<const char*>(buffer), size), persist.toSave);

        std::string seen;
        persist.onLoad = [&](IStream* stream)
        {
            char byte;
            ULONG read = 0;
            while (stream->Read(&byte, 1, &read) == S_OK && read == 1)
            {
                seen.push_back(byte);
            }
            return S_FALSE;
        };
        EXPECT_EQ(xml.LoadFromMemory(pointer, buffer, size), S_FALSE) << "the parser's result";
        EXPECT_EQ(seen, persist.toSave);
        delete[] buffer;
    }
    EXPECT_EQ(document.plan.Count("get_parseError"), 0) << "parse errors are not looked at";
    EXPECT_EQ(persist.references, 1);
}

TEST_F(QuonXmlTest, MemoryStepsThatFailGiveTheirResults)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    FakePersist persist;
    const IXMLDOMDocumentPtr pointer(&document);
    const unsigned char bytes[] = {1, 2, 3};
    unsigned char* buffer = nullptr;
    unsigned long size = 77;
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_NOINTERFACE);
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_NOINTERFACE);
    EXPECT_EQ(ErrorOf([&] { xml.SaveToMemory(IXMLDOMDocumentPtr(), buffer, size); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadFromMemory(IXMLDOMDocumentPtr(), bytes, 3); }), E_POINTER);
    document.persist = &persist;
    persist.saveResult = E_ABORT;
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_ABORT);
    persist.saveResult = S_OK;
    persist.loadResult = E_ABORT;
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_ABORT);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(size, 77u);
    {
        const ImportPatch<decltype(&::GetHGlobalFromStream)> patch(
            kLibrary, "GetHGlobalFromStream", [](IStream*, HGLOBAL*) WINAPI -> HRESULT { return E_HANDLE; });
        persist.toSave = "x";
        EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_HANDLE);
        delete[] buffer;
        buffer = nullptr;
    }
    const ImportPatch<decltype(&::CreateStreamOnHGlobal)> patch(kLibrary, "CreateStreamOnHGlobal",
                                                                [](HGLOBAL memory, BOOL deletes, LPSTREAM*)
                                                                    WINAPI -> HRESULT
                                                                {
                                                                    EXPECT_EQ(memory, nullptr);
                                                                    EXPECT_TRUE(deletes);
                                                                    return E_UNEXPECTED;
                                                                });
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_UNEXPECTED);
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_UNEXPECTED);
    EXPECT_EQ(persist.references, 1);
}

constexpr size_t kHugeBuffer = 1 << 20;

TEST_F(QuonXmlTest, ABufferThatCannotBeMadeIsOutOfMemory)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    FakePersist persist;
    persist.toSave.assign(kHugeBuffer, 'x');
    document.persist = &persist;
    const ImportPatch<void* (*)(size_t)> patch(
        kLibrary, "malloc", [](size_t size) -> void* { return size == kHugeBuffer ? nullptr : std::malloc(size); });
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    EXPECT_EQ(xml.SaveToMemory(IXMLDOMDocumentPtr(&document), buffer, size), E_OUTOFMEMORY);
    EXPECT_EQ(size, kHugeBuffer) << "the size is known by then";
    EXPECT_EQ(buffer, nullptr);
}

// Walks.

struct Visits
{
    std::wstring names;
    size_t stopAfter = SIZE_MAX;
    size_t count = 0;
};

bool Visit(CString name, IXMLDOMNodePtr& node, __int64 user)
{
    auto* const visits = reinterpret_cast<Visits*>(user);
    EXPECT_STREQ(name, MSXML2::GetNodeName(node));
    visits->names += name.GetString();
    visits->names += L' ';
    return ++visits->count < visits->stopAfter;
}

TEST_F(QuonXmlTest, WalksNodesThenAttributesThenChildren)
{
    QuonXml xml(L"", false, false, false);
    xml.m_pDoc = Parse(L"<a x='1' y='2'><b z='3'>t</b><!--c--><d/></a>");
    const std::wstring all = L"#document a x y b z #text #comment d ";
    Visits visits;
    EXPECT_TRUE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.names, all);
    EXPECT_TRUE(xml.WalkTree(nullptr, 0));

    for (size_t stop = 1; stop <= 9; ++stop)
    {
        SCOPED_TRACE(stop);
        Visits part;
        part.stopAfter = stop;
        EXPECT_FALSE(xml.WalkTree(&Visit, reinterpret_cast<__int64>(&part)));
        EXPECT_EQ(part.count, stop) << "nothing is visited after the first false";
        EXPECT_EQ(all.compare(0, part.names.size(), part.names), 0);
    }
}

TEST_F(QuonXmlTest, WalksFromAnyNode)
{
    QuonXml xml(L"", false, false, false);
    Visits visits;
    EXPECT_TRUE(xml.WalkNode(IXMLDOMNodePtr(), 0, &Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.count, 0u);
    const IXMLDOMNodePtr node = Find(Parse(L"<a><b z='3'>t</b></a>"), L"a/b");
    EXPECT_TRUE(xml.WalkNode(node, 17, &Visit, reinterpret_cast<__int64>(&visits)));
    EXPECT_EQ(visits.names, L"b z #text ");
}

}  // namespace
