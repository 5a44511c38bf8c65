#include "xml/XmlNodes.h"

#include "xml/ComHelpers.h"
#include "xml/UniqueStringsInternal.h"
#include "xml/XmlInternal.h"

namespace xml_internal
{

using namespace MSXML2;

CString AttributeText(IXMLDOMNode* node, BSTR name)
{
    const IXMLDOMNamedNodeMapPtr attributes = GetAttributes(node);
    if (!attributes)
    {
        return CString();
    }
    IXMLDOMNodePtr attribute;
    Check(attributes->getNamedItem(name, &attribute), attributes.GetInterfacePtr());
    if (!attribute)
    {
        return CString();
    }
    DomValue value;
    Check(attribute->get_nodeValue(value.Out()), attribute.GetInterfacePtr());
    return TextOfVariant(value.Get());
}

IXMLDOMNodePtr FirstNodeWithAttribute(const IXMLDOMNodeListPtr& nodes, const CString& name, const CString& attribute,
                                      const CString& value)
{
    const OwnedNodeArray found(new QuonNodeArray);
    CollectNodesWithAttributes(*found, nodes, name, attribute, value, true);
    return found->GetSize() == 0 ? IXMLDOMNodePtr() : IXMLDOMNodePtr(found->GetAt(0));
}

}  // namespace xml_internal

namespace
{

using namespace MSXML2;
using namespace xml_internal;

void CollectNames(IXMLDOMNode* node, bool recursive, UniqueStrings& names)
{
    IXMLDOMNodeListPtr children;
    node->get_childNodes(&children);
    Require(children, L"pNodeList is NULL!");
    for (long left = GetLength(children); left > 0; --left)
    {
        const IXMLDOMNodePtr child = NextNode(children);
        Require(child, L"pCurNode is NULL!");
        DomText name;
        Check(child->get_nodeName(name.Out()), child.GetInterfacePtr());
        names.Append(name.Get());
        if (recursive)
        {
            CollectNames(child, recursive, names);
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
        IXMLDOMNode* const node = nodes.GetAt(i);
        if (node != nullptr)
        {
            read(node, *next++);
        }
    }
    strings->SetSize(next - strings->GetData());
    return strings.release();
}

// The steps of a value path. The messages of its own steps are the result; those of the functions that it calls are
// thrown.
template <typename FindRoot, typename TakeValues>
CString FollowValuePath(const IXMLDOMDocumentPtr& document, const CString& childName, const FindRoot& findRoot,
                        const TakeValues& takeValues, OwnedStringArray& values)
{
    const IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    if (!rootNodes)
    {
        return L"pRootNodeList is NULL!";
    }
    const IXMLDOMNodePtr root = findRoot(rootNodes);
    if (!root)
    {
        return L"pTargetRootNode is NULL!";
    }
    IXMLDOMNodeListPtr children;
    const HRESULT result = root->get_childNodes(&children);
    if (FAILED(result))
    {
        return L"pTargetRootNode->get_childNodes failed:\n" + FormatHResultText(result);
    }
    const OwnedNodeArray nodes(FindNodesByName(children, childName, true));
    if (nodes == nullptr)
    {
        return L"pDesiredChildNodes is NULL!";
    }
    values.reset(takeValues(nodes.get()));
    return kStatusOk;
}

template <typename FindRoot, typename TakeValues>
CStringArray* ReadValuePath(const IXMLDOMDocumentPtr& document, const CString& childName, const FindRoot& findRoot,
                            const TakeValues& takeValues)
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
    return [&name](const IXMLDOMNodeListPtr& nodes) { return FindFirstNodeByName(nodes, name, true); };
}

auto RootByText(const CString& name, const CString& text)
{
    return [&name, &text](const IXMLDOMNodeListPtr& nodes) { return FindNodeByNameAndText(nodes, name, text, true); };
}

auto RootByAttribute(const CString& name, const CString& attribute, const CString& value)
{
    return [&name, &attribute, &value](const IXMLDOMNodeListPtr& nodes) {
        return FirstNodeWithAttribute(nodes, name, attribute, value);
    };
}

auto ValuesOf(const CString& attribute)
{
    return [&attribute](const QuonNodeArray* nodes) { return GetAttributeValuesOfNodes(nodes, attribute); };
}

}  // namespace

CStringArray* GetNodeNames(const IXMLDOMNodePtr& node, bool recursive)
{
    Require(node, L"pNode is NULL!");
    OwnedStringArray names(MakeArray<CStringArray>());
    Require(names != nullptr, L"pNames is NULL!");
    UniqueStrings unique(*names);
    CollectNames(node, recursive, unique);
    return names.release();
}

CStringArray* GetTextsOfNodes(const QuonNodeArray* nodes)
{
    Require(nodes != nullptr, L"pDesiredChildNodes is NULL!");
    Require(nodes->GetSize() != 0, L"DesiredChildNodesLen = 0!");
    return StringsOfNodes(*nodes, [](IXMLDOMNode* node, CString& string) {
        DomText text;
        const HRESULT result = node->get_text(text.Out());
        if (FAILED(result))
        {
            throw L"Exception on CurNode->get_nodeValue():\n" + FormatHResultText(result);
        }
        string = text.Get();
    });
}

CStringArray* GetAttributeValuesOfNodes(const QuonNodeArray* nodes, const CString& attribute)
{
    Require(nodes != nullptr, L"pNodes is NULL!");
    Require(nodes->GetSize() != 0, L"DesiredChildNodesLen = 0!");
    const DomArgument name(attribute);
    return StringsOfNodes(*nodes, [&name](IXMLDOMNode* node, CString& string) { string = AttributeText(node, name); });
}

CString GetAttributeValue(const IXMLDOMNodePtr& node, const CString& attribute)
{
    Require(node, L"pNode is NULL!");
    return AttributeText(node, DomArgument(attribute));
}

CString GetAttributeValueByName(const IXMLDOMNodePtr& node, const CString& attribute)
{
    IXMLDOMNamedNodeMapPtr attributes;
    // An empty node raises E_POINTER here: there is no text for it.
    const HRESULT result = node->get_attributes(&attributes);
    Require(SUCCEEDED(result) && attributes, L"get_Attributes failed!");
    Require(!attribute.IsEmpty(), L"DesiredAttributeName is empty!");
    const IXMLDOMNodePtr item = GetNamedItem(attributes, ToBstr(attribute));
    if (!item)
    {
        return CString();
    }
    _variant_t value;
    Require(SUCCEEDED(item->get_nodeValue(&value)), L"get_nodeValue failed!");
    return TextOfVariant(value);
}

void GetAllAttributes(const IXMLDOMNodePtr& node, CStringArray& names, CStringArray& values)
{
    names.RemoveAll();
    values.RemoveAll();
    Require(node, L"pNode is NULL!");
    IXMLDOMNamedNodeMapPtr attributes;
    node->get_attributes(&attributes);
    Require(attributes, L"pAttributes is NULL!");
    const long length = GetLength(attributes);
    Require(length >= 0, L"AttributesSize < 0!");
    for (long i = 0; i < length; ++i)
    {
        const IXMLDOMNodePtr attribute = NextNode(attributes);
        Require(attribute, L"pCurAttribute is NULL!");
        names.Add(NameOf(attribute));
        values.Add(TextOfVariant(GetNodeValue(attribute)));
    }
}

CStringArray* GetValuesOfAttribute(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                   const CString& childName, const CString& attribute)
{
    return ReadValuePath(document, childName, RootByName(rootName), ValuesOf(attribute));
}

CStringArray* GetValuesOfAttributeByRootText(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                             const CString& childName, const CString& rootText,
                                             const CString& attribute)
{
    return ReadValuePath(document, childName, RootByText(rootName, rootText), ValuesOf(attribute));
}

CStringArray* GetValuesOfAttributeByRootAttribute(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                                  const CString& childName, const CString& rootAttribute,
                                                  const CString& rootValue, const CString& attribute)
{
    return ReadValuePath(document, childName, RootByAttribute(rootName, rootAttribute, rootValue), ValuesOf(attribute));
}

CStringArray* GetTextsOfChildren(const IXMLDOMDocumentPtr& document, const CString& rootName, const CString& childName)
{
    return ReadValuePath(document, childName, RootByName(rootName), GetTextsOfNodes);
}

CStringArray* GetTextsOfChildrenByRootText(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                           const CString& childName, const CString& rootText)
{
    return ReadValuePath(document, childName, RootByText(rootName, rootText), GetTextsOfNodes);
}

CStringArray* GetTextsOfChildrenByRootAttribute(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                                const CString& childName, const CString& rootAttribute,
                                                const CString& rootValue)
{
    return ReadValuePath(document, childName, RootByAttribute(rootName, rootAttribute, rootValue), GetTextsOfNodes);
}
