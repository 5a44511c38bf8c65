// A hand-written equivalent of what `#import` of the platform's type library generates, as far as a program of a user
// takes it: the same namespace, interfaces, smart pointers, wrapper methods and properties. It stands for the import
// where the compiler has none. It shares nothing with the library's own headers.
#pragma once

#include <afx.h>

#include <ole2.h>
#include <comdef.h>

namespace MSXML2
{

#if defined(_MSC_VER)
struct __declspec(uuid("2933bf80-7b36-11d2-b20e-00c04f983e60")) IXMLDOMNode;
struct __declspec(uuid("2933bf82-7b36-11d2-b20e-00c04f983e60")) IXMLDOMNodeList;
struct __declspec(uuid("2933bf83-7b36-11d2-b20e-00c04f983e60")) IXMLDOMNamedNodeMap;
struct __declspec(uuid("2933bf86-7b36-11d2-b20e-00c04f983e60")) IXMLDOMElement;
struct __declspec(uuid("3efaa426-272f-11d2-836f-0000f87a7782")) IXMLDOMParseError;
struct __declspec(uuid("2933bf81-7b36-11d2-b20e-00c04f983e60")) IXMLDOMDocument;
struct __declspec(uuid("f6d90f11-9c73-11d3-b32e-00c04f990bb4")) DOMDocument;
#else
struct IXMLDOMNode;
struct IXMLDOMNodeList;
struct IXMLDOMNamedNodeMap;
struct IXMLDOMElement;
struct IXMLDOMParseError;
struct IXMLDOMDocument;
struct DOMDocument;
#endif
struct IXMLDOMAttribute;
struct IXMLDOMCDATASection;
struct IXMLDOMComment;
struct IXMLDOMDocumentFragment;
struct IXMLDOMDocumentType;
struct IXMLDOMEntityReference;
struct IXMLDOMImplementation;
struct IXMLDOMProcessingInstruction;
struct IXMLDOMText;

}  // namespace MSXML2

#if !defined(_MSC_VER)
__CRT_UUID_DECL(MSXML2::IXMLDOMNode, 0x2933bf80, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(MSXML2::IXMLDOMNodeList, 0x2933bf82, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(MSXML2::IXMLDOMNamedNodeMap, 0x2933bf83, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(MSXML2::IXMLDOMElement, 0x2933bf86, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(MSXML2::IXMLDOMParseError, 0x3efaa426, 0x272f, 0x11d2, 0x83, 0x6f, 0x00, 0x00, 0xf8, 0x7a, 0x77, 0x82)
__CRT_UUID_DECL(MSXML2::IXMLDOMDocument, 0x2933bf81, 0x7b36, 0x11d2, 0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60)
__CRT_UUID_DECL(MSXML2::DOMDocument, 0xf6d90f11, 0x9c73, 0x11d3, 0xb3, 0x2e, 0x00, 0xc0, 0x4f, 0x99, 0x0b, 0xb4)
#endif

namespace MSXML2
{

_COM_SMARTPTR_TYPEDEF(IXMLDOMNode, __uuidof(IXMLDOMNode));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNodeList, __uuidof(IXMLDOMNodeList));
_COM_SMARTPTR_TYPEDEF(IXMLDOMNamedNodeMap, __uuidof(IXMLDOMNamedNodeMap));
_COM_SMARTPTR_TYPEDEF(IXMLDOMElement, __uuidof(IXMLDOMElement));
_COM_SMARTPTR_TYPEDEF(IXMLDOMParseError, __uuidof(IXMLDOMParseError));
_COM_SMARTPTR_TYPEDEF(IXMLDOMDocument, __uuidof(IXMLDOMDocument));

enum tagDOMNodeType
{
    NODE_INVALID = 0,
    NODE_ELEMENT = 1,
    NODE_ATTRIBUTE = 2,
    NODE_TEXT = 3
};
typedef enum tagDOMNodeType DOMNodeType;

struct IXMLDOMNode : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = GetnodeName)) _bstr_t nodeName;
    __declspec(property(get = GetchildNodes)) IXMLDOMNodeListPtr childNodes;
    __declspec(property(get = GetfirstChild)) IXMLDOMNodePtr firstChild;
    __declspec(property(get = Getattributes)) IXMLDOMNamedNodeMapPtr attributes;
    __declspec(property(get = Gettext, put = Puttext)) _bstr_t text;
#endif
    _bstr_t GetnodeName();
    IXMLDOMNodeListPtr GetchildNodes();
    IXMLDOMNodePtr GetfirstChild();
    IXMLDOMNamedNodeMapPtr Getattributes();
    IXMLDOMNodePtr appendChild(IXMLDOMNode* newChild);
    _bstr_t Gettext();
    void Puttext(_bstr_t text);
    IXMLDOMNodePtr selectSingleNode(_bstr_t queryString);
    virtual HRESULT STDMETHODCALLTYPE get_nodeName(BSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_nodeValue(VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_nodeValue(VARIANT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_nodeType(DOMNodeType* type) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_parentNode(IXMLDOMNode** parent) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_childNodes(IXMLDOMNodeList** childList) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_firstChild(IXMLDOMNode** firstChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_lastChild(IXMLDOMNode** lastChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_previousSibling(IXMLDOMNode** previousSibling) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_nextSibling(IXMLDOMNode** nextSibling) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_attributes(IXMLDOMNamedNodeMap** attributeMap) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_insertBefore(IXMLDOMNode* newChild, VARIANT refChild,
                                                       IXMLDOMNode** outNewChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_replaceChild(IXMLDOMNode* newChild, IXMLDOMNode* oldChild,
                                                       IXMLDOMNode** outOldChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_removeChild(IXMLDOMNode* childNode, IXMLDOMNode** oldChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_appendChild(IXMLDOMNode* newChild, IXMLDOMNode** outNewChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_hasChildNodes(VARIANT_BOOL* hasChild) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_ownerDocument(IXMLDOMDocument** document) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_cloneNode(VARIANT_BOOL deep, IXMLDOMNode** cloneRoot) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_nodeTypeString(BSTR* nodeType) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_text(BSTR* text) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_text(BSTR text) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_specified(VARIANT_BOOL* isSpecified) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_definition(IXMLDOMNode** definitionNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_nodeTypedValue(VARIANT* typedValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_nodeTypedValue(VARIANT typedValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_dataType(VARIANT* dataTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_dataType(BSTR dataTypeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_xml(BSTR* xmlString) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_transformNode(IXMLDOMNode* stylesheet, BSTR* xmlString) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_selectNodes(BSTR queryString, IXMLDOMNodeList** resultList) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_selectSingleNode(BSTR queryString, IXMLDOMNode** resultNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_parsed(VARIANT_BOOL* isParsed) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_namespaceURI(BSTR* namespaceURI) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_prefix(BSTR* prefixString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_baseName(BSTR* nameString) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_transformNodeToObject(IXMLDOMNode* stylesheet, VARIANT outputObject) = 0;
};

struct IXMLDOMNodeList : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = Getlength)) long length;
#endif
    long Getlength();
    IXMLDOMNodePtr nextNode();
    virtual HRESULT STDMETHODCALLTYPE get_item(long index, IXMLDOMNode** listItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_length(long* listLength) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_nextNode(IXMLDOMNode** nextItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** ppUnk) = 0;
};

struct IXMLDOMNamedNodeMap : IDispatch
{
#if defined(_MSC_VER)
#endif
    IXMLDOMNodePtr getNamedItem(_bstr_t name);
    virtual HRESULT STDMETHODCALLTYPE raw_getNamedItem(BSTR name, IXMLDOMNode** namedItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_setNamedItem(IXMLDOMNode* newItem, IXMLDOMNode** nameItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_removeNamedItem(BSTR name, IXMLDOMNode** namedItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_item(long index, IXMLDOMNode** listItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_length(long* listLength) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getQualifiedItem(BSTR baseName, BSTR namespaceURI,
                                                           IXMLDOMNode** qualifiedItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_removeQualifiedItem(BSTR baseName, BSTR namespaceURI,
                                                              IXMLDOMNode** qualifiedItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_nextNode(IXMLDOMNode** nextItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** ppUnk) = 0;
};

struct IXMLDOMElement : IXMLDOMNode
{
#if defined(_MSC_VER)
#endif
    _variant_t getAttribute(_bstr_t name);
    HRESULT setAttribute(_bstr_t name, const _variant_t& value);
    virtual HRESULT STDMETHODCALLTYPE get_tagName(BSTR* tagName) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getAttribute(BSTR name, VARIANT* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_setAttribute(BSTR name, VARIANT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_removeAttribute(BSTR name) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getAttributeNode(BSTR name, IXMLDOMAttribute** attributeNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_setAttributeNode(IXMLDOMAttribute* attribute,
                                                           IXMLDOMAttribute** attributeNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_removeAttributeNode(IXMLDOMAttribute* attribute,
                                                              IXMLDOMAttribute** attributeNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getElementsByTagName(BSTR tagName, IXMLDOMNodeList** resultList) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_normalize() = 0;
};

struct IXMLDOMParseError : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = GeterrorCode)) long errorCode;
#endif
    long GeterrorCode();
    virtual HRESULT STDMETHODCALLTYPE get_errorCode(long* errorCode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_url(BSTR* urlString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_reason(BSTR* reasonString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_srcText(BSTR* sourceString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_line(long* lineNumber) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_linepos(long* linePosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_filepos(long* filePosition) = 0;
};

struct IXMLDOMDocument : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = GetdocumentElement)) IXMLDOMElementPtr documentElement;
    __declspec(property(get = GetparseError)) IXMLDOMParseErrorPtr parseError;
    __declspec(property(get = Getasync, put = Putasync)) VARIANT_BOOL async;
#endif
    IXMLDOMElementPtr GetdocumentElement();
    IXMLDOMElementPtr createElement(_bstr_t tagName);
    VARIANT_BOOL load(const _variant_t& xmlSource);
    IXMLDOMParseErrorPtr GetparseError();
    VARIANT_BOOL Getasync();
    void Putasync(VARIANT_BOOL isAsync);
    VARIANT_BOOL loadXML(_bstr_t xml);
    virtual HRESULT STDMETHODCALLTYPE get_doctype(IXMLDOMDocumentType** documentType) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_implementation(IXMLDOMImplementation** impl) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_documentElement(IXMLDOMElement** element) = 0;
    virtual HRESULT STDMETHODCALLTYPE putref_documentElement(IXMLDOMElement* element) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createElement(BSTR tagName, IXMLDOMElement** element) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createDocumentFragment(IXMLDOMDocumentFragment** docFrag) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createTextNode(BSTR data, IXMLDOMText** text) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createComment(BSTR data, IXMLDOMComment** comment) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createCDATASection(BSTR data, IXMLDOMCDATASection** cdata) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createProcessingInstruction(BSTR target, BSTR data,
                                                                      IXMLDOMProcessingInstruction** instruction) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createAttribute(BSTR name, IXMLDOMAttribute** attribute) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createEntityReference(BSTR name, IXMLDOMEntityReference** entityRef) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getElementsByTagName(BSTR tagName, IXMLDOMNodeList** resultList) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createNode(VARIANT type, BSTR name, BSTR namespaceURI,
                                                     IXMLDOMNode** node) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_nodeFromID(BSTR idString, IXMLDOMNode** node) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_load(VARIANT xmlSource, VARIANT_BOOL* isSuccessful) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_readyState(long* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_parseError(IXMLDOMParseError** error) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_url(BSTR* urlString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_async(VARIANT_BOOL* isAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_async(VARIANT_BOOL isAsync) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_abort() = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_loadXML(BSTR xml, VARIANT_BOOL* isSuccessful) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_save(VARIANT destination) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_validateOnParse(VARIANT_BOOL* isValidating) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_validateOnParse(VARIANT_BOOL isValidating) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_resolveExternals(VARIANT_BOOL* isResolving) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_resolveExternals(VARIANT_BOOL isResolving) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_preserveWhiteSpace(VARIANT_BOOL* isPreserving) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_preserveWhiteSpace(VARIANT_BOOL isPreserving) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_onreadystatechange(VARIANT readystatechangeSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ondataavailable(VARIANT ondataavailableSink) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_ontransformnode(VARIANT ontransformnodeSink) = 0;
};

inline HRESULT RaiseFailed(HRESULT result)
{
    if (FAILED(result))
    {
        _com_issue_error(result);
    }
    return result;
}

inline _bstr_t IXMLDOMNode::GetnodeName()
{
    BSTR result = {};
    RaiseFailed(get_nodeName(&result));
    return _bstr_t(result, false);
}

inline IXMLDOMNodeListPtr IXMLDOMNode::GetchildNodes()
{
    IXMLDOMNodeList* result = nullptr;
    RaiseFailed(get_childNodes(&result));
    return IXMLDOMNodeListPtr(result, false);
}

inline IXMLDOMNodePtr IXMLDOMNode::GetfirstChild()
{
    IXMLDOMNode* result = nullptr;
    RaiseFailed(get_firstChild(&result));
    return IXMLDOMNodePtr(result, false);
}

inline IXMLDOMNamedNodeMapPtr IXMLDOMNode::Getattributes()
{
    IXMLDOMNamedNodeMap* result = nullptr;
    RaiseFailed(get_attributes(&result));
    return IXMLDOMNamedNodeMapPtr(result, false);
}

inline IXMLDOMNodePtr IXMLDOMNode::appendChild(IXMLDOMNode* newChild)
{
    IXMLDOMNode* result = nullptr;
    RaiseFailed(raw_appendChild(newChild, &result));
    return IXMLDOMNodePtr(result, false);
}

inline _bstr_t IXMLDOMNode::Gettext()
{
    BSTR result = {};
    RaiseFailed(get_text(&result));
    return _bstr_t(result, false);
}

inline void IXMLDOMNode::Puttext(_bstr_t text)
{
    RaiseFailed(put_text(text));
}

inline IXMLDOMNodePtr IXMLDOMNode::selectSingleNode(_bstr_t queryString)
{
    IXMLDOMNode* result = nullptr;
    RaiseFailed(raw_selectSingleNode(queryString, &result));
    return IXMLDOMNodePtr(result, false);
}

inline long IXMLDOMNodeList::Getlength()
{
    long result = {};
    RaiseFailed(get_length(&result));
    return result;
}

inline IXMLDOMNodePtr IXMLDOMNodeList::nextNode()
{
    IXMLDOMNode* result = nullptr;
    RaiseFailed(raw_nextNode(&result));
    return IXMLDOMNodePtr(result, false);
}

inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::getNamedItem(_bstr_t name)
{
    IXMLDOMNode* result = nullptr;
    RaiseFailed(raw_getNamedItem(name, &result));
    return IXMLDOMNodePtr(result, false);
}

inline _variant_t IXMLDOMElement::getAttribute(_bstr_t name)
{
    _variant_t result;
    RaiseFailed(raw_getAttribute(name, &result));
    return result;
}

inline HRESULT IXMLDOMElement::setAttribute(_bstr_t name, const _variant_t& value)
{
    return RaiseFailed(raw_setAttribute(name, value));
}

inline long IXMLDOMParseError::GeterrorCode()
{
    long result = {};
    RaiseFailed(get_errorCode(&result));
    return result;
}

inline IXMLDOMElementPtr IXMLDOMDocument::GetdocumentElement()
{
    IXMLDOMElement* result = nullptr;
    RaiseFailed(get_documentElement(&result));
    return IXMLDOMElementPtr(result, false);
}

inline IXMLDOMElementPtr IXMLDOMDocument::createElement(_bstr_t tagName)
{
    IXMLDOMElement* result = nullptr;
    RaiseFailed(raw_createElement(tagName, &result));
    return IXMLDOMElementPtr(result, false);
}

inline VARIANT_BOOL IXMLDOMDocument::load(const _variant_t& xmlSource)
{
    VARIANT_BOOL result = {};
    RaiseFailed(raw_load(xmlSource, &result));
    return result;
}

inline IXMLDOMParseErrorPtr IXMLDOMDocument::GetparseError()
{
    IXMLDOMParseError* result = nullptr;
    RaiseFailed(get_parseError(&result));
    return IXMLDOMParseErrorPtr(result, false);
}

inline VARIANT_BOOL IXMLDOMDocument::Getasync()
{
    VARIANT_BOOL result = {};
    RaiseFailed(get_async(&result));
    return result;
}

inline void IXMLDOMDocument::Putasync(VARIANT_BOOL isAsync)
{
    RaiseFailed(put_async(isAsync));
}

inline VARIANT_BOOL IXMLDOMDocument::loadXML(_bstr_t xml)
{
    VARIANT_BOOL result = {};
    RaiseFailed(raw_loadXML(xml, &result));
    return result;
}

}  // namespace MSXML2
