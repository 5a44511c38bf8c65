// An element of a new document and its contents, each child on a line of its own.
#pragma once

#include <afx.h>

#include "xml/XmlDocument.h"
#include "xml/XmlNodes.h"
#include "xml/XmlValues.h"

#include <string>

namespace quonhost
{

/// An element that gets attributes, then children or a text.
class DomBranch
{
public:
    /// @param depth the depth of the element in the tree: the root has 0
    DomBranch(const MSXML2::IXMLDOMDocumentPtr& document, const MSXML2::IXMLDOMNodePtr& node, int depth)
        : m_document(document), m_node(node), m_lineEnd(L"\n" + CString(L' ', 2 * depth))
    {
    }

    /// Adds an empty element.
    DomBranch Add(const wchar_t* name) const
    {
        BreakLine(m_lineEnd + L"  ");
        const MSXML2::IXMLDOMNodePtr child = AppendNewElement(m_document, m_node, name);
        if (!child)
        {
            // Appending failed without an error code.
            _com_raise_error(E_FAIL);
        }
        return DomBranch(m_document, child, m_lineEnd.GetLength() / 2 + 1);
    }

    void Set(const wchar_t* name, const CString& value) const { SetXmlString(m_node, name, value); }

    void SetText(const CString& text) const
    {
        MSXML2::IXMLDOMNodePtr added;
        AppendTextChild(added, m_document, m_node, text);
    }

    /// Ends the line of the last child: after it comes the end tag.
    void Close() const { BreakLine(m_lineEnd); }

private:
    void BreakLine(const CString& lineEnd) const { SetText(lineEnd); }

    MSXML2::IXMLDOMDocumentPtr m_document;
    MSXML2::IXMLDOMNodePtr m_node;
    CString m_lineEnd;  // with the indentation of the element
};

}  // namespace quonhost
