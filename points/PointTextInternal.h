// The syntax of point strings: reads a text item by item. Texts in, values out; nothing is allocated.
#pragma once

#include <cstddef>

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
};

/// White space as the framework's strings trim it.
bool IsWhiteSpace(wchar_t character);

}  // namespace QuonPointDetails
