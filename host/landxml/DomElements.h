// A walk over the elements of a loaded document by their local names.
#pragma once

#include <afx.h>

#include "xml/Msxml2.h"
#include "xml/XmlNodes.h"

#include <string>
#include <string_view>

namespace quonhost
{

/// The part of a name behind its prefix.
inline std::wstring_view LocalName(std::wstring_view name)
{
    return name.substr(name.find(L':') + 1);
}

/// The text, without the copy that `_bstr_t` would be turned into.
inline std::wstring_view View(const _bstr_t& text)
{
    return {static_cast<const wchar_t*>(text), text.length()};
}

/// The namespace of a node; "" when it has none.
inline std::wstring NamespaceOf(MSXML2::IXMLDOMNode* node)
{
    return std::wstring(View(node->GetnamespaceURI()));
}

inline bool IsElement(MSXML2::IXMLDOMNode* node)
{
    return node->GetnodeType() == MSXML2::NODE_ELEMENT;
}

/// The value of an attribute; "" when the element does not have it.
inline std::wstring AttributeOf(const MSXML2::IXMLDOMNodePtr& node, const wchar_t* name)
{
    return GetAttributeValue(node, name).GetString();
}

/// The number of children of every kind: the steps that a walk over them makes.
inline size_t CountChildren(const MSXML2::IXMLDOMNodePtr& node)
{
    return static_cast<size_t>(node->GetchildNodes()->Getlength());
}

/// Calls `visit(child)` for each child element of `parent` with the local name, in the parent's own namespace.
///
/// The children are reached from one to the next: by their index that would take time in proportion to the index.
template <typename Visit>
void ForEachElement(MSXML2::IXMLDOMNode* parent, std::wstring_view name, const Visit& visit)
{
    const std::wstring space = NamespaceOf(parent);
    for (MSXML2::IXMLDOMNodePtr child = parent->GetfirstChild(); child; child = child->GetnextSibling())
    {
        if (LocalName(View(child->GetnodeName())) == name && IsElement(child) && NamespaceOf(child) == space)
        {
            visit(child);
        }
    }
}

/// The first of the elements that ForEachElement visits; empty when there is none.
inline MSXML2::IXMLDOMNodePtr FirstElement(MSXML2::IXMLDOMNode* parent, std::wstring_view name)
{
    MSXML2::IXMLDOMNodePtr first;
    ForEachElement(parent, name, [&first](const MSXML2::IXMLDOMNodePtr& element) {
        if (!first)
        {
            first = element;
        }
    });
    return first;
}

}  // namespace quonhost
