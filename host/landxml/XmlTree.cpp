#include "host/landxml/XmlTree.h"

#include "host/Console.h"
#include "host/landxml/FileErrors.h"
#include "host/landxml/XmlScanner.h"

#include <algorithm>

namespace quonhost
{
namespace
{

constexpr std::string_view kBlanks = " \t\r\n";

// The text without markup and with what its references stand for. Children are left out with all that is in them.
std::string WithoutMarkup(std::string_view text)
{
    std::string result;
    size_t depth = 0;
    for (size_t at = 0; at < text.size();)
    {
        const size_t markup = std::min(text.find('<', at), text.size());
        if (depth == 0)
        {
            AppendUnescaped(result, text.substr(at, markup - at));
        }
        at = markup;
        if (at == text.size())
        {
            break;
        }
        const XmlMarkup found = MarkupAt(text, at);
        if (depth == 0 && found.kind == XmlMarkup::kCharacters)
        {
            result.append(found.content);
        }
        depth += found.kind == XmlMarkup::kStart ? 1 : 0;
        depth -= found.kind == XmlMarkup::kEnd ? 1 : 0;
        at = found.end;
    }
    return result;
}

}  // namespace

std::string_view XmlElement::QualifiedName() const
{
    const std::string_view text = m_tree->m_text;
    const size_t begin = m_tree->m_records[m_index].start + 1;
    return text.substr(begin, text.find_first_of(" \t\r\n/>", begin) - begin);
}

std::string_view XmlElement::LocalName() const
{
    const std::string_view name = QualifiedName();
    return name.substr(name.find(':') + 1);
}

bool XmlElement::IsOwn() const
{
    return m_tree->m_records[m_index].isOwn != 0;
}

std::string_view XmlElement::DefaultNamespace() const
{
    const std::string_view name = QualifiedName();
    const size_t colon = name.find(':');
    const std::string attribute =
        colon == std::string_view::npos ? "xmlns" : "xmlns:" + std::string(name.substr(0, colon));
    return RawAttribute(attribute).value_or("");
}

unsigned int XmlElement::Line() const
{
    return m_tree->m_records[m_index].line;
}

std::optional<std::string_view> XmlElement::RawAttribute(std::string_view name) const
{
    // The document is well-formed: every name has its "=" and its quotes.
    const std::string_view text = m_tree->m_text;
    const size_t nameBegin = m_tree->m_records[m_index].start + 1;
    size_t at = text.find_first_of(" \t\r\n/>", nameBegin);
    for (;;)
    {
        at = text.find_first_not_of(kBlanks, at);
        if (text[at] == '/' || text[at] == '>')
        {
            return std::nullopt;
        }
        const size_t end = text.find_first_of("= \t\r\n", at);
        const size_t quote = text.find_first_of("\"'", end);
        const size_t closing = text.find(text[quote], quote + 1);
        if (text.substr(at, end - at) == name)
        {
            return text.substr(quote + 1, closing - quote - 1);
        }
        at = closing + 1;
    }
}

bool XmlElement::HasAttribute(std::string_view name) const
{
    return RawAttribute(name).has_value();
}

std::wstring XmlElement::Attribute(std::string_view name) const
{
    const std::optional<std::string_view> raw = RawAttribute(name);
    if (!raw || raw->empty())
    {
        return L"";
    }
    if (raw->find_first_of("&\t\r\n") == std::string_view::npos)
    {
        return ToWide(*raw);
    }
    std::string blanks(*raw);
    std::replace_if(
        blanks.begin(), blanks.end(), [](char ch) { return ch == '\t' || ch == '\r' || ch == '\n'; }, ' ');
    std::string value;
    AppendUnescaped(value, blanks);
    return ToWide(value);
}

std::string XmlElement::Text() const
{
    const XmlTree::Record& record = m_tree->m_records[m_index];
    const std::string_view text =
        std::string_view(m_tree->m_text).substr(record.content, record.contentEnd - record.content);
    return text.find_first_of("<&") == std::string_view::npos ? std::string(text) : WithoutMarkup(text);
}

XmlElement XmlElement::FirstChild() const
{
    const std::uint32_t child = m_tree->m_records[m_index].firstChild;
    return child == 0 ? XmlElement() : XmlElement(*m_tree, child);
}

XmlElement XmlElement::Next() const
{
    const std::uint32_t next = m_tree->m_records[m_index].next;
    return next == 0 ? XmlElement() : XmlElement(*m_tree, next);
}

XmlElement XmlElement::Child(std::string_view localName) const
{
    for (XmlElement child = FirstChild(); child; child = child.Next())
    {
        if (child.Is(localName))
        {
            return child;
        }
    }
    return XmlElement();
}

size_t XmlElement::CountChildren() const
{
    size_t count = 0;
    for (XmlElement child = FirstChild(); child; child = child.Next())
    {
        ++count;
    }
    return count;
}

XmlTree::XmlTree(const std::wstring& name, std::string utf8) : m_text(std::move(utf8))
{
    try
    {
        m_records = XmlScanner(m_text).Scan();
    }
    catch (const XmlFault& fault)
    {
        throw LineError(name, fault.line, fault.reason);
    }
}

}  // namespace quonhost
