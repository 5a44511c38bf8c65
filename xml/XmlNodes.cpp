#include "xml/XmlNodes.h"

#include "xml/ComHelpers.h"
#include "xml/XmlInternal.h"

#include <cwchar>
#include <string>
#include <unordered_set>
#include <vector>

namespace
{

using namespace MSXML2;
using namespace xml_internal;

bool HasName(IXMLDOMNode* node, const wchar_t* name)
{
    DomText found;
    Check(node->get_nodeName(found.Out()), node);
    return std::wcscmp(found.Get(), name) == 0;
}

bool HasText(IXMLDOMNode* node, const wchar_t* text)
{
    DomText found;
    Check(node->get_text(found.Out()), node);
    return std::wcscmp(found.Get(), text) == 0;
}

// The list that a search begins with. Its cursor may stand anywhere: callers have used it before.
void BeginSearch(const IXMLDOMNodeListPtr& nodes)
{
    Require(nodes, L"pNodes is NULL!");
    Reset(nodes);
}

template <typename Matches>
IXMLDOMNodePtr FindFirst(IXMLDOMNodeList* nodes, bool recursive, const Matches& matches)
{
    IXMLDOMNodePtr found;
    ForEachNode(nodes, [&](const IXMLDOMNodePtr& node) {
        if (matches(node))
        {
            found = node;
        }
        else if (recursive)
        {
            found = FindFirst(ChildrenToSearch(node), recursive, matches);
        }
        return !found;
    });
    return found;
}

// Fills an empty array that doubles: the array's own way to append looks at its growth for each entry. Entries that are
// not filled yet are null, which whoever releases the array passes over.
class NodeFiller
{
public:
    explicit NodeFiller(QuonNodeArray& nodes) : m_nodes(nodes) {}
    NodeFiller(const NodeFiller&) = delete;
    NodeFiller& operator=(const NodeFiller&) = delete;

    // The array gets the reference that `held` has, and `held` is empty.
    void Take(IXMLDOMNodePtr& held)
    {
        if (m_count == m_room)
        {
            m_room = m_room == 0 ? kFirstRoom : 2 * m_room;
            m_nodes.SetSize(m_room);
            m_entries = m_nodes.GetData();
        }
        m_entries[m_count++] = held.Detach();
    }

    void Finish() { m_nodes.SetSize(m_count); }

private:
    static constexpr INT_PTR kFirstRoom = 16;

    QuonNodeArray& m_nodes;
    void** m_entries = nullptr;
    INT_PTR m_count = 0;
    INT_PTR m_room = 0;
};

void CollectByName(IXMLDOMNodeList* nodes, const wchar_t* name, bool recursive, NodeFiller& found)
{
    ForEachNode(nodes, [&](IXMLDOMNodePtr& held) {
        IXMLDOMNode* const node = held;
        if (HasName(node, name))
        {
            found.Take(held);
        }
        if (recursive)
        {
            CollectByName(ChildrenToSearch(node), name, recursive, found);
        }
        return true;
    });
}

struct AttributeCondition
{
    _bstr_t name;
    CString value;
};

void RequireResult(HRESULT result)
{
    if (FAILED(result))
    {
        throw FormatHResultText(result);
    }
}

bool MeetsAll(IXMLDOMNode* node, const std::vector<AttributeCondition>& conditions)
{
    if (conditions.empty())
    {
        return true;
    }
    IXMLDOMNamedNodeMapPtr attributes;
    Require(SUCCEEDED(node->get_attributes(&attributes)), L"get_Attributes failed");
    if (!attributes)
    {
        // Texts and comments have no attributes at all: no match and no failure.
        return false;
    }
    for (const AttributeCondition& condition : conditions)
    {
        IXMLDOMNodePtr attribute;
        Check(attributes->getNamedItem(condition.name, &attribute), attributes.GetInterfacePtr());
        if (!attribute)
        {
            return false;
        }
        _variant_t value;
        RequireResult(attribute->get_nodeValue(&value));
        if (!IsText(value, condition.value))
        {
            return false;
        }
    }
    return true;
}

void CollectByAttributes(IXMLDOMNodeList* nodes, const wchar_t* name, const std::vector<AttributeCondition>& conditions,
                         bool recursive, QuonNodeArray& result)
{
    ForEachNode(nodes, [&](const IXMLDOMNodePtr& node) {
        DomText nodeName;
        RequireResult(node->get_nodeName(nodeName.Out()));
        if (std::wcscmp(nodeName.Get(), name) == 0 && MeetsAll(node, conditions))
        {
            AddWithReference(result, node);
        }
        if (recursive)
        {
            CollectByAttributes(ChildrenToSearch(node), name, conditions, recursive, result);
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
        if (growing[i] != nullptr && readKey(growing[i], key))
        {
            known.insert(key);
        }
    }
    for (INT_PTR i = 0; i < toAdd.GetSize(); ++i)
    {
        if (toAdd[i] != nullptr && readKey(toAdd[i], key) && known.insert(key).second)
        {
            AddWithReference(growing, toAdd[i]);
        }
    }
}

bool ReadNameAndText(IXMLDOMNode* node, std::wstring& key)
{
    DomText name;
    DomText text;
    if (FAILED(node->get_nodeName(name.Out())) || FAILED(node->get_text(text.Out())))
    {
        return false;
    }
    key.assign(name.Get());
    key.push_back(L'\0');
    key.append(text.Get());
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
        IXMLDOMNode* const node = static_cast<IXMLDOMNode*>(entries[i]);
        if (node != nullptr)
        {
            node->Release();
        }
    }
    nodes->SetSize(0, -1);
}

IXMLDOMNodeListPtr GetDocumentChildNodes(const IXMLDOMDocumentPtr& document)
{
    return ReportingComErrors([&] {
        Require(document, L"pDoc is NULL!");
        IXMLDOMNodeListPtr nodes;
        document->get_childNodes(&nodes);
        Require(nodes, L"get_childNodes failed!");
        // The length tells whether the list can be read at all.
        GetLength(nodes);
        return nodes;
    });
}

IXMLDOMNodePtr FindFirstNodeByName(const IXMLDOMNodeListPtr& nodes, const CString& name, bool recursive)
{
    BeginSearch(nodes);
    if (GetLength(nodes) < 1)
    {
        return IXMLDOMNodePtr();
    }
    return FindFirst(nodes, recursive, [&](IXMLDOMNode* node) { return HasName(node, name); });
}

QuonNodeArray* FindNodesByName(const IXMLDOMNodeListPtr& nodes, const CString& name, bool recursive)
{
    return ReportingComErrors([&] {
        OwnedNodeArray found(MakeArray<QuonNodeArray>());
        Require(found != nullptr, L"pFound is NULL!");
        BeginSearch(nodes);
        if (GetLength(nodes) > 0)
        {
            NodeFiller filler(*found);
            CollectByName(nodes, name, recursive, filler);
            filler.Finish();
        }
        return found.release();
    });
}

IXMLDOMNodePtr FindNodeByNameAndText(const IXMLDOMNodeListPtr& nodes, const CString& name, const CString& text,
                                     bool recursive)
{
    BeginSearch(nodes);
    if (GetLength(nodes) < 1)
    {
        return IXMLDOMNodePtr();
    }
    return FindFirst(nodes, recursive, [&](IXMLDOMNode* node) { return HasName(node, name) && HasText(node, text); });
}

QuonNodeArray* GetChildNodesOfRoot(const IXMLDOMDocumentPtr& document, const CString& rootName,
                                   const CString& childName)
{
    Require(document, L"pDoc is NULL!");
    OwnedNodeArray nodes(MakeArray<QuonNodeArray>());
    Require(nodes != nullptr, L"pNodes is NULL!");
    const IXMLDOMNodeListPtr rootNodes = GetDocumentChildNodes(document);
    Require(rootNodes, L"pRootNodeList is NULL!");
    const IXMLDOMNodePtr root = FindFirstNodeByName(rootNodes, rootName, true);
    Require(root, L"pTargetRootNode is NULL!");
    IXMLDOMNodeListPtr children;
    const HRESULT result = root->get_childNodes(&children);
    if (FAILED(result))
    {
        throw L"pTargetRootNode->get_childNodes failed:\n" + FormatHResultText(result);
    }
    nodes.reset(FindNodesByName(children, childName, true));
    return nodes.release();
}

void CollectNodesWithAttributes(QuonNodeArray& result, const IXMLDOMNodeListPtr& nodes, const CString& name,
                                const CString& attribute, const CString& value, bool recursive)
{
    BeginSearch(nodes);
    CollectByAttributes(nodes, name, {AttributeCondition{ToBstr(attribute), value}}, recursive, result);
}  // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks): it does not follow the reference count of _bstr_t

void CollectNodesWithAttributes(QuonNodeArray& result, const IXMLDOMNodeListPtr& nodes, const CString& name,
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
    const DomArgument name(attribute);
    AppendMissing(*growing, *toAdd, [&](IXMLDOMNode* node, std::wstring& key) {
        key.assign(AttributeText(node, name).GetString());
        return true;
    });
}
