#include "xml/QuonXml.h"

#include "base/MemoryInternal.h"
#include "xml/DomTextInternal.h"
#include "xml/QuonFileStream.h"

#include <cstring>
#include <cwchar>
#include <memory>
#include <vector>

namespace
{

using xml_internal::Characters;
using xml_internal::ToBstr;

constexpr long kReadyStateComplete = 4;
constexpr int kPathCharacters = 260;

// The document's stream interface, empty when it has none.
_COM_SMARTPTR_TYPEDEF(IPersistStreamInit, __uuidof(IPersistStreamInit));
_COM_SMARTPTR_TYPEDEF(IStream, __uuidof(IStream));

HRESULT QueryPersist(const MSXML2::IXMLDOMDocumentPtr& document, IPersistStreamInitPtr& persist)
{
    return document->QueryInterface(__uuidof(IPersistStreamInit), reinterpret_cast<void**>(&persist));
}

CString ResolveUrl(const wchar_t* name)
{
    if (name == nullptr)
    {
        return CString();
    }
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
        const HRESULT failure = HRESULT_FROM_WIN32(::GetLastError());
        return FAILED(failure) ? failure : E_FAIL;
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

// Returns the text in the ANSI code page, valid as long as `text`. A text that the parser does not have is empty.
const char* Narrow(const _bstr_t& text)
{
    const char* const narrow = static_cast<const char*>(text);
    return narrow == nullptr ? "" : narrow;
}

// Calls the visitor for a node and then for its attributes. @return false when it stopped the walk
bool VisitNode(MSXML2::IXMLDOMNodePtr& node, QuonXmlVisitor visitor, __int64 user)
{
    bool goOn = visitor(Characters(node->GetnodeName()), node, user);
    const MSXML2::IXMLDOMNamedNodeMapPtr attributes = goOn ? node->Getattributes() : MSXML2::IXMLDOMNamedNodeMapPtr();
    while (goOn && attributes)
    {
        MSXML2::IXMLDOMNodePtr attribute = attributes->nextNode();
        if (!attribute)
        {
            break;
        }
        goOn = visitor(Characters(attribute->GetnodeName()), attribute, user);
    }
    return goOn;
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

MSXML2::IXMLDOMDocumentPtr QuonXml::GetDocument() const
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
    const _bstr_t name = ToBstr(m_strFileName);
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

HRESULT QuonXml::LoadSync(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    document->Putasync(VARIANT_FALSE);
    // A file that cannot be loaded is not a failure and is not reported.
    return document->load(_variant_t(fileName)) == VARIANT_TRUE ? CheckParseError(document) : S_OK;
}

HRESULT QuonXml::LoadAsync(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    document->Putasync(VARIANT_TRUE);
    if (document->load(_variant_t(fileName)) != VARIANT_TRUE)
    {
        return S_OK;
    }
    WaitUntilLoaded(document);
    return CheckParseError(document);
}

HRESULT QuonXml::LoadFromStream(const MSXML2::IXMLDOMDocumentPtr& document, IStream* stream)
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

HRESULT QuonXml::SaveDocument(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName)
{
    return document->save(_variant_t(fileName));
}

void QuonXml::WaitUntilLoaded(const MSXML2::IXMLDOMDocumentPtr& document)
{
    while (document->GetreadyState() != kReadyStateComplete)
    {
        DispatchOneMessage();
    }
    MSG message = {};
    while (::PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE))
    {
        DispatchOneMessage();
    }
}

HRESULT QuonXml::CheckParseError(const MSXML2::IXMLDOMDocumentPtr& document)
{
    const MSXML2::IXMLDOMParseErrorPtr error = document->GetparseError();
    const HRESULT code = error->GeterrorCode();
    if (code != 0)
    {
        ReportParseError(error);
    }
    return code;
}

void QuonXml::ReportParseError(const MSXML2::IXMLDOMParseErrorPtr& error)
{
    const long line = error->Getline();
    const long position = error->Getlinepos();
    const _bstr_t reason = error->Getreason();
    const _bstr_t url = error->Geturl();
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

HRESULT QuonXml::SaveToMemory(const MSXML2::IXMLDOMDocumentPtr& document, unsigned char*& buffer, unsigned long& size)
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
    buffer = nullptr;
    std::unique_ptr<unsigned char[]> copy;
    if (!RunsInMemory([&] { copy.reset(new unsigned char[size]); }))
    {
        return E_OUTOFMEMORY;
    }
    result = CopyStreamMemory(stream, copy.get(), size);
    if (SUCCEEDED(result))
    {
        buffer = copy.release();
    }
    return result;
}

HRESULT QuonXml::LoadFromMemory(const MSXML2::IXMLDOMDocumentPtr& document, const unsigned char* buffer,
                                unsigned long size)
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
    MSXML2::IXMLDOMNodePtr node;
    if (visitor == nullptr || !m_pDoc ||
        FAILED(m_pDoc->QueryInterface(__uuidof(MSXML2::IXMLDOMNode), reinterpret_cast<void**>(&node))))
    {
        return true;
    }
    return WalkNode(node, 0, visitor, user);
}

bool QuonXml::WalkNode(MSXML2::IXMLDOMNodePtr node, int depth, QuonXmlVisitor visitor, __int64 user)
{
    // Callers pass the level of their node; nothing depends on it.
    static_cast<void>(depth);
    if (!node || visitor == nullptr)
    {
        return true;
    }
    if (!VisitNode(node, visitor, user))
    {
        return false;
    }
    // The open nodes, outermost first, are kept here and not on the stack, which a deep document would overflow. The
    // visitor may put another node in the place of its own: the children are that one's, the sibling is the first
    // one's.
    std::vector<MSXML2::IXMLDOMNodePtr> open{node->GetfirstChild()};
    while (!open.empty())
    {
        if (!open.back())
        {
            open.pop_back();
            if (!open.empty())
            {
                open.back() = open.back()->GetnextSibling();
            }
            continue;
        }
        MSXML2::IXMLDOMNodePtr visited = open.back();
        if (!VisitNode(visited, visitor, user))
        {
            return false;
        }
        open.push_back(visited->GetfirstChild());
    }
    return true;
}
