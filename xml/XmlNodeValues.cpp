#include "xml/XmlNodes.h"

#include "base/MemoryInternal.h"
#include "xml/DomTextInternal.h"
#include "xml/NodeArray.h"
#include "xml/NodeSearchInternal.h"
#include "xml/UniqueStringsInternal.h"
#include "xml/XmlStatusInternal.h"

#include <memory>
#include <vector>

namespace xml_internal
{

MSXML2::IXMLDOMNodePtr FirstNodeWithAttribute(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                              const CString& attribute, const CString& value)
{
    const QuonNodeArrayOwner found(new QuonNodeArray);
    CollectNodesWithAttributes(*found, nodes, name, attribute, value, true);
    return found->GetSize() == 0 ? MSXML2::IXMLDOMNodePtr() : MSXML2::IXMLDOMNodePtr(found->GetAt(0));
}

}  // namespace xml_internal

namespace
{

using namespace xml_internal;

using OwnedStringArray = std::unique_ptr<CStringArray>;

// The children of one node that are still to be read. They are counted, not read to the end: a list that has fewer than
// it says is a failure.
struct Children
{
    MSXML2::IXMLDOMNodeListPtr list;
    long left;
};

Children ChildrenOf(const MSXML2::IXMLDOMNodePtr& node)
{
    MSXML2::IXMLDOMNodeListPtr children;
    node->get_childNodes(&children);
    Require(children, L"pNodeList is NULL!");
    return {children, children->Getlength()};
}

// The levels are kept here and not on the stack, which a deep document would overflow.
void CollectNames(const MSXML2::IXMLDOMNodePtr& node, bool recursive, UniqueStrings& names)
{
    std::vector<Children> levels{ChildrenOf(node)};
    while (!levels.empty())
    {
        if (levels.back().left-- <= 0)
        {
            levels.pop_back();
            continue;
        }
        const MSXML2::IXMLDOMNodePtr child = levels.back().list->nextNode();
        Require(child, L"pCurNode is NULL!");
        names.Append(Characters(child->GetnodeName()));
        if (recursive)
        {
            levels.push_back(ChildrenOf(child));
        }
    }
}

// A string for each node that is not null, in their order. `read(node, string)` fills one in place: appended strings
// would be copied.
template <typename Read>
CStringArray* StringsOfNodes(const QuonNodeArray& nodes, const Read& read)
{
    OwnedStringArray strings = std::make_unique<CStringArray>();
    const INT_PTR size = nodes.GetSize();
    strings->SetSize(size);
    CString* next = strings->GetData();
    for (INT_PTR i = 0; i < size; ++i)
    {
        MSXML2::IXMLDOMNode* const node = nodes.GetAt(i);
        if (node != nullptr)
        {
            read(*node, *next++);
        }
    }
    strings->SetSize(next - strings->GetData());
    return strings.release();
}

// The steps of a value path. The messages of its own steps are the result; those of the functions that it calls are
// thrown.
template <typename FindRoot, typename TakeValues>
CString FollowValuePath(const MSXML2::IXMLDOMDocumentPtr& document, const CString& childName, const FindRoot& findRoot,
                        const TakeValues& takeValues, OwnedStringArray& values)
{
    const MSXML2::IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    if (!rootNodes)
    {
        return L"pRootNodeList is NULL!";
    }
    const MSXML2::IXMLDOMNodePtr root = findRoot(rootNodes);
    if (!root)
    {
        return L"pTargetRootNode is NULL!";
    }
    MSXML2::IXMLDOMNodeListPtr children;
    const HRESULT result = root->get_childNodes(&children);
    if (FAILED(result))
    {
        return L"pTargetRootNode->get_childNodes failed:\n" + FormatHResultText(result);
    }
    const QuonNodeArrayOwner nodes(FindNodesByName(children, childName, true));
    if (nodes == nullptr)
    {
        return L"pDesiredChildNodes is NULL!";
    }
    values.reset(takeValues(nodes.get()));
    return kStatusOk;
}

template <typename FindRoot, typename TakeValues>
CStringArray* ReadValuePath(const MSXML2::IXMLDOMDocumentPtr& document, const CString& childName,
                            const FindRoot& findRoot, const TakeValues& takeValues)
{
    OwnedStringArray values;
    CString status = kStatusFailed;
    try
    {
        status = FollowValuePath(document, childName, findRoot, takeValues, values);
    }
    catch (const CString& text)
    {
        // The same name in all six: whoever shows the text knows it.
        status = L"Exception in GetValuesOfAttribute():\n" + text;
    }
    ThrowUnlessOk(status);
    return values.release();
}

auto RootByName(const CString& name)
{
    return [&name](const MSXML2::IXMLDOMNodeListPtr& nodes) { return FindFirstNodeByName(nodes, name, true); };
}

auto RootByText(const CString& name, const CString& text)
{
    return [&name, &text](const MSXML2::IXMLDOMNodeListPtr& nodes) {
        return FindNodeByNameAndText(nodes, name, text, true);
    };
}

auto RootByAttribute(const CString& name, const CString& attribute, const CString& value)
{
    return [&name, &attribute, &value](const MSXML2::IXMLDOMNodeListPtr& nodes) {
        return FirstNodeWithAttribute(nodes, name, attribute, value);
    };
}

auto ValuesOf(const CString& attribute)
{
    return [&attribute](const QuonNodeArray* nodes) { return GetAttributeValuesOfNodes(nodes, attribute); };
}

}  // namespace

CStringArray* GetNodeNames(const MSXML2::IXMLDOMNodePtr& node, bool recursive)
{
    Require(node, L"pNode is NULL!");
    OwnedStringArray names = MakeInMemory<CStringArray>();
    Require(names != nullptr, L"pNames is NULL!");
    UniqueStrings unique(*names);
    CollectNames(node, recursive, unique);
    return names.release();
}

CStringArray* GetTextsOfNodes(const QuonNodeArray* nodes)
{
    Require(nodes != nullptr, L"pDesiredChildNodes is NULL!");
    Require(nodes->GetSize() != 0, L"DesiredChildNodesLen = 0!");
    return StringsOfNodes(*nodes, [](MSXML2::IXMLDOMNode& node, CString& string) {
        _bstr_t text;
        RequireResult(node.get_text(text.GetAddress()), L"Exception on CurNode->get_nodeValue():\n");
        string = Characters(text);
    });
}

CStringArray* GetAttributeValuesOfNodes(const QuonNodeArray* nodes, const CString& attribute)
{
    Require(nodes != nullptr, L"pNodes is NULL!");
    Require(nodes->GetSize() != 0, L"DesiredChildNodesLen = 0!");
    const _bstr_t name = ToBstr(attribute);
    return StringsOfNodes(*nodes,
                          [&name](MSXML2::IXMLDOMNode& node, CString& string) { string = AttributeText(node, name); });
}

CString GetAttributeValue(const MSXML2::IXMLDOMNodePtr& node, const CString& attribute)
{
    Require(node, L"pNode is NULL!");
    return AttributeText(*node, ToBstr(attribute));
}

CString GetAttributeValueByName(const MSXML2::IXMLDOMNodePtr& node, const CString& attribute)
{
    MSXML2::IXMLDOMNamedNodeMapPtr attributes;
    // An empty node raises E_POINTER here: there is no text for it.
    const HRESULT result = node->get_attributes(&attributes);
    Require(SUCCEEDED(result) && attributes, L"get_Attributes failed!");
    Require(!attribute.IsEmpty(), L"DesiredAttributeName is empty!");
    const MSXML2::IXMLDOMNodePtr item = attributes->getNamedItem(ToBstr(attribute));
    if (!item)
    {
        return CString();
    }
    _variant_t value;
    Require(SUCCEEDED(item->get_nodeValue(&value)), L"get_nodeValue failed!");
    return TextOfVariant(value);
}

void GetAllAttributes(const MSXML2::IXMLDOMNodePtr& node, CStringArray& names, CStringArray& values)
{
    names.RemoveAll();
    values.RemoveAll();
    Require(node, L"pNode is NULL!");
    MSXML2::IXMLDOMNamedNodeMapPtr attributes;
    node->get_attributes(&attributes);
    Require(attributes, L"pAttributes is NULL!");
    const long length = attributes->Getlength();
    Require(length >= 0, L"AttributesSize < 0!");
    for (long i = 0; i < length; ++i)
    {
        const MSXML2::IXMLDOMNodePtr attribute = attributes->nextNode();
        Require(attribute, L"pCurAttribute is NULL!");
        names.Add(Characters(attribute->GetnodeName()));
        values.Add(TextOfVariant(attribute->GetnodeValue()));
    }
}

CStringArray* GetValuesOfAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                   const CString& childName, const CString& attribute)
{
    return ReadValuePath(document, childName, RootByName(rootName), ValuesOf(attribute));
}

CStringArray* GetValuesOfAttributeByRootText(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                             const CString& childName, const CString& rootText,
                                             const CString& attribute)
{
    return ReadValuePath(document, childName, RootByText(rootName, rootText), ValuesOf(attribute));
}

CStringArray* GetValuesOfAttributeByRootAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                                  const CString& childName, const CString& rootAttribute,
                                                  const CString& rootValue, const CString& attribute)
{
    return ReadValuePath(document, childName, RootByAttribute(rootName, rootAttribute, rootValue), ValuesOf(attribute));
}

CStringArray* GetTextsOfChildren(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                 const CString& childName)
{
    return ReadValuePath(document, childName, RootByName(rootName), GetTextsOfNodes);
}

CStringArray* GetTextsOfChildrenByRootText(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                           const CString& childName, const CString& rootText)
{
    return ReadValuePath(document, childName, RootByText(rootName, rootText), GetTextsOfNodes);
}

CStringArray* GetTextsOfChildrenByRootAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                                const CString& childName, const CString& rootAttribute,
                                                const CString& rootValue)
{
    return ReadValuePath(document, childName, RootByAttribute(rootName, rootAttribute, rootValue), GetTextsOfNodes);
}
