// The elements of an XML file.
//
// The DOM takes about a kilobyte for an element and gives no line numbers. A survey of a million points needs both: a
// record of a few bytes for each, and the place of a bad one. Documents are therefore read here, and written through
// the library's DOM functions.
#pragma once

#include <afx.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

class XmlTree;

/// An element of a tree, which must outlive it. A default-constructed one is empty, as is what a search did not find.
class XmlElement
{
public:
    XmlElement() = default;
    XmlElement(const XmlTree& tree, std::uint32_t index) : m_tree(&tree), m_index(index) {}

    explicit operator bool() const { return m_tree != nullptr; }

    /// Returns the name as it is written, with its prefix. UTF-8, as all views are.
    std::string_view QualifiedName() const;
    /// Returns the name without prefix.
    std::string_view LocalName() const;
    /// Returns whether the element is in the namespace of the root.
    bool IsOwn() const;
    /// Returns whether the element is in the namespace of the root and has this name there.
    bool Is(std::string_view localName) const { return IsOwn() && LocalName() == localName; }
    /// Returns the namespace that the start tag declares for elements without prefix; "" when it declares none.
    std::string_view DefaultNamespace() const;
    /// Returns the number of the line where the element begins.
    unsigned int Line() const;

    /// Returns the value of an attribute, by its name as it is written; "" when there is none.
    std::wstring Attribute(std::string_view name) const;
    /// Returns whether the element has the attribute.
    bool HasAttribute(std::string_view name) const;
    /// Returns the text of the element without that of its children.
    std::string Text() const;

    XmlElement FirstChild() const;
    XmlElement Next() const;
    /// Returns the first child of this name in the namespace of the root.
    XmlElement Child(std::string_view localName) const;
    size_t CountChildren() const;

private:
    std::optional<std::string_view> RawAttribute(std::string_view name) const;

    const XmlTree* m_tree = nullptr;
    std::uint32_t m_index = 0;
};

/// Calls `visit(child)` for each child of this name in the namespace of the root.
template <typename Visit>
void ForEachChild(const XmlElement& parent, std::string_view localName, const Visit& visit)
{
    for (XmlElement child = parent ? parent.FirstChild() : XmlElement(); child; child = child.Next())
    {
        if (child.Is(localName))
        {
            visit(child);
        }
    }
}

/// A well-formed document: the text of its file and a record for each element.
class XmlTree
{
public:
    /// Reads a document and reports its progress.
    /// @param name the file as error texts show it
    /// @throws CommandError with the line and the reason when the text is not well-formed
    XmlTree(const std::wstring& name, std::string utf8);
    XmlTree(const XmlTree&) = delete;
    XmlTree& operator=(const XmlTree&) = delete;

    XmlElement Root() const { return XmlElement(*this, 0); }

    /// What is known of an element; offsets are those of bytes.
    struct Record
    {
        std::uint32_t start;       ///< of "<"
        std::uint32_t content;     ///< after the start tag
        std::uint32_t contentEnd;  ///< of the end tag; `content` for an empty element
        std::uint32_t firstChild;  ///< 0: none
        std::uint32_t next;        ///< 0: none
        std::uint32_t line : 31;
        std::uint32_t isOwn : 1;
    };

private:
    friend class XmlElement;

    std::string m_text;
    std::vector<Record> m_records;
};

}  // namespace quonhost
