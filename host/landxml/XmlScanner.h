// The syntax of XML: finds the elements of a text and what is wrong with it.
#pragma once

#include <afx.h>

#include "host/landxml/Steps.h"
#include "host/landxml/XmlTree.h"

#include <string>
#include <string_view>
#include <vector>

namespace quonhost
{

/// Where and why a text is not well-formed.
struct XmlFault
{
    unsigned int line;
    std::wstring reason;
};

/// Appends `text` with the characters that its references stand for. A reference that is not known stays as it is.
void AppendUnescaped(std::string& result, std::string_view text);

/// A piece of markup in a well-formed text.
struct XmlMarkup
{
    enum Kind
    {
        kStart,
        kEmptyElement,
        kEnd,
        kCharacters,  ///< a CDATA section
        kOther,       ///< a comment or a processing instruction
    };

    Kind kind;
    std::string_view content;  ///< of kCharacters
    size_t end;                ///< where the text continues
};

/// Returns the markup that begins with the "<" at `at`.
XmlMarkup MarkupAt(std::string_view text, size_t at);

/// Goes through a text once, in UTF-8.
class XmlScanner
{
public:
    explicit XmlScanner(std::string_view text) : m_text(text), m_steps(text.size()) {}

    /// Returns the elements in document order, the root first. @throws XmlFault
    std::vector<XmlTree::Record> Scan();

private:
    struct OpenElement
    {
        std::uint32_t index;
        std::uint32_t lastChild;  // 0: none
        std::string_view name;
        size_t bindings;  // that were there before it
    };

    struct Binding
    {
        std::string_view prefix;
        std::string_view uri;
    };

    struct Tag
    {
        std::string_view name;
        bool isEmpty = false;
    };

    [[noreturn]] void Fail(const std::wstring& reason) const;
    [[noreturn]] void FailAtEnd(const std::wstring& inside) const;
    void CountLines(size_t end);
    void CheckReferences(std::string_view text) const;

    void TakeCharacters(size_t end);
    void TakeMarkup();
    void TakeUntil(std::string_view opening, std::string_view closing, const wchar_t* what);
    void TakeDeclaration();
    void TakeEndTag();
    void TakeStartTag();
    Tag TakeTag();
    void TakeAttribute(std::string_view element);
    void TakeValue(std::string_view element, std::string_view name);
    std::string_view TakeName(const wchar_t* what);
    size_t SkipBlanks();

    bool IsInRootNamespace(std::string_view name);
    void Link(std::uint32_t index);
    void End();

    std::string_view m_text;
    size_t m_at = 0;
    unsigned int m_line = 1;
    std::vector<XmlTree::Record> m_records;
    std::vector<OpenElement> m_open;
    std::vector<Binding> m_bindings;
    std::vector<std::string_view> m_attributes;  // of the tag at hand
    std::string_view m_rootNamespace;
    Steps m_steps;
};

}  // namespace quonhost
