// The interfaces of the namespace MSXML2 against the platform's own definitions: identifiers, slots, parameters.
#include <gtest/gtest.h>

#include <afx.h>

#include "xml/Msxml2.h"

#include <msxml2.h>
// It gives these names to another class, by macros.
#undef DOMDocument
#undef CLSID_DOMDocument

#include <cstdint>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

namespace
{

// The platform's name for a type of ours.
template <typename Type>
struct Platform
{
    using Same = Type;
};
template <typename Type>
struct Platform<Type*>
{
    using Same = typename Platform<Type>::Same*;
};
#define SAME_AS(name)             \
    template <>                   \
    struct Platform<MSXML2::name> \
    {                             \
        using Same = ::name;      \
    };
SAME_AS(IXMLDOMNode)
SAME_AS(IXMLDOMAttribute)
SAME_AS(IXMLDOMElement)
SAME_AS(IXMLDOMCharacterData)
SAME_AS(IXMLDOMText)
SAME_AS(IXMLDOMCDATASection)
SAME_AS(IXMLDOMComment)
SAME_AS(IXMLDOMProcessingInstruction)
SAME_AS(IXMLDOMEntityReference)
SAME_AS(IXMLDOMDocumentFragment)
SAME_AS(IXMLDOMDocumentType)
SAME_AS(IXMLDOMImplementation)
SAME_AS(IXMLDOMNodeList)
SAME_AS(IXMLDOMNamedNodeMap)
SAME_AS(IXMLDOMParseError)
SAME_AS(IXMLDOMSchemaCollection)
SAME_AS(IXMLDOMDocument)
SAME_AS(IXMLDOMDocument2)
SAME_AS(DOMNodeType)
#undef SAME_AS

// The class and the parameters of a method, by the platform's names.
template <typename Method>
struct Signature;
template <typename Interface, typename... Parameters>
struct Signature<HRESULT (STDMETHODCALLTYPE Interface::*)(Parameters...)>
{
    using Class = Interface;
    using Same = std::tuple<typename Platform<Interface>::Same, typename Platform<Parameters>::Same...>;
};
template <typename Ours, typename Theirs>
constexpr bool kSameSignature = std::is_same_v<typename Signature<Ours>::Same, typename Signature<Theirs>::Same>;

// A pointer to a virtual method holds one more than the offset of its slot; so this compiler's ABI has it.
template <typename Method>
std::uintptr_t SlotOf(Method method)
{
    std::uintptr_t word = 0;
    std::memcpy(&word, &method, sizeof(word));
    return (word - 1) / sizeof(void*);
}

struct Row
{
    std::string owner;
    std::string method;
    std::uintptr_t slot;
    std::uintptr_t platformSlot;
};

#define METHOD(owner, ours, theirs)                                                                \
    [] {                                                                                           \
        static_assert(kSameSignature<decltype(&MSXML2::owner::ours), decltype(&::owner::theirs)>); \
        return Row{#owner, #ours, SlotOf(&MSXML2::owner::ours), SlotOf(&::owner::theirs)};         \
    }()
#define SAME(owner, method) METHOD(owner, method, method)
#define RAW(owner, method) METHOD(owner, raw_##method, method)

const std::vector<Row>& Methods()
{
    static const std::vector<Row> methods = {SAME(IXMLDOMNode, get_nodeName),
                                             SAME(IXMLDOMNode, get_nodeValue),
                                             SAME(IXMLDOMNode, put_nodeValue),
                                             SAME(IXMLDOMNode, get_nodeType),
                                             SAME(IXMLDOMNode, get_parentNode),
                                             SAME(IXMLDOMNode, get_childNodes),
                                             SAME(IXMLDOMNode, get_firstChild),
                                             SAME(IXMLDOMNode, get_lastChild),
                                             SAME(IXMLDOMNode, get_previousSibling),
                                             SAME(IXMLDOMNode, get_nextSibling),
                                             SAME(IXMLDOMNode, get_attributes),
                                             RAW(IXMLDOMNode, insertBefore),
                                             RAW(IXMLDOMNode, replaceChild),
                                             RAW(IXMLDOMNode, removeChild),
                                             RAW(IXMLDOMNode, appendChild),
                                             RAW(IXMLDOMNode, hasChildNodes),
                                             SAME(IXMLDOMNode, get_ownerDocument),
                                             RAW(IXMLDOMNode, cloneNode),
                                             SAME(IXMLDOMNode, get_nodeTypeString),
                                             SAME(IXMLDOMNode, get_text),
                                             SAME(IXMLDOMNode, put_text),
                                             SAME(IXMLDOMNode, get_specified),
                                             SAME(IXMLDOMNode, get_definition),
                                             SAME(IXMLDOMNode, get_nodeTypedValue),
                                             SAME(IXMLDOMNode, put_nodeTypedValue),
                                             SAME(IXMLDOMNode, get_dataType),
                                             SAME(IXMLDOMNode, put_dataType),
                                             SAME(IXMLDOMNode, get_xml),
                                             RAW(IXMLDOMNode, transformNode),
                                             RAW(IXMLDOMNode, selectNodes),
                                             RAW(IXMLDOMNode, selectSingleNode),
                                             SAME(IXMLDOMNode, get_parsed),
                                             SAME(IXMLDOMNode, get_namespaceURI),
                                             SAME(IXMLDOMNode, get_prefix),
                                             SAME(IXMLDOMNode, get_baseName),
                                             RAW(IXMLDOMNode, transformNodeToObject),
                                             SAME(IXMLDOMAttribute, get_name),
                                             SAME(IXMLDOMAttribute, get_value),
                                             SAME(IXMLDOMAttribute, put_value),
                                             SAME(IXMLDOMElement, get_tagName),
                                             RAW(IXMLDOMElement, getAttribute),
                                             RAW(IXMLDOMElement, setAttribute),
                                             RAW(IXMLDOMElement, removeAttribute),
                                             RAW(IXMLDOMElement, getAttributeNode),
                                             RAW(IXMLDOMElement, setAttributeNode),
                                             RAW(IXMLDOMElement, removeAttributeNode),
                                             RAW(IXMLDOMElement, getElementsByTagName),
                                             RAW(IXMLDOMElement, normalize),
                                             SAME(IXMLDOMCharacterData, get_data),
                                             SAME(IXMLDOMCharacterData, put_data),
                                             SAME(IXMLDOMCharacterData, get_length),
                                             RAW(IXMLDOMCharacterData, substringData),
                                             RAW(IXMLDOMCharacterData, appendData),
                                             RAW(IXMLDOMCharacterData, insertData),
                                             RAW(IXMLDOMCharacterData, deleteData),
                                             RAW(IXMLDOMCharacterData, replaceData),
                                             RAW(IXMLDOMText, splitText),
                                             SAME(IXMLDOMProcessingInstruction, get_target),
                                             SAME(IXMLDOMProcessingInstruction, get_data),
                                             SAME(IXMLDOMProcessingInstruction, put_data),
                                             SAME(IXMLDOMDocumentType, get_name),
                                             SAME(IXMLDOMDocumentType, get_entities),
                                             SAME(IXMLDOMDocumentType, get_notations),
                                             RAW(IXMLDOMImplementation, hasFeature),
                                             SAME(IXMLDOMNodeList, get_item),
                                             SAME(IXMLDOMNodeList, get_length),
                                             RAW(IXMLDOMNodeList, nextNode),
                                             RAW(IXMLDOMNodeList, reset),
                                             SAME(IXMLDOMNodeList, get__newEnum),
                                             RAW(IXMLDOMNamedNodeMap, getNamedItem),
                                             RAW(IXMLDOMNamedNodeMap, setNamedItem),
                                             RAW(IXMLDOMNamedNodeMap, removeNamedItem),
                                             SAME(IXMLDOMNamedNodeMap, get_item),
                                             SAME(IXMLDOMNamedNodeMap, get_length),
                                             RAW(IXMLDOMNamedNodeMap, getQualifiedItem),
                                             RAW(IXMLDOMNamedNodeMap, removeQualifiedItem),
                                             RAW(IXMLDOMNamedNodeMap, nextNode),
                                             RAW(IXMLDOMNamedNodeMap, reset),
                                             SAME(IXMLDOMNamedNodeMap, get__newEnum),
                                             SAME(IXMLDOMParseError, get_errorCode),
                                             SAME(IXMLDOMParseError, get_url),
                                             SAME(IXMLDOMParseError, get_reason),
                                             SAME(IXMLDOMParseError, get_srcText),
                                             SAME(IXMLDOMParseError, get_line),
                                             SAME(IXMLDOMParseError, get_linepos),
                                             SAME(IXMLDOMParseError, get_filepos),
                                             RAW(IXMLDOMSchemaCollection, add),
                                             RAW(IXMLDOMSchemaCollection, get),
                                             RAW(IXMLDOMSchemaCollection, remove),
                                             SAME(IXMLDOMSchemaCollection, get_length),
                                             SAME(IXMLDOMSchemaCollection, get_namespaceURI),
                                             RAW(IXMLDOMSchemaCollection, addCollection),
                                             SAME(IXMLDOMSchemaCollection, get__newEnum),
                                             SAME(IXMLDOMDocument, get_doctype),
                                             SAME(IXMLDOMDocument, get_implementation),
                                             SAME(IXMLDOMDocument, get_documentElement),
                                             SAME(IXMLDOMDocument, putref_documentElement),
                                             RAW(IXMLDOMDocument, createElement),
                                             RAW(IXMLDOMDocument, createDocumentFragment),
                                             RAW(IXMLDOMDocument, createTextNode),
                                             RAW(IXMLDOMDocument, createComment),
                                             RAW(IXMLDOMDocument, createCDATASection),
                                             RAW(IXMLDOMDocument, createProcessingInstruction),
                                             RAW(IXMLDOMDocument, createAttribute),
                                             RAW(IXMLDOMDocument, createEntityReference),
                                             RAW(IXMLDOMDocument, getElementsByTagName),
                                             RAW(IXMLDOMDocument, createNode),
                                             RAW(IXMLDOMDocument, nodeFromID),
                                             RAW(IXMLDOMDocument, load),
                                             SAME(IXMLDOMDocument, get_readyState),
                                             SAME(IXMLDOMDocument, get_parseError),
                                             SAME(IXMLDOMDocument, get_url),
                                             SAME(IXMLDOMDocument, get_async),
                                             SAME(IXMLDOMDocument, put_async),
                                             RAW(IXMLDOMDocument, abort),
                                             RAW(IXMLDOMDocument, loadXML),
                                             RAW(IXMLDOMDocument, save),
                                             SAME(IXMLDOMDocument, get_validateOnParse),
                                             SAME(IXMLDOMDocument, put_validateOnParse),
                                             SAME(IXMLDOMDocument, get_resolveExternals),
                                             SAME(IXMLDOMDocument, put_resolveExternals),
                                             SAME(IXMLDOMDocument, get_preserveWhiteSpace),
                                             SAME(IXMLDOMDocument, put_preserveWhiteSpace),
                                             SAME(IXMLDOMDocument, put_onreadystatechange),
                                             SAME(IXMLDOMDocument, put_ondataavailable),
                                             SAME(IXMLDOMDocument, put_ontransformnode),
                                             SAME(IXMLDOMDocument2, get_namespaces),
                                             SAME(IXMLDOMDocument2, get_schemas),
                                             SAME(IXMLDOMDocument2, putref_schemas),
                                             RAW(IXMLDOMDocument2, validate),
                                             RAW(IXMLDOMDocument2, setProperty),
                                             RAW(IXMLDOMDocument2, getProperty)};
    return methods;
}

TEST(Msxml2Slots, EveryRawMethodIsInThePlatformsSlot)
{
    for (const Row& row : Methods())
    {
        EXPECT_EQ(row.slot, row.platformSlot) << row.owner << "::" << row.method;
    }
}

// A method left out here would be left out of the check above.
TEST(Msxml2Slots, EverySlotOfAnInterfaceIsChecked)
{
    for (size_t i = 1; i < Methods().size(); ++i)
    {
        const Row& before = Methods()[i - 1];
        const Row& row = Methods()[i];
        if (row.owner == before.owner)
        {
            EXPECT_EQ(row.slot, before.slot + 1) << row.owner << "::" << row.method;
        }
    }
}

TEST(Msxml2Slots, InterfacesHaveThePlatformsIdentifiers)
{
    const std::vector<std::pair<GUID, GUID>> identifiers = {
        {__uuidof(MSXML2::IXMLDOMNode), IID_IXMLDOMNode},
        {__uuidof(MSXML2::IXMLDOMAttribute), IID_IXMLDOMAttribute},
        {__uuidof(MSXML2::IXMLDOMElement), IID_IXMLDOMElement},
        {__uuidof(MSXML2::IXMLDOMCharacterData), IID_IXMLDOMCharacterData},
        {__uuidof(MSXML2::IXMLDOMText), IID_IXMLDOMText},
        {__uuidof(MSXML2::IXMLDOMCDATASection), IID_IXMLDOMCDATASection},
        {__uuidof(MSXML2::IXMLDOMComment), IID_IXMLDOMComment},
        {__uuidof(MSXML2::IXMLDOMProcessingInstruction), IID_IXMLDOMProcessingInstruction},
        {__uuidof(MSXML2::IXMLDOMEntityReference), IID_IXMLDOMEntityReference},
        {__uuidof(MSXML2::IXMLDOMDocumentFragment), IID_IXMLDOMDocumentFragment},
        {__uuidof(MSXML2::IXMLDOMDocumentType), IID_IXMLDOMDocumentType},
        {__uuidof(MSXML2::IXMLDOMNodeList), IID_IXMLDOMNodeList},
        {__uuidof(MSXML2::IXMLDOMNamedNodeMap), IID_IXMLDOMNamedNodeMap},
        {__uuidof(MSXML2::IXMLDOMParseError), IID_IXMLDOMParseError},
        {__uuidof(MSXML2::IXMLDOMDocument), IID_IXMLDOMDocument},
        // The constant of one toolchain repeats that of the entity reference.
        {__uuidof(MSXML2::IXMLDOMImplementation),
         {0x2933bf8f, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}}},
        {__uuidof(MSXML2::IXMLDOMDocument2),
         {0x2933bf95, 0x7b36, 0x11d2, {0xb2, 0x0e, 0x00, 0xc0, 0x4f, 0x98, 0x3e, 0x60}}},
        {__uuidof(MSXML2::IXMLDOMSchemaCollection),
         {0x373984c8, 0xb845, 0x449b, {0x91, 0xe7, 0x45, 0xac, 0x83, 0x03, 0x6a, 0xde}}},
        {__uuidof(MSXML2::DOMDocument), MSXML2::CLSID_DOMDocument}};
    for (size_t i = 0; i < identifiers.size(); ++i)
    {
        EXPECT_TRUE(::IsEqualGUID(identifiers[i].first, identifiers[i].second)) << "row " << i;
    }
    const GUID document = {0xF6D90F11, 0x9C73, 0x11D3, {0xB3, 0x2E, 0x00, 0xC0, 0x4F, 0x99, 0x0B, 0xB4}};
    EXPECT_TRUE(::IsEqualGUID(MSXML2::CLSID_DOMDocument, document));
}

TEST(Msxml2Slots, NodeTypesHaveThePlatformsValues)
{
    EXPECT_EQ(int{MSXML2::NODE_INVALID}, int{::NODE_INVALID});
    EXPECT_EQ(int{MSXML2::NODE_ELEMENT}, int{::NODE_ELEMENT});
    EXPECT_EQ(int{MSXML2::NODE_ATTRIBUTE}, int{::NODE_ATTRIBUTE});
    EXPECT_EQ(int{MSXML2::NODE_TEXT}, int{::NODE_TEXT});
    EXPECT_EQ(int{MSXML2::NODE_CDATA_SECTION}, int{::NODE_CDATA_SECTION});
    EXPECT_EQ(int{MSXML2::NODE_ENTITY_REFERENCE}, int{::NODE_ENTITY_REFERENCE});
    EXPECT_EQ(int{MSXML2::NODE_ENTITY}, int{::NODE_ENTITY});
    EXPECT_EQ(int{MSXML2::NODE_PROCESSING_INSTRUCTION}, int{::NODE_PROCESSING_INSTRUCTION});
    EXPECT_EQ(int{MSXML2::NODE_COMMENT}, int{::NODE_COMMENT});
    EXPECT_EQ(int{MSXML2::NODE_DOCUMENT}, int{::NODE_DOCUMENT});
    EXPECT_EQ(int{MSXML2::NODE_DOCUMENT_TYPE}, int{::NODE_DOCUMENT_TYPE});
    EXPECT_EQ(int{MSXML2::NODE_DOCUMENT_FRAGMENT}, int{::NODE_DOCUMENT_FRAGMENT});
    EXPECT_EQ(int{MSXML2::NODE_NOTATION}, int{::NODE_NOTATION});
}

}  // namespace
