/// @file
/// Documents as a whole: new LandXML documents, and documents loaded from and written to files.
///
/// `LoadXmlFile`, `SaveXmlFile` and `WriteXmlFile` work with a status text that becomes "OK" on success and throw it as
/// a `CString` otherwise. Nothing is shown on screen. In the other functions a failed DOM call is raised as
/// `_com_error`, an empty document as `E_POINTER`.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "base/Export.h"
#include "xml/Msxml2.h"

/// Creates an element and appends it to `parent`, or without a parent to the document.
/// @return the appended node; empty when it could not be appended
QUON_API MSXML2::IXMLDOMNodePtr AppendNewElement(const MSXML2::IXMLDOMDocumentPtr& document,
                                                 const MSXML2::IXMLDOMNodePtr& parent, const CString& name);

/// Writes the root element of a LandXML 1.0 document with its eight header attributes; date and time are the local
/// ones. The document has no XML declaration then: `WriteXmlFile` adds one.
QUON_API void CreateLandXmlDocument(const MSXML2::IXMLDOMDocumentPtr& document);

/// Returns the root element of a LandXML document; empty for any other.
QUON_API MSXML2::IXMLDOMNodePtr GetLandXmlRoot(const MSXML2::IXMLDOMDocumentPtr& document);

/// Returns whether there is a file or a folder of that name.
QUON_API bool XmlFileExists(const CString& fileName);

/// Loads a file into the document, in the background when the document is set so, which is the platform's default: the
/// function then returns before the document is complete. Call `document->Putasync(VARIANT_FALSE)` first to load it
/// whole. Catches `_com_error` and `QuonEllipsis`: they become status texts. @return true
QUON_API bool LoadXmlFile(const CString& fileName, const MSXML2::IXMLDOMDocumentPtr& document);

/// Saves the document to a file. A save that fails is raised as `_com_error`; one that ends with a success code other
/// than `S_OK` is thrown as that code's text. @return true
QUON_API bool SaveXmlFile(const CString& fileName, const MSXML2::IXMLDOMDocumentPtr& document);

/// Gives the document processing instructions and a root element and writes it to a file.
///
/// @param instructions  target, data, target, data, ...; one target must be "xml": that is the XML declaration
/// @param roots  the name of the root element, then its attributes as "name = value". Entries without "=" are skipped
/// @param overwrite  true: a file of the name is removed first. False: it is *loaded into the document* instead, and
///                   nothing is written
/// @return the root element; empty when an existing file was loaded
///
/// The text that `LoadXmlFile` or `SaveXmlFile` throws is dropped: what is thrown then is the status before that call,
/// such as "E_FAIL".
QUON_API MSXML2::IXMLDOMNodePtr WriteXmlFile(const MSXML2::IXMLDOMDocumentPtr& document, const CString& fileName,
                                             const CStringArray& instructions, const CStringArray& roots,
                                             bool overwrite);
