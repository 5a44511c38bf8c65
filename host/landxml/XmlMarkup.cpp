#include "host/landxml/XmlScanner.h"

#include "host/Console.h"

#include <charconv>

namespace quonhost
{
namespace
{

struct Entity
{
    std::string_view name;
    char character;
};

constexpr Entity kEntities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

// The character of a reference such as "#228" or "#xE4"; 0 when it is not one that a document may have.
char32_t CharacterOf(std::string_view name)
{
    const bool isHex = name.size() > 1 && name[1] == 'x';
    const std::string_view digits = name.substr(isHex ? 2 : 1);
    unsigned int code = 0;
    const std::from_chars_result result =
        std::from_chars(digits.data(), digits.data() + digits.size(), code, isHex ? 16 : 10);
    const bool isWhole = result.ec == std::errc() && result.ptr == digits.data() + digits.size();
    const bool isAllowed = (code >= ' ' && code < 0xD800) || (code > 0xDFFF && code < 0xFFFE) ||
                           (code > 0xFFFF && code <= 0x10FFFF) || code == '\t' || code == '\n' || code == '\r';
    return isWhole && isAllowed ? code : 0;
}

void AppendUtf8(std::string& text, char32_t code)
{
    const wchar_t single = static_cast<wchar_t>(code);
    if (code <= 0xFFFF)
    {
        text += ToUtf8({&single, 1});
        return;
    }
    const wchar_t pair[] = {static_cast<wchar_t>(0xD800 + ((code - 0x10000) >> 10)),
                            static_cast<wchar_t>(0xDC00 + ((code - 0x10000) & 0x3FF))};
    text += ToUtf8({pair, 2});
}

}  // namespace

bool AppendReference(std::string& result, std::string_view name)
{
    for (const Entity& entity : kEntities)
    {
        if (entity.name == name)
        {
            result += entity.character;
            return true;
        }
    }
    const char32_t code = !name.empty() && name[0] == '#' ? CharacterOf(name) : 0;
    if (code != 0)
    {
        AppendUtf8(result, code);
    }
    return code != 0;
}

void AppendUnescaped(std::string& result, std::string_view text)
{
    for (size_t at = 0; at < text.size();)
    {
        const size_t mark = std::min(text.find('&', at), text.size());
        result.append(text.substr(at, mark - at));
        const size_t end = text.find(';', mark);
        if (mark == text.size() || end == std::string_view::npos)
        {
            result.append(text.substr(mark));
            return;
        }
        if (!AppendReference(result, text.substr(mark + 1, end - mark - 1)))
        {
            result.append(text.substr(mark, end + 1 - mark));
        }
        at = end + 1;
    }
}

XmlMarkup MarkupAt(std::string_view text, size_t at)
{
    constexpr std::string_view kCharactersBegin = "<![CDATA[";
    const auto after = [&](std::string_view closing) { return text.find(closing, at + 2) + closing.size(); };
    if (text.substr(at, kCharactersBegin.size()) == kCharactersBegin)
    {
        const size_t end = after("]]>");
        const size_t begin = at + kCharactersBegin.size();
        return {XmlMarkup::kCharacters, text.substr(begin, end - 3 - begin), end};
    }
    switch (text[at + 1])
    {
        case '!':
            // The "-" of "<!-->" does not close the comment.
            return {XmlMarkup::kOther, {}, text.find("-->", at + 4) + 3};
        case '?':
            return {XmlMarkup::kOther, {}, after("?>")};
        case '/':
            return {XmlMarkup::kEnd, {}, after(">")};
        default:
            break;
    }
    // A ">" within quotes does not end a tag.
    size_t end = at;
    for (end = text.find_first_of("\"'>", at); text[end] != '>'; end = text.find_first_of("\"'>", end + 1))
    {
        end = text.find(text[end], end + 1);
    }
    return {text[end - 1] == '/' ? XmlMarkup::kEmptyElement : XmlMarkup::kStart, {}, end + 1};
}

}  // namespace quonhost
