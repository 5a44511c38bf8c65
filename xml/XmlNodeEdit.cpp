#include "xml/XmlNodes.h"

#include "xml/DomTextInternal.h"
#include "xml/NodeSearchInternal.h"
#include "xml/XmlStatusInternal.h"

namespace
{

using namespace xml_internal;

// Checks in the order document, created node, root, appended node: the node is created before the root is looked at.
template <typename Create>
void AppendCreated(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                   const MSXML2::IXMLDOMNodePtr& root, const Create& create)
{
    Require(document, L"pDoc is NULL!");
    const MSXML2::IXMLDOMNodePtr created = create();
    Require(created, L"pCreatedNode is NULL!");
    Require(root, L"pRootNode is NULL!");
    MSXML2::IXMLDOMNodePtr appended = root->appendChild(created);
    Require(appended, L"pAppendedNode is NULL!");
    result.Attach(appended.Detach());
}

void SetAttributeOf(const MSXML2::IXMLDOMElementPtr& element, const _bstr_t& name, const CString& value)
{
    element->setAttribute(name, _variant_t(value.GetString()));
}

// The attribute that is made is not used: the parser refuses a name here that an attribute cannot have.
void SetOneAttribute(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node,
                     const CString& name, const CString& value)
{
    Require(document, L"pDoc is NULL!");
    const _bstr_t attribute = ToBstr(name);
    Require(document->createAttribute(attribute), L"pCreatedNode is NULL!");
    const MSXML2::IXMLDOMElementPtr element(node);
    Require(element, L"pRootNode is NULL!");
    SetAttributeOf(element, attribute, value);
}

}  // namespace

void AppendElement(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                   const MSXML2::IXMLDOMNodePtr& root, const CString& name)
{
    AppendCreated(result, document, root, [&] { return document->createElement(ToBstr(name)); });
}

void AppendTextChild(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                     const MSXML2::IXMLDOMNodePtr& root, const CString& text)
{
    AppendCreated(result, document, root, [&] { return document->createTextNode(ToBstr(text)); });
}

void AppendCDataChild(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                      const MSXML2::IXMLDOMNodePtr& root, const CString& data)
{
    AppendCreated(result, document, root, [&] { return document->createCDATASection(ToBstr(data)); });
}

void AppendNodeOfType(MSXML2::IXMLDOMNodePtr& result, const MSXML2::IXMLDOMDocumentPtr& document,
                      const MSXML2::IXMLDOMNodePtr& root, MSXML2::DOMNodeType type, const CString& name,
                      const CString& namespaceUri)
{
    Require(document, L"pDoc is NULL!");
    Require(root, L"pRootNode is NULL!");
    const MSXML2::IXMLDOMElementPtr rootElement(root);
    Require(rootElement, L"pRootElement is NULL!");
    const MSXML2::IXMLDOMNodePtr created =
        document->createNode(_variant_t(static_cast<long>(type)), ToBstr(name), ToBstr(namespaceUri));
    const MSXML2::IXMLDOMNodePtr appended = created ? rootElement->appendChild(created) : MSXML2::IXMLDOMNodePtr();
    Require(appended, L"pAppendedNode is NULL!");
    result = appended;
}

MSXML2::IXMLDOMNodePtr AppendNewElementToRoot(const MSXML2::IXMLDOMDocumentPtr& document,
                                              const MSXML2::IXMLDOMNodePtr& root, const CString& name)
{
    Require(root, L"pRootNode is NULL!");
    Require(document, L"pDoc is NULL!");
    const MSXML2::IXMLDOMNodePtr element = document->createElement(ToBstr(name));
    Require(element, L"pNewElement is NULL!");
    return root->appendChild(element);
}

MSXML2::IXMLDOMNodePtr AppendTextNode(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                      const CString& attribute, const CString& value, const CString& text)
{
    Require(document, L"pDoc is NULL!");
    const MSXML2::IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    Require(rootNodes, L"pRootNodeList is NULL!");
    const MSXML2::IXMLDOMNodePtr root = FirstNodeWithAttribute(rootNodes, rootName, attribute, value);
    Require(root, L"pTargetRootNode is NULL!");
    MSXML2::IXMLDOMNodePtr added;
    AppendTextChild(added, document, root, text);
    Require(added, L"pNewNode is NULL!");
    RequireResult(added->put_text(ToBstr(text)), L"pNewNode->put_text failed!\n");
    return added;
}

bool SetAttributeOnNode(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node,
                        const CString& name, const CString& value)
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

bool SetAttributesOnNode(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node,
                         const CStringArray& names, const CStringArray& values)
{
    Require(document, L"pDoc is NULL!");
    const MSXML2::IXMLDOMElementPtr element(node);
    Require(element, L"pRootNode is NULL!");
    for (INT_PTR i = 0; i < names.GetSize() && i < values.GetSize(); ++i)
    {
        const _bstr_t attribute = ToBstr(names[i]);
        Require(document->createAttribute(attribute), L"pDesiredAttribute is NULL!");
        SetAttributeOf(element, attribute, values[i]);
    }
    return true;
}

bool SetAttributesViaOwnerDocument(const MSXML2::IXMLDOMNodePtr& node, const CStringArray& names,
                                   const CStringArray& values)
{
    Require(node, L"pRootNode is NULL!");
    MSXML2::IXMLDOMDocumentPtr owner;
    RequireResult(node->get_ownerDocument(&owner));
    // Asked for the interface: what a node gives as its document need not be one.
    const MSXML2::IXMLDOMDocumentPtr document(static_cast<IUnknown*>(owner));
    Require(document, L"pDoc is NULL!");
    return SetAttributesOnNode(document, node, names, values);
}
