#include "support/NaturalCompare.h"

#include <cstddef>
#include <cstdlib>
#include <cwchar>
#include <cwctype>

namespace
{

struct CaseCollation
{
    static int Compare(const wchar_t* a, const wchar_t* b) { return std::wcscoll(a, b); }
    static int Compare(const wchar_t* a, const wchar_t* b, std::size_t length) { return ::_wcsncoll(a, b, length); }
};

struct NoCaseCollation
{
    static int Compare(const wchar_t* a, const wchar_t* b) { return ::_wcsicoll(a, b); }
    static int Compare(const wchar_t* a, const wchar_t* b, std::size_t length) { return ::_wcsnicoll(a, b, length); }
};

constexpr wchar_t kFirstBeyondAscii = 0x80;

// ASCII has the same ten digits in every locale; only beyond it the run-time has to be asked.
inline bool IsAsciiDigit(wchar_t character)
{
    return character >= L'0' && character <= L'9';
}

inline bool IsDigit(wchar_t character)
{
    return character < kFirstBeyondAscii ? IsAsciiDigit(character) : std::iswdigit(character) != 0;
}

// Whether a character belongs to a stretch between numbers.
inline bool IsStretch(wchar_t character)
{
    return character != L'\0' && !IsDigit(character);
}

// The value that `_wtoi` gives for the digits at `text`, never negative. Moves `text` behind the run.
int TakeNumber(const wchar_t*& text)
{
    constexpr int kDigitsThatAlwaysFit = 9;
    const wchar_t* const start = text;
    while (*text == L'0')
    {
        ++text;
    }
    int value = 0;
    for (int digits = 0; digits < kDigitsThatAlwaysFit && IsAsciiDigit(*text); ++digits)
    {
        value = value * 10 + (*text++ - L'0');
    }
    // Digits beyond ASCII belong to the run, but the run-time reads the value of some of them only. Its answer counts
    // for them, as it does for numbers that may not fit.
    if (IsAsciiDigit(*text) || *text >= kFirstBeyondAscii)
    {
        value = ::_wtoi(start);
        while (IsDigit(*text))
        {
            ++text;
        }
    }
    return value;
}

// Collation takes most of the time, linguistic collation nearly all of it. It is not asked about equal texts, which
// collate equal in every locale.
template <typename Collation>
int Compare(const wchar_t* a, const wchar_t* b)
{
    for (;;)
    {
        std::size_t length = 0;
        while (a[length] == b[length] && IsStretch(a[length]))
        {
            ++length;
        }
        const std::size_t equalLength = length;
        while (IsStretch(a[length]) && IsStretch(b[length]))
        {
            ++length;
        }
        const bool identical = length == equalLength;
        // Either a text has no digit left or its first digit stands further behind than the other's: both cases fall
        // back to the collation of the remainders.
        if (!IsDigit(a[length]) || !IsDigit(b[length]))
        {
            return identical && a[length] == b[length] ? 0 : Collation::Compare(a, b);
        }
        if (!identical)
        {
            if (const int order = Collation::Compare(a, b, length); order != 0)
            {
                return order;
            }
        }
        a += length;
        b += length;
        const int first = TakeNumber(a);
        const int second = TakeNumber(b);
        if (first != second)
        {
            return first - second;
        }
        if (*a == L'\0' || *b == L'\0')
        {
            return (*a != L'\0') - (*b != L'\0');
        }
    }
}

inline const wchar_t* OrEmpty(const wchar_t* text)
{
    return text != nullptr ? text : L"";
}

}  // namespace

int CompareNatural(const wchar_t* a, const wchar_t* b)
{
    return Compare<CaseCollation>(OrEmpty(a), OrEmpty(b));
}

int CompareNaturalNoCase(const wchar_t* a, const wchar_t* b)
{
    return Compare<NoCaseCollation>(OrEmpty(a), OrEmpty(b));
}
