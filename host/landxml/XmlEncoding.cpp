#include "host/landxml/XmlEncoding.h"

#include "host/Console.h"
#include "host/landxml/FileErrors.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdlib>
#include <cstring>

namespace quonhost
{
namespace
{

using namespace std::string_view_literals;

constexpr unsigned int kUnknownCodePage = 0;

struct NamedCodePage
{
    std::string_view name;
    unsigned int codePage;
};

constexpr NamedCodePage kCodePages[] = {
    {"utf-8", CP_UTF8},
    {"us-ascii", CP_UTF8},
    {"ascii", CP_UTF8},
    {"latin1", 28591},
    {"shift_jis", 932},
    {"windows-31j", 932},
    {"gb2312", 936},
    {"gbk", 936},
    {"gb18030", 54936},
    {"euc-kr", 949},
    {"ks_c_5601-1987", 949},
    {"big5", 950},
    {"euc-jp", 51932},
    {"koi8-r", 20866},
    // A file that was converted keeps its declaration. Its bytes decide.
    {"utf-16", CP_UTF8},
};

std::string LowerCase(std::string_view text)
{
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](char ch) { return ch >= 'A' && ch <= 'Z' ? static_cast<char>(ch - 'A' + 'a') : ch; });
    return lower;
}

unsigned int NumberAfter(std::string_view prefix, const std::string& name)
{
    return name.compare(0, prefix.size(), prefix) == 0
               ? static_cast<unsigned int>(std::strtoul(name.c_str() + prefix.size(), nullptr, 10))
               : 0;
}

unsigned int CodePageOf(const std::string& name)
{
    for (const NamedCodePage& row : kCodePages)
    {
        if (row.name == name)
        {
            return row.codePage;
        }
    }
    if (const unsigned int part = NumberAfter("iso-8859-", name); part > 0 && part <= 16)
    {
        return 28590 + part;
    }
    return NumberAfter("windows-", name);
}

// The value of `encoding` in the XML declaration; "" when there is none.
std::string DeclaredEncoding(std::string_view bytes)
{
    if (bytes.substr(0, 5) != "<?xml")
    {
        return "";
    }
    const std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const size_t name = declaration.find("encoding");
    const size_t begin = name == std::string_view::npos ? name : declaration.find_first_of("\"'", name);
    if (begin == std::string_view::npos)
    {
        return "";
    }
    const size_t end = declaration.find(declaration[begin], begin + 1);
    return LowerCase(declaration.substr(begin + 1, end - begin - 1));
}

std::string FromUtf16(const std::wstring& name, std::string_view bytes, bool isBigEndian)
{
    if (bytes.size() % 2 != 0)
    {
        throw FileError(name, L"the file ends within a character of UTF-16");
    }
    std::wstring text(bytes.size() / 2, L'\0');
    std::memcpy(text.data(), bytes.data(), bytes.size());
    if (isBigEndian)
    {
        for (wchar_t& ch : text)
        {
            ch = static_cast<wchar_t>((ch >> 8) | (ch << 8));
        }
    }
    return ToUtf8(text);
}

std::string FromCodePage(const std::wstring& name, const std::string& bytes, const std::string& encoding)
{
    const unsigned int codePage = CodePageOf(encoding);
    if (codePage == kUnknownCodePage || !::IsValidCodePage(codePage))
    {
        throw FileError(name, L"the encoding is not supported: \"" + ToWide(encoding) + L"\"");
    }
    const int length = static_cast<int>(bytes.size());
    std::wstring wide(static_cast<size_t>(::MultiByteToWideChar(codePage, 0, bytes.data(), length, nullptr, 0)), L'\0');
    if (wide.empty())
    {
        throw FileError(name, L"the text is not in its encoding, \"" + ToWide(encoding) + L"\"");
    }
    ::MultiByteToWideChar(codePage, 0, bytes.data(), length, wide.data(), static_cast<int>(wide.size()));
    return ToUtf8(wide);
}

// Returns the length of the character that begins at `at`, 0 when the bytes there are not UTF-8.
size_t CharacterLength(const std::string& text, size_t at)
{
    const auto byte = [&](size_t index) { return index < text.size() ? static_cast<unsigned char>(text[index]) : 0U; };
    const unsigned int lead = byte(at), second = byte(at + 1);
    const auto isTrail = [&](size_t index) { return (byte(index) & 0xC0) == 0x80; };
    if (lead < 0x80)
    {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF)
    {
        return isTrail(at + 1) ? 2 : 0;
    }
    // Overlong forms, surrogates and what is above the last character are excluded by the second byte.
    const bool isLow = (lead == 0xE0 && second < 0xA0) || (lead == 0xF0 && second < 0x90);
    const bool isHigh = (lead == 0xED && second > 0x9F) || (lead == 0xF4 && second > 0x8F);
    if (lead < 0xE0 || lead > 0xF4 || isLow || isHigh)
    {
        return 0;
    }
    const size_t length = lead < 0xF0 ? 3 : 4;
    for (size_t index = 1; index < length; ++index)
    {
        if (!isTrail(at + index))
        {
            return 0;
        }
    }
    return length;
}

unsigned int LineAt(const std::string& text, size_t at)
{
    return 1 +
           static_cast<unsigned int>(std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(at), '\n'));
}

void RequireUtf8(const std::wstring& name, const std::string& text)
{
    for (size_t at = 0; at < text.size();)
    {
        const size_t length = CharacterLength(text, at);
        if (length == 0)
        {
            throw LineError(name, LineAt(text, at), L"the text is not UTF-8");
        }
        const auto ch = static_cast<unsigned char>(text[at]);
        if (ch < ' ' && ch != '\t' && ch != '\n' && ch != '\r')
        {
            throw LineError(name, LineAt(text, at), L"control character " + std::to_wstring(ch));
        }
        at += length;
    }
}

bool BeginsWith(const std::string& bytes, std::string_view start)
{
    return bytes.compare(0, start.size(), start) == 0;
}

}  // namespace

std::string XmlBytesAsUtf8(const std::wstring& name, std::string bytes)
{
    // Longer files would also need more memory than reading is allowed to take.
    if (bytes.size() > INT_MAX)
    {
        throw FileError(name, L"files of more than 2 GB are not supported");
    }
    if (BeginsWith(bytes, "\xFF\xFE"sv) || BeginsWith(bytes, "\xFE\xFF"sv))
    {
        bytes = FromUtf16(name, std::string_view(bytes).substr(2), bytes[0] == '\xFE');
    }
    else if (BeginsWith(bytes, "<\0"sv) || BeginsWith(bytes, "\0<"sv))
    {
        bytes = FromUtf16(name, bytes, bytes[0] == '\0');
    }
    else if (BeginsWith(bytes, "\xEF\xBB\xBF"sv))
    {
        bytes.erase(0, 3);
    }
    else if (const std::string encoding = DeclaredEncoding(bytes); !encoding.empty() && encoding != "utf-8")
    {
        bytes = FromCodePage(name, bytes, encoding);
    }
    RequireUtf8(name, bytes);
    return bytes;
}

}  // namespace quonhost
