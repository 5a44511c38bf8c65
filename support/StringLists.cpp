// The helpers of StringHelpers.h that take texts apart and put them together.
#include "support/StringHelpers.h"

#include "base/LengthInternal.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <string>
#include <string_view>
#include <utility>

namespace
{

// Which characters are delimiters: ASCII ones, which are nearly all, by a bit each.
class DelimiterSet
{
public:
    explicit DelimiterSet(const wchar_t* delimiters) : m_delimiters(delimiters)
    {
        for (; *delimiters != L'\0'; ++delimiters)
        {
            if (*delimiters < kAsciiCount)
            {
                m_ascii[*delimiters / 64] |= std::uint64_t{1} << (*delimiters % 64);
            }
        }
    }

    bool Contains(wchar_t character) const
    {
        return character < kAsciiCount ? ((m_ascii[character / 64] >> (character % 64)) & 1) != 0
                                       : std::wcschr(m_delimiters, character) != nullptr;
    }

private:
    static constexpr wchar_t kAsciiCount = 128;

    const wchar_t* m_delimiters;
    std::uint64_t m_ascii[2] = {};
};

// Puts characters into a string whose memory is kept when they fit.
void Store(CString& target, const wchar_t* text, int length)
{
    if (length == 0)
    {
        target.Empty();
        return;
    }
    target.SetString(text, length);
}

// Cuts an array to the elements that were filled in, also when memory runs out before the last of them.
class FilledElements
{
public:
    explicit FilledElements(CStringArray& array) : m_array(array), m_count(array.GetSize()) {}
    ~FilledElements() { m_array.SetSize(m_count); }
    FilledElements(const FilledElements&) = delete;
    FilledElements& operator=(const FilledElements&) = delete;

    void Add(CString&& element) { m_array.ElementAt(m_count++) = std::move(element); }
    // Makes room for `count` further elements at once.
    void MakeRoom(INT_PTR count) { m_array.SetSize(m_count + count); }

private:
    CStringArray& m_array;
    INT_PTR m_count;
};

CString ToCString(const std::wstring& text)
{
    return CString(text.data(), ToStringLength(text.size()));
}

}  // namespace

bool GetNextToken(const wchar_t** cursor, const wchar_t* delimiters, CString& token)
{
    if (cursor == nullptr || *cursor == nullptr)
    {
        token.Empty();
        return false;
    }
    const DelimiterSet set(delimiters != nullptr ? delimiters : L"");
    const wchar_t* start = *cursor;
    while (*start != L'\0' && set.Contains(*start))
    {
        ++start;
    }
    const wchar_t* end = start;
    while (*end != L'\0' && !set.Contains(*end))
    {
        ++end;
    }
    // The cursor moves last: without memory for the token, the caller can ask for it again.
    Store(token, start, ToStringLength(start, end));
    *cursor = *end != L'\0' ? end + 1 : end;
    return end != start;
}

CString TakeToken(const CString& separator, CString& rest)
{
    const int separatorLength = separator.GetLength();
    const int found = separatorLength != 0 ? rest.Find(separator) : 0;
    if (found < 0)
    {
        CString head = rest;
        rest.Empty();
        return head;
    }
    CString head = rest.Left(found);
    rest.Delete(0, found + separatorLength);
    return head;
}

CString TakeCommaToken(CString& rest)
{
    return TakeToken(L",", rest);
}

CString TakeSpaceToken(CString& rest)
{
    return TakeToken(L" ", rest);
}

bool SplitCommaList(CString text, CStringArray& out)
{
    // What a loop over TakeCommaToken gives, without moving the rest of the text for each element and without growing
    // the array step by step: both would take quadratic time.
    const wchar_t* rest = text;
    const wchar_t* const end = rest + text.GetLength();
    if (rest == end)
    {
        return true;
    }
    FilledElements elements(out);
    elements.MakeRoom(1 + std::count(rest, end, L','));
    while (rest != end)
    {
        const wchar_t* const comma = std::wcschr(rest, L',');
        const wchar_t* const headEnd = comma != nullptr ? comma : end;
        CString head(rest, ToStringLength(rest, headEnd));
        head.Trim();
        if (!head.IsEmpty())
        {
            elements.Add(std::move(head));
        }
        rest = comma != nullptr ? comma + 1 : end;
    }
    return true;
}

CString PrefixEachOccurrence(const CString& what, const CString& prefix, CString source)
{
    const std::size_t prefixLength = std::wcslen(prefix);
    if (*what == L'\0' || prefixLength == 0)
    {
        return source;
    }
    const wchar_t* const start = source;
    const wchar_t* const end = start + source.GetLength();
    std::wstring result;
    const wchar_t* copied = start;  // up to here the source stands in the result
    const wchar_t* position = start;
    const wchar_t* mark = std::wcsstr(start, prefix);  // first prefix at or behind the position
    while (const wchar_t* const found = std::wcsstr(position, what))
    {
        if (mark != nullptr && mark < position)
        {
            mark = std::wcsstr(position, prefix);
        }
        // Only this one prefix is looked at, even when a later one stands right before the occurrence.
        if (mark == nullptr || mark + prefixLength != found)
        {
            result.append(copied, found);
            result.append(prefix, prefixLength);
            copied = found;
        }
        position = found + 1;
    }
    if (copied == start && result.empty())
    {
        return source;
    }
    result.append(copied, end);
    return ToCString(result);
}

void PutListItem(const CString& item, const CString& separator, int index, CString& list)
{
    const std::wstring_view between(static_cast<const wchar_t*>(separator));
    if (list.IsEmpty())
    {
        list = item;
        return;
    }
    if (between.empty())
    {
        return;
    }
    const std::wstring_view wanted(static_cast<const wchar_t*>(item));
    const wchar_t* rest = list;
    const wchar_t* const end = rest + list.GetLength();
    std::wstring work;
    work.reserve(static_cast<std::size_t>(end - rest) + wanted.size() + 2 * between.size());
    int i = 0;
    bool placed = false;
    // Whether a separator is due is decided by the count of elements read, not by what was written: stray separators
    // are part of the result.
    const auto append = [&](std::wstring_view text) {
        if (i != 0)
        {
            work += between;
        }
        work += text;
    };
    do
    {
        const wchar_t* const found = std::wcsstr(rest, separator);
        if (found == nullptr)
        {
            append(std::wstring_view(rest, static_cast<std::size_t>(end - rest)));
            break;
        }
        if (i == index)
        {
            append(wanted);
            if (i == 0)
            {
                work += between;
            }
            placed = true;
        }
        const std::wstring_view element(rest, static_cast<std::size_t>(found - rest));
        if (element != wanted)
        {
            append(element);
        }
        rest = found + between.size();
        ++i;
    } while (rest != end);
    if (!placed)
    {
        append(wanted);
    }
    list = ToCString(work);
}
