/// @file
/// The bodies of the wrapper methods. Include "xml/Msxml2.h", which says what they do.
#pragma once

#include <afx.h>

#include "xml/Msxml2Call.h"
#include "xml/Msxml2Documents.h"
#include "xml/Msxml2Nodes.h"

// Two lines a method, whatever the formatter would make of them: they are read as a table.
// clang-format off
/// @cond

namespace MSXML2
{

// IXMLDOMNode
inline _bstr_t IXMLDOMNode::GetnodeName()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_nodeName); }
inline _variant_t IXMLDOMNode::GetnodeValue()
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMNode::get_nodeValue); }
inline void IXMLDOMNode::PutnodeValue(const _variant_t& value)
    { QuonDom_details::Do(this, &IXMLDOMNode::put_nodeValue, value); }
inline DOMNodeType IXMLDOMNode::GetnodeType()
    { return QuonDom_details::Get<DOMNodeType>(this, &IXMLDOMNode::get_nodeType); }
inline IXMLDOMNodePtr IXMLDOMNode::GetparentNode()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_parentNode); }
inline IXMLDOMNodeListPtr IXMLDOMNode::GetchildNodes()
    { return QuonDom_details::Get<IXMLDOMNodeListPtr>(this, &IXMLDOMNode::get_childNodes); }
inline IXMLDOMNodePtr IXMLDOMNode::GetfirstChild()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_firstChild); }
inline IXMLDOMNodePtr IXMLDOMNode::GetlastChild()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_lastChild); }
inline IXMLDOMNodePtr IXMLDOMNode::GetpreviousSibling()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_previousSibling); }
inline IXMLDOMNodePtr IXMLDOMNode::GetnextSibling()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_nextSibling); }
inline IXMLDOMNamedNodeMapPtr IXMLDOMNode::Getattributes()
    { return QuonDom_details::Get<IXMLDOMNamedNodeMapPtr>(this, &IXMLDOMNode::get_attributes); }
inline IXMLDOMNodePtr IXMLDOMNode::insertBefore(IXMLDOMNode* newChild, const _variant_t& refChild)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_insertBefore, newChild, refChild); }
inline IXMLDOMNodePtr IXMLDOMNode::replaceChild(IXMLDOMNode* newChild, IXMLDOMNode* oldChild)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_replaceChild, newChild, oldChild); }
inline IXMLDOMNodePtr IXMLDOMNode::removeChild(IXMLDOMNode* childNode)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_removeChild, childNode); }
inline IXMLDOMNodePtr IXMLDOMNode::appendChild(IXMLDOMNode* newChild)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_appendChild, newChild); }
inline VARIANT_BOOL IXMLDOMNode::hasChildNodes()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMNode::raw_hasChildNodes); }
inline IXMLDOMDocumentPtr IXMLDOMNode::GetownerDocument()
    { return QuonDom_details::Get<IXMLDOMDocumentPtr>(this, &IXMLDOMNode::get_ownerDocument); }
inline IXMLDOMNodePtr IXMLDOMNode::cloneNode(VARIANT_BOOL deep)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_cloneNode, deep); }
inline _bstr_t IXMLDOMNode::GetnodeTypeString()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_nodeTypeString); }
inline _bstr_t IXMLDOMNode::Gettext()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_text); }
inline void IXMLDOMNode::Puttext(_bstr_t text)
    { QuonDom_details::Do(this, &IXMLDOMNode::put_text, text); }
inline VARIANT_BOOL IXMLDOMNode::Getspecified()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMNode::get_specified); }
inline IXMLDOMNodePtr IXMLDOMNode::Getdefinition()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::get_definition); }
inline _variant_t IXMLDOMNode::GetnodeTypedValue()
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMNode::get_nodeTypedValue); }
inline void IXMLDOMNode::PutnodeTypedValue(const _variant_t& typedValue)
    { QuonDom_details::Do(this, &IXMLDOMNode::put_nodeTypedValue, typedValue); }
inline _variant_t IXMLDOMNode::GetdataType()
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMNode::get_dataType); }
inline void IXMLDOMNode::PutdataType(_bstr_t dataTypeName)
    { QuonDom_details::Do(this, &IXMLDOMNode::put_dataType, dataTypeName); }
inline _bstr_t IXMLDOMNode::Getxml()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_xml); }
inline _bstr_t IXMLDOMNode::transformNode(IXMLDOMNode* stylesheet)
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::raw_transformNode, stylesheet); }
inline IXMLDOMNodeListPtr IXMLDOMNode::selectNodes(_bstr_t queryString)
    { return QuonDom_details::Get<IXMLDOMNodeListPtr>(this, &IXMLDOMNode::raw_selectNodes, queryString); }
inline IXMLDOMNodePtr IXMLDOMNode::selectSingleNode(_bstr_t queryString)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNode::raw_selectSingleNode, queryString); }
inline VARIANT_BOOL IXMLDOMNode::Getparsed()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMNode::get_parsed); }
inline _bstr_t IXMLDOMNode::GetnamespaceURI()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_namespaceURI); }
inline _bstr_t IXMLDOMNode::Getprefix()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_prefix); }
inline _bstr_t IXMLDOMNode::GetbaseName()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMNode::get_baseName); }
inline HRESULT IXMLDOMNode::transformNodeToObject(IXMLDOMNode* stylesheet, const _variant_t& outputObject)
    { return QuonDom_details::Do(this, &IXMLDOMNode::raw_transformNodeToObject, stylesheet, outputObject); }

// IXMLDOMAttribute
inline _bstr_t IXMLDOMAttribute::Getname()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMAttribute::get_name); }
inline _variant_t IXMLDOMAttribute::Getvalue()
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMAttribute::get_value); }
inline void IXMLDOMAttribute::Putvalue(const _variant_t& attributeValue)
    { QuonDom_details::Do(this, &IXMLDOMAttribute::put_value, attributeValue); }

// IXMLDOMElement
inline _bstr_t IXMLDOMElement::GettagName()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMElement::get_tagName); }
inline _variant_t IXMLDOMElement::getAttribute(_bstr_t name)
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMElement::raw_getAttribute, name); }
inline HRESULT IXMLDOMElement::setAttribute(_bstr_t name, const _variant_t& value)
    { return QuonDom_details::Do(this, &IXMLDOMElement::raw_setAttribute, name, value); }
inline HRESULT IXMLDOMElement::removeAttribute(_bstr_t name)
    { return QuonDom_details::Do(this, &IXMLDOMElement::raw_removeAttribute, name); }
inline IXMLDOMAttributePtr IXMLDOMElement::getAttributeNode(_bstr_t name)
    { return QuonDom_details::Get<IXMLDOMAttributePtr>(this, &IXMLDOMElement::raw_getAttributeNode, name); }
inline IXMLDOMAttributePtr IXMLDOMElement::setAttributeNode(IXMLDOMAttribute* attribute)
    { return QuonDom_details::Get<IXMLDOMAttributePtr>(this, &IXMLDOMElement::raw_setAttributeNode, attribute); }
inline IXMLDOMAttributePtr IXMLDOMElement::removeAttributeNode(IXMLDOMAttribute* attribute)
    { return QuonDom_details::Get<IXMLDOMAttributePtr>(this, &IXMLDOMElement::raw_removeAttributeNode, attribute); }
inline IXMLDOMNodeListPtr IXMLDOMElement::getElementsByTagName(_bstr_t tagName)
    { return QuonDom_details::Get<IXMLDOMNodeListPtr>(this, &IXMLDOMElement::raw_getElementsByTagName, tagName); }
inline HRESULT IXMLDOMElement::normalize()
    { return QuonDom_details::Do(this, &IXMLDOMElement::raw_normalize); }

// IXMLDOMCharacterData
inline _bstr_t IXMLDOMCharacterData::Getdata()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMCharacterData::get_data); }
inline void IXMLDOMCharacterData::Putdata(_bstr_t data)
    { QuonDom_details::Do(this, &IXMLDOMCharacterData::put_data, data); }
inline long IXMLDOMCharacterData::Getlength()
    { return QuonDom_details::Get<long>(this, &IXMLDOMCharacterData::get_length); }
inline _bstr_t IXMLDOMCharacterData::substringData(long offset, long count)
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMCharacterData::raw_substringData, offset, count); }
inline HRESULT IXMLDOMCharacterData::appendData(_bstr_t data)
    { return QuonDom_details::Do(this, &IXMLDOMCharacterData::raw_appendData, data); }
inline HRESULT IXMLDOMCharacterData::insertData(long offset, _bstr_t data)
    { return QuonDom_details::Do(this, &IXMLDOMCharacterData::raw_insertData, offset, data); }
inline HRESULT IXMLDOMCharacterData::deleteData(long offset, long count)
    { return QuonDom_details::Do(this, &IXMLDOMCharacterData::raw_deleteData, offset, count); }
inline HRESULT IXMLDOMCharacterData::replaceData(long offset, long count, _bstr_t data)
    { return QuonDom_details::Do(this, &IXMLDOMCharacterData::raw_replaceData, offset, count, data); }

// IXMLDOMText
inline IXMLDOMTextPtr IXMLDOMText::splitText(long offset)
    { return QuonDom_details::Get<IXMLDOMTextPtr>(this, &IXMLDOMText::raw_splitText, offset); }

// IXMLDOMProcessingInstruction
inline _bstr_t IXMLDOMProcessingInstruction::Gettarget()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMProcessingInstruction::get_target); }
inline _bstr_t IXMLDOMProcessingInstruction::Getdata()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMProcessingInstruction::get_data); }
inline void IXMLDOMProcessingInstruction::Putdata(_bstr_t value)
    { QuonDom_details::Do(this, &IXMLDOMProcessingInstruction::put_data, value); }

// IXMLDOMDocumentType
inline _bstr_t IXMLDOMDocumentType::Getname()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMDocumentType::get_name); }
inline IXMLDOMNamedNodeMapPtr IXMLDOMDocumentType::Getentities()
    { return QuonDom_details::Get<IXMLDOMNamedNodeMapPtr>(this, &IXMLDOMDocumentType::get_entities); }
inline IXMLDOMNamedNodeMapPtr IXMLDOMDocumentType::Getnotations()
    { return QuonDom_details::Get<IXMLDOMNamedNodeMapPtr>(this, &IXMLDOMDocumentType::get_notations); }

// IXMLDOMImplementation
inline VARIANT_BOOL IXMLDOMImplementation::hasFeature(_bstr_t feature, _bstr_t version)
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMImplementation::raw_hasFeature, feature, version); }

// IXMLDOMNodeList
inline IXMLDOMNodePtr IXMLDOMNodeList::Getitem(long index)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNodeList::get_item, index); }
inline long IXMLDOMNodeList::Getlength()
    { return QuonDom_details::Get<long>(this, &IXMLDOMNodeList::get_length); }
inline IXMLDOMNodePtr IXMLDOMNodeList::nextNode()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNodeList::raw_nextNode); }
inline HRESULT IXMLDOMNodeList::reset()
    { return QuonDom_details::Do(this, &IXMLDOMNodeList::raw_reset); }
inline IUnknownPtr IXMLDOMNodeList::Get_newEnum()
    { return QuonDom_details::Get<IUnknownPtr>(this, &IXMLDOMNodeList::get__newEnum); }

// IXMLDOMNamedNodeMap
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::getNamedItem(_bstr_t name)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_getNamedItem, name); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::setNamedItem(IXMLDOMNode* newItem)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_setNamedItem, newItem); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::removeNamedItem(_bstr_t name)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_removeNamedItem, name); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::Getitem(long index)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::get_item, index); }
inline long IXMLDOMNamedNodeMap::Getlength()
    { return QuonDom_details::Get<long>(this, &IXMLDOMNamedNodeMap::get_length); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::getQualifiedItem(_bstr_t baseName, _bstr_t namespaceURI)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_getQualifiedItem, baseName,
                                                  namespaceURI); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::removeQualifiedItem(_bstr_t baseName, _bstr_t namespaceURI)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_removeQualifiedItem, baseName,
                                                  namespaceURI); }
inline IXMLDOMNodePtr IXMLDOMNamedNodeMap::nextNode()
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMNamedNodeMap::raw_nextNode); }
inline HRESULT IXMLDOMNamedNodeMap::reset()
    { return QuonDom_details::Do(this, &IXMLDOMNamedNodeMap::raw_reset); }
inline IUnknownPtr IXMLDOMNamedNodeMap::Get_newEnum()
    { return QuonDom_details::Get<IUnknownPtr>(this, &IXMLDOMNamedNodeMap::get__newEnum); }

// IXMLDOMParseError
inline long IXMLDOMParseError::GeterrorCode()
    { return QuonDom_details::Get<long>(this, &IXMLDOMParseError::get_errorCode); }
inline _bstr_t IXMLDOMParseError::Geturl()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMParseError::get_url); }
inline _bstr_t IXMLDOMParseError::Getreason()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMParseError::get_reason); }
inline _bstr_t IXMLDOMParseError::GetsrcText()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMParseError::get_srcText); }
inline long IXMLDOMParseError::Getline()
    { return QuonDom_details::Get<long>(this, &IXMLDOMParseError::get_line); }
inline long IXMLDOMParseError::Getlinepos()
    { return QuonDom_details::Get<long>(this, &IXMLDOMParseError::get_linepos); }
inline long IXMLDOMParseError::Getfilepos()
    { return QuonDom_details::Get<long>(this, &IXMLDOMParseError::get_filepos); }

// IXMLDOMSchemaCollection
inline HRESULT IXMLDOMSchemaCollection::add(_bstr_t namespaceURI, const _variant_t& schema)
    { return QuonDom_details::Do(this, &IXMLDOMSchemaCollection::raw_add, namespaceURI, schema); }
inline IXMLDOMNodePtr IXMLDOMSchemaCollection::get(_bstr_t namespaceURI)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMSchemaCollection::raw_get, namespaceURI); }
inline HRESULT IXMLDOMSchemaCollection::remove(_bstr_t namespaceURI)
    { return QuonDom_details::Do(this, &IXMLDOMSchemaCollection::raw_remove, namespaceURI); }
inline long IXMLDOMSchemaCollection::Getlength()
    { return QuonDom_details::Get<long>(this, &IXMLDOMSchemaCollection::get_length); }
inline _bstr_t IXMLDOMSchemaCollection::GetnamespaceURI(long index)
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMSchemaCollection::get_namespaceURI, index); }
inline HRESULT IXMLDOMSchemaCollection::addCollection(IXMLDOMSchemaCollection* otherCollection)
    { return QuonDom_details::Do(this, &IXMLDOMSchemaCollection::raw_addCollection, otherCollection); }
inline IUnknownPtr IXMLDOMSchemaCollection::Get_newEnum()
    { return QuonDom_details::Get<IUnknownPtr>(this, &IXMLDOMSchemaCollection::get__newEnum); }

// IXMLDOMDocument
inline IXMLDOMDocumentTypePtr IXMLDOMDocument::Getdoctype()
    { return QuonDom_details::Get<IXMLDOMDocumentTypePtr>(this, &IXMLDOMDocument::get_doctype); }
inline IXMLDOMImplementationPtr IXMLDOMDocument::Getimplementation()
    { return QuonDom_details::Get<IXMLDOMImplementationPtr>(this, &IXMLDOMDocument::get_implementation); }
inline IXMLDOMElementPtr IXMLDOMDocument::GetdocumentElement()
    { return QuonDom_details::Get<IXMLDOMElementPtr>(this, &IXMLDOMDocument::get_documentElement); }
inline void IXMLDOMDocument::PutRefdocumentElement(IXMLDOMElement* element)
    { QuonDom_details::Do(this, &IXMLDOMDocument::putref_documentElement, element); }
inline IXMLDOMElementPtr IXMLDOMDocument::createElement(_bstr_t tagName)
    { return QuonDom_details::Get<IXMLDOMElementPtr>(this, &IXMLDOMDocument::raw_createElement, tagName); }
inline IXMLDOMDocumentFragmentPtr IXMLDOMDocument::createDocumentFragment()
    { return QuonDom_details::Get<IXMLDOMDocumentFragmentPtr>(this, &IXMLDOMDocument::raw_createDocumentFragment); }
inline IXMLDOMTextPtr IXMLDOMDocument::createTextNode(_bstr_t data)
    { return QuonDom_details::Get<IXMLDOMTextPtr>(this, &IXMLDOMDocument::raw_createTextNode, data); }
inline IXMLDOMCommentPtr IXMLDOMDocument::createComment(_bstr_t data)
    { return QuonDom_details::Get<IXMLDOMCommentPtr>(this, &IXMLDOMDocument::raw_createComment, data); }
inline IXMLDOMCDATASectionPtr IXMLDOMDocument::createCDATASection(_bstr_t data)
    { return QuonDom_details::Get<IXMLDOMCDATASectionPtr>(this, &IXMLDOMDocument::raw_createCDATASection, data); }
inline IXMLDOMProcessingInstructionPtr IXMLDOMDocument::createProcessingInstruction(_bstr_t target, _bstr_t data)
    { return QuonDom_details::Get<IXMLDOMProcessingInstructionPtr>(this, &IXMLDOMDocument::raw_createProcessingInstruction,
                                                                   target, data); }
inline IXMLDOMAttributePtr IXMLDOMDocument::createAttribute(_bstr_t name)
    { return QuonDom_details::Get<IXMLDOMAttributePtr>(this, &IXMLDOMDocument::raw_createAttribute, name); }
inline IXMLDOMEntityReferencePtr IXMLDOMDocument::createEntityReference(_bstr_t name)
    { return QuonDom_details::Get<IXMLDOMEntityReferencePtr>(this, &IXMLDOMDocument::raw_createEntityReference, name); }
inline IXMLDOMNodeListPtr IXMLDOMDocument::getElementsByTagName(_bstr_t tagName)
    { return QuonDom_details::Get<IXMLDOMNodeListPtr>(this, &IXMLDOMDocument::raw_getElementsByTagName, tagName); }
inline IXMLDOMNodePtr IXMLDOMDocument::createNode(const _variant_t& type, _bstr_t name, _bstr_t namespaceURI)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMDocument::raw_createNode, type, name, namespaceURI); }
inline IXMLDOMNodePtr IXMLDOMDocument::nodeFromID(_bstr_t idString)
    { return QuonDom_details::Get<IXMLDOMNodePtr>(this, &IXMLDOMDocument::raw_nodeFromID, idString); }
inline VARIANT_BOOL IXMLDOMDocument::load(const _variant_t& xmlSource)
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::raw_load, xmlSource); }
inline long IXMLDOMDocument::GetreadyState()
    { return QuonDom_details::Get<long>(this, &IXMLDOMDocument::get_readyState); }
inline IXMLDOMParseErrorPtr IXMLDOMDocument::GetparseError()
    { return QuonDom_details::Get<IXMLDOMParseErrorPtr>(this, &IXMLDOMDocument::get_parseError); }
inline _bstr_t IXMLDOMDocument::Geturl()
    { return QuonDom_details::Get<_bstr_t>(this, &IXMLDOMDocument::get_url); }
inline VARIANT_BOOL IXMLDOMDocument::Getasync()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::get_async); }
inline void IXMLDOMDocument::Putasync(VARIANT_BOOL isAsync)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_async, isAsync); }
inline HRESULT IXMLDOMDocument::abort()
    { return QuonDom_details::Do(this, &IXMLDOMDocument::raw_abort); }
inline VARIANT_BOOL IXMLDOMDocument::loadXML(_bstr_t xml)
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::raw_loadXML, xml); }
inline HRESULT IXMLDOMDocument::save(const _variant_t& destination)
    { return QuonDom_details::Do(this, &IXMLDOMDocument::raw_save, destination); }
inline VARIANT_BOOL IXMLDOMDocument::GetvalidateOnParse()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::get_validateOnParse); }
inline void IXMLDOMDocument::PutvalidateOnParse(VARIANT_BOOL isValidating)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_validateOnParse, isValidating); }
inline VARIANT_BOOL IXMLDOMDocument::GetresolveExternals()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::get_resolveExternals); }
inline void IXMLDOMDocument::PutresolveExternals(VARIANT_BOOL isResolving)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_resolveExternals, isResolving); }
inline VARIANT_BOOL IXMLDOMDocument::GetpreserveWhiteSpace()
    { return QuonDom_details::Get<VARIANT_BOOL>(this, &IXMLDOMDocument::get_preserveWhiteSpace); }
inline void IXMLDOMDocument::PutpreserveWhiteSpace(VARIANT_BOOL isPreserving)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_preserveWhiteSpace, isPreserving); }
inline void IXMLDOMDocument::Putonreadystatechange(const _variant_t& readystatechangeSink)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_onreadystatechange, readystatechangeSink); }
inline void IXMLDOMDocument::Putondataavailable(const _variant_t& ondataavailableSink)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_ondataavailable, ondataavailableSink); }
inline void IXMLDOMDocument::Putontransformnode(const _variant_t& ontransformnodeSink)
    { QuonDom_details::Do(this, &IXMLDOMDocument::put_ontransformnode, ontransformnodeSink); }

// IXMLDOMDocument2
inline IXMLDOMSchemaCollectionPtr IXMLDOMDocument2::Getnamespaces()
    { return QuonDom_details::Get<IXMLDOMSchemaCollectionPtr>(this, &IXMLDOMDocument2::get_namespaces); }
inline _variant_t IXMLDOMDocument2::Getschemas()
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMDocument2::get_schemas); }
inline void IXMLDOMDocument2::PutRefschemas(const _variant_t& otherCollection)
    { QuonDom_details::Do(this, &IXMLDOMDocument2::putref_schemas, otherCollection); }
inline IXMLDOMParseErrorPtr IXMLDOMDocument2::validate()
    { return QuonDom_details::Get<IXMLDOMParseErrorPtr>(this, &IXMLDOMDocument2::raw_validate); }
inline HRESULT IXMLDOMDocument2::setProperty(_bstr_t name, const _variant_t& value)
    { return QuonDom_details::Do(this, &IXMLDOMDocument2::raw_setProperty, name, value); }
inline _variant_t IXMLDOMDocument2::getProperty(_bstr_t name)
    { return QuonDom_details::Get<_variant_t>(this, &IXMLDOMDocument2::raw_getProperty, name); }

}  // namespace MSXML2

/// @endcond
// clang-format on
