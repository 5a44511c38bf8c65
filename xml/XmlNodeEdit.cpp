#include "xml/XmlNodes.h"

#include "xml/ComHelpers.h"
#include "xml/XmlInternal.h"

namespace
{

using namespace MSXML2;
using namespace xml_internal;

// Checks in the order document, created node, root, appended node: the node is created before the root is looked at.
template <typename Create>
void AppendCreated(IXMLDOMNodePtr& result, const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                   const Create& create)
{
    Require(document, L"pDoc is NULL!");
    const IXMLDOMNodePtr created = create();
    Require(created, L"pCreatedNode is NULL!");
    Require(root, L"pRootNode is NULL!");
    IXMLDOMNodePtr appended = AppendChild(root, created);
    Require(appended, L"pAppendedNode is NULL!");
    result.Attach(appended.Detach());
}

// The parser refuses a name here that an attribute cannot have. The attribute itself is not used.
bool CanMakeAttribute(IXMLDOMDocument* document, BSTR name)
{
    IXMLDOMAttributePtr attribute;
    Check(document->createAttribute(name, &attribute), document);
    return attribute;
}

void SetAttributeOf(IXMLDOMElement* element, BSTR name, const CString& value)
{
    Check(element->setAttribute(name, _variant_t(value.GetString())), element);
}

void SetOneAttribute(const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& node, const CString& name,
                     const CString& value)
{
    Require(document, L"pDoc is NULL!");
    const DomArgument attribute(name);
    Require(CanMakeAttribute(document, attribute), L"pCreatedNode is NULL!");
    const IXMLDOMElementPtr element = QueryFor<IXMLDOMElementPtr>(node);
    Require(element, L"pRootNode is NULL!");
    SetAttributeOf(element, attribute, value);
}

}  // namespace

void AppendElement(IXMLDOMNodePtr& result, const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                   const CString& name)
{
    AppendCreated(result, document, root, [&] { return MakeElement(document, name); });
}

void AppendTextChild(IXMLDOMNodePtr& result, const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                     const CString& text)
{
    AppendCreated(result, document, root,
                  [&] { return QueryFor<IXMLDOMNodePtr>(CreateTextNode(document, ToBstr(text))); });
}

void AppendCDataChild(IXMLDOMNodePtr& result, const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                      const CString& data)
{
    AppendCreated(result, document, root,
                  [&] { return QueryFor<IXMLDOMNodePtr>(CreateCDataSection(document, ToBstr(data))); });
}

void AppendNodeOfType(IXMLDOMNodePtr& result, const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                      DOMNodeType type, const CString& name, const CString& namespaceUri)
{
    Require(document, L"pDoc is NULL!");
    Require(root, L"pRootNode is NULL!");
    const IXMLDOMElementPtr rootElement(root);
    Require(rootElement, L"pRootElement is NULL!");
    const IXMLDOMNodePtr created =
        CreateNode(document, _variant_t(static_cast<long>(type)), ToBstr(name), ToBstr(namespaceUri));
    const IXMLDOMNodePtr appended = created ? AppendChild(rootElement, created) : IXMLDOMNodePtr();
    Require(appended, L"pAppendedNode is NULL!");
    result = appended;
}

IXMLDOMNodePtr AppendNewElementToRoot(const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& root,
                                      const CString& name)
{
    Require(root, L"pRootNode is NULL!");
    Require(document, L"pDoc is NULL!");
    const IXMLDOMNodePtr element = MakeElement(document, name);
    Require(element, L"pNewElement is NULL!");
    return AppendChild(root, element);
}

IXMLDOMNodePtr AppendTextNode(const IXMLDOMDocumentPtr& document, const CString& rootName, const CString& attribute,
                              const CString& value, const CString& text)
{
    Require(document, L"pDoc is NULL!");
    const IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    Require(rootNodes, L"pRootNodeList is NULL!");
    const IXMLDOMNodePtr root = FirstNodeWithAttribute(rootNodes, rootName, attribute, value);
    Require(root, L"pTargetRootNode is NULL!");
    IXMLDOMNodePtr added;
    AppendTextChild(added, document, root, text);
    Require(added, L"pNewNode is NULL!");
    const HRESULT result = added->put_text(ToBstr(text));
    if (FAILED(result))
    {
        throw L"pNewNode->put_text failed!\n" + FormatHResultText(result);
    }
    return added;
}

bool SetAttributeOnNode(const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& node, const CString& name,
                        const CString& value)
{
    try
    {
        SetOneAttribute(document, node, name, value);
    }
    catch (const _com_error& error)
    {
        throw TextOfComError(error);
    }
    catch (const QuonEllipsis&)
    {
        // With a full stop here and an exclamation mark everywhere else.
        throw CString(L"Unhandled Exception.");
    }
    return true;
}

bool SetAttributesOnNode(const IXMLDOMDocumentPtr& document, const IXMLDOMNodePtr& node, const CStringArray& names,
                         const CStringArray& values)
{
    Require(document, L"pDoc is NULL!");
    const IXMLDOMElementPtr element(node);
    Require(element, L"pRootNode is NULL!");
    for (INT_PTR i = 0; i < names.GetSize() && i < values.GetSize(); ++i)
    {
        const DomArgument attribute(names[i]);
        Require(CanMakeAttribute(document, attribute), L"pDesiredAttribute is NULL!");
        SetAttributeOf(element, attribute, values[i]);
    }
    return true;
}

bool SetAttributesViaOwnerDocument(const IXMLDOMNodePtr& node, const CStringArray& names, const CStringArray& values)
{
    Require(node, L"pRootNode is NULL!");
    IXMLDOMDocument* owner = nullptr;
    const HRESULT result = node->get_ownerDocument(&owner);
    if (FAILED(result))
    {
        throw FormatHResultText(result);
    }
    const IXMLDOMNodePtr held(owner, false);
    const IXMLDOMDocumentPtr document(held);
    Require(document, L"pDoc is NULL!");
    return SetAttributesOnNode(document, node, names, values);
}
