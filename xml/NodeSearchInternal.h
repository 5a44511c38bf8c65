/// @file
/// The walk of all searches: over the nodes of a list and, if asked, over all below them.
#pragma once

#include <afx.h>

#include "xml/Msxml2.h"
#include "xml/XmlStatusInternal.h"

#include <vector>

namespace xml_internal
{

/// Puts the cursor of a list, which its caller may have moved, before the first node. A null list throws
/// "pNodes is NULL!".
inline void BeginSearch(const MSXML2::IXMLDOMNodeListPtr& nodes)
{
    Require(nodes, L"pNodes is NULL!");
    nodes->reset();
}

/// Returns the children of a node, with the cursor before the first. Throws "pNodes is NULL!" when there is no list.
inline MSXML2::IXMLDOMNodeListPtr ChildrenToSearch(const MSXML2::IXMLDOMNodePtr& node)
{
    const MSXML2::IXMLDOMNodeListPtr children = node->GetchildNodes();
    Require(children, L"pNodes is NULL!");
    return children;
}

/// Calls `visit(node)` for the rest of the nodes of a list, until it returns false. With `recursive` the nodes below
/// one follow it, depth first.
///
/// The lists' own cursors are used: reaching a node by its index can take time in proportion to the index. The lists of
/// all levels are kept here and not on the stack, which a deep document would overflow.
template <typename Visit>
void ForEachNode(const MSXML2::IXMLDOMNodeListPtr& nodes, bool recursive, const Visit& visit)
{
    std::vector<MSXML2::IXMLDOMNodeListPtr> lists{nodes};
    while (!lists.empty())
    {
        const MSXML2::IXMLDOMNodePtr node = lists.back()->nextNode();
        if (!node)
        {
            lists.pop_back();
            continue;
        }
        if (!visit(node))
        {
            return;
        }
        if (recursive)
        {
            lists.push_back(ChildrenToSearch(node));
        }
    }
}

/// Returns the first of the nodes that `CollectNodesWithAttributes` finds, searching recursively; empty when there is
/// none.
MSXML2::IXMLDOMNodePtr FirstNodeWithAttribute(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                              const CString& attribute, const CString& value);

}  // namespace xml_internal
