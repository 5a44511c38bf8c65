#include "paths/PathTextInternal.h"

#include <algorithm>
#include <cwchar>

namespace QuonPathText
{

namespace
{

/// Writes the components of `text` to `out` with one separator between two of them. `out` never runs ahead of what has
/// been read: between two components at least one delimiter has been passed.
std::size_t JoinComponents(std::wstring_view text, wchar_t separator, wchar_t* out)
{
    wchar_t* end = out;
    bool parted = false;
    for (const wchar_t ch : text)
    {
        if (IsDelimiter(ch))
        {
            parted = end != out;
            continue;
        }
        if (parted)
        {
            *end++ = separator;
            parted = false;
        }
        *end++ = ch;
    }
    return static_cast<std::size_t>(end - out);
}

wchar_t* CopyTo(wchar_t* out, std::wstring_view text)
{
    return std::copy(text.begin(), text.end(), out);
}

}  // namespace

std::wstring_view TakeComponent(std::wstring_view& rest)
{
    const auto begin = std::find_if_not(rest.begin(), rest.end(), IsDelimiter);
    const auto end = std::find_if(begin, rest.end(), IsDelimiter);
    const auto first = static_cast<std::size_t>(begin - rest.begin());
    const auto last = static_cast<std::size_t>(end - rest.begin());
    const std::wstring_view component = rest.substr(first, last - first);
    rest.remove_prefix(last);
    return component;
}

std::wstring_view LastComponent(std::wstring_view text)
{
    std::size_t end = text.size();
    while (end > 0 && IsDelimiter(text[end - 1]))
    {
        --end;
    }
    std::size_t begin = end;
    while (begin > 0 && !IsDelimiter(text[begin - 1]))
    {
        --begin;
    }
    return text.substr(begin, end - begin);
}

bool IsNormal(std::wstring_view text, wchar_t separator)
{
    if (BeginsWithTwoSeparators(text) && text.size() == 2)
    {
        return false;
    }
    bool afterSeparator = false;
    for (std::size_t index = 0; index < text.size(); ++index)
    {
        const bool isDelimiter = IsDelimiter(text[index]);
        if (isDelimiter && (text[index] != separator || (afterSeparator && index > 1)))
        {
            return false;
        }
        afterSeparator = isDelimiter;
    }
    return true;
}

std::size_t Normalize(std::wstring_view text, wchar_t separator, wchar_t* out)
{
    // Looked at before anything is written, for `out` may be the text itself.
    const bool isTrailing = text.size() > 1 && EndsInSeparator(text);
    std::size_t length = 0;
    if (BeginsWithTwoSeparators(text))
    {
        length = 2;
    }
    else if (!text.empty() && IsSeparator(text[0]))
    {
        length = 1;
    }
    const std::wstring_view rest = text.substr(length);
    std::fill_n(out, length, separator);
    length += JoinComponents(rest, separator, out + length);
    if (isTrailing)
    {
        // Two separators and nothing else are both the beginning and the end: they become three.
        out[length++] = separator;
    }
    return length;
}

std::size_t WithoutFirstComponent(std::wstring_view text, wchar_t separator, wchar_t* out)
{
    const bool isTrailing = EndsInSeparator(text);
    std::wstring_view rest = text;
    TakeComponent(rest);
    std::size_t length = JoinComponents(rest, separator, out);
    if (isTrailing && length > 0)
    {
        out[length++] = separator;
    }
    return length;
}

std::size_t LengthWithoutLastComponent(std::wstring_view text)
{
    const std::size_t end = LengthWithoutTrailingSeparators(text);
    std::size_t begin = end;
    while (begin > 0 && !IsSeparator(text[begin - 1]))
    {
        --begin;
    }
    // The first component is cut with the separators before it: they lead, they do not part.
    return LengthWithoutTrailingSeparators(text.substr(0, begin)) == 0 ? 0 : begin;
}

std::size_t LengthWithoutTrailingSeparators(std::wstring_view text)
{
    std::size_t length = text.size();
    while (length > 0 && IsSeparator(text[length - 1]))
    {
        --length;
    }
    return length;
}

Parts SplitPlain(std::wstring_view text)
{
    Parts parts;
    if (text.size() >= 2 && text[1] == L':')
    {
        parts.drive = text.substr(0, 2);
        text.remove_prefix(2);
    }
    std::size_t nameAt = text.size();
    std::size_t extensionAt = text.size();
    while (nameAt > 0 && !IsSeparator(text[nameAt - 1]))
    {
        --nameAt;
        if (text[nameAt] == L'.' && extensionAt == text.size())
        {
            extensionAt = nameAt;
        }
    }
    parts.directory = text.substr(0, std::min(nameAt, kMaxPart));
    parts.name = text.substr(nameAt, std::min(extensionAt - nameAt, kMaxPart));
    parts.extension = text.substr(extensionAt, kMaxPart);
    return parts;
}

SplitText::SplitText(std::wstring_view text, wchar_t separator) : m_parts(SplitPlain(text))
{
    const std::wstring_view name = m_parts.name;
    const std::wstring_view extension = m_parts.extension;
    if (name.data() + name.size() == extension.data())
    {
        m_fileName = std::wstring_view(name.data(), name.size() + extension.size());
    }
    else  // the name was cut
    {
        wchar_t* const end = CopyTo(CopyTo(m_fileNameBuffer, name), extension);
        m_fileName = std::wstring_view(m_fileNameBuffer, static_cast<std::size_t>(end - m_fileNameBuffer));
    }
    if (BeginsWithTwoSeparators(m_parts.directory))
    {
        RewriteUncDirectory(separator);
    }
}

void SplitText::RewriteUncDirectory(wchar_t separator)
{
    std::wstring_view rest = m_parts.directory;
    const std::wstring_view server = TakeComponent(rest);
    const std::wstring_view share = TakeComponent(rest);

    wchar_t* end = m_driveBuffer;
    *end++ = separator;
    *end++ = separator;
    end = CopyTo(end, server);
    if (!share.empty())
    {
        *end++ = separator;
        end = CopyTo(end, share);
    }
    // Without a server this makes three separators: what two of them become whenever something is appended.
    *end++ = separator;
    m_parts.drive = std::wstring_view(m_driveBuffer, static_cast<std::size_t>(end - m_driveBuffer));

    std::size_t length = JoinComponents(rest, separator, m_directoryBuffer);
    if (length > 0 && EndsInSeparator(m_parts.directory))
    {
        m_directoryBuffer[length++] = separator;
    }
    m_parts.directory = std::wstring_view(m_directoryBuffer, length);
}

}  // namespace QuonPathText
