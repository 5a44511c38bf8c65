// The syntax of point strings: reads a text item by item. Texts in, values out; nothing is allocated.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace QuonPointDetails
{

/// The bounds of an item; first > last is a descending range.
struct PointRange
{
    unsigned long first;
    unsigned long last;
};

enum class ItemKind
{
    None,       // only empty items were left
    Valid,      // a number, a range or a comparison, which stands for the number 0
    BadSyntax,  // a character that may not stand where it does; the bounds were not read
    BadBound,   // a bound that is 0
};

struct PointItem
{
    ItemKind kind;
    PointRange range;      // for Valid and BadBound
    bool isRange;          // written with a "-"; for Valid and BadBound
    const wchar_t* token;  // the item, trimmed at both ends; empty for None
    std::size_t tokenLength;
};

/// White space as the framework's strings trim it.
bool IsWhiteSpace(wchar_t character);

/// False for characters that are certainly no white space.
constexpr bool MayBeWhiteSpace(wchar_t character)
{
    return character <= L' ' || character >= 0x7F;
}

/// What has not been read yet of a text. It never begins with white space, and a zero character follows it.
struct PointTextReader
{
    const wchar_t* position;
    const wchar_t* end;

    /// Starts behind the leading white space of `text`.
    static PointTextReader Start(const wchar_t* text, std::size_t length);

    bool AtEnd() const { return position == end; }

    /// Reads the next item that is not empty, its comma and the white space behind it.
    PointItem Next();

    /// Does the same if the next item is a valid number or range with nothing special about it, which nearly every item
    /// is; else it returns false, with nothing read and `item` of no use.
    bool ReadPlainItem(PointItem& item);
};

/// Full-width and other digits that the character tables know are no digits here.
constexpr bool IsDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

inline void SkipBlanks(const wchar_t*& position)
{
    while (*position == L' ')
    {
        ++position;
    }
}

/// Adds the digits of four characters to `number` when all four are digits.
inline bool AppendFourDigits(const wchar_t* characters, unsigned long& number)
{
    static_assert(sizeof(wchar_t) == 2);
    std::uint64_t word;
    std::memcpy(&word, characters, sizeof(word));
    const std::uint64_t digits = word ^ 0x0030003000300030;
    // A digit is below 10, so that adding 6 does not reach the fifth bit.
    if (((digits | (digits + 0x0006000600060006)) & 0xFFF0FFF0FFF0FFF0) != 0)
    {
        return false;
    }
    // The first character is the lowest lane: the product's highest lane gathers 1000, 100, 10 and 1 times the digits.
    number = 10000 * number + static_cast<unsigned long>(digits * 0x03E80064000A0001 >> 48);
    return true;
}

/// The same for two.
inline bool AppendTwoDigits(const wchar_t* characters, unsigned long& number)
{
    std::uint32_t word;
    std::memcpy(&word, characters, sizeof(word));
    const std::uint32_t digits = word ^ 0x00300030;
    if (((digits | (digits + 0x00060006)) & 0xFFF0FFF0) != 0)
    {
        return false;
    }
    number = 100 * number + static_cast<unsigned long>(digits * 0x000A0001 >> 16);
    return true;
}

/// Reads the digits at `position`, and moves behind them. Returns false when there are none, or more than nine. A
/// character that is no digit stands at `end` at the latest.
inline bool ReadShortNumber(const wchar_t*& position, const wchar_t* end, unsigned long& number)
{
    const wchar_t* at = position;
    number = 0;
    int rest = 3;
    if (end - at >= 3 && AppendFourDigits(at, number))
    {
        at += 4;
        // Where one digit is, the character behind it is one of the text, or its end.
        if (IsDigit(*at) && AppendTwoDigits(at, number))
        {
            at += 2;
        }
    }
    else if (!IsDigit(*at))
    {
        return false;
    }
    for (; IsDigit(*at); ++at)
    {
        if (rest-- == 0)
        {
            return false;
        }
        number = 10 * number + static_cast<unsigned long>(*at - L'0');
    }
    position = at;
    return true;
}

// It calls nothing and keeps all in registers.
inline bool PointTextReader::ReadPlainItem(PointItem& item)
{
    const wchar_t* at = position;
    if (!ReadShortNumber(at, end, item.range.first))
    {
        return false;
    }
    item.range.last = item.range.first;
    item.isRange = *at == L'-';
    if (item.isRange && !ReadShortNumber(++at, end, item.range.last))
    {
        return false;
    }
    const wchar_t* const tokenEnd = at;
    if (*at == L',')
    {
        SkipBlanks(++at);
        if (MayBeWhiteSpace(*at) && at != end)
        {
            return false;
        }
    }
    else if (at != end)
    {
        return false;
    }
    if (item.range.first == 0 || item.range.last == 0)
    {
        return false;
    }
    item.token = position;
    item.tokenLength = static_cast<std::size_t>(tokenEnd - position);
    item.kind = ItemKind::Valid;
    position = at;
    return true;
}

}  // namespace QuonPointDetails
