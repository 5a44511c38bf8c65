#include "xml/QuonXml.h"

#include "xml/QuonFileStream.h"
#include "xml/XmlInternal.h"

#include <cstring>
#include <cwchar>
#include <new>

namespace
{

using namespace MSXML2;
using xml_internal::NameOf;

constexpr long kReadyStateComplete = 4;
constexpr int kPathCharacters = 260;

// The document's stream interface, empty when it has none.
_COM_SMARTPTR_TYPEDEF(IPersistStreamInit, __uuidof(IPersistStreamInit));
_COM_SMARTPTR_TYPEDEF(IStream, __uuidof(IStream));

HRESULT QueryPersist(IXMLDOMDocument* document, IPersistStreamInitPtr& persist)
{
    return NotNull(document)->QueryInterface(__uuidof(IPersistStreamInit), reinterpret_cast<void**>(&persist));
}

CString ResolveUrl(const wchar_t* name)
{
    if (std::wcsncmp(name, L"http:", 5) == 0)
    {
        return CString(name);
    }
    wchar_t path[kPathCharacters] = {};
    ::GetFullPathNameW(name, kPathCharacters, path, nullptr);
    return CString(path);
}

// Copies the whole of a memory stream; `size` bytes.
HRESULT CopyStreamMemory(IStream* stream, unsigned char* buffer, size_t size)
{
    HGLOBAL memory = nullptr;
    const HRESULT result = ::GetHGlobalFromStream(stream, &memory);
    if (FAILED(result) || size == 0)
    {
        return result;
    }
    const void* const bytes = ::GlobalLock(memory);
    if (bytes == nullptr)
    {
        return HRESULT_FROM_WIN32(::GetLastError());
    }
    std::memcpy(buffer, bytes, size);
    ::GlobalUnlock(memory);
    return S_OK;
}

void DispatchOneMessage()
{
    // WM_QUIT is taken out of the queue like any other message, and the wait goes on.
    MSG message = {};
    ::GetMessageW(&message, nullptr, 0, 0);
    ::DispatchMessageW(&message);
}

// The text in the ANSI code page, valid as long as `text`. A text that the parser does not have is empty.
const char* Narrow(const _bstr_t& text)
{
    const char* const narrow = static_cast<const char*>(text);
    return narrow == nullptr ? "" : narrow;
}

}  // namespace

QuonXml::QuonXml(const CString& fileName, bool bAsync, bool bStream, bool bFileStream)
    : m_bAsync(bAsync), m_bStream(bStream), m_bFileStream(bFileStream), m_strFileName(fileName)
{
    CreateDocument();
}

QuonXml::~QuonXml()
{
    m_pDoc = nullptr;
}

HRESULT QuonXml::CreateDocument()
{
    // The result is of no use: a thread that has been initialised already, in whichever way, can create documents.
    static_cast<void>(::CoInitialize(nullptr));
    return m_pDoc.CreateInstance(MSXML2::CLSID_DOMDocument, nullptr, CLSCTX_ALL);
}

IXMLDOMDocumentPtr QuonXml::GetDocument() const
{
    return m_pDoc;
}

CString QuonXml::GetFileName() const
{
    return m_strFileName;
}

HRESULT QuonXml::Load(const CString& fileName, bool bAsync, bool bStream, bool bFileStream)
{
    m_strFileName = fileName;
    m_bAsync = bAsync;
    m_bStream = bStream;
    m_bFileStream = bFileStream;
    return Load();
}

HRESULT QuonXml::Load()
{
    if (m_strFileName.IsEmpty())
    {
        return S_OK;
    }
    const _bstr_t name(m_strFileName.GetString());
    if (m_bStream && m_bFileStream)
    {
        QuonFileStream* const file = new QuonFileStream;
        IStreamPtr stream;
        file->QueryInterface(IID_IStream, reinterpret_cast<void**>(&stream));
        const bool opened = file->OpenForWrite(name);
        file->Release();
        // The test is the wrong way round, and callers depend on it: success means "emptied, nothing loaded".
        return opened ? S_FALSE : LoadFromStream(m_pDoc, stream);
    }
    if (m_bStream)
    {
        return LoadFromUrl(name);
    }
    return m_bAsync ? LoadAsync(m_pDoc, name) : LoadSync(m_pDoc, name);
}

HRESULT QuonXml::Save(const CString& fileName)
{
    return fileName.IsEmpty() ? S_OK : SaveDocument(m_pDoc, fileName);
}

HRESULT QuonXml::LoadSync(const IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    MSXML2::PutAsync(document, VARIANT_FALSE);
    // A file that cannot be loaded is no failure and is not reported.
    return MSXML2::Load(document, _variant_t(fileName)) == VARIANT_TRUE ? CheckParseError(document) : S_OK;
}

HRESULT QuonXml::LoadAsync(const IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    MSXML2::PutAsync(document, VARIANT_TRUE);
    if (MSXML2::Load(document, _variant_t(fileName)) != VARIANT_TRUE)
    {
        return S_OK;
    }
    WaitUntilLoaded(document);
    return CheckParseError(document);
}

HRESULT QuonXml::LoadFromStream(const IXMLDOMDocumentPtr& document, IStream* stream)
{
    IPersistStreamInitPtr persist;
    if (FAILED(QueryPersist(document, persist)))
    {
        return S_OK;
    }
    const HRESULT result = persist->Load(stream);
    if (FAILED(result))
    {
        return result;
    }
    WaitUntilLoaded(document);
    return CheckParseError(document);
}

HRESULT QuonXml::LoadFromUrl(const wchar_t* fileName)
{
    // Loading from the resolved name is not there yet.
    static_cast<void>(ResolveUrl(fileName));
    return E_FAIL;
}

HRESULT QuonXml::SaveDocument(const IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    return MSXML2::Save(document, _variant_t(fileName));
}

void QuonXml::WaitUntilLoaded(const IXMLDOMDocumentPtr& document)
{
    while (GetReadyState(document) != kReadyStateComplete)
    {
        DispatchOneMessage();
    }
    MSG message = {};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE))
    {
        DispatchOneMessage();
    }
}

HRESULT QuonXml::CheckParseError(const IXMLDOMDocumentPtr& document)
{
    const IXMLDOMParseErrorPtr error = GetParseError(document);
    const HRESULT code = GetErrorCode(error);
    if (code != 0)
    {
        ReportParseError(error);
    }
    return code;
}

void QuonXml::ReportParseError(const IXMLDOMParseErrorPtr& error)
{
    const long line = GetLine(error);
    const long position = GetLinePosition(error);
    const _bstr_t reason = GetReason(error);
    const _bstr_t url = GetUrl(error);
    // The texts go through the ANSI code page on their way: characters that it lacks become question marks.
    CString caption;
    caption.Format(L"%S", Narrow(reason));
    CString text;
    if (line > 0)
    {
        text.Format(L"Error on line %d, position %d in \"%S\".\n", line, position, Narrow(url));
    }
    ::MessageBoxW(nullptr, text, caption, MB_OK);
}

HRESULT QuonXml::SaveToMemory(const IXMLDOMDocumentPtr& document, unsigned char*& buffer, unsigned long& size)
{
    IStreamPtr stream;
    HRESULT result = ::CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    if (FAILED(result))
    {
        return result;
    }
    IPersistStreamInitPtr persist;
    result = QueryPersist(document, persist);
    if (FAILED(result))
    {
        return result;
    }
    result = persist->Save(stream, TRUE);
    if (FAILED(result))
    {
        return result;
    }
    ULARGE_INTEGER end = {};
    result = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_CUR, &end);
    if (FAILED(result))
    {
        return result;
    }
    size = end.LowPart;
    buffer = new (std::nothrow) unsigned char[size];
    return buffer == nullptr ? E_OUTOFMEMORY : CopyStreamMemory(stream, buffer, size);
}

HRESULT QuonXml::LoadFromMemory(const IXMLDOMDocumentPtr& document, const unsigned char* buffer, unsigned long size)
{
    IStreamPtr stream;
    HRESULT result = ::CreateStreamOnHGlobal(nullptr, TRUE, &stream);
    if (FAILED(result))
    {
        return result;
    }
    result = stream->Write(buffer, size, nullptr);
    if (FAILED(result))
    {
        return result;
    }
    result = stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    if (FAILED(result))
    {
        return result;
    }
    IPersistStreamInitPtr persist;
    result = QueryPersist(document, persist);
    return FAILED(result) ? result : persist->Load(stream);
}

bool QuonXml::WalkTree(QuonXmlVisitor visitor, __int64 user)
{
    // A document that cannot be asked, for whatever reason, is nothing to walk: no failure is raised here.
    IXMLDOMNodePtr node;
    if (visitor == nullptr || !m_pDoc ||
        FAILED(m_pDoc->QueryInterface(__uuidof(IXMLDOMNode), reinterpret_cast<void**>(&node))))
    {
        return true;
    }
    return WalkNode(node, 0, visitor, user);
}

bool QuonXml::WalkNode(IXMLDOMNodePtr node, int depth, QuonXmlVisitor visitor, __int64 user)
{
    if (!node)
    {
        return true;
    }
    bool goOn = visitor(NameOf(node), node, user);
    const IXMLDOMNamedNodeMapPtr attributes = goOn ? GetAttributes(node) : IXMLDOMNamedNodeMapPtr();
    while (goOn && attributes)
    {
        IXMLDOMNodePtr attribute = NextNode(attributes);
        if (!attribute)
        {
            break;
        }
        goOn = visitor(NameOf(attribute), attribute, user);
    }
    for (IXMLDOMNodePtr child = goOn ? GetFirstChild(node) : IXMLDOMNodePtr(); goOn && child;
         child = GetNextSibling(child))
    {
        goOn = WalkNode(child, depth + 1, visitor, user);
    }
    return goOn;
}
