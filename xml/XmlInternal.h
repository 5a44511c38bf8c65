/// @file
/// What the sources of the XML layer share and callers do not see.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include <memory>
#include <new>

#include "xml/Msxml2.h"
#include "xml/XmlNodes.h"

namespace xml_internal
{

inline constexpr wchar_t kStatusFailed[] = L"E_FAIL";
inline constexpr wchar_t kStatusOk[] = L"OK";
inline constexpr wchar_t kUnhandled[] = L"Unhandled Exception!";

/// The end of every function with a status text: anything but "OK" is thrown.
inline void ThrowUnlessOk(const CString& status)
{
    if (status != kStatusOk)
    {
        throw CString(status);
    }
}

/// Throws `message` as the status of the step that failed, unless `succeeded`.
inline void Require(bool succeeded, const wchar_t* message)
{
    if (!succeeded)
    {
        throw CString(message);
    }
}

/// The status for an error that a node or document function caught: "COM Error:", a line break, the description.
CString TextOfComError(const _com_error& error);

/// The status in functions that report the error object itself: "_com_error = " and the description or, when there is
/// none, a sentence that says so.
CString DescribeComError(const _com_error& error);

inline _bstr_t ToBstr(const CString& text)
{
    return _bstr_t(text.GetString());
}

/// Text that the DOM handed out, freed at the end of its life. Lighter than `_bstr_t` where it is made once per node.
class DomText
{
public:
    DomText() = default;
    ~DomText() { ::SysFreeString(m_text); }
    DomText(const DomText&) = delete;
    DomText& operator=(const DomText&) = delete;

    BSTR* Out()
    {
        ::SysFreeString(m_text);
        m_text = nullptr;
        return &m_text;
    }
    /// A null text is an empty one.
    const wchar_t* Get() const { return m_text == nullptr ? L"" : m_text; }

private:
    BSTR m_text = nullptr;
};

/// The value as text; "" for a value that is no text and cannot be made one.
CString TextOfVariant(const VARIANT& value);

/// Owns a node array until it is handed to the caller: releases the entries and deletes the array.
struct NodeArrayDeleter
{
    void operator()(QuonNodeArray* nodes) const
    {
        ReleaseNodeArray(nodes);
        delete nodes;
    }
};
using OwnedNodeArray = std::unique_ptr<QuonNodeArray, NodeArrayDeleter>;
using OwnedStringArray = std::unique_ptr<CStringArray>;

/// Adds `node` to `nodes` with a reference of the array's own.
inline void AddWithReference(QuonNodeArray& nodes, MSXML2::IXMLDOMNode* node)
{
    nodes.Add(node);
    if (node != nullptr)
    {
        node->AddRef();
    }
}

/// Calls `visit(node)` for each node of `list` from the first on, until it returns false.
/// @return whether all were visited
///
/// The list's own cursor is used: reaching a node by its index can take time in proportion to the index.
template <typename Visit>
bool ForEachNode(MSXML2::IXMLDOMNodeList* list, Visit&& visit)
{
    MSXML2::Reset(list);
    while (MSXML2::IXMLDOMNodePtr node = MSXML2::NextNode(list))
    {
        if (!visit(node))
        {
            return false;
        }
    }
    return true;
}

}  // namespace xml_internal
