/// @file
/// An XML document that can be loaded and saved in several ways.
#pragma once

#include <afx.h>

#include "base/Export.h"
#include "xml/Msxml2.h"

/// Called for a node during a walk: its name, the node, and the caller's own value. @return true to go on
using QuonXmlVisitor = bool (*)(CString name, MSXML2::IXMLDOMNodePtr& node, __int64 user);

/// Owns one DOM document. It and its document belong to the thread that made it: the constructor initialises COM there
/// (single-threaded apartment) and nothing ever uninitialises it.
///
/// The members return result codes. A DOM call that fails inside them is raised as `_com_error`, an empty document
/// as `E_POINTER`. The one thing shown on screen is the box of `ReportParseError`.
class QUON_API QuonXml
{
public:
    /// Stores the arguments and creates the document. A creation that fails leaves `m_pDoc` empty and is not reported.
    QuonXml(const CString& fileName, bool bAsync, bool bStream, bool bFileStream);
    virtual ~QuonXml();
    QuonXml(const QuonXml&) = delete;
    QuonXml& operator=(const QuonXml&) = delete;

    /// Replaces the document by a new one. @return the result of its creation; the document is empty after a failure
    HRESULT CreateDocument();
    /// @return the document; empty when it could not be created
    MSXML2::IXMLDOMDocumentPtr GetDocument() const;
    /// @return the stored file name
    CString GetFileName() const;

    /// Stores the arguments and loads.
    HRESULT Load(const CString& fileName, bool bAsync, bool bStream, bool bFileStream);
    /// Loads the stored file name as the flags say: `LoadSync`, `LoadAsync` with `m_bAsync`. An empty name does
    /// nothing. With `m_bStream` and `m_bFileStream` the file is opened *for writing*, which empties it, and nothing is
    /// loaded: the result is then 1. Only when it cannot be opened is the stream given to the parser. With `m_bStream`
    /// alone this is `LoadFromUrl`.
    HRESULT Load();
    /// Saves the document; an empty name does nothing and gives 0.
    HRESULT Save(const CString& fileName);

    /// Loads and waits. @return the result of `CheckParseError`; 0 without any report when the parser cannot load the
    /// file
    HRESULT LoadSync(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName);
    /// Lets the parser load in the background and waits with `WaitUntilLoaded`. @return as `LoadSync`
    HRESULT LoadAsync(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName);
    /// @return the parser's result when it fails, otherwise that of `CheckParseError`; 0 for a document that does not
    /// load from streams
    HRESULT LoadFromStream(const MSXML2::IXMLDOMDocumentPtr& document, IStream* stream);
    /// Loads nothing yet; the name may be null. @return `E_FAIL`
    HRESULT LoadFromUrl(const wchar_t* fileName);
    /// @return the parser's success code
    HRESULT SaveDocument(const MSXML2::IXMLDOMDocumentPtr& document, const wchar_t* fileName);

    /// Dispatches the messages of this thread until the document is complete, and then those left in its queue. There
    /// is no time limit. `WM_QUIT` is swallowed.
    void WaitUntilLoaded(const MSXML2::IXMLDOMDocumentPtr& document);
    /// @return 0, or the parser's error code after `ReportParseError`
    HRESULT CheckParseError(const MSXML2::IXMLDOMDocumentPtr& document);
    /// Shows a message box with the parser's reason as caption; the text tells where, and is empty without a line.
    void ReportParseError(const MSXML2::IXMLDOMParseErrorPtr& error);

    /// Saves into a new buffer that the caller frees with array `delete`. @return `E_OUTOFMEMORY` when there is none,
    /// or the result of the step that failed. The buffer is then null and the size that of the document; a step before
    /// the size is known leaves both unchanged
    HRESULT SaveToMemory(const MSXML2::IXMLDOMDocumentPtr& document, unsigned char*& buffer, unsigned long& size);
    /// @return the parser's result; parse errors are not reported
    HRESULT LoadFromMemory(const MSXML2::IXMLDOMDocumentPtr& document, const unsigned char* buffer, unsigned long size);

    /// Calls `visitor` for every node of the document, the document node first: a node, its attributes, then its
    /// children. A null visitor gives true.
    /// @return false when the visitor stopped the walk
    bool WalkTree(QuonXmlVisitor visitor, __int64 user);
    /// Walks as `WalkTree` does, from `node` on. An empty node and a null visitor give true. `depth` is not used: the
    /// visitor does not get it. Documents may be of any depth.
    bool WalkNode(MSXML2::IXMLDOMNodePtr node, int depth, QuonXmlVisitor visitor, __int64 user);

#if defined(_MSC_VER)
#pragma warning(push)
#pragma warning(disable : 4251)  // The types of the fields come with the compiler: every client has them.
#endif
    MSXML2::IXMLDOMDocumentPtr m_pDoc;  ///< the document; empty when it could not be created
    bool m_bAsync;                      ///< load in the background and wait
    bool m_bStream;                     ///< load through a stream
    bool m_bFileStream;                 ///< with `m_bStream`: through a `QuonFileStream`
    CString m_strFileName;              ///< file or URL to load
#if defined(_MSC_VER)
#pragma warning(pop)
#endif
};
