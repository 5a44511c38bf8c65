// What the tests of the node functions share.
#pragma once

#include "xml/DomFakes.h"
#include "xml/XmlNodes.h"
#include "xml/XmlTestSupport.h"

namespace quon_test
{

struct NodeArrayDeleter
{
    void operator()(QuonNodeArray* nodes) const
    {
        ReleaseNodeArray(nodes);
        delete nodes;
    }
};
using NodeArrayHolder = std::unique_ptr<QuonNodeArray, NodeArrayDeleter>;

/// The values of the attribute "id" of the nodes: tells which they are.
inline std::wstring Ids(const QuonNodeArray& nodes)
{
    std::wstring ids;
    for (INT_PTR i = 0; i < nodes.GetSize(); ++i)
    {
        ids += Attribute(MSXML2::IXMLDOMNodePtr(nodes[i]), L"id");
    }
    return ids;
}

inline std::wstring Ids(QuonNodeArray* nodes)
{
    const NodeArrayHolder owned(nodes);
    return Ids(*owned);
}

/// Adds a node with a reference of the array's own.
inline void AddNode(QuonNodeArray& nodes, MSXML2::IXMLDOMNode* node)
{
    nodes.Add(node);
    if (node != nullptr)
    {
        node->AddRef();
    }
}

inline CString HResultLine(HRESULT result)
{
    CString line;
    line.Format(L"HRESULT = 0x%08X .\n\t", static_cast<unsigned>(result));
    return line;
}

/// Whether `status` is `prefix` and then the text of `result`.
inline ::testing::AssertionResult IsResultText(const std::wstring& status, const wchar_t* prefix, HRESULT result)
{
    const std::wstring expected = std::wstring(prefix) + HResultLine(result).GetString();
    if (status.compare(0, expected.size(), expected) == 0 && status.size() > expected.size())
    {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << ::testing::PrintToString(status);
}

}  // namespace quon_test
