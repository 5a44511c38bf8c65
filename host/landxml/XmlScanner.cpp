#include "host/landxml/XmlScanner.h"

#include "host/Console.h"

#include <algorithm>

namespace quonhost
{

// In XmlMarkup.cpp: the scanner asks it whether a reference is known.
bool AppendReference(std::string& result, std::string_view name);

namespace
{

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kNameEnd = " \t\r\n/>=<&\"'";

std::wstring InTag(std::string_view name)
{
    return L"<" + ToWide(name) + L">";
}

bool CanBeginName(char ch)
{
    const auto byte = static_cast<unsigned char>(ch);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || byte == '_' || byte == ':' || byte >= 0x80;
}

std::string_view PrefixOf(std::string_view name)
{
    const size_t colon = name.find(':');
    return colon == std::string_view::npos ? std::string_view() : name.substr(0, colon);
}

}  // namespace

void XmlScanner::Fail(const std::wstring& reason) const
{
    throw XmlFault{m_line, reason};
}

void XmlScanner::FailAtEnd(const std::wstring& inside) const
{
    const auto rest = std::count(m_text.begin() + static_cast<std::ptrdiff_t>(m_at), m_text.end(), '\n');
    throw XmlFault{m_line + static_cast<unsigned int>(rest), L"the file ends within " + inside};
}

void XmlScanner::CountLines(size_t end)
{
    m_line += static_cast<unsigned int>(std::count(m_text.begin() + static_cast<std::ptrdiff_t>(m_at),
                                                   m_text.begin() + static_cast<std::ptrdiff_t>(end), '\n'));
    m_at = end;
}

void XmlScanner::CheckReferences(std::string_view text) const
{
    std::string ignored;
    for (size_t mark = text.find('&'); mark != std::string_view::npos; mark = text.find('&', mark + 1))
    {
        const size_t end = text.find_first_of("; \t\r\n<&", mark + 1);
        if (end == std::string_view::npos || text[end] != ';')
        {
            Fail(L"\"&\" must be written \"&amp;\"");
        }
        if (!AppendReference(ignored, text.substr(mark + 1, end - mark - 1)))
        {
            Fail(L"the entity \"" + ToWide(text.substr(mark, end + 1 - mark)) + L"\" is not known");
        }
    }
}

std::vector<XmlTree::Record> XmlScanner::Scan()
{
    while (m_at < m_text.size())
    {
        TakeCharacters(std::min(m_text.find('<', m_at), m_text.size()));
        if (m_at < m_text.size())
        {
            TakeMarkup();
        }
    }
    if (!m_open.empty())
    {
        Fail(L"the file ends before </" + ToWide(m_open.back().name) + L">, which line " +
             std::to_wstring(m_records[m_open.back().index].line) + L" opens");
    }
    if (m_records.empty())
    {
        Fail(L"there is no element");
    }
    m_steps.Finish();
    return std::move(m_records);
}

void XmlScanner::TakeCharacters(size_t end)
{
    const std::string_view text = m_text.substr(m_at, end - m_at);
    if (m_open.empty())
    {
        const size_t first = text.find_first_not_of(kBlanks);
        if (first != std::string_view::npos)
        {
            CountLines(m_at + first);
            Fail(m_records.empty() ? L"there is text before the first element"
                                   : L"there is text after the last element");
        }
    }
    if (text.find('&') != std::string_view::npos)
    {
        CheckReferences(text);
    }
    CountLines(end);
}

void XmlScanner::TakeMarkup()
{
    const std::string_view rest = m_text.substr(m_at);
    if (rest.substr(0, 4) == "<!--")
    {
        TakeUntil("<!--", "-->", L"a comment");
    }
    else if (rest.substr(0, 9) == "<![CDATA[")
    {
        TakeUntil("<![CDATA[", "]]>", L"a CDATA section");
    }
    else if (rest.substr(0, 2) == "<?")
    {
        TakeUntil("<?", "?>", L"a processing instruction");
    }
    else if (rest.substr(0, 2) == "<!")
    {
        TakeDeclaration();
    }
    else if (rest.substr(0, 2) == "</")
    {
        TakeEndTag();
    }
    else
    {
        TakeStartTag();
    }
}

void XmlScanner::TakeUntil(std::string_view opening, std::string_view closing, const wchar_t* what)
{
    // The "-" of "<!-->" does not close the comment.
    const size_t end = m_text.find(closing, m_at + opening.size());
    if (end == std::string_view::npos)
    {
        FailAtEnd(std::wstring(what) + L" that begins in line " + std::to_wstring(m_line));
    }
    CountLines(end + closing.size());
}

// A document type: what is in its brackets is not used, and entities that it declares are not known.
void XmlScanner::TakeDeclaration()
{
    int brackets = 0;
    for (size_t at = m_at; at < m_text.size(); ++at)
    {
        brackets += m_text[at] == '[' ? 1 : 0;
        brackets -= m_text[at] == ']' ? 1 : 0;
        if (m_text[at] == '>' && brackets <= 0)
        {
            CountLines(at + 1);
            return;
        }
    }
    FailAtEnd(L"a declaration that begins in line " + std::to_wstring(m_line));
}

size_t XmlScanner::SkipBlanks()
{
    const size_t end = std::min(m_text.find_first_not_of(kBlanks, m_at), m_text.size());
    const size_t count = end - m_at;
    if (count > 0)
    {
        CountLines(end);
    }
    return count;
}

std::string_view XmlScanner::TakeName(const wchar_t* what)
{
    const size_t end = std::min(m_text.find_first_of(kNameEnd, m_at), m_text.size());
    const std::string_view name = m_text.substr(m_at, end - m_at);
    if (name.empty() || !CanBeginName(name[0]))
    {
        Fail(std::wstring(what) + L" is missing or begins with a character that names cannot begin with");
    }
    m_at = end;
    return name;
}

void XmlScanner::TakeEndTag()
{
    m_at += 2;
    const std::string_view name = TakeName(L"the name of an end tag");
    SkipBlanks();
    if (m_at == m_text.size())
    {
        FailAtEnd(L"the end tag </" + ToWide(name) + L">");
    }
    if (m_open.empty())
    {
        Fail(L"</" + ToWide(name) + L"> ends an element that is not open");
    }
    if (m_open.back().name != name)
    {
        Fail(L"</" + ToWide(name) + L"> does not end " + InTag(m_open.back().name) + L", which line " +
             std::to_wstring(m_records[m_open.back().index].line) + L" opens");
    }
    if (m_text[m_at] != '>')
    {
        Fail(L"the end tag </" + ToWide(name) + L"> has more than its name");
    }
    m_records[m_open.back().index].contentEnd = static_cast<std::uint32_t>(m_text.rfind('<', m_at));
    ++m_at;
    End();
}

void XmlScanner::TakeStartTag()
{
    const size_t start = m_at;
    const unsigned int line = m_line;
    if (m_open.empty() && !m_records.empty())
    {
        Fail(L"there is a second root element");
    }
    const size_t bindings = m_bindings.size();
    const Tag tag = TakeTag();
    const auto index = static_cast<std::uint32_t>(m_records.size());
    const auto content = static_cast<std::uint32_t>(m_at);
    XmlTree::Record record = {static_cast<std::uint32_t>(start), content, content, 0, 0, 0, 0};
    record.line = line & 0x7FFFFFFF;
    record.isOwn = IsInRootNamespace(tag.name) ? 1 : 0;
    m_records.push_back(record);
    Link(index);
    m_open.push_back({index, 0, tag.name, bindings});
    if (tag.isEmpty)
    {
        End();
    }
    m_steps.MoveTo(m_at);
}

XmlScanner::Tag XmlScanner::TakeTag()
{
    ++m_at;
    Tag tag;
    tag.name = TakeName(L"the name of an element");
    m_attributes.clear();
    for (;;)
    {
        const size_t blanks = SkipBlanks();
        if (m_at == m_text.size())
        {
            FailAtEnd(InTag(tag.name));
        }
        tag.isEmpty = m_text[m_at] == '/';
        m_at += tag.isEmpty ? 1 : 0;
        if (m_at < m_text.size() && m_text[m_at] == '>')
        {
            ++m_at;
            return tag;
        }
        if (tag.isEmpty || blanks == 0)
        {
            Fail(InTag(tag.name) + L" is not written as a tag");
        }
        TakeAttribute(tag.name);
    }
}

void XmlScanner::TakeAttribute(std::string_view element)
{
    const std::string_view name = TakeName(L"the name of an attribute");
    if (std::find(m_attributes.begin(), m_attributes.end(), name) != m_attributes.end())
    {
        Fail(InTag(element) + L" has the attribute \"" + ToWide(name) + L"\" twice");
    }
    m_attributes.push_back(name);
    SkipBlanks();
    if (m_at == m_text.size())
    {
        FailAtEnd(InTag(element));
    }
    if (m_text[m_at] != '=')
    {
        Fail(L"the attribute \"" + ToWide(name) + L"\" of " + InTag(element) + L" has no value");
    }
    ++m_at;
    SkipBlanks();
    TakeValue(element, name);
}

void XmlScanner::TakeValue(std::string_view element, std::string_view name)
{
    if (m_at == m_text.size())
    {
        FailAtEnd(InTag(element));
    }
    const char quote = m_text[m_at];
    if (quote != '"' && quote != '\'')
    {
        Fail(L"the value of the attribute \"" + ToWide(name) + L"\" of " + InTag(element) + L" is not in quotes");
    }
    const size_t end = m_text.find(quote, m_at + 1);
    const std::string_view value = m_text.substr(m_at + 1, end == std::string_view::npos ? end : end - m_at - 1);
    if (value.find('<') != std::string_view::npos)
    {
        Fail(L"the value of the attribute \"" + ToWide(name) + L"\" of " + InTag(element) +
             L" is not closed, or holds a \"<\"");
    }
    if (end == std::string_view::npos)
    {
        FailAtEnd(L"the attribute \"" + ToWide(name) + L"\" of " + InTag(element));
    }
    if (value.find('&') != std::string_view::npos)
    {
        CheckReferences(value);
    }
    if (name == "xmlns" || PrefixOf(name) == "xmlns")
    {
        m_bindings.push_back({name.substr(std::min<size_t>(name.size(), 6)), value});
    }
    CountLines(end + 1);
}

bool XmlScanner::IsInRootNamespace(std::string_view name)
{
    const std::string_view prefix = PrefixOf(name);
    const auto found = std::find_if(m_bindings.rbegin(), m_bindings.rend(),
                                    [prefix](const Binding& binding) { return binding.prefix == prefix; });
    if (found == m_bindings.rend() && !prefix.empty() && prefix != "xml")
    {
        Fail(L"the prefix of " + InTag(name) + L" is not declared");
    }
    const std::string_view uri = found == m_bindings.rend() ? std::string_view() : found->uri;
    if (m_records.empty())
    {
        m_rootNamespace = uri;
    }
    return uri == m_rootNamespace;
}

void XmlScanner::Link(std::uint32_t index)
{
    if (m_open.empty())
    {
        return;
    }
    OpenElement& parent = m_open.back();
    if (parent.lastChild == 0)
    {
        m_records[parent.index].firstChild = index;
    }
    else
    {
        m_records[parent.lastChild].next = index;
    }
    parent.lastChild = index;
}

void XmlScanner::End()
{
    m_bindings.resize(m_open.back().bindings);
    m_open.pop_back();
}

}  // namespace quonhost
