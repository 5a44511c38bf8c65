/// @file
/// The DOM's interfaces of nodes. Include "xml/Msxml2.h", which says how they are read.
#pragma once

#include <afx.h>

#include "xml/Msxml2Types.h"

// Left out of the reference pages: the platform documents each method.
/// @cond
namespace MSXML2
{

/// A node of any kind, and what all kinds have in common.
struct IXMLDOMNode : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = GetnodeName)) _bstr_t nodeName;
    __declspec(property(get = GetnodeValue, put = PutnodeValue)) _variant_t nodeValue;
    __declspec(property(get = GetnodeType)) DOMNodeType nodeType;
    __declspec(property(get = GetparentNode)) IXMLDOMNodePtr parentNode;
    __declspec(property(get = GetchildNodes)) IXMLDOMNodeListPtr childNodes;
    __declspec(property(get = GetfirstChild)) IXMLDOMNodePtr firstChild;
    __declspec(property(get = GetlastChild)) IXMLDOMNodePtr lastChild;
    __declspec(property(get = GetpreviousSibling)) IXMLDOMNodePtr previousSibling;
    __declspec(property(get = GetnextSibling)) IXMLDOMNodePtr nextSibling;
    __declspec(property(get = Getattributes)) IXMLDOMNamedNodeMapPtr attributes;
    __declspec(property(get = GetownerDocument)) IXMLDOMDocumentPtr ownerDocument;
    __declspec(property(get = GetnodeTypeString)) _bstr_t nodeTypeString;
    __declspec(property(get = Gettext, put = Puttext)) _bstr_t text;
    __declspec(property(get = Getspecified)) VARIANT_BOOL specified;
    __declspec(property(get = Getdefinition)) IXMLDOMNodePtr definition;
    __declspec(property(get = GetnodeTypedValue, put = PutnodeTypedValue)) _variant_t nodeTypedValue;
    __declspec(property(get = GetdataType)) _variant_t dataType;
    __declspec(property(get = Getxml)) _bstr_t xml;
    __declspec(property(get = Getparsed)) VARIANT_BOOL parsed;
    __declspec(property(get = GetnamespaceURI)) _bstr_t namespaceURI;
    __declspec(property(get = Getprefix)) _bstr_t prefix;
    __declspec(property(get = GetbaseName)) _bstr_t baseName;
#endif

    _bstr_t GetnodeName();
    _variant_t GetnodeValue();
    void PutnodeValue(const _variant_t& value);
    DOMNodeType GetnodeType();
    IXMLDOMNodePtr GetparentNode();
    IXMLDOMNodeListPtr GetchildNodes();
    IXMLDOMNodePtr GetfirstChild();
    IXMLDOMNodePtr GetlastChild();
    IXMLDOMNodePtr GetpreviousSibling();
    IXMLDOMNodePtr GetnextSibling();
    IXMLDOMNamedNodeMapPtr Getattributes();
    IXMLDOMNodePtr insertBefore(IXMLDOMNode* newChild, const _variant_t& refChild);
    IXMLDOMNodePtr replaceChild(IXMLDOMNode* newChild, IXMLDOMNode* oldChild);
    IXMLDOMNodePtr removeChild(IXMLDOMNode* childNode);
    IXMLDOMNodePtr appendChild(IXMLDOMNode* newChild);
    VARIANT_BOOL hasChildNodes();
    IXMLDOMDocumentPtr GetownerDocument();
    IXMLDOMNodePtr cloneNode(VARIANT_BOOL deep);
    _bstr_t GetnodeTypeString();
    _bstr_t Gettext();
    void Puttext(_bstr_t text);
    VARIANT_BOOL Getspecified();
    IXMLDOMNodePtr Getdefinition();
    _variant_t GetnodeTypedValue();
    void PutnodeTypedValue(const _variant_t& typedValue);
    _variant_t GetdataType();
    void PutdataType(_bstr_t dataTypeName);
    _bstr_t Getxml();
    _bstr_t transformNode(IXMLDOMNode* stylesheet);
    IXMLDOMNodeListPtr selectNodes(_bstr_t queryString);
    IXMLDOMNodePtr selectSingleNode(_bstr_t queryString);
    VARIANT_BOOL Getparsed();
    _bstr_t GetnamespaceURI();
    _bstr_t Getprefix();
    _bstr_t GetbaseName();
    HRESULT transformNodeToObject(IXMLDOMNode* stylesheet, const _variant_t& outputObject);

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

/// An attribute of an element.
struct IXMLDOMAttribute : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = Getname)) _bstr_t name;
    __declspec(property(get = Getvalue, put = Putvalue)) _variant_t value;
#endif

    _bstr_t Getname();
    _variant_t Getvalue();
    void Putvalue(const _variant_t& attributeValue);

    virtual HRESULT STDMETHODCALLTYPE get_name(BSTR* attributeName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_value(VARIANT* attributeValue) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_value(VARIANT attributeValue) = 0;
};

/// An element.
struct IXMLDOMElement : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = GettagName)) _bstr_t tagName;
#endif

    _bstr_t GettagName();
    _variant_t getAttribute(_bstr_t name);
    HRESULT setAttribute(_bstr_t name, const _variant_t& value);
    HRESULT removeAttribute(_bstr_t name);
    IXMLDOMAttributePtr getAttributeNode(_bstr_t name);
    IXMLDOMAttributePtr setAttributeNode(IXMLDOMAttribute* attribute);
    IXMLDOMAttributePtr removeAttributeNode(IXMLDOMAttribute* attribute);
    IXMLDOMNodeListPtr getElementsByTagName(_bstr_t tagName);
    HRESULT normalize();

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

/// Characters, as texts, CDATA sections and comments hold them.
struct IXMLDOMCharacterData : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = Getdata, put = Putdata)) _bstr_t data;
    __declspec(property(get = Getlength)) long length;
#endif

    _bstr_t Getdata();
    void Putdata(_bstr_t data);
    long Getlength();
    _bstr_t substringData(long offset, long count);
    HRESULT appendData(_bstr_t data);
    HRESULT insertData(long offset, _bstr_t data);
    HRESULT deleteData(long offset, long count);
    HRESULT replaceData(long offset, long count, _bstr_t data);

    virtual HRESULT STDMETHODCALLTYPE get_data(BSTR* data) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_data(BSTR data) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_length(long* dataLength) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_substringData(long offset, long count, BSTR* data) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_appendData(BSTR data) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_insertData(long offset, BSTR data) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_deleteData(long offset, long count) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_replaceData(long offset, long count, BSTR data) = 0;
};

/// A text.
struct IXMLDOMText : IXMLDOMCharacterData
{
    IXMLDOMTextPtr splitText(long offset);

    virtual HRESULT STDMETHODCALLTYPE raw_splitText(long offset, IXMLDOMText** rightHandTextNode) = 0;
};

/// A CDATA section.
struct IXMLDOMCDATASection : IXMLDOMText
{
};

/// A comment.
struct IXMLDOMComment : IXMLDOMCharacterData
{
};

/// A processing instruction; the XML declaration is one too.
struct IXMLDOMProcessingInstruction : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = Gettarget)) _bstr_t target;
    __declspec(property(get = Getdata, put = Putdata)) _bstr_t data;
#endif

    _bstr_t Gettarget();
    _bstr_t Getdata();
    void Putdata(_bstr_t value);

    virtual HRESULT STDMETHODCALLTYPE get_target(BSTR* name) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_data(BSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE put_data(BSTR value) = 0;
};

/// A reference to an entity.
struct IXMLDOMEntityReference : IXMLDOMNode
{
};

/// Nodes without a document around them.
struct IXMLDOMDocumentFragment : IXMLDOMNode
{
};

/// The document type declaration.
struct IXMLDOMDocumentType : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = Getname)) _bstr_t name;
    __declspec(property(get = Getentities)) IXMLDOMNamedNodeMapPtr entities;
    __declspec(property(get = Getnotations)) IXMLDOMNamedNodeMapPtr notations;
#endif

    _bstr_t Getname();
    IXMLDOMNamedNodeMapPtr Getentities();
    IXMLDOMNamedNodeMapPtr Getnotations();

    virtual HRESULT STDMETHODCALLTYPE get_name(BSTR* rootName) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_entities(IXMLDOMNamedNodeMap** entityMap) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_notations(IXMLDOMNamedNodeMap** notationMap) = 0;
};

}  // namespace MSXML2
/// @endcond
