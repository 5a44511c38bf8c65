/// @file
/// The DOM as the library sees it: the interfaces of the platform's parser in the namespace `MSXML2`, a smart pointer
/// for each, and one wrapper per method used. It stands where a type-library import would, which only one compiler has.
///
/// A wrapper calls its method once and raises `_com_error` when the method fails or the object is empty (`E_POINTER`).
/// A success code other than `S_OK` is no failure: the result is then what the method left, most often empty.
#pragma once

#include <afx.h>
#include <ole2.h>
#include <msxml.h>

#if defined(__MINGW32__)
// These headers declare the interfaces without their identifiers. They must be attached before the smart pointers are.
__CRT_UUID_DECL(IXMLDOMNode, 0x2933bf80, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMDocument, 0x2933bf81, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMNodeList, 0x2933bf82, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMNamedNodeMap, 0x2933bf83, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMAttribute, 0x2933bf85, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMElement, 0x2933bf86, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMText, 0x2933bf87, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMProcessingInstruction, 0x2933bf89, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e,
                0x60)
__CRT_UUID_DECL(IXMLDOMCDATASection, 0x2933bf8a, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(IXMLDOMParseError, 0x3efaa426, 0x272f, 0x11d2, 0x83, 0x6f, 0x00, 0x00, 0xf8, 0x7a, 0x77, 0x82)
#endif

#include "xml/ComSupport.h"

namespace MSXML2
{

using ::DOMNodeType;
using ::IXMLDOMAttribute;
using ::IXMLDOMCDATASection;
using ::IXMLDOMDocument;
using ::IXMLDOMElement;
using ::IXMLDOMNamedNodeMap;
using ::IXMLDOMNode;
using ::IXMLDOMNodeList;
using ::IXMLDOMParseError;
using ::IXMLDOMProcessingInstruction;
using ::IXMLDOMText;

_COM_SMARTPTR_TYPEDEF(IXMLDOMAttribute, __uuidof(IXMLDOMAttribute));
_COM_SMARTPTR_TYPEDEF(IXMLDOMCDATASection, __uuidof(IXMLDOMCDATASection));
_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, __uuidof(IXMLDOMDocument));
_COM_SMARTPTR_TYPEDEF(IXMLDOMElement, __uuidof(IXMLDOMElement));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNamedNodeMap, __uuidof(IXMLDOMNamedNodeMap));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNode, __uuidof(IXMLDOMNode));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNodeList, __uuidof(IXMLDOMNodeList));
_COM_SMARTPTR_TYPEDEF(IXMLDOMParseError, __uuidof(IXMLDOMParseError));
_COM_SMARTPTR_TYPEDEF(IXMLDOMProcessingInstruction, __uuidof(IXMLDOMProcessingInstruction));
_COM_SMARTPTR_TYPEDEF(IXMLDOMText, __uuidof(IXMLDOMText));

/// The document class. A header of the platform gives the same name to another class, in the global namespace.
inline constexpr CLSID CLSID_DOMDocument = {
    0xF6D90F11, 0x9C73, 0x11D3, {0xB3, 0x2E, 0x00, 0xC0, 0x4F, 0x99, 0x0B, 0xB4}};

/// Raises a failed `result` of a method of `object` as `_com_error`. @return a result that is no failure, unchanged
template <typename Interface>
HRESULT Check(HRESULT result, Interface* object)
{
    if (FAILED(result))
    {
        _com_issue_errorex(result, object, __uuidof(Interface));
    }
    return result;
}

/// The object, unless it is empty: then raises `E_POINTER`.
template <typename Interface>
Interface* NotNull(Interface* object)
{
    if (object == nullptr)
    {
        _com_issue_error(E_POINTER);
    }
    return object;
}

// Nodes.

/// The name of a node.
inline _bstr_t GetNodeName(IXMLDOMNode* node)
{
    BSTR name = nullptr;
    Check(NotNull(node)->get_nodeName(&name), node);
    return _bstr_t(name, false);
}

/// The value of a node; empty for one that has none.
inline _variant_t GetNodeValue(IXMLDOMNode* node)
{
    _variant_t value;
    Check(NotNull(node)->get_nodeValue(&value), node);
    return value;
}

/// The value of a node in the type that its schema gives it, else the text.
inline _variant_t GetNodeTypedValue(IXMLDOMNode* node)
{
    _variant_t value;
    Check(NotNull(node)->get_nodeTypedValue(&value), node);
    return value;
}

/// The text of a node and of all below it.
inline _bstr_t GetText(IXMLDOMNode* node)
{
    BSTR text = nullptr;
    Check(NotNull(node)->get_text(&text), node);
    return _bstr_t(text, false);
}

/// The attributes; empty for a node that cannot have any.
inline IXMLDOMNamedNodeMapPtr GetAttributes(IXMLDOMNode* node)
{
    IXMLDOMNamedNodeMap* attributes = nullptr;
    Check(NotNull(node)->get_attributes(&attributes), node);
    return IXMLDOMNamedNodeMapPtr(attributes, false);
}

/// The children of a node, a live list.
inline IXMLDOMNodeListPtr GetChildNodes(IXMLDOMNode* node)
{
    IXMLDOMNodeList* children = nullptr;
    Check(NotNull(node)->get_childNodes(&children), node);
    return IXMLDOMNodeListPtr(children, false);
}

/// The first child; empty when there is none.
inline IXMLDOMNodePtr GetFirstChild(IXMLDOMNode* node)
{
    IXMLDOMNode* child = nullptr;
    Check(NotNull(node)->get_firstChild(&child), node);
    return IXMLDOMNodePtr(child, false);
}

/// The next sibling; empty when there is none.
inline IXMLDOMNodePtr GetNextSibling(IXMLDOMNode* node)
{
    IXMLDOMNode* sibling = nullptr;
    Check(NotNull(node)->get_nextSibling(&sibling), node);
    return IXMLDOMNodePtr(sibling, false);
}

/// The first node that the query finds from a node on; empty when there is none.
inline IXMLDOMNodePtr SelectSingleNode(IXMLDOMNode* node, const _bstr_t& query)
{
    IXMLDOMNode* found = nullptr;
    Check(NotNull(node)->selectSingleNode(query, &found), node);
    return IXMLDOMNodePtr(found, false);
}

/// @return the node that the parser appended
inline IXMLDOMNodePtr AppendChild(IXMLDOMNode* node, IXMLDOMNode* child)
{
    IXMLDOMNode* appended = nullptr;
    Check(NotNull(node)->appendChild(child, &appended), node);
    return IXMLDOMNodePtr(appended, false);
}

// Lists and maps.

/// The number of entries.
inline long GetLength(IXMLDOMNodeList* list)
{
    long length = 0;
    Check(NotNull(list)->get_length(&length), list);
    return length;
}

/// The next node of the list's own cursor; empty behind the last one.
inline IXMLDOMNodePtr NextNode(IXMLDOMNodeList* list)
{
    IXMLDOMNode* node = nullptr;
    Check(NotNull(list)->nextNode(&node), list);
    return IXMLDOMNodePtr(node, false);
}

/// Puts the list's own cursor before the first node.
inline void Reset(IXMLDOMNodeList* list)
{
    Check(NotNull(list)->reset(), list);
}

/// The number of entries.
inline long GetLength(IXMLDOMNamedNodeMap* map)
{
    long length = 0;
    Check(NotNull(map)->get_length(&length), map);
    return length;
}

/// The next entry of the iteration; empty at the end.
inline IXMLDOMNodePtr NextNode(IXMLDOMNamedNodeMap* map)
{
    IXMLDOMNode* node = nullptr;
    Check(NotNull(map)->nextNode(&node), map);
    return IXMLDOMNodePtr(node, false);
}

/// The attribute of that name; empty when there is none.
inline IXMLDOMNodePtr GetNamedItem(IXMLDOMNamedNodeMap* map, const _bstr_t& name)
{
    IXMLDOMNode* node = nullptr;
    Check(NotNull(map)->getNamedItem(name, &node), map);
    return IXMLDOMNodePtr(node, false);
}

// Elements.

/// Sets an attribute of an element, making it when there is none.
inline void SetAttribute(IXMLDOMElement* element, const _bstr_t& name, const _variant_t& value)
{
    Check(NotNull(element)->setAttribute(name, value), element);
}

// Documents.

/// Whether the next load returns before the document is complete.
inline void PutAsync(IXMLDOMDocument* document, VARIANT_BOOL async)
{
    Check(NotNull(document)->put_async(async), document);
}

/// @return what the parser says of the load: a document that cannot be read is no failure but VARIANT_FALSE
inline VARIANT_BOOL Load(IXMLDOMDocument* document, const _variant_t& source)
{
    VARIANT_BOOL loaded = VARIANT_FALSE;
    Check(NotNull(document)->load(source, &loaded), document);
    return loaded;
}

/// @return the success code
inline HRESULT Save(IXMLDOMDocument* document, const _variant_t& destination)
{
    return Check(NotNull(document)->save(destination), document);
}

/// How far a load has come; 4 when it is complete.
inline long GetReadyState(IXMLDOMDocument* document)
{
    long state = 0;
    Check(NotNull(document)->get_readyState(&state), document);
    return state;
}

/// What the last load found wrong.
inline IXMLDOMParseErrorPtr GetParseError(IXMLDOMDocument* document)
{
    IXMLDOMParseError* error = nullptr;
    Check(NotNull(document)->get_parseError(&error), document);
    return IXMLDOMParseErrorPtr(error, false);
}

/// Makes an element that is not in the tree yet.
inline IXMLDOMElementPtr CreateElement(IXMLDOMDocument* document, const _bstr_t& name)
{
    IXMLDOMElement* element = nullptr;
    Check(NotNull(document)->createElement(name, &element), document);
    return IXMLDOMElementPtr(element, false);
}

/// Makes a text that is not in the tree yet.
inline IXMLDOMTextPtr CreateTextNode(IXMLDOMDocument* document, const _bstr_t& text)
{
    IXMLDOMText* node = nullptr;
    Check(NotNull(document)->createTextNode(text, &node), document);
    return IXMLDOMTextPtr(node, false);
}

/// Makes a CDATA section that is not in the tree yet.
inline IXMLDOMCDATASectionPtr CreateCDataSection(IXMLDOMDocument* document, const _bstr_t& data)
{
    IXMLDOMCDATASection* section = nullptr;
    Check(NotNull(document)->createCDATASection(data, &section), document);
    return IXMLDOMCDATASectionPtr(section, false);
}

/// Makes a processing instruction that is not in the tree yet.
inline IXMLDOMProcessingInstructionPtr CreateProcessingInstruction(IXMLDOMDocument* document, const _bstr_t& target,
                                                                   const _bstr_t& data)
{
    IXMLDOMProcessingInstruction* instruction = nullptr;
    Check(NotNull(document)->createProcessingInstruction(target, data, &instruction), document);
    return IXMLDOMProcessingInstructionPtr(instruction, false);
}

/// Makes an attribute that belongs to no element yet.
inline IXMLDOMAttributePtr CreateAttribute(IXMLDOMDocument* document, const _bstr_t& name)
{
    IXMLDOMAttribute* attribute = nullptr;
    Check(NotNull(document)->createAttribute(name, &attribute), document);
    return IXMLDOMAttributePtr(attribute, false);
}

/// Makes a node of any type that is not in the tree yet.
inline IXMLDOMNodePtr CreateNode(IXMLDOMDocument* document, const _variant_t& type, const _bstr_t& name,
                                 const _bstr_t& namespaceUri)
{
    IXMLDOMNode* node = nullptr;
    Check(NotNull(document)->createNode(type, name, namespaceUri, &node), document);
    return IXMLDOMNodePtr(node, false);
}

// Parse errors.

/// The code of the error, 0 without one.
inline long GetErrorCode(IXMLDOMParseError* error)
{
    long code = 0;
    Check(NotNull(error)->get_errorCode(&code), error);
    return code;
}

/// The line of the error, counted from 1; 0 when it is not known.
inline long GetLine(IXMLDOMParseError* error)
{
    long line = 0;
    Check(NotNull(error)->get_line(&line), error);
    return line;
}

/// The place of the error in its line.
inline long GetLinePosition(IXMLDOMParseError* error)
{
    long position = 0;
    Check(NotNull(error)->get_linepos(&position), error);
    return position;
}

/// The parser's own text for the error.
inline _bstr_t GetReason(IXMLDOMParseError* error)
{
    BSTR reason = nullptr;
    Check(NotNull(error)->get_reason(&reason), error);
    return _bstr_t(reason, false);
}

/// The document in which the error was found.
inline _bstr_t GetUrl(IXMLDOMParseError* error)
{
    BSTR url = nullptr;
    Check(NotNull(error)->get_url(&url), error);
    return _bstr_t(url, false);
}

}  // namespace MSXML2
