#include "helpers/FailingAllocation.h"
#include "xml/QuonXmlTestSupport.h"

#include <cstdlib>
#include <functional>

namespace
{

using namespace quon_test;

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
    persist.onLoad = [&](IStream* stream) {
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
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
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
    const ImportPatch<decltype(&::GetFullPathNameW)> patch(
        kLibrary, "GetFullPathNameW", [](LPCWSTR name, DWORD size, LPWSTR buffer, LPWSTR* part) -> DWORD {
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
    EXPECT_EQ(xml.LoadFromUrl(L"http"), E_FAIL);
    EXPECT_EQ(xml.LoadFromUrl(L"https://host/file.xml"), E_FAIL);
    EXPECT_EQ(xml.LoadFromUrl(nullptr), E_FAIL);
    ASSERT_EQ(g_resolved.size(), 5u);
    EXPECT_EQ(g_resolved[0], std::make_pair(std::wstring(L"C:\\file.xml"), DWORD{260}));
    EXPECT_EQ(xml.Load(), E_FAIL) << "a stream, but not over a file";
    ASSERT_EQ(g_resolved.size(), 6u);
    EXPECT_EQ(g_resolved[5].first, L"local.xml");
    EXPECT_EQ(m_document.plan.Count("load"), 0);
    xml.m_pDoc = nullptr;
}

TEST_F(QuonXmlTest, MemoryGivesTheSameDocumentBack)
{
    QuonXml xml(L"", false, false, false);
    // With a declaration: some parsers do not recognise the encoding of their own stream without one.
    const MSXML2::IXMLDOMDocumentPtr document =
        Parse(L"<?xml version='1.0'?><a k='v'><b>t\x00E4\x4E2D</b><!--c--></a>");
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    ASSERT_EQ(xml.SaveToMemory(document, buffer, size), 0);
    ASSERT_GT(size, 0u);
    const MSXML2::IXMLDOMDocumentPtr second = EmptyDocument();
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
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
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
        persist.onLoad = [&](IStream* stream) {
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

std::vector<HGLOBAL> g_locked;

TEST_F(QuonXmlTest, TheMemoryOfTheStreamIsUnlockedAgain)
{
    g_locked.clear();
    const ImportPatch<decltype(&::GlobalLock)> locking(kLibrary, "GlobalLock", [](HGLOBAL memory) -> LPVOID {
        g_locked.push_back(memory);
        return ::GlobalLock(memory);
    });
    const ImportPatch<decltype(&::GlobalUnlock)> unlocking(kLibrary, "GlobalUnlock", [](HGLOBAL memory) -> BOOL {
        EXPECT_EQ(g_locked, std::vector<HGLOBAL>{memory});
        g_locked.clear();
        return ::GlobalUnlock(memory);
    });
    QuonXml xml(L"", false, false, false);
    unsigned char* buffer = nullptr;
    unsigned long size = 0;
    EXPECT_EQ(xml.SaveToMemory(Parse(L"<a/>"), buffer, size), 0);
    EXPECT_TRUE(g_locked.empty());
    delete[] buffer;
}

DWORD g_lockError = ERROR_SUCCESS;

TEST_F(QuonXmlTest, MemoryStepsThatFailGiveTheirResults)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    FakePersist persist;
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
    const unsigned char bytes[] = {1, 2, 3};
    unsigned char* buffer = nullptr;
    unsigned long size = 77;
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_NOINTERFACE);
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_NOINTERFACE);
    EXPECT_EQ(ErrorOf([&] { xml.SaveToMemory(MSXML2::IXMLDOMDocumentPtr(), buffer, size); }), E_POINTER);
    EXPECT_EQ(ErrorOf([&] { xml.LoadFromMemory(MSXML2::IXMLDOMDocumentPtr(), bytes, 3); }), E_POINTER);
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
            kLibrary, "GetHGlobalFromStream", [](IStream*, HGLOBAL*) -> HRESULT { return E_HANDLE; });
        persist.toSave = "x";
        EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_HANDLE);
        EXPECT_EQ(buffer, nullptr) << "a copy that failed is freed";
        EXPECT_EQ(size, 1u) << "the size is known by then";
    }
    for (const DWORD code : {DWORD{ERROR_INVALID_HANDLE}, DWORD{ERROR_SUCCESS}})
    {
        SCOPED_TRACE(code);
        g_lockError = code;
        const ImportPatch<decltype(&::GlobalLock)> patch(
            kLibrary, "GlobalLock", [](HGLOBAL) -> LPVOID { return ::SetLastError(g_lockError), nullptr; });
        EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), code == ERROR_SUCCESS ? E_FAIL : E_HANDLE);
        EXPECT_EQ(buffer, nullptr);
    }
    const ImportPatch<decltype(&::CreateStreamOnHGlobal)> patch(kLibrary, "CreateStreamOnHGlobal",
                                                                [](HGLOBAL memory, BOOL deletes, LPSTREAM*) -> HRESULT {
                                                                    EXPECT_EQ(memory, nullptr);
                                                                    EXPECT_TRUE(deletes);
                                                                    return E_UNEXPECTED;
                                                                });
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_UNEXPECTED);
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_UNEXPECTED);
    EXPECT_EQ(persist.references, 1);
}

// A stream that fails from one operation on.
class FailingStream : public IStream
{
public:
    HRESULT writeResult = S_OK;
    HRESULT seekResult = S_OK;
    LONG references = 0;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references); }
    HRESULT STDMETHODCALLTYPE Read(void*, ULONG, ULONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Write(const void*, ULONG, ULONG*) override { return writeResult; }
    HRESULT STDMETHODCALLTYPE Seek(LARGE_INTEGER, DWORD, ULARGE_INTEGER*) override { return seekResult; }
    HRESULT STDMETHODCALLTYPE SetSize(ULARGE_INTEGER) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE CopyTo(IStream*, ULARGE_INTEGER, ULARGE_INTEGER*, ULARGE_INTEGER*) override
    {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Commit(DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Revert() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE LockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE UnlockRegion(ULARGE_INTEGER, ULARGE_INTEGER, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Stat(STATSTG*, DWORD) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Clone(IStream**) override { return E_NOTIMPL; }
};
FailingStream* g_stream;

TEST_F(QuonXmlTest, StreamOperationsThatFailGiveTheirResults)
{
    QuonXml xml(L"", false, false, false);
    StreamedDocument document;
    FakePersist persist;
    document.persist = &persist;
    const MSXML2::IXMLDOMDocumentPtr pointer(&document);
    FailingStream stream;
    g_stream = &stream;
    const ImportPatch<decltype(&::CreateStreamOnHGlobal)> patch(kLibrary, "CreateStreamOnHGlobal",
                                                                [](HGLOBAL, BOOL, LPSTREAM* out) -> HRESULT {
                                                                    g_stream->AddRef();
                                                                    *out = g_stream;
                                                                    return S_OK;
                                                                });
    const unsigned char bytes[] = {1, 2, 3};
    unsigned char* buffer = nullptr;
    unsigned long size = 77;
    stream.seekResult = E_ABORT;
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_ABORT);
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_ABORT);
    stream.writeResult = E_ACCESSDENIED;
    EXPECT_EQ(xml.SaveToMemory(pointer, buffer, size), E_ACCESSDENIED) << "the document passes it on";
    EXPECT_EQ(xml.LoadFromMemory(pointer, bytes, 3), E_ACCESSDENIED);
    EXPECT_EQ(buffer, nullptr);
    EXPECT_EQ(size, 77u);
    EXPECT_EQ(persist.loads, 0);
    EXPECT_EQ(stream.references, 0);
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
    EXPECT_EQ(xml.SaveToMemory(MSXML2::IXMLDOMDocumentPtr(&document), buffer, size), E_OUTOFMEMORY);
    EXPECT_EQ(size, kHugeBuffer) << "the size is known by then";
    EXPECT_EQ(buffer, nullptr);
}

TEST_F(QuonXmlTest, AFileNameWithoutCharactersIsRaisedAsOutOfMemory)
{
    QuonXml xml(L"a.xml", false, true, false);
    {
        const ImportPatch<decltype(&::SysAllocString)> patch(kLibrary, "SysAllocString",
                                                             [](const OLECHAR*) -> BSTR { return nullptr; });
        EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_OUTOFMEMORY);
    }
    EXPECT_EQ(xml.Load(), E_FAIL) << "with memory the name is resolved and refused";
}

TEST_F(QuonXmlTest, AFileNameWithoutAnOwnerIsRaisedAsOutOfMemory)
{
    QuonXml xml(L"a.xml", false, true, false);
    {
        const FailingAllocation failing(0);
        EXPECT_EQ(ErrorOf([&] { xml.Load(); }), E_OUTOFMEMORY);
        EXPECT_TRUE(failing.Failed());
    }
    EXPECT_EQ(xml.Load(), E_FAIL) << "with memory the name is resolved and refused";
}

}  // namespace
