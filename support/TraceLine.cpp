#include "support/TraceLineInternal.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

// Formatting by hand: a trace line costs a third of what a formatter takes for it.

namespace
{

constexpr std::size_t kDotsEnd = 98;  // columns of position and dots
constexpr wchar_t kThreadTag[] = L"TID=";
constexpr std::size_t kHexDigits = 8;
constexpr std::size_t kTagLength = std::size(kThreadTag) - 1 + kHexDigits;
constexpr wchar_t kPositionEnd[] = L"): LOG ";
constexpr std::size_t kMostDecimals = 11;  // of a 32-bit number with its sign

template <std::size_t Size>
wchar_t* PutText(wchar_t* out, const wchar_t (&text)[Size])
{
    return std::wmemcpy(out, text, Size - 1) + (Size - 1);
}

wchar_t* PutDecimal(wchar_t* out, int value)
{
    wchar_t digits[kMostDecimals];
    wchar_t* first = std::end(digits);
    // Unsigned, so that the smallest number has a magnitude.
    unsigned int rest = value < 0 ? 0U - static_cast<unsigned int>(value) : static_cast<unsigned int>(value);
    do
    {
        *--first = static_cast<wchar_t>(L'0' + rest % 10);
        rest /= 10;
    } while (rest != 0);
    if (value < 0)
    {
        *--first = L'-';
    }
    return std::copy(first, std::end(digits), out);
}

wchar_t* PutThreadTag(wchar_t* out, unsigned long threadId)
{
    out = PutText(out, kThreadTag);
    for (std::size_t digit = kHexDigits; digit-- > 0; threadId >>= 4)
    {
        out[digit] = L"0123456789ABCDEF"[threadId & 0xF];
    }
    return out + kHexDigits;
}

}  // namespace

std::size_t TraceTextLength(const wchar_t* text)
{
    // A step of four leaves one test for each character: the loop of the run-time has two.
    for (std::size_t length = 0;; length += 4)
    {
        for (std::size_t next = length; next < length + 4; ++next)
        {
            if (text[next] == L'\0')
            {
                return next;
            }
        }
    }
}

std::size_t TraceHeaderRoom(std::size_t fileLength)
{
    const std::size_t position = fileLength + 1 + kMostDecimals + std::size(kPositionEnd) - 1;
    return std::max(position, kDotsEnd) + kTagLength;
}

wchar_t* PutTraceHeader(wchar_t* out, const wchar_t* file, std::size_t fileLength, int line, unsigned long threadId)
{
    wchar_t* const start = out;
    // All the dots at once, and the position over them: their number is then known when the library is compiled.
    std::fill_n(start, kDotsEnd, L'.');
    out = std::wmemcpy(out, file, fileLength) + fileLength;
    *out++ = L'(';
    out = PutDecimal(out, line);
    out = PutText(out, kPositionEnd);
    return PutThreadTag(std::max(out, start + kDotsEnd), threadId);
}
