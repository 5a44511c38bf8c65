/// @file
/// The DOM's interfaces of documents, lists, maps and parse errors. Include "xml/Msxml2.h", which says how they are
/// read.
#pragma once

#include <afx.h>

#include "xml/Msxml2Nodes.h"

// Left out of the reference pages: the platform documents each method.
/// @cond
namespace MSXML2
{

// NOLINTBEGIN(bugprone-reserved-identifier): the platform names a method "_newEnum".

/// The features of the parser.
struct IXMLDOMImplementation : IDispatch
{
    VARIANT_BOOL hasFeature(_bstr_t feature, _bstr_t version);

    virtual HRESULT STDMETHODCALLTYPE raw_hasFeature(BSTR feature, BSTR version, VARIANT_BOOL* hasFeature) = 0;
};

/// A list of nodes with a cursor.
struct IXMLDOMNodeList : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = Getitem)) IXMLDOMNodePtr item[];
    __declspec(property(get = Getlength)) long length;
    __declspec(property(get = Get_newEnum)) IUnknownPtr _newEnum;
#endif

    IXMLDOMNodePtr Getitem(long index);
    long Getlength();
    IXMLDOMNodePtr nextNode();
    HRESULT reset();
    IUnknownPtr Get_newEnum();

    virtual HRESULT STDMETHODCALLTYPE get_item(long index, IXMLDOMNode** listItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_length(long* listLength) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_nextNode(IXMLDOMNode** nextItem) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_reset() = 0;
    virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) = 0;
};

/// The attributes of an element by name, with a cursor.
struct IXMLDOMNamedNodeMap : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = Getitem)) IXMLDOMNodePtr item[];
    __declspec(property(get = Getlength)) long length;
    __declspec(property(get = Get_newEnum)) IUnknownPtr _newEnum;
#endif

    IXMLDOMNodePtr getNamedItem(_bstr_t name);
    IXMLDOMNodePtr setNamedItem(IXMLDOMNode* newItem);
    IXMLDOMNodePtr removeNamedItem(_bstr_t name);
    IXMLDOMNodePtr Getitem(long index);
    long Getlength();
    IXMLDOMNodePtr getQualifiedItem(_bstr_t baseName, _bstr_t namespaceURI);
    IXMLDOMNodePtr removeQualifiedItem(_bstr_t baseName, _bstr_t namespaceURI);
    IXMLDOMNodePtr nextNode();
    HRESULT reset();
    IUnknownPtr Get_newEnum();

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
    virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) = 0;
};

/// The error of the last load.
struct IXMLDOMParseError : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = GeterrorCode)) long errorCode;
    __declspec(property(get = Geturl)) _bstr_t url;
    __declspec(property(get = Getreason)) _bstr_t reason;
    __declspec(property(get = GetsrcText)) _bstr_t srcText;
    __declspec(property(get = Getline)) long line;
    __declspec(property(get = Getlinepos)) long linepos;
    __declspec(property(get = Getfilepos)) long filepos;
#endif

    long GeterrorCode();
    _bstr_t Geturl();
    _bstr_t Getreason();
    _bstr_t GetsrcText();
    long Getline();
    long Getlinepos();
    long Getfilepos();

    virtual HRESULT STDMETHODCALLTYPE get_errorCode(long* errorCode) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_url(BSTR* urlString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_reason(BSTR* reasonString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_srcText(BSTR* sourceString) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_line(long* lineNumber) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_linepos(long* linePosition) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_filepos(long* filePosition) = 0;
};

/// Schemas by namespace.
struct IXMLDOMSchemaCollection : IDispatch
{
#if defined(_MSC_VER)
    __declspec(property(get = Getlength)) long length;
    __declspec(property(get = GetnamespaceURI)) _bstr_t namespaceURI[];
    __declspec(property(get = Get_newEnum)) IUnknownPtr _newEnum;
#endif

    HRESULT add(_bstr_t namespaceURI, const _variant_t& schema);
    IXMLDOMNodePtr get(_bstr_t namespaceURI);
    HRESULT remove(_bstr_t namespaceURI);
    long Getlength();
    _bstr_t GetnamespaceURI(long index);
    HRESULT addCollection(IXMLDOMSchemaCollection* otherCollection);
    IUnknownPtr Get_newEnum();

    virtual HRESULT STDMETHODCALLTYPE raw_add(BSTR namespaceURI, VARIANT schema) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_get(BSTR namespaceURI, IXMLDOMNode** schemaNode) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_remove(BSTR namespaceURI) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_length(long* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_namespaceURI(long index, BSTR* length) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_addCollection(IXMLDOMSchemaCollection* otherCollection) = 0;
    virtual HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown** enumerator) = 0;
};

/// A document.
struct IXMLDOMDocument : IXMLDOMNode
{
#if defined(_MSC_VER)
    __declspec(property(get = Getdoctype)) IXMLDOMDocumentTypePtr doctype;
    __declspec(property(get = Getimplementation)) IXMLDOMImplementationPtr implementation;
    __declspec(property(get = GetdocumentElement, put = PutRefdocumentElement)) IXMLDOMElementPtr documentElement;
    __declspec(property(get = GetreadyState)) long readyState;
    __declspec(property(get = GetparseError)) IXMLDOMParseErrorPtr parseError;
    __declspec(property(get = Geturl)) _bstr_t url;
    __declspec(property(get = Getasync, put = Putasync)) VARIANT_BOOL async;
    __declspec(property(get = GetvalidateOnParse, put = PutvalidateOnParse)) VARIANT_BOOL validateOnParse;
    __declspec(property(get = GetresolveExternals, put = PutresolveExternals)) VARIANT_BOOL resolveExternals;
    __declspec(property(get = GetpreserveWhiteSpace, put = PutpreserveWhiteSpace)) VARIANT_BOOL preserveWhiteSpace;
    __declspec(property(put = Putonreadystatechange)) _variant_t onreadystatechange;
    __declspec(property(put = Putondataavailable)) _variant_t ondataavailable;
    __declspec(property(put = Putontransformnode)) _variant_t ontransformnode;
#endif

    IXMLDOMDocumentTypePtr Getdoctype();
    IXMLDOMImplementationPtr Getimplementation();
    IXMLDOMElementPtr GetdocumentElement();
    void PutRefdocumentElement(IXMLDOMElement* element);
    IXMLDOMElementPtr createElement(_bstr_t tagName);
    IXMLDOMDocumentFragmentPtr createDocumentFragment();
    IXMLDOMTextPtr createTextNode(_bstr_t data);
    IXMLDOMCommentPtr createComment(_bstr_t data);
    IXMLDOMCDATASectionPtr createCDATASection(_bstr_t data);
    IXMLDOMProcessingInstructionPtr createProcessingInstruction(_bstr_t target, _bstr_t data);
    IXMLDOMAttributePtr createAttribute(_bstr_t name);
    IXMLDOMEntityReferencePtr createEntityReference(_bstr_t name);
    IXMLDOMNodeListPtr getElementsByTagName(_bstr_t tagName);
    IXMLDOMNodePtr createNode(const _variant_t& type, _bstr_t name, _bstr_t namespaceURI);
    IXMLDOMNodePtr nodeFromID(_bstr_t idString);
    VARIANT_BOOL load(const _variant_t& xmlSource);
    long GetreadyState();
    IXMLDOMParseErrorPtr GetparseError();
    _bstr_t Geturl();
    VARIANT_BOOL Getasync();
    void Putasync(VARIANT_BOOL isAsync);
    HRESULT abort();
    VARIANT_BOOL loadXML(_bstr_t xml);
    HRESULT save(const _variant_t& destination);
    VARIANT_BOOL GetvalidateOnParse();
    void PutvalidateOnParse(VARIANT_BOOL isValidating);
    VARIANT_BOOL GetresolveExternals();
    void PutresolveExternals(VARIANT_BOOL isResolving);
    VARIANT_BOOL GetpreserveWhiteSpace();
    void PutpreserveWhiteSpace(VARIANT_BOOL isPreserving);
    void Putonreadystatechange(const _variant_t& readystatechangeSink);
    void Putondataavailable(const _variant_t& ondataavailableSink);
    void Putontransformnode(const _variant_t& ontransformnodeSink);

    virtual HRESULT STDMETHODCALLTYPE get_doctype(IXMLDOMDocumentType** documentType) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_implementation(IXMLDOMImplementation** implementation) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_documentElement(IXMLDOMElement** element) = 0;
    virtual HRESULT STDMETHODCALLTYPE putref_documentElement(IXMLDOMElement* element) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createElement(BSTR tagName, IXMLDOMElement** element) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_createDocumentFragment(IXMLDOMDocumentFragment** fragment) = 0;
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

/// A document with schemas and properties of its parser.
struct IXMLDOMDocument2 : IXMLDOMDocument
{
#if defined(_MSC_VER)
    __declspec(property(get = Getnamespaces)) IXMLDOMSchemaCollectionPtr namespaces;
    __declspec(property(get = Getschemas, put = PutRefschemas)) _variant_t schemas;
#endif

    IXMLDOMSchemaCollectionPtr Getnamespaces();
    _variant_t Getschemas();
    void PutRefschemas(const _variant_t& otherCollection);
    IXMLDOMParseErrorPtr validate();
    HRESULT setProperty(_bstr_t name, const _variant_t& value);
    _variant_t getProperty(_bstr_t name);

    virtual HRESULT STDMETHODCALLTYPE get_namespaces(IXMLDOMSchemaCollection** namespaceCollection) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_schemas(VARIANT* otherCollection) = 0;
    virtual HRESULT STDMETHODCALLTYPE putref_schemas(VARIANT otherCollection) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_validate(IXMLDOMParseError** error) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_setProperty(BSTR name, VARIANT value) = 0;
    virtual HRESULT STDMETHODCALLTYPE raw_getProperty(BSTR name, VARIANT* value) = 0;
};

// NOLINTEND(bugprone-reserved-identifier)

}  // namespace MSXML2
/// @endcond
