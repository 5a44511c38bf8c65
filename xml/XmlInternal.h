/// @file
/// What the sources of the XML layer share and callers do not see.
#pragma once

#include <afx.h>
#include <afxcoll.h>

#include "base/QuonEllipsis.h"
#include "xml/Msxml2.h"
#include "xml/XmlNodes.h"

#include <cstddef>
#include <cstdint>
#include <cwchar>
#include <memory>
#include <new>

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

/// A text for DOM calls, which take it and do not keep it. Lighter than `_bstr_t` where it is made once per node: a
/// short text, as names are, lies in the object itself.
class DomArgument
{
public:
    explicit DomArgument(const CString& text)
    {
        const wchar_t* const characters = text;
        std::size_t length = 0;
        while ((m_inside.text[length] = characters[length]) != L'\0')
        {
            if (++length > kLongestInside)
            {
                Allocate(characters);
                return;
            }
        }
        m_inside.byteCount = static_cast<std::uint32_t>(length * sizeof(wchar_t));
    }
    ~DomArgument()
    {
        if (m_text != m_inside.text)
        {
            ::SysFreeString(m_text);
        }
    }
    DomArgument(const DomArgument&) = delete;
    DomArgument& operator=(const DomArgument&) = delete;

    operator BSTR() const { return m_text; }

private:
    static constexpr std::size_t kLongestInside = 63;

    // As a BSTR lies in memory: the number of bytes directly before the characters, which are aligned as pointers are.
    // Who is handed one reads it and never frees it, so that it need not come from the system's allocator.
    struct alignas(void*) Inside
    {
        std::uint32_t padding = 0;
        std::uint32_t byteCount = 0;
        wchar_t text[kLongestInside + 1];
    };

    void Allocate(const wchar_t* text);

    Inside m_inside;
    BSTR m_text = m_inside.text;
};

/// Text that the DOM handed out, freed at the end of its life. Lighter than `_bstr_t` where it is made once per node.
class DomText
{
public:
    DomText() = default;
    ~DomText() { ::SysFreeString(m_text); }
    DomText(const DomText&) = delete;
    DomText& operator=(const DomText&) = delete;

    /// To be filled once.
    BSTR* Out() { return &m_text; }
    /// A null text is an empty one.
    const wchar_t* Get() const { return m_text == nullptr ? L"" : m_text; }

private:
    BSTR m_text = nullptr;
};

/// A value that the DOM handed out, freed at the end of its life. Lighter than `_variant_t` where it is made once per
/// node: most values are texts.
class DomValue
{
public:
    DomValue() : m_value() {}
    ~DomValue()
    {
        if (m_value.vt == VT_BSTR)
        {
            ::SysFreeString(m_value.bstrVal);
        }
        else
        {
            ::VariantClear(&m_value);
        }
    }
    DomValue(const DomValue&) = delete;
    DomValue& operator=(const DomValue&) = delete;

    /// To be filled once.
    VARIANT* Out() { return &m_value; }
    const VARIANT& Get() const { return m_value; }

private:
    VARIANT m_value;
};

/// The name of a node.
CString NameOf(MSXML2::IXMLDOMNode* node);

/// Another interface of `object`: empty when it does not have it or is empty itself; any other failed query is raised.
/// What the conversion of smart pointers does, without the copy that some of them make.
template <typename Pointer>
Pointer QueryFor(IUnknown* object)
{
    typename Pointer::Interface* found = nullptr;
    if (object != nullptr)
    {
        const HRESULT result = object->QueryInterface(Pointer::GetIID(), reinterpret_cast<void**>(&found));
        if (FAILED(result))
        {
            found = nullptr;
            if (result != E_NOINTERFACE)
            {
                _com_issue_error(result);
            }
        }
    }
    return Pointer(found, false);
}

/// Makes an element that is not in the tree yet. @return the element as a node; empty when the document made none
MSXML2::IXMLDOMNodePtr MakeElement(MSXML2::IXMLDOMDocument* document, const CString& name);

/// The value as text; "" for a value that is no text and cannot be made one.
CString TextOfVariant(const VARIANT& value);

/// Whether `value` as text is `text`.
bool IsText(const VARIANT& value, const CString& text);

/// The value of an attribute of `node`; "" for a node that has no such attribute or cannot have any.
CString AttributeText(MSXML2::IXMLDOMNode* node, BSTR name);

/// The first of the nodes that `CollectNodesWithAttributes` finds, searching recursively; empty when there is none.
MSXML2::IXMLDOMNodePtr FirstNodeWithAttribute(const MSXML2::IXMLDOMNodeListPtr& nodes, const CString& name,
                                              const CString& attribute, const CString& value);

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
    // Left alone the array grows by 1024 entries at most and copies itself ever more often. It is told to double
    // instead.
    const INT_PTR size = nodes.GetSize();
    if (size >= 1024 && (size & (size - 1)) == 0)
    {
        nodes.SetSize(size, size);
    }
    nodes.Add(node);
    if (node != nullptr)
    {
        node->AddRef();
    }
}

/// A new array; null when there is no memory for it, whichever way the allocator says so.
template <typename Array>
Array* MakeArray()
{
    try
    {
        return new Array;
    }
    catch (CMemoryException* exception)
    {
        exception->Delete();
    }
    catch (const std::bad_alloc&)
    {
    }
    return nullptr;
}

/// Runs `work` and turns the errors that it stops into status texts.
template <typename Work>
auto ReportingComErrors(const Work& work)
{
    try
    {
        return work();
    }
    catch (const _com_error& error)
    {
        throw DescribeComError(error);
    }
    catch (const QuonEllipsis&)
    {
        throw CString(kUnhandled);
    }
}

/// Calls `visit(node)` for the rest of the nodes of `list`, until it returns false.
///
/// The list's own cursor is used: reaching a node by its index can take time in proportion to the index.
template <typename Visit>
void ForEachNode(MSXML2::IXMLDOMNodeList* list, const Visit& visit)
{
    while (MSXML2::IXMLDOMNodePtr node = MSXML2::NextNode(list))
    {
        if (!visit(node))
        {
            return;
        }
    }
}

/// The children of a node, with the cursor before the first.
inline MSXML2::IXMLDOMNodeListPtr ChildrenToSearch(MSXML2::IXMLDOMNode* node)
{
    const MSXML2::IXMLDOMNodeListPtr children = MSXML2::GetChildNodes(node);
    Require(children, L"pNodes is NULL!");
    return children;
}

}  // namespace xml_internal
