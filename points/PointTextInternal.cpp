#include "points/PointTextInternal.h"

#include <algorithm>
#include <cstdint>
#include <cwchar>
#include <cwctype>

namespace QuonPointDetails
{
namespace
{

// Numbers are read into a signed 32-bit long and stay at its greatest value beyond it.
constexpr unsigned long kGreatestNumber = 2147483647;

constexpr bool IsComparison(wchar_t character)
{
    return character == L'<' || character == L'>';
}

// Which part of an item the character check is in.
enum class NumberState
{
    None,
    Digits,
    Ended,
};

struct ItemCheck
{
    NumberState first = NumberState::None;
    NumberState second = NumberState::None;
    const wchar_t* dash = nullptr;
    bool isComparison = false;

    bool Accept(const wchar_t* character, const wchar_t* start);
    NumberState& Current() { return dash == nullptr ? first : second; }
};

bool ItemCheck::Accept(const wchar_t* character, const wchar_t* start)
{
    if (IsDigit(*character))
    {
        const bool allowed = Current() != NumberState::Ended;
        Current() = NumberState::Digits;
        return allowed;
    }
    switch (*character)
    {
        case L' ':
            if (Current() == NumberState::Digits)
            {
                Current() = NumberState::Ended;
            }
            return true;
        case L'-':
            if (isComparison || dash != nullptr || first == NumberState::None)
            {
                return false;
            }
            dash = character;
            return true;
        case L'<':
        case L'>':
            isComparison = true;
            return character == start || IsComparison(character[-1]);
        case L'=':
            return character != start && IsComparison(character[-1]);
        default:
            return false;
    }
}

// The number at the start of a part of an item, leading blanks skipped. What follows an item ends its number too.
unsigned long ReadBound(const wchar_t* part)
{
    SkipBlanks(part);
    std::uint64_t number = 0;
    for (; IsDigit(*part); ++part)
    {
        number = std::min<std::uint64_t>(10 * number + static_cast<std::uint64_t>(*part - L'0'), kGreatestNumber);
    }
    return static_cast<unsigned long>(number);
}

void SkipWhiteSpace(const wchar_t*& position, const wchar_t* end)
{
    while (position != end && IsWhiteSpace(*position))
    {
        ++position;
    }
}

void CheckItem(PointItem& item)
{
    ItemCheck check;
    const wchar_t* const end = item.token + item.tokenLength;
    for (const wchar_t* character = item.token; character != end; ++character)
    {
        if (!check.Accept(character, item.token))
        {
            item.kind = ItemKind::BadSyntax;
            return;
        }
    }
    item.range.first = item.range.last = ReadBound(item.token);
    item.isRange = check.dash != nullptr;
    if (item.isRange)
    {
        item.range.last = ReadBound(check.dash + 1);
    }
    // A comparison reads as 0, because the number conversion stops at its first character, and that is no error.
    const bool bad = !check.isComparison && (item.range.first == 0 || item.range.last == 0);
    item.kind = bad ? ItemKind::BadBound : ItemKind::Valid;
}

}  // namespace

bool IsWhiteSpace(wchar_t character)
{
    return MayBeWhiteSpace(character) && std::iswspace(character) != 0;
}

PointTextReader PointTextReader::Start(const wchar_t* text, std::size_t length)
{
    PointTextReader reader{text, text + length};
    SkipWhiteSpace(reader.position, reader.end);
    return reader;
}

PointItem PointTextReader::Next()
{
    PointItem item{ItemKind::None, {0, 0}, false, position, 0};
    while (item.kind == ItemKind::None && !AtEnd())
    {
        const wchar_t* const comma = std::wmemchr(position, L',', static_cast<std::size_t>(end - position));
        const wchar_t* tokenEnd = comma != nullptr ? comma : end;
        item.token = position;
        position = tokenEnd;
        while (tokenEnd != item.token && IsWhiteSpace(tokenEnd[-1]))
        {
            --tokenEnd;
        }
        item.tokenLength = static_cast<std::size_t>(tokenEnd - item.token);
        if (item.tokenLength != 0)
        {
            CheckItem(item);
        }
        if (!AtEnd())
        {
            ++position;
            SkipWhiteSpace(position, end);
        }
    }
    return item;
}

}  // namespace QuonPointDetails
