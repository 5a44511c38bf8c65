#include "xml/XmlNodes.h"

#include "base/MemoryInternal.h"
#include "xml/DomTextInternal.h"
#include "xml/NodeArray.h"
#include "xml/NodeSearchInternal.h"
#include "xml/XmlStatusInternal.h"

#include <algorithm>
#include <string>
#include <unordered_set>
#include <vector>

namespace
{

using namespace xml_internal;

bool HasName(const MSXML2::IXMLDOMNodePtr& node, const CString& name)
{
    return name == Characters(node->GetnodeName());
}

// Adds a node with a reference of the array's own.
void AddWithReference(QuonNodeArray& nodes, const MSXML2::IXMLDOMNodePtr& node)
{
    // By itself the array grows by 1024 entries at most and copies itself ever more often. It is made to double
    // instead.
    const INT_PTR size = nodes.GetSize();
    if (size >= 1024 && (size & (size - 1)) == 0)
    {
        nodes.SetSize(size, size);
    }
    nodes.Add(node);
    node->AddRef();
}

template <typename Matches>
MSXML2::IXMLDOMNodePtr FindFirst(const MSXML2::IXMLDOMNodeListPtr& nodes, bool recursive, const Matches& matches)
{
    MSXML2::IXMLDOMNodePtr found;
    BeginSearch(nodes);
    if (nodes->Getlength() > 0)
    {
        ForEachNode(nodes, recursive, [&](const MSXML2::IXMLDOMNodePtr& node) {
            if (matches(node))
            {
                found = node;
            }
            return !found;
        });
    }
    return found;
}

struct AttributeCondition
{
    _bstr_t name;
    CString value;
};

bool Meets(const MSXML2::IXMLDOMNamedNodeMapPtr& attributes, const AttributeCondition& condition)
{
    const MSXML2::IXMLDOMNodePtr attribute = attributes->getNamedItem(condition.name);
    if (!attribute)
    {
        return false;
    }
    _variant_t value;
    RequireResult(attribute->get_nodeValue(&value));
    return TextOfVariant(value) == condition.value;
}

bool MeetsAll(const MSXML2::IXMLDOMNodePtr& node, const std::vector<AttributeCondition>& conditions)
{
    if (conditions.empty())
    {
        return true;
    }
    MSXML2::IXMLDOMNamedNodeMapPtr attributes;
    Require(SUCCEEDED(node->get_attributes(&attributes)), L"get_Attributes failed");
    // Texts and comments have no attributes at all: no match and no failure.
    return attributes && std::all_of(conditions.begin(), conditions.end(),
                                     [&](const AttributeCondition& condition) { return Meets(attributes, condition); });
}

void CollectByAttributes(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                         const std::vector<AttributeCondition>& conditions, bool recursive, QuonNodeArray& result)
{
    ForEachNode(nodes, recursive, [&](const MSXML2::IXMLDOMNodePtr& node) {
        _bstr_t nodeName;
        RequireResult(node->get_nodeName(nodeName.GetAddress()));
        if (name == Characters(nodeName) && MeetsAll(node, conditions))
        {
            AddWithReference(result, node);
        }
        return true;
    });
}

// Appends what `growing` lacks. `readKey(node, key)` says what makes two nodes the same and returns false for a node
// that is to be skipped. Every node is read once.
template <typename ReadKey>
void AppendMissing(QuonNodeArray& growing, const QuonNodeArray& toAdd, const ReadKey& readKey)
{
    if (toAdd.GetSize() == 0)
    {
        return;
    }
    std::unordered_set<std::wstring> known;
    known.reserve(static_cast<size_t>(growing.GetSize() + toAdd.GetSize()));
    std::wstring key;
    for (INT_PTR i = 0; i < growing.GetSize(); ++i)
    {
        if (growing[i] != nullptr && readKey(*growing[i], key))
        {
            known.insert(key);
        }
    }
    for (INT_PTR i = 0; i < toAdd.GetSize(); ++i)
    {
        if (toAdd[i] != nullptr && readKey(*toAdd[i], key) && known.insert(key).second)
        {
            AddWithReference(growing, toAdd[i]);
        }
    }
}

bool ReadNameAndText(MSXML2::IXMLDOMNode& node, std::wstring& key)
{
    _bstr_t name;
    _bstr_t text;
    if (FAILED(node.get_nodeName(name.GetAddress())) || FAILED(node.get_text(text.GetAddress())))
    {
        return false;
    }
    key.assign(Characters(name));
    key.push_back(L'\0');
    key.append(Characters(text));
    return true;
}

}  // namespace

void ReleaseNodeArray(QuonNodeArray* nodes)
{
    if (nodes == nullptr)
    {
        return;
    }
    void** const entries = nodes->GetData();
    for (INT_PTR i = nodes->GetSize() - 1; i >= 0; --i)
    {
        MSXML2::IXMLDOMNode* const node = static_cast<MSXML2::IXMLDOMNode*>(entries[i]);
        if (node != nullptr)
        {
            node->Release();
        }
    }
    nodes->SetSize(0, -1);
}

MSXML2::IXMLDOMNodeListPtr GetDocumentChildNodes(const MSXML2::IXMLDOMDocumentPtr& document)
{
    return ReportingComErrors([&] {
        Require(document, L"pDoc is NULL!");
        MSXML2::IXMLDOMNodeListPtr nodes;
        document->get_childNodes(&nodes);
        Require(nodes, L"get_childNodes failed!");
        // The length shows whether the list can be read at all.
        nodes->Getlength();
        return nodes;
    });
}

MSXML2::IXMLDOMNodePtr FindFirstNodeByName(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name, bool recursive)
{
    return FindFirst(nodes, recursive, [&](const MSXML2::IXMLDOMNodePtr& node) { return HasName(node, name); });
}

QuonNodeArray* FindNodesByName(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name, bool recursive)
{
    return ReportingComErrors([&] {
        QuonNodeArrayOwner found(MakeInMemory<QuonNodeArray>().release());
        Require(found != nullptr, L"pFound is NULL!");
        BeginSearch(nodes);
        if (nodes->Getlength() > 0)
        {
            ForEachNode(nodes, recursive, [&](const MSXML2::IXMLDOMNodePtr& node) {
                if (HasName(node, name))
                {
                    AddWithReference(*found, node);
                }
                return true;
            });
        }
        return found.release();
    });
}

MSXML2::IXMLDOMNodePtr FindNodeByNameAndText(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                             const CString& text, bool recursive)
{
    return FindFirst(nodes, recursive, [&](const MSXML2::IXMLDOMNodePtr& node) {
        return HasName(node, name) && text == Characters(node->Gettext());
    });
}

QuonNodeArray* GetChildNodesOfRoot(const MSXML2::IXMLDOMDocumentPtr& document, const CString& rootName,
                                   const CString& childName)
{
    Require(document, L"pDoc is NULL!");
    QuonNodeArrayOwner nodes(MakeInMemory<QuonNodeArray>().release());
    Require(nodes != nullptr, L"pNodes is NULL!");
    const MSXML2::IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    Require(rootNodes, L"pRootNodeList is NULL!");
    const MSXML2::IXMLDOMNodePtr root = FindFirstNodeByName(rootNodes, rootName, true);
    Require(root, L"pTargetRootNode is NULL!");
    MSXML2::IXMLDOMNodeListPtr children;
    RequireResult(root->get_childNodes(&children), L"pTargetRootNode->get_childNodes failed:\n");
    nodes.reset(FindNodesByName(children, childName, true));
    return nodes.release();
}

void CollectNodesWithAttributes(QuonNodeArray& result, const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                const CString& attribute, const CString& value, bool recursive)
{
    BeginSearch(nodes);
    CollectByAttributes(nodes, name, {AttributeCondition{ToBstr(attribute), value}}, recursive, result);
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): it does not follow the reference count of _bstr_t

void CollectNodesWithAttributes(QuonNodeArray& result, const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                const CStringArray& pairs, bool recursive)
{
    BeginSearch(nodes);
    std::vector<AttributeCondition> conditions;
    for (INT_PTR i = 0; i + 1 < pairs.GetSize(); i += 2)
    {
        if (!pairs[i].IsEmpty())
        {
            conditions.push_back({ToBstr(pairs[i]), pairs[i + 1]});
        }
    }
    CollectByAttributes(nodes, name, conditions, recursive, result);
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): as above

void AddNodes(QuonNodeArray* growing, const QuonNodeArray* toAdd)
{
    Require(growing != nullptr, L"pGrowingNodes is NULL!");
    Require(toAdd != nullptr, L"pNodesToAdd is NULL!");
    AppendMissing(*growing, *toAdd, ReadNameAndText);
}

void AddNodesByAttribute(QuonNodeArray* growing, const QuonNodeArray* toAdd, const CString& attribute)
{
    Require(!attribute.IsEmpty(), L"AttributeName is empty!");
    Require(growing != nullptr, L"pGrowingNodes is NULL!");
    Require(toAdd != nullptr, L"pNodesToAdd is NULL!");
    const _bstr_t name = ToBstr(attribute);
    AppendMissing(*growing, *toAdd, [&](MSXML2::IXMLDOMNode& node, std::wstring& key) {
        key.assign(AttributeText(node, name).GetString());
        return true;
    });
}
